#include <vek/elementary/NalUnitIterator.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

NalUnitIterator::NalUnitIterator(const uint8_t* data, size_t size, int lengthBytes)
    : m_next(data), m_end(data ? data + size : data), m_lengthBytes(lengthBytes)
{
}

int NalUnitIterator::Next(const uint8_t*& unit, size_t& unitSize)
{
    if (m_lengthBytes != 1 && m_lengthBytes != 2 && m_lengthBytes != 4) {
        Log(LogLevel::Error, "NalUnitIterator::Next: length size %d is not 1, 2 or 4\n", m_lengthBytes);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (m_next == m_end)
        return 1;
    const size_t remaining = size_t(m_end - m_next);
    if (remaining < size_t(m_lengthBytes)) {
        Log(LogLevel::Warning, "NalUnitIterator::Next: %zu bytes left, too few for a %d-byte length\n", remaining,
            m_lengthBytes);
        m_next = m_end;
        return RESULT_FORMAT_ERROR;
    }
    uint32_t length = 0;
    for (int i = 0; i < m_lengthBytes; ++i)
        length = length << 8 | m_next[i];
    const size_t available = remaining - size_t(m_lengthBytes);
    if (length == 0 || length > available) {
        Log(LogLevel::Warning, "NalUnitIterator::Next: NAL unit length %u with %zu bytes left\n", length, available);
        m_next = m_end;
        return RESULT_FORMAT_ERROR;
    }
    unit = m_next + m_lengthBytes;
    unitSize = length;
    m_next = unit + length;
    return 0;
}

} // namespace Quorvex::Vek
