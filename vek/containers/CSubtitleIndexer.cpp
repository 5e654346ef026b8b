#include <vek/containers/CSubtitleIndexer.h>

namespace Quorvex::Vek {

CSubtitleIndexer::CSubtitleIndexer(CSubtitleProperties* properties) : CMediaIndexer(Type, properties) {}

CSubtitleIndexer::~CSubtitleIndexer() = default;

CSubtitleIndexer* CSubtitleIndexer::Create(CSubtitleProperties* properties)
{
    if (!properties)
        return nullptr;
    RObject<CSubtitleIndexer> indexer(new (fallible) CSubtitleIndexer(properties));
    if (!indexer || !indexer->Initialize())
        return nullptr;
    return indexer.Detach();
}

int CSubtitleIndexer::AddSample(CSubtitleSample* sample)
{
    CAutoLock lock(this);
    return Append(sample);
}

int CSubtitleIndexer::GetSample(int32_t index, CSubtitleSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSample(index, media);
    sample = static_cast<CSubtitleSample*>(media);
    return result;
}

int CSubtitleIndexer::GetSampleAtTime(int64_t time, int32_t& index, CSubtitleSample*& sample)
{
    CMediaSample* media = nullptr;
    const int result = CMediaIndexer::GetSampleAtTime(time, index, media);
    sample = static_cast<CSubtitleSample*>(media);
    return result;
}

} // namespace Quorvex::Vek
