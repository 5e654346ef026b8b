// The public wrappers: creation through a kind's inventory by FilterType
// code, a converter driven end to end, and null wrappers answering -19001.
#include <vek/components/CInstanceFactory.h>
#include <vek/filters/AudioFilter.h>
#include <vek/filters/VideoConverter.h>
#include <vek/filters/VideoDecompressor.h>

#include <gtest/gtest.h>

#include "filters/TestFilters.h"
#include "support/AllocationWalk.h"

using namespace Quorvex::Vek;
using VekTest::TestVideoConverter;

namespace {

struct ListedConverter : TestVideoConverter {
    ListedConverter() { outputFormats = {Four("NV12")}; }
};

void RegisterOnce()
{
    static const bool registered = [] {
        RObject<CInstanceFactory<ListedConverter, CVideoConverter>> factory(
            CInstanceFactory<ListedConverter, CVideoConverter>::Create(Four("tvcv")));
        return CComponentInventory<CComponentFactory<CVideoConverter>>::AddFactory(factory) == RESULT_OK;
    }();
    ASSERT_TRUE(registered);
}

TEST(FilterWrapper, ConverterMadeByCodeRunsItsLifeCycle)
{
    RegisterOnce();
    VideoFilter any = VideoFilter::Create(Four("tvcv"));
    ASSERT_FALSE(any.IsNull());
    EXPECT_TRUE(VideoFilter::Create(Four("none")).IsNull());
    EXPECT_TRUE(VideoDecompressor::Create(Four("tvcv")).IsNull()); // registered as a converter only

    VideoConverter converter = VideoConverter::Create(Four("tvcv"));
    VideoProperties input = VideoProperties::Create();
    input.SetFormat(Four("I420"));
    ASSERT_EQ(converter.SetInputProperties(input), RESULT_OK);
    ASSERT_EQ(converter.Begin(), RESULT_OK);
    EXPECT_EQ(converter.GetOutputFormat(), Four("NV12"));
    EXPECT_EQ(converter.GetInputProperties().ToObject(), input.ToObject());

    VideoSample picture = VideoSample::Create();
    picture.SetTime(42);
    ASSERT_EQ(converter.WriteSample(picture), RESULT_OK);
    VideoSample out;
    ASSERT_EQ(converter.ReadSample(out), RESULT_OK);
    EXPECT_EQ(out.GetTime(), 42);
    uint32_t flags = 1;
    ASSERT_EQ(converter.Convert(picture, out, flags), RESULT_OK);
    EXPECT_EQ(out.GetTime(), 42);
    EXPECT_EQ(flags, 0u);
    EXPECT_EQ(converter.WriteSample(VideoSample()), RESULT_OK);
    EXPECT_TRUE(converter.IsDraining());
    EXPECT_EQ(converter.ReadSample(out), 1);
    EXPECT_TRUE(out.IsNull());
    EXPECT_EQ(converter.End(), RESULT_OK);
}

TEST(FilterWrapper, NullWrappersRefuseToAct)
{
    AudioFilter none;
    AudioSample out;
    EXPECT_EQ(none.Begin(), RESULT_NULL_POINTER);
    EXPECT_EQ(none.ReadSample(out), RESULT_NULL_POINTER);
    EXPECT_EQ(none.GetOutputFormat(), 0u);
    EXPECT_TRUE(none.GetInputProperties().IsNull());
    VideoConverter converter;
    uint32_t flags = 0;
    VideoSample picture;
    EXPECT_EQ(converter.Convert(picture, picture, flags), RESULT_NULL_POINTER);
}

#if VEK_FAULT_INJECTION
TEST(FilterWrapper, ReorderingSurvivesEveryFailedAllocation)
{
    VekTest::WalkAllocationFailures("swapped pairs", [] {
        RObject<TestVideoConverter> filter(new TestVideoConverter());
        if (!filter)
            return true;
        filter->swapPairs = true;
        filter->outputFormats = {Four("I420")};
        RObject<CVideoProperties> input(new CVideoProperties());
        if (!input)
            return true;
        input->SetFormat(Four("I420"));
        filter->SetInputProperties(input);
        int result = filter->Begin();
        for (int32_t n = 0; n < 3 && result >= 0; ++n) {
            RObject<CVideoSample> picture(CVideoSample::Create());
            result = picture ? filter->WriteSample(picture) : RESULT_OUT_OF_MEMORY;
        }
        filter->WriteSample(nullptr);
        CVideoSample* out = nullptr;
        while (filter->ReadSample(out) == RESULT_OK)
            RObject<CVideoSample>(out).Get();
        filter->End();
        if (result < 0 && result != RESULT_OUT_OF_MEMORY)
            ADD_FAILURE() << GetResultName(result);
        return result >= 0 || result == RESULT_OUT_OF_MEMORY || result == RESULT_UNEXPECTED;
    });
}
#endif

} // namespace
