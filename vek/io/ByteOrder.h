#pragma once

// Byte orders of the typed binary readers and writers, and the 16 raw
// bytes of a GUID as stored in a file.
#include <cstdint>

namespace Quorvex::Vek {

enum class ByteOrder {
    LittleEndian,
    BigEndian,
};

// A GUID exactly as its 16 bytes lie in the stream; how the fields are
// ordered inside is the format's business.
struct GuidBytes {
    uint8_t bytes[16];

    bool operator==(const GuidBytes& other) const
    {
        for (int i = 0; i < 16; ++i)
            if (bytes[i] != other.bytes[i])
                return false;
        return true;
    }
    bool operator!=(const GuidBytes& other) const { return !(*this == other); }
};

} // namespace Quorvex::Vek
