// Samples from pools: a warm pool hands samples out and takes them back
// without touching the heap, and pools serve several threads at once.
#include <vek/core/CPoolBase.h>
#include <vek/core/FaultInjection.h>
#include <vek/samples/CAudioSample.h>
#include <vek/samples/CBufferDataReference.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/AllocationWalk.h"

using namespace Quorvex::Vek;

namespace {

#if VEK_FAULT_INJECTION
// One sample's worth of hot-path work: take, fill every field, attach the
// shared bytes and metadata, lock them, release.
void UseSample(CPool<CVideoSample>* pool, CMediaSampleDataReference* reference, CMetadata* metadata, int i)
{
    CVideoSample* sample = pool->Get();
    sample->SetTime(i * 40);
    sample->SetDuration(40);
    sample->SetCompositionOffset(80);
    sample->SetPictureType(i % 3);
    sample->SetHint(CMediaSample::KeyFrameAligned);
    sample->SetCompositionTrim(0, 5);
    sample->AdjustTime(-1);
    const unsigned char atom[] = {1, 2, 3, 4};
    sample->SetAtomData(atom, 4);
    sample->SetDataReference(reference);
    sample->SetMetadata(metadata);
    sample->Release();
}
#endif

} // namespace

TEST(SamplePool, WarmPoolMakesNoAllocationPerSample)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    RObject<CPool<CVideoSample>> pool(CPool<CVideoSample>::Create(4));
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 64));
    RObject<CBufferDataReference> reference(new CBufferDataReference(bytes));
    RObject<CMetadata> metadata(CMetadata::Create());
    // Warm: the sample, its monitor, its atom buffer and the free list exist.
    UseSample(pool, reference, metadata, 0);
    const int64_t created = pool->GetCreatedCount();

    constexpr int Loop = 10000;
    FaultInjection::FailAllocation(int64_t(Loop) * 100);
    for (int i = 1; i <= Loop; ++i)
        UseSample(pool, reference, metadata, i);
    const int64_t allocations = FaultInjection::AllocationCount();
    FaultInjection::FailAllocation(0);
    EXPECT_EQ(allocations, 0) << "allocations over " << Loop << " samples from a warm pool";
    EXPECT_EQ(pool->GetCreatedCount(), created);
    EXPECT_FALSE(FaultInjection::HasFailed());

    // The count does see an allocation: a cold pool makes its sample.
    RObject<CPool<CVideoSample>> cold(CPool<CVideoSample>::Create(4));
    FaultInjection::FailAllocation(int64_t(Loop) * 100);
    UseSample(cold, reference, metadata, 0);
    EXPECT_GT(FaultInjection::AllocationCount(), 0);
    FaultInjection::FailAllocation(0);
#endif
}

TEST(SamplePool, ThreadsShareOnePool)
{
    RObject<CPool<CVideoSample>> pool(CPool<CVideoSample>::Create(8));
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 16));
    RObject<CBufferDataReference> reference(new CBufferDataReference(bytes));
    constexpr int Threads = 4;
    constexpr int PerThread = 2000;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < PerThread; ++i) {
                // Two at a time, so a sample handed to two threads would show.
                RObject<CVideoSample> a(pool->Get());
                RObject<CVideoSample> b(pool->Get());
                if (!a || !b || a.Get() == b.Get() || a->GetTime() != 0 || a->HasDataReference()) {
                    ++wrong;
                    continue;
                }
                a->SetTime(t * PerThread + i + 1);
                a->SetDataReference(reference);
                b->SetFrameNumber(i);
                if (a->GetTime() != t * PerThread + i + 1)
                    ++wrong;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    // A sample on its way back while another thread asks may make the pool
    // create one more, and a full free list destroys the surplus: the count
    // is small, not exact.
    EXPECT_LT(pool->GetCreatedCount(), Threads * PerThread / 10) << "recycled, not made anew";
    EXPECT_EQ(reference->GetReferenceCount(), 1) << "every recycled sample let go of the bytes";
    EXPECT_LE(pool->GetFreeCount(), 8);
}

TEST(SamplePool, SharedPoolsRecycle)
{
    CVideoSample* first = CVideoSample::Create();
    ASSERT_NE(first, nullptr);
    first->SetTime(5);
    first->Release();
    RObject<CVideoSample> again(CVideoSample::Create());
    EXPECT_EQ(again.Get(), first) << "the last sample given back is handed out first";
    EXPECT_EQ(again->GetTime(), 0);
    RObject<CAudioSample> audio(CAudioSample::Create());
    EXPECT_TRUE(audio);
}
