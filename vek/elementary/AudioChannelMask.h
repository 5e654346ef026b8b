#pragma once

// Speaker sets of elementary audio headers as WAVE channel masks: bit n is
// the speaker position n + 1 of CAudioProperties, so a reader can hand the
// positions on unchanged.
#include <cstdint>

namespace Quorvex::Vek::ChannelMask {

enum : uint32_t {
    FrontLeft = 1u << 0,
    FrontRight = 1u << 1,
    FrontCenter = 1u << 2,
    LowFrequency = 1u << 3,
    BackLeft = 1u << 4,
    BackRight = 1u << 5,
    FrontLeftOfCenter = 1u << 6,
    FrontRightOfCenter = 1u << 7,
    BackCenter = 1u << 8,
    SideLeft = 1u << 9,
    SideRight = 1u << 10,
    TopCenter = 1u << 11,
    TopFrontLeft = 1u << 12,
    TopFrontCenter = 1u << 13,
    TopFrontRight = 1u << 14,
    TopBackLeft = 1u << 15,
    TopBackCenter = 1u << 16,
    TopBackRight = 1u << 17,
    Stereo = FrontLeft | FrontRight,
};

} // namespace Quorvex::Vek::ChannelMask
