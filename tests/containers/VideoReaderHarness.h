#pragma once

// Runs a raw video stream reader over a file the way a host does and
// compares what it finds with ffprobe's view of the same file: every
// access unit's position, size and key flag with ffprobe's packets, and the
// order of presentation with the order ffprobe's decoder outputs frames.
#include "AudioReaderHarness.h"
#include "elementary/ExternalStreams.h"

#include <algorithm>
#include <sstream>

namespace VekTest {

struct VideoSpan {
    int64_t position;
    int32_t length;
    int64_t time;
    int64_t presentation;
    int64_t duration;
    int32_t type;
    bool key;
    bool excluded;
};

// Every sample to the end, checking each one's bytes against the file.
// Stops at the first failing read (its code in *last).
inline std::vector<VideoSpan> ReadAllVideoSamples(Quorvex::Vek::CContainerReader* reader, const Bytes& file,
                                                  int* last = nullptr)
{
    using namespace Quorvex::Vek;
    std::vector<VideoSpan> spans;
    for (;;) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (last)
            *last = result;
        if (result < 0 || !sample)
            break;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        const int32_t hint = sample->GetHint();
        spans.push_back({range->GetPosition(), range->GetLength(), sample->GetTime(), sample->GetCompositionTime(),
                         sample->GetDuration(), sample->GetPictureType(),
                         (hint & CMediaSample::KeyFrameAligned) != 0, (hint & CMediaSample::Exclude) != 0});
        EXPECT_EQ(reader->ReadVideoData(0, sample.Get()), RESULT_OK);
        CByteArray* bytes = static_cast<CMemoryDataReference*>(sample->GetDataReference())->GetBuffer();
        const VideoSpan& span = spans.back();
        EXPECT_LE(uint64_t(span.position) + uint64_t(span.length), file.size());
        if (bytes && bytes->GetLength() == span.length && uint64_t(span.position) + span.length <= file.size()) {
            EXPECT_EQ(std::memcmp(bytes->GetData(), file.data() + span.position, size_t(span.length)), 0)
                << "sample at " << span.position << " differs from the file";
        }
    }
    return spans;
}

struct ProbedPacket {
    int64_t position;
    int32_t size;
    bool key;
};

// ffprobe's packets of the first video stream, in file order.
inline std::vector<ProbedPacket> ProbePackets(const std::string& path)
{
    std::vector<ProbedPacket> packets;
    const std::string csv = RunCommand("ffprobe -v error -select_streams v:0 -show_entries packet=pos,size,flags "
                                       "-of csv=p=0 '" + path + "'").value_or("");
    std::istringstream lines(csv);
    std::string line;
    while (std::getline(lines, line)) {
        long long size = 0, position = 0;
        char flags[8] = {};
        if (std::sscanf(line.c_str(), "%lld,%lld,%7s", &size, &position, flags) == 3)
            packets.push_back({position, int32_t(size), flags[0] == 'K'});
    }
    return packets;
}

// The packet position of every frame ffprobe's decoder outputs, in output order.
inline std::vector<int64_t> ProbeOutputOrder(const std::string& path)
{
    std::vector<int64_t> positions;
    const std::string csv =
        RunCommand("ffprobe -v error -select_streams v:0 -show_entries frame=pkt_pos -of csv=p=0 '" + path + "'")
            .value_or("");
    std::istringstream lines(csv);
    std::string line;
    while (std::getline(lines, line))
        positions.push_back(std::atoll(line.c_str()));
    return positions;
}

// The samples against ffprobe: one per packet at the same place, size and
// key flag, and, leaving out the samples a decoder drops, shown in the
// order the decoder outputs them.
inline void ExpectSamplesMatchFfprobe(const std::vector<VideoSpan>& spans, const std::string& path)
{
    const std::vector<ProbedPacket> packets = ProbePackets(path);
    ASSERT_EQ(spans.size(), packets.size());
    for (size_t i = 0; i < spans.size(); ++i) {
        SCOPED_TRACE("access unit " + std::to_string(i));
        EXPECT_EQ(spans[i].position, packets[i].position);
        EXPECT_EQ(spans[i].length, packets[i].size);
        EXPECT_EQ(spans[i].key, packets[i].key);
    }
    std::vector<VideoSpan> shown;
    for (const VideoSpan& span : spans)
        if (!span.excluded)
            shown.push_back(span);
    std::stable_sort(shown.begin(), shown.end(),
                     [](const VideoSpan& a, const VideoSpan& b) { return a.presentation < b.presentation; });
    const std::vector<int64_t> output = ProbeOutputOrder(path);
    ASSERT_EQ(shown.size(), output.size());
    for (size_t i = 0; i < shown.size(); ++i)
        EXPECT_EQ(shown[i].position, output[i]) << "output frame " << i;
}

#if VEK_FAULT_INJECTION
// Open, index and read every sample with its bytes, with each allocation
// failing in turn: every run ends in success or -19002 and leaks nothing.
template <typename Reader>
void WalkVideoOpenIndexRead(const std::string& name, const Bytes& file)
{
    using namespace Quorvex::Vek;
    WalkAllocationFailures(name, [&] {
        auto opened = OpenReader<Reader>(file);
        if (opened.result < 0)
            return opened.result == RESULT_OUT_OF_MEMORY && (!opened.reader || opened.reader->GetVideoMediaCount() == 0);
        for (;;) {
            CVideoSample* raw = nullptr;
            int result = opened.reader->ReadVideoSample(0, raw);
            RObject<CVideoSample> sample(raw);
            if (result >= 0 && sample)
                result = opened.reader->ReadVideoData(0, sample.Get());
            if (result < 0 || !sample)
                return result == RESULT_OK || result == RESULT_OUT_OF_MEMORY;
        }
    });
}
#endif

} // namespace VekTest
