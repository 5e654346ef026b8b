#pragma once

// Ordered list of counted references to CObject-derived T. Everything of
// CArray holds (Acquire on store, Release on removal, borrowed pointers
// from Get, -19007 for bad indices, doubling growth), plus removal by
// identity. Null entries are allowed.
#include <vek/core/CArray.h>

namespace Quorvex::Vek {

template <typename T>
class CList : public CArray<T> {
    static_assert(Detail::IsCounted<T>, "CList holds CObjects; use CValueList for values");

public:
    enum : uint32_t { Type = Four("list") };

    CList() : CArray<T>(Type) {}

    static CList* Create() { return new (fallible) CList(); }

    // Removes the first occurrence of `item` (same object): 1 when removed, 0 when absent.
    int Remove(T* item)
    {
        const int32_t index = this->IndexOf(item);
        if (index < 0)
            return 0;
        this->RemoveAt(index);
        return 1;
    }

    T* GetFirst() const { return this->Get(0); }
    T* GetLast() const { return this->Get(this->GetCount() - 1); }

protected:
    ~CList() override = default;
};

} // namespace Quorvex::Vek
