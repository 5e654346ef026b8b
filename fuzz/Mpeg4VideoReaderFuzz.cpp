// CMpeg4VideoContainerReader over arbitrary bytes: see VideoReaderFuzz.h.
#include "VideoReaderFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return VekFuzz::RunVideoReader<Quorvex::Vek::CMpeg4VideoContainerReader>(data, size);
}
