// The QuickTime/MP4 readers against movies that lie: each case either
// refuses the file with a code and a log line naming the box, or reads
// what is sound in it (every sample inside the file) with a log line.
#include <gtest/gtest.h>

#include "MovReaderHarness.h"
#include "support/LogCapture.h"
#include "support/Mp4TestWriter.h"

#include <functional>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Reader = CMpeg4ContainerReader;

// A small valid movie: 12 pictures with B frames, 10 AAC frames, an edit list.
Mp4Movie SmallMovie()
{
    Mp4Movie movie;
    Mp4Track video;
    video.timescale = 12800;
    video.width = 1920;
    video.height = 1080;
    video.sampleEntries = {Mp4Avc1080pSampleEntry()};
    uint32_t size = 300;
    for (const Mp4GopPicture& picture : Mp4Gop(12, 2))
        video.Add(size++, 512, picture.compositionFrames * 512, picture.kind == Mp4Picture::Sync);
    video.samplesPerChunk = 4;
    video.edits = {{480, 512}};
    Mp4Track audio;
    audio.handler = "soun";
    audio.timescale = 48000;
    audio.sampleEntries = {Mp4AacSampleEntry(2, 48000)};
    for (int i = 0; i < 10; ++i)
        audio.Add(200, 1024);
    audio.samplesPerChunk = 5;
    movie.tracks = {video, audio};
    return movie;
}

Mp4BoxSpan Find(const Bytes& file, const std::string& path)
{
    const auto span = FindMp4Box(file, path);
    EXPECT_TRUE(span.has_value()) << path;
    return span.value_or(Mp4BoxSpan{});
}

struct Case {
    const char* name;
    std::function<void(Bytes&)> spoil;
    int result; // of BeginIndex
    const char* logged; // a text the log must hold
};

const Case Cases[] = {
    {"moov past the end of the file",
     [](Bytes& f) { SetMp4BoxSize(f, Find(f, "moov"), f.size() * 2); }, RESULT_FORMAT_ERROR, "'moov'"},
    {"trak larger than moov",
     [](Bytes& f) { SetMp4BoxSize(f, Find(f, "moov/trak"), Find(f, "moov").size + 8); }, RESULT_FORMAT_ERROR,
     "in 'moov'"},
    {"stbl child larger than stbl",
     [](Bytes& f) { SetMp4BoxSize(f, Find(f, "moov/trak/mdia/minf/stbl/stts"), 0xFFFFFF); }, RESULT_FORMAT_ERROR,
     "in 'stbl'"},
    {"media time scale 0",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/mdia/mdhd").PayloadOffset() + 12, 0, 4); },
     RESULT_FORMAT_ERROR, "time scale 0"},
    {"stts count beyond its box",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/mdia/minf/stbl/stts").PayloadOffset() + 4, 0x10000000, 4); },
     RESULT_FORMAT_ERROR, "'stts'"},
    {"stsz count beyond its box",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/mdia/minf/stbl/stsz").PayloadOffset() + 8, 0xFFFFFFF0, 4); },
     RESULT_FORMAT_ERROR, "'stsz'"},
    {"stsc first chunk 0",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/mdia/minf/stbl/stsc").PayloadOffset() + 8, 0, 4); },
     RESULT_FORMAT_ERROR, "'stsc'"},
    {"chunk offset past the end (a cut file keeps what is there)",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/mdia/minf/stbl/stco").PayloadOffset() + 12, 0x7FFFFF00, 4); },
     RESULT_OK, "past the end of the file"},
    {"edit list media time past the media",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov/trak/edts/elst").PayloadOffset() + 12, 0x7FFFFFFF, 4); },
     RESULT_OK, "'elst'"},
    {"no moov",
     [](Bytes& f) { PutBigEndian(f, Find(f, "moov").offset + 4, 0x66726565 /* free */, 4); }, RESULT_FORMAT_ERROR,
     "no 'moov'"},
};

class MovReaderHostile : public ::testing::TestWithParam<Case> {};

TEST_P(MovReaderHostile, GivesACodeAndALogLine)
{
    const Case& c = GetParam();
    Bytes file = SmallMovie().Build();
    c.spoil(file);
    LogCapture log(LogLevel::Warning);
    auto opened = OpenReader<Reader>(file);
    EXPECT_EQ(opened.result, c.result);
    EXPECT_GE(log.Count(c.logged), 1u) << log.Text();
    if (opened.result < 0) {
        EXPECT_EQ(opened.reader->GetVideoMediaCount() + opened.reader->GetAudioMediaCount(), 0);
        return;
    }
    for (const TrackPacket& packet : ReadTrackPackets(opened.reader, TrackKind::Video, 0))
        EXPECT_LE(uint64_t(packet.position + packet.size), file.size());
}

INSTANTIATE_TEST_SUITE_P(Movies, MovReaderHostile, ::testing::ValuesIn(Cases),
                         [](const ::testing::TestParamInfo<Case>& info) {
                             std::string name;
                             for (const char* p = info.param.name; *p && *p != '('; ++p)
                                 name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
                             return name;
                         });

// The sound movie, read in full: the writer's own check of the reader.
TEST(MovReaderHostile, SmallMovieIsSound)
{
    const Bytes file = SmallMovie().Build();
    auto opened = OpenReader<Reader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    const auto video = ReadTrackPackets(opened.reader, TrackKind::Video, 0);
    const auto audio = ReadTrackPackets(opened.reader, TrackKind::Audio, 0);
    ASSERT_EQ(video.size(), 12u);
    ASSERT_EQ(audio.size(), 10u);
    // The edit starts the presentation at the first picture shown.
    int64_t first = INT64_MAX;
    for (const TrackPacket& packet : video)
        first = std::min(first, packet.pts);
    EXPECT_EQ(first, 0);
}

// A fragmented movie whose 'mfra' names its fragments, the second of them
// with a broken size: the walk resumes at the third.
Bytes FragmentedWithIndex()
{
    Mp4Movie movie = SmallMovie();
    movie.fragmentSamples = 4;
    Bytes file = movie.Build();
    const Bytes index = Mp4RandomAccessIndex(file, 2);
    file.insert(file.end(), index.begin(), index.end());
    PutBigEndian(file, Find(file, "moof[1]").offset, 3, 4);
    return file;
}

TEST(MovReaderHostile, DamagedFragmentResumesWhereTheIndexSays)
{
    const Bytes file = FragmentedWithIndex();
    LogCapture log(LogLevel::Warning);
    auto opened = OpenReader<Reader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    EXPECT_FALSE(opened.reader->MayStillGrow());
    // Fragments of four samples per track: the second is lost, the rest read.
    EXPECT_EQ(ReadTrackPackets(opened.reader, TrackKind::Video, 0).size(), 8u);
    EXPECT_EQ(ReadTrackPackets(opened.reader, TrackKind::Audio, 0).size(), 6u);
    EXPECT_EQ(log.Count("that 'mfra' names"), 1u) << log.Text();
}

#if VEK_FAULT_INJECTION
TEST(MovReaderHostile, SurvivesEveryAllocationFailure)
{
    for (const Bytes& file : {SmallMovie().Build(), FragmentedWithIndex()})
    WalkAllocationFailures("mp4", [&] {
        auto opened = OpenReader<Reader>(file);
        if (opened.result < 0)
            return opened.result == RESULT_OUT_OF_MEMORY;
        for (TrackKind kind : {TrackKind::Video, TrackKind::Audio}) {
            int last = RESULT_OK;
            ReadTrackPackets(opened.reader, kind, 0, &last);
            if (last < 0)
                return last == RESULT_OUT_OF_MEMORY;
        }
        return true;
    });
}
#endif

} // namespace
