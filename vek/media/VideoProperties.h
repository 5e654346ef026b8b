#pragma once

// Public wrapper of CVideoProperties. A null wrapper answers 0 to the
// getters and -19001 to the setters.
#include <vek/core/BaseObject.h>
#include <vek/media/CVideoProperties.h>
#include <vek/media/MediaProperties.h>
#include <vek/media/Properties.h>

namespace Quorvex::Vek {

class VEK_API VideoProperties : public Object<CVideoProperties, IProperties> {
public:
    // BaseObject is a virtual base: the most derived wrapper sets it.
    VideoProperties() = default;
    VideoProperties(CVideoProperties* object) : BaseObject(object) {}
    using Object::operator=;

    static VideoProperties Create();
    // A wrapper sharing `object` (its count goes up by one).
    static VideoProperties FromObject(CVideoProperties* object);

    Properties GetProperties() const { return Properties(GetInterface()); }
    // The same object seen as a plain media description (shared).
    MediaProperties AsMedia() const;

    uint32_t GetFormat() const;
    int SetFormat(uint32_t format);
    int64_t GetTimeScale() const;
    int SetTimeScale(int64_t unitsPerSecond);
    int64_t GetDuration() const;
    int SetDuration(int64_t duration);

    int32_t GetWidth() const;
    int32_t GetHeight() const;
    int SetSize(int32_t width, int32_t height);
    int GetPixelAspectRatio(int64_t& numerator, int64_t& denominator) const;
    int SetPixelAspectRatio(int64_t numerator, int64_t denominator);
    int GetSubsampling(int32_t& horizontal, int32_t& vertical) const;
    int SetSubsampling(int32_t horizontal, int32_t vertical);
    uint32_t GetColorSpace() const;
    int SetColorSpace(uint32_t colorSpace);
    int GetFrameRate(int64_t& numerator, int64_t& denominator) const;
    int SetFrameRate(int64_t numerator, int64_t denominator);
    uint32_t GetFieldOrder() const;
    int SetFieldOrder(uint32_t fieldOrder);
    int64_t GetBitRate() const;
    int SetBitRate(int64_t bitsPerSecond);
};

} // namespace Quorvex::Vek
