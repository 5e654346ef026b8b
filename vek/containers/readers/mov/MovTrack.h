#pragma once

// One track of a QuickTime or ISO movie as the readers keep it: what kind
// of media it carries, its time scale, its sample table and edit list, its
// description, and where the hand-out of its samples stands.
//
// Times: the table counts in the media time scale from the track's first
// decoded sample. GetShift moves them onto the movie's presentation
// timeline (empty edits delay, the first edit's media time starts), so a
// sample the edit list shows first is presented at the track's delay.
#include <vek/containers/readers/mov/MovSampleDescription.h>
#include <vek/containers/readers/mov/MovEditList.h>
#include <vek/containers/readers/mov/MovFragment.h>
#include <vek/containers/readers/mov/MovSampleTable.h>
#include <vek/containers/readers/mov/MovTimeCode.h>
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/media/CVideoProperties.h>

namespace Quorvex::Vek {

struct VEK_API MovTrack {
    enum class Kind { Video, Audio, Subtitle, TimeCode, Other };

    MovTrack() : cursor(table) {}
    MovTrack(const MovTrack&) = delete;
    MovTrack& operator=(const MovTrack&) = delete;

    Kind kind = Kind::Other;
    uint32_t trackId = 0;
    bool enabled = true;
    uint32_t handler = 0;
    uint32_t mediaTimeScale = 0;
    uint32_t sampleEntryType = 0; // the chosen 'stsd' entry's format code
    uint32_t chapterTrackId = 0; // 'tref'/'chap': the track holding this one's chapters
    MovSampleTable table;
    MovEditList edits;
    MovSampleTable::Cursor cursor;
    RObject<CVideoProperties> video;
    RObject<CAudioProperties> audio;
    RObject<CSubtitleProperties> subtitle;
    MovAudioLayout audioLayout;
    MovTimeCodeDescription timeCode = {};
    MovTrackDefaults fragmentDefaults; // 'trex'
    // Fragmented movies: the media duration the file's indexes announce
    // before every fragment is parsed ('mehd', 'sidx', the last fragment).
    int64_t declaredDuration = 0;
    int64_t decodeLead = 0; // video: how much earlier samples decode than their table says (negative offsets)
    int32_t nalLengthSize = 0; // AVC and HEVC samples: bytes of each NAL length, 0 for others

    // Hand-out state.
    int64_t highestPresentation = INT64_MIN; // of the samples handed out, for picture types
    uint32_t pcmChunk = 0; // PCM: the chunk being cut
    uint32_t pcmTaken = 0; // PCM: frames of it already handed out

    int64_t GetShift() const { return edits.GetDelay() - edits.GetMediaStart(); }
};

} // namespace Quorvex::Vek
