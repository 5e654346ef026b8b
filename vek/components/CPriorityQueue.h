#pragma once

// The queue face of a heap of CPriority entries: items go in with a
// priority and come out root first. Which end is the root is fixed by the
// heap key, KeyOf (CPriority::ByPriority, as CMaxPriorityQueue uses it:
// greatest first). The queue owns one reference to every queued item.
#include <vek/components/CHeap.h>
#include <vek/components/CPriority.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

template <typename P, typename T, typename KeyOf = typename CPriority<P, T>::ByPriority>
class CPriorityQueue : public CHeap<CPriority<P, T>, KeyOf> {
    using Heap = CHeap<CPriority<P, T>, KeyOf>;

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
        // The entry's one reference goes to the heap as it is.
        Entry* entry = new (fallible) Entry(priority, item);
        if (!entry) {
            Log(LogLevel::Error, "CPriorityQueue::Enqueue: no memory for an entry\n");
            return RESULT_OUT_OF_MEMORY;
        }
        const int result = this->Adopt(entry);
        if (result < 0)
            entry->Release();
        return result;
    }

    // The root item, with one reference for the caller, its priority stored
    // in `priority` when given; null when the queue is empty.
    T* Dequeue(P* priority = nullptr)
    {
        Entry* entry = this->Remove();
        if (!entry)
            return nullptr;
        if (priority)
            *priority = entry->GetPriority();
        T* item;
        if (entry->GetReferenceCount() == 1) {
            item = entry->TakeItem(); // nobody else sees the entry: move its reference
        } else {
            item = entry->GetItem(); // someone kept the entry (from GetRoot): share
            if (item)
                item->Acquire();
        }
        entry->Release();
        return item;
    }

protected:
    explicit CPriorityQueue(int32_t capacity, uint32_t type = Type) : Heap(capacity, Heap::MaxCapacity, type) {}
    CPriorityQueue(int32_t capacity, int32_t limit, uint32_t type) : Heap(capacity, limit, type) {}
    ~CPriorityQueue() override = default;
};

} // namespace Quorvex::Vek
