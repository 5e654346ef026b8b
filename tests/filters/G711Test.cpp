#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include <vek/filters/audio/G711.h>

#include "ExternalConverters.h"

using namespace Quorvex::Vek;

namespace {

// The G.711 tables in their own terms: a code is sign, 3-bit segment and
// 4-bit mantissa; A-law codes have the even bits inverted, mu-law codes all
// bits. Values are decision-interval midpoints in 13-bit (A-law) or 14-bit
// (mu-law) units, scaled to 16 bits.
struct Fields {
    bool positive;
    int segment;
    int mantissa;
};

Fields ALawFields(int code)
{
    const int bits = code ^ 0x55;
    return {(bits & 0x80) != 0, (bits >> 4) & 7, bits & 15};
}

Fields MuLawFields(int code)
{
    const int bits = ~code & 0xFF;
    return {(bits & 0x80) == 0, (bits >> 4) & 7, bits & 15};
}

// Decision interval [low, high] of a magnitude code: A-law in 13-bit units
// of the magnitude (one's complement for negatives), mu-law in biased
// 14-bit units (magnitude + 33).
void ALawInterval(int segment, int mantissa, int& low, int& high)
{
    const int step = segment == 0 ? 2 : 1 << segment;
    low = segment == 0 ? 2 * mantissa : (16 + mantissa) << segment;
    high = low + step - 1;
}

void MuLawInterval(int segment, int mantissa, int& low, int& high)
{
    low = (16 + mantissa) << (segment + 1);
    high = low + (2 << segment) - 1;
}

int ReferenceALawDecode(int code)
{
    const Fields f = ALawFields(code);
    int low, high;
    ALawInterval(f.segment, f.mantissa, low, high);
    const int magnitude = 8 * (low + high + 1) / 2;
    return f.positive ? magnitude : -magnitude;
}

int ReferenceMuLawDecode(int code)
{
    const Fields f = MuLawFields(code);
    int low, high;
    MuLawInterval(f.segment, f.mantissa, low, high);
    const int magnitude = 4 * ((low + high + 1) / 2 - 33);
    return f.positive ? magnitude : -magnitude;
}

// The code whose interval holds the input, found by trying every code.
int ReferenceEncode(int linear, bool aLaw)
{
    int magnitude;
    bool positive;
    if (aLaw) {
        const int value = linear >> 3;
        positive = value >= 0;
        magnitude = positive ? value : -value - 1;
    } else {
        const int value = linear >> 2;
        positive = value >= 0;
        magnitude = std::min(std::abs(value), 8159) + 33;
    }
    for (int code = 0; code < 256; ++code) {
        const Fields f = aLaw ? ALawFields(code) : MuLawFields(code);
        int low, high;
        (aLaw ? ALawInterval : MuLawInterval)(f.segment, f.mantissa, low, high);
        // mu-law keeps two zero codes; the positive one stands for zero.
        if (f.positive == positive && magnitude >= low && magnitude <= high)
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
    int (*reference)(int);
    const char* ffmpegName;
    const char* audioopFunction;
};

const Law Laws[] = {
    {"A-law", true, G711::DecodeALaw, G711::EncodeALaw, ReferenceALawDecode, "alaw", "lin2alaw"},
    {"mu-law", false, G711::DecodeMuLaw, G711::EncodeMuLaw, ReferenceMuLawDecode, "mulaw", "lin2ulaw"},
};

TEST(G711, DecodesEveryCodeToItsIntervalMidpoint)
{
    for (const Law& law : Laws) {
        SCOPED_TRACE(law.name);
        for (int code = 0; code < 256; ++code)
            ASSERT_EQ(law.decode(uint8_t(code)), law.reference(code)) << "code " << code;
    }
}

TEST(G711, EncodesEverySixteenBitValueToTheIntervalThatHoldsIt)
{
    for (const Law& law : Laws) {
        SCOPED_TRACE(law.name);
        for (int linear = -32768; linear <= 32767; ++linear)
            ASSERT_EQ(law.encode(int16_t(linear)), ReferenceEncode(linear, law.aLaw)) << "value " << linear;
    }
}

TEST(G711, EveryCodeSurvivesDecodeAndEncode)
{
    for (const Law& law : Laws) {
        SCOPED_TRACE(law.name);
        for (int code = 0; code < 256; ++code) {
            // mu-law's negative zero (0x7F) comes back as positive zero.
            const int expected = (!law.aLaw && code == 0x7F) ? 0xFF : code;
            EXPECT_EQ(law.encode(law.decode(uint8_t(code))), expected) << "code " << code;
        }
    }
}

std::vector<uint8_t> EverySixteenBitValue()
{
    std::vector<uint8_t> bytes;
    for (int linear = -32768; linear <= 32767; ++linear) {
        bytes.push_back(uint8_t(linear));
        bytes.push_back(uint8_t(linear >> 8));
    }
    return bytes;
}

// audioop carries the classic reference coder; sox and ffmpeg round before
// companding, so they are oracles for decoding only.
TEST(G711, EncodingMatchesPythonAudioop)
{
    const std::vector<uint8_t> input = EverySixteenBitValue();
    for (const Law& law : Laws) {
        SCOPED_TRACE(law.name);
        const auto expected = VekTest::AudioopEncode(law.audioopFunction, input);
        if (!expected)
            GTEST_SKIP() << "python3 with audioop is not available";
        ASSERT_EQ(expected->size(), 65536u);
        for (int linear = -32768; linear <= 32767; ++linear)
            ASSERT_EQ(law.encode(int16_t(linear)), (*expected)[size_t(linear + 32768)]) << "value " << linear;
    }
}

TEST(G711, DecodingMatchesFfmpeg)
{
    std::vector<uint8_t> codes(256);
    for (int code = 0; code < 256; ++code)
        codes[size_t(code)] = uint8_t(code);
    for (const Law& law : Laws) {
        SCOPED_TRACE(law.name);
        const auto expected = VekTest::FfmpegConvert(law.ffmpegName, "s16le", codes);
        if (!expected)
            GTEST_SKIP() << "ffmpeg is not available";
        ASSERT_EQ(expected->size(), 512u);
        for (int code = 0; code < 256; ++code) {
            const int16_t value = int16_t((*expected)[size_t(2 * code)] | (*expected)[size_t(2 * code + 1)] << 8);
            EXPECT_EQ(law.decode(uint8_t(code)), value) << "code " << code;
        }
    }
}

} // namespace
