#include <vek/platform/TextCodec.h>

#include <windows.h>

namespace Quorvex::Vek::Platform {

// Code page 65001. Well-formed UTF-8 is converted by the system; for
// ill-formed input (MB_ERR_INVALID_CHARS makes the system refuse it) the
// library's own substitution takes over, so both builds agree on the
// U+FFFD count.
int32_t Utf8ToUtf16(const char* text, int32_t length, TextUnit16* out, int32_t capacity)
{
    if (!text || length <= 0)
        return 0;
    const int needed = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, length, nullptr, 0);
    if (needed <= 0)
        return StrictUtf8ToUtf16(text, length, out, capacity);
    if (out && capacity >= needed)
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, length, out, needed);
    return needed;
}

bool IsWellFormedUtf8(const char* text, int32_t length)
{
    if (!text || length <= 0)
        return true;
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, length, nullptr, 0) > 0;
}

// Without WC_ERR_INVALID_CHARS an unpaired surrogate becomes U+FFFD, one
// per unit, as in the library's own codec.
int32_t Utf16ToUtf8(const TextUnit16* text, int32_t length, char* out, int32_t capacity)
{
    if (!text || length <= 0)
        return 0;
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0)
        return StrictUtf16ToUtf8(text, length, out, capacity);
    if (out && capacity >= needed)
        WideCharToMultiByte(CP_UTF8, 0, text, length, out, needed, nullptr, nullptr);
    return needed;
}

} // namespace Quorvex::Vek::Platform
