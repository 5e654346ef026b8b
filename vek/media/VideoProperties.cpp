#include <vek/media/VideoProperties.h>

#include <new>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

VideoProperties VideoProperties::Create()
{
    return VideoProperties(new (fallible) CVideoProperties());
}

VideoProperties VideoProperties::FromObject(CVideoProperties* object)
{
    if (object)
        object->Acquire();
    return VideoProperties(object);
}

MediaProperties VideoProperties::AsMedia() const
{
    return MediaProperties::FromObject(ToObject());
}

uint32_t VideoProperties::GetFormat() const
{
    return ToObject() ? ToObject()->GetFormat() : 0;
}

int VideoProperties::SetFormat(uint32_t format)
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetFormat(format);
    return RESULT_OK;
}

int64_t VideoProperties::GetTimeScale() const
{
    return ToObject() ? ToObject()->GetTimeScale() : 0;
}

int VideoProperties::SetTimeScale(int64_t unitsPerSecond)
{
    return ToObject() ? ToObject()->SetTimeScale(unitsPerSecond) : RESULT_NULL_POINTER;
}

int64_t VideoProperties::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

int VideoProperties::SetDuration(int64_t duration)
{
    return ToObject() ? ToObject()->SetDuration(duration) : RESULT_NULL_POINTER;
}

int32_t VideoProperties::GetWidth() const
{
    return ToObject() ? ToObject()->GetWidth() : 0;
}

int32_t VideoProperties::GetHeight() const
{
    return ToObject() ? ToObject()->GetHeight() : 0;
}

int VideoProperties::SetSize(int32_t width, int32_t height)
{
    return ToObject() ? ToObject()->SetSize(width, height) : RESULT_NULL_POINTER;
}

int VideoProperties::GetPixelAspectRatio(int64_t& numerator, int64_t& denominator) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->GetPixelAspectRatio(numerator, denominator);
    return RESULT_OK;
}

int VideoProperties::SetPixelAspectRatio(int64_t numerator, int64_t denominator)
{
    return ToObject() ? ToObject()->SetPixelAspectRatio(numerator, denominator) : RESULT_NULL_POINTER;
}

int VideoProperties::GetSubsampling(int32_t& horizontal, int32_t& vertical) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->GetSubsampling(horizontal, vertical);
    return RESULT_OK;
}

int VideoProperties::SetSubsampling(int32_t horizontal, int32_t vertical)
{
    return ToObject() ? ToObject()->SetSubsampling(horizontal, vertical) : RESULT_NULL_POINTER;
}

uint32_t VideoProperties::GetColorSpace() const
{
    return ToObject() ? ToObject()->GetColorSpace() : 0;
}

int VideoProperties::SetColorSpace(uint32_t colorSpace)
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetColorSpace(colorSpace);
    return RESULT_OK;
}

int VideoProperties::GetFrameRate(int64_t& numerator, int64_t& denominator) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->GetFrameRate(numerator, denominator);
    return RESULT_OK;
}

int VideoProperties::SetFrameRate(int64_t numerator, int64_t denominator)
{
    return ToObject() ? ToObject()->SetFrameRate(numerator, denominator) : RESULT_NULL_POINTER;
}

uint32_t VideoProperties::GetFieldOrder() const
{
    return ToObject() ? ToObject()->GetFieldOrder() : 0;
}

int VideoProperties::SetFieldOrder(uint32_t fieldOrder)
{
    return ToObject() ? ToObject()->SetFieldOrder(fieldOrder) : RESULT_NULL_POINTER;
}

int64_t VideoProperties::GetBitRate() const
{
    return ToObject() ? ToObject()->GetBitRate() : 0;
}

int VideoProperties::SetBitRate(int64_t bitsPerSecond)
{
    return ToObject() ? ToObject()->SetBitRate(bitsPerSecond) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
