#pragma once

// Fixed-width types of the public API. The library was designed in the
// Windows (LLP64) model; widths are pinned so a value never changes range
// between the DLL and the shared object.
#include <cstddef>
#include <cstdint>

#include <vek/platform/Export.h>

namespace Quorvex::Vek {

// UTF-16 code unit: wchar_t on Windows, char16_t elsewhere.
using WChar = Platform::WCharType;

// A four-character code packed first character highest: Four("vide") == 0x76696465.
constexpr uint32_t Four(const char (&code)[5])
{
    return (uint32_t(uint8_t(code[0])) << 24) | (uint32_t(uint8_t(code[1])) << 16) |
           (uint32_t(uint8_t(code[2])) << 8) | uint32_t(uint8_t(code[3]));
}

} // namespace Quorvex::Vek
