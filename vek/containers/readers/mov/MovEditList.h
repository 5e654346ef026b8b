#pragma once

// A track's edit list ('elst' in 'edts'): which stretch of the media is
// presented, and when.
//
// Read converts every edit to media time-scale units. Leading empty edits
// (media time -1) delay the track: GetDelay. The first edit with media
// gives the track's mapping: a sample presented at media time t appears at
// t - GetMediaStart() + GetDelay(), the same shift for every sample so that
// decode order stays monotonic. Later edits with media still decide what
// is presented: Place tells, for a sample's presentation span in media
// time, whether any edit shows part of it (otherwise the sample is
// excluded: a decoder still needs it, nobody sees it) and how many units
// the edits cut from its start or end (its composition trim). Gaps between
// later edits are not closed; a file that splices media out of order is
// read in media order (logged once).
//
// Without an edit list every sample is shown, unshifted.
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>

namespace Quorvex::Vek {

class VEK_API MovEditList {
public:
    enum : uint32_t { MaxEdits = 64 };

    struct Placement {
        bool excluded = false;
        int32_t leadingTrim = 0;
        int32_t trailingTrim = 0;
    };

    // Reads 'elst' (versions 0 and 1). Edits at rates other than 1 are
    // read as rate 1 (logged). 0, or RESULT_FORMAT_ERROR with a log line
    // for counts the box cannot hold or times that overflow.
    int Read(const MovBox& elst, uint32_t movieTimeScale, uint32_t mediaTimeScale);

    bool IsEmpty() const { return m_count == 0; }
    int64_t GetDelay() const { return m_delay; }
    int64_t GetMediaStart() const { return m_count ? m_edits[0].mediaStart : 0; }
    // What the track shows, media units (0 without edits).
    int64_t GetPresentedDuration() const { return m_presented; }
    Placement Place(int64_t presentationStart, int64_t duration) const;

private:
    struct Edit {
        int64_t mediaStart;
        int64_t mediaEnd;
    };

    Edit m_edits[MaxEdits] = {};
    uint32_t m_count = 0;
    int64_t m_delay = 0;
    int64_t m_presented = 0;
};

} // namespace Quorvex::Vek
