#pragma once

// The index of one audio track: its samples in the order the pass read
// them, with the track's audio description.
#include <vek/containers/CMediaIndexer.h>
#include <vek/media/CAudioProperties.h>
#include <vek/samples/CAudioSample.h>

namespace Quorvex::Vek {

class VEK_API CAudioIndexer : public CMediaIndexer {
public:
    enum : uint32_t { Type = Four("aidx") };

    // A new, empty index for a track described by `properties` (shared);
    // null without memory or without a description.
    static CAudioIndexer* Create(CAudioProperties* properties);

    // Borrowed.
    CAudioProperties* GetProperties() const { return static_cast<CAudioProperties*>(GetMediaProperties()); }

    // Appends the next sample (shared). -19004 null, -19010 once complete,
    // -19002 without memory (the sample is then not indexed).
    int AddSample(CAudioSample* sample);

    using CMediaIndexer::GetSample;
    using CMediaIndexer::GetSampleAtTime;
    int GetSample(int32_t index, CAudioSample*& sample);
    int GetSampleAtTime(int64_t time, int32_t& index, CAudioSample*& sample);

protected:
    explicit CAudioIndexer(CAudioProperties* properties);
    ~CAudioIndexer() override;
};

} // namespace Quorvex::Vek
