#pragma once

// The start of an HEVC video parameter set (NAL unit type 32): its id, the
// sub-layer count and the general profile, tier and level.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/HevcProfileTierLevel.h>

namespace Quorvex::Vek {

struct VEK_API HevcVideoParameterSet {
    uint8_t id = 0;
    uint8_t maxLayers = 1;
    uint8_t maxSubLayers = 1; // 1..7
    bool temporalIdNesting = false;
    HevcProfileTierLevel profileTierLevel;

    // Parses the unit, header included. 0, or RESULT_FORMAT_ERROR with a
    // log line; `out` is written only on success.
    static int Parse(const uint8_t* unit, size_t size, HevcVideoParameterSet& out);
};

} // namespace Quorvex::Vek
