#include <vek/filters/CAudioCompressor.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CAudioCompressor);

namespace Quorvex::Vek {

CAudioCompressor::CAudioCompressor(uint32_t type) : CAudioFilter(type) {}

CAudioCompressor::~CAudioCompressor() = default;

int CAudioCompressor::Compress(CAudioSample* input, CAudioSample*& output)
{
    return WriteAndRead(input, output);
}

} // namespace Quorvex::Vek
