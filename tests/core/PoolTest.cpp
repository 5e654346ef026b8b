#include "TestObjects.h"

#include <vek/core/CPoolBase.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Quorvex::Vek;
using VekTest::PooledBuffer;

std::atomic<int> PooledBuffer::constructed{0};
std::atomic<int> PooledBuffer::cleaned{0};
std::atomic<int> PooledBuffer::destroyed{0};

namespace {

class PoolTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        PooledBuffer::constructed = 0;
        PooledBuffer::cleaned = 0;
        PooledBuffer::destroyed = 0;
    }
};

} // namespace

TEST_F(PoolTest, ZeroCountReturnsToPoolAndIsReused)
{
    RObject<CPool<PooledBuffer>> pool(CPool<PooledBuffer>::Create(4));
    PooledBuffer* first = pool->Get();
    first->used = 7;
    unsigned char* buffer = first->Buffer();
    first->Release();
    EXPECT_EQ(PooledBuffer::destroyed, 0) << "a pooled object at zero goes back, not away";
    EXPECT_EQ(PooledBuffer::cleaned, 1);
    EXPECT_EQ(pool->GetFreeCount(), 1);
    EXPECT_EQ(first->GetReferenceCount(), 1) << "the pool's own reference keeps it";

    PooledBuffer* again = pool->Get();
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->Buffer(), buffer) << "buffers survive recycling";
    EXPECT_EQ(again->used, 0) << "ReclaimCleanUp resets content";
    EXPECT_EQ(again->GetReferenceCount(), 1);
    again->Release();
}

TEST_F(PoolTest, RecycledManyTimesWithoutGrowth)
{
    RObject<CPool<PooledBuffer>> pool(CPool<PooledBuffer>::Create(2));
    for (int i = 0; i < 100000; ++i) {
        RObject<PooledBuffer> a(pool->Get());
        RObject<PooledBuffer> b(pool->Get());
        a->used = i;
    }
    EXPECT_EQ(PooledBuffer::constructed, 2);
    EXPECT_EQ(pool->GetCreatedCount(), 2);
    EXPECT_EQ(pool->GetFreeCount(), 2);
}

TEST_F(PoolTest, FreeListIsBounded)
{
    RObject<CPool<PooledBuffer>> pool(CPool<PooledBuffer>::Create(1));
    PooledBuffer* a = pool->Get();
    PooledBuffer* b = pool->Get();
    a->Release();
    b->Release(); // free list full: destroyed
    EXPECT_EQ(pool->GetFreeCount(), 1);
    EXPECT_EQ(PooledBuffer::destroyed, 1);
}

TEST_F(PoolTest, BoundIsALimitNotAnAllocation)
{
    // A caller's bound, however large, costs nothing up front.
    for (int32_t bound : {INT32_MAX, INT32_MAX / 2, 0, -5}) {
        RObject<CPool<PooledBuffer>> pool(CPool<PooledBuffer>::Create(bound));
        ASSERT_TRUE(pool) << bound;
        EXPECT_EQ(pool->GetMaxFree(), bound < 0 ? 0 : bound);
        std::vector<PooledBuffer*> out;
        for (int i = 0; i < 40; ++i)
            out.push_back(pool->Get());
        for (PooledBuffer* object : out)
            object->Release();
        EXPECT_EQ(pool->GetFreeCount(), bound > 0 ? 40 : 0) << bound;
    }
    EXPECT_EQ(PooledBuffer::constructed, PooledBuffer::destroyed);
}

TEST_F(PoolTest, PoolOutlivesItsOwnerWhileObjectsAreOut)
{
    auto* pool = CPool<PooledBuffer>::Create(4);
    PooledBuffer* out = pool->Get();
    EXPECT_EQ(pool->GetReferenceCount(), 2) << "an object out of the pool holds it";
    pool->Release(); // the owner lets go; the object still holds the pool
    EXPECT_EQ(PooledBuffer::destroyed, 0);
    out->Release();  // comes back, drops the pool's last count, both die
    EXPECT_EQ(PooledBuffer::destroyed, 1);
}

TEST_F(PoolTest, ObjectWithoutPoolIsDestroyed)
{
    auto* loose = new PooledBuffer();
    loose->Release();
    EXPECT_EQ(PooledBuffer::destroyed, 1);
    EXPECT_EQ(PooledBuffer::cleaned, 0);
}

TEST_F(PoolTest, ConcurrentGetAndReleaseKeepsEveryObjectAccounted)
{
    RObject<CPool<PooledBuffer>> pool(CPool<PooledBuffer>::Create(8));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                RObject<PooledBuffer> a(pool->Get());
                RObject<PooledBuffer> b(pool->Get());
                b->used = a->used + 1;
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_LE(pool->GetFreeCount(), 8);
    EXPECT_EQ(PooledBuffer::constructed - PooledBuffer::destroyed, pool->GetFreeCount());
    pool.SafeRelease();
    EXPECT_EQ(PooledBuffer::constructed.load(), PooledBuffer::destroyed.load());
}
