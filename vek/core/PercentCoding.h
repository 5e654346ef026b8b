#pragma once

// The one decoder of %hh escapes in the library. URL texts, data URIs,
// query values and the platform's URL layer all decode through it, so they
// agree on what a valid escape is (a '%' and two hexadecimal digits, either
// case) and on what becomes of an invalid one.
//
// Decoded bytes stay bytes: %FF gives the byte 0xFF, whatever it means as
// text. Callers that make a CString of the result use the
// CString(const char*, int32_t) constructor on the decoded buffer.
#include <vek/core/Types.h>

namespace Quorvex::Vek::PercentCoding {

// What a '%' without two hexadecimal digits after it does.
enum class Malformed {
    Fail, // the whole decoding fails
    Keep, // the '%' is kept as an ordinary character
};

// True when text[at] is '%' and text[at + 1], text[at + 2] are hexadecimal
// digits, all within `length`.
VEK_API bool IsEscapeAt(const char* text, size_t length, size_t at);

// Writes the escape of `byte` ('%' and two upper-case hexadecimal digits)
// to out[0..2]; no terminator.
VEK_API void Encode(unsigned char byte, char* out);

// Decodes `length` bytes of `text` into `out`, which holds at least
// `length` bytes (decoding never grows a text; no terminator is written).
// With `plusIsSpace`, '+' becomes a space (form values). Returns the number
// of bytes written, or -1 when `mode` is Fail and an escape is malformed
// (`out` then holds an unspecified part of the result).
VEK_API int64_t Decode(const char* text, size_t length, char* out, Malformed mode, bool plusIsSpace = false);

} // namespace Quorvex::Vek::PercentCoding
