#include <vek/elementary/PlainBitWriter.h>

namespace Quorvex::Vek {

PlainBitWriter::PlainBitWriter(uint8_t* buffer, size_t capacity)
    : m_buffer(buffer), m_bits(buffer && capacity <= SIZE_MAX / 8 ? capacity * 8 : 0)
{
}

void PlainBitWriter::WriteBits(uint32_t value, int count)
{
    if (count < 0 || count > 32 || m_error || size_t(count) > m_bits - m_position) {
        m_error = true;
        return;
    }
    for (int i = count - 1; i >= 0; --i) {
        const size_t byte = m_position >> 3;
        const int shift = 7 - int(m_position & 7);
        if (shift == 7)
            m_buffer[byte] = 0;
        m_buffer[byte] = uint8_t(m_buffer[byte] | (((value >> i) & 1u) << shift));
        ++m_position;
    }
}

void PlainBitWriter::ByteAlign()
{
    WriteBits(0, int((8 - (m_position & 7)) & 7));
}

} // namespace Quorvex::Vek
