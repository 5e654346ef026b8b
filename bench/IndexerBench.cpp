// The media index against the plain standard-library equivalents: appending
// counted samples (vector of counted pointers) and finding the sample at a
// time (upper_bound over a sorted vector of start times).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include <vek/Vek.h>

using namespace Quorvex::Vek;

namespace {

constexpr int kSamples = 100000;

std::vector<RObject<CAudioSample>> MakeSamples()
{
    std::vector<RObject<CAudioSample>> samples;
    samples.reserve(kSamples);
    for (int i = 0; i < kSamples; ++i) {
        RObject<CAudioSample> sample(new CAudioSample(1, 1024));
        sample->SetTime(int64_t(i) * 1024);
        samples.push_back(sample);
    }
    return samples;
}

RObject<CAudioIndexer> MakeIndexer(const std::vector<RObject<CAudioSample>>& samples)
{
    RObject<CAudioProperties> properties(new CAudioProperties());
    properties->SetTimeScale(48000);
    RObject<CAudioIndexer> indexer(CAudioIndexer::Create(properties));
    for (const auto& sample : samples)
        indexer->AddSample(sample);
    indexer->OnComplete();
    return indexer;
}

void IndexerAddSample(benchmark::State& state)
{
    const auto samples = MakeSamples();
    for (auto _ : state)
        benchmark::DoNotOptimize(MakeIndexer(samples).Get());
    state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(IndexerAddSample);

void VectorPushBack(benchmark::State& state)
{
    const auto samples = MakeSamples();
    for (auto _ : state) {
        std::vector<RObject<CAudioSample>> copy;
        for (const auto& sample : samples)
            copy.push_back(sample);
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetItemsProcessed(state.iterations() * kSamples);
}
BENCHMARK(VectorPushBack);

void IndexerSampleAtTime(benchmark::State& state)
{
    const auto samples = MakeSamples();
    RObject<CAudioIndexer> indexer = MakeIndexer(samples);
    int64_t time = 0;
    for (auto _ : state) {
        time = (time + 7919 * 1024 + 13) % (int64_t(kSamples) * 1024);
        int32_t index = 0;
        CMediaSample* sample = nullptr;
        indexer->GetSampleAtTime(time, index, sample);
        sample->Release();
        benchmark::DoNotOptimize(index);
    }
}
BENCHMARK(IndexerSampleAtTime);

void VectorUpperBound(benchmark::State& state)
{
    std::vector<int64_t> starts(kSamples);
    for (int i = 0; i < kSamples; ++i)
        starts[i] = int64_t(i) * 1024;
    int64_t time = 0;
    for (auto _ : state) {
        time = (time + 7919 * 1024 + 13) % (int64_t(kSamples) * 1024);
        const auto found = std::upper_bound(starts.begin(), starts.end(), time) - 1;
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(VectorUpperBound);

} // namespace
