#include <vek/core/String.h>

#include <vek/core/ByteArray.h>

#include <new>

namespace Quorvex::Vek {

namespace {

constexpr WChar kEmptyWChars[1] = {0};

} // namespace

String String::Create(const char* text)
{
    return String(CString::Create(text));
}

String String::Create(const char* text, int32_t length)
{
    return String(CString::Create(text, length));
}

String String::Create(const WChar* text)
{
    return String(CString::Create(text));
}

String String::Create(const WChar* text, int32_t length)
{
    return String(CString::Create(text, length));
}

String String::FromObject(CString* text)
{
    if (text)
        text->Acquire();
    return String(text);
}

const char* String::GetChars() const
{
    return ToObject() ? ToObject()->GetChars() : "";
}

const WChar* String::GetWChars() const
{
    return ToObject() ? ToObject()->GetWChars() : kEmptyWChars;
}

int32_t String::GetLength() const
{
    return ToObject() ? ToObject()->GetLength() : 0;
}

WChar String::GetWChar(int32_t index) const
{
    return ToObject() ? ToObject()->GetWChar(index) : WChar(0);
}

bool String::Equals(const String& other) const
{
    return CString::Equals(ToObject(), other.ToObject());
}

bool String::Equals(const char* other) const
{
    return ToObject() ? ToObject()->Equals(other) : other == nullptr;
}

bool String::EqualsIgnoreCase(const String& other) const
{
    if (!ToObject() || !other.ToObject())
        return ToObject() == other.ToObject();
    return ToObject()->EqualsIgnoreCase(other.ToObject());
}

int32_t String::Compare(const String& a, const String& b)
{
    return CString::Compare(a.ToObject(), b.ToObject());
}

bool String::StartsWith(const char* prefix, bool caseSensitive) const
{
    return ToObject() && ToObject()->StartsWith(prefix, caseSensitive);
}

bool String::EndsWith(const char* suffix, bool caseSensitive) const
{
    return ToObject() && ToObject()->EndsWith(suffix, caseSensitive);
}

int32_t String::IndexOf(const char* text, int32_t start) const
{
    return ToObject() ? ToObject()->IndexOf(text, start) : -1;
}

String String::Substring(int32_t start, int32_t count) const
{
    return String(ToObject() ? ToObject()->Substring(start, count) : nullptr);
}

String String::Trim() const
{
    return String(ToObject() ? ToObject()->Trim() : nullptr);
}

String String::Append(const char* text) const
{
    return String(CString::Concat(ToObject(), text));
}

bool String::IsNullOrEmpty() const
{
    return CString::IsNullOrEmpty(ToObject());
}

int32_t String::ToInt() const
{
    return ToObject() ? ToObject()->ToInt() : 0;
}

int64_t String::ToInt64() const
{
    return ToObject() ? ToObject()->ToInt64() : 0;
}

double String::ToDouble() const
{
    return ToObject() ? ToObject()->ToDouble() : 0.0;
}

uint32_t String::ToFour() const
{
    return CString::ToFour(ToObject());
}

ByteArray String::ToBytes(int32_t count) const
{
    return ByteArray(ToObject() ? ToObject()->ToBytes(count) : nullptr);
}

} // namespace Quorvex::Vek
