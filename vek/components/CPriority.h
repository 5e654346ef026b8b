#pragma once

// One entry of a priority queue: a priority and one counted reference to
// the item queued under it. The entry owns that reference and releases it
// when the entry dies.
#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename P, typename T>
class CPriority : public CObject {
public:
    enum : uint32_t { Type = Four("prio") };

    // Shares `item` (Acquire); a null item is kept as null.
    CPriority(P priority, T* item) : CObject(Type), m_priority(priority), m_item(item)
    {
        if (m_item)
            m_item->Acquire();
    }

    P GetPriority() const { return m_priority; }
    // Borrowed: valid while this entry lives.
    T* GetItem() const { return m_item; }

    // The heap key of a queue whose root is the greatest priority: heaps
    // keep it beside the entry and compare it without reading the entry.
    struct ByPriority {
        static P Get(const CPriority& entry) { return entry.m_priority; }
    };

    // Orders entries for a heap: 1 when `a` is greater, -1 when smaller,
    // 0 when equal. A null entry is smaller than any entry and equal to
    // another null, so a heap may hold nulls without dereferencing them.
    static int Compare(const CPriority* a, const CPriority* b)
    {
        if (!a)
            return b ? -1 : 0;
        if (!b)
            return 1;
        if (a->m_priority > b->m_priority)
            return 1;
        return a->m_priority < b->m_priority ? -1 : 0;
    }

protected:
    ~CPriority() override
    {
        if (m_item)
            m_item->Release();
    }

    // Hands the entry's reference to the item out (the entry keeps null).
    // Only for the holder of the entry's one reference, about to drop it:
    // the reference moves instead of an Acquire here and a Release there.
    T* TakeItem()
    {
        T* item = m_item;
        m_item = nullptr;
        return item;
    }

    template <typename, typename, typename>
    friend class CPriorityQueue;

private:
    P m_priority;
    T* m_item;
};

} // namespace Quorvex::Vek
