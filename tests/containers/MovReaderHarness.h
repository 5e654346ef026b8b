#pragma once

// Reads every track of a QuickTime or MP4 file the way a host does and
// sets the samples beside ffprobe's packets of the same stream: decode and
// presentation time, duration, size, position, key flag, and ffprobe's
// discard flag beside the Exclude hint.
#include "AudioReaderHarness.h"
#include "elementary/ExternalStreams.h"

#include <sstream>

namespace VekTest {

struct TrackPacket {
    int64_t dts = 0;
    int64_t pts = 0;
    int64_t duration = 0;
    int64_t position = 0;
    int64_t size = 0;
    bool key = false;
    bool discard = false;
};

enum class TrackKind { Video, Audio, Subtitle };

// ffprobe's packets of one stream ("v:0", "a:1" ...), in decode order.
inline std::vector<TrackPacket> ProbeTrackPackets(const std::string& path, const std::string& stream)
{
    std::vector<TrackPacket> packets;
    const std::string csv = RunCommand("ffprobe -v error -select_streams " + stream +
                                       " -show_entries packet=pts,dts,duration,size,pos,flags -of csv=p=0 '" + path +
                                       "'")
                                .value_or("");
    std::istringstream lines(csv);
    std::string line;
    while (std::getline(lines, line)) {
        // pts,dts,duration,size,pos,flags; ffprobe writes N/A for what it does not know.
        std::vector<std::string> fields;
        std::istringstream cells(line);
        std::string cell;
        while (std::getline(cells, cell, ','))
            fields.push_back(cell);
        if (fields.size() < 6)
            continue;
        const auto number = [](const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); };
        packets.push_back({number(fields[1]), number(fields[0]), number(fields[2]), number(fields[4]),
                           number(fields[3]), fields[5].find('K') != std::string::npos,
                           fields[5].find('D') != std::string::npos});
    }
    return packets;
}

// A sample as ffprobe lists a packet; the sample still carries its file range.
inline TrackPacket ToPacket(Quorvex::Vek::CMediaSample* sample)
{
    using namespace Quorvex::Vek;
    auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
    const int32_t hint = sample->GetHint();
    return {sample->GetTime(), sample->GetCompositionTime(), sample->GetDuration(), range->GetPosition(),
            range->GetLength(), (hint & CMediaSample::KeyFrameAligned) != 0, (hint & CMediaSample::Exclude) != 0};
}

// Every sample of one track to the end.
inline std::vector<TrackPacket> ReadTrackPackets(Quorvex::Vek::CContainerReader* reader, TrackKind kind,
                                                 int32_t track, int* last = nullptr)
{
    using namespace Quorvex::Vek;
    std::vector<TrackPacket> packets;
    for (;;) {
        CMediaSample* raw = nullptr;
        int result = RESULT_OK;
        if (kind == TrackKind::Video) {
            CVideoSample* video = nullptr;
            result = reader->ReadVideoSample(track, video);
            raw = video;
        } else if (kind == TrackKind::Audio) {
            CAudioSample* audio = nullptr;
            result = reader->ReadAudioSample(track, audio);
            raw = audio;
        } else {
            CSubtitleSample* subtitle = nullptr;
            result = reader->ReadSubtitleSample(track, subtitle);
            raw = subtitle;
        }
        RObject<CMediaSample> sample(raw);
        if (last)
            *last = result;
        if (result < 0 || !sample)
            break;
        packets.push_back(ToPacket(sample));
    }
    return packets;
}

// ffmpeg drops the samples after the end of the last edit; we keep them
// in their place, excluded. Comparisons leave those out.
inline std::vector<TrackPacket> WithoutTrailingExcluded(std::vector<TrackPacket> packets)
{
    while (!packets.empty() && packets.back().discard)
        packets.pop_back();
    return packets;
}

// `exactTimes` false compares places, sizes and flags only.
inline void ExpectPacketsEqual(const std::vector<TrackPacket>& ours, const std::vector<TrackPacket>& probed,
                               bool exactTimes = true)
{
    const std::vector<TrackPacket> kept = ours.size() > probed.size() ? WithoutTrailingExcluded(ours) : ours;
    ASSERT_EQ(kept.size(), probed.size());
    for (size_t i = 0; i < kept.size(); ++i) {
        SCOPED_TRACE("packet " + std::to_string(i));
        if (exactTimes) {
            EXPECT_EQ(kept[i].dts, probed[i].dts);
            EXPECT_EQ(kept[i].pts, probed[i].pts);
        }
        // ffmpeg gives compressed audio packets the codec's frame length
        // where the file times them otherwise (a longer first or a shorter
        // last frame); the file's timing is ours: each sample lasts until
        // the next one is decoded.
        if (i + 1 < kept.size())
            EXPECT_EQ(kept[i].duration, kept[i + 1].dts - kept[i].dts);
        EXPECT_EQ(kept[i].position, probed[i].position);
        EXPECT_EQ(kept[i].size, probed[i].size);
        EXPECT_EQ(kept[i].key, probed[i].key);
        EXPECT_EQ(kept[i].discard, probed[i].discard);
        if (::testing::Test::HasFailure())
            return;
    }
}

} // namespace VekTest
