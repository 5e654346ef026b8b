#include <gtest/gtest.h>

#include <algorithm>

#include <vek/core/Result.h>
#include <vek/elementary/Mpeg4VideoHeaders.h>
#include <vek/elementary/MpegVideoHeaders.h>

#include "BitPacking.h"
#include "ExternalStreams.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct Vop {
    Mpeg4VopHeader header;
    int64_t ticks; // the VOP's time in ticks of the layer's resolution
};

struct ParsedStream {
    bool haveSequence = false, haveLayer = false;
    Mpeg4VisualObjectSequence sequence;
    Mpeg4VisualObject object;
    Mpeg4VideoObjectLayer layer;
    std::vector<Vop> vops; // in stream order
};

// Walks every start code; VOP times follow the decoder's rule: references
// advance the time base by modulo_time_base, B-VOPs count from the base
// before the last reference.
void ParseStream(const std::string& bytes, ParsedStream& out)
{
    const uint8_t* data = DataOf(bytes);
    int64_t timeBase = 0, lastTimeBase = 0;
    for (size_t at = FindMpegStartCode(data, bytes.size(), 0); at + 4 <= bytes.size();) {
        const size_t next = FindMpegStartCode(data, bytes.size(), at + 4);
        const uint8_t* p = data + at + 4;
        const size_t n = next - at - 4;
        const uint8_t code = data[at + 3];
        if (code == Mpeg4VideoStartCode::VisualObjectSequence) {
            ASSERT_EQ(Mpeg4VisualObjectSequence::Parse(p, n, out.sequence), 0);
            out.haveSequence = true;
        } else if (code == Mpeg4VideoStartCode::VisualObject) {
            ASSERT_EQ(Mpeg4VisualObject::Parse(p, n, out.object), 0);
        } else if (code >= Mpeg4VideoStartCode::FirstVideoObjectLayer &&
                   code <= Mpeg4VideoStartCode::LastVideoObjectLayer) {
            ASSERT_EQ(Mpeg4VideoObjectLayer::Parse(p, n, out.layer, out.object.verid), 0);
            out.haveLayer = true;
        } else if (code == Mpeg4VideoStartCode::Vop) {
            ASSERT_TRUE(out.haveLayer);
            Vop vop;
            ASSERT_EQ(Mpeg4VopHeader::Parse(p, n, out.layer, vop.header), 0);
            int64_t seconds;
            if (vop.header.type != Mpeg4VopType::B) {
                lastTimeBase = timeBase;
                timeBase += vop.header.moduloTimeBase;
                seconds = timeBase;
            } else {
                seconds = lastTimeBase + vop.header.moduloTimeBase;
            }
            vop.ticks = seconds * out.layer.timeIncrementResolution + vop.header.timeIncrement;
            out.vops.push_back(vop);
        }
        at = next;
    }
    ASSERT_TRUE(out.haveLayer);
}

struct EncodeCase {
    const char* name;
    const char* source;
    const char* options;
};

const EncodeCase Encodes[] = {
    {"no B-VOPs", "testsrc=s=352x288:r=25:d=1.2", "-c:v mpeg4"},
    {"two B-VOPs", "testsrc=s=352x288:r=25:d=1.2", "-c:v mpeg4 -bf 2"},
    {"29.97 fps", "testsrc=s=320x240:r=30000/1001:d=0.5", "-c:v mpeg4 -bf 1"},
    {"12:11 samples", "testsrc=s=704x576:r=25:d=0.3", "-c:v mpeg4 -aspect 4:3"},
    {"extended 64:45 samples", "testsrc=s=720x576:r=25:d=0.3", "-c:v mpeg4 -aspect 16:9"},
    {"interlaced", "testsrc=s=720x576:r=25:d=0.3", "-c:v mpeg4 -flags +ildct+ilme"},
};

TEST(Mpeg4VideoHeaders, LayersAndVopsMatchFfprobe)
{
    if (!HasFfmpeg() || !HasEncoder("mpeg4"))
        GTEST_SKIP() << "ffmpeg with its mpeg4 encoder is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        const std::string bytes = Encode(dir, c.source, std::string(c.options) + " -f m4v", "v.m4v");
        ASSERT_FALSE(bytes.empty());
        ParsedStream parsed;
        ParseStream(bytes, parsed);
        if (HasFatalFailure())
            return;
        const Mpeg4VideoObjectLayer& layer = parsed.layer;
        const std::string probe = Probe(dir.File("v.m4v"), "-show_streams -show_frames");
        EXPECT_EQ(std::to_string(layer.width), JsonValue(probe, "width"));
        EXPECT_EQ(std::to_string(layer.height), JsonValue(probe, "height"));
        int32_t n = 0, d = 0;
        ASSERT_EQ(layer.GetSampleAspectRatio(n, d), 0);
        EXPECT_EQ(std::to_string(n) + ":" + std::to_string(d), JsonValue(probe, "sample_aspect_ratio"));
        if (parsed.haveSequence) {
            const uint8_t pl = parsed.sequence.profileAndLevel;
            const bool advancedSimple = (pl >> 4) == 0xF;
            EXPECT_EQ(advancedSimple ? "Advanced Simple Profile" : "Simple Profile", JsonValue(probe, "profile"));
            EXPECT_EQ(std::to_string(advancedSimple ? pl & 15 : pl), JsonValue(probe, "level"));
        }
        const std::string fieldOrder = JsonValue(probe, "field_order");
        if (!fieldOrder.empty()) {
            EXPECT_EQ(layer.interlaced, fieldOrder != "progressive");
        }

        // In display order every VOP lies one frame period after the last.
        std::vector<Vop> display = parsed.vops;
        std::stable_sort(display.begin(), display.end(), [](const Vop& a, const Vop& b) { return a.ticks < b.ticks; });
        const std::vector<std::string> types = JsonValues(probe, "pict_type");
        ASSERT_EQ(display.size(), types.size());
        const double rate = Ratio(JsonValue(probe, "r_frame_rate"));
        ASSERT_GT(rate, 0);
        for (size_t i = 0; i < display.size(); ++i) {
            SCOPED_TRACE("display frame " + std::to_string(i));
            const char type[2] = {"IPBS"[int(display[i].header.type)], 0};
            EXPECT_EQ(type, types[i]);
            const double seconds = double(display[i].ticks - display[0].ticks) / layer.timeIncrementResolution;
            EXPECT_NEAR(seconds, double(i) / rate, 1e-6);
            EXPECT_TRUE(display[i].header.coded);
        }
    }
}

std::vector<uint8_t> Layer(uint32_t aspect, uint32_t shape, uint32_t resolution, uint32_t width, uint32_t marker)
{
    std::vector<BitField> fields = {{0, 1}, {1, 8}, {0, 1}, {aspect, 4}};
    if (aspect == 15)
        fields.insert(fields.end(), {{0, 8}, {11, 8}});
    fields.insert(fields.end(), {{0, 1}, {shape, 2}, {1, 1}, {resolution, 16}, {marker, 1}, {0, 1}, {1, 1},
                                 {width, 13}, {1, 1}, {288, 13}, {1, 1}, {0, 1}, {1, 1}, {0, 1}, {0, 8}});
    return PackFields(fields);
}

struct HostileCase {
    const char* name;
    std::vector<uint8_t> bytes;
    int result;
    const char* logText;
};

const HostileCase HostileLayers[] = {
    {"binary shape", Layer(1, 1, 25, 352, 1), RESULT_NOT_SUPPORTED, "video_object_layer_shape 1"},
    {"grey-scale shape", Layer(1, 3, 25, 352, 1), RESULT_NOT_SUPPORTED, "video_object_layer_shape 3"},
    {"aspect 0", Layer(0, 0, 25, 352, 1), RESULT_FORMAT_ERROR, "aspect_ratio_info 0"},
    {"aspect 7", Layer(7, 0, 25, 352, 1), RESULT_FORMAT_ERROR, "aspect_ratio_info 7"},
    {"extended PAR with width 0", Layer(15, 0, 25, 352, 1), RESULT_FORMAT_ERROR, "par_width/par_height"},
    {"resolution 0", Layer(1, 0, 0, 352, 1), RESULT_FORMAT_ERROR, "vop_time_increment_resolution 0"},
    {"width 0", Layer(1, 0, 25, 0, 1), RESULT_FORMAT_ERROR, "video_object_layer_width 0"},
    {"missing marker", Layer(1, 0, 25, 352, 0), RESULT_FORMAT_ERROR, "after vop_time_increment_resolution"},
    {"truncated", Truncated(Layer(1, 0, 25, 352, 1), 5), RESULT_FORMAT_ERROR, "5 bytes end inside"},
    {"zeros", std::vector<uint8_t>(64, 0), RESULT_FORMAT_ERROR, "aspect_ratio_info 0"},
};

TEST(Mpeg4VideoHeaders, HostileLayersAreRefusedWithALogLine)
{
    for (const HostileCase& c : HostileLayers) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        Mpeg4VideoObjectLayer layer;
        EXPECT_EQ(Mpeg4VideoObjectLayer::Parse(c.bytes.data(), c.bytes.size(), layer), c.result);
        EXPECT_GE(log.Count(c.logText), 1u) << log.Text();
    }
}

TEST(Mpeg4VideoHeaders, VopTimeIncrementsUseTheLayersWidthAndStayBelowTheResolution)
{
    Mpeg4VideoObjectLayer layer;
    const std::vector<uint8_t> bytes = Layer(1, 0, 25, 352, 1);
    ASSERT_EQ(Mpeg4VideoObjectLayer::Parse(bytes.data(), bytes.size(), layer), 0);
    EXPECT_EQ(layer.timeIncrementBits, 5); // 0..24
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        int result;
        Mpeg4VopType type;
        uint32_t modulo;
        uint16_t increment;
    } cases[] = {
        {"P-VOP two seconds on", PackBits({{1, 2}, {3, 2}, {0, 1}, {1, 1}, {24, 5}, {1, 1}, {1, 1}, {0, 3}}), 0,
         Mpeg4VopType::P, 2, 24},
        {"increment past the resolution", PackBits({{0, 2}, {0, 1}, {1, 1}, {25, 5}, {1, 1}, {1, 1}, {0, 5}}),
         RESULT_FORMAT_ERROR},
        {"S-VOP without sprites", PackBits({{3, 2}, {0, 1}, {1, 1}, {3, 5}, {1, 1}, {1, 1}, {0, 5}}),
         RESULT_FORMAT_ERROR},
        {"missing marker", PackBits({{0, 2}, {0, 1}, {0, 1}, {3, 5}, {1, 1}, {1, 1}, {0, 5}}), RESULT_FORMAT_ERROR},
        {"endless modulo_time_base", std::vector<uint8_t>(64, 0xFF), RESULT_FORMAT_ERROR},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Mpeg4VopHeader vop;
        ASSERT_EQ(Mpeg4VopHeader::Parse(c.bytes.data(), c.bytes.size(), layer, vop), c.result);
        if (c.result != 0)
            continue;
        EXPECT_EQ(vop.type, c.type);
        EXPECT_EQ(vop.moduloTimeBase, c.modulo);
        EXPECT_EQ(vop.timeIncrement, c.increment);
    }
}

} // namespace
