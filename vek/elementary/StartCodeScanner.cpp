#include <vek/elementary/StartCodeScanner.h>

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Quorvex::Vek {

namespace {

// Steps by three when the byte two ahead is above 1: no prefix can end at
// any of the three positions it covers.
const uint8_t* FindPortable(const uint8_t* p, const uint8_t* end)
{
    while (p < end) {
        if (p[0] > 1)
            p += 3;
        else if (p[0] == 0)
            p += 1;
        else if (p[-1] != 0)
            p += 2;
        else if (p[-2] != 0)
            p += 1;
        else
            return p;
    }
    return end;
}

#if defined(__SSE2__)
// Sixteen positions at a time: a prefix ends at p + i + 2 only where bytes
// i and i + 1 are both zero, which compressed data rarely holds. Blocks
// without such a pair are passed after two compares.
const uint8_t* FindVectorised(const uint8_t* p, const uint8_t* end)
{
    const __m128i zero = _mm_setzero_si128();
    // Candidate zero pairs start two bytes before the examined 01 byte.
    const uint8_t* pair = p - 2;
    while (end - pair >= 17 + 2) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pair));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pair + 1));
        unsigned mask = unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, zero), _mm_cmpeq_epi8(b, zero))));
        while (mask != 0) {
            const int i = __builtin_ctz(mask);
            if (pair[i + 2] == 1)
                return pair + i + 2;
            mask &= mask - 1;
        }
        pair += 16;
    }
    return FindPortable(pair + 2, end);
}
#endif

} // namespace

const uint8_t* StartCodeScanner::FindPrefixEnd(const uint8_t* from, const uint8_t* end)
{
    if (from >= end)
        return end;
#if defined(__SSE2__)
    return FindVectorised(from, end);
#else
    return FindPortable(from, end);
#endif
}

void StartCodeScanner::Reset()
{
    m_data = nullptr;
    m_size = 0;
    m_position = 0;
    m_chunkOffset = 0;
    m_carriedZeros = 0;
}

void StartCodeScanner::Feed(const uint8_t* data, size_t size)
{
    // Zeros at the end of the previous chunk carry over (at most 3 matter).
    if (m_data && m_size > 0) {
        int trailing = 0;
        while (trailing < 3 && size_t(trailing) < m_size && m_data[m_size - 1 - size_t(trailing)] == 0)
            ++trailing;
        if (size_t(trailing) == m_size && trailing < 3)
            trailing = std::min(3, trailing + m_carriedZeros);
        m_carriedZeros = trailing;
    }
    m_chunkOffset += int64_t(m_size);
    m_data = data;
    m_size = data ? size : 0;
    m_position = 0;
}

bool StartCodeScanner::FinishHit(int64_t oneOffset, int zerosBefore, Hit& hit)
{
    hit.prefixBytes = zerosBefore >= 3 ? 4 : 3;
    hit.payloadOffset = oneOffset + 1;
    hit.prefixOffset = hit.payloadOffset - hit.prefixBytes;
    return true;
}

bool StartCodeScanner::Next(Hit& hit)
{
    // The first two bytes may complete a prefix begun in earlier chunks.
    while (m_position < 2 && m_position < m_size) {
        const size_t i = m_position++;
        if (m_data[i] != 1)
            continue;
        int zeros = 0;
        for (size_t k = i; k > 0 && zeros < 3 && m_data[k - 1] == 0; --k)
            ++zeros;
        if (size_t(zeros) == i)
            zeros = std::min(3, zeros + m_carriedZeros);
        if (zeros >= 2)
            return FinishHit(m_chunkOffset + int64_t(i), zeros, hit);
    }
    if (m_position >= m_size)
        return false;
    const uint8_t* end = m_data + m_size;
    const uint8_t* found = FindPrefixEnd(m_data + m_position, end);
    if (found == end) {
        m_position = m_size;
        return false;
    }
    const size_t index = size_t(found - m_data);
    m_position = index + 1;
    int zeros = 2;
    if (index >= 3)
        zeros = m_data[index - 3] == 0 ? 3 : 2;
    else if (m_carriedZeros > 0)
        zeros = 3;
    return FinishHit(m_chunkOffset + int64_t(index), zeros, hit);
}

} // namespace Quorvex::Vek
