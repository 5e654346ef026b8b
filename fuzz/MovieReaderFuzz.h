#pragma once

// The body of the QuickTime and MP4 reader fuzz targets: the input as an
// in-memory file behind a stream context, then what a host does with it:
// probe, index, read every sample of every track and fetch its bytes.
// Whatever the bytes, the reader must end in a result code: every sample
// must lie inside the file and carry the bytes it says, a track's samples
// must not outnumber the file's bytes, and a failed index must leave no
// track.
#include "AudioReaderFuzz.h"

namespace VekFuzz {

// Reads one track to its end through `read` (a sample, or null at the end).
template <typename Sample, typename ReadSample, typename ReadData>
void DrainTrack(size_t size, ReadSample read, ReadData fetch)
{
    using namespace Quorvex::Vek;
    for (size_t count = 0; count <= size + 1; ++count) {
        Sample* raw = nullptr;
        const int result = read(raw);
        RObject<Sample> sample(raw);
        if (result < 0 || !sample)
            return;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range != nullptr, "a sample without a range");
        Check(range->GetPosition() >= 0 && uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size,
              "a sample beyond the file");
        Check(fetch(sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than bytes");
}

template <typename Reader>
int RunMovieReader(const uint8_t* data, size_t size)
{
    using namespace Quorvex::Vek;
    RObject<Reader> reader = OpenFuzzedFile<Reader>(data, size);
    if (!reader)
        return 0;
    if (reader->BeginIndex() < 0) {
        Check(reader->GetVideoMediaCount() + reader->GetAudioMediaCount() + reader->GetSubtitleMediaCount() == 0,
              "a failed index left a track");
        return 0;
    }
    for (int32_t track = 0; track < reader->GetVideoMediaCount(); ++track)
        DrainTrack<CVideoSample>(
            size, [&](CVideoSample*& s) { return reader->ReadVideoSample(track, s); },
            [&](CVideoSample* s) { return reader->ReadVideoData(track, s); });
    for (int32_t track = 0; track < reader->GetAudioMediaCount(); ++track)
        DrainTrack<CAudioSample>(
            size, [&](CAudioSample*& s) { return reader->ReadAudioSample(track, s); },
            [&](CAudioSample* s) { return reader->ReadAudioData(track, s); });
    for (int32_t track = 0; track < reader->GetSubtitleMediaCount(); ++track)
        DrainTrack<CSubtitleSample>(
            size, [&](CSubtitleSample*& s) { return reader->ReadSubtitleSample(track, s); },
            [&](CSubtitleSample* s) { return reader->ReadSubtitleData(track, s); });
    return 0;
}

} // namespace VekFuzz
