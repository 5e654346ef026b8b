// A sample taken from its class's warm pool and released, against making
// and deleting the same object with new and delete, in one run. A thread is
// started first (Threaded.h), so both sides pay for atomics.
#include <vek/samples/CAudioSample.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

using namespace Quorvex::Vek;

namespace {

void AudioSampleFromPool(benchmark::State& state)
{
    CAudioSample::Create()->Release(); // warm: the pool and one free sample exist
    for (auto _ : state) {
        CAudioSample* sample = CAudioSample::Create();
        benchmark::DoNotOptimize(sample);
        sample->Release();
    }
}
BENCHMARK(AudioSampleFromPool);

// new and delete of the same class; Release of an object outside any pool
// is its delete.
void AudioSampleNewDelete(benchmark::State& state)
{
    for (auto _ : state) {
        auto* sample = new CAudioSample();
        benchmark::DoNotOptimize(sample);
        sample->Release();
    }
}
BENCHMARK(AudioSampleNewDelete);

} // namespace
