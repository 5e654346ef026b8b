// Samples: composition timing, trims, picture codes, ownership of what a
// sample refers to, and what recycling through a pool resets and keeps.
#include <vek/core/CPoolBase.h>
#include <vek/core/Result.h>
#include <vek/samples/CAudioSample.h>
#include <vek/samples/CBufferDataReference.h>
#include <vek/samples/CSubtitleSample.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

RObject<CVideoSample> Video(int64_t time, int32_t duration, int32_t offset = 0)
{
    RObject<CVideoSample> sample(CVideoSample::Create());
    sample->SetTime(time);
    sample->SetDuration(duration);
    sample->SetCompositionOffset(offset);
    return sample;
}

} // namespace

TEST(MediaSample, AudioDurationIsPacketsTimesFrames)
{
    RObject<CAudioSample> audio(new CAudioSample(3, 1024));
    EXPECT_EQ(audio->GetDuration(), 3 * 1024);
    // Large packet and frame counts multiply without 32-bit overflow.
    audio->SetPackets(INT32_MAX);
    audio->SetFrames(4);
    EXPECT_EQ(audio->GetDuration(), int64_t(INT32_MAX) * 4);
}

TEST(MediaSample, CompositionWindow)
{
    struct Case {
        int64_t time;
        int32_t duration, offset, trim, hint;
        int64_t compositionTime, compositionDuration;
        int64_t inside, outside;
    };
    const Case cases[] = {
        {1000, 40, 0, 0, 0, 1000, 40, 1039, 1040},
        {1000, 40, 80, 0, 0, 1080, 40, 1080, 1079},
        {1000, 40, -20, 0, 0, 980, 40, 980, 1020},
        {1000, 40, 0, -10, 0, 1000, 30, 1029, 1030},
        {1000, 40, 0, 15, 0, 1000, 25, 1000, 1025},
        // Excluded: no duration, no time inside, whatever the fields say.
        {1000, 40, 0, 0, CMediaSample::Exclude, 1000, 0, INT64_MIN, 1000},
        {1000, 40, 0, 0, CMediaSample::Exclude | CMediaSample::KeyFrameAligned, 1000, 0, INT64_MIN, 1010},
        // Near the end of the time range the window test must not overflow.
        {INT64_MAX - 10, 40, 0, 0, 0, INT64_MAX - 10, 40, INT64_MAX, INT64_MIN},
    };
    for (const Case& c : cases) {
        RObject<CVideoSample> sample(Video(c.time, c.duration, c.offset));
        sample->SetTrim(c.trim);
        sample->SetHint(c.hint);
        SCOPED_TRACE(testing::Message() << "time " << c.time << " offset " << c.offset << " trim " << c.trim);
        EXPECT_EQ(sample->GetCompositionTime(), c.compositionTime);
        EXPECT_EQ(sample->GetCompositionDuration(), c.compositionDuration);
        if (c.inside != INT64_MIN) {
            EXPECT_TRUE(sample->ContainsCompositionTime(c.inside));
        }
        EXPECT_FALSE(sample->ContainsCompositionTime(c.outside));
    }
}

TEST(MediaSample, NonVideoSamplesComposeAtTheirTime)
{
    RObject<CAudioSample> audio(new CAudioSample(1, 100));
    audio->SetTime(500);
    EXPECT_EQ(audio->GetCompositionTime(), 500);
    EXPECT_TRUE(audio->ContainsCompositionTime(599));
    EXPECT_FALSE(audio->ContainsCompositionTime(600));
}

TEST(MediaSample, CompositionTrimRules)
{
    struct Case {
        int32_t leading, trailing;
        int result;
        int32_t trim; // starting from a trim of 7
    };
    const Case cases[] = {
        {5, 0, RESULT_OK, -5},
        {0, 3, RESULT_OK, 3},
        {0, 0, RESULT_OK, 7},
        {5, 3, RESULT_ARGUMENT_OUT_OF_RANGE, 7},
        {-1, 0, RESULT_ARGUMENT_OUT_OF_RANGE, 7},
        {0, -1, RESULT_ARGUMENT_OUT_OF_RANGE, 7},
    };
    VekTest::LogCapture log(1);
    for (const Case& c : cases) {
        RObject<CVideoSample> sample(Video(0, 40));
        sample->SetTrim(7);
        EXPECT_EQ(sample->SetCompositionTrim(c.leading, c.trailing), c.result) << c.leading << "," << c.trailing;
        EXPECT_EQ(sample->GetTrim(), c.trim) << c.leading << "," << c.trailing;
    }
    EXPECT_EQ(log.Count("CMediaSample::SetCompositionTrim: leading 5 and trailing 3"), 1u);

    RObject<CVideoSample> sample(Video(0, 40));
    int32_t leading = -1, trailing = -1;
    sample->SetTrim(-12);
    sample->GetCompositionTrim(leading, trailing);
    EXPECT_EQ(leading, 12);
    EXPECT_EQ(trailing, 0);
    sample->SetTrim(9);
    sample->GetCompositionTrim(leading, trailing);
    EXPECT_EQ(leading, 0);
    EXPECT_EQ(trailing, 9);
}

TEST(MediaSample, AdjustTimeKeepsCompositionTime)
{
    // The last two take the offset of 30 to the ends of its 32-bit range.
    const int32_t deltas[] = {10, -10, 0, INT32_MAX, -(INT32_MAX - 30)};
    for (int32_t delta : deltas) {
        RObject<CVideoSample> sample(Video(1000, 40, 30));
        const int64_t before = sample->GetCompositionTime();
        EXPECT_EQ(sample->AdjustTime(delta), RESULT_OK);
        EXPECT_EQ(sample->GetTime(), 1000 + int64_t(delta));
        EXPECT_EQ(sample->GetCompositionTime(), before) << delta;
    }
}

TEST(MediaSample, PictureCodes)
{
    EXPECT_STREQ(CVideoSample::PictureType[CVideoSample::B], "B");
    EXPECT_STREQ(CVideoSample::PictureStructure[CVideoSample::LowerField], "L");
    VekTest::LogCapture log(1);
    RObject<CVideoSample> sample(Video(0, 40));
    for (int32_t value : {-1, 3, INT32_MIN}) {
        EXPECT_EQ(sample->SetPictureType(CVideoSample::P), RESULT_OK);
        EXPECT_EQ(sample->SetPictureType(value), RESULT_NOT_SUPPORTED);
        EXPECT_EQ(sample->GetPictureType(), CVideoSample::P);
        EXPECT_EQ(sample->SetPictureStructure(CVideoSample::UpperField), RESULT_OK);
        EXPECT_EQ(sample->SetPictureStructure(value), RESULT_NOT_SUPPORTED);
        EXPECT_EQ(sample->GetPictureStructure(), CVideoSample::UpperField);
    }
    EXPECT_EQ(log.Count("CVideoSample::SetPictureType: picture type 3 "), 1u);
}

TEST(MediaSample, AtomIsCopiedAndReplaced)
{
    RObject<CVideoSample> sample(Video(0, 40));
    const unsigned char first[] = {1, 2, 3, 4, 5};
    EXPECT_EQ(sample->SetAtomData(first, 5), RESULT_OK);
    EXPECT_EQ(sample->GetAtomLength(), 5);
    EXPECT_EQ(std::memcmp(sample->GetAtomData(), first, 5), 0);
    // A copy: the caller's bytes may change afterwards.
    RObject<CByteArray> atom(sample->GetAtom());
    ASSERT_TRUE(atom);
    EXPECT_TRUE(atom->Equals(first, 5));
    RObject<CByteArray> shorter(CByteArray::Create(first + 3, 2));
    EXPECT_EQ(sample->SetAtom(shorter), RESULT_OK);
    EXPECT_EQ(sample->GetAtomLength(), 2);
    EXPECT_EQ(sample->GetAtomData()[0], 4);
    EXPECT_EQ(sample->SetAtomData(first, -1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(sample->GetAtomLength(), 2);
    EXPECT_EQ(sample->SetAtom(nullptr), RESULT_OK);
    EXPECT_EQ(sample->GetAtomData(), nullptr);
    EXPECT_EQ(sample->GetAtom(), nullptr);
}

TEST(MediaSample, ReferencesAreSharedAndReplaced)
{
    RObject<CVideoSample> sample(Video(0, 40));
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 4));
    RObject<CBufferDataReference> first(new CBufferDataReference(bytes));
    RObject<CBufferDataReference> second(new CBufferDataReference(nullptr));
    RObject<CMetadata> metadata(CMetadata::Create());
    RObject<CVideoSample> original(Video(0, 40));

    EXPECT_EQ(sample->SetDataReference(first), RESULT_OK);
    EXPECT_EQ(first->GetReferenceCount(), 2);
    EXPECT_EQ(sample->SetDataReference(second), RESULT_OK);
    EXPECT_EQ(first->GetReferenceCount(), 1) << "the replaced reference is released";
    EXPECT_TRUE(sample->HasDataReference());
    EXPECT_EQ(sample->SetDataReference(nullptr), RESULT_OK);
    EXPECT_FALSE(sample->HasDataReference());
    EXPECT_EQ(sample->GetLockedDataReference(), nullptr);

    EXPECT_EQ(sample->SetMetadata(metadata), RESULT_OK);
    EXPECT_EQ(metadata->GetReferenceCount(), 2);
    EXPECT_EQ(sample->SetOriginal(original), RESULT_OK);
    EXPECT_EQ(sample->GetOriginal(), original.Get());
    EXPECT_EQ(original->GetReferenceCount(), 2);
}

TEST(MediaSample, OriginalChainsCannotLoop)
{
    RObject<CVideoSample> a(Video(0, 40));
    RObject<CVideoSample> b(Video(0, 40));
    RObject<CVideoSample> c(Video(0, 40));
    VekTest::LogCapture log(1);
    EXPECT_EQ(a->SetOriginal(a), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(b->SetOriginal(a), RESULT_OK);
    EXPECT_EQ(c->SetOriginal(b), RESULT_OK);
    EXPECT_EQ(a->SetOriginal(c), RESULT_ARGUMENT_OUT_OF_RANGE) << "a -> c -> b -> a would never be freed";
    EXPECT_EQ(a->GetOriginal(), nullptr);
    EXPECT_EQ(log.Count("CMediaSample::SetOriginal: "), 2u);
}

TEST(MediaSample, LocalMetadataCopyDetachesFromOtherSamples)
{
    RObject<CVideoSample> a(Video(0, 40));
    RObject<CVideoSample> b(Video(0, 40));
    RObject<CMetadata> shared(CMetadata::Create());
    a->SetMetadata(shared);
    b->SetMetadata(shared);
    EXPECT_EQ(a->MakeLocalMetadataCopy(), RESULT_OK);
    ASSERT_NE(a->GetMetadata(), shared.Get());
    EXPECT_TRUE(a->GetMetadata()->HasLocalDataCopy());
    RObject<CMetadataElement> element(CMetadataElement::Create(Four("test"), nullptr, 0));
    a->GetMetadata()->AddElement(element);
    EXPECT_EQ(shared->GetElementCount(), 0);
    EXPECT_EQ(b->GetMetadata(), shared.Get());
}

TEST(MediaSample, RecyclingResetsContentAndKeepsBuffers)
{
    RObject<CPool<CVideoSample>> pool(CPool<CVideoSample>::Create(2));
    CVideoSample* sample = pool->Get();
    RObject<CBufferDataReference> reference(new CBufferDataReference(nullptr));
    RObject<CMetadata> metadata(CMetadata::Create());
    RObject<CVideoSample> original(Video(0, 40));
    const unsigned char atom[] = {9, 8, 7};
    sample->SetTime(77);
    sample->SetTrim(-3);
    sample->SetHint(CMediaSample::Discontinuity);
    sample->SetDuration(40);
    sample->SetCompositionOffset(12);
    sample->SetFrameNumber(5);
    sample->SetPictureType(CVideoSample::B);
    sample->SetPictureStructure(CVideoSample::LowerField);
    sample->SetAtomData(atom, 3);
    sample->SetDataReference(reference);
    sample->SetMetadata(metadata);
    sample->SetOriginal(original);
    sample->SetProperty("test.key", 1, atom);
    const unsigned char* atomBuffer = sample->GetAtomData();
    sample->Release();

    EXPECT_EQ(reference->GetReferenceCount(), 1);
    EXPECT_EQ(metadata->GetReferenceCount(), 1);
    EXPECT_EQ(original->GetReferenceCount(), 1);

    RObject<CVideoSample> again(pool->Get());
    ASSERT_EQ(again.Get(), sample);
    EXPECT_EQ(again->GetTime(), 0);
    EXPECT_EQ(again->GetTrim(), 0);
    EXPECT_EQ(again->GetHint(), 0);
    EXPECT_EQ(again->GetDuration(), 0);
    EXPECT_EQ(again->GetCompositionOffset(), 0);
    EXPECT_EQ(again->GetFrameNumber(), 0);
    EXPECT_EQ(again->GetPictureType(), CVideoSample::I);
    EXPECT_EQ(again->GetPictureStructure(), CVideoSample::Frame);
    EXPECT_EQ(again->GetAtomLength(), 0);
    EXPECT_FALSE(again->HasDataReference());
    EXPECT_EQ(again->GetMetadata(), nullptr);
    EXPECT_EQ(again->GetOriginal(), nullptr);
    EXPECT_EQ(again->GetPropertyCount(), 0);
    again->SetAtomData(atom, 2);
    EXPECT_EQ(again->GetAtomData(), atomBuffer) << "the atom buffer is reused";
}

TEST(MediaSample, AudioAndSubtitleRecyclingResets)
{
    RObject<CPool<CAudioSample>> audioPool(CPool<CAudioSample>::Create(1));
    CAudioSample* audio = audioPool->Get();
    audio->SetPackets(4);
    audio->SetFrames(10);
    audio->SetTime(9);
    audio->Release();
    RObject<CAudioSample> audioAgain(audioPool->Get());
    EXPECT_EQ(audioAgain->GetDuration(), 0);
    EXPECT_EQ(audioAgain->GetTime(), 0);

    RObject<CPool<CSubtitleSample>> subtitlePool(CPool<CSubtitleSample>::Create(1));
    CSubtitleSample* subtitle = subtitlePool->Get();
    subtitle->SetDuration(100);
    subtitle->Release();
    RObject<CSubtitleSample> subtitleAgain(subtitlePool->Get());
    EXPECT_EQ(subtitleAgain->GetDuration(), 0);
}
