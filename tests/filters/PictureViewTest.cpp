// Layout lookup, the views the converter reads input through, and the
// output pictures it writes.
#include <vek/core/CByteArray.h>
#include <vek/core/Result.h>
#include <vek/filters/video/PictureBuffer.h>
#include <vek/filters/video/PictureView.h>
#include <vek/media/FormatDescription.h>
#include <vek/samples/CPixelBufferDataReference.h>
#include <vek/samples/CPlanarPixelDataReference.h>

#include <gtest/gtest.h>

#include <vector>

#include "PictureModel.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;

TEST(PictureLayout, AliasesResolveAndRelativesDoNot)
{
    // {code, its layout's own code or null for none}
    const std::pair<const char*, const char*> cases[] = {
        {"I420", "I420"}, {"IYUV", "I420"}, {"y420", "I420"}, {"Y42B", "I422"}, {"YUY2", "YUYV"},
        {"yuvs", "YUYV"}, {"2vuy", "UYVY"}, {"Y422", "UYVY"}, {"Y444", "I444"}, {"420v", "NV12"},
        // Named relatives: full range, another matrix, another layout.
        {"J420", nullptr}, {"420f", nullptr}, {"HDYC", nullptr}, {"YVYU", nullptr}, {"NV16", nullptr},
        {"avc1", nullptr}, {"zzzz", nullptr},
    };
    for (auto [code, named] : cases) {
        const PictureLayout expected = named ? GetPictureLayout(VekTest::Code(named)) : PictureLayout::None;
        EXPECT_EQ(GetPictureLayout(VekTest::Code(code)), expected) << code;
    }
    EXPECT_EQ(GetPictureLayout(0), PictureLayout::None);
    for (int i = 0; i < int(PictureLayout::Count); ++i)
        EXPECT_EQ(GetPictureLayout(GetLayoutFormat(PictureLayout(i))), PictureLayout(i));
}

TEST(PictureView, ContiguousPlanesFollowTheFirstStride)
{
    // 5x3 I420 with a first stride of 8: chroma rows of 3 at stride 4.
    std::vector<uint8_t> bytes(8 * 3 + 2 * 4 * 2);
    PictureView view;
    auto viewOf = [&](size_t length) {
        return ViewContiguousPicture(bytes.data(), int64_t(length), PictureLayout::I420, 5, 3, 8, view);
    };
    ASSERT_EQ(viewOf(bytes.size()), RESULT_OK);
    EXPECT_EQ(view.planes[1].data - bytes.data(), 24);
    EXPECT_EQ(view.planes[2].data - bytes.data(), 32);
    EXPECT_EQ(view.planes[2].stride, 4);
    EXPECT_EQ(view.planes[2].rowBytes, 3);
    EXPECT_EQ(view.planes[2].rows, 2);
    // The last row needs only its 3 bytes, not its whole stride: one byte
    // less still holds the picture, two do not.
    EXPECT_EQ(viewOf(bytes.size() - 1), RESULT_OK);
    EXPECT_EQ(viewOf(bytes.size() - 2), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(view.planes[0].data, nullptr) << "a refused view is empty";
}

TEST(PictureView, BadInputGivesItsCodeAndNamesTheValue)
{
    struct Case {
        const char* format;
        int width;
        int height;
        int stride;
        int64_t length;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {"I420", 0, 4, 0, 100, RESULT_ARGUMENT_OUT_OF_RANGE, "width 0"},
        {"I420", 4, 0, 0, 100, RESULT_ARGUMENT_OUT_OF_RANGE, "height 0"},
        {"UYVY", -2, 4, 0, 100, RESULT_ARGUMENT_OUT_OF_RANGE, "width -2"},
        {"NV12", 4, 70000, 0, 1 << 20, RESULT_ARGUMENT_OUT_OF_RANGE, "height 70000"},
        {"I420", 16, 16, 15, 1000, RESULT_FORMAT_ERROR, "stride 15"},
        {"UYVY", 5, 2, 10, 1000, RESULT_FORMAT_ERROR, "stride 10 shorter than its row of 12"},
        {"I420", 16, 16, -1, 1000, RESULT_ARGUMENT_OUT_OF_RANGE, "stride -1"},
        {"I420", 16, 16, 0, 16 * 16 + 2 * 64 - 1, RESULT_ARGUMENT_OUT_OF_RANGE, "length 383"},
        {"YUYV", 16, 16, 0, 511, RESULT_ARGUMENT_OUT_OF_RANGE, "length 511"},
        {"I444", 16, 16, 0, -5, RESULT_ARGUMENT_OUT_OF_RANGE, "length -5"},
        {"GREY", 16, 16, 0, 1000, RESULT_FORMAT_ERROR, "layout"},
        // A stride near the 32-bit limit: rows of 2^31 bytes never wrap.
        {"I422", 16, 16, 0x7FFFFFFF, 1000, RESULT_ARGUMENT_OUT_OF_RANGE, "passes the data length 1000"},
    };
    std::vector<uint8_t> bytes(1 << 20);
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        PictureView view;
        const PictureLayout layout = GetPictureLayout(VekTest::Code(c.format));
        EXPECT_EQ(ViewContiguousPicture(bytes.data(), c.length, layout, c.width, c.height, c.stride, view), c.result)
            << c.format << " " << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
    }
    PictureView view;
    EXPECT_EQ(ViewContiguousPicture(nullptr, 100, PictureLayout::I420, 4, 4, 0, view), RESULT_ARGUMENT_NULL);
}

TEST(PictureView, PixelReferencePlanesAreCheckedAgainstItsBytes)
{
    // One plane of six rows of 8 bytes holding a 6x4 I420 picture: the
    // chroma planes follow the four luma rows at stride 4.
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 8 * 6));
    CPixelBufferDataReference* made = nullptr;
    ASSERT_EQ(CPixelBufferDataReference::Create(bytes, 6, 6, 8, 1, Four("I420"), made), RESULT_OK);
    RObject<CPixelBufferDataReference> single(made);
    PictureView view;
    ASSERT_EQ(ViewPixelReference(single, PictureLayout::I420, 6, 4, view), RESULT_OK);
    EXPECT_EQ(view.planes[1].data, bytes->GetData() + 32);
    EXPECT_EQ(view.planes[2].data, bytes->GetData() + 40);
    // Taller than the bytes hold.
    VekTest::LogCapture log(1);
    EXPECT_EQ(ViewPixelReference(single, PictureLayout::I420, 6, 5, view), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(log.Count("passes the data length 48"), 1u) << log.Text();

    // Three planes whose last one runs past the array.
    RObject<CByteArray> planar(CByteArray::Create(nullptr, 100));
    const CPlanarPixelDataReference::Plane planes[] = {{0, 8, 8, 8}, {64, 4, 4, 4}, {84, 4, 4, 4}};
    CPlanarPixelDataReference* three = nullptr;
    ASSERT_EQ(CPlanarPixelDataReference::Create(planar, 8, 8, Four("I420"), planes, 3, three), RESULT_OK);
    RObject<CPlanarPixelDataReference> reference(three);
    EXPECT_EQ(ViewPixelReference(reference, PictureLayout::I420, 8, 8, view), RESULT_OK);
    EXPECT_EQ(ViewPixelReference(reference, PictureLayout::I422, 8, 8, view), RESULT_ARGUMENT_OUT_OF_RANGE)
        << "4:2:2 chroma needs 8 rows";
    EXPECT_EQ(ViewPixelReference(reference, PictureLayout::I444, 8, 8, view), RESULT_FORMAT_ERROR)
        << "4:4:4 chroma rows are 8 bytes";
    EXPECT_EQ(ViewPixelReference(nullptr, PictureLayout::I420, 8, 8, view), RESULT_ARGUMENT_NULL);
}

TEST(PictureBuffer, PlanesAndRowsAreAlignedAndHoldThePicture)
{
    for (int i = 0; i < int(PictureLayout::Count); ++i) {
        const auto layout = PictureLayout(i);
        for (const auto& [width, height] : {std::pair{1, 1}, std::pair{65, 37}, std::pair{1920, 1080}}) {
            CPlanarPixelDataReference* made = nullptr;
            ASSERT_EQ(MakePictureBuffer(layout, width, height, made), RESULT_OK);
            RObject<CPlanarPixelDataReference> picture(made);
            EXPECT_TRUE(PictureBufferFits(picture, layout, width, height));
            EXPECT_FALSE(PictureBufferFits(picture, layout, width + 1, height));
            PictureView view;
            ASSERT_EQ(ViewPixelReference(picture, layout, width, height, view), RESULT_OK) << i;
            for (int p = 0; p < picture->GetPlaneCount(); ++p) {
                EXPECT_EQ(reinterpret_cast<uintptr_t>(view.planes[p].data) % kPictureRowAlignment, 0u);
                EXPECT_EQ(view.planes[p].stride % kPictureRowAlignment, 0);
            }
        }
    }
    CPlanarPixelDataReference* none = nullptr;
    EXPECT_EQ(MakePictureBuffer(PictureLayout::I420, 0, 4, none), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(MakePictureBuffer(PictureLayout::None, 4, 4, none), RESULT_FORMAT_ERROR);
    EXPECT_EQ(none, nullptr);
}
