#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <support/LogCapture.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/G711.h>
#include <vek/filters/audio/PcmConversion.h>
#include <vek/media/AudioFormat.h>

#include "ExternalConverters.h"
#include "PcmReference.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Bytes = std::vector<uint8_t>;
using Coding = PcmLayout::Coding;

std::vector<PcmLayout> AllLayouts()
{
    std::vector<PcmLayout> layouts;
    for (size_t i = 0; i < PcmLayout::GetFormatCount(); ++i)
        layouts.push_back(Layout(PcmLayout::GetFormats()[i]));
    return layouts;
}

std::string Name(const PcmLayout& layout)
{
    return AudioFormat::GetName(layout.format);
}

// ---------------------------------------------------------------- inputs

// Output depths whose rounding ties the inputs below should reach.
const int Depths[] = {8, 16, 20, 24, 32};

std::vector<long double> InterestingFractions()
{
    std::vector<long double> values = {0.0L,
                                       -0.0L,
                                       1.0L,
                                       -1.0L,
                                       0.5L,
                                       -0.5L,
                                       1.0L + 1e-6L,
                                       -1.0L - 1e-6L,
                                       2.0L,
                                       -3.5L,
                                       1e-30L,
                                       -1e-30L,
                                       1e300L,
                                       std::numeric_limits<long double>::infinity(),
                                       -std::numeric_limits<long double>::infinity(),
                                       std::numeric_limits<long double>::quiet_NaN()};
    for (int bits : Depths) {
        const long double lsb = 1 / Power(bits - 1);
        const long double top = Power(bits - 1) - 1;
        for (long double units :
             {0.5L, 1.5L, 2.5L, -0.5L, -1.5L, -2.5L, top - 0.5L, top + 0.5L, -top - 0.5L, -top - 1.5L, 0.49L, 0.51L})
            values.push_back(units * lsb);
    }
    std::mt19937 random(11);
    std::uniform_real_distribution<double> spread(-1.1, 1.1);
    for (int i = 0; i < 200; ++i)
        values.push_back(spread(random));
    return values;
}

// Input samples of a layout: every code for the 8-bit ones; edges, rounding
// ties for every narrower depth and random samples for the others.
Bytes InputSamples(const PcmLayout& layout)
{
    Bytes bytes;
    auto append = [&](auto write) {
        bytes.resize(bytes.size() + size_t(layout.bytes));
        write(bytes.data() + bytes.size() - size_t(layout.bytes));
    };
    if (layout.coding == Coding::Float) {
        for (long double value : InterestingFractions())
            append([&](uint8_t* p) { ReferenceWrite(layout, value, p); });
        return bytes;
    }
    if (layout.bytes == 1) {
        for (int code = 0; code < 256; ++code)
            append([&](uint8_t* p) { *p = uint8_t(code); });
        return bytes;
    }
    const int64_t top = (int64_t(1) << (layout.bits - 1)) - 1;
    for (int64_t value : {int64_t(0), int64_t(1), int64_t(-1), top, top - 1, -top, -top - 1})
        append([&](uint8_t* p) { WriteInteger(layout, value, p); });
    for (int bits : Depths) {
        if (bits >= layout.bits)
            continue;
        const int64_t half = int64_t(1) << (layout.bits - bits - 1);
        for (int64_t odd : {1, 3, 5, -1, -3, -5})
            append([&](uint8_t* p) { WriteInteger(layout, odd * half, p); });
        append([&](uint8_t* p) { WriteInteger(layout, top - half + 1, p); });
        append([&](uint8_t* p) { WriteInteger(layout, -top - 1 + half, p); });
    }
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i)
        append([&](uint8_t* p) {
            for (int b = 0; b < layout.bytes; ++b)
                p[b] = uint8_t(random());
        });
    return bytes;
}

// ---------------------------------------------------------------- running

int RunConversion(const PcmLayout& in, int32_t inChannels, const PcmLayout& out, int32_t outChannels,
                  const Bytes& input, Bytes& output, bool* direct = nullptr, bool vectorKernels = true)
{
    AudioChannelMap map;
    PcmConversion conversion;
    int result = map.BuildByIndex(inChannels, outChannels);
    if (result >= 0)
        result = conversion.Prepare(in, out, map, vectorKernels);
    if (result < 0)
        return result;
    const int64_t frames = int64_t(input.size()) / conversion.GetInputFrameBytes();
    output.assign(size_t(frames * conversion.GetOutputFrameBytes()), 0xEE);
    if (direct)
        *direct = conversion.IsDirect();
    return conversion.Convert(input.data(), int64_t(input.size()), output.data(), int64_t(output.size()), frames);
}

Bytes Convert(uint32_t from, uint32_t to, const Bytes& input)
{
    Bytes output;
    EXPECT_EQ(RunConversion(Layout(from), 1, Layout(to), 1, input, output), RESULT_OK);
    return output;
}

// Output channel c of frame f comes from input channel c, or is silence.
void ExpectMatchesReference(const PcmLayout& in, int32_t inChannels, const PcmLayout& out, int32_t outChannels,
                            const Bytes& input, const Bytes& output)
{
    const size_t frames = input.size() / size_t(in.bytes * inChannels);
    const Bytes expected =
        ReferenceConvert(in, inChannels, out, ByIndex(inChannels, outChannels), input.data(), frames);
    ASSERT_EQ(output.size(), expected.size());
    for (size_t at = 0; at < output.size(); at += size_t(out.bytes))
        ASSERT_TRUE(SameSample(out, output.data() + at, expected.data() + at))
            << "sample " << at / size_t(out.bytes) << " of " << output.size() / size_t(out.bytes);
}

// ---------------------------------------------------------------- tests

TEST(PcmConversion, EveryLayoutToEveryLayoutMatchesTheReference)
{
    for (const PcmLayout& in : AllLayouts()) {
        const Bytes all = InputSamples(in);
        for (const PcmLayout& out : AllLayouts()) {
            SCOPED_TRACE(Name(in) + " -> " + Name(out));
            // Short runs reach the tails of the vector loops, the blocks
            // that need room past them, and the last 24-bit sample, which
            // must be read without the wide load; with and without the
            // vector kernels.
            const size_t counts[] = {1, 7, 8, 9, 10, 11, 17, 18, 19, 33, all.size() / size_t(in.bytes)};
            for (bool vector : {true, false}) {
                for (size_t samples : counts) {
                    SCOPED_TRACE(std::to_string(samples) + (vector ? " samples, vector" : " samples, portable"));
                    const Bytes input(all.begin(), all.begin() + std::ptrdiff_t(samples * size_t(in.bytes)));
                    Bytes output;
                    ASSERT_EQ(RunConversion(in, 1, out, 1, input, output, nullptr, vector), RESULT_OK);
                    ExpectMatchesReference(in, 1, out, 1, input, output);
                }
            }
        }
    }
}

TEST(PcmConversion, ChannelCountChangesMatchTheReference)
{
    const std::pair<int32_t, int32_t> counts[] = {{2, 3}, {3, 2}, {1, 2}, {5, 1}};
    for (const PcmLayout& in : AllLayouts()) {
        Bytes input = InputSamples(in);
        for (const PcmLayout& out : AllLayouts()) {
            for (auto [inChannels, outChannels] : counts) {
                SCOPED_TRACE(Name(in) + " -> " + Name(out) + ", " + std::to_string(inChannels) + " -> " +
                             std::to_string(outChannels) + " channels");
                const size_t frameBytes = size_t(in.bytes * inChannels);
                const Bytes frames(input.begin(),
                                   input.begin() + std::ptrdiff_t(input.size() / frameBytes * frameBytes));
                Bytes output;
                bool direct = true;
                ASSERT_EQ(RunConversion(in, inChannels, out, outChannels, frames, output, &direct), RESULT_OK);
                EXPECT_FALSE(direct);
                ExpectMatchesReference(in, inChannels, out, outChannels, frames, output);
            }
        }
    }
}

// True when every value of `narrow` is a value of `wide`.
bool HoldsEveryValue(const PcmLayout& wide, const PcmLayout& narrow)
{
    if (wide.IsInteger())
        return narrow.IsInteger() && wide.bits >= narrow.bits;
    if (wide.coding != Coding::Float)
        return false;
    if (wide.bytes == 8)
        return true;
    return narrow.IsInteger() ? narrow.bits <= 24 : narrow.bytes == 4;
}

TEST(PcmConversion, WideningThenNarrowingIsExact)
{
    for (const PcmLayout& narrow : AllLayouts()) {
        if (narrow.IsCompanded())
            continue;
        // Written through the reference so that 20-bit samples are valid.
        Bytes input;
        const Bytes raw = InputSamples(narrow);
        input.resize(raw.size());
        for (size_t at = 0; at < raw.size(); at += size_t(narrow.bytes))
            ReferenceWrite(narrow, ReferenceValue(narrow, raw.data() + at), input.data() + at);
        for (const PcmLayout& wide : AllLayouts()) {
            const bool holdsEveryValue = HoldsEveryValue(wide, narrow);
            if (!holdsEveryValue)
                continue;
            SCOPED_TRACE(Name(narrow) + " -> " + Name(wide) + " -> back");
            const Bytes back = Convert(wide.format, narrow.format, Convert(narrow.format, wide.format, input));
            ASSERT_EQ(back.size(), input.size());
            for (size_t at = 0; at < input.size(); at += size_t(narrow.bytes))
                ASSERT_TRUE(SameSample(narrow, back.data() + at, input.data() + at)) << "sample " << at / narrow.bytes;
        }
    }
}

TEST(PcmConversion, CompandedCodesSurviveSixteenBitLinear)
{
    Bytes codes(256);
    for (int code = 0; code < 256; ++code)
        codes[size_t(code)] = uint8_t(code);
    for (uint32_t law : {AudioFormat::aLaw, AudioFormat::muLaw}) {
        for (uint32_t linear : {AudioFormat::Int16L, AudioFormat::Int24B, AudioFormat::Float32L}) {
            SCOPED_TRACE(std::string(AudioFormat::GetName(law)) + " via " + AudioFormat::GetName(linear));
            const Bytes back = Convert(linear, law, Convert(law, linear, codes));
            for (int code = 0; code < 256; ++code) {
                const int expected = (law == AudioFormat::muLaw && code == 0x7F) ? 0xFF : code; // -0 is +0
                EXPECT_EQ(back[size_t(code)], expected) << "code " << code;
            }
        }
    }
}

TEST(PcmConversion, Float64ToFloat32RoundsWithinHalfAUnitInTheLastPlace)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> spread(-2.0, 2.0);
    Bytes input(8 * 4096);
    for (size_t i = 0; i < 4096; ++i) {
        const double value = spread(random);
        std::memcpy(input.data() + 8 * i, &value, 8);
    }
    const Bytes output = Convert(AudioFormat::Float64L, AudioFormat::Float32L, input);
    for (size_t i = 0; i < 4096; ++i) {
        double wide;
        float narrow;
        std::memcpy(&wide, input.data() + 8 * i, 8);
        std::memcpy(&narrow, output.data() + 4 * i, 4);
        ASSERT_LE(std::fabs(double(narrow) - wide), std::ldexp(std::fabs(wide), -24)) << wide;
        // And it is the nearer of the two floats around the value.
        const float other = std::nextafter(narrow, double(narrow) < wide ? 10.0f : -10.0f);
        ASSERT_LE(std::fabs(double(narrow) - wide), std::fabs(double(other) - wide)) << wide;
    }
}

// Float to integer, stated in units of the output's least significant bit.
enum class Expect { Value, Max, Min };
struct EdgeCase {
    const char* name;
    long double units; // input = units / 2^(bits-1); NaN and infinities as they are
    Expect expect;
    int64_t value;
};

const long double Inf = std::numeric_limits<long double>::infinity();
const long double NaN = std::numeric_limits<long double>::quiet_NaN();

TEST(PcmConversion, FloatToIntegerRoundsTiesToEvenAndClips)
{
    for (const PcmLayout& from : {Layout(AudioFormat::Float32L), Layout(AudioFormat::Float64B)}) {
        for (const PcmLayout& to : AllLayouts()) {
            if (!to.IsInteger())
                continue;
            const long double top = Power(to.bits - 1) - 1;
            const EdgeCase cases[] = {
                {"+1.0 clips", Power(to.bits - 1), Expect::Max, 0},
                {"-1.0 is full scale", -Power(to.bits - 1), Expect::Min, 0},
                {"just over +1", Power(to.bits - 1) * (1 + 1e-6L), Expect::Max, 0},
                {"just under -1", -Power(to.bits - 1) * (1 + 1e-6L), Expect::Min, 0},
                {"+inf", Inf, Expect::Max, 0},
                {"-inf", -Inf, Expect::Min, 0},
                {"NaN", NaN, Expect::Value, 0},
                {"0.5 to even 0", 0.5L, Expect::Value, 0},
                {"1.5 to even 2", 1.5L, Expect::Value, 2},
                {"2.5 to even 2", 2.5L, Expect::Value, 2},
                {"-0.5 to even 0", -0.5L, Expect::Value, 0},
                {"-1.5 to even -2", -1.5L, Expect::Value, -2},
                {"0.51 up", 0.51L, Expect::Value, 1},
                {"-0.49 to 0", -0.49L, Expect::Value, 0},
                {"top - 0.5 to even", top - 0.5L, Expect::Value, int64_t(top) - 1},
                {"top + 0.5 clips", top + 0.5L, Expect::Max, 0},
                {"bottom + 0.5 to even", -top - 0.5L, Expect::Min, 0},
            };
            for (const EdgeCase& c : cases) {
                const long double input = std::isfinite(c.units) ? c.units / Power(to.bits - 1) : c.units;
                if (from.bytes == 4 && std::isfinite(input) && (long double)float(input) != input)
                    continue; // not a float
                SCOPED_TRACE(Name(from) + " -> " + Name(to) + ": " + c.name);
                // Nineteen copies: whole vector blocks and a tail.
                Bytes in(size_t(19 * from.bytes));
                for (size_t at = 0; at < in.size(); at += size_t(from.bytes))
                    ReferenceWrite(from, input, in.data() + at);
                const Bytes out = Convert(from.format, to.format, in);
                const int64_t expected = c.expect == Expect::Max   ? int64_t(top)
                                         : c.expect == Expect::Min ? -int64_t(top) - 1
                                                                   : c.value;
                for (size_t at = 0; at < out.size(); at += size_t(to.bytes))
                    EXPECT_EQ(IntegerValue(to, out.data() + at), expected) << "copy " << at / size_t(to.bytes);
            }
        }
    }
}

TEST(PcmConversion, IntegerNarrowingRoundsTiesToEvenAndClipsOnlyAtTheTop)
{
    const std::pair<uint32_t, uint32_t> pairs[] = {
        {AudioFormat::Int24L, AudioFormat::Int16L},  {AudioFormat::Int32L, AudioFormat::Int16L},
        {AudioFormat::Int32L, AudioFormat::Int24L},  {AudioFormat::Int24B, AudioFormat::Int20L},
        {AudioFormat::UInt32B, AudioFormat::Int16B}, {AudioFormat::Int16L, AudioFormat::UInt8},
        {AudioFormat::UInt24L, AudioFormat::Int8},
    };
    for (auto [from, to] : pairs) {
        const PcmLayout in = Layout(from);
        const PcmLayout out = Layout(to);
        SCOPED_TRACE(Name(in) + " -> " + Name(out));
        const int shift = in.bits - out.bits;
        const int64_t half = int64_t(1) << (shift - 1);
        const int64_t inTop = (int64_t(1) << (in.bits - 1)) - 1;
        const int64_t outTop = (int64_t(1) << (out.bits - 1)) - 1;
        const std::pair<int64_t, int64_t> cases[] = {
            {half, 0},
            {3 * half, 2},
            {5 * half, 2},
            {-half, 0},
            {-3 * half, -2},
            {half + 1, 1},
            {inTop, outTop},
            {-inTop - 1, -outTop - 1},
            {inTop - half, outTop},
            {-inTop - 1 + half, -outTop - 1},
        };
        for (auto [value, expected] : cases) {
            // Nineteen copies: whole vector blocks and a tail.
            Bytes input(size_t(19 * in.bytes));
            for (size_t at = 0; at < input.size(); at += size_t(in.bytes))
                WriteInteger(in, value, input.data() + at);
            const Bytes output = Convert(from, to, input);
            for (size_t at = 0; at < output.size(); at += size_t(out.bytes))
                EXPECT_EQ(IntegerValue(out, output.data() + at), expected) << "input " << value << ", copy " << at;
        }
    }
}

TEST(PcmConversion, CommonPairsTakeADirectKernel)
{
    const std::pair<uint32_t, uint32_t> direct[] = {
        {AudioFormat::Int16L, AudioFormat::Float32L}, {AudioFormat::Int24L, AudioFormat::Float32L},
        {AudioFormat::Int32L, AudioFormat::Float32L}, {AudioFormat::Float32L, AudioFormat::Int16L},
        {AudioFormat::Float32L, AudioFormat::Int24L}, {AudioFormat::Float32L, AudioFormat::Int32L},
        {AudioFormat::Int24L, AudioFormat::Int32L},   {AudioFormat::Int16L, AudioFormat::Int24L},
        {AudioFormat::Int32L, AudioFormat::Int16L},   {AudioFormat::Int16L, AudioFormat::Int16B},
        {AudioFormat::Int24B, AudioFormat::Int24L},   {AudioFormat::Float64L, AudioFormat::Float64B},
        {AudioFormat::UInt8, AudioFormat::UInt8},
    };
    for (auto [from, to] : direct) {
        SCOPED_TRACE(std::string(AudioFormat::GetName(from)) + " -> " + AudioFormat::GetName(to));
        Bytes output;
        bool isDirect = false;
        ASSERT_EQ(
            RunConversion(Layout(from), 2, Layout(to), 2, Bytes(size_t(2 * Layout(from).bytes)), output, &isDirect),
            RESULT_OK);
        EXPECT_TRUE(isDirect);
    }
}

TEST(PcmConversion, RefusesBuffersThatDoNotHoldTheFrames)
{
    AudioChannelMap map;
    ASSERT_EQ(map.BuildByIndex(2, 2), RESULT_OK);
    PcmConversion conversion;
    Bytes input(12), output(16, 0xEE);
    {
        VekTest::LogCapture log(1);
        EXPECT_EQ(conversion.Convert(input.data(), 12, output.data(), 16, 1), RESULT_BAD_ORDER_ERROR);
        EXPECT_EQ(log.Count("before a successful Prepare"), 1u);
    }
    ASSERT_EQ(conversion.Prepare(Layout(AudioFormat::Int24L), Layout(AudioFormat::Float32L), map), RESULT_OK);
    struct Case {
        const char* name;
        int64_t inputBytes, outputBytes, frames;
        bool nullInput;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {"input one byte short", 11, 16, 2, false, RESULT_FORMAT_ERROR,
         "input of 11 bytes is shorter than 2 frames of 6"},
        {"output one byte short", 12, 15, 2, false, RESULT_ARGUMENT_OUT_OF_RANGE,
         "output of 15 bytes cannot hold 2 frames of 8"},
        {"negative frames", 12, 16, -1, false, RESULT_ARGUMENT_OUT_OF_RANGE, "frame count -1 is negative"},
        {"frames overflow", 12, 16, INT64_MAX / 4, false, RESULT_ARGUMENT_OUT_OF_RANGE, "cannot hold"},
        {"null input", 12, 16, 2, true, RESULT_ARGUMENT_NULL, "null input buffer"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VekTest::LogCapture log(1);
        EXPECT_EQ(conversion.Convert(c.nullInput ? nullptr : input.data(), c.inputBytes, output.data(), c.outputBytes,
                                     c.frames),
                  c.result);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        EXPECT_EQ(output, Bytes(16, 0xEE)) << "nothing written";
    }
    EXPECT_EQ(conversion.Convert(nullptr, 0, nullptr, 0, 0), RESULT_OK);

    VekTest::LogCapture log(1);
    AudioChannelMap unbuilt;
    EXPECT_EQ(conversion.Prepare(Layout(AudioFormat::Int16L), Layout(AudioFormat::Int16B), unbuilt),
              RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(conversion.Prepare(PcmLayout{}, Layout(AudioFormat::Int16B), map), RESULT_FORMAT_ERROR);
    EXPECT_EQ(conversion.GetInputLayout().format, uint32_t(AudioFormat::Int24L)) << "a failed Prepare changes nothing";
}

// ffmpeg rounds and clips as the library does for these pairs (it truncates
// when it narrows integers, so those pairs are left out).
TEST(PcmConversion, MatchesFfmpegOnCommonPairs)
{
    struct Pair {
        uint32_t from, to;
        const char* ffmpegFrom;
        const char* ffmpegTo;
    };
    const Pair pairs[] = {
        {AudioFormat::Int16L, AudioFormat::Float32L, "s16le", "f32le"},
        {AudioFormat::Float32L, AudioFormat::Int16L, "f32le", "s16le"},
        {AudioFormat::Float32L, AudioFormat::Int32L, "f32le", "s32le"},
        {AudioFormat::Int24L, AudioFormat::Int32L, "s24le", "s32le"},
        {AudioFormat::UInt8, AudioFormat::Int16L, "u8", "s16le"},
        {AudioFormat::Int16L, AudioFormat::Int16B, "s16le", "s16be"},
        {AudioFormat::Float64B, AudioFormat::Float32L, "f64be", "f32le"},
        {AudioFormat::Int16B, AudioFormat::Float64L, "s16be", "f64le"},
    };
    for (const Pair& pair : pairs) {
        SCOPED_TRACE(std::string(pair.ffmpegFrom) + " -> " + pair.ffmpegTo);
        const PcmLayout in = Layout(pair.from);
        Bytes input = InputSamples(in);
        if (in.coding == Coding::Float) {
            // ffmpeg leaves NaN and infinities to lrint, whose result for
            // them is unspecified.
            Bytes finite;
            for (size_t at = 0; at < input.size(); at += size_t(in.bytes))
                if (std::isfinite(ReferenceValue(in, input.data() + at)))
                    finite.insert(finite.end(), input.begin() + std::ptrdiff_t(at),
                                  input.begin() + std::ptrdiff_t(at) + in.bytes);
            input = finite;
        }
        const auto expected = VekTest::FfmpegConvert(pair.ffmpegFrom, pair.ffmpegTo, input);
        if (!expected)
            GTEST_SKIP() << "ffmpeg is not available";
        EXPECT_EQ(Convert(pair.from, pair.to, input), *expected);
    }
}

} // namespace
