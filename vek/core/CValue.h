#pragma once

// One value of type T boxed as a counted CObject, for passing plain values
// where an object is expected (a property value, a list of CObjects). Not
// synchronised: guard shared use with the object's monitor.
#include <new>
#include <utility>

#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename T>
class CValue : public CObject {
public:
    enum : uint32_t { Type = Four("valu") };

    explicit CValue(T value = T{}) : CObject(Type), m_value(std::move(value)) {}

    // Null on allocation failure.
    static CValue* Create(T value = T{}) { return new (fallible) CValue(std::move(value)); }

    const T& Get() const { return m_value; }
    void Set(T value) { m_value = std::move(value); }

protected:
    ~CValue() override = default;

private:
    T m_value;
};

} // namespace Quorvex::Vek
