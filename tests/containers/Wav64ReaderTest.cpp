#include "AudioReaderHarness.h"

#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

TEST(Wav64Reader, ChunkGuidsMatchTheirTextForms)
{
    const std::pair<const _Guid*, const char*> guids[] = {
        {&CWav64ContainerReader::riff, "66666972-912E-11CF-A5D6-28DB04C10000"},
        {&CWav64ContainerReader::wave, "65766177-ACF3-11D3-8CD1-00C04F8EDB8A"},
        {&CWav64ContainerReader::fmt, "20746D66-ACF3-11D3-8CD1-00C04F8EDB8A"},
        {&CWav64ContainerReader::data, "61746164-ACF3-11D3-8CD1-00C04F8EDB8A"},
        {&CWav64ContainerReader::bext, "74786562-ACF3-11D3-8CD1-00C04F8EDB8A"},
    };
    for (const auto& [guid, text] : guids) {
        _Guid parsed;
        ASSERT_EQ(_Guid::Parse(text, parsed), RESULT_OK);
        EXPECT_EQ(*guid, parsed) << text;
    }
}

struct LayoutCase {
    const char* name;
    Bytes file;
    uint32_t format;
    int64_t frames;
    std::vector<int32_t> packets;
};

TEST(Wav64Reader, ReadsAlignedChunksAndCutsOneSecondSamples)
{
    Bytes longFormat = WaveFormat(1, 2, 8000, 16);
    longFormat.resize(18); // cbSize 0: the next chunk starts 6 bytes later
    const std::vector<LayoutCase> cases = {
        {"1.5 s of 16-bit stereo", Wave64({{"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(48000)}}),
         AudioFormat::Int16L, 12000, {8000, 4000}},
        {"24-bit extensible", Wave64({{"fmt ", WaveFormat(0, 2, 8000, 24, 0x3)}, {"data", Pattern(60)}}),
         AudioFormat::Int24L, 10, {10}},
        {"float", Wave64({{"fmt ", WaveFormat(3, 1, 8000, 32)}, {"data", Pattern(40)}}), AudioFormat::Float32L, 10,
         {10}},
        {"odd chunks aligned to 8",
         Wave64({{"junk", Pattern(3)}, {"fmt ", longFormat}, {"data", Pattern(40)}}), AudioFormat::Int16L, 10, {10}},
        {"truncated data", Wave64({{"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(40), 24 + 4000}}),
         AudioFormat::Int16L, 10, {10}},
        {"size 0 from a streaming writer", Wave64({{"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(40), 0}}),
         AudioFormat::Int16L, 10, {10}},
    };
    for (const LayoutCase& c : cases) {
        SCOPED_TRACE(c.name);
        auto opened = OpenReader<CWav64ContainerReader>(c.file);
        ASSERT_EQ(opened.result, RESULT_OK);
        CAudioProperties* audio = opened.reader->GetAudioProperties(0);
        ASSERT_NE(audio, nullptr);
        EXPECT_EQ(audio->GetFormat(), c.format);
        EXPECT_EQ(audio->GetSampleRate(), 8000);
        EXPECT_EQ(audio->GetDuration(), c.frames);
        EXPECT_EQ(PacketCounts(ReadAllSamples(opened.reader, c.file)), c.packets);
    }
}

TEST(Wav64Reader, BroadcastExtensionIsWavs)
{
    ByteWriter bext;
    bext.Field("Wave64 take", 256).Zeros(602 - 256 - 190).U16(uint16_t(-1600)).Zeros(188).Text("A=PCM");
    const Bytes file = Wave64({{"bext", bext.Get()}, {"fmt ", WaveFormat(1, 1, 8000, 16)}, {"data", Pattern(20)}});
    auto opened = OpenReader<CWav64ContainerReader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    RObject<CString> description(opened.reader->GetPropertyValue(ContainerProperty::WavDescription));
    EXPECT_STREQ(description->GetChars(), "Wave64 take");
    RObject<CString> history(opened.reader->GetPropertyValue(ContainerProperty::WavCodingHistory));
    EXPECT_STREQ(history->GetChars(), "A=PCM");
    int16_t loudness = 0;
    EXPECT_EQ(Properties(opened.reader->GetAudioProperties(0))
                  .GetProperty(AudioProperty::WavLoudnessValue, 2, reinterpret_cast<unsigned char*>(&loudness)),
              2);
    EXPECT_EQ(loudness, -1600);
}

struct HostileCase {
    const char* name;
    Bytes file;
    int result;
    const char* logged;
};

TEST(Wav64Reader, RefusesHostileHeadersWithALogLineAndNoTrack)
{
    const Bytes fmt = WaveFormat(1, 1, 8000, 16);
    const Bytes good = Wave64({{"fmt ", fmt}, {"data", Pattern(4)}});
    Bytes notRiff = good;
    notRiff[0] ^= 1;
    Bytes notWave = Wave64({{"fmt ", fmt}, {"data", Pattern(4)}});
    notWave[24] ^= 1;
    ByteWriter mpeg;
    mpeg.U16(0x50).U16(2).U32(44100).U32(16000).U16(1).U16(0);
    const std::vector<HostileCase> cases = {
        {"header cut short", Bytes(good.begin(), good.begin() + 20), RESULT_END_OF_STREAM,
         "reading the riff header failed"},
        {"not riff", notRiff, RESULT_ERROR, "incorrect chunk identifier (expected 'riff')"},
        {"riff smaller than its header", Wave64({{"fmt ", fmt}, {"data", Pattern(4)}}, 39), RESULT_ERROR,
         "invalid 'riff'"},
        {"not wave", notWave, RESULT_ERROR, "incorrect format (expected 'wave')"},
        {"data before fmt", Wave64({{"data", Pattern(4)}, {"fmt ", fmt}}), RESULT_ERROR,
         "CWav64ContainerReader::BeginIndex: missing 'fmt ' chunk"},
        {"size 0 would not advance", Wave64({{"junk", {}, 0}, {"fmt ", fmt}, {"data", Pattern(4)}}), RESULT_ERROR,
         "declares 0 bytes"},
        {"size 23 would walk backwards", Wave64({{"fmt ", fmt, 23}, {"data", Pattern(4)}}), RESULT_ERROR,
         "declares 23 bytes"},
        {"size beyond the file", Wave64({{"fmt ", fmt, 1u << 20}, {"data", Pattern(4)}}), RESULT_ERROR,
         "declares 1048576 bytes"},
        {"size near 2^64", Wave64({{"fmt ", fmt, ~uint64_t(0) - 3}, {"data", Pattern(4)}}), RESULT_ERROR,
         "declares 18446744073709551612 bytes"},
        {"20-bit PCM", Wave64({{"fmt ", WaveFormat(1, 1, 8000, 20)}, {"data", Pattern(6)}}), RESULT_ERROR,
         "CWav64ContainerReader::BeginIndex: unsupported wBitsPerSample 20\n"},
        {"MPEG audio", Wave64({{"fmt ", mpeg.Get()}, {"data", Pattern(4)}}), RESULT_ERROR,
         "CWav64ContainerReader::BeginIndex: unsupported formatd\n"},
    };
    for (const HostileCase& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        auto opened = OpenReader<CWav64ContainerReader>(c.file);
        EXPECT_EQ(opened.result, c.result);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        ExpectNoTrack(opened.reader);
    }
}

TEST(Wav64Reader, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    ByteWriter bext;
    bext.Field("walk", 256).Zeros(602 - 256).Text("history");
    const Bytes file = Wave64({{"bext", bext.Get()}, {"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(48000)}});
    WalkOpenIndexRead<CWav64ContainerReader>("Wave64", file);
#endif
}

} // namespace
