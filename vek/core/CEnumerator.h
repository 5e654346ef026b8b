#pragma once

// Forward enumeration over an indexed collection (CArray, CList,
// CValueList, CFloatArray). The enumerator holds a reference to its
// collection, so it may outlive the caller's own reference.
//
// Order is index order. Enumeration is live: it reads the collection by
// index at each step, so an element added at the end is visited and a
// removal shifts the following elements (one may be skipped); it never
// reads past the current count. Usage:
//   while (e->MoveNext()) use(e->GetCurrent());
#include <vek/core/CollectionStorage.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

template <typename T>
class CEnumerator : public CObject {
public:
    enum : uint32_t { Type = Four("enum") };
    using Element = Detail::ElementOf<T>;

    // `collection` needs GetCount() and Get(int32_t) returning Element.
    // Null on a null collection or allocation failure.
    template <typename C>
    static CEnumerator* Create(C* collection)
    {
        if (!collection)
            return nullptr;
        return new (fallible) CEnumerator(
            collection, [](CObject* c) { return static_cast<C*>(c)->GetCount(); },
            [](CObject* c, int32_t i) { return static_cast<C*>(c)->Get(i); });
    }

    // Steps to the next element; false (and stays there) at the end.
    bool MoveNext()
    {
        const int32_t count = m_count(m_source.Get());
        if (m_index < count)
            ++m_index;
        return m_index < count;
    }

    // The element at the current position (for counted elements a borrowed
    // pointer); null or a default value before the first MoveNext, after
    // the end, or when the collection shrank below the position.
    Element GetCurrent() const
    {
        if (m_index < 0 || m_index >= m_count(m_source.Get()))
            return Element{};
        return m_get(m_source.Get(), m_index);
    }

    int32_t GetIndex() const { return m_index; }
    void Reset() { m_index = -1; }

protected:
    ~CEnumerator() override = default;

private:
    using CountFunction = int32_t (*)(CObject*);
    using GetFunction = Element (*)(CObject*, int32_t);

    CEnumerator(CObject* source, CountFunction count, GetFunction get)
        : CObject(Type), m_source(RObject<CObject>::FromObject(source)), m_count(count), m_get(get)
    {
    }

    RObject<CObject> m_source;
    CountFunction m_count;
    GetFunction m_get;
    int32_t m_index = -1;
};

} // namespace Quorvex::Vek
