#include <vek/core/CString.h>

#include <vek/core/CArray.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CharClass.h>
#include <vek/core/FormattedText.h>
#include <vek/core/Log.h>
#include <vek/platform/TextCodec.h>

#include <cstdio>
#include <cstring>
#include <new>

namespace Quorvex::Vek {

namespace {

constexpr char kEmptyChars[1] = {0};
constexpr WChar kEmptyWChars[1] = {0};
constexpr int32_t kMaxLength = INT32_MAX - 1; // room for the terminator

int32_t NarrowLength(const char* text)
{
    if (!text)
        return 0;
    const std::size_t n = std::strlen(text);
    return n > std::size_t(kMaxLength) ? kMaxLength : int32_t(n);
}

int32_t WideLength(const WChar* text)
{
    if (!text)
        return 0;
    int32_t n = 0;
    while (n < kMaxLength && text[n])
        ++n;
    return n;
}

int UnitValue(WChar c)
{
    return int(uint16_t(c));
}

WChar Fold(WChar c, bool ignoreCase)
{
    return ignoreCase ? CharClass::ToLower(c) : c;
}

bool SameUnits(const WChar* a, const WChar* b, int32_t length, bool ignoreCase)
{
    for (int32_t i = 0; i < length; ++i) {
        if (Fold(a[i], ignoreCase) != Fold(b[i], ignoreCase))
            return false;
    }
    return true;
}

int32_t FindUnits(const WChar* text, int32_t length, const WChar* needle, int32_t needleLength, int32_t start,
                  bool ignoreCase)
{
    if (!needle || start < 0 || start > length)
        return -1;
    for (int32_t i = start; needleLength <= length - i; ++i) {
        if (SameUnits(text + i, needle, needleLength, ignoreCase))
            return i;
    }
    return -1;
}

// A text argument seen as UTF-16 units: borrowed when it already is UTF-16,
// converted (and owned) when it is UTF-8. `units` stays null for a null
// argument or a failed conversion.
class WideArgument {
public:
    explicit WideArgument(const WChar* text) : m_units(text), m_length(WideLength(text)) {}
    explicit WideArgument(const char* text)
    {
        if (!text)
            return;
        const int32_t bytes = NarrowLength(text);
        const int32_t units = Platform::Utf8ToUtf16(text, bytes, nullptr, 0);
        if (units < 0)
            return;
        m_owned = new (fallible) WChar[std::size_t(units) + 1];
        if (!m_owned)
            return;
        Platform::Utf8ToUtf16(text, bytes, m_owned, units);
        m_owned[units] = 0;
        m_units = m_owned;
        m_length = units;
    }
    ~WideArgument() { delete[] m_owned; }
    WideArgument(const WideArgument&) = delete;
    WideArgument& operator=(const WideArgument&) = delete;

    const WChar* Units() const { return m_units; }
    int32_t Length() const { return m_length; }

private:
    const WChar* m_units = nullptr;
    int32_t m_length = 0;
    WChar* m_owned = nullptr;
};

// A hexadecimal digit's value; any other unit counts 0.
int HexValue(WChar c)
{
    const int digit = CharClass::HexDigitValue(c);
    return digit < 0 ? 0 : digit;
}

} // namespace

// ---- construction -------------------------------------------------------

CString::CString() : CObject(Type) {}

CString::CString(const char* text) : CObject(Type)
{
    InitFromUtf8(text, NarrowLength(text));
}

CString::CString(const char* text, int32_t length) : CObject(Type)
{
    InitFromUtf8(text, length < 0 ? NarrowLength(text) : length);
}

CString::CString(const WChar* text) : CObject(Type)
{
    InitFromUtf16(text, WideLength(text));
}

CString::CString(const WChar* text, int32_t length) : CObject(Type)
{
    InitFromUtf16(text, length < 0 ? WideLength(text) : length);
}

CString::CString(const char* first, const char* second) : CObject(Type)
{
    // Joined as bytes, so a sequence split across the two parts survives.
    const int32_t a = NarrowLength(first), b = NarrowLength(second);
    if (a > kMaxLength - b) {
        Log(LogLevel::Error, "CString::CString: text too long (%d + %d bytes)\n", a, b);
        return;
    }
    char* joined = new (fallible) char[std::size_t(a) + b + 1];
    if (!joined) {
        Log(LogLevel::Error, "CString::CString: out of memory for %d bytes\n", a + b);
        return;
    }
    if (a)
        std::memcpy(joined, first, std::size_t(a));
    if (b)
        std::memcpy(joined + a, second, std::size_t(b));
    InitFromUtf8(joined, a + b);
    delete[] joined;
}

CString::CString(const WChar* first, const WChar* second) : CObject(Type)
{
    const int32_t a = WideLength(first), b = WideLength(second);
    if (a > kMaxLength - b) {
        Log(LogLevel::Error, "CString::CString: text too long (%d + %d units)\n", a, b);
        return;
    }
    WChar* joined = new (fallible) WChar[std::size_t(a) + b + 1];
    if (!joined) {
        Log(LogLevel::Error, "CString::CString: out of memory for %d units\n", a + b);
        return;
    }
    if (a)
        std::memcpy(joined, first, std::size_t(a) * sizeof(WChar));
    if (b)
        std::memcpy(joined + a, second, std::size_t(b) * sizeof(WChar));
    joined[a + b] = 0;
    m_wchars = joined;
    m_length = a + b;
    MakeUtf8Form();
}

CString::~CString()
{
    delete[] m_chars;
    delete[] m_wchars;
}

// Keeps the given bytes exactly as the UTF-8 form, valid UTF-8 or not: a
// POSIX file name or a decoded URL may hold any byte and must reach the file
// system unchanged. Only the UTF-16 form, made on demand, substitutes U+FFFD
// for ill-formed parts, and lengths count the units of that form.
bool CString::InitFromUtf8(const char* text, int32_t length)
{
    if (!text || length <= 0)
        return true;
    if (length > kMaxLength) {
        Log(LogLevel::Error, "CString::InitFromUtf8: text too long (%d bytes)\n", length);
        return false;
    }
    const int32_t units = Platform::Utf8ToUtf16(text, length, nullptr, 0);
    if (units < 0 || units > kMaxLength) {
        Log(LogLevel::Error, "CString::InitFromUtf8: text too long (%d bytes)\n", length);
        return false;
    }
    char* narrow = new (fallible) char[std::size_t(length) + 1];
    WChar* wide = narrow ? new (fallible) WChar[std::size_t(units) + 1] : nullptr;
    if (!wide) {
        Log(LogLevel::Error, "CString::InitFromUtf8: out of memory for %d bytes\n", length);
        delete[] narrow;
        return false;
    }
    std::memcpy(narrow, text, std::size_t(length));
    narrow[length] = 0;
    Platform::Utf8ToUtf16(text, length, wide, units);
    wide[units] = 0;
    m_charsLength = length;
    m_chars = narrow;
    m_wchars = wide;
    m_length = units;
    return true;
}

bool CString::InitFromUtf16(const WChar* text, int32_t length)
{
    if (!text || length <= 0)
        return true;
    if (length > kMaxLength) {
        Log(LogLevel::Error, "CString::InitFromUtf16: text too long (%d units)\n", length);
        return false;
    }
    WChar* wide = new (fallible) WChar[std::size_t(length) + 1];
    if (!wide) {
        Log(LogLevel::Error, "CString::InitFromUtf16: out of memory for %d units\n", length);
        return false;
    }
    std::memcpy(wide, text, std::size_t(length) * sizeof(WChar));
    wide[length] = 0;
    m_wchars = wide;
    m_length = length;
    return MakeUtf8Form();
}

CString* CString::FromUnits(const WChar* units, int32_t length)
{
    return FromUnits(units, length, nullptr, 0);
}

CString* CString::FromUnits(const WChar* first, int32_t firstLength, const WChar* second, int32_t secondLength)
{
    if (firstLength < 0 || secondLength < 0 || firstLength > kMaxLength - secondLength)
        return nullptr;
    auto* result = new (fallible) CString();
    if (!result)
        return nullptr;
    const int32_t length = firstLength + secondLength;
    if (length == 0)
        return result;
    WChar* wide = new (fallible) WChar[std::size_t(length) + 1];
    if (!wide) {
        Log(LogLevel::Error, "CString::FromUnits: out of memory for %d units\n", length);
        result->Release();
        return nullptr;
    }
    if (firstLength)
        std::memcpy(wide, first, std::size_t(firstLength) * sizeof(WChar));
    if (secondLength)
        std::memcpy(wide + firstLength, second, std::size_t(secondLength) * sizeof(WChar));
    wide[length] = 0;
    result->m_wchars = wide;
    result->m_length = length;
    if (!result->MakeUtf8Form()) {
        result->Release();
        return nullptr;
    }
    return result;
}

CString* CString::Create(const char* text, int32_t length)
{
    return FromUtf8(text, length < 0 ? NarrowLength(text) : length);
}

CString* CString::Create(const WChar* text, int32_t length)
{
    return FromUnits(text, length < 0 ? WideLength(text) : length);
}

CString* CString::FromUtf8(const char* text, int32_t length)
{
    auto* result = new (fallible) CString();
    if (result && !result->InitFromUtf8(text, length)) {
        result->Release();
        return nullptr;
    }
    return result;
}

// ---- the two forms ------------------------------------------------------

int32_t CString::GetLength() const
{
    return m_length;
}

int32_t CString::GetLength(const char* text)
{
    return NarrowLength(text);
}

int32_t CString::GetLength(const WChar* text)
{
    return WideLength(text);
}

const char* CString::GetChars()
{
    const char* chars = m_chars;
    return chars ? chars : kEmptyChars;
}

// Makes the UTF-8 form of text given as UTF-16. Without memory for it the
// string becomes empty and false is returned, so no live string lacks a form.
bool CString::MakeUtf8Form()
{
    const WChar* wide = m_wchars;
    if (m_length == 0 || !wide)
        return true;
    const int32_t bytes = Platform::Utf16ToUtf8(wide, m_length, nullptr, 0);
    char* narrow = bytes >= 0 && bytes <= kMaxLength ? new (fallible) char[std::size_t(bytes) + 1] : nullptr;
    if (!narrow) {
        Log(LogLevel::Error, "CString::MakeUtf8Form: out of memory for the UTF-8 form of %d units\n", m_length);
        delete[] std::exchange(m_wchars, nullptr);
        m_length = 0;
        return false;
    }
    Platform::Utf16ToUtf8(wide, m_length, narrow, bytes);
    narrow[bytes] = 0;
    m_charsLength = bytes;
    m_chars = narrow;
    return true;
}

const WChar* CString::GetWChars()
{
    const WChar* wchars = m_wchars;
    return wchars ? wchars : kEmptyWChars;
}

int32_t CString::GetCharsLength()
{
    return m_charsLength;
}

char CString::GetChar(int32_t index)
{
    const char* chars = GetChars();
    return index >= 0 && index < GetCharsLength() ? chars[index] : char(0);
}

WChar CString::GetWChar(int32_t index)
{
    return index >= 0 && index < m_length ? GetWChars()[index] : WChar(0);
}

char* CString::GetChars(const WChar* text)
{
    if (!text)
        return nullptr;
    const int32_t units = WideLength(text);
    const int32_t bytes = Platform::Utf16ToUtf8(text, units, nullptr, 0);
    char* narrow = bytes >= 0 && bytes <= kMaxLength ? new (fallible) char[std::size_t(bytes) + 1] : nullptr;
    if (!narrow)
        return nullptr;
    Platform::Utf16ToUtf8(text, units, narrow, bytes);
    narrow[bytes] = 0;
    return narrow;
}

WChar* CString::GetWChars(const char* text)
{
    if (!text)
        return nullptr;
    const int32_t bytes = NarrowLength(text);
    const int32_t units = Platform::Utf8ToUtf16(text, bytes, nullptr, 0);
    WChar* wide = units >= 0 && units <= kMaxLength ? new (fallible) WChar[std::size_t(units) + 1] : nullptr;
    if (!wide)
        return nullptr;
    Platform::Utf8ToUtf16(text, bytes, wide, units);
    wide[units] = 0;
    return wide;
}

// ---- new strings from this one -----------------------------------------

CString* CString::Append(char c)
{
    return Append(CharClass::Widen(c));
}

CString* CString::Append(WChar c)
{
    return FromUnits(GetWChars(), m_length, &c, 1);
}

CString* CString::Append(const char* text)
{
    WideArgument other(text);
    if (text && !other.Units())
        return nullptr;
    return FromUnits(GetWChars(), m_length, other.Units(), other.Length());
}

CString* CString::Append(const WChar* text)
{
    return FromUnits(GetWChars(), m_length, text, WideLength(text));
}

CString* CString::Append(CString* text)
{
    if (!text)
        return Clone();
    return FromUnits(GetWChars(), m_length, text->GetWChars(), text->m_length);
}

CString* CString::Concat(CString* a, CString* b)
{
    if (!a)
        return b ? b->Clone() : FromUnits(nullptr, 0);
    return a->Append(b);
}

CString* CString::Concat(CString* a, const char* b)
{
    if (!a)
        return FromUtf8(b, NarrowLength(b));
    return a->Append(b);
}

CString* CString::Concat(CString* a, const WChar* b)
{
    if (!a)
        return FromUnits(b, WideLength(b));
    return a->Append(b);
}

// Both forms copied as they are: a clone of bytes that are not valid UTF-8
// keeps the bytes, a clone of unpaired surrogates keeps the surrogates.
CString* CString::Clone()
{
    auto* result = new (fallible) CString();
    if (!result || m_length == 0)
        return result;
    result->m_chars = new (fallible) char[std::size_t(m_charsLength) + 1];
    result->m_wchars = new (fallible) WChar[std::size_t(m_length) + 1];
    if (!result->m_chars || !result->m_wchars) {
        Log(LogLevel::Error, "CString::Clone: out of memory for %d units\n", m_length);
        result->Release();
        return nullptr;
    }
    std::memcpy(result->m_chars, m_chars, std::size_t(m_charsLength) + 1);
    std::memcpy(result->m_wchars, m_wchars, (std::size_t(m_length) + 1) * sizeof(WChar));
    result->m_charsLength = m_charsLength;
    result->m_length = m_length;
    return result;
}

// ---- comparison ---------------------------------------------------------

bool CString::Equals(CString* other)
{
    if (!other)
        return false;
    if (other == this)
        return true;
    return other->m_length == m_length && SameUnits(GetWChars(), other->GetWChars(), m_length, false);
}

bool CString::Equals(CString* a, CString* b)
{
    if (!a || !b)
        return a == b;
    return a->Equals(b);
}

bool CString::Equals(const char* other)
{
    return Equals(other, NarrowLength(other));
}

bool CString::Equals(const char* other, int32_t length)
{
    if (!other || length < 0)
        return false;
    const char* chars = GetChars();
    return length == GetCharsLength() && std::memcmp(chars, other, std::size_t(length)) == 0;
}

bool CString::Equals(const WChar* other)
{
    return Equals(other, WideLength(other));
}

bool CString::Equals(const WChar* other, int32_t length)
{
    return other && length == m_length && SameUnits(GetWChars(), other, m_length, false);
}

bool CString::EqualsIgnoreCase(CString* other)
{
    return other && other->m_length == m_length && SameUnits(GetWChars(), other->GetWChars(), m_length, true);
}

bool CString::EqualsIgnoreCase(const char* other)
{
    WideArgument units(other);
    return units.Units() && units.Length() == m_length && SameUnits(GetWChars(), units.Units(), m_length, true);
}

bool CString::EqualsIgnoreCase(const WChar* other)
{
    return other && WideLength(other) == m_length && SameUnits(GetWChars(), other, m_length, true);
}

int32_t CString::Compare(CString* a, CString* b)
{
    if (!a)
        return b ? -1 : 0;
    if (!b)
        return 1;
    const WChar* x = a->GetWChars();
    const WChar* y = b->GetWChars();
    const int32_t n = a->m_length > b->m_length ? a->m_length : b->m_length;
    for (int32_t i = 0; i < n; ++i) {
        const int cx = i < a->m_length ? UnitValue(CharClass::ToLower(x[i])) : 0;
        const int cy = i < b->m_length ? UnitValue(CharClass::ToLower(y[i])) : 0;
        if (cx != cy)
            return cx - cy;
    }
    return 0;
}

bool CString::StartsWith(const char* prefix, bool caseSensitive)
{
    WideArgument units(prefix);
    return units.Units() && units.Length() <= m_length &&
           SameUnits(GetWChars(), units.Units(), units.Length(), !caseSensitive);
}

bool CString::StartsWith(const WChar* prefix, bool caseSensitive)
{
    const int32_t n = WideLength(prefix);
    return prefix && n <= m_length && SameUnits(GetWChars(), prefix, n, !caseSensitive);
}

bool CString::EndsWith(const char* suffix, bool caseSensitive)
{
    WideArgument units(suffix);
    return units.Units() && units.Length() <= m_length &&
           SameUnits(GetWChars() + (m_length - units.Length()), units.Units(), units.Length(), !caseSensitive);
}

bool CString::EndsWith(const WChar* suffix, bool caseSensitive)
{
    const int32_t n = WideLength(suffix);
    return suffix && n <= m_length && SameUnits(GetWChars() + (m_length - n), suffix, n, !caseSensitive);
}

// ---- searching ----------------------------------------------------------

bool CString::Contains(const char* text)
{
    return IndexOf(text) >= 0;
}

bool CString::Contains(const WChar* text)
{
    return IndexOf(text) >= 0;
}

bool CString::ContainsIgnoreCase(const char* text)
{
    return IndexOfIgnoreCase(text) >= 0;
}

bool CString::ContainsIgnoreCase(const WChar* text)
{
    return IndexOfIgnoreCase(text) >= 0;
}

int32_t CString::IndexOf(char c, int32_t start)
{
    return IndexOf(CharClass::Widen(c), start);
}

int32_t CString::IndexOf(WChar c, int32_t start)
{
    return FindUnits(GetWChars(), m_length, &c, 1, start, false);
}

int32_t CString::IndexOf(const char* text, int32_t start)
{
    WideArgument units(text);
    return FindUnits(GetWChars(), m_length, units.Units(), units.Length(), start, false);
}

int32_t CString::IndexOf(const WChar* text, int32_t start)
{
    return FindUnits(GetWChars(), m_length, text, WideLength(text), start, false);
}

int32_t CString::IndexOf(CString* text, int32_t start)
{
    if (!text)
        return -1;
    return FindUnits(GetWChars(), m_length, text->GetWChars(), text->m_length, start, false);
}

int32_t CString::IndexOfAny(const WChar* set, int32_t start)
{
    if (!set || start < 0 || start > m_length)
        return -1;
    const WChar* units = GetWChars();
    const int32_t setLength = WideLength(set);
    for (int32_t i = start; i < m_length; ++i) {
        for (int32_t k = 0; k < setLength; ++k) {
            if (units[i] == set[k])
                return i;
        }
    }
    return -1;
}

int32_t CString::IndexOfIgnoreCase(const char* text, int32_t start)
{
    WideArgument units(text);
    return FindUnits(GetWChars(), m_length, units.Units(), units.Length(), start, true);
}

int32_t CString::IndexOfIgnoreCase(const WChar* text, int32_t start)
{
    return FindUnits(GetWChars(), m_length, text, WideLength(text), start, true);
}

int32_t CString::LastIndexOf(char c)
{
    return LastIndexOf(CharClass::Widen(c));
}

int32_t CString::LastIndexOf(WChar c)
{
    const WChar* units = GetWChars();
    for (int32_t i = m_length - 1; i >= 0; --i) {
        if (units[i] == c)
            return i;
    }
    return -1;
}

int32_t CString::LastIndexOf(const char* text)
{
    WideArgument units(text);
    if (!units.Units())
        return -1;
    const WChar* own = GetWChars();
    for (int32_t i = m_length - units.Length(); i >= 0; --i) {
        if (SameUnits(own + i, units.Units(), units.Length(), false))
            return i;
    }
    return -1;
}

int32_t CString::LastIndexOf(const WChar* text)
{
    if (!text)
        return -1;
    const int32_t n = WideLength(text);
    const WChar* own = GetWChars();
    for (int32_t i = m_length - n; i >= 0; --i) {
        if (SameUnits(own + i, text, n, false))
            return i;
    }
    return -1;
}

// ---- pieces -------------------------------------------------------------

CString* CString::Substring(int32_t start)
{
    if (start < 0 || start > m_length)
        return nullptr;
    return FromUnits(GetWChars() + start, m_length - start);
}

CString* CString::Substring(int32_t start, int32_t count)
{
    if (start < 0 || count < 0 || start > m_length || count > m_length - start)
        return nullptr;
    return FromUnits(GetWChars() + start, count);
}

// Trims units in `set`, or white space when `set` is null.
CString* CString::TrimWhere(bool left, bool right, const WChar* set)
{
    const WChar* units = GetWChars();
    const int32_t setLength = WideLength(set);
    auto trimmed = [&](WChar c) {
        if (!set)
            return CharClass::IsSpace(c);
        for (int32_t k = 0; k < setLength; ++k) {
            if (set[k] == c)
                return true;
        }
        return false;
    };
    int32_t begin = 0, end = m_length;
    while (left && begin < end && trimmed(units[begin]))
        ++begin;
    while (right && end > begin && trimmed(units[end - 1]))
        --end;
    return FromUnits(units + begin, end - begin);
}

CString* CString::Trim()
{
    return TrimWhere(true, true, nullptr);
}

CString* CString::TrimLeft()
{
    return TrimWhere(true, false, nullptr);
}

CString* CString::TrimRight()
{
    return TrimWhere(false, true, nullptr);
}

CString* CString::Trim(const WChar* set)
{
    static constexpr WChar kNothing[1] = {0};
    return TrimWhere(true, true, set ? set : kNothing);
}

CString* CString::Replace(char from, char to)
{
    return Replace(CharClass::Widen(from), CharClass::Widen(to));
}

CString* CString::Replace(WChar from, WChar to)
{
    return ReplaceUnits(&from, 1, &to, 1);
}

CString* CString::Replace(const char* from, const char* to)
{
    WideArgument fromUnits(from), toUnits(to);
    if ((from && !fromUnits.Units()) || (to && !toUnits.Units()))
        return nullptr;
    return ReplaceUnits(fromUnits.Units(), fromUnits.Length(), toUnits.Units(), toUnits.Length());
}

CString* CString::Replace(const WChar* from, const WChar* to)
{
    return ReplaceUnits(from, WideLength(from), to, WideLength(to));
}

CString* CString::ReplaceUnits(const WChar* from, int32_t fromLength, const WChar* to, int32_t toLength)
{
    if (!from || fromLength == 0)
        return Clone();
    const WChar* units = GetWChars();
    int64_t length = 0;
    for (int32_t i = 0; i < m_length;) {
        const bool match = fromLength <= m_length - i && SameUnits(units + i, from, fromLength, false);
        length += match ? toLength : 1;
        i += match ? fromLength : 1;
    }
    if (length > kMaxLength) {
        Log(LogLevel::Error, "CString::Replace: result too long (%lld units)\n", (long long)length);
        return nullptr;
    }
    WChar* out = new (fallible) WChar[std::size_t(length) + 1];
    if (!out)
        return nullptr;
    int32_t n = 0;
    for (int32_t i = 0; i < m_length;) {
        if (fromLength <= m_length - i && SameUnits(units + i, from, fromLength, false)) {
            for (int32_t k = 0; k < toLength; ++k)
                out[n++] = to[k];
            i += fromLength;
        } else {
            out[n++] = units[i++];
        }
    }
    CString* result = FromUnits(out, n);
    delete[] out;
    return result;
}

CArray<CString>* CString::Split(WChar separator)
{
    CArray<CString>* parts = CArray<CString>::Create();
    if (!parts)
        return nullptr;
    const WChar* units = GetWChars();
    int32_t begin = 0;
    for (int32_t i = 0; i <= m_length; ++i) {
        if (i < m_length && units[i] != separator)
            continue;
        CString* part = FromUnits(units + begin, i - begin);
        if (!part || parts->Adopt(part) < 0) {
            parts->Release();
            return nullptr;
        }
        begin = i + 1;
    }
    return parts;
}

CString* CString::Join(const WChar* separator, CArray<CString>* parts)
{
    if (!parts)
        return FromUnits(nullptr, 0);
    const int32_t separatorLength = WideLength(separator);
    const int32_t count = parts->GetCount();
    int64_t length = count > 0 ? int64_t(separatorLength) * (count - 1) : 0;
    for (int32_t i = 0; i < count; ++i) {
        if (CString* part = parts->Get(i))
            length += part->m_length;
    }
    if (length > kMaxLength) {
        Log(LogLevel::Error, "CString::Join: result too long (%lld units)\n", (long long)length);
        return nullptr;
    }
    WChar* out = new (fallible) WChar[std::size_t(length) + 1];
    if (!out)
        return nullptr;
    int32_t n = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (i > 0 && separatorLength) {
            std::memcpy(out + n, separator, std::size_t(separatorLength) * sizeof(WChar));
            n += separatorLength;
        }
        if (CString* part = parts->Get(i); part && part->m_length) {
            std::memcpy(out + n, part->GetWChars(), std::size_t(part->m_length) * sizeof(WChar));
            n += part->m_length;
        }
    }
    CString* result = FromUnits(out, n);
    delete[] out;
    return result;
}

// ---- classification and numbers ---------------------------------------

bool CString::IsNullOrEmpty()
{
    return m_length == 0;
}

bool CString::IsNullOrWhiteSpace()
{
    const WChar* units = GetWChars();
    for (int32_t i = 0; i < m_length; ++i) {
        if (!CharClass::IsSpace(units[i]))
            return false;
    }
    return true;
}

bool CString::IsNullOrEmpty(CString* text)
{
    return !text || text->IsNullOrEmpty();
}

bool CString::IsNullOrWhiteSpace(CString* text)
{
    return !text || text->IsNullOrWhiteSpace();
}

bool CString::IsDigit(int32_t index)
{
    return index >= 0 && index < m_length && CharClass::IsDigit(GetWChars()[index]);
}

bool CString::IsWhiteSpace(int32_t index)
{
    return index >= 0 && index < m_length && CharClass::IsSpace(GetWChars()[index]);
}

int32_t CString::ToInt()
{
    return ToInt(10);
}

int32_t CString::ToInt(int base)
{
    return int32_t(CharClass::ParseInteger(GetWChars(), m_length, base, INT32_MIN, INT32_MAX));
}

int64_t CString::ToInt64()
{
    return ToInt64(10);
}

int64_t CString::ToInt64(int base)
{
    return CharClass::ParseInteger(GetWChars(), m_length, base, INT64_MIN, INT64_MAX);
}

double CString::ToDouble()
{
    return CharClass::ParseDouble(GetWChars(), m_length);
}

uint32_t CString::ToFour()
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(GetChars());
    const int32_t length = GetCharsLength();
    uint32_t code = 0;
    int produced = 0;
    for (int32_t at = 0; produced < 4 && at < length; ++produced) {
        uint32_t byte = bytes[at];
        if (byte == '%') {
            const int high = at + 1 < length ? HexValue(WChar(bytes[at + 1])) : 0;
            const int low = at + 2 < length ? HexValue(WChar(bytes[at + 2])) : 0;
            byte = uint32_t(high * 16 + low);
            at = length - at > 3 ? at + 3 : length;
        } else {
            ++at;
        }
        code = (code << 8) | byte;
    }
    return produced == 0 ? 0 : code << (8 * (4 - produced));
}

uint32_t CString::ToFour(CString* text)
{
    return text ? text->ToFour() : 0;
}

CByteArray* CString::ToBytes(int32_t count)
{
    if (count < 0) {
        Log(LogLevel::Error, "CString::ToBytes: negative byte count %d\n", count);
        return nullptr;
    }
    const int64_t digits = int64_t(count) * 2;
    if (m_length > digits) {
        Log(LogLevel::Warning, "CString::ToBytes: %d digits do not fit in %d bytes\n", m_length, count);
        return nullptr;
    }
    auto* bytes = new (fallible) CByteArray(count);
    if (!bytes)
        return nullptr;
    unsigned char* data = bytes->GetData();
    if (count > 0 && !data) {
        Log(LogLevel::Error, "CString::ToBytes: out of memory for %d bytes\n", count);
        bytes->Release();
        return nullptr;
    }
    const WChar* units = GetWChars();
    const int64_t padding = digits - m_length;
    for (int32_t i = 0; i < m_length; ++i) {
        const int64_t digit = padding + i;
        const int value = HexValue(units[i]);
        data[digit / 2] |= (unsigned char)(digit % 2 == 0 ? value << 4 : value);
    }
    return bytes;
}

CString* CString::FromBytes(CByteArray* bytes)
{
    if (!bytes)
        return nullptr;
    const int32_t count = bytes->GetLength();
    if (count > kMaxLength / 2) {
        Log(LogLevel::Error, "CString::FromBytes: %d bytes are too many for a text\n", count);
        return nullptr;
    }
    const unsigned char* data = bytes->GetData();
    if (count == 0 || !data)
        return FromUnits(nullptr, 0);
    static constexpr char kDigits[] = "0123456789ABCDEF";
    char* text = new (fallible) char[std::size_t(count) * 2 + 1];
    if (!text)
        return nullptr;
    for (int32_t i = 0; i < count; ++i) {
        text[2 * i] = kDigits[data[i] >> 4];
        text[2 * i + 1] = kDigits[data[i] & 0x0F];
    }
    text[2 * count] = 0;
    CString* result = FromUtf8(text, count * 2);
    delete[] text;
    return result;
}

CString* CString::WithFormat(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    CString* result = WithFormatV(format, arguments);
    va_end(arguments);
    return result;
}

CString* CString::WithFormatV(const char* format, va_list arguments)
{
    if (!format)
        return nullptr;
    const FormattedText text(format, arguments);
    if (!text.Get() || text.Length() > kMaxLength) {
        Log(LogLevel::Error, "CString::WithFormatV: cannot format \"%s\"\n", format);
        return nullptr;
    }
    return FromUtf8(text.Get(), text.Length());
}

} // namespace Quorvex::Vek
