#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <support/LogCapture.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/PcmConversion.h>
#include <vek/media/AudioFormat.h>

#include "ExternalConverters.h"
#include "PcmReference.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Bytes = std::vector<uint8_t>;
using Coding = PcmLayout::Coding;

const long double Inf = std::numeric_limits<long double>::infinity();
const long double NaN = std::numeric_limits<long double>::quiet_NaN();

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

// Output depths whose rounding ties the inputs below should reach.
const int Depths[] = {8, 16, 20, 24, 32};

std::vector<long double> InterestingFractions()
{
    std::vector<long double> values = {0.0L, -0.0L, 1.0L,  -1.0L,  0.5L,   -0.5L, 1.0L + 1e-6L, -1.0L - 1e-6L,
                                       2.0L, -3.5L, 1e-30L, -1e-30L, 1e300L, Inf,   -Inf,         NaN};
    for (int bits : Depths) {
        const long double top = Power(bits - 1) - 1;
        for (long double units :
             {0.5L, 1.5L, 2.5L, -0.5L, -1.5L, -2.5L, top - 0.5L, top + 0.5L, -top - 0.5L, -top - 1.5L, 0.49L, 0.51L})
            values.push_back(units / Power(bits - 1));
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
        for (int64_t value : {half, 3 * half, 5 * half, -half, -3 * half, -5 * half, top - half + 1, -top - 1 + half})
            append([&](uint8_t* p) { WriteInteger(layout, value, p); });
    }
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i)
        append([&](uint8_t* p) {
            for (int b = 0; b < layout.bytes; ++b)
                p[b] = uint8_t(random());
        });
    return bytes;
}

// The whole frames of `input` converted with channels paired by index.
int RunConversion(const PcmLayout& in, int32_t inChannels, const PcmLayout& out, int32_t outChannels,
                  const Bytes& input, Bytes& output, bool vectorKernels = true)
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
    return conversion.Convert(input.data(), int64_t(input.size()), output.data(), int64_t(output.size()), frames);
}

Bytes Convert(uint32_t from, uint32_t to, const Bytes& input)
{
    Bytes output;
    EXPECT_EQ(RunConversion(Layout(from), 1, Layout(to), 1, input, output), RESULT_OK);
    return output;
}

void ExpectMatchesReference(const PcmLayout& in, int32_t inChannels, const PcmLayout& out, int32_t outChannels,
                            Bytes input, bool vectorKernels = true)
{
    const size_t frameBytes = size_t(in.bytes * inChannels);
    input.resize(input.size() / frameBytes * frameBytes);
    Bytes output;
    ASSERT_EQ(RunConversion(in, inChannels, out, outChannels, input, output, vectorKernels), RESULT_OK);
    const Bytes expected = ReferenceConvert(in, inChannels, out, ByIndex(inChannels, outChannels), input.data(),
                                            input.size() / frameBytes);
    ASSERT_EQ(output.size(), expected.size());
    for (size_t at = 0; at < output.size(); at += size_t(out.bytes))
        ASSERT_TRUE(SameSample(out, output.data() + at, expected.data() + at)) << "sample " << at / size_t(out.bytes);
}

TEST(PcmConversion, EveryLayoutToEveryLayoutMatchesTheReference)
{
    const std::pair<int32_t, int32_t> channelChanges[] = {{2, 3}, {3, 2}, {1, 2}, {5, 1}};
    for (const PcmLayout& in : AllLayouts()) {
        const Bytes all = InputSamples(in);
        // Short runs reach the tails of the vector loops, the blocks that
        // need room past them, and the last 24-bit sample, which must be
        // read without the wide load.
        const size_t counts[] = {1, 7, 8, 9, 10, 11, 17, 18, 19, 33, all.size() / size_t(in.bytes)};
        for (const PcmLayout& out : AllLayouts()) {
            SCOPED_TRACE(Name(in) + " -> " + Name(out));
            for (bool vector : {true, false}) {
                for (size_t samples : counts) {
                    SCOPED_TRACE(std::to_string(samples) + (vector ? " samples" : " samples, portable kernels"));
                    const Bytes input(all.begin(), all.begin() + ptrdiff_t(samples * size_t(in.bytes)));
                    ExpectMatchesReference(in, 1, out, 1, input, vector);
                }
            }
            for (auto [inChannels, outChannels] : channelChanges) {
                SCOPED_TRACE(std::to_string(inChannels) + " -> " + std::to_string(outChannels) + " channels");
                ExpectMatchesReference(in, inChannels, out, outChannels, all);
            }
            if (HasFatalFailure())
                return;
        }
    }
}

// Significant bits of a layout's values; a G.711 code stands for a 16-bit value.
int Precision(const PcmLayout& layout)
{
    if (layout.IsCompanded())
        return 16;
    if (layout.coding == Coding::Float)
        return layout.bytes == 4 ? 24 : 53;
    return layout.bits;
}

bool HoldsEveryValue(const PcmLayout& wide, const PcmLayout& narrow)
{
    if (wide.IsCompanded() || (wide.IsInteger() && narrow.coding == Coding::Float))
        return false;
    return Precision(wide) >= Precision(narrow);
}

TEST(PcmConversion, WideningThenNarrowingIsExact)
{
    for (const PcmLayout& narrow : AllLayouts()) {
        // Written through the reference: 20-bit samples with clear low bits,
        // mu-law's negative zero as positive zero.
        const Bytes raw = InputSamples(narrow);
        Bytes input(raw.size());
        for (size_t at = 0; at < raw.size(); at += size_t(narrow.bytes))
            ReferenceWrite(narrow, ReferenceValue(narrow, raw.data() + at), input.data() + at);
        for (const PcmLayout& wide : AllLayouts()) {
            if (!HoldsEveryValue(wide, narrow))
                continue;
            const Bytes back = Convert(wide.format, narrow.format, Convert(narrow.format, wide.format, input));
            ASSERT_EQ(back.size(), input.size());
            for (size_t at = 0; at < input.size(); at += size_t(narrow.bytes))
                ASSERT_TRUE(SameSample(narrow, back.data() + at, input.data() + at))
                    << Name(narrow) << " -> " << Name(wide) << " -> back, sample " << at / size_t(narrow.bytes);
        }
    }
}

// In units of the output's least significant bit: ties to even, clipping at
// both ends, NaN to zero. Each case runs on nineteen copies (whole vector
// blocks and a tail); a case the input layout cannot hold is left out.
TEST(PcmConversion, QuantisingRoundsTiesToEvenAndClips)
{
    std::vector<std::pair<uint32_t, uint32_t>> pairs = {
        {AudioFormat::Int24L, AudioFormat::Int16L},  {AudioFormat::Int32L, AudioFormat::Int16L},
        {AudioFormat::Int32L, AudioFormat::Int24L},  {AudioFormat::Int24B, AudioFormat::Int20L},
        {AudioFormat::UInt32B, AudioFormat::Int16B}, {AudioFormat::Int16L, AudioFormat::UInt8},
        {AudioFormat::UInt24L, AudioFormat::Int8},
    };
    for (const PcmLayout& to : AllLayouts())
        for (uint32_t from : {AudioFormat::Float32L, AudioFormat::Float64B})
            if (to.IsInteger())
                pairs.push_back({from, to.format});
    for (auto [from, to] : pairs) {
        const PcmLayout in = Layout(from);
        const PcmLayout out = Layout(to);
        const long double full = Power(out.bits - 1);
        const long double top = full - 1;
        // The input's own step, or a fine one for floats.
        const long double step = in.IsInteger() ? 1 / Power(in.bits - out.bits) : 1 / 256.0L;
        // {input, expected before clipping}
        const std::pair<long double, long double> cases[] = {
            {0.5L, 0}, {1.5L, 2}, {2.5L, 2}, {-0.5L, 0}, {-1.5L, -2}, {-2.5L, -2}, {0.5L + step, 1}, {-0.5L + step, 0},
            {-0.5L - step, -1}, {top - 0.5L, top - 1}, {top + 0.5L - step, top}, {top + 0.5L, full},
            {full - step, full}, {-full + 0.5L, -full}, {full, full}, {-full, -full}, {full * (1 + 1e-6L), full},
            {-full * (1 + 1e-6L), -full}, {Inf, full}, {-Inf, -full}, {NaN, 0},
        };
        for (auto [units, expected] : cases) {
            const long double value = std::isfinite(units) ? units / full : units;
            Bytes input(size_t(19 * in.bytes));
            for (size_t at = 0; at < input.size(); at += size_t(in.bytes))
                ReferenceWrite(in, value, input.data() + at);
            const long double held = ReferenceValue(in, input.data());
            if (held != value && !(std::isnan(held) && std::isnan(value)))
                continue;
            const Bytes output = Convert(from, to, input);
            std::vector<int64_t> values;
            for (size_t at = 0; at < output.size(); at += size_t(out.bytes))
                values.push_back(IntegerValue(out, output.data() + at));
            EXPECT_EQ(values, std::vector<int64_t>(19, int64_t(std::clamp(expected, -full, top))))
                << Name(in) << " -> " << Name(out) << ": " << double(units) << " units";
        }
    }
}

TEST(PcmConversion, CommonPairsTakeADirectKernel)
{
    const std::pair<uint32_t, uint32_t> pairs[] = {
        {AudioFormat::Int16L, AudioFormat::Float32L}, {AudioFormat::Int24L, AudioFormat::Float32L},
        {AudioFormat::Int32L, AudioFormat::Float32L}, {AudioFormat::Float32L, AudioFormat::Int16L},
        {AudioFormat::Float32L, AudioFormat::Int24L}, {AudioFormat::Float32L, AudioFormat::Int32L},
        {AudioFormat::Int24L, AudioFormat::Int32L},   {AudioFormat::Int16L, AudioFormat::Int24L},
        {AudioFormat::Int32L, AudioFormat::Int16L},   {AudioFormat::Int16L, AudioFormat::Int16B},
        {AudioFormat::Int24B, AudioFormat::Int24L},   {AudioFormat::Float64L, AudioFormat::Float64B},
        {AudioFormat::UInt8, AudioFormat::UInt8},
    };
    AudioChannelMap map;
    ASSERT_EQ(map.BuildByIndex(2, 2), RESULT_OK);
    for (auto [from, to] : pairs) {
        PcmConversion conversion;
        ASSERT_EQ(conversion.Prepare(Layout(from), Layout(to), map), RESULT_OK);
        EXPECT_TRUE(conversion.IsDirect()) << AudioFormat::GetName(from) << " -> " << AudioFormat::GetName(to);
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
        const uint8_t* input;
        int64_t inputBytes, outputBytes, frames;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {input.data(), 11, 16, 2, RESULT_FORMAT_ERROR, "input of 11 bytes is shorter than 2 frames of 6"},
        {input.data(), 12, 15, 2, RESULT_ARGUMENT_OUT_OF_RANGE, "output of 15 bytes cannot hold 2 frames of 8"},
        {input.data(), 12, 16, -1, RESULT_ARGUMENT_OUT_OF_RANGE, "frame count -1 is negative"},
        {input.data(), 12, 16, INT64_MAX / 4, RESULT_ARGUMENT_OUT_OF_RANGE, "cannot hold"},
        {nullptr, 12, 16, 2, RESULT_ARGUMENT_NULL, "null input buffer"},
    };
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        EXPECT_EQ(conversion.Convert(c.input, c.inputBytes, output.data(), c.outputBytes, c.frames), c.result)
            << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        EXPECT_EQ(output, Bytes(16, 0xEE)) << "nothing written";
    }
    EXPECT_EQ(conversion.Convert(nullptr, 0, nullptr, 0, 0), RESULT_OK);

    VekTest::LogCapture log(1);
    AudioChannelMap unbuilt;
    EXPECT_EQ(conversion.Prepare(Layout(AudioFormat::Int16L), Layout(AudioFormat::Int16B), unbuilt),
              RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(conversion.Prepare(PcmLayout{}, Layout(AudioFormat::Int16B), map), RESULT_FORMAT_ERROR);
    PcmLayout narrowed = Layout(AudioFormat::Int32L);
    narrowed.bytes = 1; // sizes are taken from the layout: one that contradicts its code is refused
    EXPECT_EQ(conversion.Prepare(narrowed, Layout(AudioFormat::Int16B), map), RESULT_FORMAT_ERROR);
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
        const PcmLayout in = Layout(pair.from);
        const Bytes all = InputSamples(in);
        // ffmpeg leaves NaN and infinities to lrint, whose result for them
        // is unspecified.
        Bytes input;
        for (size_t at = 0; at < all.size(); at += size_t(in.bytes))
            if (std::isfinite(ReferenceValue(in, all.data() + at)))
                input.insert(input.end(), all.begin() + ptrdiff_t(at), all.begin() + ptrdiff_t(at + size_t(in.bytes)));
        const auto expected = VekTest::FfmpegConvert(pair.ffmpegFrom, pair.ffmpegTo, input);
        if (!expected)
            GTEST_SKIP() << "ffmpeg is not available";
        EXPECT_EQ(Convert(pair.from, pair.to, input), *expected) << pair.ffmpegFrom << " -> " << pair.ffmpegTo;
    }
}

} // namespace
