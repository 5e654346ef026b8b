#pragma once

// Finds the 00 00 01 prefixes that separate NAL units (and MPEG video start
// codes) in a byte stream that arrives in chunks of any size. A prefix split
// between two chunks is found as if the stream were one buffer. A prefix
// with a further zero in front (00 00 00 01) is reported as the four-byte
// form: that zero belongs to the prefix, not to the unit before it.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API StartCodeScanner {
public:
    struct Hit {
        // Stream offset of the first byte of the prefix (the leading zero of
        // the four-byte form included).
        int64_t prefixOffset = 0;
        // Stream offset of the first byte after 01: the unit's first byte.
        int64_t payloadOffset = 0;
        int32_t prefixBytes = 0; // 3 or 4
    };

    // The first 01 byte at or after `from` that follows two zero bytes inside
    // [from - 2, end), or `end`. The two zeros may lie before `from`: the
    // caller must own those bytes (from - begin >= 2), or start at a buffer's
    // first byte + 2. SSE2 where the target has it, a portable loop otherwise.
    static const uint8_t* FindPrefixEnd(const uint8_t* from, const uint8_t* end);

    // Starts a new stream at offset 0.
    void Reset();

    // Sets the next chunk; it follows the previous one in the stream. The
    // bytes must stay valid until Next returns false.
    void Feed(const uint8_t* data, size_t size);

    // The next prefix whose 01 byte lies in the current chunk; false when the
    // chunk holds no more.
    bool Next(Hit& hit);

private:
    bool FinishHit(int64_t oneOffset, int zerosBefore, Hit& hit);

    const uint8_t* m_data = nullptr;
    size_t m_size = 0;
    size_t m_position = 0; // next byte of the chunk to examine
    int64_t m_chunkOffset = 0; // stream offset of m_data[0]
    // Trailing zero bytes of the previous chunks (up to 3) at the start of
    // this one; used only for the first two bytes of a chunk.
    int m_carriedZeros = 0;
};

} // namespace Quorvex::Vek
