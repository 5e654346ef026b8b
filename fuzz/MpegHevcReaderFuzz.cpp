// CMpegHevcContainerReader over arbitrary bytes, as a host uses it: probe,
// index, read every access unit and fetch its bytes. Whatever the bytes,
// the reader must end in a result code; every sample must lie inside the
// file, carry its bytes and keep decode times rising; a failed index must
// leave no track.
#include "AudioReaderFuzz.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "MpegHevcReaderFuzz: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace Quorvex::Vek;
    RObject<CMpegHevcContainerReader> reader = VekFuzz::OpenFuzzedFile<CMpegHevcContainerReader>(data, size);
    if (!reader)
        return 0;
    if (reader->BeginIndex() < 0) {
        Check(reader->GetVideoMediaCount() == 0, "a failed index left a track");
        return 0;
    }
    Check(reader->GetVideoMediaCount() == 1, "an index pass made no track");
    int64_t lastTime = -1;
    // Every access unit holds at least a start code and a slice header.
    for (size_t count = 0; count <= size / 4 + 1; ++count) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (result < 0 || !sample)
            return 0;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range && range->IsType(CMpegHevcDataReference::Type) && range->GetLength() > 0, "a sample without bytes");
        Check(uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size, "a sample beyond the file");
        Check(sample->GetTime() > lastTime, "decode times do not rise");
        lastTime = sample->GetTime();
        Check(reader->ReadVideoData(0, sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than the bytes can hold");
    return 0;
}
