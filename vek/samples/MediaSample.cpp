#include <vek/samples/MediaSample.h>

namespace Quorvex::Vek {

MediaSample MediaSample::FromObject(CMediaSample* object)
{
    if (object)
        object->Acquire();
    return MediaSample(object);
}

int MediaSample::SetTime(int64_t time) const
{
    return ToObject() ? ToObject()->SetTime(time) : RESULT_NULL_POINTER;
}

int64_t MediaSample::GetTime() const
{
    return ToObject() ? ToObject()->GetTime() : 0;
}

int MediaSample::SetHint(int32_t hint) const
{
    return ToObject() ? ToObject()->SetHint(hint) : RESULT_NULL_POINTER;
}

int32_t MediaSample::GetHint() const
{
    return ToObject() ? ToObject()->GetHint() : 0;
}

int MediaSample::SetTrim(int32_t trim) const
{
    return ToObject() ? ToObject()->SetTrim(trim) : RESULT_NULL_POINTER;
}

int32_t MediaSample::GetTrim() const
{
    return ToObject() ? ToObject()->GetTrim() : 0;
}

int MediaSample::SetCompositionTrim(int32_t leading, int32_t trailing) const
{
    return ToObject() ? ToObject()->SetCompositionTrim(leading, trailing) : RESULT_NULL_POINTER;
}

int MediaSample::GetCompositionTrim(int32_t& leading, int32_t& trailing) const
{
    leading = 0;
    trailing = 0;
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->GetCompositionTrim(leading, trailing);
    return RESULT_OK;
}

int64_t MediaSample::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

int64_t MediaSample::GetCompositionTime() const
{
    return ToObject() ? ToObject()->GetCompositionTime() : 0;
}

int64_t MediaSample::GetCompositionDuration() const
{
    return ToObject() ? ToObject()->GetCompositionDuration() : 0;
}

bool MediaSample::ContainsCompositionTime(int64_t time) const
{
    return ToObject() && ToObject()->ContainsCompositionTime(time);
}

int MediaSample::SetDataReference(CMediaSampleDataReference* reference) const
{
    return ToObject() ? ToObject()->SetDataReference(reference) : RESULT_NULL_POINTER;
}

CMediaSampleDataReference* MediaSample::GetDataReference() const
{
    return ToObject() ? ToObject()->GetDataReference() : nullptr;
}

bool MediaSample::HasDataReference() const
{
    return ToObject() && ToObject()->HasDataReference();
}

LockedDataReference MediaSample::GetLockedDataReference() const
{
    return LockedDataReference(ToObject() ? ToObject()->GetLockedDataReference() : nullptr);
}

int MediaSample::SetMetadata(const Metadata& metadata) const
{
    return ToObject() ? ToObject()->SetMetadata(metadata.ToObject()) : RESULT_NULL_POINTER;
}

Metadata MediaSample::GetMetadata() const
{
    return Metadata::FromObject(ToObject() ? ToObject()->GetMetadata() : nullptr);
}

int MediaSample::MakeLocalMetadataCopy() const
{
    return ToObject() ? ToObject()->MakeLocalMetadataCopy() : RESULT_NULL_POINTER;
}

int MediaSample::SetOriginal(const MediaSample& original) const
{
    return ToObject() ? ToObject()->SetOriginal(original.ToObject()) : RESULT_NULL_POINTER;
}

MediaSample MediaSample::GetOriginal() const
{
    // The wrapper layer has no read-only handle; the header asks callers
    // to leave an original unchanged.
    return FromObject(ToObject() ? const_cast<CMediaSample*>(ToObject()->GetOriginal()) : nullptr);
}

} // namespace Quorvex::Vek
