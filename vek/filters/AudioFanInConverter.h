#pragma once

// Public wrapper of CAudioFanInConverter: several audio tracks in, one out.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioFanInConverter.h>

namespace Quorvex::Vek {

class VEK_API AudioFanInConverter : public AudioFilter {
public:
    AudioFanInConverter() = default;
    // Adopts the caller's reference.
    AudioFanInConverter(CAudioFanInConverter* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static AudioFanInConverter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioFanInConverter FromObject(CAudioFanInConverter* object);

    CAudioFanInConverter* ToFanInConverter() const { return static_cast<CAudioFanInConverter*>(ToObject()); }

    // Adds an input track; the first also describes the filter's input.
    int AddTrack(const AudioProperties& properties) const;
    int32_t GetTrackCount() const;
};

} // namespace Quorvex::Vek
