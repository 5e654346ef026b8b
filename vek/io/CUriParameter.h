#pragma once

// One name/value pair of a URI query. Immutable once made.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class CString;

class VEK_API CUriParameter : public CObject {
public:
    enum : uint32_t { Type = Four("uprm") };

    // A new parameter owned by the caller (a null value becomes empty);
    // null for a null name or when out of memory.
    static CUriParameter* Create(const char* name, const char* value);
    static CUriParameter* Create(CString* name, CString* value);

    // Borrowed: valid while the parameter lives. Never null.
    CString* GetName() const { return m_name; }
    CString* GetValue() const { return m_value; }
    // The value as a decimal 32-bit integer (optional sign, nothing else);
    // `defaultValue` when it is not one or does not fit.
    int32_t GetValueAsInt32(int32_t defaultValue) const;
    // Compares the name, ignoring case.
    bool Equals(const char* name) const;

protected:
    CUriParameter(CString* name, CString* value);
    ~CUriParameter() override;

private:
    RObject<CString> m_name;
    RObject<CString> m_value;
};

} // namespace Quorvex::Vek
