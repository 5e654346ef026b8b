#pragma once

// A big-endian bit reader over the payload of one NAL unit or header. It
// never reads outside [data, data + size) and, when asked to, drops the
// emulation-prevention byte of every 00 00 03 sequence as it goes, so the
// payload is read in place rather than copied.
//
// Reading past the end sets a sticky error and every later read returns 0:
// a parser reads a whole structure straight through and checks HasError()
// once at the end, rather than after every field.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API BitReader {
public:
    enum class Escapes : uint8_t {
        // Raw byte sequence payload inside a NAL unit: 00 00 03 loses its 03.
        Remove,
        // A plain record (decoder configuration records): every byte counts.
        Keep,
    };

    BitReader(const uint8_t* data, size_t size, Escapes escapes = Escapes::Remove);

    // 0..32 bits, most significant first.
    uint32_t ReadBits(int count);
    bool ReadFlag() { return ReadBits(1) != 0; }
    // Exp-Golomb codes; more than 31 leading zeros is an error (the value
    // would not fit 32 bits), reported like a read past the end.
    uint32_t ReadUE();
    int32_t ReadSE();
    void SkipBits(uint64_t count);
    void SkipToByteBoundary();
    bool IsByteAligned() const { return (m_consumed & 7) == 0; }

    // True while payload bits remain before the final stop bit (the last
    // 1 bit of the payload, trailing zero bytes ignored).
    bool MoreRbspData();

    // Payload bits read so far (escape bytes not counted).
    uint64_t BitsConsumed() const { return m_consumed; }
    // Bits that remain: exact for a plain record; with escapes removed, an
    // upper bound (escape bytes not yet reached are counted). 0 after an error.
    uint64_t BitsLeft() const
    {
        return m_error ? 0 : uint64_t(m_end - m_next) * 8 + uint64_t(m_cacheBits);
    }
    bool HasError() const { return m_error; }
    // Marks the reader failed, for a caller that finds a value out of range.
    void SetError() { m_error = true; }

private:
    void Refill();
    void Consume(int count);
    uint64_t StopBitPosition();

    const uint8_t* m_begin;
    const uint8_t* m_next;
    const uint8_t* m_end;
    uint64_t m_cache = 0; // unread bits, left-aligned
    int m_cacheBits = 0;
    int m_zeros = 0; // zero bytes just before m_next, for escape detection
    uint64_t m_consumed = 0;
    int64_t m_stopBit = -1; // computed on first use
    bool m_removeEscapes;
    bool m_error = false;
};

} // namespace Quorvex::Vek
