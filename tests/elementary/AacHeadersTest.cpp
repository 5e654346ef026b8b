#include <gtest/gtest.h>

#include <cctype>

#include <vek/core/Result.h>
#include <vek/elementary/AacHeaders.h>

#include "BitPacking.h"
#include "ExternalStreams.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct EncodeCase {
    const char* name;
    const char* options;
    const char* ffprobeProfile;
};

const EncodeCase Encodes[] = {
    {"LC stereo 44.1 kHz", "-ac 2 -ar 44100 -c:a aac", "LC"},
    {"LC mono 8 kHz", "-ac 1 -ar 8000 -c:a aac", "LC"},
    {"LC 5.1 48 kHz", "-ac 6 -ar 48000 -c:a aac", "LC"},
    {"LC stereo 96 kHz", "-ac 2 -ar 96000 -c:a aac", "LC"},
    {"LC 3.0 32 kHz", "-af 'aformat=channel_layouts=3.0' -ar 32000 -c:a aac", "LC"},
    {"Main", "-ac 2 -ar 22050 -c:a aac -profile:a aac_main", "Main"},
    {"LTP", "-ac 1 -ar 16000 -c:a aac -profile:a aac_ltp -strict -2", "LTP"},
};

const char* ProfileName(uint8_t objectType)
{
    switch (objectType) {
    case AacObjectType::Main: return "Main";
    case AacObjectType::LowComplexity: return "LC";
    case AacObjectType::LongTermPrediction: return "LTP";
    default: return "?";
    }
}

// ffprobe's hexdump of extradata ("00000000: 1210  ..") as bytes.
std::vector<uint8_t> HexdumpBytes(const std::string& dump)
{
    std::vector<uint8_t> bytes;
    for (size_t line = dump.find(": "); line != std::string::npos; line = dump.find(": ", line + 1)) {
        size_t at = line + 2;
        for (int group = 0; group < 8; ++group, ++at) {
            for (int pair = 0; pair < 2 && at + 1 < dump.size() && std::isxdigit(uint8_t(dump[at])); ++pair, at += 2)
                bytes.push_back(uint8_t(std::stoi(dump.substr(at, 2), nullptr, 16)));
            if (at >= dump.size() || dump[at] != ' ')
                break;
        }
    }
    return bytes;
}

TEST(AacHeaders, AdtsFramesAndConfigurationsMatchFfmpeg)
{
    if (!HasFfmpeg() || !HasEncoder("aac"))
        GTEST_SKIP() << "ffmpeg with its aac encoder is not available";
    TempDir dir;
    for (const EncodeCase& c : Encodes) {
        SCOPED_TRACE(c.name);
        const std::string adts = Encode(dir, "sine=f=440:d=1", c.options, "a.aac");
        ASSERT_FALSE(adts.empty());
        const std::string streams = Probe(dir.File("a.aac"), "-show_streams -show_packets");
        const std::vector<std::string> packetSizes = JsonValues(streams, "size");

        size_t frames = 0;
        AdtsHeader first;
        for (size_t at = 0; at < adts.size(); ++frames) {
            AdtsHeader h;
            ASSERT_EQ(AdtsHeader::Parse(DataOf(adts) + at, adts.size() - at, h), 0) << "frame " << frames;
            if (frames == 0)
                first = h;
            ASSERT_LT(frames, packetSizes.size());
            EXPECT_EQ(std::to_string(h.frameLength), packetSizes[frames]);
            EXPECT_EQ(h.samplingFrequency, first.samplingFrequency);
            at += size_t(h.frameLength);
        }
        EXPECT_EQ(frames, packetSizes.size());

        const AacAudioSpecificConfig config = first.ToAudioSpecificConfig();
        EXPECT_EQ(std::to_string(config.OutputSampleRate()), JsonValue(streams, "sample_rate"));
        EXPECT_EQ(std::to_string(config.Channels()), JsonValue(streams, "channels"));
        EXPECT_EQ(config.ChannelMask(), FfmpegLayoutMask(JsonValue(streams, "channel_layout")));
        EXPECT_STREQ(ProfileName(config.objectType), c.ffprobeProfile);

        // The MP4 muxer's AudioSpecificConfig is what ours writes.
        const std::string m4a = dir.File("a.m4a");
        ASSERT_EQ(std::system(("ffmpeg -v error -nostdin -y -i '" + dir.File("a.aac") + "' -c copy '" + m4a + "'")
                                  .c_str()),
                  0);
        const std::vector<uint8_t> muxed = HexdumpBytes(JsonValue(Probe(m4a, "-show_streams -show_data"), "extradata"));
        uint8_t written[AacAudioSpecificConfig::MaxWrittenBytes];
        size_t count = 0;
        ASSERT_EQ(config.Write(written, sizeof written, count), 0);
        EXPECT_EQ(std::vector<uint8_t>(written, written + count), muxed);
        AacAudioSpecificConfig parsed;
        ASSERT_EQ(AacAudioSpecificConfig::Parse(muxed.data(), muxed.size(), parsed), 0);
        EXPECT_EQ(parsed.objectType, config.objectType);
        EXPECT_EQ(parsed.samplingFrequency, config.samplingFrequency);
        EXPECT_EQ(parsed.Channels(), config.Channels());
    }
}

struct ConfigCase {
    const char* name;
    std::vector<uint8_t> bytes;
    int result;
    uint8_t objectType;
    int32_t outputRate;
    int32_t channels;
    bool sbr, ps;
    AacAudioSpecificConfig::Signalling signalling;
    int32_t samplesPerFrame;
    bool writesBack; // Write gives the same bytes
};

using S = AacAudioSpecificConfig;
const ConfigCase ConfigCases[] = {
    {"LC 44.1 kHz stereo", PackBits({{2, 5}, {4, 4}, {2, 4}, {0, 3}}), 0, 2, 44100, 2, false, false, S::NoExtension,
     1024, true},
    {"SBR by object type 5", PackBits({{5, 5}, {6, 4}, {2, 4}, {3, 4}, {2, 5}, {0, 3}}), 0, 2, 48000, 2, true, false,
     S::Hierarchical, 2048, true},
    {"PS by object type 29 makes mono stereo", PackBits({{29, 5}, {6, 4}, {1, 4}, {3, 4}, {2, 5}, {0, 3}}), 0, 2, 48000,
     2, true, true, S::Hierarchical, 2048, true},
    {"SBR by sync extension 0x2b7",
     PackBits({{2, 5}, {6, 4}, {2, 4}, {0, 3}, {0x2b7, 11}, {5, 5}, {1, 1}, {3, 4}, {0, 3}}), 0, 2, 48000, 2, true,
     false, S::BackwardCompatible, 2048, true},
    {"SBR and PS by sync extensions",
     PackBits({{2, 5}, {6, 4}, {1, 4}, {0, 3}, {0x2b7, 11}, {5, 5}, {1, 1}, {3, 4}, {0x548, 11}, {1, 1}, {0, 6}}), 0, 2,
     48000, 2, true, true, S::BackwardCompatible, 2048, true},
    {"explicit 24-bit rate", PackBits({{2, 5}, {15, 4}, {50000, 24}, {1, 4}, {0, 3}}), 0, 2, 50000, 1, false, false,
     S::NoExtension, 1024, true},
    {"960-sample frames", PackBits({{2, 5}, {3, 4}, {2, 4}, {1, 1}, {0, 2}}), 0, 2, 48000, 2, false, false,
     S::NoExtension, 960, true},
    {"depends on core coder", PackBits({{1, 5}, {3, 4}, {2, 4}, {0, 1}, {1, 1}, {1234, 14}, {0, 1}}), 0, 1, 48000, 2,
     false, false, S::NoExtension, 1024, true},
    {"channel configuration 12 (7.1)", PackBits({{2, 5}, {3, 4}, {12, 4}, {0, 3}}), 0, 2, 48000, 8, false, false,
     S::NoExtension, 1024, true},
    {"channel configuration 11 (6.1)", PackBits({{2, 5}, {3, 4}, {11, 4}, {0, 3}}), 0, 2, 48000, 7, false, false,
     S::NoExtension, 1024, true},
    // A front pair and centre, a back pair and an LFE: 6 channels.
    {"program config element",
     PackBits({{2, 5}, {3, 4}, {0, 4}, {0, 3},                            // core, channelConfiguration 0
               {0, 4}, {1, 2}, {3, 4}, {2, 4}, {0, 4}, {1, 4}, {1, 2}, {0, 3}, {0, 4}, // counts
               {0, 1}, {0, 1}, {0, 1},                                    // no mixdowns
               {1, 1}, {0, 4}, {0, 1}, {1, 4},                            // front CPE, SCE
               {1, 1}, {2, 4},                                            // back CPE
               {0, 4},                                                    // LFE
               {0, 3}, {0, 8}}),                                          // align, no comment
     0, 2, 48000, 6, false, false, S::NoExtension, 1024, false},
    {"escaped object type 42 is not general audio", PackBits({{31, 5}, {10, 6}, {3, 4}, {2, 4}, {0, 8}}),
     RESULT_NOT_SUPPORTED},
    {"reserved channel configuration 8", PackBits({{2, 5}, {3, 4}, {8, 4}, {0, 3}}), RESULT_FORMAT_ERROR},
    {"reserved frequency index 13", PackBits({{2, 5}, {13, 4}, {2, 4}, {0, 3}}), RESULT_FORMAT_ERROR},
    {"truncated in the rate", {0x12}, RESULT_FORMAT_ERROR},
    {"truncated in the explicit rate", PackBits({{2, 5}, {15, 4}, {1, 7}}), RESULT_FORMAT_ERROR},
    {"empty", {}, RESULT_FORMAT_ERROR},
    {"sync extension cut inside its explicit rate",
     PackBits({{2, 5}, {6, 4}, {2, 4}, {0, 3}, {0x2b7, 11}, {5, 5}, {1, 1}, {15, 4}, {0xFF, 8}}), RESULT_FORMAT_ERROR},
};

TEST(AacHeaders, ConfigurationsParseAndWriteBack)
{
    for (const ConfigCase& c : ConfigCases) {
        SCOPED_TRACE(c.name);
        AacAudioSpecificConfig config;
        const uint8_t empty = 0;
        ASSERT_EQ(AacAudioSpecificConfig::Parse(c.bytes.empty() ? &empty : c.bytes.data(), c.bytes.size(), config),
                  c.result);
        if (c.result != 0)
            continue;
        EXPECT_EQ(config.objectType, c.objectType);
        EXPECT_EQ(config.OutputSampleRate(), c.outputRate);
        EXPECT_EQ(config.Channels(), c.channels);
        EXPECT_EQ(config.sbrPresent, c.sbr);
        EXPECT_EQ(config.psPresent, c.ps);
        EXPECT_EQ(config.signalling, c.signalling);
        EXPECT_EQ(config.SamplesPerFrame(), c.samplesPerFrame);
        uint8_t written[AacAudioSpecificConfig::MaxWrittenBytes];
        size_t count = 0;
        const int r = config.Write(written, sizeof written, count);
        if (!c.writesBack) {
            EXPECT_EQ(r, RESULT_NOT_SUPPORTED);
            continue;
        }
        ASSERT_EQ(r, 0);
        EXPECT_EQ(std::vector<uint8_t>(written, written + count), c.bytes);
        EXPECT_EQ(config.Write(written, count - 1, count), RESULT_ARGUMENT_OUT_OF_RANGE);
    }
}

TEST(AacHeaders, DependsOnCoreCoderKeepsTheDelay)
{
    const std::vector<uint8_t> bytes = PackBits({{1, 5}, {3, 4}, {2, 4}, {0, 1}, {1, 1}, {1234, 14}, {0, 1}});
    AacAudioSpecificConfig config;
    ASSERT_EQ(AacAudioSpecificConfig::Parse(bytes.data(), bytes.size(), config), 0);
    EXPECT_TRUE(config.dependsOnCoreCoder);
    EXPECT_EQ(config.coreCoderDelay, 1234);
}

struct AdtsCase {
    const char* name;
    std::vector<uint8_t> bytes;
    const char* logText; // the refusal names the field
};

std::vector<uint8_t> Adts(uint32_t sync, uint32_t layer, uint32_t protectionAbsent, uint32_t rateIndex,
                          uint32_t frameLength)
{
    return PackBits({{sync, 12}, {0, 1}, {layer, 2}, {protectionAbsent, 1}, {1, 2}, {rateIndex, 4}, {0, 1},
                     {2, 3}, {0, 4}, {frameLength, 13}, {0x7FF, 11}, {0, 2}});
}

const AdtsCase HostileAdts[] = {
    {"frame length 0", Adts(0xFFF, 0, 1, 4, 0), "frame_length 0"},
    {"frame length shorter than the header", Adts(0xFFF, 0, 1, 4, 6), "frame_length 6"},
    {"frame length shorter than the CRC header", Adts(0xFFF, 0, 0, 4, 8), "frame_length 8"},
    {"layer 1", Adts(0xFFF, 1, 1, 4, 100), "layer 1"},
    {"broken sync", Adts(0xFFE, 0, 1, 4, 100), "syncword 0xffe"},
    {"reserved rate index 13", Adts(0xFFF, 0, 1, 13, 100), "sampling_frequency_index 13"},
    {"escape rate index 15", Adts(0xFFF, 0, 1, 15, 100), "sampling_frequency_index 15"},
    {"six bytes", std::vector<uint8_t>(6, 0xFF), "6 bytes"},
    {"CRC announced but cut", Adts(0xFFF, 0, 0, 4, 100), "CRC"},
    {"zeros", std::vector<uint8_t>(64, 0), "syncword 0x000"},
};

TEST(AacHeaders, HostileAdtsHeadersAreRefusedWithALogLine)
{
    for (const AdtsCase& c : HostileAdts) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        AdtsHeader h;
        EXPECT_EQ(AdtsHeader::Parse(c.bytes.data(), c.bytes.size(), h), RESULT_FORMAT_ERROR);
        EXPECT_GE(log.Count(c.logText), 1u) << log.Text();
    }
    AdtsHeader h;
    EXPECT_EQ(AdtsHeader::Parse(nullptr, 7, h), RESULT_ARGUMENT_NULL);
    const std::vector<uint8_t> good = Adts(0xFFF, 0, 1, 4, 7);
    ASSERT_EQ(AdtsHeader::Parse(good.data(), good.size(), h), 0);
    EXPECT_EQ(h.frameLength, 7);
    EXPECT_EQ(h.samplingFrequency, 44100);
    EXPECT_EQ(h.rawDataBlocks, 1);
}

} // namespace
