#include <gtest/gtest.h>

#include "FakeReader.h"

using namespace Quorvex::Vek;
using VekTest::Picture;

namespace {

RObject<CAudioIndexer> MakeAudioIndexer()
{
    RObject<CAudioProperties> properties(new CAudioProperties());
    properties->SetTimeScale(1000);
    return RObject<CAudioIndexer>(CAudioIndexer::Create(properties));
}

void AddAudio(CAudioIndexer* indexer, int64_t time, int32_t duration)
{
    RObject<CAudioSample> sample(new CAudioSample(1, duration));
    sample->SetTime(time);
    ASSERT_EQ(indexer->AddSample(sample), RESULT_OK);
}

RObject<CVideoIndexer> MakeVideoIndexer(const std::vector<Picture>& pictures)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetTimeScale(1000);
    RObject<CVideoIndexer> indexer(CVideoIndexer::Create(properties));
    for (const Picture& picture : pictures) {
        RObject<CVideoSample> sample(new CVideoSample());
        sample->SetTime(picture.compositionTime - picture.offset);
        sample->SetCompositionOffset(picture.offset);
        sample->SetDuration(picture.duration);
        sample->SetPictureType(picture.type);
        EXPECT_EQ(indexer->AddSample(sample), RESULT_OK);
    }
    return indexer;
}

// The index GetSampleAtTime answers, or its failure.
int IndexAt(CMediaIndexer* indexer, int64_t time)
{
    int32_t index = -1;
    CMediaSample* found = nullptr;
    const int result = indexer->GetSampleAtTime(time, index, found);
    RObject<CMediaSample> sample(found);
    if (result < 0) {
        EXPECT_EQ(index, -1);
        EXPECT_EQ(found, nullptr);
        return result;
    }
    EXPECT_TRUE(found->ContainsCompositionTime(time)) << "time " << time;
    return index;
}

} // namespace

TEST(MediaIndexer, EmptyTrackAnswersByCompletion)
{
    struct Case {
        bool complete;
        int64_t time;
        int expected;
    };
    const Case cases[] = {
        {true, 0, RESULT_BEYOND_END_OF_SAMPLES},
        {false, 0, RESULT_BEYOND_INDEXER_PROGRESS},
        {false, 5000, RESULT_BEYOND_INDEXER_PROGRESS},
        {true, -1, RESULT_ARGUMENT_OUT_OF_RANGE},
    };
    for (const Case& c : cases) {
        RObject<CAudioIndexer> indexer = MakeAudioIndexer();
        if (c.complete)
            indexer->OnComplete();
        EXPECT_EQ(IndexAt(indexer, c.time), c.expected) << c.complete << " " << c.time;
        CMediaSample* first = nullptr;
        EXPECT_EQ(indexer->GetFirstSample(first), c.complete ? RESULT_BEYOND_END_OF_SAMPLES : RESULT_BEYOND_INDEXER_PROGRESS);
    }
}

TEST(MediaIndexer, BinarySearchFindsEveryBoundary)
{
    // Ten samples of 10 units: [0,10) [10,20) ... [90,100).
    for (bool complete : {true, false}) {
        RObject<CAudioIndexer> indexer = MakeAudioIndexer();
        for (int i = 0; i < 10; ++i)
            AddAudio(indexer, i * 10, 10);
        if (complete)
            indexer->OnComplete();
        const std::pair<int64_t, int> cases[] = {
            {0, 0}, {9, 0}, {10, 1}, {49, 4}, {50, 5}, {55, 5}, {90, 9}, {99, 9},
            {100, complete ? RESULT_BEYOND_END_OF_SAMPLES : RESULT_BEYOND_INDEXER_PROGRESS},
        };
        for (const auto& [time, expected] : cases)
            EXPECT_EQ(IndexAt(indexer, time), expected) << "time " << time << " complete " << complete;
    }
}

TEST(MediaIndexer, ReorderedPicturesAreFoundAtEveryTime)
{
    // Decode order is not presentation order: the binary search lands near
    // the picture and the outward search must finish the job.
    RObject<CVideoIndexer> indexer = MakeVideoIndexer(VekTest::IpbbGroups(25));
    indexer->OnComplete();
    ASSERT_EQ(indexer->GetDuration(), 1000);
    for (int64_t time = 0; time < 1000; ++time)
        ASSERT_GE(IndexAt(indexer, time), 0) << "time " << time;
}

TEST(MediaIndexer, TimeInAGapIsNotRoundedDown)
{
    RObject<CAudioIndexer> indexer = MakeAudioIndexer();
    AddAudio(indexer, 0, 10);
    AddAudio(indexer, 20, 10);
    indexer->OnComplete();
    EXPECT_EQ(IndexAt(indexer, 15), RESULT_BEYOND_END_OF_SAMPLES);
    EXPECT_EQ(IndexAt(indexer, 20), 1);
}

TEST(MediaIndexer, OutwardSearchLooksAtMost32SamplesAway)
{
    // The first sample in index order is the last one shown; every other
    // sample covers [0, 10 * (count - 1)). A time inside the first sample is
    // found only when it lies within 32 positive samples of the midpoint.
    const std::pair<int, int> cases[] = {
        {20, 0}, {32, 0}, {33, RESULT_BEYOND_END_OF_SAMPLES}, {100, RESULT_BEYOND_END_OF_SAMPLES}};
    for (const auto& [count, expected] : cases) {
        RObject<CAudioIndexer> indexer = MakeAudioIndexer();
        const int64_t end = int64_t(count - 1) * 10;
        AddAudio(indexer, end, 10);
        for (int i = 1; i < count; ++i)
            AddAudio(indexer, int64_t(i - 1) * 10, 10);
        indexer->OnComplete();
        EXPECT_EQ(IndexAt(indexer, end + 5), expected) << count << " samples";
    }
}

TEST(VideoIndexer, ComparerCutsTimesTo32Bits)
{
    struct Case {
        int64_t timeA;
        int32_t offsetA;
        int64_t timeB;
        int32_t offsetB;
        int sign;
    };
    const int64_t wrap = int64_t(1) << 32;
    const Case cases[] = {
        {5, 0, 10, 0, -1},
        {wrap + 5, 0, 10, 0, -1},          // the larger time orders first once cut
        {wrap + 10, 3, 10, 1, 1},          // cut times tie: the offsets decide
        {10, 1, 10, 3, -1},
        {INT32_MAX, 0, INT32_MIN, 0, -1},  // the 32-bit difference wraps
        {7, 2, 7, 2, 0},
    };
    for (const Case& c : cases) {
        RObject<CVideoSample> a(new CVideoSample());
        RObject<CVideoSample> b(new CVideoSample());
        a->SetTime(c.timeA - c.offsetA);
        a->SetCompositionOffset(c.offsetA);
        b->SetTime(c.timeB - c.offsetB);
        b->SetCompositionOffset(c.offsetB);
        const int order = CVideoIndexer::Comparer(a, b);
        EXPECT_EQ((order > 0) - (order < 0), c.sign) << c.timeA << " vs " << c.timeB;
    }
}

TEST(VideoIndexer, GroupsAreSortedStablyIntoPresentationOrder)
{
    const int64_t wrap = int64_t(1) << 32;
    // Group 1: I P B B; group 2: I, a picture whose cut time (35) shows it before the I, and two
    // equal pictures that must keep their decode order.
    std::vector<Picture> pictures = VekTest::IpbbGroups(1);
    pictures.push_back({40, 10, 0, CVideoSample::I});
    pictures.push_back({wrap + 35, 10, 0, CVideoSample::P});
    pictures.push_back({60, 10, 0, CVideoSample::B});
    pictures.push_back({60, 10, 0, CVideoSample::B});
    RObject<CVideoIndexer> indexer = MakeVideoIndexer(pictures);
    int32_t index = 0;
    EXPECT_EQ(indexer->GetPresentationIndex(4, index), RESULT_ARGUMENT_OUT_OF_RANGE) << "second group still open";
    indexer->OnComplete();
    const int32_t expected[] = {0, 2, 3, 1, 5, 4, 6, 7};
    for (int32_t rank = 0; rank < 8; ++rank) {
        ASSERT_EQ(indexer->GetPresentationIndex(rank, index), RESULT_OK);
        EXPECT_EQ(index, expected[rank]) << "rank " << rank;
    }
    int32_t start = -1;
    EXPECT_EQ(indexer->GetGroupStart(7, start), RESULT_OK);
    EXPECT_EQ(start, 4);
    EXPECT_TRUE(indexer->HasPredictiveSamples());
}

TEST(VideoIndexer, NextMinimumPresentationTimeLooksSixteenAhead)
{
    // Composition times fall by 10 per picture: the minimum of a window is
    // its last picture.
    std::vector<Picture> pictures;
    for (int i = 0; i < 40; ++i)
        pictures.push_back({1000 - i * 10, 10, 0, i == 0 ? CVideoSample::I : CVideoSample::P});
    RObject<CVideoIndexer> indexer = MakeVideoIndexer(pictures);
    const std::pair<int32_t, int64_t> cases[] = {{0, 1000 - 15 * 10}, {10, 1000 - 25 * 10}, {30, 1000 - 39 * 10}, {39, 610}};
    for (const auto& [index, expected] : cases) {
        int64_t time = -1;
        ASSERT_EQ(indexer->GetNextMinimumPresentationTime(index, time), RESULT_OK);
        EXPECT_EQ(time, expected) << "index " << index;
    }
    int64_t time = 0;
    EXPECT_EQ(indexer->GetNextMinimumPresentationTime(40, time), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(indexer->GetNextMinimumPresentationTime(-1, time), RESULT_ARGUMENT_OUT_OF_RANGE);
}

TEST(VideoIndexer, FramesCountFieldPairsOnceAndBitRateFollowsBytes)
{
    RObject<CVideoIndexer> indexer = MakeVideoIndexer({});
    const int32_t structures[] = {CVideoSample::Frame, CVideoSample::UpperField, CVideoSample::LowerField,
                                  CVideoSample::UpperField};
    for (int i = 0; i < 4; ++i) {
        RObject<CVideoSample> sample(new CVideoSample());
        RObject<CContainerDataReference> range(new CContainerDataReference(0, 500));
        sample->SetTime(i * 250);
        sample->SetDuration(250);
        sample->SetPictureStructure(structures[i]);
        sample->SetDataReference(range);
        ASSERT_EQ(indexer->AddSample(sample), RESULT_OK);
    }
    EXPECT_EQ(indexer->GetFrameCount(), 3);
    EXPECT_FALSE(indexer->HasPredictiveSamples());
    EXPECT_EQ(indexer->GetBitRate(), 2000 * 8) << "2000 bytes over one second";
    indexer->OnComplete();
    RObject<CVideoSample> late(new CVideoSample());
    EXPECT_EQ(indexer->AddSample(late), RESULT_BAD_ORDER_ERROR);
}
