// Per-sample facts carried across filters: video records following their
// pictures through reordering while ordered metadata keeps arrival order,
// the one-to-one copy, and audio records merged into one output.
#include <vek/samples/CAncillaryMetadataElement.h>
#include <vek/samples/CInterlaceMetadataElement.h>

#include <gtest/gtest.h>

#include "filters/TestFilters.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using VekTest::TestVideoConverter;

namespace {

// Picture n: time 100n, frame number n, picture type by n, a frame-bound
// field order (1 + n % 3) and one caption packet on line n.
RObject<CVideoSample> Picture(int32_t n)
{
    RObject<CVideoSample> picture(CVideoSample::Create());
    picture->SetTime(100 * n);
    picture->SetDuration(100);
    picture->SetFrameNumber(n);
    picture->SetPictureType(n % 3);
    picture->SetCompositionOffset(-n);
    picture->SetHint(n == 0 ? CMediaSample::KeyFrameAligned : 0);
    RObject<CMetadata> metadata(CMetadata::Create());
    RObject<CMetadataElement> order(CInterlaceMetadataElement::Create(uint32_t(1 + n % 3)));
    const unsigned char words[] = {uint8_t(n)};
    RObject<CMetadataElement> caption(CAncillaryMetadataElement::Create(uint16_t(n), 0x61, 0x01, words, 1));
    metadata->AddElement(order);
    metadata->AddElement(caption);
    picture->SetMetadata(metadata);
    return picture;
}

uint32_t FieldOrderOf(CVideoSample* picture)
{
    auto* element = static_cast<CInterlaceMetadataElement*>(
        picture->GetMetadata()->GetElement(CInterlaceMetadataElement::Type));
    return element ? element->GetFieldOrder() : 0;
}

std::vector<int> CaptionLinesOf(CMetadata* metadata)
{
    std::vector<int> lines;
    for (int32_t i = 0; metadata && i < metadata->GetElementCount(); ++i)
        if (metadata->GetElementAt(i)->GetType() == CAncillaryMetadataElement::Type)
            lines.push_back(static_cast<CAncillaryMetadataElement*>(metadata->GetElementAt(i))->GetLine());
    return lines;
}

TEST(FilterMetadata, RecordsFollowReorderedPicturesWhileCaptionsKeepArrivalOrder)
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    filter->swapPairs = true;
    filter->outputFormats = {Four("I420")};
    RObject<CVideoProperties> input(new CVideoProperties());
    input->SetFormat(Four("I420"));
    filter->SetInputProperties(input);
    ASSERT_EQ(filter->Begin(), RESULT_OK);
    for (int32_t n = 0; n < 5; ++n)
        ASSERT_EQ(filter->WriteSample(Picture(n)), RESULT_OK);
    filter->WriteSample(nullptr);

    const int32_t order[] = {1, 0, 3, 2, 4};
    for (int i = 0; i < 5; ++i) {
        CVideoSample* out = nullptr;
        ASSERT_EQ(filter->ReadSample(out), RESULT_OK) << "output " << i;
        RObject<CVideoSample> picture(out);
        const int32_t n = order[i];
        EXPECT_EQ(picture->GetFrameNumber(), n);
        EXPECT_EQ(picture->GetTime(), 100 * n);
        EXPECT_EQ(picture->GetCompositionOffset(), -n);
        EXPECT_EQ(picture->GetPictureType(), n % 3);
        EXPECT_EQ(picture->GetHint(), n == 0 ? CMediaSample::KeyFrameAligned : 0);
        EXPECT_EQ(FieldOrderOf(picture), uint32_t(1 + n % 3)) << "frame-bound metadata stays with frame " << n;
        EXPECT_EQ(CaptionLinesOf(picture->GetMetadata()), std::vector<int>{i}) << "captions leave in arrival order";
    }
    CVideoSample* out = nullptr;
    EXPECT_EQ(filter->ReadSample(out), 1);
}

TEST(FilterMetadata, UnknownKeysAndNullSamplesAreRefused)
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    RObject<CVideoSample> picture = Picture(1);
    EXPECT_EQ(filter->DequeueAndMergeSampleMetadata(picture, 7), RESULT_UNEXPECTED);
    int32_t key = 0;
    ASSERT_EQ(filter->SplitAndEnqueueSampleMetadata(picture, &key), RESULT_OK);
    EXPECT_EQ(filter->DequeueAndMergeSampleMetadata(nullptr, key), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(filter->DequeueAndMergeSampleMetadata(picture, key + 1), RESULT_UNEXPECTED);
    EXPECT_EQ(filter->DequeueAndMergeSampleMetadata(picture, key), RESULT_OK);
    EXPECT_EQ(filter->DequeueAndMergeSampleMetadata(picture, key), RESULT_UNEXPECTED); // taken once
    EXPECT_EQ(filter->CopySampleMetadata(nullptr, picture), RESULT_ARGUMENT_NULL);
}

TEST(FilterMetadata, FullRingDropsOnlyTheOrderedPart)
{
    struct SmallRing : TestVideoConverter {
        SmallRing() { SetMetadataRingCapacity(1); }
    };
    RObject<SmallRing> filter(new SmallRing());
    int32_t first = 0;
    int32_t second = 0;
    ASSERT_EQ(filter->SplitAndEnqueueSampleMetadata(Picture(1), &first), RESULT_OK);
    ASSERT_EQ(filter->SplitAndEnqueueSampleMetadata(Picture(2), &second), RESULT_OK);
    RObject<CVideoSample> a(CVideoSample::Create());
    RObject<CVideoSample> b(CVideoSample::Create());
    ASSERT_EQ(filter->DequeueAndMergeSampleMetadata(a, first), RESULT_OK);
    ASSERT_EQ(filter->DequeueAndMergeSampleMetadata(b, second), RESULT_OK);
    EXPECT_EQ(CaptionLinesOf(a->GetMetadata()), std::vector<int>{1});
    EXPECT_EQ(CaptionLinesOf(b->GetMetadata()), std::vector<int>{});
    EXPECT_EQ(FieldOrderOf(b), 3u);
}

TEST(FilterMetadata, CopyGivesTheOutputItsOwnMetadataAndTheBag)
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    RObject<CVideoSample> from = Picture(2);
    from->SetFourProperty("test.kind", Four("abcd"));
    RObject<CVideoSample> to(CVideoSample::Create());
    ASSERT_EQ(filter->CopySampleMetadata(to, from), RESULT_OK);
    EXPECT_NE(to->GetMetadata(), from->GetMetadata());
    EXPECT_EQ(CaptionLinesOf(to->GetMetadata()), std::vector<int>{2});
    unsigned int kind = 0;
    EXPECT_EQ(to->GetFourProperty("test.kind", kind), 4);
    EXPECT_EQ(kind, Four("abcd"));
    EXPECT_EQ(to->GetDuration(), 100);
}

RObject<CAudioSample> Buffer(int64_t time, int32_t line)
{
    RObject<CAudioSample> sample(CAudioSample::Create());
    sample->SetTime(time);
    sample->SetTrim(time == 0 ? -10 : 0);
    sample->SetHint(time == 0 ? CMediaSample::Discontinuity : 0);
    if (line >= 0) {
        RObject<CMetadata> metadata(CMetadata::Create());
        RObject<CMetadataElement> caption(CAncillaryMetadataElement::Create(uint16_t(line), 0x61, 0x01, nullptr, 0));
        metadata->AddElement(caption);
        sample->SetMetadata(metadata);
    }
    return sample;
}

TEST(FilterMetadata, AudioOutputTakesTheFirstTimeAndEveryBuffersMetadata)
{
    RObject<VekTest::TestAudioConverter> filter(new VekTest::TestAudioConverter({}));
    RObject<CAudioSample> output(CAudioSample::Create());
    EXPECT_EQ(filter->DequeueSampleMetadata(output), 1);
    EXPECT_EQ(filter->DequeueSampleMetadata(nullptr), RESULT_NULL_POINTER);

    RObject<CAudioSample> inputs[] = {Buffer(0, -1), Buffer(480, 7), Buffer(960, 8), Buffer(1440, 9)};
    for (CAudioSample* input : inputs)
        ASSERT_EQ(filter->EnqueueSampleMetadata(input), RESULT_OK);
    ASSERT_EQ(filter->DequeueSampleMetadata(output), RESULT_OK);
    EXPECT_EQ(output->GetTime(), 0);
    EXPECT_EQ(output->GetTrim(), -10);
    EXPECT_EQ(output->GetHint(), CMediaSample::Discontinuity);
    EXPECT_EQ(CaptionLinesOf(output->GetMetadata()), (std::vector<int>{7, 8, 9}));
    EXPECT_EQ(CaptionLinesOf(inputs[1]->GetMetadata()), std::vector<int>{7}) << "inputs keep their own metadata";
    EXPECT_EQ(filter->DequeueSampleMetadata(output), 1);
}

} // namespace
