#pragma once

// Small helpers for the tool's JSON output: quoted strings with the
// escapes JSON needs, and numbers that stay numbers.
#include <string>

namespace VekTool {

// `text` as a JSON string ("null" for a null pointer). Bytes of UTF-8
// pass through; control characters become \uXXXX.
std::string JsonString(const char* text);
inline std::string JsonString(const std::string& text)
{
    return JsonString(text.c_str());
}

} // namespace VekTool
