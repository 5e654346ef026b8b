#pragma once

// The sample aspect ratios that AVC and HEVC video usability information
// name by index (aspect_ratio_idc 1..16); 255 is followed by an explicit
// ratio instead and 0 means unspecified.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct SampleAspectRatio {
    enum : uint8_t { Explicit = 255 };
    uint16_t width = 0; // 0:0 when unspecified
    uint16_t height = 0;

    // False for 17..254 (reserved); 0 gives 0:0.
    static bool FromIndex(uint32_t index, SampleAspectRatio& out);
};

} // namespace Quorvex::Vek
