#pragma once

// Loads of big-endian integers from byte pointers, for parsers of formats
// that store their fields most significant byte first (QuickTime and ISO
// boxes, MPEG headers). The caller has checked that the bytes exist.
#include <cstdint>

namespace Quorvex::Vek::BigEndian {

inline uint16_t Load16(const uint8_t* p)
{
    return uint16_t(uint16_t(p[0]) << 8 | p[1]);
}

inline uint32_t Load24(const uint8_t* p)
{
    return uint32_t(p[0]) << 16 | uint32_t(p[1]) << 8 | p[2];
}

inline uint32_t Load32(const uint8_t* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

inline uint64_t Load64(const uint8_t* p)
{
    return uint64_t(Load32(p)) << 32 | Load32(p + 4);
}

} // namespace Quorvex::Vek::BigEndian
