#pragma once

// Public wrapper of CSubtitleSample: a MediaSample that holds a subtitle
// sample and adds its duration setter.
#include <vek/samples/CSubtitleSample.h>
#include <vek/samples/MediaSample.h>

namespace Quorvex::Vek {

class VEK_API SubtitleSample : public MediaSample {
public:
    SubtitleSample() = default;
    // Adopts the caller's reference.
    SubtitleSample(CSubtitleSample* object) : BaseObject(object) {}

    // A sample from the shared subtitle pool; null without memory.
    static SubtitleSample Create();
    // A wrapper sharing `object` (its count goes up by one).
    static SubtitleSample FromObject(CSubtitleSample* object);

    CSubtitleSample* ToSubtitle() const { return static_cast<CSubtitleSample*>(ToObject()); }

    int SetDuration(int32_t duration) const;
};

} // namespace Quorvex::Vek
