#pragma once

// Public wrapper of CAudioConverter: converts one audio layout to another.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioConverter.h>

namespace Quorvex::Vek {

class VEK_API AudioConverter : public AudioFilter {
public:
    AudioConverter() = default;
    // Adopts the caller's reference.
    AudioConverter(CAudioConverter* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static AudioConverter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioConverter FromObject(CAudioConverter* object);

    CAudioConverter* ToConverter() const { return static_cast<CAudioConverter*>(ToObject()); }

    // Set in the flags of Convert/Decompress while output waits.
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;
    // One conversion step outside the output queue: `output` gets the
    // converted sample or stays null; null input drains.
    int Convert(const AudioSample& input, AudioSample& output, uint32_t& flags) const;
};

} // namespace Quorvex::Vek
