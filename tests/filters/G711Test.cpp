#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include <vek/filters/audio/G711.h>

#include "ExternalConverters.h"

using namespace Quorvex::Vek;

namespace {

// The G.711 tables in their own terms: a code is sign, 3-bit segment and
// 4-bit mantissa; A-law codes have the even bits inverted, mu-law codes all
// bits. A code stands for a decision interval of magnitudes: A-law in 13-bit
// units (one's complement for negatives), mu-law in biased 14-bit units
// (magnitude + 33). Decoding gives the interval's midpoint in 16 bits.
struct Interval {
    bool positive;
    int low;
    int high;
};

Interval IntervalOf(int code, bool aLaw)
{
    const int bits = aLaw ? code ^ 0x55 : ~code & 0xFF;
    const int segment = (bits >> 4) & 7;
    const int mantissa = bits & 15;
    const bool positive = ((bits & 0x80) != 0) == aLaw;
    if (!aLaw)
        return {positive, (16 + mantissa) << (segment + 1), ((17 + mantissa) << (segment + 1)) - 1};
    const int low = segment == 0 ? 2 * mantissa : (16 + mantissa) << segment;
    return {positive, low, low + (segment == 0 ? 2 : 1 << segment) - 1};
}

int ReferenceDecode(int code, bool aLaw)
{
    const Interval interval = IntervalOf(code, aLaw);
    const int sum = interval.low + interval.high + 1;
    const int magnitude = aLaw ? 8 * sum / 2 : 4 * (sum / 2 - 33);
    return interval.positive ? magnitude : -magnitude;
}

// The code whose interval holds the input, found by trying every code.
int ReferenceEncode(int linear, bool aLaw)
{
    const int value = aLaw ? linear >> 3 : linear >> 2;
    const bool positive = value >= 0;
    const int magnitude = aLaw ? (positive ? value : -value - 1) : std::min(std::abs(value), 8159) + 33;
    for (int code = 0; code < 256; ++code) {
        const Interval interval = IntervalOf(code, aLaw);
        // mu-law keeps two zero codes; the positive one stands for zero.
        if (interval.positive == positive && magnitude >= interval.low && magnitude <= interval.high)
            return code;
    }
    // Only mu-law's clipped 8192 lies past the last interval.
    return positive ? 0x80 : 0x00;
}

struct Law {
    const char* name;
    bool aLaw;
    int16_t (*decode)(uint8_t);
    uint8_t (*encode)(int16_t);
    const char* ffmpegName;
    const char* audioopFunction;
};

const Law Laws[] = {
    {"A-law", true, G711::DecodeALaw, G711::EncodeALaw, "alaw", "lin2alaw"},
    {"mu-law", false, G711::DecodeMuLaw, G711::EncodeMuLaw, "mulaw", "lin2ulaw"},
};

TEST(G711, DecodesEveryCodeToItsIntervalMidpoint)
{
    for (const Law& law : Laws)
        for (int code = 0; code < 256; ++code)
            ASSERT_EQ(law.decode(uint8_t(code)), ReferenceDecode(code, law.aLaw)) << law.name << " code " << code;
}

TEST(G711, EncodesEverySixteenBitValueToTheIntervalThatHoldsIt)
{
    for (const Law& law : Laws)
        for (int linear = -32768; linear <= 32767; ++linear)
            ASSERT_EQ(law.encode(int16_t(linear)), ReferenceEncode(linear, law.aLaw)) << law.name << " " << linear;
}

// audioop carries the classic reference coder; sox and ffmpeg round before
// companding, so they are oracles for decoding only.
TEST(G711, EncodingMatchesPythonAudioop)
{
    std::vector<uint8_t> input;
    for (int linear = -32768; linear <= 32767; ++linear) {
        input.push_back(uint8_t(linear));
        input.push_back(uint8_t(linear >> 8));
    }
    for (const Law& law : Laws) {
        const auto expected = VekTest::AudioopEncode(law.audioopFunction, input);
        if (!expected)
            GTEST_SKIP() << "python3 with audioop is not available";
        ASSERT_EQ(expected->size(), 65536u);
        for (int linear = -32768; linear <= 32767; ++linear)
            ASSERT_EQ(law.encode(int16_t(linear)), (*expected)[size_t(linear + 32768)]) << law.name << " " << linear;
    }
}

TEST(G711, DecodingMatchesFfmpeg)
{
    std::vector<uint8_t> codes(256);
    for (int code = 0; code < 256; ++code)
        codes[size_t(code)] = uint8_t(code);
    for (const Law& law : Laws) {
        const auto expected = VekTest::FfmpegConvert(law.ffmpegName, "s16le", codes);
        if (!expected)
            GTEST_SKIP() << "ffmpeg is not available";
        ASSERT_EQ(expected->size(), 512u);
        for (int code = 0; code < 256; ++code) {
            const int16_t value = int16_t((*expected)[size_t(2 * code)] | (*expected)[size_t(2 * code + 1)] << 8);
            EXPECT_EQ(law.decode(uint8_t(code)), value) << law.name << " code " << code;
        }
    }
}

} // namespace
