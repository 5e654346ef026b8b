// The filter life cycle: Begin's checks and default output, the drain and
// its -19811 window, reads on a running filter, Begin twice, and the queue
// shared between a writing and a reading thread.
#include <vek/filters/CSubtitleConverter.h>
#include <vek/media/VideoFormat.h>

#include <gtest/gtest.h>

#include <thread>

#include "filters/TestFilters.h"

using namespace Quorvex::Vek;
using VekTest::TestVideoConverter;

namespace {

RObject<CVideoProperties> Described(uint32_t format)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetFormat(format);
    properties->SetSize(64, 36);
    return properties;
}

RObject<CVideoSample> Picture(int64_t time)
{
    RObject<CVideoSample> picture(CVideoSample::Create());
    picture->SetTime(time);
    return picture;
}

// A filter with input properties, offering NV12 then UYVY.
RObject<TestVideoConverter> Configured()
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    filter->outputFormats = {Four("NV12"), Four("UYVY")};
    filter->SetInputProperties(Described(VideoFormat::Planar420YUV));
    return filter;
}

TEST(FilterLifeCycle, BeginChecksDescriptionsAndDefaultsTheOutput)
{
    RObject<TestVideoConverter> bare(new TestVideoConverter());
    EXPECT_EQ(bare->Begin(), RESULT_FILTER_NO_INPUT_PROPERTIES);
    bare->SetInputProperties(Described(VideoFormat::Planar420YUV));
    EXPECT_EQ(bare->Begin(), RESULT_FILTER_NO_OUTPUT_FORMAT);
    EXPECT_EQ(bare->begins, 0);

    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    EXPECT_EQ(filter->GetOutputFormat(), Four("NV12"));
    EXPECT_EQ(filter->GetOutputProperties()->GetWidth(), 64); // the output starts as a copy of the input
    EXPECT_EQ(filter->begins, 1);
}

TEST(FilterLifeCycle, RefusedOutputFormatKeepsThePreviousOne)
{
    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->SetOutputFormat(VideoFormat::Packed422UYVY), RESULT_OK);
    CVideoProperties* chosen = filter->GetOutputProperties();
    EXPECT_EQ(filter->SetOutputFormat(VideoFormat::Planar444YUV), RESULT_FORMAT_ERROR);
    EXPECT_EQ(filter->GetOutputProperties(), chosen);
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    EXPECT_EQ(filter->GetOutputFormat(), Four("UYVY")); // Begin keeps a chosen format
}

TEST(FilterLifeCycle, DrainRunsOnceAndRefusesInputUntilItEnds)
{
    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    ASSERT_EQ(filter->WriteSample(Picture(1)), RESULT_OK);
    EXPECT_EQ(filter->WriteSample(nullptr), RESULT_OK);
    EXPECT_EQ(filter->WriteSample(nullptr), RESULT_OK);
    EXPECT_EQ(filter->drains, 1);
    EXPECT_TRUE(filter->IsDraining());
    EXPECT_EQ(filter->WriteSample(Picture(2)), RESULT_FILTER_DRAINING);

    CVideoSample* out = nullptr;
    ASSERT_EQ(filter->ReadSample(out), RESULT_OK); // queued output still comes out while draining
    RObject<CVideoSample> first(out);
    EXPECT_EQ(first->GetTime(), 1);
    EXPECT_EQ(filter->WriteSample(Picture(2)), RESULT_FILTER_DRAINING);
    EXPECT_EQ(filter->ReadSample(out), 1); // the drain is over
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(filter->IsDraining());
    EXPECT_EQ(filter->WriteSample(Picture(3)), RESULT_OK);
}

TEST(FilterLifeCycle, ReadingARunningFilterWithNothingQueuedAsksForInput)
{
    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    CVideoSample* out = nullptr;
    EXPECT_EQ(filter->ReadSample(out), 1);
    EXPECT_FALSE(filter->IsDraining());
    EXPECT_EQ(filter->drains, 0);
}

TEST(FilterLifeCycle, BeginTwiceEndsFirstAndDropsQueuedOutput)
{
    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    ASSERT_EQ(filter->WriteSample(Picture(1)), RESULT_OK);
    filter->WriteSample(nullptr);
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    EXPECT_EQ(filter->ends, 2); // each Begin ends first
    EXPECT_FALSE(filter->IsDraining());
    CVideoSample* out = nullptr;
    EXPECT_EQ(filter->ReadSample(out), 1);
}

TEST(FilterLifeCycle, CoreOperationsAreMissingUntilAFilterProvidesThem)
{
    struct Bare : CSubtitleConverter {
        Bare() : CSubtitleConverter(Four("bare")) {}
    };
    RObject<Bare> filter(new Bare());
    RObject<CSubtitleSample> sample(CSubtitleSample::Create());
    EXPECT_EQ(filter->WriteSample(sample), RESULT_NOT_IMPLEMENTED);
    CSubtitleSample* out = nullptr;
    EXPECT_EQ(filter->ReadSample(out), RESULT_NOT_IMPLEMENTED);
}

TEST(FilterLifeCycle, OutputQueueServesAReaderWhileAnotherThreadWrites)
{
    RObject<TestVideoConverter> filter = Configured();
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    constexpr int Count = 2000;
    std::thread writer([&] {
        for (int i = 0; i < Count; ++i)
            filter->WriteSample(Picture(i));
    });
    int64_t expected = 0;
    while (expected < Count) {
        CVideoSample* out = nullptr;
        if (filter->ReadSample(out) == RESULT_OK) {
            RObject<CVideoSample> picture(out);
            ASSERT_EQ(picture->GetTime(), expected++);
        } else {
            std::this_thread::yield();
        }
    }
    writer.join();
}

} // namespace
