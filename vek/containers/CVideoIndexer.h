#pragma once

// The index of a video track. Besides the samples in decode order it keeps
// the presentation order of every picture, worked out one group of pictures
// at a time, the frame count, and whether the track has predicted pictures.
//
// Groups: a key frame (picture type I) starts a new group; a group is
// complete when the next key frame arrives or the track completes. Pictures
// before the first key frame form a group of their own. Within a group the
// presentation order is the stable order of Comparer.
#include <vek/containers/CMediaIndexer.h>
#include <vek/core/CollectionStorage.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {

class VEK_API CVideoIndexer : public CMediaIndexer {
public:
    enum : uint32_t { Type = Four("vidx") };
    // How many samples, in decode order, a presented picture may be
    // reordered by.
    static constexpr int32_t ReorderWindow = 16;

    // A new, empty index for a track described by `properties` (shared);
    // null without memory or without a description.
    static CVideoIndexer* Create(CVideoProperties* properties);

    // Borrowed.
    CVideoProperties* GetProperties() const { return static_cast<CVideoProperties*>(GetMediaProperties()); }

    // Appends the next sample in decode order (shared). -19004 null, -19010
    // once complete, -19002 without memory (the sample is then not indexed).
    int AddSample(CVideoSample* sample);
    // Closes the last group, then completes the track. -19002 when the
    // last group cannot be sorted for want of memory: the track completes
    // anyway, without a presentation order for that group.
    int OnComplete() override;

    using CMediaIndexer::GetSample;
    using CMediaIndexer::GetSampleAtTime;
    int GetSample(int32_t index, CVideoSample*& sample);
    int GetSampleAtTime(int64_t time, int32_t& index, CVideoSample*& sample);

    // The decode index of the picture presented `rank`-th, counted over the
    // groups completed so far. -19003 outside them.
    int GetPresentationIndex(int32_t rank, int32_t& index);
    // The index of the key frame that starts the group holding sample
    // `index` (0 when the track starts without one). -19003 out of range.
    int GetGroupStart(int32_t index, int32_t& start);

    // Frame pictures count one each, field pictures one per pair.
    int32_t GetFrameCount();
    // True once a P or B picture has been indexed.
    bool HasPredictiveSamples();

    // The smallest composition time among samples index .. index +
    // ReorderWindow - 1 (as far as indexed). -19003 for an index outside
    // the samples indexed so far.
    int GetNextMinimumPresentationTime(int32_t index, int64_t& time);

    // The presentation order of two pictures: the difference of their
    // composition times, each cut to signed 32 bits; only when that is 0
    // the difference of their composition offsets. The 32-bit cut is part
    // of the order (times that differ by a multiple of 2^32 tie), and hosts
    // built against this order rely on it.
    static int Comparer(const CVideoSample* a, const CVideoSample* b);

protected:
    explicit CVideoIndexer(CVideoProperties* properties);
    ~CVideoIndexer() override;

    // Sorts the open group [m_groupStart, count) into the presentation
    // order. Holds the monitor.
    int OnGroupComplete();

private:
    int SortGroup(int32_t* ranks, int32_t count);
    bool Precedes(int32_t left, int32_t right) const;

    Detail::GrowBuffer<int32_t> m_presentation;
    // Scratch of the merge sort, kept between groups so sorting allocates
    // only when a group is longer than any before it.
    Detail::GrowBuffer<int32_t> m_scratch;
    int32_t m_groupStart = 0;
    int32_t m_frames = 0;
    int32_t m_fields = 0;
    bool m_predictive = false;
};

} // namespace Quorvex::Vek
