// The sample queue: power-of-two slots, order, and its running time and
// duration through enqueue, dequeue and requeue.
#include <vek/core/Result.h>
#include <vek/samples/CMediaSampleQueue.h>
#include <vek/samples/CSubtitleSample.h>

#include <gtest/gtest.h>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

RObject<CSubtitleSample> Lasting(int32_t duration)
{
    RObject<CSubtitleSample> sample(CSubtitleSample::Create());
    sample->SetDuration(duration);
    return sample;
}

} // namespace

TEST(SampleQueue, CapacityRoundsUpToAPowerOfTwo)
{
    const struct {
        int32_t asked, slots;
    } cases[] = {{1, 1}, {2, 2}, {3, 4}, {5, 8}, {8, 8}, {9, 16}, {CMediaSampleQueue::MaxCapacity, 1 << 20}};
    for (const auto& c : cases) {
        RObject<CMediaSampleQueue> queue(CMediaSampleQueue::Create(c.asked));
        ASSERT_TRUE(queue) << c.asked;
        EXPECT_EQ(queue->GetCapacity(), c.slots) << c.asked;
    }
    VekTest::LogCapture log(1);
    EXPECT_EQ(CMediaSampleQueue::Create(0), nullptr);
    EXPECT_EQ(CMediaSampleQueue::Create(-4), nullptr);
    EXPECT_EQ(CMediaSampleQueue::Create(CMediaSampleQueue::MaxCapacity + 1), nullptr);
}

TEST(SampleQueue, TimeAndDurationFollowTheSamples)
{
    RObject<CMediaSampleQueue> queue(CMediaSampleQueue::Create(5));
    RObject<CSubtitleSample> a(Lasting(10)), b(Lasting(20)), c(Lasting(40));
    EXPECT_EQ(queue->Enqueue(a), RESULT_OK);
    EXPECT_EQ(queue->Enqueue(nullptr), RESULT_OK); // a drain marker: no time
    EXPECT_EQ(queue->Enqueue(b), RESULT_OK);
    EXPECT_EQ(queue->Enqueue(c), RESULT_OK);
    EXPECT_EQ(queue->GetDuration(), 70);
    EXPECT_EQ(queue->GetTime(), 0);
    EXPECT_EQ(a->GetReferenceCount(), 2);

    RObject<CMediaSample> first(queue->Dequeue());
    EXPECT_EQ(first.Get(), a.Get());
    EXPECT_EQ(queue->GetTime(), 10);
    EXPECT_EQ(queue->GetDuration(), 60);
    EXPECT_EQ(queue->Dequeue(), nullptr); // the marker
    EXPECT_EQ(queue->GetTime(), 10);

    // Back at the head: the time goes back, the duration grows again.
    EXPECT_EQ(queue->Requeue(first), RESULT_OK);
    first.SafeRelease();
    EXPECT_EQ(queue->GetTime(), 0);
    EXPECT_EQ(queue->GetDuration(), 70);
    const CMediaSample* order[] = {a, b, c};
    for (const CMediaSample* expected : order) {
        RObject<CMediaSample> next(queue->Dequeue());
        EXPECT_EQ(next.Get(), expected);
    }
    EXPECT_EQ(queue->GetTime(), 70);
    EXPECT_EQ(queue->GetDuration(), 0);
    EXPECT_EQ(queue->Dequeue(), nullptr);
    EXPECT_EQ(a->GetReferenceCount(), 1) << "dequeued references went to the caller";
}

TEST(SampleQueue, FullQueueRefusesAndWrapsAround)
{
    RObject<CMediaSampleQueue> queue(CMediaSampleQueue::Create(4));
    RObject<CSubtitleSample> sample(Lasting(1));
    VekTest::LogCapture log(1);
    // Run the ring around several times, filling it each time.
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 4; ++i)
            ASSERT_EQ(queue->Enqueue(sample), RESULT_OK);
        EXPECT_EQ(queue->Enqueue(sample), RESULT_ARRAY_FULL);
        EXPECT_EQ(queue->Requeue(sample), RESULT_ARRAY_FULL);
        for (int i = 0; i < 3; ++i)
            RObject<CMediaSample>(queue->Dequeue());
        EXPECT_EQ(queue->GetCount(), 1);
        RObject<CMediaSample>(queue->Dequeue());
    }
    EXPECT_EQ(log.Count("CMediaSampleQueue::Enqueue: all 4 slots taken"), 3u);
    EXPECT_EQ(queue->GetTime(), 12);
    queue->Enqueue(sample);
    queue->Enqueue(sample);
    queue->Clear();
    EXPECT_TRUE(queue->IsEmpty());
    EXPECT_EQ(queue->GetDuration(), 0);
    EXPECT_EQ(sample->GetReferenceCount(), 1);
}
