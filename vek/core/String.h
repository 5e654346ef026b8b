#pragma once

// Public value-type wrapper over CString. Copies share one immutable
// string; a default String is null, and every member answers for a null
// one as for the empty string (GetChars gives "", GetLength 0), except
// where null and empty differ (Equals, IsNull).
#include <vek/core/BaseObject.h>
#include <vek/core/ByteArray.h>
#include <vek/core/CString.h>

namespace Quorvex::Vek {

class VEK_API String : public Object<CString> {
public:
    String() = default;
    // Adopts the caller's reference.
    String(CString* text) : BaseObject(text), Object<CString>() {}
    // BaseObject is a virtual base: this class initialises it.
    String(const String& other) : BaseObject(other), Object<CString>() {}
    String(String&& other) noexcept : BaseObject(static_cast<BaseObject&&>(other)), Object<CString>() {}
    String& operator=(const String& other)
    {
        BaseObject::operator=(other);
        return *this;
    }
    String& operator=(String&& other) noexcept
    {
        BaseObject::operator=(static_cast<BaseObject&&>(other));
        return *this;
    }

    // New strings; null on allocation failure. A null text gives "".
    static String Create(const char* text);
    static String Create(const char* text, int32_t length);
    static String Create(const WChar* text);
    static String Create(const WChar* text, int32_t length);
    // Shares a string the caller keeps too.
    static String FromObject(CString* text);

    const char* GetChars() const;
    const WChar* GetWChars() const;
    int32_t GetLength() const;
    WChar GetWChar(int32_t index) const;

    // Exact; two null strings are equal, null and non-null are not.
    bool Equals(const String& other) const;
    bool Equals(const char* other) const;
    bool EqualsIgnoreCase(const String& other) const;
    // Case-insensitive ordering (see CString::Compare).
    static int32_t Compare(const String& a, const String& b);
    bool StartsWith(const char* prefix, bool caseSensitive = true) const;
    bool EndsWith(const char* suffix, bool caseSensitive = true) const;
    int32_t IndexOf(const char* text, int32_t start = 0) const;

    // Null when out of range (see CString::Substring) or for a null string.
    String Substring(int32_t start, int32_t count) const;
    String Trim() const;
    String Append(const char* text) const;

    bool IsNullOrEmpty() const;
    int32_t ToInt() const;
    int64_t ToInt64() const;
    double ToDouble() const;
    uint32_t ToFour() const;
    ByteArray ToBytes(int32_t count) const;

    bool operator==(const String& other) const { return Equals(other); }
    bool operator!=(const String& other) const { return !Equals(other); }
};

} // namespace Quorvex::Vek
