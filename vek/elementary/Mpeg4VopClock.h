#pragma once

// The display time of each VOP of an MPEG-4 visual stream, in ticks of the
// layer's vop_time_increment_resolution, from the whole seconds its
// modulo_time_base counts and its vop_time_increment.
//
// A reference VOP (I, P, S) counts its seconds from the previous reference
// VOP's; a B-VOP from the reference before that (its past reference in
// display order). A group-of-VOP header sets the seconds to its time code.
#include <cstdint>

#include <vek/elementary/Mpeg4VideoHeaders.h>

namespace Quorvex::Vek {

class VEK_API Mpeg4VopClock {
public:
    void Reset() { *this = Mpeg4VopClock(); }
    // A group-of-VOP header's payload (the bytes after 00 00 01 B3).
    // 0, or -19017 (logged) for a header too short or without its marker.
    int SetGroupOfVop(const uint8_t* payload, size_t size);
    // The VOP's display time in ticks of `resolution`.
    int64_t Next(const Mpeg4VopHeader& vop, uint32_t resolution);

private:
    int64_t m_seconds = 0; // of the latest reference VOP
    int64_t m_pastSeconds = 0; // of the reference before it
};

} // namespace Quorvex::Vek
