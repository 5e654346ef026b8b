#pragma once

// A bounded big-endian bit reader for headers that carry no emulation
// prevention (AAC, AC-3, MPEG audio and video headers). A read past the end
// returns zeros and sets a sticky error flag, so a parser can read a whole
// header and check once; nothing is thrown and nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API PlainBitReader {
public:
    PlainBitReader(const uint8_t* data, size_t size);

    // `count` bits (0..32) as an unsigned number, first bit most significant.
    // More than 32, or past the end: 0, and the error flag is set.
    uint32_t ReadBits(int count);
    bool ReadFlag() { return ReadBits(1) != 0; }
    void SkipBits(size_t count);
    // Skips to the next byte boundary.
    void ByteAlign();

    size_t BitPosition() const { return m_position; }
    size_t BitsLeft() const { return m_error ? 0 : m_bits - m_position; }
    bool HasError() const { return m_error; }
    // Sets the error flag; for a caller that finds a value it refuses.
    void SetError() { m_error = true; }

private:
    const uint8_t* m_data;
    size_t m_bits;
    size_t m_position = 0;
    bool m_error = false;
};

} // namespace Quorvex::Vek
