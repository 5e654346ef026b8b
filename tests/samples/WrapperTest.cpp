// Public sample and metadata wrappers: adopting versus sharing, objects
// handed back, and null wrappers answering without touching anything.
#include <vek/core/Result.h>
#include <vek/samples/AudioSample.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/SubtitleSample.h>
#include <vek/samples/VideoSample.h>

#include <gtest/gtest.h>

using namespace Quorvex::Vek;

TEST(SampleWrapper, AdoptsAndShares)
{
    CVideoSample* raw = CVideoSample::Create();
    {
        VideoSample adopted(raw);
        EXPECT_EQ(raw->GetReferenceCount(), 1);
        VideoSample shared = VideoSample::FromObject(raw);
        MediaSample plain = shared; // a copy shares
        EXPECT_EQ(raw->GetReferenceCount(), 3);
        EXPECT_EQ(plain.SetTime(40), RESULT_OK);
        EXPECT_EQ(adopted.GetTime(), 40);
        raw->Acquire(); // keep it past the wrappers for the check below
    }
    EXPECT_EQ(raw->GetReferenceCount(), 1);
    raw->Release();
}

TEST(SampleWrapper, ForwardsToTheSample)
{
    VideoSample video = VideoSample::Create();
    ASSERT_FALSE(video.IsNull());
    video.SetTime(1000);
    video.SetDuration(40);
    video.SetCompositionOffset(80);
    EXPECT_EQ(video.AdjustTime(10), RESULT_OK);
    EXPECT_EQ(video.GetCompositionTime(), 1080);
    EXPECT_EQ(video.SetPictureType(5), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(video.SetCompositionTrim(2, 2), RESULT_ARGUMENT_OUT_OF_RANGE);
    int32_t leading = -1, trailing = -1;
    video.SetCompositionTrim(4, 0);
    EXPECT_EQ(video.GetCompositionTrim(leading, trailing), RESULT_OK);
    EXPECT_EQ(leading, 4);
    EXPECT_EQ(video.GetCompositionDuration(), 36);

    RObject<CLinearDataReference> bytes(CLinearDataReference::Create(16));
    video.SetDataReference(bytes);
    {
        LockedDataReference locked = video.GetLockedDataReference();
        EXPECT_EQ(locked.GetLength(), 16);
        EXPECT_EQ(locked.GetData(), bytes->GetData());
        EXPECT_EQ(bytes->GetReferenceCount(), 3) << "sample and guard hold the bytes";
    }
    EXPECT_EQ(bytes->GetReferenceCount(), 2) << "the guard was adopted, not leaked";

    Metadata metadata = Metadata::Create();
    EXPECT_EQ(video.SetMetadata(metadata), RESULT_OK);
    Metadata back = video.GetMetadata();
    EXPECT_EQ(back.ToObject(), metadata.ToObject());
    EXPECT_EQ(metadata->GetReferenceCount(), 3) << "wrapper, sample and the shared copy";

    VideoSample derived = VideoSample::Create();
    EXPECT_EQ(derived.SetOriginal(video), RESULT_OK);
    EXPECT_EQ(derived.GetOriginal().ToObject(), video.ToObject());

    AudioSample audio = AudioSample::Create();
    audio.SetPackets(2);
    audio.SetFrames(512);
    EXPECT_EQ(audio.GetDuration(), 1024);
    SubtitleSample subtitle = SubtitleSample::Create();
    subtitle.SetDuration(90);
    EXPECT_EQ(subtitle.GetDuration(), 90);
}

TEST(SampleWrapper, MetadataRoundTripsThroughWrappers)
{
    Metadata metadata = Metadata::Create();
    RObject<CMetadataElement> element(CMetadataElement::Create(Four("user"), nullptr, 0));
    metadata.AddElement(element);
    metadata.SetDuration(50);
    Metadata first, second;
    EXPECT_EQ(metadata.Split(first, second), RESULT_OK);
    EXPECT_EQ(first.GetDuration() + second.GetDuration(), 50);
    EXPECT_EQ(first->GetReferenceCount(), 1) << "split parts are adopted";
    Metadata copy = Metadata::FromAtom(metadata.ToAtom());
    ASSERT_FALSE(copy.IsNull());
    EXPECT_TRUE(copy.ContainsElement(Four("user")));
    EXPECT_TRUE(Metadata::FromByteArray(ByteArray()).IsNull());
}

TEST(SampleWrapper, NullWrappersAnswerWithoutActing)
{
    VideoSample video;
    Metadata metadata;
    LockedDataReference locked;
    const int results[] = {
        video.SetTime(1),         video.SetHint(1),          video.SetTrim(1),
        video.SetCompositionTrim(1, 0), video.SetDataReference(nullptr), video.SetMetadata(metadata),
        video.MakeLocalMetadataCopy(), video.SetOriginal(video), video.SetDuration(1),
        video.AdjustTime(1),      video.SetPictureType(0),   video.SetAtomData(nullptr, 0),
        metadata.AddElement(nullptr), metadata.Merge(metadata), metadata.SetDuration(1),
        locked.SetLength(0),
    };
    for (int result : results)
        EXPECT_EQ(result, RESULT_NULL_POINTER);
    EXPECT_EQ(video.GetCompositionTime(), 0);
    EXPECT_FALSE(video.ContainsCompositionTime(0));
    EXPECT_TRUE(video.GetLockedDataReference().IsNull());
    EXPECT_TRUE(video.GetMetadata().IsNull());
    EXPECT_TRUE(metadata.ToAtom().IsNull());
    EXPECT_EQ(locked.GetData(), nullptr);
    Metadata a, b;
    EXPECT_EQ(metadata.Split(a, b), RESULT_NULL_POINTER);
}
