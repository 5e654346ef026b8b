#pragma once

// Runs a single-track audio reader over a file held in memory, the way a
// host does: a memory stream, a stream context, BeginIndex, then every
// sample with its bytes fetched through ReadAudioData.
#include <gtest/gtest.h>

#include <support/AllocationWalk.h>
#include <support/AudioFileBuilder.h>
#include <vek/Vek.h>

#include <cstring>
#include <vector>

namespace VekTest {

struct SampleSpan {
    int64_t position;
    int32_t length;
    int32_t packets;
    int32_t frames;
    int64_t time;
};

template <typename Reader>
struct Opened {
    Quorvex::Vek::RObject<Reader> reader;
    int result = 0;
};

template <typename Reader>
Opened<Reader> OpenReader(const Bytes& file)
{
    using namespace Quorvex::Vek;
    Opened<Reader> opened;
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    RObject<CString> name(CString::Create("memory"));
    RObject<CContainerStreamContext> context(stream && name ? CContainerStreamContext::Create(stream, name) : nullptr);
    opened.reader = RObject<Reader>(new Reader());
    // A memory stream whose buffer could not be had is empty.
    if (!context || !opened.reader || stream->GetLength() != int64_t(file.size())) {
        opened.result = RESULT_OUT_OF_MEMORY;
        return opened;
    }
    opened.result = opened.reader->SetContext(context);
    if (opened.result >= 0)
        opened.result = opened.reader->BeginIndex();
    return opened;
}

// Every sample to the end, checking that each one's bytes are the file's
// bytes at its range. Stops at the first failing read (its code in *last).
inline std::vector<SampleSpan> ReadAllSamples(Quorvex::Vek::CContainerReader* reader, const Bytes& file,
                                              int* last = nullptr)
{
    using namespace Quorvex::Vek;
    std::vector<SampleSpan> spans;
    for (;;) {
        CAudioSample* raw = nullptr;
        const int result = reader->ReadAudioSample(0, raw);
        RObject<CAudioSample> sample(raw);
        if (last)
            *last = result;
        if (result < 0 || !sample)
            break;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        spans.push_back({range->GetPosition(), range->GetLength(), sample->GetPackets(), sample->GetFrames(),
                         sample->GetTime()});
        EXPECT_EQ(reader->ReadAudioData(0, sample.Get()), RESULT_OK);
        auto* memory = static_cast<CMemoryDataReference*>(sample->GetDataReference());
        CByteArray* bytes = memory->GetBuffer();
        const SampleSpan& span = spans.back();
        EXPECT_EQ(bytes->GetLength(), span.length);
        EXPECT_LE(uint64_t(span.position) + uint64_t(span.length), file.size());
        if (bytes->GetLength() == span.length && uint64_t(span.position) + span.length <= file.size()) {
            EXPECT_EQ(std::memcmp(bytes->GetData(), file.data() + span.position, size_t(span.length)), 0)
                << "sample at " << span.position << " differs from the file";
        }
    }
    return spans;
}

inline std::vector<int32_t> PacketCounts(const std::vector<SampleSpan>& spans)
{
    std::vector<int32_t> counts;
    for (const SampleSpan& span : spans)
        counts.push_back(span.packets);
    return counts;
}

// The reader holds no track: what every failed BeginIndex must leave.
inline void ExpectNoTrack(Quorvex::Vek::CContainerReader* reader)
{
    using namespace Quorvex::Vek;
    EXPECT_EQ(reader->GetAudioMediaCount(), 0);
    EXPECT_EQ(reader->GetAudioProperties(0), nullptr);
    EXPECT_EQ(RObject<CValueList<unsigned int>>(reader->GetAudioFormats()).Get(), nullptr);
    CAudioSample* sample = nullptr;
    EXPECT_EQ(reader->ReadAudioSample(0, sample), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(sample, nullptr);
}

#if VEK_FAULT_INJECTION
// Open, index, read and fetch every sample with each allocation failing in
// turn: a run ends at the end of the data or at -19002, never elsewhere,
// and a failed index leaves no track.
template <typename Reader>
void WalkOpenIndexRead(const std::string& name, const Bytes& file)
{
    using namespace Quorvex::Vek;
    WalkAllocationFailures(name, [&] {
        auto opened = OpenReader<Reader>(file);
        if (opened.result < 0)
            return opened.result == RESULT_OUT_OF_MEMORY && (!opened.reader || opened.reader->GetAudioMediaCount() == 0);
        for (;;) {
            CAudioSample* raw = nullptr;
            int result = opened.reader->ReadAudioSample(0, raw);
            RObject<CAudioSample> sample(raw);
            if (result >= 0 && sample)
                result = opened.reader->ReadAudioData(0, sample.Get());
            if (result < 0 || !sample)
                return result == RESULT_OK || result == RESULT_OUT_OF_MEMORY;
        }
    });
}
#endif

} // namespace VekTest
