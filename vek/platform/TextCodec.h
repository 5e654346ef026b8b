#pragma once

// Conversion between UTF-8 and UTF-16 text. Both directions are strict:
// ill-formed input (a bad lead byte, a truncated or overlong sequence, an
// encoded surrogate, a value above U+10FFFF, an unpaired surrogate unit)
// becomes U+FFFD, one for each maximal part that could start a valid
// sequence (the practice Unicode recommends), so the output is always
// well-formed. Lengths are in code units and never include a terminator.
#include <cstdint>

#include <vek/platform/Export.h>

namespace Quorvex::Vek::Platform {

using TextUnit16 = WCharType;

// Converts `length` bytes of UTF-8. With `out` null only measures. Returns
// the number of UTF-16 units the whole input needs, or -1 when that count
// does not fit in 32 bits. Callers measure first and then convert with a
// capacity of at least that count; with less, what lands in `out` is
// unspecified (but nothing is written past `capacity`).
int32_t Utf8ToUtf16(const char* text, int32_t length, TextUnit16* out, int32_t capacity);

// True when `length` bytes are well-formed UTF-8 (no substitution needed).
bool IsWellFormedUtf8(const char* text, int32_t length);

// Converts `length` UTF-16 units; same conventions as Utf8ToUtf16.
int32_t Utf16ToUtf8(const TextUnit16* text, int32_t length, char* out, int32_t capacity);

// The library's own codec behind the functions above, the same on every
// build. The POSIX build uses it directly; the Windows build converts
// well-formed text with the system (code page 65001) and leaves the
// substitution for ill-formed text to these, because Windows versions and
// Wine disagree on how many U+FFFD a bad sequence yields.
int32_t StrictUtf8ToUtf16(const char* text, int32_t length, TextUnit16* out, int32_t capacity);
int32_t StrictUtf16ToUtf8(const TextUnit16* text, int32_t length, char* out, int32_t capacity);
bool StrictIsWellFormedUtf8(const char* text, int32_t length);

} // namespace Quorvex::Vek::Platform
