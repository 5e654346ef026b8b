#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include <vek/core/Result.h>
#include <vek/elementary/MpegAudioInfoTag.h>

#include "ExternalStreams.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct EncodeCase {
    const char* name;
    const char* options;
    MpegAudioInfoTag::Kind kind;
    MpegAudioFrameHeader::Version version;
};

const EncodeCase Encodes[] = {
    {"MPEG-1 constant rate stereo", "-ac 2 -ar 44100 -b:a 128k", MpegAudioInfoTag::Info, MpegAudioFrameHeader::Mpeg1},
    {"MPEG-1 variable rate mono", "-ac 1 -ar 48000 -q:a 4", MpegAudioInfoTag::Xing, MpegAudioFrameHeader::Mpeg1},
    {"MPEG-2 constant rate stereo", "-ac 2 -ar 22050 -b:a 64k", MpegAudioInfoTag::Info, MpegAudioFrameHeader::Mpeg2},
    {"MPEG-2.5 variable rate mono", "-ac 1 -ar 8000 -q:a 6", MpegAudioInfoTag::Xing, MpegAudioFrameHeader::Mpeg25},
};

// ffmpeg trims the encoder delay plus the decoder's own 529 samples at the
// start, and the padding less those 529 at the end.
constexpr int DecoderDelay = 529;

TEST(MpegAudioInfoTag, LameTagsMatchFfmpegsTrimAndCounts)
{
    if (!HasFfmpeg() || !HasEncoder("libmp3lame"))
        GTEST_SKIP() << "ffmpeg with libmp3lame is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        const std::string mp3 = Encode(dir, "sine=f=440:d=1.3",
                                       std::string(c.options) + " -c:a libmp3lame -id3v2_version 0", "a.mp3");
        ASSERT_FALSE(mp3.empty());
        const std::string probe = Probe(dir.File("a.mp3"), "-show_streams -show_packets");

        MpegAudioInfoTag tag;
        ASSERT_EQ(MpegAudioInfoTag::Parse(DataOf(mp3), mp3.size(), tag), 0);
        EXPECT_EQ(tag.kind, c.kind);
        EXPECT_EQ(tag.frame.version, c.version);
        EXPECT_EQ(std::to_string(tag.frame.sampleRate), JsonValue(probe, "sample_rate"));
        EXPECT_EQ(std::to_string(tag.frame.channels), JsonValue(probe, "channels"));
        ASSERT_TRUE(tag.hasFrames && tag.hasBytes && tag.hasToc && tag.hasLame);
        EXPECT_EQ(tag.frames, JsonValues(probe, "pts_time").size());
        EXPECT_EQ(tag.bytes, mp3.size());
        EXPECT_EQ(tag.musicLength, mp3.size());
        EXPECT_TRUE(tag.tagCrcMatches);
        const std::vector<std::string> skips = JsonValues(probe, "skip_samples");
        const std::vector<std::string> paddings = JsonValues(probe, "discard_padding");
        ASSERT_FALSE(skips.empty());
        ASSERT_FALSE(paddings.empty());
        EXPECT_EQ(std::to_string(tag.encoderDelay + DecoderDelay), skips.front());
        EXPECT_EQ(std::to_string(tag.encoderPadding - DecoderDelay), paddings.back());
        for (int i = 1; i < MpegAudioInfoTag::XingTocEntries; ++i)
            EXPECT_LE(tag.toc[i - 1], tag.toc[i]);
        // What remains after the trim is what ffmpeg decodes.
        const std::optional<std::string> pcm =
            RunCommand("ffmpeg -v error -nostdin -i '" + dir.File("a.mp3") + "' -f s16le -ac 1 -");
        ASSERT_TRUE(pcm.has_value());
        EXPECT_EQ(tag.PlayableSamples(), int64_t(pcm->size() / 2));
    }
}

TEST(MpegAudioInfoTag, AnOrdinaryFirstFrameHasNoTag)
{
    if (!HasFfmpeg() || !HasEncoder("libmp3lame"))
        GTEST_SKIP() << "ffmpeg with libmp3lame is not available";
    TempDir dir;
    const std::string mp3 =
        Encode(dir, "sine=f=440:d=0.5", "-c:a libmp3lame -id3v2_version 0 -write_xing 0", "plain.mp3");
    ASSERT_FALSE(mp3.empty());
    MpegAudioInfoTag tag;
    EXPECT_EQ(MpegAudioInfoTag::Parse(DataOf(mp3), mp3.size(), tag), 1);
}

// A 417-byte MPEG-1 layer III frame (128 kbit/s, 44.1 kHz, stereo) with a
// VBRI tag after the 32 bytes that follow the header.
std::string VbriFrame(uint16_t entries, uint16_t entryBytes)
{
    std::string frame(417, '\0');
    const uint8_t header[4] = {0xFF, 0xFB, 0x90, 0x00};
    std::memcpy(&frame[0], header, 4);
    const uint8_t vbri[26] = {'V', 'B', 'R', 'I', 0, 1,    0x02, 0x40, 0, 75, 0, 0, 0x30, 0x39,
                              0,   0,   0,   40,  uint8_t(entries >> 8), uint8_t(entries), 0, 1,
                              uint8_t(entryBytes >> 8), uint8_t(entryBytes), 0, 10};
    std::memcpy(&frame[36], vbri, sizeof vbri);
    return frame;
}

TEST(MpegAudioInfoTag, VbriTagsKeepTheirTableInTheFrame)
{
    const std::string frame = VbriFrame(4, 2);
    MpegAudioInfoTag tag;
    ASSERT_EQ(MpegAudioInfoTag::Parse(DataOf(frame), frame.size(), tag), 0);
    EXPECT_EQ(tag.kind, MpegAudioInfoTag::Vbri);
    EXPECT_EQ(tag.vbriDelay, 0x240);
    EXPECT_EQ(tag.quality, 75u);
    EXPECT_EQ(tag.bytes, 12345u);
    EXPECT_EQ(tag.frames, 40u);
    EXPECT_EQ(tag.tocEntries, 4);
    EXPECT_EQ(tag.tocEntryBytes, 2);
    EXPECT_EQ(tag.framesPerTocEntry, 10);
    EXPECT_EQ(tag.tocOffset, 62);
}

struct HostileCase {
    const char* name;
    std::string bytes;
    const char* logText;
};

std::string XingClaimingEverything(size_t keep)
{
    std::string frame(417, '\0');
    const char start[] = "\xFF\xFB\x90\x00";
    frame.replace(0, 4, start, 4);
    frame.replace(36, 8, std::string("Xing\0\0\0\x0F", 8));
    return frame.substr(0, keep);
}

const HostileCase Hostile[] = {
    {"free format", std::string("\xFF\xFB\x00\x00", 4) + std::string(400, '\0'), "free-format"},
    {"no frame", std::string(400, '\0'), "no valid frame header"},
    {"Xing fields past the bytes", XingClaimingEverything(100), "Xing tag needs 156"},
    {"VBRI table past the frame", VbriFrame(200, 4), "VBRI tag needs 862"},
    {"VBRI entries of 0 bytes", VbriFrame(4, 0), "entries of 0 bytes"},
    {"VBRI entries of 5 bytes", VbriFrame(4, 5), "entries of 5 bytes"},
};

TEST(MpegAudioInfoTag, HostileTagsAreRefusedWithALogLine)
{
    for (const HostileCase& c : Hostile) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        MpegAudioInfoTag tag;
        EXPECT_EQ(MpegAudioInfoTag::Parse(DataOf(c.bytes), c.bytes.size(), tag), RESULT_FORMAT_ERROR);
        EXPECT_GE(log.Count(c.logText), 1u) << log.Text();
    }
    MpegAudioInfoTag tag;
    EXPECT_EQ(MpegAudioInfoTag::Parse(nullptr, 400, tag), RESULT_ARGUMENT_NULL);
}

} // namespace
