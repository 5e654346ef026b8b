#include <vek/core/Log.h>
#include <vek/filters/VideoMetadataQueue.h>

namespace Quorvex::Vek {

VideoMetadataQueue* VideoMetadataQueue::Create(int32_t ringCapacity)
{
    RObject<VideoMetadataQueue> queue(new (fallible) VideoMetadataQueue());
    if (!queue)
        return nullptr;
    queue->m_ring = RObject<CQueue<CMetadata>>(CQueue<CMetadata>::Create(ringCapacity < 1 ? 1 : ringCapacity));
    if (!queue->m_ring)
        return nullptr;
    return queue.Detach();
}

VideoMetadataQueue::VideoMetadataQueue() : CObject(Type) {}

VideoMetadataQueue::~VideoMetadataQueue() = default;

VideoMetadataQueue::Record VideoMetadataQueue::Capture(CVideoSample* sample)
{
    Record record;
    record.original = RObject<const CMediaSample>::FromObject(sample->GetOriginal());
    record.time = sample->GetTime();
    record.duration = int32_t(sample->GetDuration());
    record.hint = sample->GetHint();
    record.trim = sample->GetTrim();
    record.compositionOffset = sample->GetCompositionOffset();
    record.frameNumber = sample->GetFrameNumber();
    record.pictureType = sample->GetPictureType();
    record.pictureStructure = sample->GetPictureStructure();
    return record;
}

void VideoMetadataQueue::Apply(const Record& record, CVideoSample* output)
{
    output->SetOriginal(record.original); // cannot loop: a record never holds the output itself
    output->SetMetadata(record.metadata);
    output->SetFrameNumber(record.frameNumber);
    output->SetPictureType(record.pictureType);
    output->SetPictureStructure(record.pictureStructure);
    output->SetHint(record.hint);
    output->SetTrim(record.trim);
    output->SetTime(record.time);
    output->SetDuration(record.duration);
    output->SetCompositionOffset(record.compositionOffset);
}

int VideoMetadataQueue::Enqueue(CVideoSample* sample, int32_t& key)
{
    key = 0;
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    Record record = Capture(sample);
    RObject<CMetadata> whole(sample->GetMetadata() ? nullptr : CMetadata::Create());
    CMetadata* source = sample->GetMetadata() ? sample->GetMetadata() : whole.Get();
    CMetadata* ringPart = nullptr;
    CMetadata* framePart = nullptr;
    if (!source || source->Split(ringPart, framePart) < 0) {
        Log(LogLevel::Error, "VideoMetadataQueue::Enqueue: no memory to keep a picture's metadata\n");
        return RESULT_OUT_OF_MEMORY;
    }
    RObject<CMetadata> ordered(ringPart);
    record.metadata = RObject<CMetadata>(framePart);

    CAutoLock lock(this);
    record.key = m_lastKey + 1;
    if (!m_records.Insert(m_records.Count(), std::move(record))) {
        Log(LogLevel::Error, "VideoMetadataQueue::Enqueue: no memory for a record\n");
        return RESULT_OUT_OF_MEMORY;
    }
    m_lastKey = m_records[m_records.Count() - 1].key;
    if (m_ring->Enqueue(ordered) == RESULT_QUEUE_OVERFLOW)
        Log(LogLevel::Detail, "VideoMetadataQueue::Enqueue: the ring is full; the ordered metadata of picture %d is dropped\n",
            int(m_lastKey));
    key = m_lastKey;
    return RESULT_OK;
}

int32_t VideoMetadataQueue::FindRecord(int32_t key) const
{
    for (int32_t i = 0; i < m_records.Count(); ++i)
        if (m_records[i].key == key)
            return i;
    return -1;
}

int VideoMetadataQueue::MergeRingPart(Record& record)
{
    CMetadata* part = nullptr;
    if (m_ring->Dequeue(part) < 0)
        return RESULT_OK;
    RObject<CMetadata> owned(part);
    if (!record.metadata) {
        record.metadata = std::move(owned);
        return RESULT_OK;
    }
    return record.metadata->Merge(part);
}

int VideoMetadataQueue::DequeueAndMerge(CVideoSample* output, int32_t key)
{
    if (!output)
        return RESULT_ARGUMENT_NULL;
    CAutoLock lock(this);
    const int32_t index = FindRecord(key);
    if (index < 0) {
        Log(LogLevel::Error, "VideoMetadataQueue::DequeueAndMerge: no record for key %d\n", int(key));
        return RESULT_UNEXPECTED;
    }
    Record record = m_records.Take(index);
    const int merged = MergeRingPart(record);
    if (merged < 0)
        Log(LogLevel::Warning, "VideoMetadataQueue::DequeueAndMerge: ordered metadata of key %d not merged: %s\n",
            int(key), GetResultName(merged));
    Apply(record, output);
    return RESULT_OK;
}

void VideoMetadataQueue::Clear()
{
    CAutoLock lock(this);
    m_records.Clear();
    m_ring->Clear();
    m_lastKey = 0;
}

int32_t VideoMetadataQueue::GetRecordCount()
{
    CAutoLock lock(this);
    return m_records.Count();
}

int32_t VideoMetadataQueue::GetRingCount()
{
    CAutoLock lock(this);
    return m_ring->GetCount();
}

} // namespace Quorvex::Vek
