#pragma once

// Storage shared by the collection templates: a contiguous, growable run of
// elements that never throws. Allocation failure and the size limit are
// reported as false to the collection, which turns them into result codes.
//
// Growth: capacity doubles, starting at 4, up to MaxCount. Elements must be
// nothrow move-constructible; they are moved when the buffer grows.
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include <vek/core/Allocation.h>
#include <vek/core/CObject.h>

namespace Quorvex::Vek::Detail {

// CObject-derived element types are held as counted pointers; every other
// type is held by value.
template <typename T>
inline constexpr bool IsCounted = std::is_base_of_v<CObject, T>;

template <typename T>
using ElementOf = std::conditional_t<IsCounted<T>, T*, T>;

template <typename E>
class GrowBuffer {
    static_assert(std::is_nothrow_move_constructible_v<E>, "elements must move without throwing");

public:
    static constexpr int32_t MaxCount =
        int32_t(std::min<std::size_t>(std::numeric_limits<int32_t>::max(), std::size_t(-1) / 2 / sizeof(E)));

    GrowBuffer() = default;
    GrowBuffer(const GrowBuffer&) = delete;
    GrowBuffer& operator=(const GrowBuffer&) = delete;
    ~GrowBuffer()
    {
        Clear();
        FreeFallible(m_items);
    }

    int32_t Count() const { return m_count; }
    int32_t Capacity() const { return m_capacity; }
    E* Data() { return m_items; }
    const E* Data() const { return m_items; }
    E& operator[](int32_t index) { return m_items[index]; }
    const E& operator[](int32_t index) const { return m_items[index]; }

    // False when `capacity` is negative, above MaxCount or cannot be allocated.
    bool Reserve(int32_t capacity)
    {
        if (capacity < 0 || capacity > MaxCount)
            return false;
        if (capacity <= m_capacity)
            return true;
        auto* items = static_cast<E*>(AllocateFallible(std::size_t(capacity) * sizeof(E)));
        if (!items)
            return false;
        for (int32_t i = 0; i < m_count; ++i) {
            new (items + i) E(std::move(m_items[i]));
            m_items[i].~E();
        }
        FreeFallible(m_items);
        m_items = items;
        m_capacity = capacity;
        return true;
    }

    bool Insert(int32_t index, E&& value)
    {
        if (m_count == m_capacity && !Grow())
            return false;
        if (index == m_count) {
            new (m_items + m_count) E(std::move(value));
        } else {
            new (m_items + m_count) E(std::move(m_items[m_count - 1]));
            for (int32_t i = m_count - 1; i > index; --i)
                m_items[i] = std::move(m_items[i - 1]);
            m_items[index] = std::move(value);
        }
        ++m_count;
        return true;
    }

    // Moves element `index` out and closes the gap.
    E Take(int32_t index)
    {
        E taken(std::move(m_items[index]));
        for (int32_t i = index; i + 1 < m_count; ++i)
            m_items[i] = std::move(m_items[i + 1]);
        m_items[--m_count].~E();
        return taken;
    }

    // Destroys the first `count` elements and moves the rest to the front.
    void DropFront(int32_t count)
    {
        for (int32_t i = 0; i + count < m_count; ++i)
            m_items[i] = std::move(m_items[i + count]);
        for (int32_t i = m_count - count; i < m_count; ++i)
            m_items[i].~E();
        m_count -= count;
    }

    // Destroys the elements from `count` on; a larger count changes nothing.
    void Truncate(int32_t count)
    {
        if (count < 0)
            count = 0;
        for (int32_t i = m_count; i > count; --i)
            m_items[i - 1].~E();
        if (count < m_count)
            m_count = count;
    }

    void Clear()
    {
        for (int32_t i = m_count; i > 0; --i)
            m_items[i - 1].~E();
        m_count = 0;
    }

private:
    bool Grow()
    {
        if (m_capacity >= MaxCount)
            return false;
        const int32_t next = m_capacity < 4 ? 4 : (m_capacity > MaxCount / 2 ? MaxCount : m_capacity * 2);
        return Reserve(next);
    }

    E* m_items = nullptr;
    int32_t m_count = 0;
    int32_t m_capacity = 0;
};

// Reference handling for held elements: counted pointers are Acquired when
// stored and Released when dropped; values need nothing.
template <typename T>
inline void Hold(const ElementOf<T>& item)
{
    if constexpr (IsCounted<T>) {
        if (item)
            item->Acquire();
    }
}

template <typename T>
inline void Drop(const ElementOf<T>& item)
{
    if constexpr (IsCounted<T>) {
        if (item)
            item->Release();
    }
}

} // namespace Quorvex::Vek::Detail
