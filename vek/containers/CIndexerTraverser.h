#pragma once

// A read cursor over the tracks of one CIndexer: Seek positions the
// selected kinds of track at a time, then Read*Sample hands out each
// track's indexed samples in index (decode) order from there.
//
// Positioning rules, per selected track:
// - the cursor stands at the sample whose composition span contains the
//   time; in a gap between samples, at the first sample presented after
//   the time; beyond the track's end, at its end;
// - with VideoReference a video cursor moves back to the key frame that
//   starts the target's group of pictures: a decoder needs every picture
//   from there to rebuild the target;
// - with AudioPrecharge an audio cursor moves back by one sample (not
//   before the first): decoders with overlapping transforms or priming
//   need the preceding packet to produce the target's first frames.
// Kinds that are not selected keep their positions (a new traverser stands
// at the start of every track).
//
// A traverser takes no lock of its own: use it from one thread at a time.
// It shares its indexer.
#include <vek/containers/CIndexer.h>

namespace Quorvex::Vek {

class VEK_API CIndexerTraverser : public CObject {
public:
    enum : uint32_t { Type = Four("itrv") };
    enum : int32_t {
        Video = 1,
        Audio = 2,
        Subtitle = 4,
        VideoReference = 256,
        AudioPrecharge = 512,
    };

    // A cursor at the start of every track of `indexer` (shared; null makes
    // every call answer -19000); null without memory.
    static CIndexerTraverser* Create(CIndexer* indexer);

    // Positions the selected kinds at `seconds`. 0; -19003 for a negative
    // (or not-a-number) time; -19000 without an indexer or a track's index;
    // -19271 when a selected track still being indexed has not reached the
    // time; -19272 when the time is at or beyond the end of every selected
    // track. On failure no cursor moves.
    int Seek(double seconds, int32_t flags);

    // The next sample of a track (one reference for the caller) and the
    // cursor moves on. 0 with null at the end of a complete track; -19271
    // at the end of what is indexed so far while the pass runs; -19003 for
    // a track outside the counts; -19000 without an indexer.
    int ReadVideoSample(int32_t track, CVideoSample*& sample);
    int ReadAudioSample(int32_t track, CAudioSample*& sample);
    int ReadSubtitleSample(int32_t track, CSubtitleSample*& sample);

    // Whether a video track is long-GOP: it has predicted (P or B) pictures.
    // -19003 for a track outside the count, -19000 without an indexer.
    int GetLongGop(int32_t track, bool& longGop);

    // Borrowed.
    CIndexer* GetIndexer() const { return m_indexer; }

protected:
    explicit CIndexerTraverser(CIndexer* indexer);
    ~CIndexerTraverser() override;

private:
    static int Locate(CMediaIndexer* indexer, double seconds, int32_t& position, int32_t& beyondEnd);
    static int ReadNext(CMediaIndexer* indexer, int32_t& position, CMediaSample*& sample);

    RObject<CIndexer> m_indexer;
    int32_t m_video[CContainer::MaxVideoMedia] = {};
    int32_t m_audio[CContainer::MaxAudioMedia] = {};
    int32_t m_subtitle[CContainer::MaxSubtitleMedia] = {};
};

} // namespace Quorvex::Vek
