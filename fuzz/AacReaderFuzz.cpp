// CAacContainerReader over arbitrary bytes: see AudioReaderFuzz.h.
#include "AudioReaderFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return VekFuzz::RunAudioReader<Quorvex::Vek::CAacContainerReader>(data, size);
}
