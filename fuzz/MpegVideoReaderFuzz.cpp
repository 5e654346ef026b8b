// The raw MPEG-1 and MPEG-2 video readers over arbitrary bytes: the input as
// an in-memory file behind a stream context, then what a host does with it
// (probe, index, read every access unit and fetch its bytes), once with
// each reader. Whatever the bytes, a reader must end in a result code:
// every sample lies inside the file, carries the bytes it says and has a
// duration, and a failed index leaves no track.
#include "AudioReaderFuzz.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace Quorvex::Vek;

void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "MpegVideoReaderFuzz: %s\n", what);
        std::abort();
    }
}

template <typename Reader>
void Run(const uint8_t* data, size_t size)
{
    int score = 0;
    RObject<Reader> reader = VekFuzz::OpenFuzzedFile<Reader>(data, size, &score);
    if (!reader)
        return;
    Check(score >= 0 && score <= CMpegVideoStreamReader::ExactScore, "a score out of range");
    if (reader->BeginIndex() < 0) {
        Check(reader->GetVideoMediaCount() == 0, "a failed index left a track");
        return;
    }
    Check(reader->GetVideoMediaCount() == 1, "an index pass made no track");
    // An access unit holds at least a picture header: fewer than one per
    // four bytes, or the walk has stopped advancing.
    for (size_t count = 0; count <= size / 4 + 1; ++count) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (result < 0 || !sample)
            return;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range && range->GetLength() > 0, "a sample without bytes");
        Check(uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size, "a sample beyond the file");
        Check(sample->GetDuration() > 0, "a sample without a duration");
        Check(reader->ReadVideoData(0, sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than the bytes can hold");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > (1u << 20))
        return 0;
    Run<CMpeg1VideoContainerReader>(data, size);
    Run<CMpeg2VideoContainerReader>(data, size);
    return 0;
}
