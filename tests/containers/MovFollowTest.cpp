// Fragmented MP4 read the way recordings are: opened with only the first
// fragment parsed, indexed in the background, followed while a writer
// thread is still appending, cut where a writer crashed, and damaged. Every
// sample is checked against ffprobe's packets of the whole file.
#include <gtest/gtest.h>

#include "MovReaderHarness.h"
#include "support/LogCapture.h"
#include "support/Mp4TestWriter.h"

#include <vek/Vek.h>

#include <cstdio>
#include <thread>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Reader = CMpeg4ContainerReader;

struct TopBox {
    std::string type;
    size_t offset;
    size_t size;
};

std::vector<TopBox> TopLevelBoxes(const std::string& file)
{
    std::vector<TopBox> boxes;
    for (size_t at = 0; at + 8 <= file.size();) {
        const auto byte = [&](size_t i) { return uint64_t(static_cast<unsigned char>(file[at + i])); };
        const size_t size = size_t(byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3));
        if (size < 8)
            break;
        boxes.push_back({file.substr(at + 4, 4), at, size});
        at += size;
    }
    return boxes;
}

// The file's fragments: where each 'moof' starts and its 'mdat' ends.
struct Fragment {
    size_t moof;
    size_t end;
};

std::vector<Fragment> Fragments(const std::string& file)
{
    std::vector<Fragment> fragments;
    const std::vector<TopBox> boxes = TopLevelBoxes(file);
    for (size_t i = 0; i + 1 < boxes.size(); ++i)
        if (boxes[i].type == "moof" && boxes[i + 1].type == "mdat")
            fragments.push_back({boxes[i].offset, boxes[i + 1].offset + boxes[i + 1].size});
    return fragments;
}

// The packets whose bytes lie in [begin, end).
std::vector<TrackPacket> PacketsWithin(const std::vector<TrackPacket>& packets, size_t begin, size_t end)
{
    std::vector<TrackPacket> kept;
    for (const TrackPacket& packet : packets)
        if (size_t(packet.position) >= begin && size_t(packet.position + packet.size) <= end)
            kept.push_back(packet);
    return kept;
}

RObject<Reader> OpenFile(const std::string& path, int32_t readTimeout)
{
    RObject<CString> text(CString::Create(path.c_str()));
    RObject<CContainerDirectoryContext> context(CContainerDirectoryContext::CreateForFile(text));
    RObject<Reader> reader(new Reader());
    EXPECT_GE(reader->SetContext(context), 0);
    EXPECT_GE(reader->SetReadTimeout(readTimeout), 0);
    return reader;
}

std::vector<TrackPacket> IndexedPackets(CMediaIndexer* index)
{
    std::vector<TrackPacket> packets;
    for (int32_t i = 0; index && i < index->GetSampleCount(); ++i) {
        CMediaSample* raw = nullptr;
        EXPECT_GE(index->GetSample(i, raw), 0);
        RObject<CMediaSample> sample(raw);
        packets.push_back(ToPacket(sample));
    }
    return packets;
}

class MovFollow : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (!HasFfmpeg())
            return;
        s_dir = new TempDir();
        // Ten fragments of video, and the same with sound (two tracks per fragment).
        const std::string video = "-c:v libx264 -g 10 -bf 2 -f mp4 -movflags frag_keyframe+empty_moov";
        s_video = Encode(*s_dir, "testsrc=d=4:s=176x144:r=25", video, "video.mp4");
        s_videoNoIndex = Encode(*s_dir, "testsrc=d=4:s=176x144:r=25", video + "+skip_trailer", "bare.mp4");
        s_segments = Encode(*s_dir, "testsrc=d=4:s=176x144:r=25",
                            video + "+skip_trailer+default_base_moof+global_sidx", "sidx.mp4");
        s_both = Encode(*s_dir, "testsrc=d=4:s=176x144:r=25",
                        "-f lavfi -i sine=d=4 -c:v libx264 -g 10 -c:a aac -f mp4 -movflags frag_keyframe+empty_moov",
                        "both.mp4");
    }
    static void TearDownTestSuite()
    {
        delete s_dir;
        s_dir = nullptr;
    }
    void SetUp() override
    {
        if (!s_dir || s_video.empty() || s_videoNoIndex.empty() || s_both.empty() || s_segments.empty())
            GTEST_SKIP() << "ffmpeg could not write fragmented MP4";
    }
    static std::string Path(const char* name) { return s_dir->File(name); }

    static TempDir* s_dir;
    static std::string s_video, s_videoNoIndex, s_both, s_segments;
};

TempDir* MovFollow::s_dir = nullptr;
std::string MovFollow::s_video, MovFollow::s_videoNoIndex, MovFollow::s_both, MovFollow::s_segments;

// BeginIndex reads the movie and the first fragment only; the rest is
// walked as samples are asked for, box headers and 'moof's alone.
TEST_F(MovFollow, OpensWithTheFirstFragmentAndWalksTheRestOnDemand)
{
    struct Row {
        const char* name;
        const std::string* file;
        bool announced; // an 'mfra' or 'sidx' announces the whole duration
        bool mfra;
    };
    for (const Row& row : {Row{"video.mp4", &s_video, true, true}, Row{"bare.mp4", &s_videoNoIndex, false, false},
                           Row{"sidx.mp4", &s_segments, true, false}}) {
        SCOPED_TRACE(row.name);
        const std::vector<Fragment> fragments = Fragments(*row.file);
        ASSERT_EQ(fragments.size(), 10u);
        RObject<Reader> reader = OpenFile(Path(row.name), 0);
        ASSERT_EQ(reader->BeginIndex(), RESULT_OK);
        const auto opened = reader->GetWalkProgress();
        EXPECT_FALSE(opened.finished);
        EXPECT_GT(size_t(opened.bytesWalked), fragments[0].moof);
        EXPECT_LE(size_t(opened.bytesWalked), fragments[1].moof);
        EXPECT_EQ(reader->MayStillGrow(), !row.mfra);
        const int64_t duration = reader->GetVideoProperties(0)->GetDuration();
        const int64_t scale = reader->GetVideoProperties(0)->GetTimeScale();
        if (row.announced)
            EXPECT_EQ(duration, 4 * scale);
        else
            EXPECT_LT(duration, 4 * scale);

        ExpectPacketsEqual(ReadTrackPackets(reader, TrackKind::Video, 0), ProbeTrackPackets(Path(row.name), "v:0"));
        const auto walked = reader->GetWalkProgress();
        EXPECT_TRUE(walked.finished);
        // The walk read the boxes' headers and the 'moof's, never a sample
        // (a header is read with what may follow it, up to 512 bytes).
        size_t headers = 0;
        for (const TopBox& box : TopLevelBoxes(*row.file))
            headers += box.type == "mdat" ? 512 : box.size + 512;
        EXPECT_LE(size_t(walked.bytesRead), headers);
    }
}

// A writer crashed inside a fragment: every whole fragment is read, with
// or without waiting for the file to grow, and the cut one is dropped.
TEST_F(MovFollow, FileCutInsideAFragmentKeepsEveryWholeFragment)
{
    const std::vector<Fragment> fragments = Fragments(s_video);
    ASSERT_GE(fragments.size(), 4u);
    const Fragment& cut = fragments[fragments.size() - 3];
    const size_t length = cut.moof + (cut.end - cut.moof) / 2;
    ASSERT_TRUE(WriteFile(Path("cut.mp4"), s_video.substr(0, length)));
    const std::vector<TrackPacket> whole = ProbeTrackPackets(Path("video.mp4"), "v:0");
    for (int32_t timeout : {0, 300}) {
        SCOPED_TRACE("read timeout " + std::to_string(timeout));
        LogCapture log(LogLevel::Warning);
        RObject<Reader> reader = OpenFile(Path("cut.mp4"), timeout);
        ASSERT_EQ(reader->BeginIndex(), RESULT_OK);
        ExpectPacketsEqual(ReadTrackPackets(reader, TrackKind::Video, 0), PacketsWithin(whole, 0, cut.moof));
        EXPECT_GE(log.Count("past the end") + log.Count("cut short"), 1u) << log.Text();
    }
}

// A damaged fragment is skipped with a log line naming it; the fragments
// after it are all read, with the file's 'mfra' and without one.
TEST_F(MovFollow, DamagedFragmentIsSkippedAndTheRestRead)
{
    struct Case {
        const char* name;
        const char* box; // in the third fragment
        size_t field; // offset in its payload
        uint64_t value;
        int width;
        const char* logged;
        bool losesFragment; // false: only a box header broke, the samples are sound
    };
    const Case cases[] = {
        {"trun sample count beyond its box", "moof[2]/traf/trun", 4, 0xFFFFFF, 4, "'trun'", true},
        {"trun data past the end of the file", "moof[2]/traf/trun", 8, 0x7FFFFF00, 4, "past", true},
        {"moof size below its header", "moof[2]", 0, 0, 0, "resumes", true},
        {"mdat type that is not text", "moof[2]", 0, 0, 0, "resumes", false},
    };
    for (const auto* file : {&s_video, &s_videoNoIndex}) {
        const std::vector<Fragment> fragments = Fragments(*file);
        const std::vector<TrackPacket> whole =
            ProbeTrackPackets(Path(file == &s_video ? "video.mp4" : "bare.mp4"), "v:0");
        std::vector<TrackPacket> withoutThird = PacketsWithin(whole, 0, fragments[2].moof);
        for (const TrackPacket& packet : PacketsWithin(whole, fragments[3].moof, file->size()))
            withoutThird.push_back(packet);
        for (const Case& c : cases) {
            const std::vector<TrackPacket>& expected = c.losesFragment ? withoutThird : whole;
            SCOPED_TRACE(std::string(c.name) + (file == &s_video ? ", with mfra" : ", without mfra"));
            Bytes spoiled(file->begin(), file->end());
            const auto box = FindMp4Box(spoiled, c.box);
            ASSERT_TRUE(box.has_value());
            if (c.width > 0)
                PutBigEndian(spoiled, box->PayloadOffset() + c.field, c.value, c.width);
            else if (std::string(c.name).rfind("moof", 0) == 0)
                PutBigEndian(spoiled, box->offset, 3, 4);
            else
                PutBigEndian(spoiled, box->offset + box->size + 4, 0x01020304, 4);
            ASSERT_TRUE(WriteFile(Path("spoiled.mp4"), std::string(spoiled.begin(), spoiled.end())));
            LogCapture log(LogLevel::Warning);
            RObject<Reader> reader = OpenFile(Path("spoiled.mp4"), 0);
            ASSERT_EQ(reader->BeginIndex(), RESULT_OK);
            std::vector<TrackPacket> ours = ReadTrackPackets(reader, TrackKind::Video, 0);
            // A fragment that lost its samples shifts no later ones: each
            // carries its own decode time.
            ASSERT_EQ(ours.size(), expected.size());
            for (size_t i = 0; i < ours.size(); ++i) {
                EXPECT_EQ(ours[i].position, expected[i].position) << "packet " << i;
                EXPECT_EQ(ours[i].dts, expected[i].dts) << "packet " << i;
            }
            EXPECT_GE(log.Count(c.logged), 1u) << log.Text();
        }
    }
}

// Appends `file` to `path` the way a recorder does: the movie first, then
// each fragment in two writes with pauses between, so that the reader
// meets half-written boxes.
void WriteLikeARecorder(const std::string& path, const std::string& file, size_t written)
{
    std::FILE* out = std::fopen(path.c_str(), "ab");
    ASSERT_NE(out, nullptr);
    for (const TopBox& box : TopLevelBoxes(file)) {
        if (box.offset + box.size <= written)
            continue;
        const size_t half = box.size / 2;
        for (const auto& piece : {std::make_pair(box.offset, half), std::make_pair(box.offset + half, box.size - half)}) {
            std::fwrite(file.data() + piece.first, 1, piece.second, out);
            std::fflush(out);
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
        }
    }
    std::fclose(out);
}

// The index thread follows a file a writer thread is still appending to:
// times not yet written are "not indexed yet", and when the writer stops
// the index holds every sample ffprobe finds in the finished file.
TEST_F(MovFollow, IndexFollowsALiveWriterToTheEnd)
{
    for (const char* name : {"both.mp4", "bare.mp4"}) {
        SCOPED_TRACE(name);
        const std::string& source = std::string(name) == "both.mp4" ? s_both : s_videoNoIndex;
        const std::string live = Path("live.mp4");
        const std::vector<TopBox> boxes = TopLevelBoxes(source);
        const size_t head = boxes[1].offset + boxes[1].size; // ftyp and moov
        ASSERT_TRUE(WriteFile(live, source.substr(0, head)));
        Watchdog watchdog("the followed recording", std::chrono::seconds(120));
        std::thread writer(WriteLikeARecorder, live, source, head);

        RObject<Reader> reader = OpenFile(live, 1000);
        RObject<CIndexer> indexer(CIndexer::Create(reader));
        ASSERT_EQ(indexer->Begin(true), RESULT_OK);
        EXPECT_TRUE(reader->GetWalkProgress().following);
        CVideoIndexer* video = indexer->GetVideoIndexer(0);
        const int64_t end = 4 * video->GetTimeScale();
        int32_t index = 0;
        CMediaSample* found = nullptr;
        EXPECT_EQ(video->GetSampleAtTime(end - 1, index, found), RESULT_BEYOND_INDEXER_PROGRESS);
        writer.join();
        ASSERT_TRUE(indexer->WaitForIndex(60000));
        ASSERT_EQ(indexer->GetState(), CIndexer::Complete);
        EXPECT_EQ(video->GetSampleAtTime(end - 1, index, found), RESULT_OK);
        RObject<CMediaSample> last(found);
        EXPECT_EQ(video->GetSampleAtTime(end + video->GetTimeScale(), index, found), RESULT_BEYOND_END_OF_SAMPLES);

        ExpectPacketsEqual(IndexedPackets(video), ProbeTrackPackets(live, "v:0"));
        for (int32_t track = 0; track < indexer->GetAudioMediaCount(); ++track)
            ExpectPacketsEqual(IndexedPackets(indexer->GetAudioIndexer(track)),
                               ProbeTrackPackets(live, "a:" + std::to_string(track)));
        EXPECT_EQ(indexer->GetAudioMediaCount(), std::string(name) == "both.mp4" ? 1 : 0);
        indexer->End();
        std::remove(live.c_str());
    }
}

} // namespace
