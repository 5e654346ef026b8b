// The raw MPEG-4 visual stream reader against streams written by ffmpeg's
// mpeg4 encoder and by Xvid, with ffprobe as the oracle, and against
// damaged streams.
#include "VideoReaderHarness.h"

#include <support/LogCapture.h>

namespace {

using namespace Quorvex::Vek;
using namespace VekTest;

Bytes ToBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

struct EncodeCase {
    const char* name;
    const char* encoder;
    const char* source;
    const char* options;
};

const EncodeCase Encodes[] = {
    {"intra and P only", "mpeg4", "testsrc2=s=176x144:r=25:d=1", "-c:v mpeg4 -bf 0 -g 10"},
    {"two B-VOPs", "mpeg4", "testsrc2=s=352x288:r=25:d=1", "-c:v mpeg4 -bf 2 -g 12"},
    {"29.97 with GOV headers", "mpeg4", "testsrc2=s=320x240:r=30000/1001:d=1",
     "-c:v mpeg4 -bf 1 -g 15 -flags +cgop -sc_threshold 1000000000"},
    {"16:9 samples", "mpeg4", "testsrc2=s=720x576:r=25:d=0.3", "-c:v mpeg4 -bf 1 -aspect 16:9"},
    {"interlaced", "mpeg4", "testsrc2=s=720x576:r=25:d=0.3", "-c:v mpeg4 -bf 1 -flags +ildct+ilme"},
    {"Xvid with packed B-VOPs", "libxvid", "testsrc2=s=320x240:r=30000/1001:d=1", "-c:v libxvid -bf 2"},
};

TEST(Mpeg4VideoReader, MatchesFfprobeOnEveryAccessUnit)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "ffmpeg is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        if (!HasEncoder(c.encoder))
            continue;
        const Bytes file = ToBytes(Encode(dir, c.source, std::string(c.options) + " -f m4v", "v.m4v"));
        ASSERT_FALSE(file.empty());
        auto opened = OpenReader<CMpeg4VideoContainerReader>(file);
        ASSERT_EQ(opened.result, RESULT_OK);
        const std::string probe = Probe(dir.File("v.m4v"), "-show_streams");
        CVideoProperties* video = opened.reader->GetVideoProperties(0);
        ASSERT_NE(video, nullptr);
        EXPECT_EQ(std::to_string(video->GetWidth()), JsonValue(probe, "width"));
        EXPECT_EQ(std::to_string(video->GetHeight()), JsonValue(probe, "height"));
        int64_t n = 0, d = 0;
        video->GetPixelAspectRatio(n, d);
        EXPECT_EQ(std::to_string(n) + ":" + std::to_string(d), JsonValue(probe, "sample_aspect_ratio"));
        video->GetFrameRate(n, d);
        EXPECT_DOUBLE_EQ(double(n) / double(d), Ratio(JsonValue(probe, "r_frame_rate")));
        int last = 0;
        const std::vector<VideoSpan> spans = ReadAllVideoSamples(opened.reader, file, &last);
        EXPECT_EQ(last, RESULT_OK);
        ExpectSamplesMatchFfprobe(spans, dir.File("v.m4v"));
    }
}

TEST(Mpeg4VideoReader, RefusesOrEndsCleanlyOnDamagedStreams)
{
    if (!HasFfmpeg() || !HasEncoder("mpeg4"))
        GTEST_SKIP() << "ffmpeg with its mpeg4 encoder is not available";
    TempDir dir;
    const Bytes good = ToBytes(Encode(dir, "testsrc2=s=176x144:r=25:d=0.4", "-c:v mpeg4 -bf 1 -f m4v", "v.m4v"));
    ASSERT_GT(good.size(), 200u);
    Bytes garbageFirst(777, 0x5A);
    garbageFirst.insert(garbageFirst.end(), good.begin(), good.end());
    Bytes cut(good.begin(), good.begin() + good.size() / 2);
    Bytes zeros(300000, 0);
    Bytes layerOnly(good.begin(), good.begin() + 40);
    struct Case {
        const char* name;
        Bytes file;
        int score; // what Validate gives
        int open; // what BeginIndex gives
        const char* log; // a text the log must hold, or null
    } cases[] = {
        {"valid", good, CMpeg4VideoContainerReader::MatchScore, RESULT_OK, nullptr},
        {"garbage in front", garbageFirst, CMpeg4VideoContainerReader::LateMatchScore, RESULT_OK, nullptr},
        {"cut in the middle", cut, CMpeg4VideoContainerReader::MatchScore, RESULT_OK, nullptr},
        {"endless zeros", zeros, 0, RESULT_ERROR, "no readable video object layer"},
        {"headers without a VOP", layerOnly, 0, RESULT_ERROR, "no readable video object layer"},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.name);
        RObject<CMemoryStream> stream(new CMemoryStream(int32_t(c.file.size()), c.file.data()));
        RObject<CMpeg4VideoContainerReader> probe(new CMpeg4VideoContainerReader());
        EXPECT_EQ(probe->Validate(stream), c.score);
        LogCapture log(4);
        auto opened = OpenReader<CMpeg4VideoContainerReader>(c.file);
        EXPECT_EQ(opened.result, c.open);
        if (c.log) {
            EXPECT_GT(log.Count(c.log), 0u) << log.Text();
        }
        if (opened.result < 0)
            continue;
        int last = 0;
        const std::vector<VideoSpan> spans = ReadAllVideoSamples(opened.reader, c.file, &last);
        EXPECT_EQ(last, RESULT_OK);
        EXPECT_FALSE(spans.empty());
    }
}

TEST(Mpeg4VideoReader, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    if (!HasFfmpeg() || !HasEncoder("mpeg4"))
        GTEST_SKIP() << "ffmpeg with its mpeg4 encoder is not available";
    TempDir dir;
    const Bytes file = ToBytes(Encode(dir, "testsrc2=s=64x48:r=25:d=0.2", "-c:v mpeg4 -bf 1 -f m4v", "v.m4v"));
    ASSERT_FALSE(file.empty());
    WalkVideoOpenIndexRead<CMpeg4VideoContainerReader>("MPEG-4 video", file);
#endif
}

} // namespace
