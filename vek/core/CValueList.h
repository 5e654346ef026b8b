#pragma once

// Ordered list of values (T copied in and out; T must not be a CObject:
// use CList for those). Everything of CArray holds (-19007 for bad indices,
// doubling growth, a default T from Get out of range), plus removal by
// value, which needs T to be equality-comparable.
#include <vek/core/CArray.h>

namespace Quorvex::Vek {

template <typename T>
class CValueList : public CArray<T> {
    static_assert(!Detail::IsCounted<T>, "CValueList holds values; use CList for CObjects");

public:
    enum : uint32_t { Type = Four("vlst") };

    CValueList() : CArray<T>(Type) {}

    static CValueList* Create() { return new (fallible) CValueList(); }

    // Removes the first element equal to `value`: 1 when removed, 0 when absent.
    int Remove(const T& value)
    {
        const int32_t index = this->IndexOf(value);
        if (index < 0)
            return 0;
        this->RemoveAt(index);
        return 1;
    }

protected:
    ~CValueList() override = default;
};

} // namespace Quorvex::Vek
