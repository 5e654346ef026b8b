#include <vek/media/AudioProperties.h>

#include <new>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

AudioProperties AudioProperties::Create()
{
    return AudioProperties(new (fallible) CAudioProperties());
}

AudioProperties AudioProperties::FromObject(CAudioProperties* object)
{
    if (object)
        object->Acquire();
    return AudioProperties(object);
}

MediaProperties AudioProperties::AsMedia() const
{
    return MediaProperties::FromObject(ToObject());
}

uint32_t AudioProperties::GetFormat() const
{
    return ToObject() ? ToObject()->GetFormat() : 0;
}

int AudioProperties::SetFormat(uint32_t format)
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetFormat(format);
    return RESULT_OK;
}

int64_t AudioProperties::GetTimeScale() const
{
    return ToObject() ? ToObject()->GetTimeScale() : 0;
}

int AudioProperties::SetTimeScale(int64_t unitsPerSecond)
{
    return ToObject() ? ToObject()->SetTimeScale(unitsPerSecond) : RESULT_NULL_POINTER;
}

int64_t AudioProperties::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

int AudioProperties::SetDuration(int64_t duration)
{
    return ToObject() ? ToObject()->SetDuration(duration) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetSampleRate() const
{
    return ToObject() ? ToObject()->GetSampleRate() : 0;
}

int AudioProperties::SetSampleRate(int32_t framesPerSecond)
{
    return ToObject() ? ToObject()->SetSampleRate(framesPerSecond) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetChannels() const
{
    return ToObject() ? ToObject()->GetChannels() : 0;
}

int AudioProperties::SetChannels(int32_t channels)
{
    return ToObject() ? ToObject()->SetChannels(channels) : RESULT_NULL_POINTER;
}

int AudioProperties::GetSpeakerPosition(int32_t channel, uint32_t& position) const
{
    return ToObject() ? ToObject()->GetSpeakerPosition(channel, position) : RESULT_NULL_POINTER;
}

int AudioProperties::SetSpeakerPosition(int32_t channel, uint32_t position)
{
    return ToObject() ? ToObject()->SetSpeakerPosition(channel, position) : RESULT_NULL_POINTER;
}

int AudioProperties::SetSpeakerPositionsFromMask(uint32_t channelMask)
{
    return ToObject() ? ToObject()->SetSpeakerPositionsFromMask(channelMask) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetBitsPerSample() const
{
    return ToObject() ? ToObject()->GetBitsPerSample() : 0;
}

int AudioProperties::SetBitsPerSample(int32_t bits)
{
    return ToObject() ? ToObject()->SetBitsPerSample(bits) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetBytesPerFrame() const
{
    return ToObject() ? ToObject()->GetBytesPerFrame() : 0;
}

int AudioProperties::SetBytesPerFrame(int32_t bytes)
{
    return ToObject() ? ToObject()->SetBytesPerFrame(bytes) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetFramesPerPacket() const
{
    return ToObject() ? ToObject()->GetFramesPerPacket() : 0;
}

int AudioProperties::SetFramesPerPacket(int32_t frames)
{
    return ToObject() ? ToObject()->SetFramesPerPacket(frames) : RESULT_NULL_POINTER;
}

int32_t AudioProperties::GetBytesPerPacket() const
{
    return ToObject() ? ToObject()->GetBytesPerPacket() : 0;
}

int AudioProperties::SetBytesPerPacket(int32_t bytes)
{
    return ToObject() ? ToObject()->SetBytesPerPacket(bytes) : RESULT_NULL_POINTER;
}

int64_t AudioProperties::GetBitRate() const
{
    return ToObject() ? ToObject()->GetBitRate() : 0;
}

int AudioProperties::SetBitRate(int64_t bitsPerSecond)
{
    return ToObject() ? ToObject()->SetBitRate(bitsPerSecond) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
