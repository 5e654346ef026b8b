#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include <vek/core/Result.h>
#include <vek/elementary/MpegVideoHeaders.h>

#include "BitPacking.h"
#include "ExternalStreams.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct Picture {
    size_t gop;
    MpegVideoPictureHeader header;
    bool hasCodingExtension = false;
    MpegVideoPictureCodingExtension coding;
};

struct ParsedStream {
    MpegVideoSequence sequence;
    std::vector<MpegVideoGopHeader> gops;
    std::vector<size_t> picturesBeforeGop;
    std::vector<Picture> pictures; // in stream order
};

// Walks every start code as a reader would; fails the test on any refusal.
void ParseStream(const std::string& bytes, ParsedStream& out)
{
    const uint8_t* data = DataOf(bytes);
    bool sawSequence = false;
    for (size_t at = FindMpegStartCode(data, bytes.size(), 0); at + 4 <= bytes.size();) {
        const size_t next = FindMpegStartCode(data, bytes.size(), at + 4);
        const uint8_t* p = data + at + 4;
        const size_t n = next - at - 4;
        switch (data[at + 3]) {
        case MpegVideoStartCode::SequenceHeader:
            if (!sawSequence) {
                ASSERT_EQ(MpegVideoSequenceHeader::Parse(p, n, out.sequence.header), 0);
            }
            sawSequence = true;
            break;
        case MpegVideoStartCode::Extension:
            switch (MpegVideoExtensionId(p, n)) {
            case MpegVideoExtension::Sequence:
                ASSERT_EQ(MpegVideoSequenceExtension::Parse(p, n, out.sequence.extension), 0);
                out.sequence.mpeg2 = true;
                break;
            case MpegVideoExtension::SequenceDisplay:
                ASSERT_EQ(MpegVideoSequenceDisplayExtension::Parse(p, n, out.sequence.display), 0);
                out.sequence.hasDisplayExtension = true;
                break;
            case MpegVideoExtension::PictureCoding:
                ASSERT_FALSE(out.pictures.empty());
                ASSERT_EQ(MpegVideoPictureCodingExtension::Parse(p, n, out.pictures.back().coding), 0);
                out.pictures.back().hasCodingExtension = true;
                break;
            default:
                break;
            }
            break;
        case MpegVideoStartCode::GroupOfPictures:
            out.gops.emplace_back();
            out.picturesBeforeGop.push_back(out.pictures.size());
            ASSERT_EQ(MpegVideoGopHeader::Parse(p, n, out.gops.back()), 0);
            break;
        case MpegVideoStartCode::Picture:
            out.pictures.push_back({out.gops.size()});
            ASSERT_EQ(MpegVideoPictureHeader::Parse(p, n, out.pictures.back().header), 0);
            break;
        default:
            break;
        }
        at = next;
    }
    ASSERT_TRUE(sawSequence);
}

std::vector<Picture> DisplayOrder(std::vector<Picture> pictures)
{
    std::stable_sort(pictures.begin(), pictures.end(), [](const Picture& a, const Picture& b) {
        return a.gop != b.gop ? a.gop < b.gop : a.header.temporalReference < b.header.temporalReference;
    });
    return pictures;
}

std::string Fraction(int32_t n, int32_t d, char separator)
{
    return std::to_string(n) + separator + std::to_string(d);
}

struct EncodeCase {
    const char* name;
    const char* source;
    const char* options;
    bool mpeg2;
    double sarTolerance; // MPEG-1 pel aspects are rounded by ffmpeg
};

const EncodeCase Encodes[] = {
    {"MPEG-1 320x240", "testsrc=s=320x240:r=25:d=0.8", "-c:v mpeg1video -bf 2", false, 0},
    {"MPEG-1 16:9 at 720x576", "testsrc=s=720x576:r=25:d=0.4", "-c:v mpeg1video -aspect 16:9", false, 0.01},
    {"MPEG-1 23.976 fps", "testsrc=s=352x240:r=24000/1001:d=0.5", "-c:v mpeg1video", false, 0},
    {"MPEG-2 progressive 4:3 29.97", "testsrc=s=720x480:r=30000/1001:d=0.5",
     "-c:v mpeg2video -aspect 4:3 -bf 2", true, 0},
    {"MPEG-2 interlaced top first", "testsrc=s=720x576:r=25:d=0.6",
     "-c:v mpeg2video -flags +ildct+ilme -top 1 -bf 2", true, 0},
    {"MPEG-2 interlaced bottom first", "testsrc=s=720x576:r=25:d=0.6", "-c:v mpeg2video -flags +ildct+ilme -top 0",
     true, 0},
    {"MPEG-2 4:2:2", "testsrc=s=720x576:r=25:d=0.4", "-c:v mpeg2video -pix_fmt yuv422p", true, 0},
    {"MPEG-2 16:9 with colour", "testsrc=s=1280x720:r=50:d=0.3",
     "-c:v mpeg2video -aspect 16:9 -color_primaries bt709 -color_trc bt709 -colorspace bt709", true, 0},
    {"MPEG-2 15 fps by the rate extension", "testsrc=s=352x288:r=15:d=0.6", "-c:v mpeg2video", true, 0},
};

const char* PixelFormat(uint8_t chromaFormat)
{
    return chromaFormat == 1 ? "yuv420p" : chromaFormat == 2 ? "yuv422p" : "yuv444p";
}

std::string ProfileName(const MpegVideoSequence& s)
{
    if (s.extension.profileAndLevel & 0x80)
        return "4:2:2";
    switch (s.extension.Profile()) {
    case 1: return "High";
    case 4: return "Main";
    case 5: return "Simple";
    default: return "?";
    }
}

std::string FieldOrder(const Picture& first)
{
    if (!first.hasCodingExtension || first.coding.progressiveFrame)
        return "progressive";
    return first.coding.topFieldFirst ? "tt" : "bb";
}

TEST(MpegVideoHeaders, SequencesAndPicturesMatchFfprobe)
{
    if (!HasFfmpeg() || !HasEncoder("mpeg1video") || !HasEncoder("mpeg2video"))
        GTEST_SKIP() << "ffmpeg with its MPEG-1 and MPEG-2 encoders is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        const std::string bytes = Encode(dir, c.source, std::string(c.options) + (c.mpeg2 ? " -f mpeg2video" : " -f mpeg1video"), "v.mpg");
        ASSERT_FALSE(bytes.empty());
        ParsedStream parsed;
        ParseStream(bytes, parsed);
        if (HasFatalFailure())
            return;
        const MpegVideoSequence& s = parsed.sequence;
        const std::string probe = Probe(dir.File("v.mpg"), "-show_streams -show_frames");
        EXPECT_EQ(s.mpeg2, c.mpeg2);
        EXPECT_EQ(std::to_string(s.Width()), JsonValue(probe, "width"));
        EXPECT_EQ(std::to_string(s.Height()), JsonValue(probe, "height"));
        EXPECT_EQ(PixelFormat(s.ChromaFormat()), JsonValue(probe, "pix_fmt"));
        int32_t n = 0, d = 0;
        ASSERT_EQ(s.GetFrameRate(n, d), 0);
        EXPECT_EQ(Fraction(n, d, '/'), JsonValue(probe, "r_frame_rate"));
        ASSERT_EQ(s.GetSampleAspectRatio(n, d), 0);
        EXPECT_NEAR(double(n) / d, Ratio(JsonValue(probe, "sample_aspect_ratio")), c.sarTolerance + 1e-9);
        if (c.sarTolerance == 0) {
            EXPECT_EQ(Fraction(n, d, ':'), JsonValue(probe, "sample_aspect_ratio"));
        }
        ASSERT_EQ(s.GetDisplayAspectRatio(n, d), 0);
        EXPECT_NEAR(double(n) / d, Ratio(JsonValue(probe, "display_aspect_ratio")), 2 * c.sarTolerance + 1e-9);
        const std::string bitRate = JsonValue(probe, "bit_rate");
        if (!bitRate.empty() && !c.mpeg2) {
            EXPECT_EQ(std::to_string(s.BitRate()), bitRate);
        }
        if (c.mpeg2) {
            EXPECT_EQ(ProfileName(s), JsonValue(probe, "profile"));
            if (!(s.extension.profileAndLevel & 0x80)) {
                EXPECT_EQ(std::to_string(s.extension.Level()), JsonValue(probe, "level"));
            }
        }
        if (s.hasDisplayExtension && s.display.colourDescription) {
            EXPECT_EQ(s.display.colourPrimaries == 1 ? "bt709" : "?", JsonValue(probe, "color_primaries"));
        }

        const std::vector<Picture> display = DisplayOrder(parsed.pictures);
        ASSERT_FALSE(display.empty());
        if (c.mpeg2) {
            EXPECT_EQ(FieldOrder(parsed.pictures.front()), JsonValue(probe, "field_order"));
        }
        const std::vector<std::string> types = JsonValues(probe, "pict_type");
        const std::vector<std::string> interlaced = JsonValues(probe, "interlaced_frame");
        const std::vector<std::string> topFirst = JsonValues(probe, "top_field_first");
        ASSERT_EQ(display.size(), types.size());
        for (size_t i = 0; i < display.size(); ++i) {
            SCOPED_TRACE("display frame " + std::to_string(i));
            const char type[2] = {"?IPBD"[int(display[i].header.type)], 0};
            EXPECT_EQ(type, types[i]);
            if (display[i].hasCodingExtension && i < interlaced.size()) {
                EXPECT_EQ(display[i].coding.structure, MpegPictureStructure::Frame);
                EXPECT_EQ(display[i].coding.progressiveFrame ? "0" : "1", interlaced[i]);
                if (!display[i].coding.progressiveFrame) {
                    EXPECT_EQ(display[i].coding.topFieldFirst ? "1" : "0", topFirst[i]);
                }
            }
        }
        // Each GOP's time code counts the pictures before it (whole rates).
        ASSERT_EQ(s.GetFrameRate(n, d), 0);
        if (d == 1) {
            for (size_t g = 0; g < parsed.gops.size(); ++g) {
                const MpegVideoGopHeader& gop = parsed.gops[g];
                const int64_t frames = ((gop.hours * 60 + gop.minutes) * 60 + gop.seconds) * int64_t(n) + gop.pictures;
                EXPECT_EQ(frames, int64_t(parsed.picturesBeforeGop[g])) << "GOP " << g;
            }
        }
    }
}

struct HostileCase {
    const char* name;
    std::vector<uint8_t> bytes;
    int (*parse)(const std::vector<uint8_t>&);
    const char* logText;
};

int ParseSequence(const std::vector<uint8_t>& b)
{
    MpegVideoSequenceHeader h;
    return MpegVideoSequenceHeader::Parse(b.data(), b.size(), h);
}

int ParseSequenceExtension(const std::vector<uint8_t>& b)
{
    MpegVideoSequenceExtension e;
    return MpegVideoSequenceExtension::Parse(b.data(), b.size(), e);
}

int ParsePicture(const std::vector<uint8_t>& b)
{
    MpegVideoPictureHeader h;
    return MpegVideoPictureHeader::Parse(b.data(), b.size(), h);
}

int ParseCoding(const std::vector<uint8_t>& b)
{
    MpegVideoPictureCodingExtension e;
    return MpegVideoPictureCodingExtension::Parse(b.data(), b.size(), e);
}

int ParseGop(const std::vector<uint8_t>& b)
{
    MpegVideoGopHeader g;
    return MpegVideoGopHeader::Parse(b.data(), b.size(), g);
}

std::vector<uint8_t> Sequence(uint32_t width, uint32_t aspect, uint32_t rate, uint32_t marker, uint32_t intra)
{
    return PackBits({{width, 12}, {240, 12}, {aspect, 4}, {rate, 4}, {1000, 18}, {marker, 1}, {20, 10}, {0, 1},
                     {intra, 1}, {0, 1}});
}

std::vector<uint8_t> Coding(uint32_t fcode, uint32_t structure)
{
    return PackBits({{8, 4}, {fcode, 4}, {fcode, 4}, {15, 4}, {15, 4}, {0, 2}, {structure, 2}, {0, 8}, {0, 8}});
}

const HostileCase Hostile[] = {
    {"width 0", Sequence(0, 1, 3, 1, 0), ParseSequence, "horizontal_size_value 0"},
    {"aspect 0", Sequence(320, 0, 3, 1, 0), ParseSequence, "aspect_ratio_information 0"},
    {"aspect 15", Sequence(320, 15, 3, 1, 0), ParseSequence, "aspect_ratio_information 15"},
    {"frame rate 0", Sequence(320, 1, 0, 1, 0), ParseSequence, "frame_rate_code 0"},
    {"frame rate 9", Sequence(320, 1, 9, 1, 0), ParseSequence, "frame_rate_code 9"},
    {"missing marker", Sequence(320, 1, 3, 0, 0), ParseSequence, "marker bit after bit_rate_value"},
    {"intra matrix announced but cut", Sequence(320, 1, 3, 1, 1), ParseSequence, "end inside"},
    {"chroma format 0", PackBits({{1, 4}, {0x48, 8}, {1, 1}, {0, 2}, {0, 4}, {0, 12}, {1, 1}, {0, 8}, {0, 8}}),
     ParseSequenceExtension, "chroma_format 0"},
    {"picture extension where a sequence one belongs", Coding(1, 3), ParseSequenceExtension,
     "extension_start_code_identifier 8"},
    {"picture type 0", PackBits({{0, 10}, {0, 3}, {0xFFFF, 16}, {0, 8}}), ParsePicture, "picture_coding_type 0"},
    {"picture type 5", PackBits({{0, 10}, {5, 3}, {0xFFFF, 16}, {0, 8}}), ParsePicture, "picture_coding_type 5"},
    {"P picture f_code 0", PackBits({{0, 10}, {2, 3}, {0xFFFF, 16}, {0, 1}, {0, 3}, {0, 8}}), ParsePicture,
     "forward_f_code 0"},
    {"picture structure 0", Coding(1, 0), ParseCoding, "picture_structure 0"},
    {"f_code 0", Coding(0, 3), ParseCoding, "f_code 0"},
    {"f_code 10", Coding(10, 3), ParseCoding, "f_code 10"},
    {"GOP minutes 60", PackBits({{0, 1}, {0, 5}, {60, 6}, {1, 1}, {0, 6}, {0, 6}, {0, 2}, {0, 5}}), ParseGop,
     "time_code_minutes 60"},
    {"truncated picture", {0x00}, ParsePicture, "1 bytes end inside"},
    {"zeros", std::vector<uint8_t>(16, 0), ParseSequence, "horizontal_size_value 0"},
};

TEST(MpegVideoHeaders, HostileHeadersAreRefusedWithALogLine)
{
    for (const HostileCase& c : Hostile) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        EXPECT_EQ(c.parse(c.bytes), RESULT_FORMAT_ERROR);
        EXPECT_GE(log.Count(c.logText), 1u) << log.Text();
    }
}

TEST(MpegVideoHeaders, StartCodesAreFoundAndEndlessZerosEndCleanly)
{
    const std::vector<uint8_t> zeros(4096, 0);
    EXPECT_EQ(FindMpegStartCode(zeros.data(), zeros.size(), 0), zeros.size());
    const uint8_t bytes[] = {0xFF, 0, 0, 0, 1, 0xB3, 0, 0, 1};
    EXPECT_EQ(FindMpegStartCode(bytes, sizeof bytes, 0), 2u);
    EXPECT_EQ(FindMpegStartCode(bytes, sizeof bytes, 3), 6u);
    EXPECT_EQ(FindMpegStartCode(bytes, sizeof bytes, 7), sizeof bytes);
    EXPECT_EQ(FindMpegStartCode(bytes, 2, 0), 2u);
}

} // namespace
