#pragma once

// A bit writer for building headers in tests, the independent side of the
// bit reader: most significant bit first, exp-Golomb codes, escapes.
#include <cstdint>
#include <vector>

namespace VekTest {

// Writes bits most significant first: the independent side of the tests.
struct BitWriter {
    void SE(int64_t value) { UE(value > 0 ? uint64_t(2 * value - 1) : uint64_t(-2 * value)); }
    // The stop bit and zero padding that end a payload.
    void Trailing()
    {
        Bit(1);
        while (used != 8)
            Bit(0);
    }
    std::vector<uint8_t> bytes;
    int used = 8;
    void Bit(int bit)
    {
        if (used == 8) {
            bytes.push_back(0);
            used = 0;
        }
        if (bit)
            bytes.back() |= uint8_t(0x80 >> used);
        ++used;
    }
    void Bits(uint64_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            Bit(int(value >> i & 1));
    }
    void UE(uint64_t value)
    {
        const uint64_t coded = value + 1;
        int length = 0;
        while ((coded >> length) > 1)
            ++length;
        Bits(0, length);
        Bits(coded, length + 1);
    }
    // Inserts an escape byte after every two zeros followed by 00..03, as
    // an encoder does.
    std::vector<uint8_t> Escaped() const
    {
        std::vector<uint8_t> out;
        int zeros = 0;
        for (uint8_t b : bytes) {
            if (zeros >= 2 && b <= 3) {
                out.push_back(3);
                zeros = 0;
            }
            out.push_back(b);
            zeros = b == 0 ? zeros + 1 : 0;
        }
        return out;
    }
};

} // namespace VekTest
