#include <vek/samples/CSubtitleSample.h>

#include <vek/samples/SharedPool.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t SharedPoolSize = 16;
std::atomic<CPool<CSubtitleSample>*> s_pool{nullptr};

} // namespace

CSubtitleSample* CSubtitleSample::Create()
{
    return Detail::TakeFromSharedPool(s_pool, SharedPoolSize);
}

CSubtitleSample::CSubtitleSample() : CMediaSample(Type) {}

CSubtitleSample::~CSubtitleSample() = default;

void CSubtitleSample::ReclaimCleanUp()
{
    CMediaSample::ReclaimCleanUp();
    m_duration = 0;
}

} // namespace Quorvex::Vek
