#pragma once

// Public wrapper of CMediaProperties: the format, time scale and duration of
// a medium and its property bag. A null wrapper answers 0 to the getters and
// -19001 to the setters.
#include <vek/core/BaseObject.h>
#include <vek/media/CMediaProperties.h>
#include <vek/media/Properties.h>

namespace Quorvex::Vek {

class VEK_API MediaProperties : public Object<CMediaProperties, IProperties> {
public:
    // BaseObject is a virtual base: the most derived wrapper sets it.
    MediaProperties() = default;
    MediaProperties(CMediaProperties* object) : BaseObject(object) {}
    using Object::operator=;

    // A new, empty description; a null wrapper without memory.
    static MediaProperties Create();
    // A wrapper sharing `object` (its count goes up by one).
    static MediaProperties FromObject(CMediaProperties* object);

    Properties GetProperties() const { return Properties(GetInterface()); }

    uint32_t GetFormat() const;
    int SetFormat(uint32_t format);
    int64_t GetTimeScale() const;
    int SetTimeScale(int64_t unitsPerSecond);
    int64_t GetDuration() const;
    int SetDuration(int64_t duration);
};

} // namespace Quorvex::Vek
