// CAc3ContainerReader over arbitrary bytes: see AudioReaderFuzz.h.
#include "AudioReaderFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return VekFuzz::RunAudioReader<Quorvex::Vek::CAc3ContainerReader>(data, size);
}
