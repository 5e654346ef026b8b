#include <vek/core/Log.h>
#include <vek/filters/AudioMetadataQueue.h>

namespace Quorvex::Vek {

AudioMetadataQueue* AudioMetadataQueue::Create()
{
    RObject<AudioMetadataQueue> queue(new (fallible) AudioMetadataQueue());
    if (!queue)
        return nullptr;
    queue->m_records = RObject<CQueue<Record>>(CQueue<Record>::Create());
    return queue->m_records ? queue.Detach() : nullptr;
}

AudioMetadataQueue::AudioMetadataQueue() : CObject(Type) {}

AudioMetadataQueue::~AudioMetadataQueue() = default;

int AudioMetadataQueue::Enqueue(CAudioSample* sample)
{
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    Record record;
    record.time = sample->GetTime();
    record.hint = sample->GetHint();
    record.trim = sample->GetTrim();
    record.metadata = RObject<CMetadata>::FromObject(sample->GetMetadata());
    CAutoLock lock(this);
    const int result = m_records->Enqueue(record);
    if (result < 0)
        Log(LogLevel::Error, "AudioMetadataQueue::Enqueue: cannot keep a record: %s\n", GetResultName(result));
    return result;
}

// The first non-empty metadata is copied (it may still belong to an input
// sample); later ones are merged into the copy.
int AudioMetadataQueue::MergeInto(RObject<CMetadata>& merged, CMetadata* next)
{
    if (!next)
        return RESULT_OK;
    if (!merged) {
        merged = RObject<CMetadata>(next->Clone());
        return merged ? RESULT_OK : RESULT_OUT_OF_MEMORY;
    }
    return merged->Merge(next);
}

int AudioMetadataQueue::Dequeue(CAudioSample* output)
{
    if (!output)
        return RESULT_NULL_POINTER;
    CAutoLock lock(this);
    Record first;
    if (m_records->Dequeue(first) < 0)
        return 1;
    RObject<CMetadata> merged;
    int result = MergeInto(merged, first.metadata);
    Record next;
    while (m_records->Dequeue(next) == RESULT_OK) {
        if (result >= 0)
            result = MergeInto(merged, next.metadata);
    }
    if (result < 0)
        Log(LogLevel::Error, "AudioMetadataQueue::Dequeue: metadata of the merged buffers lost: %s\n",
            GetResultName(result));
    output->SetTrim(first.trim);
    output->SetTime(first.time);
    output->SetHint(first.hint);
    output->SetMetadata(merged);
    return result == RESULT_OUT_OF_MEMORY ? result : RESULT_OK;
}

void AudioMetadataQueue::Clear()
{
    CAutoLock lock(this);
    m_records->Clear();
}

int32_t AudioMetadataQueue::GetCount()
{
    CAutoLock lock(this);
    return m_records->GetCount();
}

} // namespace Quorvex::Vek
