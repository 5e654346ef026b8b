#include <vek/containers/CVideoIndexer.h>

#include <algorithm>

namespace Quorvex::Vek {

CVideoIndexer::CVideoIndexer(CVideoProperties* properties) : CMediaIndexer(Type, properties) {}

CVideoIndexer::~CVideoIndexer() = default;

CVideoIndexer* CVideoIndexer::Create(CVideoProperties* properties)
{
    if (!properties)
        return nullptr;
    RObject<CVideoIndexer> indexer(new (fallible) CVideoIndexer(properties));
    if (!indexer || !indexer->Initialize())
        return nullptr;
    return indexer.Detach();
}

int CVideoIndexer::Comparer(const CVideoSample* a, const CVideoSample* b)
{
    // Both the cut and the difference are taken in 32 bits, wrapping.
    const uint32_t timeA = uint32_t(a->GetCompositionTime());
    const uint32_t timeB = uint32_t(b->GetCompositionTime());
    const int32_t byTime = int32_t(timeA - timeB);
    if (byTime != 0)
        return byTime;
    return int32_t(uint32_t(a->GetCompositionOffset()) - uint32_t(b->GetCompositionOffset()));
}

int CVideoIndexer::AddSample(CVideoSample* sample)
{
    CAutoLock lock(this);
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    if (IsCompleteLocked())
        return RESULT_BAD_ORDER_ERROR;
    if (sample->GetPictureType() == CVideoSample::I && Count() > m_groupStart) {
        const int result = OnGroupComplete();
        if (result < 0)
            return result;
    }
    // Room for the presentation slot first, so that a failure leaves the
    // two arrays in step.
    const int32_t capacity = m_presentation.Capacity();
    if (m_presentation.Count() == capacity && !m_presentation.Reserve(capacity < 4 ? 4 : capacity * 2))
        return RESULT_OUT_OF_MEMORY;
    const int result = Append(sample);
    if (result < 0)
        return result;
    int32_t index = Count() - 1;
    m_presentation.Insert(index, std::move(index));
    if (sample->GetPictureStructure() == CVideoSample::Frame)
        ++m_frames;
    else
        ++m_fields;
    if (sample->GetPictureType() != CVideoSample::I)
        m_predictive = true;
    return RESULT_OK;
}

int CVideoIndexer::OnGroupComplete()
{
    const int32_t length = Count() - m_groupStart;
    if (length > 1) {
        const int result = SortGroup(m_presentation.Data() + m_groupStart, length);
        if (result < 0)
            return result;
    }
    m_groupStart = Count();
    return RESULT_OK;
}

bool CVideoIndexer::Precedes(int32_t left, int32_t right) const
{
    CMediaSample* const* samples = Samples();
    return Comparer(static_cast<const CVideoSample*>(samples[left]), static_cast<const CVideoSample*>(samples[right])) <
           0;
}

// Bottom-up merge sort: stable, n log n on any input (a hostile file may
// put its whole track in one group), and allocation-free once the scratch
// has grown to the longest group.
int CVideoIndexer::SortGroup(int32_t* ranks, int32_t count)
{
    if (!m_scratch.Reserve(count))
        return RESULT_OUT_OF_MEMORY;
    int32_t* from = ranks;
    int32_t* to = m_scratch.Data();
    for (int32_t width = 1; width < count; width *= 2) {
        for (int32_t low = 0; low < count; low += 2 * width) {
            const int32_t middle = std::min(low + width, count);
            const int32_t high = std::min(low + 2 * width, count);
            int32_t left = low;
            int32_t right = middle;
            for (int32_t out = low; out < high; ++out) {
                // Equal keys take the left run first: that keeps the sort stable.
                if (left < middle && (right >= high || !Precedes(from[right], from[left])))
                    to[out] = from[left++];
                else
                    to[out] = from[right++];
            }
        }
        std::swap(from, to);
    }
    if (from != ranks)
        std::copy(from, from + count, ranks);
    return RESULT_OK;
}

int CVideoIndexer::OnComplete()
{
    CAutoLock lock(this);
    // The track completes even when the last group cannot be sorted: it
    // then has no presentation order, and the failure is returned.
    const int sorted = IsCompleteLocked() ? RESULT_OK : OnGroupComplete();
    const int result = CMediaIndexer::OnComplete();
    return sorted < 0 ? sorted : result;
}

int CVideoIndexer::GetSample(int32_t index, CVideoSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSample(index, media);
    sample = static_cast<CVideoSample*>(media);
    return result;
}

int CVideoIndexer::GetSampleAtTime(int64_t time, int32_t& index, CVideoSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSampleAtTime(time, index, media);
    sample = static_cast<CVideoSample*>(media);
    return result;
}

int CVideoIndexer::GetPresentationIndex(int32_t rank, int32_t& index)
{
    CAutoLock lock(this);
    index = -1;
    if (rank < 0 || rank >= m_groupStart)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    index = m_presentation[rank];
    return RESULT_OK;
}

int CVideoIndexer::GetGroupStart(int32_t index, int32_t& start)
{
    CAutoLock lock(this);
    start = -1;
    if (index < 0 || index >= Count())
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    CMediaSample* const* samples = Samples();
    while (index > 0 && static_cast<const CVideoSample*>(samples[index])->GetPictureType() != CVideoSample::I)
        --index;
    start = index;
    return RESULT_OK;
}

int32_t CVideoIndexer::GetFrameCount()
{
    CAutoLock lock(this);
    return m_frames + m_fields / 2 + m_fields % 2;
}

bool CVideoIndexer::HasPredictiveSamples()
{
    CAutoLock lock(this);
    return m_predictive;
}

int CVideoIndexer::GetNextMinimumPresentationTime(int32_t index, int64_t& time)
{
    CAutoLock lock(this);
    if (index < 0 || index >= Count())
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    CMediaSample* const* samples = Samples();
    const int32_t end = int32_t(std::min<int64_t>(Count(), int64_t(index) + ReorderWindow));
    time = samples[index]->GetCompositionTime();
    for (int32_t i = index + 1; i < end; ++i)
        time = std::min(time, samples[i]->GetCompositionTime());
    return RESULT_OK;
}

} // namespace Quorvex::Vek
