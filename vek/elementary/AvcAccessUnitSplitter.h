#pragma once

// Groups the NAL units of an AVC stream into access units and describes the
// primary coded picture of each: the piece every AVC reader shares (raw
// start-code files, and later MP4, transport and Matroska streams, whose units
// arrive from their own framing).
//
// Fed each NAL unit in stream order with its position and first bytes, the
// splitter reports an access unit once the first unit of the next one is
// seen (or the stream ends). A new access unit begins at an access unit
// delimiter, a sequence or picture parameter set, an SEI unit or a unit of
// types 14 to 18 that follows the last slice of a picture, and at the first
// slice of a new primary picture: one whose frame_num, picture set, field
// or bottom flag, reference status (zero against non-zero), picture order
// count fields, IDR status or idr_pic_id differ from the slice before.
// Redundant slices never begin a picture. An access unit covers its units'
// bytes from the first unit's position to the next access unit's first
// unit (or the end of the stream).
//
// Per picture: the picture type is I when every primary slice is I or SI,
// B when any slice is B, else P. The picture is a key (decoding may start
// there) when it is IDR, or when it is all intra and carries a recovery
// point message whose recovery_frame_cnt is 0 (an open-GOP I picture whose
// output is whole at once). Pictures are ordered for output by their
// picture order count; output order restarts at an IDR picture and at one
// whose reference marking resets the memory (operation 5), whose count
// then reads 0. A picture's duration in fields comes from the pic_struct
// of its picture timing message when the sequence set states one, else 2
// for a frame and 1 for a field.
//
// The splitter keeps every parameter set it has been given (32 sequence
// and 256 picture sets) inside itself and allocates nothing: it is large
// (about 60 KB), so make it once per reader. Not thread-safe.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/AvcPictureOrderCounter.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSeiMessages.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>

namespace Quorvex::Vek {

class VEK_API AvcAccessUnitSplitter {
public:
    enum PictureType : uint8_t { IntraPicture, PredictedPicture, BidirectionalPicture };
    enum Structure : uint8_t { FramePicture, TopField, BottomField };

    struct AccessUnit {
        int64_t position = 0; // first byte of its first unit
        int64_t end = 0; // first byte of the next access unit
        PictureType pictureType = IntraPicture;
        Structure structure = FramePicture;
        bool idr = false;
        bool key = false;
        bool memoryManagementReset = false;
        // Output order restarts at this picture (IDR or memory reset).
        bool startsPeriod = false;
        int64_t pictureOrderCount = 0; // within its period
        // A bottom field, or a frame whose bottom field comes first in output.
        bool bottomFieldFirst = false;
        int32_t fields = 2; // shown for this many fields
        bool hasPicStruct = false;
        uint8_t picStruct = 0;
        uint32_t sequenceSetId = 0;
        uint32_t pictureSetId = 0;
        int32_t sliceCount = 0;
    };

    AvcAccessUnitSplitter();

    // Forgets everything, as before the first unit of a stream.
    void Reset();

    // Takes the next NAL unit: `position` of its first byte (of its start
    // code prefix, where the framing has one), `unit` its first `size`
    // bytes from the NAL header on (a slice needs its header, a parameter
    // set the whole unit). 1 and `completed` when the unit begins a new
    // access unit after one that held a picture; 0 when not; or
    // RESULT_FORMAT_ERROR (logged, naming the field and value) for a
    // parameter set or slice header that does not parse, a slice whose sets
    // have not been seen, or a forbidden bit set. Before the first picture
    // such units are garbage in front of the stream, passed over with a log
    // line, as are slices whose sets have not been seen yet (a stream cut
    // in the middle). A bad SEI unit is logged and passed over: it only
    // describes. After a failure the splitter stays usable, its picture
    // state as before the unit.
    int Feed(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed);
    // The stream ended at `end`: 1 and the last access unit, or 0 if no
    // picture is pending.
    int Finish(int64_t end, AccessUnit& completed);

    // The sequence or picture set with that id, or null when not seen.
    const AvcSequenceParameterSet* GetSequenceSet(uint32_t id) const;
    const AvcPictureParameterSet* GetPictureSet(uint32_t id) const;
    // Slices seen whose sets were missing before the first picture (a
    // stream cut in the middle): they are passed over, not refused.
    int64_t GetOrphanSlices() const { return m_orphanSlices; }

private:
    int FeedUnit(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed);
    int FeedParameterSet(const uint8_t* unit, size_t size, uint8_t type);
    int FeedSei(const uint8_t* unit, size_t size);
    int FeedSlice(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed);
    bool StartsNewPicture(const AvcSliceHeader& slice) const;
    int BeginPicture(const AvcSliceHeader& slice);
    void AddSlice(const AvcSliceHeader& slice);
    // Closes the open access unit at `end`: true when it held a picture.
    bool Close(int64_t end, AccessUnit& completed);
    void Open(int64_t position);

    AvcSequenceParameterSet m_sequenceSets[AvcSequenceParameterSet::MaxId + 1];
    AvcPictureParameterSet m_pictureSets[AvcPictureParameterSet::MaxId + 1];
    const AvcSequenceParameterSet* m_sequenceTable[AvcSequenceParameterSet::MaxId + 1];
    const AvcPictureParameterSet* m_pictureTable[AvcPictureParameterSet::MaxId + 1];
    const AvcSequenceParameterSet* m_activeSequenceSet = nullptr;
    AvcPictureOrderCounter m_counter;
    AvcSeiMessages m_messages; // of the open access unit
    AvcSliceHeader m_lastSlice; // of the open picture
    AccessUnit m_open;
    bool m_unitOpen = false; // a unit has been fed since the last close
    bool m_hasPicture = false; // the open access unit holds a slice
    bool m_seenPicture = false;
    int64_t m_orphanSlices = 0;
};

} // namespace Quorvex::Vek
