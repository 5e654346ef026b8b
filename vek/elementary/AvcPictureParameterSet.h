#pragma once

// An AVC picture parameter set (NAL unit type 8): the fields slice headers
// and access-unit grouping depend on. Slice group maps are read past, not
// kept. Parsing allocates nothing.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct AvcSequenceParameterSet;

struct VEK_API AvcPictureParameterSet {
    enum : uint32_t { MaxId = 255 };

    uint32_t id = 0;
    uint32_t sequenceSetId = 0;
    bool entropyCodingCabac = false;
    bool bottomFieldPicOrderInFramePresent = false;
    uint32_t numSliceGroups = 1;
    uint32_t numRefIdxL0DefaultActive = 1;
    uint32_t numRefIdxL1DefaultActive = 1;
    bool weightedPred = false;
    uint8_t weightedBipredIdc = 0;
    int32_t picInitQp = 26;
    int32_t picInitQs = 26;
    int32_t chromaQpIndexOffset = 0;
    bool deblockingFilterControlPresent = false;
    bool constrainedIntraPred = false;
    bool redundantPicCntPresent = false;
    bool transform8x8Mode = false;
    bool scalingMatrixPresent = false;
    int32_t secondChromaQpIndexOffset = 0;

    // Parses the whole unit, NAL header included. `sequenceSets` (32 entries,
    // null where none has been seen, or null altogether) supplies the chroma
    // format that decides how many scaling lists the optional tail holds;
    // without it 4:2:0 is assumed. 0 or RESULT_FORMAT_ERROR with a log line;
    // `out` is written only on success.
    static int Parse(const uint8_t* unit, size_t size, const AvcSequenceParameterSet* const* sequenceSets,
                     AvcPictureParameterSet& out);
};

} // namespace Quorvex::Vek
