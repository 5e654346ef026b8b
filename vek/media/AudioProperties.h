#pragma once

// Public wrapper of CAudioProperties. A null wrapper answers 0 to the
// getters and -19001 to the setters.
#include <vek/core/BaseObject.h>
#include <vek/media/CAudioProperties.h>
#include <vek/media/MediaProperties.h>
#include <vek/media/Properties.h>

namespace Quorvex::Vek {

class VEK_API AudioProperties : public Object<CAudioProperties, IProperties> {
public:
    // BaseObject is a virtual base: the most derived wrapper sets it.
    AudioProperties() = default;
    AudioProperties(CAudioProperties* object) : BaseObject(object) {}
    using Object::operator=;

    static AudioProperties Create();
    // A wrapper sharing `object` (its count goes up by one).
    static AudioProperties FromObject(CAudioProperties* object);

    Properties GetProperties() const { return Properties(GetInterface()); }
    MediaProperties AsMedia() const;

    uint32_t GetFormat() const;
    int SetFormat(uint32_t format);
    int64_t GetTimeScale() const;
    int SetTimeScale(int64_t unitsPerSecond);
    int64_t GetDuration() const;
    int SetDuration(int64_t duration);

    int32_t GetSampleRate() const;
    int SetSampleRate(int32_t framesPerSecond);
    int32_t GetChannels() const;
    int SetChannels(int32_t channels);
    int GetSpeakerPosition(int32_t channel, uint32_t& position) const;
    int SetSpeakerPosition(int32_t channel, uint32_t position);
    int SetSpeakerPositionsFromMask(uint32_t channelMask);
    int32_t GetBitsPerSample() const;
    int SetBitsPerSample(int32_t bits);
    int32_t GetBytesPerFrame() const;
    int SetBytesPerFrame(int32_t bytes);
    int32_t GetFramesPerPacket() const;
    int SetFramesPerPacket(int32_t frames);
    int32_t GetBytesPerPacket() const;
    int SetBytesPerPacket(int32_t bytes);
    int64_t GetBitRate() const;
    int SetBitRate(int64_t bitsPerSecond);
};

} // namespace Quorvex::Vek
