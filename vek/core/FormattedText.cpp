#include <vek/core/FormattedText.h>

#include <vek/core/Allocation.h>

#include <cstdio>
#include <new>

namespace Quorvex::Vek {

FormattedText::FormattedText(const char* format, va_list arguments)
{
    if (!format)
        return;
    va_list measure;
    va_copy(measure, arguments);
    const int length = std::vsnprintf(m_inline, sizeof m_inline, format, measure);
    va_end(measure);
    if (length < 0 || length >= INT32_MAX)
        return;
    if (length < kInlineSize) {
        m_text = m_inline;
        m_length = length;
        return;
    }
    char* heap = new (fallible) char[std::size_t(length) + 1];
    if (!heap)
        return;
    std::vsnprintf(heap, std::size_t(length) + 1, format, arguments);
    m_text = heap;
    m_length = length;
}

FormattedText::~FormattedText()
{
    if (m_text != m_inline)
        delete[] m_text;
}

} // namespace Quorvex::Vek
