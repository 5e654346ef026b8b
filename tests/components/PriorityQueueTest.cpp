#include <vek/components/CMaxPriorityQueue.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <queue>
#include <random>
#include <string>
#include <vector>

#include "components/TestComponents.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using VekTest::Token;

namespace {

using Queue = CMaxPriorityQueue<uint64_t, Token>;
using Entry = CPriority<uint64_t, Token>;

// A queue whose capacity stops at `limit`, to reach the limit with a few
// elements instead of millions.
class LimitedQueue : public Queue {
public:
    LimitedQueue(int32_t capacity, int32_t limit) : Queue(capacity, limit) {}
};

// Dequeues everything, returning the priorities in the order they came out.
std::vector<uint64_t> Drain(Queue* queue)
{
    std::vector<uint64_t> out;
    uint64_t priority = 0;
    while (RObject<Token> item{queue->Dequeue(&priority)})
        out.push_back(priority);
    return out;
}

int EnqueueNew(Queue* queue, uint64_t priority)
{
    RObject<Token> item(new Token(int(priority)));
    return queue->Enqueue(priority, item);
}

} // namespace

TEST(PriorityQueue, TiesComeOutInTheOrderOfTheHeapLayout)
{
    // Ranking components relies on the order the layout (children 2i and
    // 2i+1, root 0 with the one child 1) gives equal priorities; neither the
    // usual 0-based layout nor an insertion-order tie-break gives these.
    struct Case {
        std::vector<uint64_t> priorities; // of items A, B, C, ... in order
        const char* order;
    };
    const Case cases[] = {
        {{1, 2, 2, 3}, "DCBA"},          // 0-based layout and FIFO: DBCA
        {{5, 5, 5, 5}, "ADCB"},          // FIFO: ABCD
        {{2, 1, 2, 1, 2, 1, 2}, "ACEGFDB"}, // 0-based: AGECDBF, FIFO: ACEGBDF
    };
    for (const Case& c : cases) {
        RObject<Queue> queue(new Queue(1));
        for (size_t i = 0; i < c.priorities.size(); ++i) {
            RObject<Token> item(new Token(int(i)));
            ASSERT_EQ(queue->Enqueue(c.priorities[i], item), RESULT_OK);
        }
        std::string order;
        while (RObject<Token> item{queue->Dequeue()})
            order += char('A' + item->number);
        EXPECT_EQ(order, c.order);
    }
}

TEST(PriorityQueue, MatchesStandardQueueUnderRandomTraffic)
{
    std::mt19937_64 random(20240517);
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> destroyed{0};
        int made = 0;
        {
            RObject<Queue> queue(new Queue(1 + round % 3));
            std::priority_queue<uint64_t> model;
            // Few distinct priorities in some rounds so ties are common.
            const uint64_t range = round % 2 ? 8 : std::numeric_limits<uint64_t>::max();
            for (int step = 0; step < 2000; ++step) {
                if (random() % 3 != 0 || model.empty()) {
                    const uint64_t p = random() % range;
                    RObject<Token> item(new Token(made++, &destroyed));
                    ASSERT_EQ(queue->Enqueue(p, item), RESULT_OK);
                    model.push(p);
                } else {
                    uint64_t p = 0;
                    RObject<Token> item(queue->Dequeue(&p));
                    ASSERT_TRUE(item);
                    ASSERT_EQ(p, model.top());
                    EXPECT_EQ(item->GetReferenceCount(), 1); // the queue kept no reference
                    model.pop();
                }
                ASSERT_EQ(queue->GetCount(), int32_t(model.size()));
            }
            // Whatever is left comes out non-increasing and complete.
            std::vector<uint64_t> rest;
            while (!model.empty()) {
                rest.push_back(model.top());
                model.pop();
            }
            EXPECT_EQ(Drain(queue), rest);
        }
        EXPECT_EQ(destroyed, made) << "round " << round;
    }
}

TEST(PriorityQueue, RootAndDequeueWithoutPriority)
{
    RObject<Queue> queue(new Queue(4));
    EXPECT_EQ(queue->GetRoot(), nullptr);
    EXPECT_EQ(queue->Dequeue(), nullptr);
    RObject<Token> low(new Token(1));
    RObject<Token> high(new Token(2));
    ASSERT_EQ(queue->Enqueue(5, low), RESULT_OK);
    ASSERT_EQ(queue->Enqueue(6, high), RESULT_OK);
    EXPECT_EQ(low->GetReferenceCount(), 2);
    ASSERT_NE(queue->GetRoot(), nullptr);
    EXPECT_EQ(queue->GetRoot()->GetItem(), high.Get());
    // An entry someone keeps must keep its item when dequeued: the item's
    // reference is shared then, not moved out of the entry.
    RObject<Entry> kept = RObject<Entry>::FromObject(queue->GetRoot());
    RObject<Token> first(queue->Dequeue());
    EXPECT_EQ(first.Get(), high.Get());
    EXPECT_EQ(kept->GetItem(), high.Get());
    EXPECT_EQ(high->GetReferenceCount(), 3); // ours, first's, the kept entry's
    kept = nullptr;
    EXPECT_EQ(high->GetReferenceCount(), 2);
    EXPECT_EQ(queue->GetCount(), 1);
}

TEST(PriorityQueue, NullItemIsRefused)
{
    VekTest::LogCapture log(1);
    RObject<Queue> queue(new Queue(1));
    EXPECT_EQ(queue->Enqueue(3, nullptr), RESULT_ARGUMENT_NULL);
    EXPECT_TRUE(queue->IsEmpty());
    EXPECT_EQ(log.Count("CPriorityQueue::Enqueue: "), 1u);
}

TEST(PriorityQueue, CapacityDoublesFromWhereItStarted)
{
    for (int32_t initial : {-3, 0, 1, 3, 5}) {
        RObject<Queue> queue(new Queue(initial));
        int32_t expected = std::max(initial, 1);
        EXPECT_EQ(queue->GetCapacity(), expected);
        for (int n = 1; n <= 40; ++n) {
            ASSERT_EQ(EnqueueNew(queue, uint64_t(n)), RESULT_OK);
            if (n > expected)
                expected *= 2;
            ASSERT_EQ(queue->GetCapacity(), expected) << "initial " << initial << ", after " << n;
        }
        EXPECT_EQ(Drain(queue).size(), 40u);
    }
}

TEST(Heap, NextCapacityDoublesUpToTheLimit)
{
    constexpr int32_t Max = CHeap<Entry>::MaxCapacity;
    EXPECT_EQ(Max, 8388608);
    struct Case {
        int32_t capacity;
        int32_t limit;
        int32_t expected;
    };
    const Case cases[] = {
        {1, Max, 2},
        {3, Max, 6},
        {Max / 2, Max, Max},
        {Max / 2 + 1, Max, Max},
        {Max - 1, Max, Max},
        {Max, Max, RESULT_ARRAY_FULL},
        {std::numeric_limits<int32_t>::max(), Max, RESULT_ARRAY_FULL},
        {4, 5, 5},
        {5, 5, RESULT_ARRAY_FULL},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CHeap<Entry>::NextCapacity(c.capacity, c.limit), c.expected) << c.capacity << " / " << c.limit;
}

TEST(PriorityQueue, FullQueueRefusesAndStaysUnchanged)
{
    VekTest::LogCapture log(1);
    std::atomic<int> destroyed{0};
    RObject<LimitedQueue> queue(new LimitedQueue(1, 3));
    for (uint64_t p : {4, 9, 6})
        ASSERT_EQ(EnqueueNew(queue, p), RESULT_OK);
    EXPECT_EQ(queue->GetCapacity(), 3);
    {
        RObject<Token> refused(new Token(0, &destroyed));
        EXPECT_EQ(queue->Enqueue(100, refused), RESULT_ARRAY_FULL);
        EXPECT_EQ(refused->GetReferenceCount(), 1);
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(log.Count("CHeap::Grow: capacity 3 is at the limit of 3 elements\n"), 1u);
    EXPECT_EQ(queue->GetCount(), 3);
    EXPECT_EQ(queue->GetCapacity(), 3);
    EXPECT_EQ(Drain(queue), (std::vector<uint64_t>{9, 6, 4}));
    // Room again once emptied, without growing.
    EXPECT_EQ(EnqueueNew(queue, 1), RESULT_OK);
}

#if VEK_FAULT_INJECTION
TEST(AllocationFailure, EnqueueLeavesTheQueueAsItWas)
{
    // Grows through capacities 1, 2, 4, 8 while items arrive, so failures hit
    // the first array, each growth and each entry.
    const uint64_t priorities[] = {5, 1, 9, 3, 3, 7, 2, 8, 6};
    VekTest::WalkAllocationFailures("enqueue", [&] {
        RObject<Queue> queue(Queue::Create(1));
        if (!queue)
            return true;
        std::vector<uint64_t> accepted;
        for (uint64_t p : priorities) {
            RObject<Token> item(new Token(int(p)));
            if (!item)
                continue;
            const int result = queue->Enqueue(p, item);
            if (result == RESULT_OK)
                accepted.push_back(p);
            else if (result != RESULT_OUT_OF_MEMORY)
                return false;
            if (queue->GetCount() != int32_t(accepted.size()) || item->GetReferenceCount() != 1 + (result == 0))
                return false;
        }
        FaultInjection::Disarm();
        std::sort(accepted.begin(), accepted.end(), std::greater<>());
        return Drain(queue) == accepted;
    });
}
#endif
