#pragma once

// printf-style text made in one place: measure, allocate, print. Short text
// stays in an inline buffer (the log writes through this on every line), so
// only long text touches the heap. Never throws: without memory, or for a
// null or failing format, Get() is null and Length() is 0.
#include <cstdarg>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class FormattedText {
public:
    FormattedText(const char* format, va_list arguments);
    ~FormattedText();
    FormattedText(const FormattedText&) = delete;
    FormattedText& operator=(const FormattedText&) = delete;

    const char* Get() const { return m_text; }
    int32_t Length() const { return m_length; }

private:
    static constexpr int32_t kInlineSize = 256;
    char m_inline[kInlineSize];
    char* m_text = nullptr;
    int32_t m_length = 0;
};

} // namespace Quorvex::Vek
