#pragma once

// The start of an HEVC slice segment header: what access-unit boundaries,
// picture typing and picture order counting need. Reading stops after
// slice_pic_order_cnt_lsb. A dependent slice segment codes neither type nor
// order count: it takes them from the segment before it, which the caller
// holds (`dependent` is set and those fields stay 0).
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct HevcSequenceParameterSet;
struct HevcPictureParameterSet;

struct VEK_API HevcSliceHeader {
    enum SliceType : uint8_t { B = 0, P = 1, I = 2 };

    uint8_t nalType = 0;
    uint8_t temporalId = 0;
    uint8_t layerId = 0;
    bool firstSliceSegmentInPic = false;
    bool noOutputOfPriorPics = false;
    uint32_t pictureSetId = 0;
    bool dependent = false;
    uint32_t segmentAddress = 0;
    uint8_t sliceType = 0;
    bool picOutput = true;
    uint8_t colourPlaneId = 0;
    uint32_t picOrderCntLsb = 0; // 0 for IDR pictures

    // Parses the start of a slice NAL unit (header included). The tables
    // hold 64 picture sets and 16 sequence sets (null where not seen).
    // 0, or RESULT_FORMAT_ERROR with a log line.
    static int Parse(const uint8_t* unit, size_t size, const HevcPictureParameterSet* const* pictureSets,
                     const HevcSequenceParameterSet* const* sequenceSets, HevcSliceHeader& out);
};

} // namespace Quorvex::Vek
