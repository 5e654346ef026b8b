#include <gtest/gtest.h>

#include <vek/core/Result.h>
#include <vek/elementary/Ac3Headers.h>

#include "BitPacking.h"
#include "ExternalStreams.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct EncodeCase {
    const char* name;
    const char* encoder;
    const char* options;
};

const EncodeCase Encodes[] = {
    {"AC-3 5.1 48 kHz 448k", "ac3", "-ac 6 -ar 48000 -b:a 448k"},
    {"AC-3 stereo 44.1 kHz 192k", "ac3", "-ac 2 -ar 44100 -b:a 192k"},
    {"AC-3 mono 32 kHz 96k", "ac3", "-ac 1 -ar 32000 -b:a 96k"},
    {"AC-3 3.0(back)", "ac3", "-af 'aformat=channel_layouts=3.0(back)' -ar 48000"},
    {"AC-3 4.1", "ac3", "-af 'aformat=channel_layouts=4.1' -ar 48000"},
    {"AC-3 quad(side)", "ac3", "-af 'aformat=channel_layouts=quad(side)' -ar 48000"},
    {"E-AC-3 stereo 48 kHz", "eac3", "-ac 2 -ar 48000 -b:a 192k"},
    {"E-AC-3 5.1 44.1 kHz", "eac3", "-ac 6 -ar 44100"},
    {"E-AC-3 mono 32 kHz", "eac3", "-ac 1 -ar 32000 -b:a 64k"},
};

TEST(Ac3Headers, SyncFramesAndDecoderConfigurationsMatchFfmpeg)
{
    if (!HasFfmpeg() || !HasEncoder("ac3") || !HasEncoder("eac3"))
        GTEST_SKIP() << "ffmpeg with its ac3 and eac3 encoders is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        const std::string name = std::string("a.") + c.encoder;
        const std::string stream =
            Encode(dir, "sine=f=440:d=1", std::string(c.options) + " -c:a " + c.encoder, name);
        ASSERT_FALSE(stream.empty());
        const std::string probe = Probe(dir.File(name), "-show_streams -show_packets");
        const std::vector<std::string> packetSizes = JsonValues(probe, "size");

        Ac3SyncFrame first;
        size_t frames = 0;
        for (size_t at = 0; at < stream.size(); ++frames) {
            Ac3SyncFrame f;
            ASSERT_EQ(Ac3SyncFrame::Parse(DataOf(stream) + at, stream.size() - at, f), 0) << "frame " << frames;
            if (frames == 0)
                first = f;
            ASSERT_LT(frames, packetSizes.size());
            EXPECT_EQ(std::to_string(f.frameBytes), packetSizes[frames]);
            at += size_t(f.frameBytes);
        }
        EXPECT_EQ(frames, packetSizes.size());
        EXPECT_EQ(first.enhanced, std::string(c.encoder) == "eac3");
        EXPECT_EQ(first.samplesPerFrame, 1536);
        EXPECT_EQ(std::to_string(first.sampleRate), JsonValue(probe, "sample_rate"));
        EXPECT_EQ(std::to_string(first.Channels()), JsonValue(probe, "channels"));
        EXPECT_EQ(first.ChannelMask(), FfmpegLayoutMask(JsonValue(probe, "channel_layout")));
        EXPECT_EQ(std::to_string(first.bitRate), JsonValue(probe, "bit_rate"));

        // The MP4 muxer's 'dac3' or 'dec3' payload is what ours writes.
        const std::string mp4 = dir.File("a.mp4");
        ASSERT_EQ(std::system(("ffmpeg -v error -nostdin -y -i '" + dir.File(name) + "' -c copy '" + mp4 + "'")
                                  .c_str()),
                  0);
        uint8_t box[32];
        size_t written = 0;
        if (first.enhanced)
            ASSERT_EQ(WriteEac3DecoderConfig(&first, 1, box, sizeof box, written), 0);
        else
            ASSERT_EQ(first.WriteDac3(box, sizeof box, written), 0);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(box), written),
                  BoxPayload(ReadFile(mp4), first.enhanced ? "dec3" : "dac3"));
    }
}

// E-AC-3 bit stream information up to the informational metadata; a
// channelMap below 0 leaves the map out.
std::vector<uint8_t> Eac3Frame(uint32_t streamType, uint32_t substream, uint32_t acmod, uint32_t lfe,
                               int32_t channelMap, uint32_t bsmod)
{
    std::vector<BitField> fields = {{0x0B77, 16}, {streamType, 2}, {substream, 3}, {383, 11}, {0, 2}, {3, 2},
                                    {acmod, 3},   {lfe, 1},        {16, 5},        {27, 5},   {0, 1}};
    if (streamType == 1) {
        fields.push_back({channelMap >= 0 ? 1u : 0u, 1});
        if (channelMap >= 0)
            fields.push_back({uint32_t(channelMap), 16});
    }
    for (BitField f : {BitField{0, 1}, BitField{1, 1}, BitField{bsmod, 3}, BitField{0, 32}, BitField{0, 32}})
        fields.push_back(f);
    return PackFields(fields);
}

TEST(Ac3Headers, DependentSubstreamsExtendTheChannelsAndTheDecoderConfiguration)
{
    // A 5.1 independent substream with a dependent one that carries the back
    // pair (Lrs/Rrs) for 7.1, and an independent commentary (bsmod 2).
    const std::vector<uint8_t> main = Eac3Frame(0, 0, 7, 1, -1, 0);
    const std::vector<uint8_t> back = Eac3Frame(1, 0, 2, 0, 0x0200, 0);
    const std::vector<uint8_t> commentary = Eac3Frame(0, 1, 1, 0, -1, 2);
    Ac3SyncFrame set[3];
    ASSERT_EQ(Ac3SyncFrame::Parse(main.data(), main.size(), set[0]), 0);
    ASSERT_EQ(Ac3SyncFrame::Parse(back.data(), back.size(), set[1]), 0);
    ASSERT_EQ(Ac3SyncFrame::Parse(commentary.data(), commentary.size(), set[2]), 0);
    EXPECT_EQ(set[0].Channels(), 6);
    EXPECT_EQ(set[1].streamType, Ac3SyncFrame::Dependent);
    EXPECT_TRUE(set[1].hasChannelMap);
    EXPECT_EQ(set[1].Channels(), 2);
    EXPECT_EQ(set[0].ChannelMask() | set[1].ChannelMask(), FfmpegLayoutMask("7.1"));
    EXPECT_EQ(set[2].bsmod, 2);
    EXPECT_EQ(set[0].frameBytes, 768);
    EXPECT_EQ(set[0].bitRate, 192000);

    uint8_t box[32];
    size_t written = 0;
    ASSERT_EQ(WriteEac3DecoderConfig(set, 3, box, sizeof box, written), 0);
    const std::vector<uint8_t> expected =
        PackBits({{576, 13}, {1, 3},                                                             // rate, two
                  {0, 2}, {16, 5}, {0, 2}, {0, 3}, {7, 3}, {1, 1}, {0, 3}, {1, 4}, {0x002, 9},  // 5.1 + back
                  {0, 2}, {16, 5}, {0, 2}, {2, 3}, {1, 3}, {0, 1}, {0, 3}, {0, 4}, {0, 1}});     // commentary
    EXPECT_EQ(std::vector<uint8_t>(box, box + written), expected);

    EXPECT_EQ(WriteEac3DecoderConfig(set + 1, 2, box, sizeof box, written), RESULT_FORMAT_ERROR);
    EXPECT_EQ(WriteEac3DecoderConfig(set, 3, box, 4, written), RESULT_ARGUMENT_OUT_OF_RANGE);
}

std::vector<uint8_t> Ac3Frame(uint32_t fscod, uint32_t frmsizecod, uint32_t bsid)
{
    return PackBits({{0x0B77, 16}, {0, 16}, {fscod, 2}, {frmsizecod, 6}, {bsid, 5}, {0, 3}, {2, 3}, {0, 2}, {0, 1},
                     {27, 5}, {0, 7}});
}

struct HostileCase {
    const char* name;
    std::vector<uint8_t> bytes;
    int result;
    const char* logText;
};

const HostileCase Hostile[] = {
    {"reduced-rate bsid 9", Ac3Frame(0, 10, 9), RESULT_NOT_SUPPORTED, "bsid 9"},
    {"bsid 17", Ac3Frame(0, 10, 17), RESULT_FORMAT_ERROR, "bsid 17"},
    {"fscod 3", Ac3Frame(3, 10, 8), RESULT_FORMAT_ERROR, "fscod 3"},
    {"frmsizecod 38", Ac3Frame(0, 38, 8), RESULT_FORMAT_ERROR, "frmsizecod 38"},
    {"strmtyp 3", Eac3Frame(3, 0, 2, 0, -1, 0), RESULT_FORMAT_ERROR, "strmtyp 3"},
    {"fscod2 3", PackBits({{0x0B77, 16}, {0, 2}, {0, 3}, {100, 11}, {3, 2}, {3, 2}, {2, 3}, {0, 1}, {16, 5}, {0, 24}}),
     RESULT_FORMAT_ERROR, "fscod2 3"},
    {"seven bytes", Truncated(Ac3Frame(0, 10, 8), 7), RESULT_FORMAT_ERROR, "7 bytes"},
    {"channel map cut off", Truncated(Eac3Frame(1, 0, 2, 0, 0x0200, 0), 8), RESULT_FORMAT_ERROR, "end inside"},
    {"zeros", std::vector<uint8_t>(64, 0), RESULT_FORMAT_ERROR, "syncword 0x0000"},
};

TEST(Ac3Headers, HostileFramesAreRefusedWithALogLine)
{
    for (const HostileCase& c : Hostile) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        Ac3SyncFrame f;
        EXPECT_EQ(Ac3SyncFrame::Parse(c.bytes.data(), c.bytes.size(), f), c.result);
        EXPECT_GE(log.Count(c.logText), 1u) << log.Text();
    }
    Ac3SyncFrame f;
    const std::vector<uint8_t> odd = Ac3Frame(1, 11, 8);
    ASSERT_EQ(Ac3SyncFrame::Parse(odd.data(), odd.size(), f), 0);
    const std::vector<uint8_t> even = Ac3Frame(1, 10, 8);
    Ac3SyncFrame g;
    ASSERT_EQ(Ac3SyncFrame::Parse(even.data(), even.size(), g), 0);
    EXPECT_EQ(f.frameBytes, g.frameBytes + 2); // 44.1 kHz frames alternate by one word
    EXPECT_EQ(f.bitRate, g.bitRate);
    EXPECT_EQ(Ac3SyncFrame::Parse(nullptr, 8, f), RESULT_ARGUMENT_NULL);
}

} // namespace
