#pragma once

// Groups the NAL units of an HEVC stream into access units (one coded
// picture with the parameter sets, SEI and delimiters that travel with it)
// and says what each picture is. It is fed every unit in stream order with
// its position and first bytes, so any walk can use it: Annex B files,
// transport packets, MP4 samples.
//
// After a picture, a new access unit begins at the first access unit
// delimiter, parameter set, prefix SEI, reserved type 41..44 or 48..55, or
// slice segment that is the first of its picture. Suffix SEI, end of
// sequence, end of bitstream, filler data and every other unit stay with
// the picture before them. Every access unit holds a picture: units before
// the first picture (the parameter sets at the start of a file) join the
// first access unit, and units after the last picture join the last one,
// so an access unit is only known complete when the next picture's first
// slice segment arrives (or the stream ends).
//
// What a picture is:
// - type: I when every slice is I, B when any slice is B, P otherwise;
// - key: an intra random access point (IDR, CRA or BLA picture);
// - newSequence: a random access point where decoding (re)starts (every
//   IDR and BLA, the first picture, the first after an end of sequence):
//   its picture order count starts afresh and every earlier picture is
//   output before it;
// - skipped: a RASL picture that follows such a start: it refers to
//   pictures never decoded, so a decoder drops it;
// - dropsWaiting: such a start empties the decoded picture buffer without
//   output (a CRA always, an IDR or BLA by no_output_of_prior_pics_flag);
// - picOrderCount: PicOrderCntVal, the output order within a sequence;
// - picStruct: pic_struct of the picture timing SEI when the sequence
//   says one is sent (frame_field_info_present_flag), else -1.
//
// Parameter sets are kept in tables of the splitter's own (16 video, 16
// sequence, 64 picture sets); a set with an id already seen replaces it.
// Nothing is allocated after construction. Not thread-safe.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/HevcPictureOrderCounter.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcSliceHeader.h>
#include <vek/elementary/HevcVideoParameterSet.h>

namespace Quorvex::Vek {

class VEK_API HevcAccessUnitSplitter {
public:
    enum : uint32_t { VideoSets = 16, SequenceSets = 16, PictureSets = 64 };

    struct AccessUnit {
        int64_t position = 0; // first byte of the first unit's prefix
        int64_t size = 0; // to the next access unit (or the end)
        bool hasPicture = false;
        uint8_t pictureType = HevcSliceHeader::I;
        uint8_t nalType = 0; // of the first slice segment
        uint8_t temporalId = 0;
        bool key = false;
        bool newSequence = false;
        bool skipped = false;
        bool dropsWaiting = false; // NoOutputOfPriorPicsFlag of a new sequence's first picture
        bool picOutput = true;
        int32_t picStruct = -1;
        int64_t picOrderCount = 0;
        uint32_t sequenceSetId = 0;
        int32_t sliceSegments = 0;
    };

    HevcAccessUnitSplitter();

    // Forgets every unit and parameter set.
    void Reset();

    // Feeds the unit whose prefix begins at `position`: `unit` holds its
    // first `size` bytes from the NAL unit header on (enough for the
    // parameter sets and a slice segment header; a longer unit need not be
    // given whole). Returns 0 when the unit joined the open access unit, 1
    // when it began a new one and `completed` is the access unit it closed,
    // or RESULT_FORMAT_ERROR (logged) for a parameter set or slice header
    // that cannot be read, a unit without a valid header, or positions that
    // go backwards. Units of layers other than the base layer are carried
    // along without being read.
    int Feed(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed);

    // The stream ended at `end` (one past its last byte): 1 and the last
    // access unit in `completed`, 0 when no picture is open,
    // RESULT_FORMAT_ERROR when `end` lies before the open access unit.
    int Finish(int64_t end, AccessUnit& completed);

    // The sets seen so far by id; null for one not seen or out of range.
    const HevcVideoParameterSet* GetVideoSet(uint32_t id) const;
    const HevcSequenceParameterSet* GetSequenceSet(uint32_t id) const;
    const HevcPictureParameterSet* GetPictureSet(uint32_t id) const;
    // The access unit being gathered once its picture's first slice
    // segment has been fed; null before.
    const AccessUnit* GetOpenPicture() const { return m_haveOpen && m_open.hasPicture ? &m_open : nullptr; }
    // Access units completed so far.
    int64_t GetCompletedCount() const { return m_completedCount; }

private:
    int ReadParameterSet(uint8_t type, const uint8_t* unit, size_t size);
    int ReadSlice(const uint8_t* unit, size_t size);
    void ReadPictureTiming(const uint8_t* unit, size_t size);
    void StartPicture(const HevcSliceHeader& slice, const HevcSequenceParameterSet& sps);
    void Close(int64_t end, AccessUnit& completed);
    static bool MayBeginAccessUnit(uint8_t type);

    HevcVideoParameterSet m_videoSets[VideoSets];
    HevcSequenceParameterSet m_sequenceSets[SequenceSets];
    HevcPictureParameterSet m_pictureSets[PictureSets];
    const HevcVideoParameterSet* m_videoSeen[VideoSets] = {};
    const HevcSequenceParameterSet* m_sequenceSeen[SequenceSets] = {};
    const HevcPictureParameterSet* m_pictureSeen[PictureSets] = {};
    HevcPictureOrderCounter m_counter;
    AccessUnit m_open;
    bool m_haveOpen = false;
    int64_t m_boundary = -1; // where the access unit after the open one begins, once known
    int64_t m_lastPosition = 0;
    int64_t m_completedCount = 0;
    int32_t m_pendingPicStruct = -1; // from a prefix SEI before the next picture's slices
};

} // namespace Quorvex::Vek
