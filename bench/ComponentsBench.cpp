// The priority queue that ranks component candidates against
// std::priority_queue, on the same million priorities in one run.
//
// A thread is started first (Threaded.h), so both sides pay for atomics.
#include <vek/components/CMaxPriorityQueue.h>
#include <vek/core/RObject.h>

#include <benchmark/benchmark.h>

#include "Threaded.h"

#include <cstdint>
#include <queue>
#include <random>
#include <thread>
#include <utility>
#include <vector>

using namespace Quorvex::Vek;

namespace {

class Candidate : public CObject {
public:
    Candidate() : CObject(Four("cand")) {}
};

constexpr int Count = 1000000;

const std::vector<uint64_t>& Priorities()
{
    static const std::vector<uint64_t> priorities = [] {
        std::mt19937_64 random(42);
        std::vector<uint64_t> out(Count);
        for (uint64_t& p : out)
            p = random();
        return out;
    }();
    return priorities;
}

// Enqueue every priority, then dequeue them all.
void VekMaxPriorityQueue(benchmark::State& state)
{
    RObject<Candidate> item(new Candidate());
    const auto& priorities = Priorities();
    for (auto _ : state) {
        RObject<CMaxPriorityQueue<uint64_t, Candidate>> queue(CMaxPriorityQueue<uint64_t, Candidate>::Create(16));
        for (uint64_t p : priorities)
            queue->Enqueue(p, item);
        uint64_t p = 0;
        while (Candidate* out = queue->Dequeue(&p))
            out->Release();
        benchmark::DoNotOptimize(p);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(VekMaxPriorityQueue)->Unit(benchmark::kMillisecond);

struct ByPriority {
    template <typename E>
    bool operator()(const E& a, const E& b) const
    {
        return a.first < b.first;
    }
};

// The closest plain equivalent: priority and a raw pointer, stored inline.
void StdPriorityQueueRaw(benchmark::State& state)
{
    RObject<Candidate> item(new Candidate());
    const auto& priorities = Priorities();
    using E = std::pair<uint64_t, Candidate*>;
    for (auto _ : state) {
        std::priority_queue<E, std::vector<E>, ByPriority> queue;
        for (uint64_t p : priorities)
            queue.emplace(p, item.Get());
        uint64_t p = 0;
        while (!queue.empty()) {
            p = queue.top().first;
            queue.pop();
        }
        benchmark::DoNotOptimize(p);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(StdPriorityQueueRaw)->Unit(benchmark::kMillisecond);

// The same with a counted reference per entry, as the library's queue holds.
void StdPriorityQueueCounted(benchmark::State& state)
{
    RObject<Candidate> item(new Candidate());
    const auto& priorities = Priorities();
    using E = std::pair<uint64_t, RObject<Candidate>>;
    for (auto _ : state) {
        std::priority_queue<E, std::vector<E>, ByPriority> queue;
        for (uint64_t p : priorities)
            queue.emplace(p, item);
        uint64_t p = 0;
        while (!queue.empty()) {
            RObject<Candidate> out = queue.top().second;
            p = queue.top().first;
            queue.pop();
        }
        benchmark::DoNotOptimize(p);
    }
    state.SetItemsProcessed(state.iterations() * Count);
}
BENCHMARK(StdPriorityQueueCounted)->Unit(benchmark::kMillisecond);

} // namespace
