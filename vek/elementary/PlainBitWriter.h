#pragma once

// Writes big-endian bit fields into a caller's buffer, for the decoder
// configuration records built from parsed headers (AudioSpecificConfig,
// 'dac3', 'dec3'). A write past the buffer sets a sticky error flag and
// writes nothing; nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API PlainBitWriter {
public:
    PlainBitWriter(uint8_t* buffer, size_t capacity);

    // The low `count` bits (0..32) of `value`, most significant first.
    void WriteBits(uint32_t value, int count);
    // Zero bits up to the next byte boundary.
    void ByteAlign();

    // Whole bytes written so far, a partial last byte counted.
    size_t BytesWritten() const { return (m_position + 7) / 8; }
    bool HasError() const { return m_error; }

private:
    uint8_t* m_buffer;
    size_t m_bits;
    size_t m_position = 0;
    bool m_error = false;
};

} // namespace Quorvex::Vek
