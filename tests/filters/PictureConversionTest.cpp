// The picture conversion between every pair of layouts, against the test's
// own model of each layout's bytes and of the documented chroma filters;
// round trips; ffmpeg as an outside oracle for the lossless pairs.
#include <vek/core/Result.h>
#include <vek/filters/video/PictureConversion.h>
#include <vek/filters/video/PictureView.h>
#include <vek/media/FormatDescription.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "ExternalConverters.h"
#include "PictureModel.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

const char* const kFormats[] = {"I420", "YV12", "NV12", "NV21", "I422", "YV16", "I444", "UYVY", "YUYV"};

struct Size {
    int width;
    int height;
};

// Odd and even, below and above the 16- and 32-sample blocks of the
// vector loops.
const Size kSizes[] = {{1, 1}, {2, 2}, {3, 5}, {64, 36}, {65, 37}, {97, 3}};

PictureLayout Layout(const std::string& format)
{
    return GetPictureLayout(Code(format));
}

// A picture whose rows end `padding` bytes before their stride, in a buffer
// exactly as long as the picture so that the sanitizer sees any access past
// it.
PictureBytes Padded(const std::string& format, int width, int height, int padding, uint8_t fill)
{
    return LayOut(format, width, height, LayOut(format, width, height, 0, 0).rowBytes[0] + padding, fill);
}

// `model` (in `from`'s subsampling) converted from `from` to `to`; the
// output's padding starts as 0xA5.
PictureBytes ConvertBytes(const PictureModel& model, const std::string& from, const std::string& to, int padding)
{
    const int w = model.width;
    const int h = model.height;
    PictureBytes input = Padded(from, w, h, padding, 0x5A);
    Write(model, from, input);
    PictureBytes output = Padded(to, w, h, padding, 0xA5);
    PictureView in;
    PictureView out;
    EXPECT_EQ(ViewContiguousPicture(input.bytes.data(), int64_t(input.bytes.size()), Layout(from), w, h,
                                    input.stride[0], in),
              RESULT_OK);
    EXPECT_EQ(ViewContiguousPicture(output.bytes.data(), int64_t(output.bytes.size()), Layout(to), w, h,
                                    output.stride[0], out),
              RESULT_OK);
    std::vector<uint8_t> scratch(size_t(GetConversionScratchBytes(w)));
    EXPECT_EQ(ConvertPicture(in, out, scratch.data(), int64_t(scratch.size())), RESULT_OK);
    return output;
}

PictureModel Convert(const PictureModel& model, const std::string& from, const std::string& to, int padding)
{
    return Read(to, model.width, model.height, ConvertBytes(model, from, to, padding));
}

// Where two buffers of one size first differ; their size when they do not.
size_t FirstDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b)
{
    return size_t(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

} // namespace

// Every output byte is the model's: the samples, the luma an odd packed row
// repeats, and the padding left alone.
TEST(PictureConversion, EveryPairMatchesTheDocumentedFilters)
{
    std::mt19937 random(7);
    for (const char* from : kFormats) {
        for (const char* to : kFormats) {
            for (const Size size : kSizes) {
                const PictureModel source = RandomModel(size.width, size.height, SubsamplingOf(from), random);
                PictureBytes expected = Padded(to, size.width, size.height, 13, 0xA5);
                Write(Resample(source, SubsamplingOf(to)), to, expected);
                const PictureBytes output = ConvertBytes(source, from, to, 13);
                ASSERT_EQ(FirstDifference(output.bytes, expected.bytes), expected.bytes.size())
                    << from << " -> " << to << " " << size.width << "x" << size.height;
            }
        }
    }
}

// 4:2:0 -> 4:2:2 -> 4:2:0 smooths each chroma sample c with its neighbours
// a (above) and b (below) to (a + 6c + b)/8, within 1 for rounding: the
// error is at most |a + b - 2c|/8 + 1. The last row of an odd height comes
// from one interpolated row, (3c + a)/4: at most |a - c|/4 + 1. Luma exact.
TEST(PictureConversion, RoundTripThroughWiderChromaStaysClose)
{
    std::mt19937 random(3);
    for (const Size size : kSizes) {
        for (const bool smooth : {true, false}) {
            SCOPED_TRACE(std::to_string(size.width) + "x" + std::to_string(size.height) + (smooth ? " smooth" : ""));
            PictureModel source = RandomModel(size.width, size.height, SubsamplingOf("I420"), random, smooth);
            PictureModel back = Convert(Convert(source, "I420", "UYVY", 3), "UYVY", "NV12", 5);
            EXPECT_EQ(back.y, source.y);
            const int rows = source.ChromaHeight();
            for (int row = 0; row < rows; ++row) {
                for (int col = 0; col < source.ChromaWidth(); ++col) {
                    const int a = source.U(col, row > 0 ? row - 1 : 0);
                    const int c = source.U(col, row);
                    const int b = source.U(col, row + 1 < rows ? row + 1 : row);
                    const bool alone = row == rows - 1 && size.height % 2 == 1;
                    const int bound = alone ? std::abs(a - c) / 4 + 1 : std::abs(a + b - 2 * c) / 8 + 1;
                    ASSERT_LE(std::abs(back.U(col, row) - c), smooth ? std::min(bound, 1) : bound)
                        << "col " << col << " row " << row;
                }
            }
        }
    }
}

// 4:2:2 -> 4:4:4 -> 4:2:2 keeps the co-sited samples and smooths them with
// the interpolated ones beside them, the same bound across.
TEST(PictureConversion, RoundTripThroughFullChromaStaysClose)
{
    std::mt19937 random(5);
    for (const Size size : kSizes) {
        SCOPED_TRACE(std::to_string(size.width) + "x" + std::to_string(size.height));
        PictureModel source = RandomModel(size.width, size.height, SubsamplingOf("YUYV"), random);
        PictureModel back = Convert(Convert(source, "YUYV", "I444", 1), "I444", "I422", 2);
        EXPECT_EQ(back.y, source.y);
        const int cw = source.ChromaWidth();
        for (int row = 0; row < source.height; ++row) {
            for (int col = 0; col < cw; ++col) {
                const int a = source.V(col > 0 ? col - 1 : 0, row);
                const int c = source.V(col, row);
                const int b = source.V(col + 1 < cw ? col + 1 : col, row);
                ASSERT_LE(std::abs(back.V(col, row) - c), (std::abs(a - c) + std::abs(b - c)) / 4 + 1)
                    << "col " << col << " row " << row;
            }
        }
    }
}

TEST(PictureConversion, RefusesMismatchedPicturesAndShortScratch)
{
    std::vector<uint8_t> a(64 * 64 * 2);
    std::vector<uint8_t> b(64 * 64 * 2);
    PictureView in;
    PictureView out;
    ASSERT_EQ(ViewContiguousPicture(a.data(), int64_t(a.size()), Layout("I420"), 16, 8, 0, in), RESULT_OK);
    ASSERT_EQ(ViewContiguousPicture(b.data(), int64_t(b.size()), Layout("UYVY"), 16, 6, 0, out), RESULT_OK);
    std::vector<uint8_t> scratch(size_t(GetConversionScratchBytes(16)));
    EXPECT_EQ(ConvertPicture(in, out, scratch.data(), int64_t(scratch.size())), RESULT_ARGUMENT_OUT_OF_RANGE);
    ASSERT_EQ(ViewContiguousPicture(b.data(), int64_t(b.size()), Layout("UYVY"), 16, 8, 0, out), RESULT_OK);
    EXPECT_EQ(ConvertPicture(in, out, scratch.data(), int64_t(scratch.size()) - 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(ConvertPicture(in, out, nullptr, 0), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(ConvertPicture(in, PictureView(), scratch.data(), int64_t(scratch.size())), RESULT_FORMAT_ERROR);
}

// ffmpeg's own conversions of the pairs that need no resampling are byte
// for byte what the library writes.
TEST(PictureConversion, LosslessPairsMatchFfmpeg)
{
    if (!HasProgram("ffmpeg"))
        GTEST_SKIP() << "ffmpeg is not available";
    struct Pair {
        const char* from;
        const char* fromName;
        const char* to;
        const char* toName;
    };
    const Pair pairs[] = {{"I420", "yuv420p", "NV12", "nv12"},
                          {"NV21", "nv21", "I420", "yuv420p"},
                          {"YUYV", "yuyv422", "I422", "yuv422p"},
                          {"I422", "yuv422p", "UYVY", "uyvy422"}};
    std::mt19937 random(9);
    for (const Pair& pair : pairs) {
        const PictureModel source = RandomModel(66, 38, SubsamplingOf(pair.from), random);
        PictureBytes input = LayOut(pair.from, 66, 38, 0, 0);
        Write(source, pair.from, input);
        const auto expected = RunConverter(std::string("ffmpeg -v error -nostdin -y -f rawvideo -pix_fmt ") +
                                               pair.fromName + " -s 66x38 -i IN -f rawvideo -pix_fmt " + pair.toName +
                                               " OUT",
                                           input.bytes);
        ASSERT_TRUE(expected) << pair.from << " -> " << pair.to;
        const PictureBytes output = ConvertBytes(source, pair.from, pair.to, 0);
        ASSERT_EQ(output.bytes.size(), expected->size()) << pair.from << " -> " << pair.to;
        EXPECT_EQ(FirstDifference(output.bytes, *expected), expected->size()) << pair.from << " -> " << pair.to;
    }
}
