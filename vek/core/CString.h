#pragma once

// Immutable, reference-counted text holding both a UTF-8 and a UTF-16 form,
// both made when the string is: an allocation failure surfaces when a
// string is made (Create and every operation return null), never later as
// a missing or truncated form. Lengths and indices count UTF-16 code units.
//
// Text made from UTF-8 keeps exactly the bytes it was given as its UTF-8
// form, even when they are not valid UTF-8 (a POSIX file name, a decoded
// URL): GetChars hands them back unchanged and Clone keeps them. Only the
// UTF-16 form substitutes U+FFFD for each ill-formed part, so lengths,
// indices, searches and every operation that builds a new string work on
// that converted form: Substring, Append, Replace and the like of such text
// carry U+FFFD, not the original bytes. Every operation that "changes" a string returns a new
// CString owned by the caller (count 1); null results mean "no string"
// (range errors, allocation failure), and callers treat a null CString* as
// the missing or empty string. Operations noted "null-safe" accept a null
// string through their static form (Equals(a, b), IsNullOrEmpty(s), ...):
// calling any member through a null pointer is undefined in C++ and the
// sanitizer builds stop on it.
//
// Character rules (lowering, white space, digits, widening a char, number
// parsing) are the fixed ones of vek/core/CharClass.h, the same on every
// platform. A null text argument counts as empty for constructors, Append
// and Concat; elsewhere it is noted.
#include <cstdarg>

#include <vek/core/CObject.h>
#include <vek/platform/OleMembers.h>
#include <vek/core/RObject.h>

// A UTF-16 literal of type const WChar[] on every platform: VEK_W("text").
#if VEK_PLATFORM_WINDOWS
#define VEK_W(text) L##text
#else
#define VEK_W(text) u##text
#endif

namespace Quorvex::Vek {

template <typename T>
class CArray;
class CByteArray;

class VEK_API CString : public CObject {
public:
    enum : uint32_t { Type = Four("text") };

    CString();
    CString(const char* text);
    // `length` in code units of the given encoding; a negative length reads
    // up to the terminator. Ill-formed UTF-8 is kept byte for byte (see above).
    CString(const char* text, int32_t length);
    CString(const WChar* text);
    CString(const WChar* text, int32_t length);
    CString(const char* first, const char* second);
    CString(const WChar* first, const WChar* second);
    // As the constructors, but null when the object or its text cannot be
    // allocated (a constructor cannot say so, and would leave an empty
    // string). The library makes its strings this way.
    static CString* Create(const char* text, int32_t length = -1);
    static CString* Create(const WChar* text, int32_t length = -1);

    int32_t GetLength() const;
    // Code units up to the terminator (bytes / UTF-16 units); 0 for null.
    static int32_t GetLength(const char* text);
    static int32_t GetLength(const WChar* text);
    // Code unit i of the UTF-8 form / UTF-16 form; 0 when out of range.
    char GetChar(int32_t index);
    WChar GetWChar(int32_t index);
    // The two forms, never null for a live string ("" when empty).
    const char* GetChars();
    const WChar* GetWChars();
    // New heap copies in the other encoding, freed with delete[].
    static char* GetChars(const WChar* text);
    static WChar* GetWChars(const char* text);

    CString* Append(char c);
    CString* Append(WChar c);
    CString* Append(const char* text);
    CString* Append(const WChar* text);
    CString* Append(CString* text);
    static CString* Concat(CString* a, CString* b);
    static CString* Concat(CString* a, const char* b);
    static CString* Concat(CString* a, const WChar* b);
    CString* Clone();

    bool Equals(CString* other);
    // Null-safe: two nulls are equal, one null is unequal.
    static bool Equals(CString* a, CString* b);
    bool Equals(const char* other);
    bool Equals(const WChar* other);
    // As above for `length` code units of the given encoding, measured by the
    // caller (no terminator needed): lets a lookup measure its key once.
    bool Equals(const char* other, int32_t length);
    bool Equals(const WChar* other, int32_t length);
    bool EqualsIgnoreCase(CString* other);
    bool EqualsIgnoreCase(const char* other);
    bool EqualsIgnoreCase(const WChar* other);
    // Case-insensitive ordering; a non-null a against a null b gives 1.
    static int32_t Compare(CString* a, CString* b);

    // A null prefix/suffix is false, an empty one true.
    bool StartsWith(const char* prefix, bool caseSensitive = true);
    bool StartsWith(const WChar* prefix, bool caseSensitive = true);
    bool EndsWith(const char* suffix, bool caseSensitive = true);
    bool EndsWith(const WChar* suffix, bool caseSensitive = true);

    bool Contains(const char* text);
    bool Contains(const WChar* text);
    bool ContainsIgnoreCase(const char* text);
    bool ContainsIgnoreCase(const WChar* text);
    // Positions in UTF-16 units, -1 when absent or when start is outside
    // 0..length. An empty text is found at `start`, by LastIndexOf at the
    // length; a null text is never found.
    int32_t IndexOf(char c, int32_t start = 0);
    int32_t IndexOf(WChar c, int32_t start = 0);
    int32_t IndexOf(const char* text, int32_t start = 0);
    int32_t IndexOf(const WChar* text, int32_t start = 0);
    int32_t IndexOf(CString* text, int32_t start = 0);
    int32_t IndexOfAny(const WChar* set, int32_t start = 0);
    int32_t IndexOfIgnoreCase(const char* text, int32_t start = 0);
    int32_t IndexOfIgnoreCase(const WChar* text, int32_t start = 0);
    int32_t LastIndexOf(char c);
    int32_t LastIndexOf(WChar c);
    int32_t LastIndexOf(const char* text);
    int32_t LastIndexOf(const WChar* text);

    // Null when start or count is negative, start passes the length or
    // start + count does: Substring(length, 0) is empty, (length, 1) null.
    CString* Substring(int32_t start);
    CString* Substring(int32_t start, int32_t count);
    CString* Trim();
    CString* TrimLeft();
    CString* TrimRight();
    CString* Trim(const WChar* set); // a null set trims nothing
    // `from` null or empty replaces nothing; `to` null counts as empty.
    CString* Replace(char from, char to);
    CString* Replace(WChar from, WChar to);
    CString* Replace(const char* from, const char* to);
    CString* Replace(const WChar* from, const WChar* to);
    // Every part between separators, empty parts kept: "a,,b" gives three,
    // "" gives one empty part.
    CArray<CString>* Split(WChar separator);
    // Null parts and a null separator count as empty; null `parts` gives "".
    static CString* Join(const WChar* separator, CArray<CString>* parts);

    bool IsNullOrEmpty();
    bool IsNullOrWhiteSpace();
    static bool IsNullOrEmpty(CString* text);      // null-safe
    static bool IsNullOrWhiteSpace(CString* text); // null-safe
    // False when the index is out of range.
    bool IsDigit(int32_t index);
    bool IsWhiteSpace(int32_t index);

    int32_t ToInt();
    int32_t ToInt(int base);
    int64_t ToInt64();
    int64_t ToInt64(int base);
    double ToDouble();
    // Four-character code of the UTF-8 form: up to four bytes shifted in from
    // the high end, "%hh" standing for one byte (a non-hexadecimal digit, or
    // one missing at the end, counts 0), zero bytes padding a short text.
    uint32_t ToFour();
    static uint32_t ToFour(CString* text); // null-safe: 0
    // The text read as hexadecimal, left-padded with '0' to 2 x count digits
    // and converted pairwise into `count` bytes; a unit that is not a
    // hexadecimal digit counts 0. Null when count is negative or the text
    // has more than 2 x count units.
    CByteArray* ToBytes(int32_t count);
    // Two upper-case hexadecimal digits per byte, no separators; null for null.
    static CString* FromBytes(CByteArray* bytes);
    static CString* WithFormat(const char* format, ...) VEK_PRINTF(1, 2);
    static CString* WithFormatV(const char* format, va_list arguments);

    // ToBSTR() and static ToBSTR(const char*): Windows build only.
    VEK_CSTRING_OLE_MEMBERS

protected:
    ~CString() override;

private:
    // New strings for the operations; null on allocation failure.
    static CString* FromUnits(const WChar* units, int32_t length);
    static CString* FromUnits(const WChar* first, int32_t firstLength, const WChar* second, int32_t secondLength);
    static CString* FromUtf8(const char* text, int32_t length);
    bool InitFromUtf8(const char* text, int32_t length);
    bool InitFromUtf16(const WChar* text, int32_t length);
    bool MakeUtf8Form();
    int32_t GetCharsLength();
    CString* TrimWhere(bool left, bool right, const WChar* set);
    CString* ReplaceUnits(const WChar* from, int32_t fromLength, const WChar* to, int32_t toLength);

    int32_t m_length = 0;
    // Both forms are set while the string is made and never change after.
    char* m_chars = nullptr;
    WChar* m_wchars = nullptr;
    int32_t m_charsLength = 0; // bytes of m_chars
};

} // namespace Quorvex::Vek
