// The OLE conversions exist in the Windows build only.
#if defined(_WIN32)
#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>

#include <gtest/gtest.h>

#include <windows.h>
#include <oleauto.h>

#include <cstring>
#include <cwchar>

using namespace Quorvex::Vek;

TEST(Ole, StringToBSTRKeepsEveryCodeUnit)
{
    struct Case {
        const char* utf8;
        const wchar_t* expected;
        UINT length;
    };
    const Case cases[] = {
        {"", L"", 0},
        {"vide", L"vide", 4},
        {"caf\xC3\xA9 \xF0\x9F\x8E\xAC", L"caf\u00E9 \xD83C\xDFAC", 7},
    };
    for (const Case& c : cases) {
        RObject<CString> text(new CString(c.utf8));
        BSTR bstr = text->ToBSTR();
        ASSERT_NE(bstr, nullptr);
        EXPECT_EQ(SysStringLen(bstr), c.length) << c.utf8;
        EXPECT_EQ(std::wmemcmp(bstr, c.expected, c.length), 0) << c.utf8;
        SysFreeString(bstr);
        BSTR fromStatic = CString::ToBSTR(c.utf8);
        EXPECT_EQ(SysStringLen(fromStatic), c.length);
        SysFreeString(fromStatic);
    }
    BSTR fromNull = CString::ToBSTR(nullptr);
    EXPECT_EQ(SysStringLen(fromNull), 0u);
    SysFreeString(fromNull);
}

TEST(Ole, ByteArrayToSafeArrayCopiesBytes)
{
    const unsigned char bytes[] = {0x00, 0x7F, 0x80, 0xFF, 0x42};
    RObject<CByteArray> array(new CByteArray(bytes, 5));
    SAFEARRAY* safe = array->ToSAFEARRAY();
    ASSERT_NE(safe, nullptr);
    LONG lower = -1, upper = -1;
    SafeArrayGetLBound(safe, 1, &lower);
    SafeArrayGetUBound(safe, 1, &upper);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, 4);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(safe, &data), S_OK);
    EXPECT_EQ(std::memcmp(data, bytes, 5), 0);
    SafeArrayUnaccessData(safe);
    SafeArrayDestroy(safe);

    RObject<CByteArray> empty(new CByteArray(0));
    SAFEARRAY* none = empty->ToSAFEARRAY();
    ASSERT_NE(none, nullptr);
    SafeArrayDestroy(none);
}
#endif
