#pragma once

// Immutable, reference-counted text holding a UTF-8 and a UTF-16 form, each
// made from the other on first demand and cached. Lengths and indices count
// UTF-16 code units. Every operation that "changes" a string returns a new
// CString owned by the caller (count 1); null results mean "no string"
// (range errors, allocation failure). Members noted "null-safe" may be
// called through a null pointer.
#include <atomic>
#include <cstdarg>

#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename T>
class CArray;
class CByteArray;

class VEK_API CString : public CObject {
public:
    static constexpr uint32_t Type = Four("text");

    CString();
    CString(const char* text);
    CString(const char* text, int32_t length);
    CString(const WChar* text);
    CString(const WChar* text, int32_t length);
    CString(const char* first, const char* second);
    CString(const WChar* first, const WChar* second);

    int32_t GetLength() const;
    static int32_t GetLength(const char* text);
    static int32_t GetLength(const WChar* text);
    // Code unit i of the UTF-8 form / UTF-16 form; 0 when out of range.
    char GetChar(int32_t index);
    WChar GetWChar(int32_t index);
    // The cached forms, never null for a live string ("" when empty).
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

    bool Equals(CString* other);   // null-safe
    bool Equals(const char* other);
    bool Equals(const WChar* other);
    bool EqualsIgnoreCase(CString* other);
    bool EqualsIgnoreCase(const char* other);
    bool EqualsIgnoreCase(const WChar* other);
    // Case-insensitive ordering; a non-null a against a null b gives 1.
    static int32_t Compare(CString* a, CString* b);

    bool StartsWith(const char* prefix, bool caseSensitive = true);
    bool StartsWith(const WChar* prefix, bool caseSensitive = true);
    bool EndsWith(const char* suffix, bool caseSensitive = true);
    bool EndsWith(const WChar* suffix, bool caseSensitive = true);

    bool Contains(const char* text);
    bool Contains(const WChar* text);
    bool ContainsIgnoreCase(const char* text);
    bool ContainsIgnoreCase(const WChar* text);
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

    CString* Substring(int32_t start);
    CString* Substring(int32_t start, int32_t count);
    CString* Trim();
    CString* TrimLeft();
    CString* TrimRight();
    CString* Trim(const WChar* set);
    CString* Replace(char from, char to);
    CString* Replace(WChar from, WChar to);
    CString* Replace(const char* from, const char* to);
    CString* Replace(const WChar* from, const WChar* to);
    CArray<CString>* Split(WChar separator);
    static CString* Join(const WChar* separator, CArray<CString>* parts);

    bool IsNullOrEmpty();      // null-safe
    bool IsNullOrWhiteSpace(); // null-safe
    bool IsDigit(int32_t index);
    bool IsWhiteSpace(int32_t index);

    int32_t ToInt();
    int32_t ToInt(int base);
    int64_t ToInt64();
    int64_t ToInt64(int base);
    double ToDouble();
    // Four-character code of the text; "%hh" stands for one byte. Null-safe (0).
    uint32_t ToFour();
    // The text read as hexadecimal, left-padded with '0' to 2 x count digits.
    CByteArray* ToBytes(int32_t count);
    static CString* FromBytes(CByteArray* bytes);
    static CString* WithFormat(const char* format, ...) VEK_PRINTF(1, 2);
    static CString* WithFormatV(const char* format, va_list arguments);

protected:
    ~CString() override;

private:
    int32_t m_length = 0;
    std::atomic<char*> m_chars{nullptr};
    std::atomic<WChar*> m_wchars{nullptr};
};

} // namespace Quorvex::Vek
