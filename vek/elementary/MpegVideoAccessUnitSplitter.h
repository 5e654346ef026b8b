#pragma once

// Groups the start-code units of an MPEG-1 or MPEG-2 video stream into
// access units, the way a decoder takes them in: the sequence header, its
// extensions, the GOP header and user data in front of a picture belong to
// that picture, and the picture runs to the first unit after its slices
// that is not a slice. Two field pictures of one frame (a top and a bottom
// field, one after the other) are one access unit; a sequence end code
// stays with the picture before it. Units before the first sequence header
// are passed over.
//
// The splitter is fed the units in stream order with the first bytes of
// each (enough for the headers: 256 suffice) and knows nothing of files,
// so the readers of raw streams and of the containers that carry MPEG
// video share it. The unit's bytes may end one zero early (a walk that
// gives the zero before 00 00 01 to the next unit): header units are read
// with one zero byte after them. Each completed access unit says what its picture is and
// where it goes in output order:
// - key: an I picture (its first field I) after a sequence or GOP header;
// - startsPeriod: a GOP header, or an I picture after a sequence header,
//   restarts output order (temporal references count from it);
// - displayKey: the temporal reference times two (plus one for a lone
//   second field), unwrapped past 1023 in a GOP that long;
// - undecodable: a B picture before the second reference picture after
//   the start of the stream, in a GOP that is not closed: it refers to a
//   picture before the stream's first, and a decoder drops it;
// - displayedFields: how many field periods it is shown for (two for a
//   frame, one more for repeat_first_field in an interlaced sequence; in a
//   progressive sequence repeat_first_field shows the frame twice, or
//   three times with top_field_first).
//
// No allocation; not thread-safe.
#include <cstddef>
#include <cstdint>

#include <vek/elementary/MpegVideoHeaders.h>

namespace Quorvex::Vek {

struct VEK_API MpegVideoAccessUnit {
    int64_t position = 0; // first byte of the 00 00 01 of its first unit
    int64_t size = 0; // bytes, to the next access unit or the end of the stream
    MpegPictureType type = MpegPictureType::I; // of the first field of a pair
    uint16_t temporalReference = 0;
    MpegPictureStructure structure = MpegPictureStructure::Frame; // the first field's, for fields
    int32_t pictureCount = 0; // 1, or 2 for a field pair
    bool topFieldFirst = false;
    bool repeatFirstField = false;
    bool progressiveFrame = true;
    bool sequenceHeader = false; // a sequence header is in the unit
    bool gopHeader = false;
    bool closedGop = false; // of that GOP header
    bool brokenLink = false;
    bool sequenceEnd = false;

    bool key = false;
    bool startsPeriod = false;
    bool undecodable = false;
    int64_t displayKey = 0;
    int32_t displayedFields = 2;
};

class VEK_API MpegVideoAccessUnitSplitter {
public:
    // The unit bytes a caller should keep for the headers.
    enum : int32_t { HeadBytes = 256 };

    MpegVideoAccessUnitSplitter() { Reset(); }

    // Starts over, as at the first byte of a stream.
    void Reset();

    // Feeds the next unit: `position` is the first byte of its 00 00 01,
    // `bytes` the `size` bytes after it (the start code value first; the
    // unit's start, or all of it). 1 when the unit completed an access unit
    // (GetCompleted, valid until the next call), 0 when not, -19017 for a
    // header that does not parse or an access unit of 2 GiB or more
    // (logged), -19001 for null bytes. When the unit that completed an
    // access unit does not parse, the access unit is handed out first and
    // the failure comes from every later call.
    int Feed(int64_t position, const uint8_t* bytes, size_t size);
    // The stream ends at `end`: 1 when that completed the last access unit.
    int Finish(int64_t end);

    const MpegVideoAccessUnit& GetCompleted() const { return m_completed; }
    // True once a sequence header and its extensions were read; GetSequence
    // is the latest one that a unit after it put into effect.
    bool HasSequence() const { return m_haveSequence; }
    const MpegVideoSequence& GetSequence() const { return m_sequence; }
    // True once a picture header after a sequence header was read.
    bool HasPicture() const { return m_completedCount > 0 || (m_haveOpen && m_open.pictureCount > 0); }
    // True once a picture coding extension was read (MPEG-2); the first one.
    bool HasFirstCoding() const { return m_haveFirstCoding; }
    const MpegVideoPictureCodingExtension& GetFirstCoding() const { return m_firstCoding; }
    // Access units completed so far.
    int64_t GetCompletedCount() const { return m_completedCount; }

private:
    enum class Phase : uint8_t {
        Headers, // units in front of a picture's slices
        Slices, // in a picture's slices
        AwaitField, // a first field's slices are done; its partner may come
        Ended, // a sequence end code closed the access unit
    };

    int FeedAwaitingField(int64_t position, uint8_t code, const uint8_t* payload, size_t size, bool& consumed);
    int ResolveCandidate(uint8_t code, const uint8_t* payload, size_t size);
    int FeedHeader(uint8_t code, const uint8_t* payload, size_t size);
    int FeedSequenceHeader(const uint8_t* payload, size_t size);
    int FeedExtension(const uint8_t* payload, size_t size);
    int FeedPicture(const uint8_t* payload, size_t size);
    int FeedGop(const uint8_t* payload, size_t size);
    void TakePicture(const MpegVideoPictureHeader& picture);
    void CommitSequence();
    // Ends the open access unit just before `position`; 1 when there was one.
    int Complete(int64_t position);
    void Open(int64_t position);
    void Describe(MpegVideoAccessUnit& unit);
    int32_t DisplayedFields(const MpegVideoAccessUnit& unit) const;
    int64_t UnwrapTemporalReference(uint16_t temporalReference);

    MpegVideoSequence m_sequence;
    MpegVideoSequence m_building; // a sequence header and the extensions after it so far
    MpegVideoPictureCodingExtension m_firstCoding;
    MpegVideoAccessUnit m_open;
    MpegVideoAccessUnit m_completed;
    Phase m_phase = Phase::Headers;
    bool m_haveSequence = false;
    bool m_buildingSequence = false;
    bool m_sawSequenceHeader = false;
    bool m_haveFirstCoding = false;
    bool m_afterSequenceHeader = false; // the last unit was a sequence header
    bool m_afterPicture = false; // the last unit was a picture header
    bool m_haveOpen = false;
    // A picture header after a lone first field: the second field, or a
    // new access unit when its coding extension says otherwise.
    bool m_candidateField = false;
    int64_t m_candidatePosition = 0;
    MpegVideoPictureHeader m_candidate;
    int64_t m_completedCount = 0;
    // Output order state.
    int32_t m_referencesSeen = 0;
    bool m_closedGop = false;
    int64_t m_temporalBase = 0;
    int64_t m_highestTemporal = -1;
    int64_t m_lastLoneField = -1; // temporal reference of the last lone field
    uint8_t m_header[HeadBytes + 1] = {}; // a header unit, read with a zero after it
    int m_deferredFailure = 0; // a header that failed after its unit completed an access unit
};

} // namespace Quorvex::Vek
