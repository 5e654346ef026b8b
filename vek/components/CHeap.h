#pragma once

// A binary heap of counted references, ordered by a comparison function
// that answers 1 (first greater), 0 (equal) or -1 (first smaller). The
// greatest element sits at the root. The heap owns one reference to every
// element it holds.
//
// Layout: the array is indexed from 0, the children of index i are 2i and
// 2i+1 and the parent of k is k/2, so the root (index 0) has the single
// child 1 and index 1 heads an ordinary one-based heap. Components that
// rank candidates rely on the order this layout produces among equal
// priorities, so it is kept on purpose. Only a strictly greater child moves
// up: equal elements come out in whatever order the sifting leaves them,
// with no insertion-order tie-break.
//
// Keys: with a KeyOf type (a `static Key Get(const E&)`), every slot keeps
// the element's key beside the pointer, taken once at Add, and the heap
// orders by `key > key` (greater nearer the root) without touching the
// elements: a sift then reads one array instead of chasing a pointer per
// comparison, which on a large heap is a cache miss each. Keys must not
// change while the element is held, and a keyed heap refuses null. Without
// KeyOf the comparison function given at construction orders the elements.
// Either way the same children are compared in the same order, so the
// layout's order among equal elements is the same.
//
// Capacity: the array is allocated at the first Add, with the capacity given
// at construction (at least 1). When full it doubles, up to MaxCapacity
// elements; beyond that Add fails with RESULT_ARRAY_FULL. A failed Add
// leaves the heap exactly as it was. No member takes a lock.
#include <vek/core/CollectionStorage.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <algorithm>
#include <type_traits>
#include <utility>

namespace Quorvex::Vek {

namespace Detail {

struct NoHeapKey {};

template <typename E, typename KeyOf>
struct HeapKey {
    using Type = std::remove_cvref_t<decltype(KeyOf::Get(std::declval<const E&>()))>;
};

template <typename E>
struct HeapKey<E, void> {
    using Type = NoHeapKey;
};

} // namespace Detail

template <typename E, typename KeyOf = void>
class CHeap : public CObject {
    static_assert(Detail::IsCounted<E>, "a heap holds CObjects");
    static constexpr bool Keyed = !std::is_void_v<KeyOf>;
    using Key = typename Detail::HeapKey<E, KeyOf>::Type;

    struct Slot {
        [[no_unique_address]] Key key;
        E* element;
    };

public:
    enum : uint32_t { Type = Four("heap") };
    using Compare = int (*)(const E*, const E*);
    static constexpr int32_t MaxCapacity = 8388608;

    // `capacity` is clamped to 1..MaxCapacity: a heap of capacity 0 could
    // never grow by doubling. A heap without keys is ordered by `compare`.
    CHeap(int32_t capacity, Compare compare)
        requires(!Keyed)
        : CHeap(capacity, compare, MaxCapacity, Type)
    {
    }
    explicit CHeap(int32_t capacity)
        requires Keyed
        : CHeap(capacity, MaxCapacity, Type)
    {
    }

    int32_t GetCount() const { return m_items.Count(); }
    int32_t GetCapacity() const { return m_capacity; }
    bool IsEmpty() const { return m_items.Count() == 0; }

    // The greatest element, borrowed; null when empty.
    E* GetRoot() const { return IsEmpty() ? nullptr : m_items[0].element; }

    // Shares `element` (Acquire) into the heap. 0, or RESULT_ARRAY_FULL at
    // the capacity limit, RESULT_OUT_OF_MEMORY, or (keyed heap only)
    // RESULT_ARGUMENT_NULL for null; on failure the heap is unchanged and
    // holds no reference to `element`.
    int Add(E* element)
    {
        const int result = Adopt(element);
        if (result == RESULT_OK)
            Detail::Hold<E>(element);
        return result;
    }

    // Takes the root out; the heap's reference passes to the caller. Null
    // when empty.
    E* Remove()
    {
        const int32_t count = m_items.Count();
        if (count == 0)
            return nullptr;
        E* root = m_items[0].element;
        if (count > 1)
            m_items[0] = m_items[count - 1];
        m_items.Take(count - 1); // the last slot: nothing moves
        if (count > 2)
            Heapify(0);
        return root;
    }

    // The capacity that Grow moves to from `capacity`: double it, capped at
    // `limit`; RESULT_ARRAY_FULL when `capacity` is already at the limit.
    static int32_t NextCapacity(int32_t capacity, int32_t limit = MaxCapacity)
    {
        if (capacity >= limit)
            return RESULT_ARRAY_FULL;
        return int32_t(std::min<int64_t>(2 * int64_t(capacity), limit));
    }

protected:
    // A derived heap may set a lower limit than MaxCapacity (1..MaxCapacity).
    CHeap(int32_t capacity, Compare compare, int32_t limit, uint32_t type)
        requires(!Keyed)
        : CObject(type),
          m_limit(std::clamp<int32_t>(limit, 1, MaxCapacity)),
          m_capacity(std::clamp<int32_t>(capacity, 1, m_limit)),
          m_compare(compare)
    {
    }
    CHeap(int32_t capacity, int32_t limit, uint32_t type)
        requires Keyed
        : CObject(type),
          m_limit(std::clamp<int32_t>(limit, 1, MaxCapacity)),
          m_capacity(std::clamp<int32_t>(capacity, 1, m_limit)),
          m_compare(nullptr)
    {
    }

    ~CHeap() override
    {
        while (!IsEmpty())
            Detail::Drop<E>(m_items.Take(m_items.Count() - 1).element);
    }

    // Add taking over the caller's reference to `element` instead of
    // sharing it; on failure the caller keeps it.
    int Adopt(E* element)
    {
        if constexpr (Keyed) {
            if (!element) {
                Log(LogLevel::Error, "CHeap::Add: a keyed heap holds no null element\n");
                return RESULT_ARGUMENT_NULL;
            }
        }
        if (m_items.Count() >= m_capacity) {
            const int result = Grow();
            if (result < 0)
                return result;
        }
        if (!m_items.Reserve(m_capacity)) {
            Log(LogLevel::Error, "CHeap::Add: no memory for an array of %d elements\n", int(m_capacity));
            return RESULT_OUT_OF_MEMORY;
        }
        Slot slot{};
        if constexpr (Keyed)
            slot.key = KeyOf::Get(*element);
        slot.element = element;
        m_items.Insert(m_items.Count(), std::move(slot)); // cannot fail: room was reserved
        // Sift up by sifting down each ancestor in turn. Once an ancestor
        // stays put, the ones above it would too (nothing below them
        // changed), so the walk stops there with the same result.
        for (int32_t k = m_items.Count() - 1; k > 0;) {
            k /= 2;
            if (!Heapify(k))
                break;
        }
        return RESULT_OK;
    }

    // Makes room for one more element: the next capacity, with the elements
    // copied in order into the new array.
    int Grow()
    {
        const int32_t next = NextCapacity(m_capacity, m_limit);
        if (next < 0) {
            Log(LogLevel::Error, "CHeap::Grow: capacity %d is at the limit of %d elements\n", int(m_capacity),
                int(m_limit));
            return next;
        }
        if (!m_items.Reserve(next)) {
            Log(LogLevel::Error, "CHeap::Grow: no memory to grow from %d to %d elements\n", int(m_capacity),
                int(next));
            return RESULT_OUT_OF_MEMORY;
        }
        m_capacity = next;
        return RESULT_OK;
    }

    // Sifts index i down: it swaps with the strictly greater of its children
    // 2i and 2i+1 until neither is greater. True when anything moved.
    bool Heapify(int32_t i)
    {
        const int32_t count = m_items.Count();
        for (bool moved = false;; moved = true) {
            int32_t largest = i;
            const int32_t left = 2 * i; // count <= MaxCapacity: no overflow
            // The grandchildren 4i..4i+3 sit side by side, 64 bytes of keyed
            // slots: fetch them while this level is compared, so a deep sift
            // waits on memory about once rather than once per level.
            if constexpr (Keyed) {
                if (2 * left < count)
                    Prefetch(&m_items[2 * left], &m_items[std::min(2 * left + 3, count - 1)]);
            }
            if (left < count && Greater(m_items[left], m_items[largest]))
                largest = left;
            if (left + 1 < count && Greater(m_items[left + 1], m_items[largest]))
                largest = left + 1;
            if (largest == i)
                return moved;
            std::swap(m_items[i], m_items[largest]);
            i = largest;
        }
    }

private:
    static void Prefetch([[maybe_unused]] const Slot* first, [[maybe_unused]] const Slot* last)
    {
#if defined(__GNUC__)
        __builtin_prefetch(first);
        __builtin_prefetch(last);
#endif
    }

    bool Greater(const Slot& a, const Slot& b) const
    {
        if constexpr (Keyed)
            return a.key > b.key;
        else
            return m_compare(a.element, b.element) > 0;
    }

    Detail::GrowBuffer<Slot> m_items;
    int32_t m_limit;
    int32_t m_capacity;
    Compare m_compare;
};

} // namespace Quorvex::Vek
