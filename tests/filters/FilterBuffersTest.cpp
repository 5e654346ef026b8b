// The buffer helpers: splitting planar buffers (V-first swaps, Y41B, the
// biplanar rule and the refusal of unknown formats), frame layouts at odd
// sizes, black pictures and silent audio of each layout family.
#include <vek/filters/CAudioFilter.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/filters/VideoFrameLayout.h>
#include <vek/media/AudioFormat.h>

#include <gtest/gtest.h>

#include <vector>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

struct PlaneCase {
    const char* format;
    int32_t uOffset; // for a 16x8 buffer with 16 row bytes
    int32_t vOffset;
    int32_t chromaStride;
};

TEST(FilterBuffers, SamplePlanesPutUFirstWhateverTheStoredOrder)
{
    const PlaneCase cases[] = {
        {"I420", 128, 160, 8},  {"YV12", 160, 128, 8},  {"I422", 128, 192, 8}, {"YV16", 192, 128, 8},
        {"I444", 128, 256, 16}, {"YV24", 256, 128, 16}, {"I411", 128, 160, 4}, {"Y41B", 160, 128, 4},
        {"I410", 128, 136, 4},  {"YVU9", 136, 128, 4},  {"NV12", 128, 192, 16},
    };
    unsigned char buffer[16 * 8 * 3] = {};
    for (const PlaneCase& test : cases) {
        unsigned char* planes[3] = {};
        int32_t strides[3] = {};
        const uint32_t format = Four(*reinterpret_cast<const char(*)[5]>(test.format));
        ASSERT_EQ(CVideoFilter::GetSamplePlanes(buffer, format, 16, 8, planes, strides), RESULT_OK) << test.format;
        EXPECT_EQ(planes[0], buffer);
        EXPECT_EQ(planes[1] - buffer, test.uOffset) << test.format;
        EXPECT_EQ(planes[2] - buffer, test.vOffset) << test.format;
        EXPECT_EQ(strides[0], 16);
        EXPECT_EQ(strides[1], test.chromaStride) << test.format;
        EXPECT_EQ(strides[2], test.chromaStride) << test.format;
    }
}

TEST(FilterBuffers, SamplePlanesRefuseUnlistedFormatsWithALogLine)
{
    VekTest::LogCapture log(1);
    unsigned char buffer[64] = {};
    unsigned char* planes[3] = {};
    int32_t strides[3] = {};
    EXPECT_EQ(CVideoFilter::GetSamplePlanes(buffer, Four("NV22"), 4, 4, planes, strides), RESULT_FORMAT_ERROR);
    EXPECT_EQ(log.Count("CVideoFilter::GetSamplePlanes : Unknown format NV22.\n"), 1u);
}

TEST(FilterBuffers, FrameLayoutsRoundChromaUpAtOddSizes)
{
    struct Case {
        uint32_t format;
        int32_t width, height;
        int64_t total;
    };
    const Case cases[] = {
        {Four("I420"), 3, 3, 9 + 2 * 4}, {Four("IYUV"), 3, 3, 9 + 2 * 4}, {Four("NV21"), 5, 1, 5 + 6},
        {Four("I422"), 3, 2, 6 + 2 * 4}, {Four("YUY2"), 3, 2, 2 * 8},     {Four("I410"), 5, 5, 25 + 2 * 4},
        {Four("24BG"), 3, 1, 9},
    };
    for (const Case& test : cases) {
        VideoFrameLayout layout;
        ASSERT_EQ(GetVideoFrameLayout(test.format, test.width, test.height, layout), RESULT_OK);
        EXPECT_EQ(layout.totalBytes, test.total) << FourCCText(test.format).c_str();
    }
    VideoFrameLayout layout;
    EXPECT_EQ(GetVideoFrameLayout(Four("I420"), 0, 4, layout), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(GetVideoFrameLayout(Four("avc1"), 4, 4, layout), RESULT_FORMAT_ERROR);
    EXPECT_EQ(GetVideoFrameLayout(Four("I444"), 65536, 65536, layout), RESULT_ARGUMENT_OUT_OF_RANGE);
}

std::vector<unsigned char> BytesOf(CMediaSample* sample)
{
    RObject<CLockedDataReference> locked(sample->GetLockedDataReference());
    return std::vector<unsigned char>(locked->GetData(), locked->GetData() + locked->GetLength());
}

TEST(FilterBuffers, BlackPicturesOfPackedAndPlanarLayouts)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetSize(3, 2);
    properties->SetFormat(Four("UYVY"));
    CVideoSample* made = nullptr;
    ASSERT_EQ(CVideoFilter::GetBlackSampleFromPool(nullptr, properties, made), RESULT_OK);
    RObject<CVideoSample> uyvy(made);
    EXPECT_EQ(BytesOf(uyvy), (std::vector<unsigned char>{128, 16, 128, 16, 128, 16, 128, 16, 128, 16, 128, 16,
                                                          128, 16, 128, 16}));
    properties->SetFormat(Four("NV12"));
    ASSERT_EQ(CVideoFilter::GetBlackSampleFromPool(nullptr, properties, made), RESULT_OK);
    RObject<CVideoSample> nv12(made);
    EXPECT_EQ(BytesOf(nv12), (std::vector<unsigned char>{16, 16, 16, 16, 16, 16, 128, 128, 128, 128}));
    properties->SetFormat(Four("avc1"));
    EXPECT_EQ(CVideoFilter::GetBlackSampleFromPool(nullptr, properties, made), RESULT_FORMAT_ERROR);
    EXPECT_EQ(made, nullptr);
}

TEST(FilterBuffers, PixelReferenceOfAFrameHasItsPlanesInStoredOrder)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetSize(5, 3);
    properties->SetFormat(Four("YV12"));
    CPixelDataReference* made = nullptr;
    ASSERT_EQ(CVideoFilter::CreateDataReference(properties, made), RESULT_OK);
    RObject<CPixelDataReference> pixels(made);
    ASSERT_EQ(pixels->GetPlaneCount(), 3);
    unsigned char* planes[3] = {};
    int32_t strides[3] = {};
    for (int32_t i = 0; i < 3; ++i)
        ASSERT_EQ(pixels->GetPlane(i, planes[i], strides[i]), RESULT_OK);
    EXPECT_EQ(strides[0], 5);
    EXPECT_EQ(strides[1], 3);
    EXPECT_EQ(planes[1] - planes[0], 15);
    EXPECT_EQ(planes[2] - planes[1], 6);
}

TEST(FilterBuffers, SilenceOfEachPcmFamily)
{
    struct Case {
        uint32_t format;
        int32_t bytesPerFrame;
        std::vector<unsigned char> firstFrame;
    };
    const Case cases[] = {
        {AudioFormat::Int16L, 4, {0, 0, 0, 0}},           {AudioFormat::UInt8, 2, {0x80, 0x80}},
        {AudioFormat::UInt16L, 2, {0x00, 0x80}},          {AudioFormat::UInt24B, 3, {0x80, 0, 0}},
        {AudioFormat::aLaw, 1, {0xD5}},                   {AudioFormat::muLaw, 2, {0xFF, 0xFF}},
        {Four("u8  "), 1, {0x80}},                        {AudioFormat::Float32L, 8, {0, 0, 0, 0, 0, 0, 0, 0}},
    };
    RObject<CAudioProperties> properties(new CAudioProperties());
    for (const Case& test : cases) {
        properties->SetFormat(test.format);
        properties->SetBytesPerFrame(test.bytesPerFrame);
        CAudioSample* made = nullptr;
        ASSERT_EQ(CAudioFilter::GetSilentSampleFromPool(nullptr, properties, 3, made), RESULT_OK);
        RObject<CAudioSample> silence(made);
        const std::vector<unsigned char> bytes = BytesOf(silence);
        ASSERT_EQ(bytes.size(), size_t(3 * test.bytesPerFrame));
        EXPECT_EQ(std::vector<unsigned char>(bytes.end() - test.bytesPerFrame, bytes.end()), test.firstFrame)
            << FourCCText(test.format).c_str();
        EXPECT_EQ(silence->GetDuration(), 3);
    }
    properties->SetFormat(AudioFormat::AC3);
    CAudioSample* made = nullptr;
    EXPECT_EQ(CAudioFilter::GetSilentSampleFromPool(nullptr, properties, 3, made), RESULT_FORMAT_ERROR);
    properties->SetFormat(AudioFormat::UInt16L);
    properties->SetBytesPerFrame(3); // not a whole number of samples
    EXPECT_EQ(CAudioFilter::GetSilentSampleFromPool(nullptr, properties, 3, made), RESULT_FORMAT_ERROR);
    EXPECT_EQ(CAudioFilter::GetAudioSampleFromPool(nullptr, 1 << 20, 1 << 12, made), RESULT_ARGUMENT_OUT_OF_RANGE);
}

} // namespace
