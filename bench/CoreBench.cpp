// Object-model hot paths against their nearest standard-library equivalents,
// measured in one run so the ratios are comparable, in a process that has
// started a thread (Threaded.h).
#include <vek/core/CLock.h>
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <atomic>
#include <memory>
#include <mutex>

using namespace Quorvex::Vek;

namespace {

class Plain : public CObject {
public:
    Plain() : CObject(Four("bnch")) {}
};

struct PlainStd {
    int payload = 0;
};

void AcquireRelease(benchmark::State& state)
{
    RObject<Plain> object(new Plain());
    for (auto _ : state) {
        object->Acquire();
        object->Release();
    }
}
BENCHMARK(AcquireRelease);

// The floor for a reference count: one atomic increment and one decrement
// of a counter on the heap, as Acquire and Release make them.
void AtomicPairOnHeap(benchmark::State& state)
{
    auto counter = std::make_unique<std::atomic<int32_t>>(1);
    for (auto _ : state) {
        counter->fetch_add(1, std::memory_order_relaxed);
        counter->fetch_sub(1, std::memory_order_acq_rel);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(AtomicPairOnHeap);

// shared_ptr's count pair: one atomic increment and one decrement.
void SharedPtrCopyDrop(benchmark::State& state)
{
    auto object = std::make_shared<PlainStd>();
    for (auto _ : state) {
        std::shared_ptr<PlainStd> copy = object;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(SharedPtrCopyDrop);

void RObjectCopy(benchmark::State& state)
{
    RObject<Plain> object(new Plain());
    for (auto _ : state) {
        RObject<Plain> copy = object;
        benchmark::DoNotOptimize(copy.Get());
    }
}
BENCHMARK(RObjectCopy);

void AutoLockUncontended(benchmark::State& state)
{
    RObject<Plain> object(new Plain());
    object->Enter(); // make the monitor outside the loop
    object->Exit();
    for (auto _ : state) {
        CObject::CAutoLock guard(object);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(AutoLockUncontended);

void RecursiveMutexUncontended(benchmark::State& state)
{
    std::recursive_mutex mutex;
    for (auto _ : state) {
        std::lock_guard<std::recursive_mutex> guard(mutex);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(RecursiveMutexUncontended);

void MutexUncontended(benchmark::State& state)
{
    std::mutex mutex;
    for (auto _ : state) {
        std::lock_guard<std::mutex> guard(mutex);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(MutexUncontended);

} // namespace
