// CMpeg4AvcContainerReader over arbitrary bytes: probe, index, read every
// access unit and fetch its bytes. Whatever the bytes, the reader must end
// in a result code, every sample must lie inside the file and carry the
// bytes it says, and an index failure must leave no track.
#include "AudioReaderFuzz.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "Mpeg4AvcReaderFuzz: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace Quorvex::Vek;
    // As probing does: the reader that validated the stream indexes it.
    int score = 0;
    RObject<CMpeg4AvcContainerReader> reader = VekFuzz::OpenFuzzedFile<CMpeg4AvcContainerReader>(data, size, &score);
    if (!reader)
        return 0;
    Check(score >= 0 && score <= CMpeg4AvcContainerReader::StartScore, "a score out of range");
    CMpeg4AvcContainerReader* indexing = reader.Get();
    if (indexing->BeginIndex() < 0) {
        Check(indexing->GetVideoMediaCount() == 0, "a failed index left a track");
        return 0;
    }
    Check(indexing->GetVideoMediaCount() == 1, "an index pass made no track");
    // Every access unit holds at least a start code and a NAL header.
    for (size_t count = 0; count <= size / 4 + 1; ++count) {
        CVideoSample* raw = nullptr;
        const int result = indexing->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (result < 0 || !sample)
            return 0;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range && range->IsType(CMpeg4AvcDataReference::Type), "a sample without its H.264 range");
        Check(range->GetLength() > 0, "a sample without bytes");
        Check(uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size, "a sample beyond the file");
        Check(indexing->ReadVideoData(0, sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than start codes");
    return 0;
}
