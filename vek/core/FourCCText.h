#pragma once

// A four-character code as printable text for log lines: bytes outside
// printable ASCII show as '.', so a hostile id can neither end the text
// early nor put control characters in the log.
#include <cstdint>

namespace Quorvex::Vek {

class FourCCText {
public:
    explicit FourCCText(uint32_t code)
    {
        for (int i = 0; i < 4; ++i) {
            const unsigned char c = static_cast<unsigned char>(code >> (24 - 8 * i));
            m_text[i] = (c >= 0x20 && c < 0x7f) ? char(c) : '.';
        }
        m_text[4] = '\0';
    }
    const char* c_str() const { return m_text; }

private:
    char m_text[5];
};

} // namespace Quorvex::Vek
