#include <vek/containers/readers/mov/MovTimeCode.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>
#include <vek/media/CTimeCode.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/IProperties.h>

#include "MovAtomWalk.h"
#include "MovWriters.h"
#include "elementary/ExternalStreams.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

std::string Entry(uint32_t flags, uint32_t timeScale, uint32_t frameDuration, uint8_t framesPerSecond)
{
    return std::string(6, '\0') + Be16(1) + Be32(0) + Be32(flags) + Be32(timeScale) + Be32(frameDuration) +
           char(framesPerSecond) + '\0';
}

uint32_t LoadLittle32(const std::string& bytes, size_t at)
{
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= uint32_t(uint8_t(bytes[at + i])) << (8 * i);
    return value;
}

// The host's view: the CTimeCode rebuilt from the stored keys.
CTimeCode Rebuilt(IProperties& bag)
{
    const std::string rate = Stored(bag, MovTimeCodeRate);
    const std::string modulus = Stored(bag, MovTimeCodeModulus);
    const std::string mode = Stored(bag, ContainerProperty::MovTimeCodeMode);
    EXPECT_EQ(rate.size(), 8u);
    EXPECT_EQ(modulus.size(), 1u);
    EXPECT_EQ(mode.size(), 4u);
    if (rate.size() != 8 || modulus.size() != 1 || mode.size() != 4)
        return CTimeCode();
    CTimeCode timeCode(LoadLittle32(rate, 0), LoadLittle32(rate, 4), uint8_t(modulus[0]),
                       (LoadLittle32(mode, 0) & MovTimeCodeDescription::DropFrame) != 0);
    timeCode.FromString(Stored(bag, ContainerProperty::TimeCode).c_str(), true);
    return timeCode;
}

// The timecode track's description entry and first sample in a file.
struct TimeCodeTrack {
    MovBox entry;
    std::string sample;
};

bool FindTimeCodeTrack(const std::string& file, TimeCodeTrack& track)
{
    MovBox moov;
    if (!FindPath(file, "moov", moov))
        return false;
    for (const MovBox& trak : Children(moov, TypeOf("trak"))) {
        MovBox mdia, hdlr, stbl, stsd, stco;
        const std::vector<MovBox> inTrak = Children(trak, TypeOf("mdia"));
        if (inTrak.empty())
            continue;
        mdia = inTrak.front();
        const std::vector<MovBox> handlers = Children(mdia, TypeOf("hdlr"));
        if (handlers.empty() || handlers.front().size < 12 ||
            BigEndian::Load32(handlers.front().payload + 8) != TypeOf("tmcd"))
            continue;
        const std::vector<MovBox> minf = Children(mdia, TypeOf("minf"));
        if (minf.empty() || Children(minf.front(), TypeOf("stbl")).empty())
            return false;
        stbl = Children(minf.front(), TypeOf("stbl")).front();
        const std::vector<MovBox> descriptions = Children(stbl, TypeOf("stsd"));
        const std::vector<MovBox> offsets = Children(stbl, TypeOf("stco"));
        if (descriptions.empty() || offsets.empty() || descriptions.front().size < 8 || offsets.front().size < 12)
            return false;
        stsd = descriptions.front();
        MovBoxIterator entries(stsd.payload + 8, stsd.size - 8, 0, stsd.type);
        if (entries.Next(track.entry) != 0 || track.entry.type != TypeOf("tmcd"))
            return false;
        const uint32_t offset = BigEndian::Load32(offsets.front().payload + 8);
        if (offset > file.size() || file.size() - offset < 4)
            return false;
        track.sample = file.substr(offset, 4);
        return true;
    }
    return false;
}

// Reads a file's timecode track as the reader will and compares the start
// with ffprobe's; `rate` is the video's frame rate as given to the writer.
void ExpectStartOfFfprobe(const std::string& file, const std::string& path, const std::string& rate)
{
    const std::string expected = JsonValue(Probe(path, "-show_streams"), "timecode");
    ASSERT_FALSE(expected.empty());
    TimeCodeTrack track;
    ASSERT_TRUE(FindTimeCodeTrack(file, track));
    MovTimeCodeDescription description{};
    ASSERT_EQ(ReadTimeCodeDescription(track.entry, description), RESULT_OK);
    IProperties bag;
    ASSERT_EQ(ApplyStartTimeCode(description, DataOf(track.sample), track.sample.size(), &bag), RESULT_OK);
    EXPECT_EQ(Stored(bag, ContainerProperty::TimeCode), expected);
    CTimeCode rebuilt = Rebuilt(bag);
    EXPECT_EQ(rebuilt.IsDropFrame(), expected.find(';') != std::string::npos);
    EXPECT_DOUBLE_EQ(rebuilt.GetFrameRate(), rate.find('/') != std::string::npos ? Ratio(rate) : std::atof(rate.c_str()));
    EXPECT_EQ(rebuilt.GetTotalFrames(), int32_t(BigEndian::Load32(DataOf(track.sample))));
    EXPECT_EQ(std::string(rebuilt.ToString(nullptr, ';')), expected);
}

struct FfmpegCase {
    const char* timeCode;
    const char* rate;
    const char* format;
};

TEST(MovTimeCode, FfmpegTracksAgreeWithFfprobe)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "ffmpeg/ffprobe not available";
    const FfmpegCase cases[] = {
        {"01:02:03;04", "30000/1001", "mov"}, {"01:02:03;04", "30000/1001", "mp4"},
        {"10:00:00:00", "25", "mov"},         {"23:59:59:24", "25", "mp4"},
        {"00:59:59:23", "24000/1001", "mov"}, {"00:01:00;04", "60000/1001", "mov"},
        {"00:10:00;00", "60000/1001", "mp4"}, {"12:34:56:12", "24", "mp4"},
    };
    TempDir dir;
    for (const FfmpegCase& c : cases) {
        SCOPED_TRACE(std::string(c.timeCode) + " at " + c.rate + " in " + c.format);
        const std::string name = std::string("tc.") + c.format;
        const std::string file = Encode(dir, std::string("testsrc=d=0.2:s=64x48:r=") + c.rate,
                                        std::string("-c:v mpeg4 -timecode '") + c.timeCode + "' -f " + c.format, name);
        ASSERT_FALSE(file.empty());
        ExpectStartOfFfprobe(file, dir.File(name), c.rate);
    }
}

struct GstreamerCase {
    const char* rate;
    bool dropFrame;
    int startFrame;
};

TEST(MovTimeCode, GstreamerTracksAgreeWithFfprobe)
{
    VEK_REQUIRE_GSTREAMER();
    const GstreamerCase cases[] = {
        {"30000/1001", true, 107892}, {"30000/1001", false, 107892}, {"25/1", false, 12345},
        {"60000/1001", true, 3600 * 60 - 7}, {"24000/1001", false, 86399},
    };
    TempDir dir;
    for (const GstreamerCase& c : cases) {
        SCOPED_TRACE(std::string(c.rate) + (c.dropFrame ? " drop, " : ", ") + std::to_string(c.startFrame));
        const std::string file = GstTimeCodeMux(dir, c.rate, c.dropFrame, c.startFrame, "tc.mov");
        ASSERT_FALSE(file.empty());
        ExpectStartOfFfprobe(file, dir.File("tc.mov"), c.rate);
    }
}

struct StartCase {
    const char* name;
    std::string entry;
    int32_t frame;
    std::string expected;
};

TEST(MovTimeCode, StartTextFollowsTheFlags)
{
    const StartCase cases[] = {
        {"25 fps", Entry(0, 25, 1, 25), 90000, "01:00:00:00"},
        {"29.97 drop skips labels", Entry(1, 30000, 1001, 30), 1800, "00:01:00;02"},
        {"29.97 non-drop keeps them", Entry(0, 30000, 1001, 30), 1800, "00:01:00:00"},
        {"negative time wraps into the day", Entry(4, 25, 1, 25), -1, "23:59:59:24"},
        {"counter is a count", Entry(8, 600, 20, 30), 1234, "1234"},
    };
    for (const StartCase& c : cases) {
        SCOPED_TRACE(c.name);
        MovTimeCodeDescription description{};
        ASSERT_EQ(ReadTimeCodeDescription(SpanBox(c.entry, TypeOf("tmcd")), description), RESULT_OK);
        const std::string sample = Be32(uint32_t(c.frame));
        IProperties bag;
        ASSERT_EQ(ApplyStartTimeCode(description, DataOf(sample), sample.size(), &bag), RESULT_OK);
        EXPECT_EQ(Stored(bag, ContainerProperty::TimeCode), c.expected);
        EXPECT_EQ(LoadLittle32(Stored(bag, ContainerProperty::MovTimeCodeMode), 0), description.flags);
    }
}

struct RefusedCase {
    const char* name;
    std::string entry;
    std::string sample;
    const char* logged;
};

TEST(MovTimeCode, RefusesWhatCannotCountFrames)
{
    const RefusedCase cases[] = {
        {"entry cut before its frame count", Entry(0, 25, 1, 25).substr(0, 24), Be32(0), "shorter than its 25 bytes"},
        {"zero time scale", Entry(0, 0, 1, 25), Be32(0), "rate 0/1 with 25 frames"},
        {"zero frame duration", Entry(0, 25, 0, 25), Be32(0), "rate 25/0 with 25 frames"},
        {"zero frames per second", Entry(0, 25, 1, 0), Be32(0), "with 0 frames per second"},
        {"sample cut", Entry(0, 25, 1, 25), std::string("\0\0\1", 3), "has 3 bytes, fewer than its 4-byte frame number"},
    };
    for (const RefusedCase& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        MovTimeCodeDescription description{};
        int result = ReadTimeCodeDescription(SpanBox(c.entry, TypeOf("tmcd")), description);
        IProperties bag;
        if (result == RESULT_OK)
            result = ApplyStartTimeCode(description, DataOf(c.sample), c.sample.size(), &bag);
        EXPECT_EQ(result, RESULT_FORMAT_ERROR);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        EXPECT_EQ(bag.GetPropertyCount(), 0);
    }
    // A description the reader refused is refused again when applied.
    const MovTimeCodeDescription zero{};
    const std::string sample = Be32(0);
    IProperties bag;
    EXPECT_EQ(ApplyStartTimeCode(zero, DataOf(sample), 4, &bag), RESULT_FORMAT_ERROR);
    EXPECT_EQ(ApplyStartTimeCode(zero, DataOf(sample), 4, nullptr), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(ApplyStartTimeCode(zero, nullptr, 4, &bag), RESULT_ARGUMENT_NULL);
}

TEST(MovTimeCode, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    const MovTimeCodeDescription description{1, 30000, 1001, 30};
    const std::string sample = Be32(107892);
    WalkAllocationFailures("start timecode", [&] {
        IProperties bag;
        const int result = ApplyStartTimeCode(description, DataOf(sample), sample.size(), &bag);
        if (result == RESULT_OUT_OF_MEMORY)
            return true;
        return result == RESULT_OK && Stored(bag, ContainerProperty::TimeCode) == "01:00:00;00";
    });
#endif
}

} // namespace
