#include <vek/samples/CMediaSampleQueue.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

namespace {

int32_t RoundUpToPowerOfTwo(int32_t value)
{
    int32_t power = 1;
    while (power < value)
        power <<= 1;
    return power;
}

} // namespace

CMediaSampleQueue* CMediaSampleQueue::Create(int32_t capacity)
{
    if (capacity < 1 || capacity > MaxCapacity) {
        Log(LogLevel::Error, "CMediaSampleQueue::Create: capacity %d outside 1..%d\n", capacity, MaxCapacity);
        return nullptr;
    }
    const int32_t slotCount = RoundUpToPowerOfTwo(capacity);
    auto** slots = new (fallible) CMediaSample*[slotCount]();
    auto* queue = slots ? new (fallible) CMediaSampleQueue(slots, slotCount) : nullptr;
    if (!queue) {
        delete[] slots;
        Log(LogLevel::Error, "CMediaSampleQueue::Create: no memory for %d slots\n", slotCount);
    }
    return queue;
}

CMediaSampleQueue::CMediaSampleQueue(CMediaSample** slots, int32_t capacity)
    : CObject(Type), m_slots(slots), m_mask(capacity - 1)
{
}

CMediaSampleQueue::~CMediaSampleQueue()
{
    Clear();
    delete[] m_slots;
}

int CMediaSampleQueue::Enqueue(CMediaSample* sample)
{
    if (m_count > m_mask) {
        Log(LogLevel::Error, "CMediaSampleQueue::Enqueue: all %d slots taken\n", GetCapacity());
        return RESULT_ARRAY_FULL;
    }
    if (sample)
        sample->Acquire();
    m_slots[(m_head + m_count) & m_mask] = sample;
    ++m_count;
    m_duration += DurationOf(sample);
    return RESULT_OK;
}

int CMediaSampleQueue::Requeue(CMediaSample* sample)
{
    if (m_count > m_mask) {
        Log(LogLevel::Error, "CMediaSampleQueue::Requeue: all %d slots taken\n", GetCapacity());
        return RESULT_ARRAY_FULL;
    }
    if (sample)
        sample->Acquire();
    m_head = (m_head - 1) & m_mask;
    m_slots[m_head] = sample;
    ++m_count;
    const int64_t duration = DurationOf(sample);
    m_time -= duration;
    m_duration += duration;
    return RESULT_OK;
}

CMediaSample* CMediaSampleQueue::Dequeue()
{
    if (m_count == 0)
        return nullptr;
    CMediaSample* sample = m_slots[m_head];
    m_slots[m_head] = nullptr;
    m_head = (m_head + 1) & m_mask;
    --m_count;
    const int64_t duration = DurationOf(sample);
    m_duration -= duration;
    m_time += duration;
    return sample;
}

void CMediaSampleQueue::Clear()
{
    while (m_count > 0) {
        CMediaSample* sample = m_slots[m_head];
        m_slots[m_head] = nullptr;
        m_head = (m_head + 1) & m_mask;
        --m_count;
        if (sample)
            sample->Release();
    }
    m_duration = 0;
}

} // namespace Quorvex::Vek
