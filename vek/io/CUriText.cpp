// CUri's character classes and the percent-escaping of data strings: the
// parts of URL handling the library does itself rather than through the
// platform's URL services.
#include <vek/io/CUri.h>

#include <vek/core/CString.h>
#include <vek/core/CharClass.h>
#include <vek/core/PercentCoding.h>

#include <cstring>
#include <memory>
#include <new>

namespace Quorvex::Vek {

namespace {

// Order matters only to readers: it is the order the set is documented in.
constexpr char kReserved[] = ";/?:@&=+$,^`{}|[]\"<>\\";

CString* NewString(const char* text, size_t length)
{
    return CString::Create(text, int32_t(length));
}

CString* Share(CString* text)
{
    text->Acquire();
    return text;
}

// A new string of the decoded bytes, kept as bytes (an escaped byte that is
// not UTF-8 stays that byte); null for a malformed escape when `mode` says
// so, or when out of memory.
CString* Decode(const char* chars, size_t length, PercentCoding::Malformed mode, bool plusIsSpace)
{
    std::unique_ptr<char[]> out(new (fallible) char[length + 1]);
    if (!out)
        return nullptr;
    const int64_t n = PercentCoding::Decode(chars, length, out.get(), mode, plusIsSpace);
    return n < 0 ? nullptr : NewString(out.get(), size_t(n));
}

bool NeedsEscape(char c, unsigned int flags)
{
    if (c == '/' && (flags & CUri::EscapeKeepSlash))
        return false;
    return CUri::IsReserved(c);
}

} // namespace

bool CUri::IsReserved(char c)
{
    const uint8_t b = uint8_t(c);
    if (b < 0x21 || b > 0x7E)
        return true;
    return std::strchr(kReserved, c) != nullptr;
}

bool CUri::IsHexDigit(char c)
{
    return FromHexDigit(c) >= 0;
}

int CUri::FromHexDigit(char c)
{
    return CharClass::HexDigitValue(CharClass::Widen(c));
}

char CUri::ToHexDigit(int32_t value)
{
    if (value < 0 || value > 15)
        return 0;
    return "0123456789ABCDEF"[value];
}

CString* CUri::EscapeDataString(CString* text, unsigned int flags)
{
    if (!text)
        return new (fallible) CString();
    const char* chars = text->GetChars();
    const size_t length = std::strlen(chars);

    size_t count = 0;
    for (size_t i = 0; i < length; ++i)
        if (NeedsEscape(chars[i], flags))
            ++count;
    if (count == 0)
        return Share(text);

    std::unique_ptr<char[]> out(new (fallible) char[length + 2 * count + 1]);
    if (!out)
        return nullptr;
    size_t n = 0;
    for (size_t i = 0; i < length; ++i) {
        const char c = chars[i];
        if (NeedsEscape(c, flags)) {
            PercentCoding::Encode(uint8_t(c), out.get() + n);
            n += 3;
        } else {
            out[n++] = c;
        }
    }
    return NewString(out.get(), n);
}

CString* CUri::UnescapeDataString(CString* text)
{
    if (!text)
        return new (fallible) CString();
    const char* chars = text->GetChars();
    const size_t length = std::strlen(chars);
    if (std::memchr(chars, '%', length) == nullptr)
        return Share(text);
    return Decode(chars, length, PercentCoding::Malformed::Fail, false);
}

CString* CUri::UniformResourceLabelUnEscape(CString* text)
{
    if (!text)
        return nullptr;
    const char* chars = text->GetChars();
    return Decode(chars, std::strlen(chars), PercentCoding::Malformed::Keep, true);
}

void CUri::CrackExtraInfo(CString* extra, CString*& query, CString*& fragment)
{
    query = new (fallible) CString();
    fragment = new (fallible) CString();
    const char* chars = extra ? extra->GetChars() : "";
    const size_t length = std::strlen(chars);
    if (length == 0 || (chars[0] != '#' && chars[0] != '?'))
        return;

    const char* hash = chars[0] == '#' ? chars : std::strchr(chars, '#');
    const size_t queryEnd = hash ? size_t(hash - chars) : length;
    if (chars[0] == '?') {
        if (query)
            query->Release();
        query = NewString(chars + 1, queryEnd - 1);
    }
    if (hash) {
        if (fragment)
            fragment->Release();
        fragment = NewString(hash + 1, length - queryEnd - 1);
    }
}

} // namespace Quorvex::Vek
