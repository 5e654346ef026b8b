#pragma once

// The body of the audio reader fuzz targets: the input as an in-memory file
// behind a stream context, then what a host does with it: probe, index,
// read every sample and fetch its bytes. Whatever the bytes, the reader
// must end in a result code: every sample must lie inside the file and
// carry the bytes it says, and an index failure must leave no track.
#include <vek/Vek.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace VekFuzz {

inline void Check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "AudioReaderFuzz: %s\n", what);
        std::abort();
    }
}

// The input as an in-memory file behind a stream context, and a reader of
// that file that has validated the stream and holds the context, as a host
// gets it from probing. Null for inputs over 1 MiB or without memory.
template <typename Reader>
Quorvex::Vek::RObject<Reader> OpenFuzzedFile(const uint8_t* data, size_t size, int* score = nullptr)
{
    using namespace Quorvex::Vek;
    if (size > (1u << 20))
        return RObject<Reader>();
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(size), data));
    RObject<CString> name(CString::Create("fuzz"));
    RObject<CContainerStreamContext> context(CContainerStreamContext::Create(stream, name));
    RObject<Reader> reader(new Reader());
    if (!stream || !name || !context || !reader)
        return RObject<Reader>();
    const int validated = reader->Validate(stream);
    if (score)
        *score = validated;
    reader->SetContext(context);
    return reader;
}

template <typename Reader>
int RunAudioReader(const uint8_t* data, size_t size)
{
    using namespace Quorvex::Vek;
    RObject<Reader> reader = OpenFuzzedFile<Reader>(data, size);
    if (!reader)
        return 0;
    if (reader->BeginIndex() < 0) {
        Check(reader->GetAudioMediaCount() == 0, "a failed index left a track");
        return 0;
    }
    Check(reader->GetAudioMediaCount() == 1, "an index pass made no track");
    // At most one sample per byte of the file: a reader that hands out
    // more has stopped advancing.
    for (size_t count = 0; count <= size + 1; ++count) {
        CAudioSample* raw = nullptr;
        const int result = reader->ReadAudioSample(0, raw);
        RObject<CAudioSample> sample(raw);
        if (result < 0 || !sample)
            return 0;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        Check(range && range->GetLength() > 0, "a sample without bytes");
        Check(uint64_t(range->GetPosition()) + uint64_t(range->GetLength()) <= size, "a sample beyond the file");
        Check(reader->ReadAudioData(0, sample.Get()) == RESULT_OK, "a sample's bytes cannot be read");
    }
    Check(false, "more samples than bytes");
    return 0;
}

} // namespace VekFuzz
