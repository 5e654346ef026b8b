#pragma once

// Public wrapper of CAudioSample: a MediaSample that holds an audio sample
// and adds its packet and frame counts.
#include <vek/samples/CAudioSample.h>
#include <vek/samples/MediaSample.h>

namespace Quorvex::Vek {

class VEK_API AudioSample : public MediaSample {
public:
    AudioSample() = default;
    // Adopts the caller's reference.
    AudioSample(CAudioSample* object) : BaseObject(object) {}

    // A sample from the shared audio pool; null without memory.
    static AudioSample Create();
    // A wrapper sharing `object` (its count goes up by one).
    static AudioSample FromObject(CAudioSample* object);

    CAudioSample* ToAudio() const { return static_cast<CAudioSample*>(ToObject()); }

    int SetPackets(int32_t packets) const;
    int32_t GetPackets() const;
    int SetFrames(int32_t frames) const;
    int32_t GetFrames() const;
};

} // namespace Quorvex::Vek
