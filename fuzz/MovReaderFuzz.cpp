// CMovContainerReader over arbitrary bytes: see MovieReaderFuzz.h.
#include "MovieReaderFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return VekFuzz::RunMovieReader<Quorvex::Vek::CMovContainerReader>(data, size);
}
