#pragma once

// A priority queue whose root is the greatest priority: candidates ranked
// by preference are enqueued with their priority and dequeued best first.
// Callers pick the initial capacity; it doubles as needed (see CHeap).
#include <vek/components/CPriorityQueue.h>

namespace Quorvex::Vek {

template <typename P, typename T>
class CMaxPriorityQueue : public CPriorityQueue<P, T> {
public:
    enum : uint32_t { Type = Four("maxq") };

    explicit CMaxPriorityQueue(int32_t capacity) : CPriorityQueue<P, T>(capacity, Type) {}

    // A new queue, or null without memory.
    static CMaxPriorityQueue* Create(int32_t capacity) { return new (fallible) CMaxPriorityQueue(capacity); }

protected:
    // Lets a derived queue set a lower capacity limit than CHeap::MaxCapacity.
    CMaxPriorityQueue(int32_t capacity, int32_t limit) : CPriorityQueue<P, T>(capacity, limit, Type) {}
    ~CMaxPriorityQueue() override = default;
};

} // namespace Quorvex::Vek
