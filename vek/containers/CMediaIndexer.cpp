#include <vek/containers/CMediaIndexer.h>

#include <vek/core/CheckedMath.h>
#include <vek/samples/CContainerDataReference.h>

namespace Quorvex::Vek {

CMediaIndexer::CMediaIndexer(uint32_t type, CMediaProperties* properties)
    : CObject(type),
      m_properties(RObject<CMediaProperties>::FromObject(properties)),
      m_timeScale(properties ? properties->GetTimeScale() : CMediaProperties::DefaultTimeScale)
{
}

CMediaIndexer::~CMediaIndexer() = default;

bool CMediaIndexer::Initialize()
{
    m_samples = CArray<CMediaSample>::Create();
    return bool(m_samples);
}

int32_t CMediaIndexer::GetSampleCount()
{
    CAutoLock lock(this);
    return Count();
}

int64_t CMediaIndexer::GetDuration()
{
    CAutoLock lock(this);
    return m_duration;
}

double CMediaIndexer::GetDurationInSeconds()
{
    CAutoLock lock(this);
    return m_timeScale > 0 ? double(m_duration) / double(m_timeScale) : 0.0;
}

int64_t CMediaIndexer::GetBitRate()
{
    CAutoLock lock(this);
    if (m_duration <= 0 || m_timeScale <= 0)
        return 0;
    // In floating point: bytes * 8 * units-per-second overflows 64 bits for
    // long tracks at fine time scales.
    return int64_t(double(m_bytes) * 8.0 * double(m_timeScale) / double(m_duration));
}

bool CMediaIndexer::IsComplete()
{
    CAutoLock lock(this);
    return m_complete;
}

int CMediaIndexer::SampleAt(int32_t index, CMediaSample*& sample)
{
    sample = nullptr;
    if (Count() == 0)
        return m_complete ? RESULT_BEYOND_END_OF_SAMPLES : RESULT_BEYOND_INDEXER_PROGRESS;
    if (index < 0 || index >= Count())
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    sample = m_samples->Get(index);
    sample->Acquire();
    return RESULT_OK;
}

int CMediaIndexer::GetFirstSample(CMediaSample*& sample)
{
    CAutoLock lock(this);
    return SampleAt(0, sample);
}

int CMediaIndexer::GetLastSample(CMediaSample*& sample)
{
    CAutoLock lock(this);
    return SampleAt(Count() - 1, sample);
}

int CMediaIndexer::GetSample(int32_t index, CMediaSample*& sample)
{
    CAutoLock lock(this);
    return SampleAt(index, sample);
}

int CMediaIndexer::GetSampleAtTime(int64_t time, int32_t& index, CMediaSample*& sample)
{
    CAutoLock lock(this);
    index = -1;
    sample = nullptr;
    if (time < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (time >= m_duration || Count() == 0)
        return m_complete ? RESULT_BEYOND_END_OF_SAMPLES : RESULT_BEYOND_INDEXER_PROGRESS;
    int32_t lastMid = 0;
    int32_t found = BinarySearch(time, lastMid);
    if (found < 0)
        found = OutwardSearch(time, lastMid);
    if (found < 0)
        return RESULT_BEYOND_END_OF_SAMPLES;
    index = found;
    return SampleAt(found, sample);
}

// Samples are in decode order, so composition times are only nearly sorted:
// the search narrows to the neighbourhood and the outward search finishes.
int32_t CMediaIndexer::BinarySearch(int64_t time, int32_t& lastMid) const
{
    CMediaSample* const* samples = Samples();
    int32_t low = 0;
    int32_t high = Count();
    do {
        const int32_t mid = low + (high - low) / 2;
        lastMid = mid;
        if (samples[mid]->ContainsCompositionTime(time))
            return mid;
        if (time > samples[mid]->GetCompositionTime())
            low = mid;
        else
            high = mid;
    } while (high - low >= 2);
    return -1;
}

// Probes mid, mid+1, mid-1, mid+2, mid-2 ...: each step moves the previous
// position by a growing offset, alternately forward and back.
int32_t CMediaIndexer::OutwardSearch(int64_t time, int32_t mid) const
{
    CMediaSample* const* samples = Samples();
    const int64_t probes = int64_t(Count()) * 2;
    int64_t position = mid;
    int32_t examined = 0;
    for (int64_t probe = 0; probe < probes && examined < OutwardSearchSpan; ++probe) {
        if (probe > 0)
            position += (probe % 2 == 1) ? probe : -probe;
        if (position < 0 || position >= Count())
            continue;
        CMediaSample* sample = samples[position];
        if (sample->ContainsCompositionTime(time))
            return int32_t(position);
        if (sample->GetCompositionDuration() > 0)
            ++examined;
    }
    return -1;
}

int32_t CMediaIndexer::GetIndexAfterTime(int64_t time)
{
    CAutoLock lock(this);
    CMediaSample* const* samples = Samples();
    for (int32_t index = 0; index < Count(); ++index) {
        if (samples[index]->GetCompositionTime() > time)
            return index;
    }
    return Count();
}

int64_t CMediaIndexer::ByteLength(CMediaSample* sample)
{
    CMediaSampleDataReference* reference = sample->GetDataReference();
    if (!reference)
        return 0;
    // Ranges of the file, also those of the kinds that carry more (AVC and
    // HEVC NAL framing): their length is known without their bytes.
    if (auto* range = dynamic_cast<CContainerDataReference*>(reference))
        return range->GetLength();
    unsigned char* data = nullptr;
    int32_t length = 0;
    if (reference->Lock(data, length) < 0)
        return 0;
    reference->Unlock();
    return length;
}

int CMediaIndexer::Append(CMediaSample* sample)
{
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    if (m_complete)
        return RESULT_BAD_ORDER_ERROR;
    const int result = m_samples->Add(sample);
    if (result < 0)
        return result;
    int64_t end = 0;
    if (Checked::Add(sample->GetCompositionTime(), sample->GetCompositionDuration(), &end) && end > m_duration)
        m_duration = end;
    int64_t bytes = 0;
    if (Checked::Add(m_bytes, ByteLength(sample), &bytes))
        m_bytes = bytes;
    return RESULT_OK;
}

int CMediaIndexer::OnComplete()
{
    CAutoLock lock(this);
    m_complete = true;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
