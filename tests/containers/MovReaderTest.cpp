// The QuickTime and MP4 readers against files ffmpeg's mov, mp4, ipod and
// ismv muxers write at test time with their -movflags variants: every
// track's facts against ffprobe's streams, every sample against ffprobe's
// packets (after its edit-list handling), and hostile movies built here.
#include <gtest/gtest.h>

#include "MovReaderHarness.h"
#include "MovWriters.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <vek/Vek.h>

#include <cmath>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Reader = CMpeg4ContainerReader;

struct Variant {
    const char* name;
    const char* input; // the lavfi source
    const char* options; // more inputs, codecs, muxer and flags
    bool pcm; // audio compared by bytes and time, not packet by packet
    bool exactTimes = true; // false: ffprobe's times are its own guesses (see the row)
};

const char* const Video = "testsrc=d=2:s=176x144:r=25";

const Variant Variants[] = {
    {"mp4_h264_aac", Video, "-f lavfi -i sine=d=2 -c:v libx264 -bf 2 -g 12 -c:a aac -f mp4", false},
    {"mov_h264_aac", Video, "-f lavfi -i sine=d=2 -c:v libx264 -bf 2 -g 12 -c:a aac -f mov", false},
    {"mp4_faststart", Video, "-f lavfi -i sine=d=2 -c:v libx264 -c:a aac -movflags +faststart -f mp4", false},
    {"mp4_fragments", Video,
     "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe+empty_moov -f mp4", false},
    {"mp4_fragments_moof_base", Video,
     "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe+empty_moov+default_base_moof -f mp4",
     false},
    {"mp4_fragments_no_mfra", Video,
     "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe+empty_moov+skip_trailer -f mp4", false},
    // Without default_base_moof ffmpeg's global sidx moves the fragments
    // after writing their absolute data offsets: it cannot read them either.
    {"mp4_fragments_global_sidx", Video,
     "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe+empty_moov+default_base_moof+global_sidx "
     "-f mp4",
     false},
    {"mp4_fragments_separate_moof", Video,
     "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe+empty_moov+separate_moof -f mp4",
     false},
    {"mov_fragments", Video, "-f lavfi -i sine=d=2 -c:v libx264 -g 10 -c:a aac -movflags frag_keyframe -f mov", false},
    {"mp4_frag_duration", Video, "-c:v libx264 -g 25 -movflags empty_moov -frag_duration 300000 -f mp4", false},
    // The first video fragment states no composition offsets and later ones
    // do; ffprobe fills in times from the SPS's reorder depth. Places, sizes
    // and keys must still agree.
    {"ismv", Video, "-f lavfi -i sine=d=2 -c:v libx264 -g 25 -c:a aac -f ismv", false, false},
    {"mp4_negative_cts", Video, "-c:v libx264 -bf 3 -movflags negative_cts_offsets -f mp4", false},
    {"mp4_no_edit_list", Video, "-c:v libx264 -bf 2 -use_editlist 0 -f mp4", false},
    {"ipod_aac", "sine=d=2:sample_rate=48000", "-c:a aac -ac 2 -f ipod", false},
    {"mp4_hevc", Video, "-c:v libx265 -x265-params log-level=none:bframes=3 -tag:v hvc1 -f mp4", false},
    {"mp4_mpeg4_mp3", Video, "-f lavfi -i sine=d=2 -c:v mpeg4 -bf 1 -c:a libmp3lame -f mp4", false},
    {"mp4_ac3_eac3", "sine=d=2", "-f lavfi -i sine=d=2:f=220 -map 0 -map 1 -c:a:0 ac3 -c:a:1 eac3 -f mp4", false},
    {"mov_prores_pcm", Video, "-f lavfi -i sine=d=2 -c:v prores_ks -profile:v 2 -c:a pcm_s16be -f mov", true},
    {"mov_mpeg2_in24", Video, "-f lavfi -i sine=d=2 -c:v mpeg2video -c:a pcm_s24le -f mov", true},
    {"mov_mjpeg_alaw", Video, "-f lavfi -i sine=d=2:sample_rate=8000 -c:v mjpeg -c:a pcm_alaw -f mov", true},
    {"mov_dnxhd_alac", "testsrc=d=1:s=1280x720:r=25",
     "-f lavfi -i sine=d=1 -c:v dnxhd -b:v 90M -pix_fmt yuv422p -c:a alac -f mov", false},
    {"mov_timecode", Video, "-c:v libx264 -timecode 01:00:00:12 -metadata title=Zürich -f mov", false},
    {"mov_c608", "testsrc=d=2:s=176x144:r=30000/1001", "-i CAPTIONS.scc -c:v libx264 -c:s copy -f mov", false},
    {"mp4_chapters", Video, "-i CHAPTERS.txt -map 0 -map_chapters 1 -c:v libx264 -f mp4", false},
    {"mp4_tx3g", Video, "-i SUBTITLES.srt -c:v libx264 -c:s mov_text -metadata title=Tx3g -f mp4", false},
    {"mp4_two_audio", Video,
     "-f lavfi -i sine=d=2 -f lavfi -i sine=d=2:f=880 -map 0 -map 1 -map 2 -c:v libx264 -c:a aac -f mp4", false},
};

class MovReaderFiles : public ::testing::TestWithParam<Variant> {
protected:
    static void SetUpTestSuite()
    {
        if (!HasFfmpeg())
            return;
        s_dir = new TempDir();
        WriteFile(s_dir->File("CAPTIONS.scc"),
                  "Scenarist_SCC V1.0\n\n00:00:00:00\t9420 9420 94ae 94ae 9452 9452 97a2 97a2 c8e5 ecec ef80 942c "
                  "942c 942f 942f\n\n00:00:01:00\t942c 942c\n");
        WriteFile(s_dir->File("CHAPTERS.txt"), ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=800\n"
                                                "title=Opening\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=800\nEND=2000\n"
                                                "title=Zweites Kapitel\n");
        WriteFile(s_dir->File("SUBTITLES.srt"), "1\n00:00:00,500 --> 00:00:01,500\nHello\n\n"
                                                 "2\n00:00:01,700 --> 00:00:01,900\nagain\n");
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }

    static TempDir* s_dir;
};

TempDir* MovReaderFiles::s_dir = nullptr;

Bytes ToBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

int64_t SumOf(const std::vector<TrackPacket>& packets, int64_t TrackPacket::*field)
{
    int64_t sum = 0;
    for (const TrackPacket& packet : packets)
        sum += packet.*field;
    return sum;
}

std::string TextProperty(CContainerReader* reader, const char* key)
{
    CByteArray* value = reader->GetProperty(key);
    return value ? std::string(reinterpret_cast<const char*>(value->GetData()), size_t(value->GetLength())) : "";
}

// The start timecode and the title against ffprobe's tags.
void ExpectContainerFactsEqual(CContainerReader* reader, const std::string& path)
{
    const std::string timecodes = Probe(path, "-show_entries stream_tags=timecode");
    const std::vector<std::string> timecode = JsonValues(timecodes, "timecode");
    if (!timecode.empty())
        EXPECT_EQ(TextProperty(reader, ContainerProperty::TimeCode), timecode.front());
    const std::string chapters = Probe(path, "-show_chapters");
    const std::vector<std::string> starts = JsonValues(chapters, "start_time");
    const std::vector<std::string> titles = JsonValues(chapters, "title");
    std::string expected;
    for (size_t i = 0; i < starts.size() && i < titles.size(); ++i) {
        const long long millis = std::llround(std::stod(starts[i]) * 1000);
        char line[64];
        std::snprintf(line, sizeof line, "%s%02lld:%02lld:%02lld.%03lld ", i ? "\n" : "", millis / 3600000,
                      millis / 60000 % 60, millis / 1000 % 60, millis % 1000);
        expected += line + titles[i];
    }
    EXPECT_EQ(TextProperty(reader, CMovieFileReader::ChaptersKey), expected);
    const std::string title = JsonValue(Probe(path, "-show_entries format_tags=title"), "title");
    if (!title.empty())
        EXPECT_EQ(TextProperty(reader, ContainerProperty::MovTitle), title);
}

// ffmpeg drops the subtitle samples no edit shows (we keep them, excluded),
// and hands out caption atoms as cc_data triplets of another size.
void ExpectShownSubtitlesEqual(CContainerReader* reader, int32_t track, const std::string& path)
{
    const bool captions = reader->GetSubtitleProperties(track)->GetFormat() == SubtitleFormat::C608;
    std::vector<TrackPacket> shown;
    for (const TrackPacket& packet : ReadTrackPackets(reader, TrackKind::Subtitle, track))
        if (!packet.discard)
            shown.push_back(packet);
    const std::vector<TrackPacket> probed = ProbeTrackPackets(path, "s:" + std::to_string(track));
    ASSERT_EQ(shown.size(), probed.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        SCOPED_TRACE("subtitle " + std::to_string(i));
        EXPECT_EQ(shown[i].dts, probed[i].dts);
        EXPECT_EQ(shown[i].duration, probed[i].duration);
        EXPECT_EQ(shown[i].position, probed[i].position);
        if (!captions)
            EXPECT_EQ(shown[i].size, probed[i].size);
    }
    if (captions)
        EXPECT_EQ(TextProperty(reader, ContainerProperty::MovCaptionType), "c608");
}

// Every track of the file at `path` against ffprobe: facts, and samples
// packet by packet (PCM: by bytes and time covered, as each reader cuts
// it differently).
void ExpectFileMatchesFfprobe(const std::string& path, const std::string& file, bool exactTimes, bool pcm)
{
    auto opened = OpenReader<Reader>(ToBytes(file));
    ASSERT_EQ(opened.result, RESULT_OK);
    CContainerReader* reader = opened.reader;

    const std::string streams = Probe(path, "-show_streams");
    const std::vector<std::string> types = JsonValues(streams, "codec_type");
    const auto count = [&](const char* type) { return int32_t(std::count(types.begin(), types.end(), type)); };
    ASSERT_EQ(reader->GetVideoMediaCount(), std::min(count("video"), 1));
    ASSERT_EQ(reader->GetAudioMediaCount(), count("audio"));
    ASSERT_EQ(reader->GetSubtitleMediaCount(), count("subtitle"));
    ExpectContainerFactsEqual(reader, path);

    if (reader->GetVideoMediaCount() == 1) {
        SCOPED_TRACE("video");
        CVideoProperties* video = reader->GetVideoProperties(0);
        const std::string probed = Probe(path, "-select_streams v:0 -show_streams");
        EXPECT_EQ(video->GetWidth(), std::stoi(JsonValue(probed, "width")));
        EXPECT_EQ(video->GetHeight(), std::stoi(JsonValue(probed, "height")));
        EXPECT_EQ("1/" + std::to_string(video->GetTimeScale()), JsonValue(probed, "time_base"));
        ExpectPacketsEqual(ReadTrackPackets(reader, TrackKind::Video, 0), ProbeTrackPackets(path, "v:0"),
                           exactTimes);
    }
    for (int32_t track = 0; track < reader->GetAudioMediaCount(); ++track) {
        SCOPED_TRACE("audio " + std::to_string(track));
        const std::string stream = "a:" + std::to_string(track);
        CAudioProperties* audio = reader->GetAudioProperties(track);
        const std::string probed = Probe(path, "-select_streams " + stream + " -show_streams");
        EXPECT_EQ(audio->GetSampleRate(), std::stoi(JsonValue(probed, "sample_rate")));
        EXPECT_EQ(audio->GetChannels(), std::stoi(JsonValue(probed, "channels")));
        const std::vector<TrackPacket> ours = ReadTrackPackets(reader, TrackKind::Audio, track);
        const std::vector<TrackPacket> theirs = ProbeTrackPackets(path, stream);
        if (!pcm) {
            ExpectPacketsEqual(ours, theirs, exactTimes);
            continue;
        }
        // PCM is cut differently by each reader; the bytes and the time they cover must agree.
        ASSERT_FALSE(ours.empty());
        ASSERT_FALSE(theirs.empty());
        EXPECT_EQ(ours.front().position, theirs.front().position);
        EXPECT_EQ(SumOf(ours, &TrackPacket::size), SumOf(theirs, &TrackPacket::size));
        EXPECT_EQ(SumOf(ours, &TrackPacket::duration), SumOf(theirs, &TrackPacket::duration));
    }
    for (int32_t track = 0; track < reader->GetSubtitleMediaCount(); ++track) {
        SCOPED_TRACE("subtitles " + std::to_string(track));
        ExpectShownSubtitlesEqual(reader, track, path);
    }
}

TEST_P(MovReaderFiles, SamplesEqualFfprobePackets)
{
    const Variant& variant = GetParam();
    if (!s_dir)
        GTEST_SKIP() << "ffmpeg is not installed";
    std::string options = variant.options;
    for (const char* name : {"CAPTIONS.scc", "SUBTITLES.srt", "CHAPTERS.txt"})
        if (options.find(name) != std::string::npos)
            options.replace(options.find(name), std::strlen(name), "'" + s_dir->File(name) + "'");
    const std::string file = Encode(*s_dir, variant.input, options, std::string(variant.name) + ".mov");
    if (file.empty())
        GTEST_SKIP() << "ffmpeg could not write " << variant.name;
    const std::string path = s_dir->File(std::string(variant.name) + ".mov");
    ExpectFileMatchesFfprobe(path, file, variant.exactTimes, variant.pcm);
}

INSTANTIATE_TEST_SUITE_P(Writers, MovReaderFiles, ::testing::ValuesIn(Variants),
                         [](const ::testing::TestParamInfo<Variant>& info) { return std::string(info.param.name); });

// GStreamer's muxers: another writer's habits (qtmux's 'qt  ' brand and
// sound descriptions, mp4mux's fragments).
TEST(MovReaderGstreamer, SamplesEqualFfprobePackets)
{
    VEK_REQUIRE_GSTREAMER();
    TempDir dir;
    const std::string source = WriterSourceMatroska(dir, "-metadata title=Gst");
    ASSERT_FALSE(source.empty());
    for (const char* muxer : {"qtmux", "mp4mux", "mp4mux fragment-duration=200", "qtmux fragment-duration=300"}) {
        SCOPED_TRACE(muxer);
        const std::string name = std::string("gst") + std::to_string(std::strlen(muxer)) + ".mov";
        const std::string file = GstMux(dir, source, muxer, name);
        ASSERT_FALSE(file.empty());
        ExpectFileMatchesFfprobe(dir.File(name), file, true, false);
    }
}

} // namespace
