#pragma once

// First-in, first-out queue. CObject-derived T are held as counted
// references: Enqueue shares (Acquires) the item, Dequeue hands the queue's
// reference over to the caller, Peek lends it. Other T are held by value.
//
// An optional bound (given to Create) caps the number of queued items:
// Enqueue past it gives RESULT_QUEUE_OVERFLOW (-19011); Dequeue or Peek on
// an empty queue give RESULT_QUEUE_UNDERFLOW (-19012). Storage grows by
// doubling; taken slots at the front are reclaimed once they make up half
// of the storage, so each item costs amortised O(1). No member takes a
// lock: guard shared use with the queue's monitor (Enter/Wait/Notify).
#include <vek/core/CollectionStorage.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

template <typename T>
class CQueue : public CObject {
public:
    enum : uint32_t { Type = Four("queu") };
    static constexpr bool Counted = Detail::IsCounted<T>;
    using Element = Detail::ElementOf<T>;
    using Param = std::conditional_t<Counted, T*, const T&>;

    // `maximumCount` 0 means unbounded (up to the storage limit). Null when
    // the bound is negative or on allocation failure.
    static CQueue* Create(int32_t maximumCount = 0)
    {
        if (maximumCount < 0)
            return nullptr;
        auto* queue = new (fallible) CQueue();
        if (queue)
            queue->m_maximum = maximumCount;
        return queue;
    }

    int32_t GetCount() const { return m_items.Count() - m_head; }
    bool IsEmpty() const { return GetCount() == 0; }
    int32_t GetMaximumCount() const { return m_maximum; }

    int Enqueue(Param item)
    {
        if (m_maximum > 0 && GetCount() >= m_maximum)
            return RESULT_QUEUE_OVERFLOW;
        if (m_items.Count() >= Detail::GrowBuffer<Element>::MaxCount) {
            if (m_head == 0)
                return RESULT_QUEUE_OVERFLOW;
            Compact();
        }
        Element element(item);
        Detail::Hold<T>(element);
        if (!m_items.Insert(m_items.Count(), std::move(element))) {
            Detail::Drop<T>(element);
            return RESULT_OUT_OF_MEMORY;
        }
        return RESULT_OK;
    }

    // The oldest item, removed. For counted items the caller now owns the
    // reference the queue held (release it when done).
    int Dequeue(Element& out)
    {
        if (IsEmpty())
            return RESULT_QUEUE_UNDERFLOW;
        out = std::move(m_items[m_head]);
        m_items[m_head] = Element{};
        ++m_head;
        if (m_head == m_items.Count() || m_head * 2 >= m_items.Capacity())
            Compact();
        return RESULT_OK;
    }

    // The oldest item, left in place (counted items: a borrowed pointer).
    int Peek(Element& out) const
    {
        if (IsEmpty())
            return RESULT_QUEUE_UNDERFLOW;
        out = m_items[m_head];
        return RESULT_OK;
    }

    // Drops every item (discards, never hands them out).
    void Clear()
    {
        while (m_items.Count() > m_head)
            Detail::Drop<T>(m_items.Take(m_items.Count() - 1));
        Compact();
    }

protected:
    CQueue() : CObject(Type) {}
    ~CQueue() override { Clear(); }

private:
    // The slots before m_head were emptied by Dequeue; drop them.
    void Compact()
    {
        m_items.DropFront(m_head);
        m_head = 0;
    }

    Detail::GrowBuffer<Element> m_items;
    int32_t m_head = 0;
    int32_t m_maximum = 0;
};

} // namespace Quorvex::Vek
