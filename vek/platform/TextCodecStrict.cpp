// The library's own strict UTF-8/UTF-16 codec, the same on every build.
#include <vek/platform/TextCodec.h>

namespace Quorvex::Vek::Platform {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// One decoded scalar value and the number of bytes it took. Ill-formed
// input yields U+FFFD for its maximal well-formed prefix (at least one
// byte), the substitution practice Unicode recommends.
struct Decoded {
    uint32_t value;
    int32_t size;
};

bool IsContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

Decoded DecodeUtf8(const unsigned char* p, int32_t remaining)
{
    const unsigned char lead = p[0];
    if (lead < 0x80)
        return {lead, 1};
    int32_t size;
    uint32_t value;
    // Bounds of the second byte exclude overlong forms, surrogates and
    // values above U+10FFFF.
    unsigned char low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        size = 2;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        size = 3;
        value = lead & 0x0F;
        if (lead == 0xE0)
            low = 0xA0;
        else if (lead == 0xED)
            high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        size = 4;
        value = lead & 0x07;
        if (lead == 0xF0)
            low = 0x90;
        else if (lead == 0xF4)
            high = 0x8F;
    } else {
        return {kReplacement, 1};
    }
    for (int32_t i = 1; i < size; ++i) {
        if (i >= remaining)
            return {kReplacement, i};
        const unsigned char byte = p[i];
        const bool inRange = i == 1 ? (byte >= low && byte <= high) : IsContinuation(byte);
        if (!inRange)
            return {kReplacement, i};
        value = (value << 6) | (byte & 0x3F);
    }
    return {value, size};
}

Decoded DecodeUtf16(const TextUnit16* p, int32_t remaining)
{
    const uint32_t unit = uint16_t(p[0]);
    if (unit < 0xD800 || unit > 0xDFFF)
        return {unit, 1};
    if (unit >= 0xDC00 || remaining < 2)
        return {kReplacement, 1};
    const uint32_t next = uint16_t(p[1]);
    if (next < 0xDC00 || next > 0xDFFF)
        return {kReplacement, 1};
    return {0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), 2};
}

int32_t Utf16Size(uint32_t value)
{
    return value >= 0x10000 ? 2 : 1;
}

int32_t Utf8Size(uint32_t value)
{
    return value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
}

// Writes the units of one value when all of them fit.
void PutUtf16(uint32_t value, TextUnit16* out, int64_t at, int32_t capacity)
{
    if (!out || at + Utf16Size(value) > capacity)
        return;
    if (value < 0x10000) {
        out[at] = TextUnit16(value);
        return;
    }
    value -= 0x10000;
    out[at] = TextUnit16(0xD800 + (value >> 10));
    out[at + 1] = TextUnit16(0xDC00 + (value & 0x3FF));
}

void PutUtf8(uint32_t value, char* out, int64_t at, int32_t capacity)
{
    const int32_t size = Utf8Size(value);
    if (!out || at + size > capacity)
        return;
    auto* p = reinterpret_cast<unsigned char*>(out + at);
    switch (size) {
    case 1:
        p[0] = (unsigned char)value;
        return;
    case 2:
        p[0] = (unsigned char)(0xC0 | (value >> 6));
        break;
    case 3:
        p[0] = (unsigned char)(0xE0 | (value >> 12));
        break;
    default:
        p[0] = (unsigned char)(0xF0 | (value >> 18));
        break;
    }
    for (int32_t i = 1; i < size; ++i)
        p[i] = (unsigned char)(0x80 | ((value >> (6 * (size - 1 - i))) & 0x3F));
}

} // namespace

int32_t StrictUtf8ToUtf16(const char* text, int32_t length, TextUnit16* out, int32_t capacity)
{
    if (!text || length <= 0)
        return 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    int64_t written = 0;
    for (int32_t at = 0; at < length;) {
        const Decoded d = DecodeUtf8(bytes + at, length - at);
        PutUtf16(d.value, out, written, capacity);
        written += Utf16Size(d.value);
        at += d.size;
    }
    return written > INT32_MAX ? -1 : int32_t(written);
}

bool StrictIsWellFormedUtf8(const char* text, int32_t length)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    for (int32_t at = 0; at < length;) {
        if (bytes[at] < 0x80) {
            ++at;
            continue;
        }
        const Decoded d = DecodeUtf8(bytes + at, length - at);
        // U+FFFD itself is three bytes EF BF BD; a substitution never is.
        if (d.value == kReplacement && !(bytes[at] == 0xEF && bytes[at + 1] == 0xBF && bytes[at + 2] == 0xBD))
            return false;
        at += d.size;
    }
    return true;
}

int32_t StrictUtf16ToUtf8(const TextUnit16* text, int32_t length, char* out, int32_t capacity)
{
    if (!text || length <= 0)
        return 0;
    int64_t written = 0;
    for (int32_t at = 0; at < length;) {
        const Decoded d = DecodeUtf16(text + at, length - at);
        PutUtf8(d.value, out, written, capacity);
        written += Utf8Size(d.value);
        at += d.size;
    }
    return written > INT32_MAX ? -1 : int32_t(written);
}

} // namespace Quorvex::Vek::Platform
