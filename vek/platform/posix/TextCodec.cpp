#include <vek/platform/TextCodec.h>

namespace Quorvex::Vek::Platform {

int32_t Utf8ToUtf16(const char* text, int32_t length, TextUnit16* out, int32_t capacity)
{
    return StrictUtf8ToUtf16(text, length, out, capacity);
}

bool IsWellFormedUtf8(const char* text, int32_t length)
{
    return StrictIsWellFormedUtf8(text, length);
}

int32_t Utf16ToUtf8(const TextUnit16* text, int32_t length, char* out, int32_t capacity)
{
    return StrictUtf16ToUtf8(text, length, out, capacity);
}

} // namespace Quorvex::Vek::Platform
