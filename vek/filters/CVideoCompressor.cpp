#include <vek/filters/CVideoCompressor.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CVideoCompressor);

namespace Quorvex::Vek {

CVideoCompressor::CVideoCompressor(uint32_t type) : CVideoFilter(type) {}

CVideoCompressor::~CVideoCompressor() = default;

int CVideoCompressor::Compress(CVideoSample* input, CVideoSample*& output)
{
    return WriteAndRead(input, output);
}

int CVideoCompressor::ForceKeyFrame()
{
    m_requests.ForceKeyFrame();
    return RESULT_OK;
}

int CVideoCompressor::SecondFrameInPair(bool second)
{
    m_requests.SetSecondFrameInPair(second);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
