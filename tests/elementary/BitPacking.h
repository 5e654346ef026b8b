#pragma once

// Builds header bytes field by field, most significant bit first, so a test
// can state a hand-made header as its syntax reads.
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace VekTest {

struct BitField {
    uint32_t value;
    int bits;
};

template <typename Fields>
std::vector<uint8_t> PackFields(const Fields& fields)
{
    std::vector<uint8_t> bytes;
    int used = 8;
    for (const BitField& field : fields) {
        for (int bit = field.bits - 1; bit >= 0; --bit) {
            if (used == 8) {
                bytes.push_back(0);
                used = 0;
            }
            bytes.back() = uint8_t(bytes.back() | ((field.value >> bit) & 1u) << (7 - used));
            ++used;
        }
    }
    return bytes;
}

inline std::vector<uint8_t> PackBits(std::initializer_list<BitField> fields)
{
    return PackFields(fields);
}

// The first `count` bytes.
inline std::vector<uint8_t> Truncated(std::vector<uint8_t> bytes, size_t count)
{
    bytes.resize(count < bytes.size() ? count : bytes.size());
    return bytes;
}

} // namespace VekTest
