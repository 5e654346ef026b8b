#include <vek/io/CUriParameter.h>

#include <vek/core/CString.h>

#include <new>

namespace Quorvex::Vek {

CUriParameter::CUriParameter(CString* name, CString* value)
    : CObject(Type), m_name(name), m_value(value)
{
}

CUriParameter::~CUriParameter() = default;

CUriParameter* CUriParameter::Create(const char* name, const char* value)
{
    if (!name)
        return nullptr;
    RObject<CString> nameText(CString::Create(name));
    RObject<CString> valueText(CString::Create(value ? value : ""));
    if (!nameText || !valueText)
        return nullptr;
    return Create(nameText, valueText);
}

CUriParameter* CUriParameter::Create(CString* name, CString* value)
{
    if (!name)
        return nullptr;
    RObject<CString> valueText = value ? RObject<CString>::FromObject(value)
                                       : RObject<CString>(new (fallible) CString());
    if (!valueText)
        return nullptr;
    name->Acquire();
    CUriParameter* parameter = new (fallible) CUriParameter(name, valueText.Detach());
    return parameter;
}

int32_t CUriParameter::GetValueAsInt32(int32_t defaultValue) const
{
    const char* text = m_value->GetChars();
    bool negative = false;
    if (*text == '+' || *text == '-')
        negative = *text++ == '-';
    if (*text == 0)
        return defaultValue;
    int64_t value = 0;
    for (; *text; ++text) {
        if (*text < '0' || *text > '9')
            return defaultValue;
        value = value * 10 + (*text - '0');
        if (value > int64_t(INT32_MAX) + 1)
            return defaultValue;
    }
    value = negative ? -value : value;
    if (value > INT32_MAX || value < INT32_MIN)
        return defaultValue;
    return int32_t(value);
}

bool CUriParameter::Equals(const char* name) const
{
    return name && m_name->EqualsIgnoreCase(name);
}

} // namespace Quorvex::Vek
