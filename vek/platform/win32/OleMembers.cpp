#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>

#include <windows.h>
#include <oleauto.h>

#include <cstring>

namespace Quorvex::Vek {

wchar_t* CString::ToBSTR()
{
    const WChar* text = GetWChars();
    return SysAllocStringLen(text, UINT(GetLength()));
}

wchar_t* CString::ToBSTR(const char* text)
{
    if (!text)
        return SysAllocStringLen(L"", 0);
    RObject<CString> converted(new (std::nothrow) CString(text));
    return converted ? converted->ToBSTR() : nullptr;
}

tagSAFEARRAY* CByteArray::ToSAFEARRAY()
{
    SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, ULONG(GetLength()));
    if (!array || GetLength() == 0)
        return array;
    void* target = nullptr;
    if (FAILED(SafeArrayAccessData(array, &target))) {
        SafeArrayDestroy(array);
        return nullptr;
    }
    const unsigned char* source = GetData();
    if (source)
        std::memcpy(target, source, size_t(GetLength()));
    else
        std::memset(target, 0, size_t(GetLength()));
    SafeArrayUnaccessData(array);
    return array;
}

} // namespace Quorvex::Vek
