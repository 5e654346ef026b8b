#pragma once

// Indexed, growable array. For a CObject-derived T it holds counted
// references (T*): storing Acquires, removing or destroying Releases, and
// Get hands out a borrowed pointer that stays valid while the array holds
// it. Any other T is held by value.
//
// Bounds: an index outside 0..count-1 gives null (or a default value) from
// Get and RESULT_INDEX_OUT_OF_RANGE (-19007) from every int-returning
// member. Growth doubles the capacity (starting at 4); a failed allocation
// gives RESULT_OUT_OF_MEMORY and leaves the array as it was, the size limit
// RESULT_ARRAY_FULL. No member takes a lock: share an array between threads
// only under an outside lock (for example the array's own monitor).
#include <vek/core/CEnumerator.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

template <typename T>
class CArray : public CObject {
public:
    enum : uint32_t { Type = Four("arry") };
    static constexpr bool Counted = Detail::IsCounted<T>;
    using Element = Detail::ElementOf<T>;
    using Param = std::conditional_t<Counted, T*, const T&>;

    CArray() : CObject(Type) {}

    // A new array with room for `capacity` elements; null when the capacity
    // is negative, too large or cannot be allocated.
    static CArray* Create(int32_t capacity = 0)
    {
        auto* array = new (fallible) CArray();
        if (array && !array->m_items.Reserve(capacity)) {
            array->Release();
            return nullptr;
        }
        return array;
    }

    int32_t GetCount() const { return m_items.Count(); }
    bool IsEmpty() const { return m_items.Count() == 0; }

    Element Get(int32_t index) const
    {
        if (!InRange(index))
            return Element{};
        return m_items[index];
    }

    int GetAt(int32_t index, Element& out) const
    {
        if (!InRange(index))
            return RESULT_INDEX_OUT_OF_RANGE;
        out = m_items[index];
        return RESULT_OK;
    }

    // Appends; a counted element is shared (Acquired), null is allowed.
    int Add(Param item) { return Insert(m_items.Count(), item); }

    // Appends a counted element taking over the caller's reference; on
    // failure that reference is released.
    int Adopt(T* item)
        requires Counted
    {
        const int result = Add(item);
        if (item)
            item->Release();
        return result;
    }

    // Inserts before `index`; index == count appends.
    int Insert(int32_t index, Param item)
    {
        if (index < 0 || index > m_items.Count())
            return RESULT_INDEX_OUT_OF_RANGE;
        if (m_items.Count() >= Detail::GrowBuffer<Element>::MaxCount)
            return RESULT_ARRAY_FULL;
        Element element(item);
        Detail::Hold<T>(element);
        if (!m_items.Insert(index, std::move(element))) {
            Detail::Drop<T>(element);
            return RESULT_OUT_OF_MEMORY;
        }
        return RESULT_OK;
    }

    // Replaces element `index`; the old counted element is released after
    // the new one is stored.
    int Set(int32_t index, Param item)
    {
        if (!InRange(index))
            return RESULT_INDEX_OUT_OF_RANGE;
        Element element(item);
        Detail::Hold<T>(element);
        std::swap(m_items[index], element);
        Detail::Drop<T>(element);
        return RESULT_OK;
    }

    int RemoveAt(int32_t index)
    {
        if (!InRange(index))
            return RESULT_INDEX_OUT_OF_RANGE;
        Detail::Drop<T>(m_items.Take(index));
        return RESULT_OK;
    }

    // First index of `item` (identity for counted elements, == for values), or -1.
    int32_t IndexOf(Param item) const
    {
        for (int32_t i = 0; i < m_items.Count(); ++i) {
            if (m_items[i] == item)
                return i;
        }
        return -1;
    }

    bool Contains(Param item) const { return IndexOf(item) >= 0; }

    void Clear()
    {
        // Detach first: a released element may re-enter this array.
        while (m_items.Count() > 0)
            Detail::Drop<T>(m_items.Take(m_items.Count() - 1));
    }

    int Reserve(int32_t capacity) { return m_items.Reserve(capacity) ? RESULT_OK : RESULT_OUT_OF_MEMORY; }

    // The contiguous elements (null while empty and never grown); valid
    // until the next change of the array.
    Element* GetItems() { return m_items.Data(); }
    const Element* GetItems() const { return m_items.Data(); }

    // A new enumerator in index order; null on allocation failure.
    CEnumerator<T>* GetEnumerator() { return CEnumerator<T>::Create(this); }

protected:
    explicit CArray(uint32_t type) : CObject(type) {}
    ~CArray() override { Clear(); }

    bool InRange(int32_t index) const { return index >= 0 && index < m_items.Count(); }

    Detail::GrowBuffer<Element> m_items;
};

} // namespace Quorvex::Vek
