#include <vek/containers/CAudioIndexer.h>

namespace Quorvex::Vek {

CAudioIndexer::CAudioIndexer(CAudioProperties* properties) : CMediaIndexer(Type, properties) {}

CAudioIndexer::~CAudioIndexer() = default;

CAudioIndexer* CAudioIndexer::Create(CAudioProperties* properties)
{
    if (!properties)
        return nullptr;
    RObject<CAudioIndexer> indexer(new (fallible) CAudioIndexer(properties));
    if (!indexer || !indexer->Initialize())
        return nullptr;
    return indexer.Detach();
}

int CAudioIndexer::AddSample(CAudioSample* sample)
{
    CAutoLock lock(this);
    return Append(sample);
}

int CAudioIndexer::GetSample(int32_t index, CAudioSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSample(index, media);
    sample = static_cast<CAudioSample*>(media);
    return result;
}

int CAudioIndexer::GetSampleAtTime(int64_t time, int32_t& index, CAudioSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSampleAtTime(time, index, media);
    sample = static_cast<CAudioSample*>(media);
    return result;
}

} // namespace Quorvex::Vek
