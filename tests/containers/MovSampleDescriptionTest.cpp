// Sample descriptions of QuickTime and MP4 files ffmpeg writes at test time,
// with ffprobe as the oracle for what each entry describes; and hostile
// entries made from real ones.
#include <gtest/gtest.h>

#include "elementary/ExternalStreams.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <vek/Vek.h>
#include <vek/containers/readers/elementary/VideoStreamFacts.h>
#include <vek/containers/readers/mov/MovSampleDescription.h>
#include <vek/core/FourCCText.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperty.h>

#include <cstdlib>
#include <string>

using namespace Quorvex::Vek;

namespace {

using VekTest::JsonValue;

// The first entry of the first 'stsd' in a file's bytes, found by walking
// the boxes that lead to it.
bool FindFirstEntry(const uint8_t* data, size_t size, uint32_t parentType, MovBox& entry)
{
    MovBoxIterator boxes(data, size, 0, parentType);
    MovBox box;
    while (boxes.Next(box) == RESULT_OK) {
        switch (box.type) {
        case Four("moov"):
        case Four("trak"):
        case Four("mdia"):
        case Four("minf"):
        case Four("stbl"):
            if (FindFirstEntry(box.payload, box.size, box.type, entry))
                return true;
            break;
        case Four("stsd"): {
            if (box.size < 8)
                return false;
            MovBoxIterator entries(box.payload + 8, box.size - 8, box.PayloadOffset() + 8, box.type);
            return entries.Next(entry) == RESULT_OK;
        }
        default: break;
        }
    }
    return false;
}

struct Written {
    std::string file;
    std::string probe; // ffprobe -show_streams of the file
    MovBox entry;
};

// Writes `seconds` of a lavfi source through `options` into a file of
// `extension`; false (the test skips) when ffmpeg cannot.
bool Write(const VekTest::TempDir& dir, const std::string& input, const std::string& options,
           const std::string& extension, Written& out)
{
    const std::string name = "entry." + extension;
    out.file = VekTest::Encode(dir, input, options, name);
    if (out.file.empty())
        return false;
    out.probe = VekTest::Probe(dir.File(name), "-show_streams");
    return FindFirstEntry(VekTest::DataOf(out.file), out.file.size(), 0, out.entry);
}

uint32_t Number(const CMediaProperties* properties, const char* key)
{
    CByteArray* bytes = const_cast<CMediaProperties*>(properties)->GetProperty(key);
    if (!bytes || bytes->GetLength() < 1)
        return 0xFFFFFFFFu;
    uint32_t value = 0;
    for (int32_t i = bytes->GetLength() < 4 ? bytes->GetLength() - 1 : 3; i >= 0; --i)
        value = value << 8 | bytes->GetData()[i];
    return value;
}

std::string Text(const CMediaProperties* properties, const char* key)
{
    CByteArray* bytes = const_cast<CMediaProperties*>(properties)->GetProperty(key);
    return bytes && bytes->GetLength() > 0 ? std::string(reinterpret_cast<const char*>(bytes->GetData())) : "";
}

int32_t Size(const CMediaProperties* properties, const char* key)
{
    CByteArray* bytes = const_cast<CMediaProperties*>(properties)->GetProperty(key);
    return bytes ? bytes->GetLength() : 0;
}

// H.273 codes of ffprobe's colour names.
int ColourCode(const std::string& name)
{
    if (name == "bt709")
        return 1;
    if (name == "bt470bg")
        return 5;
    if (name == "smpte170m")
        return 6;
    if (name == "bt2020" || name == "bt2020nc")
        return 9;
    return -1;
}

// Chroma format code of ffprobe's pixel format names.
int ChromaFormatOf(const std::string& pixelFormat)
{
    if (pixelFormat.rfind("yuv420", 0) == 0 || pixelFormat.rfind("yuvj420", 0) == 0)
        return 1;
    if (pixelFormat.rfind("yuv422", 0) == 0 || pixelFormat.rfind("yuvj422", 0) == 0)
        return 2;
    if (pixelFormat.rfind("yuv444", 0) == 0 || pixelFormat.rfind("yuva444", 0) == 0)
        return 3;
    return -1;
}

// The offset of `atom`'s payload within `entry`'s payload; -1 when absent.
int64_t FindAtom(const MovBox& entry, const char* atom)
{
    const std::string bytes(reinterpret_cast<const char*>(entry.payload), entry.size);
    const size_t at = bytes.find(atom);
    return at == std::string::npos ? -1 : int64_t(at) + 4;
}

struct VideoCase {
    const char* name;
    const char* encoder;
    const char* options;
    const char* extension;
    uint32_t family; // the canonical format the entry must be described as
};

const VideoCase VideoCases[] = {
    {"h264_mov", "libx264", "-c:v libx264 -vf setsar=4/3 -color_primaries bt709 -color_trc bt709 -colorspace bt709", "mov", VideoFormat::AVC},
    {"h264_mp4", "libx264", "-c:v libx264 -profile:v baseline", "mp4", VideoFormat::AVC},
    {"h264_high10", "libx264", "-c:v libx264 -pix_fmt yuv422p10le", "mp4", VideoFormat::AVC},
    {"hevc_mp4", "libx265", "-c:v libx265 -tag:v hvc1 -x265-params log-level=none", "mp4", VideoFormat::HEVC},
    {"hevc_mov", "libx265", "-c:v libx265 -x265-params log-level=none -vf setsar=16/11", "mov", VideoFormat::HEVC},
    {"mpeg4_mp4", "mpeg4", "-c:v mpeg4", "mp4", VideoFormat::MPEG4},
    {"mpeg4_mov", "mpeg4", "-c:v mpeg4 -vf setsar=12/11", "mov", VideoFormat::MPEG4},
    {"mpeg2_mp4", "mpeg2video", "-c:v mpeg2video", "mp4", VideoFormat::MPEG2},
    {"mpeg2_mov", "mpeg2video", "-c:v mpeg2video -pix_fmt yuv422p", "mov", VideoFormat::MPEG2},
    {"prores_proxy", "prores_ks", "-c:v prores_ks -profile:v 0", "mov", VideoFormat::ProRes},
    {"prores_lt", "prores_ks", "-c:v prores_ks -profile:v 1", "mov", VideoFormat::ProRes},
    {"prores_standard", "prores_ks", "-c:v prores_ks -profile:v 2", "mov", VideoFormat::ProRes},
    {"prores_hq", "prores_ks", "-c:v prores_ks -profile:v 3", "mov", VideoFormat::ProRes},
    {"prores_4444", "prores_ks", "-c:v prores_ks -profile:v 4 -pix_fmt yuv444p10le", "mov", VideoFormat::ProRes},
    {"prores_xq", "prores_ks", "-c:v prores_ks -profile:v 5 -pix_fmt yuv444p10le", "mov", VideoFormat::ProRes},
    {"dnxhr", "dnxhd", "-c:v dnxhd -profile:v dnxhr_lb -pix_fmt yuv422p", "mov", VideoFormat::DNxHD},
    {"mjpeg", "mjpeg", "-c:v mjpeg -pix_fmt yuvj420p", "mov", VideoFormat::MJPEG},
    {"v210", "v210", "-c:v v210", "mov", VideoFormat::YUV},
    {"uyvy", "rawvideo", "-c:v rawvideo -pix_fmt uyvy422", "mov", VideoFormat::YUV},
    {"rgb24", "rawvideo", "-c:v rawvideo -pix_fmt rgb24", "mov", Four("RGB ")},
};

class MovVideoDescriptionTest : public testing::TestWithParam<VideoCase> {};

TEST_P(MovVideoDescriptionTest, DescribesWhatFfprobeSees)
{
    const VideoCase& c = GetParam();
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder(c.encoder))
        GTEST_SKIP() << "no ffmpeg with " << c.encoder;
    VekTest::TempDir dir;
    Written written;
    const std::string input = "testsrc2=s=256x144:r=25:d=0.2";
    ASSERT_TRUE(Write(dir, input, std::string(c.options) + " -an", c.extension, written)) << c.options;
    const std::string& probe = written.probe;
    RObject<CVideoProperties> video(new CVideoProperties());
    ASSERT_EQ(ReadVideoDescription(written.entry, std::string(c.extension) == "mov", video), 0);

    EXPECT_EQ(VideoFormat::GetCanonicalFormat(video->GetFormat()), VideoFormat::GetCanonicalFormat(c.family))
        << std::hex << video->GetFormat();
    EXPECT_EQ(video->GetWidth(), std::atoi(JsonValue(probe, "width").c_str()));
    EXPECT_EQ(video->GetHeight(), std::atoi(JsonValue(probe, "height").c_str()));
    const double sar = VekTest::Ratio(JsonValue(probe, "sample_aspect_ratio"));
    int64_t numerator = 0, denominator = 0;
    video->GetPixelAspectRatio(numerator, denominator);
    if (sar > 0 && sar != 1.0) {
        ASSERT_GT(denominator, 0);
        EXPECT_DOUBLE_EQ(double(numerator) / double(denominator), sar);
    }
    if (JsonValue(probe, "field_order") == "progressive") {
        EXPECT_EQ(video->GetFieldOrder(), uint32_t(CVideoProperties::FieldOrderProgressive));
    }
    const int chroma = ChromaFormatOf(JsonValue(probe, "pix_fmt"));
    if (chroma > 0 && Size(video, VideoStreamFacts::ChromaFormatKey) > 0) {
        EXPECT_EQ(Number(video, VideoStreamFacts::ChromaFormatKey), uint32_t(chroma));
    }
    // Colour the codec keeps in its frames alone (JPEG, DNxHR) is not stated.
    const bool colourStated = Size(video, VideoStreamFacts::MatrixKey) > 0 || FindAtom(written.entry, "colr") >= 0;
    const int primaries = colourStated ? ColourCode(JsonValue(probe, "color_primaries")) : -1;
    if (primaries > 0) {
        EXPECT_EQ(Number(video, VideoStreamFacts::ColourPrimariesKey), uint32_t(primaries));
    }
    const int matrix = colourStated ? ColourCode(JsonValue(probe, "color_space")) : -1;
    if (matrix > 0) {
        EXPECT_EQ(Number(video, VideoStreamFacts::MatrixKey), uint32_t(matrix));
    }

    const uint32_t family = VideoFormat::GetCanonicalFormat(c.family);
    const std::string profile = JsonValue(probe, "profile");
    if (family == VideoFormat::AVC || family == VideoFormat::HEVC || family == VideoFormat::ProRes) {
        EXPECT_EQ(Text(video, VideoStreamFacts::ProfileKey), profile);
    }
    if (family == VideoFormat::AVC) {
        EXPECT_EQ(Number(video, VideoProperty::H264Level), uint32_t(std::atoi(JsonValue(probe, "level").c_str())));
    }
    // The decoder configuration is the codec's record, as ffmpeg keeps it.
    const std::string extradata = JsonValue(probe, "extradata_size");
    if (family == VideoFormat::AVC || family == VideoFormat::HEVC || family == VideoFormat::MPEG4) {
        EXPECT_EQ(Size(video, VideoStreamFacts::DecoderConfigurationKey), std::atoi(extradata.c_str()));
    }
}

INSTANTIATE_TEST_SUITE_P(Encoders, MovVideoDescriptionTest, testing::ValuesIn(VideoCases),
                         [](const testing::TestParamInfo<VideoCase>& info) { return std::string(info.param.name); });

struct AudioCase {
    const char* name;
    const char* encoder;
    const char* options;
    const char* extension;
    bool pcm;
};

const AudioCase AudioCases[] = {
    {"aac_mp4", "aac", "-c:a aac -ac 2", "mp4", false},
    {"aac_mov", "aac", "-c:a aac -ac 1", "mov", false},
    {"aac_51", "aac", "-c:a aac -ac 6", "mp4", false},
    {"he_aac", "libfdk_aac", "-c:a libfdk_aac -profile:a aac_he", "mp4", false},
    {"ac3_mp4", "ac3", "-c:a ac3 -ac 2", "mp4", false},
    {"ac3_mov", "ac3", "-c:a ac3 -ac 6", "mov", false},
    {"eac3_mp4", "eac3", "-c:a eac3 -ac 2", "mp4", false},
    {"mp3_mp4", "libmp3lame", "-c:a libmp3lame -ac 2", "mp4", false},
    {"mp3_mov", "libmp3lame", "-c:a libmp3lame -ar 22050", "mov", false},
    {"alac_mov", "alac", "-c:a alac -ac 2", "mov", false},
    {"alac_mp4", "alac", "-c:a alac -ac 1", "mp4", false},
    {"s16be", "pcm_s16be", "-c:a pcm_s16be -ac 2", "mov", true},
    {"s16le", "pcm_s16le", "-c:a pcm_s16le -ac 1", "mov", true},
    {"s8", "pcm_s8", "-c:a pcm_s8", "mov", true},
    {"u8", "pcm_u8", "-c:a pcm_u8", "mov", true},
    {"s24le", "pcm_s24le", "-c:a pcm_s24le -ac 2", "mov", true},
    {"s24be", "pcm_s24be", "-c:a pcm_s24be", "mov", true},
    {"s32le", "pcm_s32le", "-c:a pcm_s32le", "mov", true},
    {"f32be", "pcm_f32be", "-c:a pcm_f32be -ac 2", "mov", true},
    {"f64le", "pcm_f64le", "-c:a pcm_f64le", "mov", true},
    {"alaw", "pcm_alaw", "-c:a pcm_alaw -ar 8000", "mov", true},
    {"mulaw", "pcm_mulaw", "-c:a pcm_mulaw -ar 8000", "mov", true},
};

// ffprobe's codec name of each format family the entries are described as.
std::string CodecNameOf(uint32_t format)
{
    switch (format) {
    case AudioFormat::AAC: return "aac";
    case AudioFormat::AC3: return "ac3";
    case AudioFormat::EC3: return "eac3";
    case AudioFormat::MP3: return "mp3";
    case AudioFormat::AppleLossless: return "alac";
    default: break;
    }
    return {};
}

class MovAudioDescriptionTest : public testing::TestWithParam<AudioCase> {};

TEST_P(MovAudioDescriptionTest, DescribesWhatFfprobeSees)
{
    const AudioCase& c = GetParam();
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder(c.encoder))
        GTEST_SKIP() << "no ffmpeg with " << c.encoder;
    VekTest::TempDir dir;
    Written written;
    ASSERT_TRUE(Write(dir, "sine=f=440:r=48000:d=0.3", c.options, c.extension, written)) << c.options;
    const std::string& probe = written.probe;
    RObject<CAudioProperties> audio(new CAudioProperties());
    MovAudioLayout layout;
    ASSERT_EQ(ReadAudioDescription(written.entry, std::string(c.extension) == "mov", audio, layout), 0);

    const int32_t channels = std::atoi(JsonValue(probe, "channels").c_str());
    EXPECT_EQ(audio->GetSampleRate(), std::atoi(JsonValue(probe, "sample_rate").c_str()));
    EXPECT_EQ(audio->GetChannels(), channels);
    const uint32_t expectedMask = VekTest::FfmpegLayoutMask(JsonValue(probe, "channel_layout"));
    if (expectedMask != 0xFFFFFFFFu) {
        uint32_t mask = 0;
        for (int32_t i = 0; i < audio->GetChannels(); ++i) {
            uint32_t position = 0;
            if (audio->GetSpeakerPosition(i, position) == 0 && position > 0)
                mask |= 1u << (position - 1);
        }
        EXPECT_EQ(mask, expectedMask) << JsonValue(probe, "channel_layout");
    }
    EXPECT_EQ(layout.pcm, c.pcm);
    if (c.pcm) {
        const int32_t bits = std::atoi(JsonValue(probe, "bits_per_sample").c_str());
        EXPECT_EQ(audio->GetBitsPerSample(), bits);
        EXPECT_EQ(layout.bytesPerFrame, uint32_t(channels * bits / 8));
        EXPECT_EQ(audio->GetBytesPerFrame(), channels * bits / 8);
        return;
    }
    EXPECT_EQ(CodecNameOf(audio->GetFormat()), JsonValue(probe, "codec_name"));
    EXPECT_GT(layout.framesPerPacket, 0u);
    const std::string extradata = JsonValue(probe, "extradata_size");
    if (audio->GetFormat() == AudioFormat::AAC) {
        EXPECT_EQ(Size(audio, AudioProperty::DecoderConfiguration), std::atoi(extradata.c_str()));
    }
}

INSTANTIATE_TEST_SUITE_P(Encoders, MovAudioDescriptionTest, testing::ValuesIn(AudioCases),
                         [](const testing::TestParamInfo<AudioCase>& info) { return std::string(info.param.name); });

// Subtitle entries: the format each code names, and the size check.
TEST(MovSubtitleDescriptionTest, NamesTheFormatOfEachEntry)
{
    struct Case {
        uint32_t type;
        size_t size;
        int result;
        uint32_t format;
    };
    const Case cases[] = {
        {Four("c608"), 8, 0, SubtitleFormat::C608},
        {Four("c708"), 8, 0, SubtitleFormat::C708},
        {Four("wvtt"), 8, 0, SubtitleFormat::VTT},
        {Four("tx3g"), 38, 0, Four("tx3g")},
        {Four("tx3g"), 37, RESULT_FORMAT_ERROR, 0},
        {Four("text"), 20, RESULT_FORMAT_ERROR, 0},
        {Four("stpp"), 40, 1, 0},
    };
    const uint8_t zeros[64] = {};
    for (const Case& c : cases) {
        MovBox entry;
        entry.type = c.type;
        entry.payload = zeros;
        entry.size = c.size;
        RObject<CSubtitleProperties> subtitle(new CSubtitleProperties());
        EXPECT_EQ(ReadSubtitleDescription(entry, subtitle), c.result) << FourCCText(c.type).c_str() << " " << c.size;
        if (c.result == 0) {
            EXPECT_EQ(subtitle->GetFormat(), c.format) << FourCCText(c.type).c_str();
        }
    }
}

// Real entries ffmpeg wrote, broken in one place each: the reader must
// refuse with a code and name the atom in its log line.
struct HostileCase {
    const char* name;
    const char* encoder;
    const char* options;
    bool video;
    const char* atom; // the atom to damage, or "" for the entry itself
    int64_t offset; // into the atom's payload (negative: into its header)
    bool fromEnd; // the offset counts back from the atom's end
    int64_t value; // byte written there, or -1 to cut the entry there
    const char* logged;
};

const HostileCase HostileCases[] = {
    {"entry_cut_in_visual_fields", "libx264", "-c:v libx264", true, "", 40, false, -1, "visual fields"},
    {"avcC_size_lies", "libx264", "-c:v libx264", true, "avcC", -8, false, 0x7F, "avcC"},
    {"avcC_no_sets", "libx264", "-c:v libx264", true, "avcC", 5, false, 0xE0, "avcC"},
    {"avcC_cut", "libx264", "-c:v libx264", true, "avcC", 9, false, -1, "avcC"},
    {"hvcC_cut", "libx265", "-c:v libx265 -x265-params log-level=none", true, "hvcC", 30, false, -1, "hvcC"},
    {"esds_descriptor_lies", "mpeg4", "-c:v mpeg4", true, "esds", 5, false, 0x7F, "esds"},
    {"sound_fields_cut", "aac", "-c:a aac", false, "", 20, false, -1, "sound fields"},
    {"aac_config_broken", "aac", "-c:a aac", false, "esds", -11, true, 0x00, "AudioSpecificConfig"},
    {"dac3_fscod_reserved", "ac3", "-c:a ac3", false, "dac3", 0, false, 0xC0, "fscod"},
    {"alac_cut", "alac", "-c:a alac", false, "alac", 10, false, -1, "alac"},
};

class MovHostileDescriptionTest : public testing::TestWithParam<HostileCase> {};

TEST_P(MovHostileDescriptionTest, RefusesWithALogLine)
{
    const HostileCase& c = GetParam();
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder(c.encoder))
        GTEST_SKIP() << "no ffmpeg with " << c.encoder;
    VekTest::TempDir dir;
    Written written;
    const std::string input = c.video ? "testsrc2=s=128x96:d=0.1" : "sine=d=0.2";
    ASSERT_TRUE(Write(dir, input, c.options, "mov", written));
    std::string bytes(reinterpret_cast<const char*>(written.entry.payload), written.entry.size);
    int64_t at = 0;
    if (*c.atom) {
        const int64_t payload = FindAtom(written.entry, c.atom);
        ASSERT_GE(payload, 0) << c.atom;
        const uint32_t atomSize = uint32_t(uint8_t(bytes[payload - 8])) << 24 | uint32_t(uint8_t(bytes[payload - 7])) << 16 |
                                  uint32_t(uint8_t(bytes[payload - 6])) << 8 | uint8_t(bytes[payload - 5]);
        at = c.fromEnd ? payload - 8 + int64_t(atomSize) + c.offset : payload + c.offset;
    } else {
        at = c.offset;
    }
    ASSERT_LT(at, int64_t(bytes.size()));
    if (c.value < 0) {
        // Cutting inside an atom leaves the atom's size pointing past the entry.
        bytes.resize(size_t(at));
        if (*c.atom) {
            const int64_t payload = FindAtom(written.entry, c.atom);
            const uint32_t cut = uint32_t(at - payload + 8);
            bytes[payload - 8] = char(cut >> 24);
            bytes[payload - 7] = char(cut >> 16);
            bytes[payload - 6] = char(cut >> 8);
            bytes[payload - 5] = char(cut);
        }
    } else {
        bytes[size_t(at)] = char(c.value);
    }
    MovBox entry = written.entry;
    entry.payload = reinterpret_cast<const uint8_t*>(bytes.data());
    entry.size = bytes.size();
    VekTest::LogCapture log(LogLevel::Error);
    int result;
    if (c.video) {
        RObject<CVideoProperties> video(new CVideoProperties());
        result = ReadVideoDescription(entry, true, video);
    } else {
        RObject<CAudioProperties> audio(new CAudioProperties());
        MovAudioLayout layout;
        result = ReadAudioDescription(entry, true, audio, layout);
    }
    EXPECT_EQ(result, RESULT_FORMAT_ERROR);
    EXPECT_NE(log.Text().find(c.logged), std::string::npos) << log.Text();
}

INSTANTIATE_TEST_SUITE_P(Entries, MovHostileDescriptionTest, testing::ValuesIn(HostileCases),
                         [](const testing::TestParamInfo<HostileCase>& info) { return std::string(info.param.name); });

// Every prefix of a real entry is refused or described, never read past.
TEST(MovSampleDescriptionTest, EveryPrefixOfAnEntryIsSafe)
{
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx264") || !VekTest::HasEncoder("aac"))
        GTEST_SKIP() << "no ffmpeg with libx264 and aac";
    VekTest::TempDir dir;
    Written video, audio;
    ASSERT_TRUE(Write(dir, "testsrc2=s=128x96:d=0.1", "-c:v libx264", "mov", video));
    ASSERT_TRUE(Write(dir, "sine=d=0.2", "-c:a aac", "mp4", audio));
    VekTest::LogCapture quiet(LogLevel::Error);
    for (const Written* written : {&video, &audio}) {
        for (size_t size = 0; size < written->entry.size; ++size) {
            // A copy of exactly `size` bytes, so the sanitizer sees any read past it.
            std::string bytes(reinterpret_cast<const char*>(written->entry.payload), size);
            MovBox entry = written->entry;
            entry.payload = reinterpret_cast<const uint8_t*>(bytes.data());
            entry.size = size;
            RObject<CVideoProperties> v(new CVideoProperties());
            RObject<CAudioProperties> a(new CAudioProperties());
            MovAudioLayout layout;
            const int result = written == &video ? ReadVideoDescription(entry, true, v)
                                                 : ReadAudioDescription(entry, false, a, layout);
            EXPECT_TRUE(result == RESULT_FORMAT_ERROR || result == 0) << size << ": " << result;
        }
    }
}

#if VEK_FAULT_INJECTION
TEST(MovSampleDescriptionTest, AllocationFailuresGiveACode)
{
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx264") || !VekTest::HasEncoder("aac"))
        GTEST_SKIP() << "no ffmpeg with libx264 and aac";
    VekTest::TempDir dir;
    Written video, audio;
    ASSERT_TRUE(Write(dir, "testsrc2=s=128x96:d=0.1", "-c:v libx264", "mov", video));
    ASSERT_TRUE(Write(dir, "sine=d=0.2", "-c:a aac", "mp4", audio));
    const MovBox videoEntry = video.entry;
    const MovBox audioEntry = audio.entry;
    VekTest::WalkAllocationFailures("ReadVideoDescription", [&] {
        RObject<CVideoProperties> properties(new (fallible) CVideoProperties());
        if (!properties)
            return true;
        const int result = ReadVideoDescription(videoEntry, true, properties);
        return result == 0 || result == RESULT_OUT_OF_MEMORY;
    });
    VekTest::WalkAllocationFailures("ReadAudioDescription", [&] {
        RObject<CAudioProperties> properties(new (fallible) CAudioProperties());
        if (!properties)
            return true;
        MovAudioLayout layout;
        const int result = ReadAudioDescription(audioEntry, false, properties, layout);
        return result == 0 || result == RESULT_OUT_OF_MEMORY;
    });
    VekTest::WalkAllocationFailures("ReadSubtitleDescription", [&] {
        RObject<CSubtitleProperties> properties(new (fallible) CSubtitleProperties());
        if (!properties)
            return true;
        const uint8_t zeros[8] = {};
        MovBox entry;
        entry.type = Four("c608");
        entry.payload = zeros;
        entry.size = sizeof zeros;
        return ReadSubtitleDescription(entry, properties) == 0;
    });
}
#endif

} // namespace
