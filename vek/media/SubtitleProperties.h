#pragma once

// Public wrapper of CSubtitleProperties. A null wrapper answers 0 to the
// getters and -19001 to the setters.
#include <vek/core/BaseObject.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/media/MediaProperties.h>
#include <vek/media/Properties.h>

namespace Quorvex::Vek {

class VEK_API SubtitleProperties : public Object<CSubtitleProperties, IProperties> {
public:
    // BaseObject is a virtual base: the most derived wrapper sets it.
    SubtitleProperties() = default;
    SubtitleProperties(CSubtitleProperties* object) : BaseObject(object) {}
    using Object::operator=;

    static SubtitleProperties Create();
    // A wrapper sharing `object` (its count goes up by one).
    static SubtitleProperties FromObject(CSubtitleProperties* object);

    Properties GetProperties() const { return Properties(GetInterface()); }
    MediaProperties AsMedia() const;

    uint32_t GetFormat() const;
    int SetFormat(uint32_t format);
    int64_t GetTimeScale() const;
    int SetTimeScale(int64_t unitsPerSecond);
    int64_t GetDuration() const;
    int SetDuration(int64_t duration);
};

} // namespace Quorvex::Vek
