#pragma once

// The body of the raw video stream reader fuzz targets: the input as an
// in-memory file behind a stream context, then what a host does with it:
// probe, index, read every sample and fetch its bytes. Whatever the bytes,
// the reader must end in a result code: every sample must lie inside the
// file, carry the bytes it says and a picture type and structure in range,
// decode times must not go backwards, and an index failure must leave no
// track.
#include "AudioReaderFuzz.h"

namespace VekFuzz {

template <typename Reader>
int RunVideoReader(const uint8_t* data, size_t size)
{
    using namespace Quorvex::Vek;
    RObject<Reader> reader = OpenFuzzedFile<Reader>(data, size);
    if (!reader)
        return 0;
    if (reader->BeginIndex() < 0) {
        Check(reader->GetVideoMediaCount() == 0, "a failed index left a track");
        return 0;
    }
    Check(reader->GetVideoMediaCount() == 1, "an index pass made no track");
    int64_t lastTime = INT64_MIN;
    // Every access unit holds at least a start code: at most one sample per
    // three bytes, plus slack.
    for (size_t count = 0; count <= size + 1; ++count) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (result < 0 || !sample)
            return 0;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range && range->GetLength() > 0, "a sample without bytes");
        Check(uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size, "a sample beyond the file");
        Check(sample->GetTime() >= lastTime, "decode time went backwards");
        lastTime = sample->GetTime();
        Check(sample->GetPictureType() >= CVideoSample::I && sample->GetPictureType() <= CVideoSample::B,
              "a picture type out of range");
        Check(reader->ReadVideoData(0, sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than bytes");
    return 0;
}

} // namespace VekFuzz
