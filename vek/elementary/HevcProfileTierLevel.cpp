#include <vek/elementary/HevcProfileTierLevel.h>

#include <vek/elementary/BitReader.h>

namespace Quorvex::Vek {

void HevcProfileTierLevel::Read(BitReader& bits, uint32_t maxSubLayersMinus1, HevcProfileTierLevel& out)
{
    out.profileSpace = uint8_t(bits.ReadBits(2));
    out.highTier = bits.ReadFlag();
    out.profileIdc = uint8_t(bits.ReadBits(5));
    out.compatibilityFlags = bits.ReadBits(32);
    const uint64_t high = bits.ReadBits(16);
    out.constraintFlags = high << 32 | bits.ReadBits(32);
    out.levelIdc = uint8_t(bits.ReadBits(8));

    bool profilePresent[8] = {};
    bool levelPresent[8] = {};
    for (uint32_t i = 0; i < maxSubLayersMinus1; ++i) {
        profilePresent[i] = bits.ReadFlag();
        levelPresent[i] = bits.ReadFlag();
    }
    if (maxSubLayersMinus1 > 0)
        bits.SkipBits(2 * (8 - uint64_t(maxSubLayersMinus1))); // reserved_zero_2bits
    for (uint32_t i = 0; i < maxSubLayersMinus1; ++i) {
        if (profilePresent[i])
            bits.SkipBits(88);
        if (levelPresent[i])
            bits.SkipBits(8);
    }
}

} // namespace Quorvex::Vek
