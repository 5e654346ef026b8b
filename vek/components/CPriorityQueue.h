#pragma once

// The queue face of a heap of CPriority entries: items go in with a
// priority and come out root first. Which end is the root is fixed by the
// comparison a derived queue passes (CMaxPriorityQueue: greatest first).
// The queue owns one reference to every queued item.
#include <vek/components/CHeap.h>
#include <vek/components/CPriority.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

template <typename P, typename T>
class CPriorityQueue : public CHeap<CPriority<P, T>> {
public:
    enum : uint32_t { Type = Four("prqu") };
    using Entry = CPriority<P, T>;

    // Queues `item` (shared: one more reference) under `priority`. 0, or
    // RESULT_ARGUMENT_NULL for a null item (it could not be told apart from
    // an empty queue at Dequeue), RESULT_OUT_OF_MEMORY, or the failure of
    // Grow; on failure the queue is unchanged.
    int Enqueue(P priority, T* item)
    {
        if (!item) {
            Log(LogLevel::Error, "CPriorityQueue::Enqueue: the item is null\n");
            return RESULT_ARGUMENT_NULL;
        }
        RObject<Entry> entry(new (fallible) Entry(priority, item));
        if (!entry) {
            Log(LogLevel::Error, "CPriorityQueue::Enqueue: no memory for an entry\n");
            return RESULT_OUT_OF_MEMORY;
        }
        return this->Add(entry);
    }

    // The root item, with one reference for the caller, its priority stored
    // in `priority` when given; null when the queue is empty.
    T* Dequeue(P* priority = nullptr)
    {
        RObject<Entry> entry(this->Remove());
        if (!entry)
            return nullptr;
        if (priority)
            *priority = entry->GetPriority();
        T* item = entry->GetItem();
        if (item)
            item->Acquire();
        return item;
    }

protected:
    CPriorityQueue(int32_t capacity, typename CHeap<Entry>::Compare compare, uint32_t type = Type)
        : CHeap<Entry>(capacity, compare, CHeap<Entry>::MaxCapacity, type)
    {
    }
    CPriorityQueue(int32_t capacity, typename CHeap<Entry>::Compare compare, int32_t limit, uint32_t type)
        : CHeap<Entry>(capacity, compare, limit, type)
    {
    }
    ~CPriorityQueue() override = default;
};

} // namespace Quorvex::Vek
