#pragma once

// The start of an HEVC picture parameter set (NAL unit type 34): the fields
// that decide the layout of slice segment headers. Reading stops before
// the tile layout.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct VEK_API HevcPictureParameterSet {
    enum : uint32_t { MaxId = 63 };

    uint32_t id = 0;
    uint32_t sequenceSetId = 0;
    bool dependentSliceSegmentsEnabled = false;
    bool outputFlagPresent = false;
    uint32_t numExtraSliceHeaderBits = 0;
    bool signDataHiding = false;
    bool cabacInitPresent = false;
    uint32_t numRefIdxL0DefaultActive = 1;
    uint32_t numRefIdxL1DefaultActive = 1;
    int32_t initQp = 26;
    bool constrainedIntraPred = false;
    bool transformSkipEnabled = false;
    bool cuQpDeltaEnabled = false;
    uint32_t diffCuQpDeltaDepth = 0;
    int32_t cbQpOffset = 0;
    int32_t crQpOffset = 0;
    bool sliceChromaQpOffsetsPresent = false;
    bool weightedPred = false;
    bool weightedBipred = false;
    bool transquantBypassEnabled = false;
    bool tilesEnabled = false;
    bool entropyCodingSync = false;

    // Parses the unit, header included. 0, or RESULT_FORMAT_ERROR with a
    // log line; `out` is written only on success.
    static int Parse(const uint8_t* unit, size_t size, HevcPictureParameterSet& out);
};

} // namespace Quorvex::Vek
