#pragma once

// Public wrapper of CMediaSample, and through VideoSample, AudioSample and
// SubtitleSample of each kind of sample. Calls forward to the sample and
// return its results unchanged; a null wrapper answers 0, false or null to
// the getters and -19001 to everything that changes or makes something.
//
// Objects handed back: GetLockedDataReference is a new guard (adopted);
// GetMetadata and GetOriginal share what the sample keeps. An original is
// the source of a derived sample: read it, do not change it.
#include <vek/core/BaseObject.h>
#include <vek/samples/CMediaSample.h>
#include <vek/samples/LockedDataReference.h>
#include <vek/samples/Metadata.h>

namespace Quorvex::Vek {

class VEK_API MediaSample : public Object<CMediaSample, IProperties> {
public:
    MediaSample() = default;
    // Adopts the caller's reference.
    MediaSample(CMediaSample* object) : BaseObject(object) {}
    using Object::operator=;

    // A wrapper sharing `object` (its count goes up by one).
    static MediaSample FromObject(CMediaSample* object);

    int SetTime(int64_t time) const;
    int64_t GetTime() const;
    int SetHint(int32_t hint) const;
    int32_t GetHint() const;
    int SetTrim(int32_t trim) const;
    int32_t GetTrim() const;
    int SetCompositionTrim(int32_t leading, int32_t trailing) const;
    int GetCompositionTrim(int32_t& leading, int32_t& trailing) const;
    int64_t GetDuration() const;
    int64_t GetCompositionTime() const;
    int64_t GetCompositionDuration() const;
    bool ContainsCompositionTime(int64_t time) const;

    int SetDataReference(CMediaSampleDataReference* reference) const;
    // Borrowed from the sample, or null.
    CMediaSampleDataReference* GetDataReference() const;
    bool HasDataReference() const;
    LockedDataReference GetLockedDataReference() const;

    int SetMetadata(const Metadata& metadata) const;
    Metadata GetMetadata() const;
    int MakeLocalMetadataCopy() const;
    int SetOriginal(const MediaSample& original) const;
    MediaSample GetOriginal() const;
};

} // namespace Quorvex::Vek
