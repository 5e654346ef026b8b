#pragma once

// The index of one subtitle track: its samples in the order the pass read
// them, with the track's subtitle description.
#include <vek/containers/CMediaIndexer.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/samples/CSubtitleSample.h>

namespace Quorvex::Vek {

class VEK_API CSubtitleIndexer : public CMediaIndexer {
public:
    enum : uint32_t { Type = Four("sidx") };

    // A new, empty index for a track described by `properties` (shared);
    // null without memory or without a description.
    static CSubtitleIndexer* Create(CSubtitleProperties* properties);

    // Borrowed.
    CSubtitleProperties* GetProperties() const { return static_cast<CSubtitleProperties*>(GetMediaProperties()); }

    // Appends the next sample (shared). -19004 null, -19010 once complete,
    // -19002 without memory (the sample is then not indexed).
    int AddSample(CSubtitleSample* sample);

    using CMediaIndexer::GetSample;
    using CMediaIndexer::GetSampleAtTime;
    int GetSample(int32_t index, CSubtitleSample*& sample);
    int GetSampleAtTime(int64_t time, int32_t& index, CSubtitleSample*& sample);

protected:
    explicit CSubtitleIndexer(CSubtitleProperties* properties);
    ~CSubtitleIndexer() override;
};

} // namespace Quorvex::Vek
