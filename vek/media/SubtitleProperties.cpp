#include <vek/media/SubtitleProperties.h>

#include <new>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

SubtitleProperties SubtitleProperties::Create()
{
    return SubtitleProperties(new (fallible) CSubtitleProperties());
}

SubtitleProperties SubtitleProperties::FromObject(CSubtitleProperties* object)
{
    if (object)
        object->Acquire();
    return SubtitleProperties(object);
}

MediaProperties SubtitleProperties::AsMedia() const
{
    return MediaProperties::FromObject(ToObject());
}

uint32_t SubtitleProperties::GetFormat() const
{
    return ToObject() ? ToObject()->GetFormat() : 0;
}

int SubtitleProperties::SetFormat(uint32_t format)
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetFormat(format);
    return RESULT_OK;
}

int64_t SubtitleProperties::GetTimeScale() const
{
    return ToObject() ? ToObject()->GetTimeScale() : 0;
}

int SubtitleProperties::SetTimeScale(int64_t unitsPerSecond)
{
    return ToObject() ? ToObject()->SetTimeScale(unitsPerSecond) : RESULT_NULL_POINTER;
}

int64_t SubtitleProperties::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

int SubtitleProperties::SetDuration(int64_t duration)
{
    return ToObject() ? ToObject()->SetDuration(duration) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
