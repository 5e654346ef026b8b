#pragma once

// Public wrapper of CVideoConverter: converts one video layout to another.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoConverter.h>

namespace Quorvex::Vek {

class VEK_API VideoConverter : public VideoFilter {
public:
    VideoConverter() = default;
    // Adopts the caller's reference.
    VideoConverter(CVideoConverter* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static VideoConverter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoConverter FromObject(CVideoConverter* object);

    CVideoConverter* ToConverter() const { return static_cast<CVideoConverter*>(ToObject()); }

    // Set in the flags of Convert/Decompress while output waits.
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;
    // One conversion step outside the output queue: `output` gets the
    // converted sample or stays null; null input drains.
    int Convert(const VideoSample& input, VideoSample& output, uint32_t& flags) const;
};

} // namespace Quorvex::Vek
