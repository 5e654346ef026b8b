#include <vek/core/PercentCoding.h>

#include <vek/core/CharClass.h>

namespace Quorvex::Vek::PercentCoding {

namespace {

int Digit(char c)
{
    return CharClass::HexDigitValue(CharClass::Widen(c));
}

} // namespace

bool IsEscapeAt(const char* text, size_t length, size_t at)
{
    // `at < length` first, so that `length - at` cannot wrap.
    return text && at < length && length - at >= 3 && text[at] == '%' && Digit(text[at + 1]) >= 0 &&
           Digit(text[at + 2]) >= 0;
}

int64_t Decode(const char* text, size_t length, char* out, Malformed mode, bool plusIsSpace)
{
    if (length > 0 && (!text || !out))
        return -1;
    size_t n = 0;
    for (size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == '%') {
            if (IsEscapeAt(text, length, i)) {
                out[n++] = char(Digit(text[i + 1]) * 16 + Digit(text[i + 2]));
                i += 2;
                continue;
            }
            if (mode == Malformed::Fail)
                return -1;
        }
        out[n++] = (plusIsSpace && c == '+') ? ' ' : c;
    }
    return int64_t(n);
}

void Encode(unsigned char byte, char* out)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    out[0] = '%';
    out[1] = kDigits[byte >> 4];
    out[2] = kDigits[byte & 15];
}

} // namespace Quorvex::Vek::PercentCoding
