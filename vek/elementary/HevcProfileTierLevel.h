#pragma once

// The profile, tier and level block shared by HEVC video and sequence
// parameter sets. The general part is kept (it is what describes the stream
// and what the decoder configuration record repeats); sub-layer parts are
// read past.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class BitReader;

struct VEK_API HevcProfileTierLevel {
    uint8_t profileSpace = 0;
    bool highTier = false;
    uint8_t profileIdc = 0;
    uint32_t compatibilityFlags = 0;
    // The 48 bits after the compatibility flags: progressive, interlaced,
    // non-packed and frame-only source flags first, as stored.
    uint64_t constraintFlags = 0;
    uint8_t levelIdc = 0; // 30 x the level number

    bool ProgressiveSource() const { return (constraintFlags >> 47 & 1) != 0; }
    bool InterlacedSource() const { return (constraintFlags >> 46 & 1) != 0; }

    // Reads the block for `maxSubLayersMinus1` (0..6) sub-layers; failures
    // are the reader's sticky error.
    static void Read(BitReader& bits, uint32_t maxSubLayersMinus1, HevcProfileTierLevel& out);
};

} // namespace Quorvex::Vek
