#pragma once

// Public wrapper of CAudioCompressor: an encoder of audio.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioCompressor.h>

namespace Quorvex::Vek {

class VEK_API AudioCompressor : public AudioFilter {
public:
    AudioCompressor() = default;
    // Adopts the caller's reference.
    AudioCompressor(CAudioCompressor* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static AudioCompressor Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioCompressor FromObject(CAudioCompressor* object);

    CAudioCompressor* ToCompressor() const { return static_cast<CAudioCompressor*>(ToObject()); }

    // Writes `input` (null: end of input) and reads one coded sample.
    int Compress(const AudioSample& input, AudioSample& output) const;
};

} // namespace Quorvex::Vek
