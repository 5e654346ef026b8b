#pragma once

// Public wrapper of CAudioDecompressor: a decoder of audio.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioDecompressor.h>

namespace Quorvex::Vek {

class VEK_API AudioDecompressor : public AudioFilter {
public:
    AudioDecompressor() = default;
    // Adopts the caller's reference.
    AudioDecompressor(CAudioDecompressor* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static AudioDecompressor Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioDecompressor FromObject(CAudioDecompressor* object);

    CAudioDecompressor* ToDecompressor() const { return static_cast<CAudioDecompressor*>(ToObject()); }

    // Set in the flags of Convert/Decompress while output waits.
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;
    // Writes `input` (null: end of input) and reads one decoded sample.
    int Decompress(const AudioSample& input, AudioSample& output, uint32_t& flags) const;
};

} // namespace Quorvex::Vek
