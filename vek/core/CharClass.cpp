#include <vek/core/CharClass.h>

#include <charconv>
#include <cmath>

namespace Quorvex::Vek::CharClass {

WChar ToLower(WChar c)
{
    const uint32_t u = uint16_t(c);
    if ((u >= 'A' && u <= 'Z') || (u >= 0xC0 && u <= 0xDE && u != 0xD7))
        return WChar(u + 0x20);
    return c;
}

bool IsSpace(WChar c)
{
    const uint32_t u = uint16_t(c);
    if (u <= 0x20)
        return u == 0x20 || (u >= 0x09 && u <= 0x0D);
    switch (u) {
    case 0x85:
    case 0xA0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return u >= 0x2000 && u <= 0x200A;
    }
}

bool IsDigit(WChar c)
{
    return c >= WChar('0') && c <= WChar('9');
}

WChar Widen(char c)
{
    return WChar(uint8_t(c));
}

int DigitValue(WChar c)
{
    const uint32_t u = uint16_t(c);
    if (u >= '0' && u <= '9')
        return int(u - '0');
    if (u >= 'a' && u <= 'z')
        return int(u - 'a' + 10);
    if (u >= 'A' && u <= 'Z')
        return int(u - 'A' + 10);
    return -1;
}

namespace {

int32_t SkipSpace(const WChar* text, int32_t length, int32_t at)
{
    while (at < length && IsSpace(text[at]))
        ++at;
    return at;
}

// "0x" counts as a prefix only when a hexadecimal digit follows, as in
// wcstol ("0x" alone reads as the number 0).
bool HasHexPrefix(const WChar* text, int32_t length, int32_t at)
{
    if (length - at < 3 || text[at] != WChar('0'))
        return false;
    if (text[at + 1] != WChar('x') && text[at + 1] != WChar('X'))
        return false;
    const int digit = DigitValue(text[at + 2]);
    return digit >= 0 && digit < 16;
}

} // namespace

int64_t ParseInteger(const WChar* text, int32_t length, int base, int64_t minimum, int64_t maximum)
{
    if (!text || length <= 0 || base < 0 || base == 1 || base > 36)
        return 0;
    int32_t at = SkipSpace(text, length, 0);
    bool negative = false;
    if (at < length && (text[at] == WChar('+') || text[at] == WChar('-')))
        negative = text[at++] == WChar('-');
    if ((base == 0 || base == 16) && HasHexPrefix(text, length, at)) {
        at += 2;
        base = 16;
    } else if (base == 0) {
        base = (at < length && text[at] == WChar('0')) ? 8 : 10;
    }
    // Accumulate the magnitude as unsigned; the limit for a negative value is
    // one larger than for a positive one.
    const uint64_t limit = negative ? uint64_t(0) - uint64_t(minimum) : uint64_t(maximum);
    uint64_t magnitude = 0;
    bool overflow = false;
    for (; at < length; ++at) {
        const int digit = DigitValue(text[at]);
        if (digit < 0 || digit >= base)
            break;
        if (magnitude > (limit - uint64_t(digit)) / uint64_t(base))
            overflow = true;
        else
            magnitude = magnitude * uint64_t(base) + uint64_t(digit);
    }
    if (overflow)
        return negative ? minimum : maximum;
    return negative ? int64_t(uint64_t(0) - magnitude) : int64_t(magnitude);
}

namespace {

bool MatchWord(const WChar* text, int32_t length, int32_t at, const char* word)
{
    for (int32_t i = 0; word[i]; ++i) {
        if (at + i >= length || ToLower(text[at + i]) != WChar(word[i]))
            return false;
    }
    return true;
}

// Copies the longest run that can make up a decimal number into `out` as
// ASCII; from_chars then decides how much of it is a number.
int32_t CopyNumberText(const WChar* text, int32_t length, int32_t at, char* out, int32_t capacity)
{
    int32_t n = 0;
    while (at + n < length && n < capacity) {
        const WChar c = text[at + n];
        const bool allowed = IsDigit(c) || c == WChar('.') || c == WChar('e') || c == WChar('E') ||
                             c == WChar('+') || c == WChar('-');
        if (!allowed)
            break;
        out[n] = char(c);
        ++n;
    }
    return n;
}

} // namespace

double ParseDouble(const WChar* text, int32_t length)
{
    if (!text || length <= 0)
        return 0.0;
    int32_t at = SkipSpace(text, length, 0);
    bool negative = false;
    if (at < length && (text[at] == WChar('+') || text[at] == WChar('-')))
        negative = text[at++] == WChar('-');
    double value = 0.0;
    if (MatchWord(text, length, at, "inf")) {
        value = HUGE_VAL;
    } else if (MatchWord(text, length, at, "nan")) {
        value = std::nan("");
    } else {
        // Long digit runs change nothing beyond the first few hundred digits
        // for a double except through the exponent, which this buffer keeps
        // room for; longer input is cut (a rare, documented inexactness).
        char buffer[512];
        const int32_t n = CopyNumberText(text, length, at, buffer, int32_t(sizeof buffer));
        const std::from_chars_result r = std::from_chars(buffer, buffer + n, value);
        if (r.ec == std::errc::result_out_of_range) {
            // from_chars leaves the value untouched; decide by the exponent sign.
            value = HUGE_VAL;
            for (const char* p = buffer; p < r.ptr; ++p) {
                if ((*p == 'e' || *p == 'E') && p + 1 < r.ptr && p[1] == '-')
                    value = 0.0;
            }
        } else if (r.ec != std::errc()) {
            value = 0.0;
        }
    }
    return negative ? -value : value;
}

} // namespace Quorvex::Vek::CharClass
