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

private:
    P m_priority;
    T* m_item;
};

} // namespace Quorvex::Vek
