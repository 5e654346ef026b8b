#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "FakeReader.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#if defined(__linux__)
#include <pthread.h>
#endif

using namespace Quorvex::Vek;
using VekTest::FakeReader;

namespace {

struct ProgressLog {
    std::vector<std::pair<unsigned int, double>> calls;
    int stopAtCall = -1;
    std::string threadName;
};

int RecordProgress(void* context, unsigned int state, double progress)
{
    auto* log = static_cast<ProgressLog*>(context);
#if defined(__linux__)
    char name[32] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    log->threadName = name;
#endif
    log->calls.emplace_back(state, progress);
    return int(log->calls.size()) - 1 == log->stopAtCall ? 1 : 0;
}

RObject<FakeReader> MakeReader(int groups, int32_t audioTracks, int32_t audioSamples)
{
    RObject<FakeReader> reader(new FakeReader());
    reader->pictures = VekTest::IpbbGroups(groups);
    reader->audioTracks = audioTracks;
    reader->audioSamples = audioSamples;
    return reader;
}

} // namespace

TEST(Indexer, StateCodesPutTheFirstCharacterHigh)
{
    EXPECT_EQ(uint32_t(CIndexer::Idle), 0x69646C65u);
    EXPECT_EQ(uint32_t(CIndexer::Active), 0x72756E20u);
    EXPECT_EQ(uint32_t(CIndexer::Complete), 0x646F6E65u);
    EXPECT_EQ(uint32_t(CIndexer::Failed), 0x6661696Cu);
}

TEST(Indexer, BeginMakesTracksInOrderWithinTheLimits)
{
    RObject<CIndexer> none(CIndexer::Create(nullptr));
    EXPECT_EQ(none->Begin(false), RESULT_NULL_POINTER);
    EXPECT_EQ(none->GetState(), uint32_t(CIndexer::Idle));

    RObject<FakeReader> reader = MakeReader(2, 3, 4);
    reader->videoTracks = 2;
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    ASSERT_EQ(indexer->Begin(false), RESULT_OK);
    EXPECT_EQ(indexer->GetVideoMediaCount(), 1) << "at most one video track";
    ASSERT_EQ(indexer->GetAudioMediaCount(), 3);
    for (int32_t track = 0; track < 3; ++track)
        EXPECT_EQ(indexer->GetAudioProperties(track), reader->GetAudioProperties(track));
    EXPECT_EQ(indexer->GetAudioIndexer(3), nullptr);
    EXPECT_EQ(indexer->GetState(), uint32_t(CIndexer::Idle)) << "no pass without background";
    EXPECT_EQ(indexer->GetVideoIndexer(0)->GetSampleCount(), 0);
    EXPECT_EQ(indexer->Begin(false), RESULT_BAD_ORDER_ERROR);

    RObject<FakeReader> failing = MakeReader(1, 0, 0);
    failing->beginResult = RESULT_FORMAT_ERROR;
    RObject<CIndexer> refused(CIndexer::Create(failing));
    EXPECT_EQ(refused->Begin(true), RESULT_FORMAT_ERROR);
    EXPECT_EQ(refused->GetState(), uint32_t(CIndexer::Failed));
}

TEST(Indexer, ForegroundPassReadsTracksRoundRobin)
{
    RObject<FakeReader> reader = MakeReader(1, 2, 2);
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    EXPECT_EQ(indexer->RunIndexPass(), RESULT_BAD_ORDER_ERROR) << "before Begin";
    ASSERT_EQ(indexer->Begin(false), RESULT_OK);
    ASSERT_EQ(indexer->RunIndexPass(), RESULT_OK);
    EXPECT_EQ(indexer->GetState(), uint32_t(CIndexer::Complete));
    EXPECT_TRUE(indexer->WaitForIndex(0));
    EXPECT_EQ(reader->order, "v0 a0 a1 v0 a0 a1 v0 a0 a1 v0 v0 ");
    EXPECT_EQ(indexer->GetVideoIndexer(0)->GetSampleCount(), 4);
    EXPECT_EQ(indexer->GetAudioIndexer(1)->GetSampleCount(), 2);
    EXPECT_DOUBLE_EQ(indexer->GetDuration(), 0.2) << "the longer audio";
    EXPECT_EQ(reader->endIndexCalls, 1);
    EXPECT_EQ(indexer->RunIndexPass(), RESULT_BAD_ORDER_ERROR);
    indexer->End();
    EXPECT_EQ(reader->endIndexCalls, 1);
}

TEST(Indexer, BackgroundPassReportsProgressAndLogs)
{
    VekTest::LogCapture log(LogLevel::Info);
    RObject<FakeReader> reader = MakeReader(10, 1, 20);
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    ProgressLog progress;
    indexer->SetProgressCallback(RecordProgress, &progress);
    ASSERT_EQ(indexer->Begin(true), RESULT_OK);
    ASSERT_TRUE(indexer->WaitForIndex(10000));
    indexer->End();
    EXPECT_EQ(indexer->GetState(), uint32_t(CIndexer::Complete));
    ASSERT_GE(progress.calls.size(), 2u);
    for (size_t i = 1; i < progress.calls.size(); ++i)
        EXPECT_GE(progress.calls[i].second, progress.calls[i - 1].second) << "call " << i;
    EXPECT_GT(progress.calls.front().second, 0.0);
    EXPECT_EQ(progress.calls.back(), std::make_pair(unsigned(CIndexer::Complete), 1.0));
    EXPECT_EQ(log.Count("CIndexer::IndexThread: thread started\n"), 1u);
    EXPECT_EQ(log.Count("CIndexer::IndexThread: thread exiting with result: 0\n"), 1u);
#if defined(__linux__)
    EXPECT_EQ(progress.threadName, "CIndexer::Index");
#endif
}

TEST(Indexer, PassEndsFailedAndKeepsWhatItIndexed)
{
    // A read failure, a stopping callback, and End while the pass runs.
    for (int way = 0; way < 3; ++way) {
        RObject<FakeReader> reader = MakeReader(way == 2 ? 500 : 10, 1, way == 2 ? 2000 : 40);
        RObject<CIndexer> indexer(CIndexer::Create(reader));
        ProgressLog progress;
        if (way == 0)
            reader->failOnRead = 9;
        if (way == 1)
            progress.stopAtCall = 2;
        if (way == 2)
            reader->delayMilliseconds = 1;
        indexer->SetProgressCallback(RecordProgress, &progress);
        if (way < 2) {
            ASSERT_EQ(indexer->Begin(false), RESULT_OK);
            EXPECT_EQ(indexer->RunIndexPass(), way == 0 ? RESULT_IO_ERROR : RESULT_ERROR);
        } else {
            ASSERT_EQ(indexer->Begin(true), RESULT_OK);
            while (reader->reads.load() < 20)
                std::this_thread::yield();
            EXPECT_EQ(indexer->End(), RESULT_OK);
            EXPECT_EQ(indexer->End(), RESULT_OK);
        }
        EXPECT_TRUE(indexer->WaitForIndex(0)) << "way " << way;
        EXPECT_EQ(indexer->GetState(), uint32_t(CIndexer::Failed)) << "way " << way;
        CAudioIndexer* audio = indexer->GetAudioIndexer(0);
        const int32_t kept = audio->GetSampleCount();
        EXPECT_GT(kept, 0);
        EXPECT_LT(kept, reader->audioSamples) << "way " << way;
        EXPECT_TRUE(audio->IsComplete());
        int32_t index = 0;
        CMediaSample* sample = nullptr;
        EXPECT_EQ(audio->GetSampleAtTime(int64_t(kept) * 100, index, sample), RESULT_BEYOND_END_OF_SAMPLES);
        EXPECT_EQ(reader->endIndexCalls, 1);
        EXPECT_EQ(indexer->Begin(true), RESULT_BAD_ORDER_ERROR);
    }
}

TEST(Indexer, VideoSwitchesLoadBytesAndTolerateMissingMetadata)
{
    RObject<FakeReader> reader = MakeReader(2, 0, 0);
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    const unsigned char on = 1;
    const unsigned char wide[2] = {1, 0};
    EXPECT_EQ(indexer->SetProperty(IndexerProperty::EnableVideoData, 2, wide), RESULT_ERROR);
    EXPECT_FALSE(indexer->GetReadVideoData());
    EXPECT_EQ(indexer->SetProperty(IndexerProperty::EnableVideoData, 1, &on), RESULT_OK);
    indexer->SetReadVideoMetadata(true);
    unsigned char back = 0;
    EXPECT_EQ(indexer->GetProperty(IndexerProperty::EnableVideoMetadata, 1, &back), 1);
    EXPECT_EQ(back, 1);
    EXPECT_EQ(indexer->GetPropertyCount(), 0) << "the switches are not bag entries";
    ASSERT_EQ(indexer->Begin(false), RESULT_OK);
    ASSERT_EQ(indexer->RunIndexPass(), RESULT_OK);
    CVideoSample* sample = nullptr;
    ASSERT_EQ(indexer->GetVideoIndexer(0)->GetSample(7, sample), RESULT_OK);
    RObject<CVideoSample> held(sample);
    EXPECT_EQ(held->GetDataReference()->GetType(), uint32_t(CMemoryDataReference::Type));
    EXPECT_EQ(indexer->GetVideoIndexer(0)->GetBitRate(), 8 * 1000 * 8 * 1000 / 80);
}

TEST(IndexerTraverser, SeekPositionsEachKind)
{
    RObject<FakeReader> reader = MakeReader(10, 1, 4);
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    ASSERT_EQ(indexer->Begin(false), RESULT_OK);
    ASSERT_EQ(indexer->RunIndexPass(), RESULT_OK);
    struct Case {
        double seconds;
        int32_t flags;
        int result;
        int64_t videoTime; // composition time of the first video sample read, -1 none
        int64_t audioTime;  // -1 none
    };
    using T = CIndexerTraverser;
    const Case cases[] = {
        {0.125, T::Video | T::Audio, RESULT_OK, 120, 100},
        {0.125, T::Video | T::VideoReference | T::Audio | T::AudioPrecharge, RESULT_OK, 120, 0},
        {0.135, T::Video | T::VideoReference, RESULT_OK, 120, 0},
        {0.395, T::Video, RESULT_OK, 390, 0},
        {0.395, T::Video | T::Audio, RESULT_OK, 390, 300},
        {0.5, T::Audio, RESULT_BEYOND_END_OF_SAMPLES, 0, 0},
        {-0.1, T::Video, RESULT_ARGUMENT_OUT_OF_RANGE, 0, 0},
    };
    for (const Case& c : cases) {
        CIndexerTraverser* made = nullptr;
        ASSERT_EQ(indexer->Seek(c.seconds, c.flags, made), c.result) << c.seconds << " " << c.flags;
        RObject<CIndexerTraverser> cursor(made);
        if (c.result < 0) {
            EXPECT_EQ(made, nullptr);
            continue;
        }
        CVideoSample* video = nullptr;
        CAudioSample* audio = nullptr;
        EXPECT_EQ(cursor->ReadVideoSample(0, video), RESULT_OK);
        EXPECT_EQ(cursor->ReadAudioSample(0, audio), RESULT_OK);
        RObject<CVideoSample> heldVideo(video);
        RObject<CAudioSample> heldAudio(audio);
        EXPECT_EQ(video ? video->GetCompositionTime() : -1, c.videoTime) << c.seconds << " " << c.flags;
        EXPECT_EQ(audio ? audio->GetCompositionTime() : -1, c.audioTime) << c.seconds << " " << c.flags;
    }
    RObject<CIndexerTraverser> cursor(CIndexerTraverser::Create(indexer));
    bool longGop = false;
    EXPECT_EQ(cursor->GetLongGop(0, longGop), RESULT_OK);
    EXPECT_TRUE(longGop);
    EXPECT_EQ(cursor->GetLongGop(1, longGop), RESULT_ARGUMENT_OUT_OF_RANGE);
    CVideoSample* none = nullptr;
    EXPECT_EQ(cursor->ReadVideoSample(1, none), RESULT_ARGUMENT_OUT_OF_RANGE);
    RObject<CIndexerTraverser> orphan(CIndexerTraverser::Create(nullptr));
    EXPECT_EQ(orphan->Seek(0, T::Video), RESULT_ERROR);
}

TEST(IndexerTraverser, SeekBeforeThePassIsBeyondProgress)
{
    RObject<FakeReader> reader = MakeReader(1, 1, 1);
    Indexer indexer = Indexer::Create(reader);
    ASSERT_EQ(indexer.Begin(false), RESULT_OK);
    IndexerTraverser cursor;
    EXPECT_EQ(indexer.Seek(0, CIndexerTraverser::Audio, cursor), RESULT_BEYOND_INDEXER_PROGRESS);
    EXPECT_TRUE(cursor.IsNull());
    ASSERT_EQ(indexer.RunIndexPass(), RESULT_OK);
    ASSERT_EQ(indexer.Seek(0, CIndexerTraverser::Audio, cursor), RESULT_OK);
    AudioSample sample;
    EXPECT_EQ(cursor.ReadAudioSample(0, sample), RESULT_OK);
    EXPECT_FALSE(sample.IsNull());
    EXPECT_EQ(cursor.ReadAudioSample(0, sample), RESULT_OK);
    EXPECT_TRUE(sample.IsNull()) << "end of a complete track";
}

// Run under the tsan preset: queries race the index thread's appends.
TEST(Indexer, QueriesWhileTheIndexThreadAppends)
{
    RObject<FakeReader> reader = MakeReader(400, 2, 800);
    RObject<CIndexer> indexer(CIndexer::Create(reader));
    ASSERT_EQ(indexer->Begin(true), RESULT_OK);
    CVideoIndexer* video = indexer->GetVideoIndexer(0);
    int answered = 0;
    uint32_t seed = 1;
    while (indexer->GetState() == uint32_t(CIndexer::Active) || answered == 0) {
        seed = seed * 1103515245u + 12345u;
        const int64_t time = int64_t(seed % 1600);
        int32_t index = -1;
        CVideoSample* sample = nullptr;
        const int result = video->GetSampleAtTime(time, index, sample);
        RObject<CVideoSample> held(sample);
        if (result == RESULT_OK) {
            ASSERT_TRUE(held->ContainsCompositionTime(time));
            ++answered;
        } else {
            ASSERT_TRUE(result == RESULT_BEYOND_INDEXER_PROGRESS || result == RESULT_BEYOND_END_OF_SAMPLES) << result;
        }
    }
    ASSERT_TRUE(indexer->WaitForIndex(10000));
    EXPECT_EQ(indexer->GetState(), uint32_t(CIndexer::Complete));
    EXPECT_EQ(video->GetSampleCount(), 1600);
}

TEST(Indexer, AllocationFailuresDuringBeginAndPass)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    VekTest::WalkAllocationFailures("Begin + RunIndexPass", [] {
        RObject<FakeReader> reader(new (fallible) FakeReader());
        if (!reader)
            return true;
        reader->pictures = VekTest::IpbbGroups(3);
        reader->audioTracks = 1;
        reader->audioSamples = 5;
        RObject<CIndexer> indexer(CIndexer::Create(reader));
        if (!indexer)
            return true;
        const int begun = indexer->Begin(false);
        if (begun < 0)
            return begun == RESULT_OUT_OF_MEMORY && indexer->GetState() == uint32_t(CIndexer::Failed);
        const int passed = indexer->RunIndexPass();
        if (passed < 0)
            return passed == RESULT_OUT_OF_MEMORY && indexer->GetState() == uint32_t(CIndexer::Failed);
        return indexer->GetVideoIndexer(0)->GetSampleCount() == 12 && indexer->GetAudioIndexer(0)->GetSampleCount() == 5;
    });
#endif
}
