#pragma once

// Public wrapper of CVideoSample: a MediaSample that holds a video sample
// and adds its members. Built only from a CVideoSample, so the held object
// is always one.
#include <vek/core/ByteArray.h>
#include <vek/samples/CVideoSample.h>
#include <vek/samples/MediaSample.h>

namespace Quorvex::Vek {

class VEK_API VideoSample : public MediaSample {
public:
    VideoSample() = default;
    // Adopts the caller's reference.
    VideoSample(CVideoSample* object) : BaseObject(object) {}

    // A sample from the shared video pool; null without memory.
    static VideoSample Create();
    // A wrapper sharing `object` (its count goes up by one).
    static VideoSample FromObject(CVideoSample* object);

    CVideoSample* ToVideo() const { return static_cast<CVideoSample*>(ToObject()); }

    int SetDuration(int32_t duration) const;
    int SetCompositionOffset(int32_t offset) const;
    int32_t GetCompositionOffset() const;
    int AdjustTime(int32_t delta) const;
    int SetPictureType(int32_t type) const;
    int32_t GetPictureType() const;
    int SetPictureStructure(int32_t structure) const;
    int32_t GetPictureStructure() const;
    int SetFrameNumber(int32_t number) const;
    int32_t GetFrameNumber() const;
    int SetAtom(const ByteArray& atom) const;
    ByteArray GetAtom() const;
    int SetAtomData(const unsigned char* data, int32_t length) const;
    const unsigned char* GetAtomData() const;
    int32_t GetAtomLength() const;
};

} // namespace Quorvex::Vek
