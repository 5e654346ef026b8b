#pragma once

// A filter's queue of finished samples, oldest first, made at the first
// sample queued and guarded by its own monitor around every push and pop,
// so one thread may queue while another reads. `capacity` 0 is unbounded.
#include <vek/core/CQueue.h>
#include <vek/filters/LazilyMadeObject.h>

namespace Quorvex::Vek {

template <typename Sample>
class OutputSampleQueue {
public:
    void SetCapacity(int32_t capacity) { m_capacity = capacity; }

    // Shares `sample`. -19004 for null, -19011 past the capacity, -19002.
    int Enqueue(Sample* sample)
    {
        if (!sample)
            return RESULT_ARGUMENT_NULL;
        CQueue<Sample>* queue = MakeQueue();
        if (!queue)
            return RESULT_OUT_OF_MEMORY;
        CObject::CAutoLock lock(queue);
        return queue->Enqueue(sample);
    }
    // 0 with the oldest sample in `sample` (the caller's reference now), 1
    // when the queue is empty.
    int Dequeue(Sample*& sample)
    {
        sample = nullptr;
        CQueue<Sample>* queue = m_queue.Get();
        if (!queue)
            return 1;
        CObject::CAutoLock lock(queue);
        return queue->Dequeue(sample) == RESULT_OK ? RESULT_OK : 1;
    }
    void Clear()
    {
        CQueue<Sample>* queue = m_queue.Get();
        if (!queue)
            return;
        CObject::CAutoLock lock(queue);
        queue->Clear();
    }
    int32_t GetCount()
    {
        CQueue<Sample>* queue = m_queue.Get();
        if (!queue)
            return 0;
        CObject::CAutoLock lock(queue);
        return queue->GetCount();
    }

private:
    CQueue<Sample>* MakeQueue()
    {
        return m_queue.GetOrMake([this] { return CQueue<Sample>::Create(m_capacity); });
    }

    LazilyMadeObject<CQueue<Sample>> m_queue;
    int32_t m_capacity = 0;
};

} // namespace Quorvex::Vek
