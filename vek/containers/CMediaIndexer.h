#pragma once

// The index of one track: every sample the index pass produced, in the
// order the pass added them (decode order), with the track's description,
// and the time-based questions asked of it (sample at a time, duration, bit
// rate).
//
// Concurrency: the index thread appends while other threads query. Every
// operation runs under this indexer's own monitor, so a query sees a
// consistent prefix of the track. Once complete the track is immutable.
//
// Ownership: the description is shared with whoever made it; GetMediaProperties
// lends it. Samples handed out through a CMediaSample*& carry one reference
// for the caller.
//
// Times are counts of units of the track's time scale.
#include <vek/core/CArray.h>
#include <vek/core/RObject.h>
#include <vek/media/CMediaProperties.h>
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

class VEK_API CMediaIndexer : public CObject {
public:
    // The description given at creation (borrowed).
    CMediaProperties* GetMediaProperties() const { return m_properties; }
    // Units per second, from the description.
    int64_t GetTimeScale() const { return m_timeScale; }

    int32_t GetSampleCount();
    // The end of the latest composition span indexed so far, in units; 0
    // while empty.
    int64_t GetDuration();
    double GetDurationInSeconds();
    // Bits per second: eight times the bytes of every indexed sample over
    // the duration. A sample's bytes are the length of its data reference
    // (the file range of a container reference, the locked length of any
    // other kind; none without a reference). 0 while the duration is 0.
    int64_t GetBitRate();
    // True once OnComplete ran: no sample will be added any more.
    bool IsComplete();

    // The first, the last and the index-th sample (one reference for the
    // caller). -19272 on an empty complete track, -19271 on an empty track
    // still being indexed; GetSample gives -19003 for an index outside the
    // samples indexed so far.
    int GetFirstSample(CMediaSample*& sample);
    int GetLastSample(CMediaSample*& sample);
    int GetSample(int32_t index, CMediaSample*& sample);

    // The sample whose composition span contains `time`, and its index.
    // -19003 for a negative time; at or beyond the duration -19272 when the
    // track is complete, -19271 while it is still being indexed; -19272 when
    // no sample contains the time (a gap). On failure index is -1 and the
    // sample null.
    int GetSampleAtTime(int64_t time, int32_t& index, CMediaSample*& sample);

    // The index of the first sample, in index order, presented after
    // `time`; the sample count when there is none. A linear scan: for
    // positioning in a gap, where the time-based search finds nothing.
    int32_t GetIndexAfterTime(int64_t time);

    // Marks the track complete (the pass has ended). Subclasses close what
    // they collected and call this one. Idempotent. 0 or a negative code.
    virtual int OnComplete();

    // How far the outward search looks: it stops after this many samples
    // with a positive composition duration.
    static constexpr int32_t OutwardSearchSpan = 32;

protected:
    CMediaIndexer(uint32_t type, CMediaProperties* properties);
    ~CMediaIndexer() override;

    // Makes the sample array; false without memory. For the subclasses'
    // Create.
    bool Initialize();
    // Appends a sample (shared). The caller holds the monitor. -19010 once
    // complete, -19004 for null, -19002 without memory.
    int Append(CMediaSample* sample);
    // The sample array, for subclasses under the monitor.
    CMediaSample* const* Samples() const { return m_samples->GetItems(); }
    int32_t Count() const { return m_samples->GetCount(); }
    bool IsCompleteLocked() const { return m_complete; }

private:
    int SampleAt(int32_t index, CMediaSample*& sample);
    int32_t BinarySearch(int64_t time, int32_t& lastMid) const;
    int32_t OutwardSearch(int64_t time, int32_t mid) const;
    static int64_t ByteLength(CMediaSample* sample);

    RObject<CMediaProperties> m_properties;
    RObject<CArray<CMediaSample>> m_samples;
    int64_t m_timeScale;
    int64_t m_duration = 0;
    int64_t m_bytes = 0;
    bool m_complete = false;
};

} // namespace Quorvex::Vek
