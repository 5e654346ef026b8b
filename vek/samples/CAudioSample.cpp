#include <vek/samples/CAudioSample.h>

#include <vek/samples/SharedPool.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t SharedPoolSize = 64;
std::atomic<CPool<CAudioSample>*> s_pool{nullptr};

} // namespace

CAudioSample* CAudioSample::Create()
{
    return Detail::TakeFromSharedPool(s_pool, SharedPoolSize);
}

CAudioSample::CAudioSample() : CMediaSample(Type) {}

CAudioSample::CAudioSample(int32_t packets, int32_t frames) : CMediaSample(Type), m_packets(packets), m_frames(frames)
{
}

CAudioSample::~CAudioSample() = default;

void CAudioSample::ReclaimCleanUp()
{
    CMediaSample::ReclaimCleanUp();
    m_packets = 0;
    m_frames = 0;
}

} // namespace Quorvex::Vek
