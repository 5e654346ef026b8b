#include <vek/filters/audio/G711.h>

#include <array>
#include <bit>

namespace Quorvex::Vek::G711 {

namespace {

// Codes are sent with alternate bits inverted (A-law) or all bits inverted
// (mu-law), so that idle lines carry transitions.
constexpr uint8_t kALawToggle = 0x55;
constexpr uint8_t kSignBit = 0x80;
// mu-law adds this bias (in 14-bit units) before the segment search, so
// that every segment starts at a power of two.
constexpr int32_t kMuLawBias = 33;
constexpr int32_t kMuLawClip = 8159;

constexpr int16_t ALawValue(uint8_t code)
{
    const uint8_t bits = code ^ kALawToggle;
    const int32_t mantissa = bits & 0x0F;
    const int32_t segment = (bits >> 4) & 0x07;
    // In 16-bit units: segment 0 is linear with steps of 16, every later
    // segment doubles the step of the one before.
    int32_t magnitude = (mantissa << 4) + 8;
    if (segment > 0)
        magnitude = ((mantissa << 4) + 0x108) << (segment - 1);
    return int16_t((bits & kSignBit) ? magnitude : -magnitude);
}

constexpr int16_t MuLawValue(uint8_t code)
{
    const uint8_t bits = uint8_t(~code);
    const int32_t mantissa = bits & 0x0F;
    const int32_t segment = (bits >> 4) & 0x07;
    const int32_t biased = ((mantissa << 3) + 4 * kMuLawBias) << segment;
    const int32_t magnitude = biased - 4 * kMuLawBias;
    return int16_t((bits & kSignBit) ? -magnitude : magnitude);
}

template <int16_t (*Decode)(uint8_t)>
constexpr std::array<int16_t, 256> MakeTable()
{
    std::array<int16_t, 256> table{};
    for (int code = 0; code < 256; ++code)
        table[size_t(code)] = Decode(uint8_t(code));
    return table;
}

constexpr auto kALaw = MakeTable<ALawValue>();
constexpr auto kMuLaw = MakeTable<MuLawValue>();

} // namespace

int16_t DecodeALaw(uint8_t code)
{
    return kALaw[code];
}

int16_t DecodeMuLaw(uint8_t code)
{
    return kMuLaw[code];
}

uint8_t EncodeALaw(int16_t linear)
{
    int32_t value = linear >> 3; // 13 bits
    uint8_t sign = kSignBit;
    if (value < 0) {
        sign = 0;
        value = ~value;
    }
    // value is 0..4095: segment 0 covers 0..31 in steps of 2, segment s
    // covers [16 << s, 32 << s) in steps of 1 << s.
    const int32_t segment = value < 32 ? 0 : std::bit_width(uint32_t(value)) - 5;
    const int32_t mantissa = (value >> (segment == 0 ? 1 : segment)) & 0x0F;
    return uint8_t((sign | (segment << 4) | mantissa) ^ kALawToggle);
}

uint8_t EncodeMuLaw(int16_t linear)
{
    int32_t value = linear >> 2; // 14 bits
    uint8_t sign = 0;
    if (value < 0) {
        sign = kSignBit;
        value = -value;
    }
    if (value > kMuLawClip)
        value = kMuLawClip;
    value += kMuLawBias; // 33..8192
    const int32_t segment = std::bit_width(uint32_t(value)) - 6;
    if (segment > 7)
        return uint8_t(~(sign | 0x7F));
    const int32_t mantissa = (value >> (segment + 1)) & 0x0F;
    return uint8_t(~(sign | (segment << 4) | mantissa));
}

} // namespace Quorvex::Vek::G711
