#pragma once

// Character classification of UTF-16 code units, the same on every build.
// The C library's tolower/iswspace/btowc/wcstol depend on the process
// locale and differ between the Windows runtime and glibc, so text
// operations of the library use these fixed rules instead:
//
// - ToLower: ASCII A-Z, and the Latin-1 capitals U+00C0..U+00DE except the
//   multiplication sign U+00D7, map to their small letters (+0x20). Every
//   other unit, surrogates included, is unchanged.
// - IsSpace: the Unicode White_Space set: U+0009..U+000D, U+0020, U+0085,
//   U+00A0, U+1680, U+2000..U+200A, U+2028, U+2029, U+202F, U+205F, U+3000.
// - IsDigit: ASCII 0-9 only.
// - Widen: a byte becomes the unit of the same value (Latin-1), so ASCII
//   maps to itself and no byte is lost.
// - ParseInteger: wcstol rules over ASCII: leading IsSpace units, an
//   optional sign, for base 16 (or base 0 with a "0x" prefix) an optional
//   "0x"/"0X", base 0 choosing 16, 8 (leading 0) or 10; digits 0-9 and
//   letters a-z/A-Z up to the base; stops at the first other unit; clamps
//   to the type's range on overflow; 0 when no digit is read or the base
//   is not 0 or 2..36.
#include <vek/core/Types.h>

namespace Quorvex::Vek::CharClass {

VEK_API WChar ToLower(WChar c);
VEK_API bool IsSpace(WChar c);
VEK_API bool IsDigit(WChar c);
VEK_API WChar Widen(char c);
// Value of c as a digit in bases up to 36, or -1.
VEK_API int DigitValue(WChar c);
// Value of c as a hexadecimal digit (0-9, a-f, A-F), or -1.
VEK_API int HexDigitValue(WChar c);

// ASCII-only case rules for protocol text (URL schemes, hosts, media types,
// four-character codes), where Latin-1 folding would be wrong.
constexpr char ToLowerAscii(char c)
{
    return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c;
}
constexpr bool IsAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
// True when the first `length` bytes of a and b match ignoring ASCII case.
constexpr bool EqualsIgnoreAsciiCase(const char* a, const char* b, int32_t length)
{
    for (int32_t i = 0; i < length; ++i)
        if (ToLowerAscii(a[i]) != ToLowerAscii(b[i]))
            return false;
    return true;
}

// Parses `length` units (the text need not be terminated).
VEK_API int64_t ParseInteger(const WChar* text, int32_t length, int base, int64_t minimum, int64_t maximum);
// Leading IsSpace units, an optional sign, then the longest decimal
// floating-point number (with optional exponent), "inf"/"infinity" or "nan",
// read without the process locale (the decimal mark is always '.'); 0 when
// none; out-of-range values give +-infinity or 0 as rounding says.
VEK_API double ParseDouble(const WChar* text, int32_t length);

} // namespace Quorvex::Vek::CharClass
