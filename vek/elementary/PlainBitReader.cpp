#include <vek/elementary/PlainBitReader.h>

namespace Quorvex::Vek {

PlainBitReader::PlainBitReader(const uint8_t* data, size_t size)
    : m_data(data), m_bits(data && size <= SIZE_MAX / 8 ? size * 8 : 0)
{
}

uint32_t PlainBitReader::ReadBits(int count)
{
    if (count < 0 || count > 32 || m_error || size_t(count) > m_bits - m_position) {
        m_error = true;
        return 0;
    }
    uint32_t value = 0;
    for (int left = count; left > 0;) {
        const size_t byte = m_position >> 3;
        const int offset = int(m_position & 7);
        const int take = left < 8 - offset ? left : 8 - offset;
        const uint32_t bits = (uint32_t(m_data[byte]) >> (8 - offset - take)) & ((1u << take) - 1);
        value = uint32_t((uint64_t(value) << take) | bits);
        m_position += size_t(take);
        left -= take;
    }
    return value;
}

void PlainBitReader::SkipBits(size_t count)
{
    if (m_error || count > m_bits - m_position) {
        m_error = true;
        return;
    }
    m_position += count;
}

void PlainBitReader::ByteAlign()
{
    SkipBits((8 - (m_position & 7)) & 7);
}

} // namespace Quorvex::Vek
