#pragma once

// An AVC slice header (NAL unit types 1 and 5) up to its reference
// marking: what picture typing, access-unit boundaries and picture order
// counting need. The reference list changes and prediction weights are
// read past; the marking is read for the one operation that matters to
// output order, the memory-management reset (operation 5), which restarts
// picture order counting. Fields after the marking are not read.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct AvcSequenceParameterSet;
struct AvcPictureParameterSet;

struct VEK_API AvcSliceHeader {
    enum SliceType : uint8_t { P = 0, B = 1, I = 2, SP = 3, SI = 4 };

    uint8_t nalType = 0;
    uint8_t nalRefIdc = 0;
    uint32_t firstMbInSlice = 0;
    // 0..4; the coded value 5..9 (every slice of the picture has this
    // type) sets allSlicesSameType.
    uint8_t sliceType = 0;
    bool allSlicesSameType = false;
    uint32_t pictureSetId = 0;
    uint8_t colourPlaneId = 0;
    uint32_t frameNum = 0;
    bool fieldPic = false;
    bool bottomField = false;
    uint32_t idrPicId = 0;
    uint32_t picOrderCntLsb = 0;
    int32_t deltaPicOrderCntBottom = 0;
    int32_t deltaPicOrderCnt[2] = {};
    uint32_t redundantPicCnt = 0;
    // The marking holds memory-management operation 5.
    bool memoryManagementReset = false;

    bool IsIdr() const { return nalType == 5; }
    bool IsReference() const { return nalRefIdc != 0; }
    bool IsIntra() const { return sliceType == I || sliceType == SI; }

    // Parses the start of a slice NAL unit (header byte included). The
    // tables hold 256 picture sets and 32 sequence sets (null where not
    // seen). 0, or RESULT_FORMAT_ERROR with a log line for a truncated
    // header, a value out of range or a parameter set not seen.
    static int Parse(const uint8_t* unit, size_t size, const AvcPictureParameterSet* const* pictureSets,
                     const AvcSequenceParameterSet* const* sequenceSets, AvcSliceHeader& out);
};

} // namespace Quorvex::Vek
