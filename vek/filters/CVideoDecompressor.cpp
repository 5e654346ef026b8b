#include <vek/filters/CVideoDecompressor.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CVideoDecompressor);

namespace Quorvex::Vek {

CVideoDecompressor::CVideoDecompressor(uint32_t type) : CVideoFilter(type) {}

CVideoDecompressor::~CVideoDecompressor() = default;

int CVideoDecompressor::Decompress(CVideoSample* input, CVideoSample*& output, uint32_t& flags)
{
    const int result = WriteAndRead(input, output);
    flags = GetPendingOutputSamples() > 0 ? MoreOutputSamplesReady : 0;
    return result;
}

int CVideoDecompressor::ForceKeyFrame()
{
    m_requests.ForceKeyFrame();
    return RESULT_OK;
}

int CVideoDecompressor::SecondFrameInPair(bool second)
{
    m_requests.SetSecondFrameInPair(second);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
