#include "TestObjects.h"
#include "support/TestSupport.h"

#include <vek/core/CLock.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace Quorvex::Vek;
using VekTest::Probe;

namespace {

constexpr int kThreads = 4;
// How long a test waits for another thread's wake-up before calling it lost:
// far beyond any scheduling delay on a loaded machine or under Wine.
constexpr std::chrono::seconds kNotifyLimit{30};

template <typename Body>
void RunThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body, i);
    for (auto& t : threads)
        t.join();
}

} // namespace

TEST(Monitor, WaitWithoutNotifyTimesOut)
{
    RObject<Probe> probe(new Probe());
    CObject::CAutoLock guard(probe);
    EXPECT_FALSE(probe->Wait(0));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(probe->Wait(50));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
}

TEST(Monitor, NegativeTimeWaitsUntilWoken)
{
    // -1 is how callers spell INFINITE; it must not read as "no wait".
    RObject<Probe> probe(new Probe());
    bool ready = false;
    VekTest::Watchdog watchdog("Monitor.NegativeTimeWaitsUntilWoken: Wait(-1) was not woken by Notify",
                               kNotifyLimit);
    std::thread notifier([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        CObject::CAutoLock guard(probe);
        ready = true;
        probe->Notify();
    });
    int waits = 0, woken = 0;
    {
        CObject::CAutoLock guard(probe);
        while (!ready) {
            ++waits;
            woken += probe->Wait(-1) ? 1 : 0;
        }
    }
    notifier.join();
    EXPECT_EQ(woken, waits) << "every wait ended by a wake-up, none by a time-out";
}

TEST(Monitor, ReentrantByOwnerExclusiveToOthers)
{
    CLock lock;
    EXPECT_EQ(lock.Enter(), 0);
    EXPECT_TRUE(lock.TryEnter()) << "the owner may enter again";
    bool otherGotIn = true;
    std::thread other([&] { otherGotIn = lock.TryEnter(); });
    other.join();
    EXPECT_FALSE(otherGotIn);
    lock.Exit();
    std::thread stillOut([&] { otherGotIn = lock.TryEnter(); });
    stillOut.join();
    EXPECT_FALSE(otherGotIn) << "one Exit must not release a lock entered twice";
    lock.Exit();
    std::thread nowIn([&] {
        otherGotIn = lock.TryEnter();
        if (otherGotIn)
            lock.Exit();
    });
    nowIn.join();
    EXPECT_TRUE(otherGotIn);
}

TEST(Monitor, WaitReleasesEveryLevelAndRestoresIt)
{
    RObject<Probe> probe(new Probe());
    bool ready = false;
    std::thread notifier([&] {
        CObject::CAutoLock guard(probe);
        ready = true;
        probe->NotifyAll();
    });
    {
        CObject::CAutoLock outer(probe);
        CObject::CAutoLock inner(probe); // entered twice
        // A wait that kept one level would lock the notifier out for good.
        const auto deadline = std::chrono::steady_clock::now() + kNotifyLimit;
        while (!ready && std::chrono::steady_clock::now() < deadline)
            probe->Wait(1000);
        EXPECT_TRUE(ready) << "the notifier never got the lock while its owner waited";
    }
    notifier.join(); // gets in once the owner leaves
    EXPECT_TRUE(probe->TryEnter());
    probe->Exit();
}

TEST(Monitor, WaitComesBackAtTheDepthItLeft)
{
    // After a wait at depth 3 the owner must still need three exits: a wait
    // that came back at depth 1 would free the lock at the first one.
    CLock lock;
    lock.Enter();
    lock.Enter();
    lock.Enter();
    EXPECT_FALSE(lock.Wait(1));
    auto otherGetsIn = [&] {
        bool in = false;
        std::thread other([&] {
            in = lock.TryEnter();
            if (in)
                lock.Exit();
        });
        other.join();
        return in;
    };
    for (int exits = 1; exits <= 3; ++exits) {
        lock.Exit();
        EXPECT_EQ(otherGetsIn(), exits == 3) << "after " << exits << " of 3 exits";
    }
}

TEST(Monitor, CallsByANonHolderChangeNothing)
{
    CLock lock;
    lock.Enter();
    bool waited = true;
    std::thread stranger([&] {
        lock.Exit();                // must not release the owner's lock
        waited = lock.Wait(10000);  // must refuse at once, not sleep
    });
    stranger.join();
    EXPECT_FALSE(waited);
    bool otherGotIn = true;
    std::thread other([&] { otherGotIn = lock.TryEnter(); });
    other.join();
    EXPECT_FALSE(otherGotIn) << "a stranger's Exit released the lock";
    lock.Exit();
}

TEST(Monitor, NotifyAllWakesEveryWaiter)
{
    RObject<Probe> probe(new Probe());
    int waiting = 0;
    bool go = false;
    std::atomic<int> woken{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < kThreads; ++i) {
        waiters.emplace_back([&] {
            CObject::CAutoLock guard(probe);
            ++waiting;
            // No polling: a waiter the notify missed stays asleep until the
            // limit and is not counted.
            while (!go)
                if (!probe->Wait(int32_t(kNotifyLimit.count() * 1000)))
                    return;
            ++woken;
        });
    }
    for (bool sent = false; !sent; std::this_thread::yield()) {
        CObject::CAutoLock guard(probe);
        if (waiting == kThreads) { // each waiter holds no lock: it is inside Wait
            go = true;
            probe->NotifyAll();
            sent = true;
        }
    }
    for (auto& t : waiters)
        t.join();
    EXPECT_EQ(woken, kThreads);
}

TEST(Monitor, ProducerConsumerHandsOverEveryItem)
{
    RObject<Probe> queueLock(new Probe());
    std::vector<int> queue;
    constexpr int kItems = 2000;
    long long consumedSum = 0;
    int consumed = 0;
    bool stranded = false;

    std::thread consumer([&] {
        CObject::CAutoLock guard(queueLock);
        while (consumed < kItems) {
            // Bounded: a lost wake-up fails the test instead of hanging it.
            while (queue.empty()) {
                if (!queueLock->Wait(int32_t(kNotifyLimit.count() * 1000)) && queue.empty()) {
                    stranded = true;
                    return;
                }
            }
            consumedSum += queue.back();
            queue.pop_back();
            ++consumed;
        }
    });
    RunThreads(2, [&](int id) {
        for (int i = 0; i < kItems / 2; ++i) {
            CObject::CAutoLock guard(queueLock);
            queue.push_back(id * (kItems / 2) + i);
            queueLock->Notify();
        }
    });
    consumer.join();
    EXPECT_FALSE(stranded) << "the consumer waited " << kNotifyLimit.count() << " s with an empty queue after "
                           << consumed << " items: a wake-up was lost";
    EXPECT_EQ(consumed, kItems);
    EXPECT_EQ(consumedSum, (long long)kItems * (kItems - 1) / 2);
}

TEST(Monitor, CountsAndMonitorCreationHammeredFromThreads)
{
    // Many threads race to make the monitor of the same fresh objects and to
    // share and drop references; each object must end with count 1 and a
    // counter guarded by its monitor must see every increment.
    constexpr int kObjects = 64;
    constexpr int kRounds = 200;
    std::vector<RObject<Probe>> objects;
    for (int i = 0; i < kObjects; ++i)
        objects.emplace_back(new Probe());
    std::vector<int> counters(kObjects, 0);

    RunThreads(kThreads, [&](int) {
        for (int round = 0; round < kRounds; ++round) {
            for (int i = 0; i < kObjects; ++i) {
                RObject<Probe> shared(objects[i]);
                CObject::CAutoLock guard(shared);
                ++counters[i];
            }
        }
    });
    for (int i = 0; i < kObjects; ++i) {
        EXPECT_EQ(objects[i]->GetReferenceCount(), 1);
        EXPECT_EQ(counters[i], kThreads * kRounds);
    }
}

TEST(Monitor, LastReleaseOnAnyThreadDestroysOnce)
{
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> destroyed{0};
        auto* probe = new Probe(&destroyed);
        for (int i = 1; i < kThreads; ++i)
            probe->Acquire();
        RunThreads(kThreads, [&](int) { probe->Release(); });
        ASSERT_EQ(destroyed, 1);
    }
}
