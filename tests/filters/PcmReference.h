#pragma once

// The value rules of PcmLayout.h written out apart from the library's
// codecs, in long double, for checking conversions: a sample's value as an
// exact fraction of full scale, and the bytes a value must become. The G.711
// functions are checked on their own (G711Test.cpp).
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include <vek/core/Result.h>
#include <vek/filters/audio/G711.h>
#include <vek/filters/audio/PcmLayout.h>

namespace VekTest {

using Quorvex::Vek::ByteOrder;
using Quorvex::Vek::PcmLayout;
namespace G711 = Quorvex::Vek::G711;

inline PcmLayout Layout(uint32_t format)
{
    PcmLayout layout;
    EXPECT_EQ(PcmLayout::FromFormat(format, layout), Quorvex::Vek::RESULT_OK);
    return layout;
}

inline long double Power(int exponent)
{
    return std::ldexp(1.0L, exponent);
}

inline uint64_t ReadRaw(const PcmLayout& layout, const uint8_t* p)
{
    uint64_t raw = 0;
    for (int i = 0; i < layout.bytes; ++i)
        raw = raw << 8 | p[layout.order == ByteOrder::BigEndian ? i : layout.bytes - 1 - i];
    return raw;
}

inline void WriteRaw(const PcmLayout& layout, uint64_t raw, uint8_t* p)
{
    for (int i = 0; i < layout.bytes; ++i)
        p[layout.order == ByteOrder::BigEndian ? layout.bytes - 1 - i : i] = uint8_t(raw >> (8 * i));
}

// An integer layout's value in units of its least significant bit.
inline int64_t IntegerValue(const PcmLayout& layout, const uint8_t* p)
{
    const uint64_t raw = ReadRaw(layout, p);
    const int width = 8 * layout.bytes;
    if (layout.coding == PcmLayout::Coding::Unsigned)
        return int64_t(raw) - (int64_t(1) << (layout.bits - 1));
    const int64_t wide = raw >> (width - 1) ? int64_t(raw) - (int64_t(1) << width) : int64_t(raw);
    return int64_t(std::floor((long double)wide / Power(width - layout.bits)));
}

inline void WriteInteger(const PcmLayout& layout, int64_t value, uint8_t* p)
{
    const int width = 8 * layout.bytes;
    if (layout.coding == PcmLayout::Coding::Unsigned)
        return WriteRaw(layout, uint64_t(value + (int64_t(1) << (layout.bits - 1))), p);
    WriteRaw(layout, (uint64_t(value) << (width - layout.bits)) & (~uint64_t(0) >> (64 - width)), p);
}

inline long double ReferenceValue(const PcmLayout& layout, const uint8_t* p)
{
    switch (layout.coding) {
    case PcmLayout::Coding::Signed:
    case PcmLayout::Coding::Unsigned: return (long double)IntegerValue(layout, p) / Power(layout.bits - 1);
    case PcmLayout::Coding::Float:
        return layout.bytes == 4 ? (long double)std::bit_cast<float>(uint32_t(ReadRaw(layout, p)))
                                 : (long double)std::bit_cast<double>(ReadRaw(layout, p));
    case PcmLayout::Coding::ALaw: return G711::DecodeALaw(*p) / Power(15);
    case PcmLayout::Coding::MuLaw: return G711::DecodeMuLaw(*p) / Power(15);
    }
    return 0;
}

// Scaled by 2^(bits-1), clipped, rounded to nearest with ties to even; NaN is 0.
inline int64_t ReferenceQuantise(long double value, int bits)
{
    if (std::isnan(value))
        return 0;
    const long double scaled = value * Power(bits - 1);
    const long double low = -Power(bits - 1);
    const long double high = Power(bits - 1) - 1;
    if (scaled <= low)
        return int64_t(low);
    if (scaled >= high)
        return int64_t(high);
    const long double whole = std::floor(scaled);
    int64_t rounded = int64_t(whole);
    const long double fraction = scaled - whole;
    if (fraction > 0.5L || (fraction == 0.5L && (rounded & 1)))
        ++rounded;
    return rounded;
}

inline void ReferenceWrite(const PcmLayout& layout, long double value, uint8_t* p)
{
    switch (layout.coding) {
    case PcmLayout::Coding::Signed:
    case PcmLayout::Coding::Unsigned: return WriteInteger(layout, ReferenceQuantise(value, layout.bits), p);
    case PcmLayout::Coding::Float:
        if (layout.bytes == 4)
            return WriteRaw(layout, std::bit_cast<uint32_t>(float(double(value))), p);
        return WriteRaw(layout, std::bit_cast<uint64_t>(double(value)), p);
    case PcmLayout::Coding::ALaw: *p = G711::EncodeALaw(int16_t(ReferenceQuantise(value, 16))); return;
    case PcmLayout::Coding::MuLaw: *p = G711::EncodeMuLaw(int16_t(ReferenceQuantise(value, 16))); return;
    }
}

// Equal bytes, or both NaN.
inline bool SameSample(const PcmLayout& layout, const uint8_t* a, const uint8_t* b)
{
    if (layout.coding == PcmLayout::Coding::Float && std::isnan(ReferenceValue(layout, a)) &&
        std::isnan(ReferenceValue(layout, b)))
        return true;
    return std::memcmp(a, b, size_t(layout.bytes)) == 0;
}

// Frames converted by the rules: output channel c takes input channel
// sources[c], or is silent for a negative source. The same layout is copied
// as it is (mu-law's negative zero and the low bits of a 20-bit sample
// stay).
inline std::vector<uint8_t> ReferenceConvert(const PcmLayout& in, int inChannels, const PcmLayout& out,
                                             const std::vector<int>& sources, const uint8_t* input, size_t frames)
{
    const size_t outChannels = sources.size();
    std::vector<uint8_t> output(frames * outChannels * size_t(out.bytes));
    for (size_t frame = 0; frame < frames; ++frame) {
        for (size_t channel = 0; channel < outChannels; ++channel) {
            uint8_t* to = output.data() + (frame * outChannels + channel) * size_t(out.bytes);
            if (sources[channel] < 0) {
                ReferenceWrite(out, 0.0L, to);
                continue;
            }
            const uint8_t* from = input + (frame * size_t(inChannels) + size_t(sources[channel])) * size_t(in.bytes);
            if (in.format == out.format)
                std::memcpy(to, from, size_t(in.bytes));
            else
                ReferenceWrite(out, ReferenceValue(in, from), to);
        }
    }
    return output;
}

// Index pairing: channel c from channel c while the input has it.
inline std::vector<int> ByIndex(int inChannels, int outChannels)
{
    std::vector<int> sources;
    for (int channel = 0; channel < outChannels; ++channel)
        sources.push_back(channel < inChannels ? channel : -1);
    return sources;
}

} // namespace VekTest
