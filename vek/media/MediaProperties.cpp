#include <vek/media/MediaProperties.h>

#include <new>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

MediaProperties MediaProperties::Create()
{
    return MediaProperties(new (fallible) CMediaProperties());
}

MediaProperties MediaProperties::FromObject(CMediaProperties* object)
{
    if (object)
        object->Acquire();
    return MediaProperties(object);
}

uint32_t MediaProperties::GetFormat() const
{
    return ToObject() ? ToObject()->GetFormat() : 0;
}

int MediaProperties::SetFormat(uint32_t format)
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetFormat(format);
    return RESULT_OK;
}

int64_t MediaProperties::GetTimeScale() const
{
    return ToObject() ? ToObject()->GetTimeScale() : 0;
}

int MediaProperties::SetTimeScale(int64_t unitsPerSecond)
{
    return ToObject() ? ToObject()->SetTimeScale(unitsPerSecond) : RESULT_NULL_POINTER;
}

int64_t MediaProperties::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

int MediaProperties::SetDuration(int64_t duration)
{
    return ToObject() ? ToObject()->SetDuration(duration) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
