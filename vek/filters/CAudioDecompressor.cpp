#include <vek/filters/CAudioDecompressor.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CAudioDecompressor);

namespace Quorvex::Vek {

CAudioDecompressor::CAudioDecompressor(uint32_t type) : CAudioFilter(type) {}

CAudioDecompressor::~CAudioDecompressor() = default;

int CAudioDecompressor::Decompress(CAudioSample* input, CAudioSample*& output, uint32_t& flags)
{
    const int result = WriteAndRead(input, output);
    flags = GetPendingOutputSamples() > 0 ? MoreOutputSamplesReady : 0;
    return result;
}

} // namespace Quorvex::Vek
