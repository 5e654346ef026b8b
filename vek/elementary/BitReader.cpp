#include <vek/elementary/BitReader.h>

namespace Quorvex::Vek {

BitReader::BitReader(const uint8_t* data, size_t size, Escapes escapes)
    : m_begin(data), m_next(data), m_end(data ? data + size : data), m_removeEscapes(escapes == Escapes::Remove)
{
}

void BitReader::Refill()
{
    while (m_cacheBits <= 56 && m_next != m_end) {
        const uint8_t byte = *m_next++;
        if (m_removeEscapes && m_zeros >= 2 && byte == 3) {
            m_zeros = 0;
            continue;
        }
        m_zeros = byte == 0 ? m_zeros + 1 : 0;
        m_cache |= uint64_t(byte) << (56 - m_cacheBits);
        m_cacheBits += 8;
    }
}

void BitReader::Consume(int count)
{
    m_cache = count >= 64 ? 0 : m_cache << count;
    m_cacheBits -= count;
    m_consumed += uint64_t(count);
}

uint32_t BitReader::ReadBits(int count)
{
    if (m_error || count <= 0 || count > 32) {
        if (count != 0)
            m_error = true;
        return 0;
    }
    if (m_cacheBits < count) {
        Refill();
        if (m_cacheBits < count) {
            m_error = true;
            return 0;
        }
    }
    const uint32_t value = uint32_t(m_cache >> (64 - count));
    Consume(count);
    return value;
}

uint32_t BitReader::ReadUE()
{
    int zeros = 0;
    while (!m_error) {
        Refill();
        if (m_cacheBits == 0) {
            m_error = true;
            break;
        }
        const int leading = m_cache == 0 ? 64 : __builtin_clzll(m_cache);
        if (leading < m_cacheBits) {
            zeros += leading;
            Consume(leading);
            break;
        }
        zeros += m_cacheBits;
        Consume(m_cacheBits);
        if (zeros > 31)
            m_error = true;
    }
    if (m_error || zeros > 31) {
        m_error = true;
        return 0;
    }
    // The marker bit and the suffix: zeros + 1 bits holding 2^zeros + suffix.
    const uint64_t coded = ReadBits(zeros + 1);
    return m_error ? 0 : uint32_t(coded - 1);
}

int32_t BitReader::ReadSE()
{
    const uint32_t code = ReadUE();
    // 1, 2, 3, 4 ... map to +1, -1, +2, -2 ...; 2^32 - 2 (the largest code)
    // maps to -(2^31 - 1), so every result fits.
    const int64_t magnitude = (int64_t(code) + 1) / 2;
    return int32_t((code & 1) ? magnitude : -magnitude);
}

void BitReader::SkipBits(uint64_t count)
{
    while (count > 0 && !m_error) {
        const int step = count > 32 ? 32 : int(count);
        ReadBits(step);
        count -= uint64_t(step);
    }
}

void BitReader::SkipToByteBoundary()
{
    const int partial = int(m_consumed & 7);
    if (partial != 0)
        ReadBits(8 - partial);
}

// The payload bit index of the stop bit, found by one pass over the bytes
// with the same escape rule as reading. -2 when the payload holds no 1 bit.
uint64_t BitReader::StopBitPosition()
{
    if (m_stopBit == -1) {
        uint64_t payloadBytes = 0;
        uint64_t lastNonZeroIndex = 0;
        uint8_t lastNonZero = 0;
        int zeros = 0;
        for (const uint8_t* p = m_begin; p != m_end; ++p) {
            if (m_removeEscapes && zeros >= 2 && *p == 3) {
                zeros = 0;
                continue;
            }
            zeros = *p == 0 ? zeros + 1 : 0;
            if (*p != 0) {
                lastNonZero = *p;
                lastNonZeroIndex = payloadBytes;
            }
            ++payloadBytes;
        }
        m_stopBit = lastNonZero == 0 ? -2 : int64_t(lastNonZeroIndex * 8 + 7 - uint64_t(__builtin_ctz(lastNonZero)));
    }
    return uint64_t(m_stopBit);
}

bool BitReader::MoreRbspData()
{
    if (m_error)
        return false;
    StopBitPosition();
    return m_stopBit >= 0 && m_consumed < uint64_t(m_stopBit);
}

} // namespace Quorvex::Vek
