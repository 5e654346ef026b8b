#pragma once

// A first-in, first-out ring of samples with a fixed number of slots (the
// capacity asked for, rounded up to a power of two), which also keeps two
// running times: the queue's time, reached by the durations of what has
// been taken out, and its duration, the sum of the durations still queued.
// A null sample may be queued (a drain marker) and counts for no time.
//
// The ring is allocated once, at Create: queueing and taking allocate
// nothing. Samples are held as counted references: Enqueue and Requeue
// share the sample, Dequeue hands the queue's reference to the caller. No
// member takes a lock: guard shared use with the queue's monitor.
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

class VEK_API CMediaSampleQueue : public CObject {
public:
    enum : uint32_t { Type = Four("msqu") };
    enum : int32_t { MaxCapacity = 1 << 20 };

    // A new queue with 2^ceil(log2(capacity)) slots; null for a capacity
    // outside 1..MaxCapacity or without memory.
    static CMediaSampleQueue* Create(int32_t capacity);

    int32_t GetCapacity() const { return m_mask + 1; }
    int32_t GetCount() const { return m_count; }
    bool IsEmpty() const { return m_count == 0; }

    // Adds at the tail: -19008 when every slot is taken.
    int Enqueue(CMediaSample* sample);
    // Puts a sample taken out back at the head, its duration moved back from
    // the time into the duration: -19008 when every slot is taken.
    int Requeue(CMediaSample* sample);
    // The oldest sample (the caller owns the reference), its duration moved
    // from the duration into the time; null when empty or for a queued null.
    virtual CMediaSample* Dequeue();
    // Drops every queued sample; the times stay as they are.
    virtual void Clear();

    int64_t GetTime() const { return m_time; }
    int64_t GetDuration() const { return m_duration; }
    void SetTime(int64_t time) { m_time = time; }

protected:
    CMediaSampleQueue(CMediaSample** slots, int32_t capacity);
    ~CMediaSampleQueue() override;

private:
    static int64_t DurationOf(const CMediaSample* sample) { return sample ? sample->GetDuration() : 0; }

    CMediaSample** m_slots;
    int32_t m_mask;
    int32_t m_head = 0;
    int32_t m_count = 0;
    int64_t m_time = 0;
    int64_t m_duration = 0;
};

} // namespace Quorvex::Vek
