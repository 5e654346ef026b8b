#include "AudioReaderHarness.h"

#include "support/LogCapture.h"

#include <atomic>
#include <thread>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

std::vector<uint32_t> Speakers(CAudioProperties* audio)
{
    std::vector<uint32_t> positions;
    for (int32_t channel = 0; channel < audio->GetChannels(); ++channel) {
        uint32_t position = 99;
        audio->GetSpeakerPosition(channel, position);
        positions.push_back(position);
    }
    return positions;
}

Bytes Pcm16Mono(uint32_t rate, size_t frames)
{
    return Riff({{"fmt ", WaveFormat(1, 1, rate, 16)}, {"data", Pattern(frames * 2)}});
}

struct LayoutCase {
    const char* name;
    Bytes file;
    uint32_t format;
    int32_t channels;
    int32_t bits;
    int64_t frames;
    std::vector<int32_t> packets; // per sample
    std::vector<uint32_t> speakers;
};

std::vector<LayoutCase> LayoutCases()
{
    const Bytes fmt16 = WaveFormat(1, 2, 8000, 16);
    ByteWriter ds64;
    ds64.U64(0).U64(12000).U64(3000).U32(0);
    ByteWriter fact;
    fact.U32(5000);
    return {
        {"1.5 s of 16-bit stereo", Riff({{"fmt ", fmt16}, {"data", Pattern(12000 * 4)}}), AudioFormat::Int16L, 2, 16,
         12000, {8000, 4000}, {}},
        {"8-bit", Riff({{"fmt ", WaveFormat(1, 1, 8000, 8)}, {"data", Pattern(100)}}), AudioFormat::UInt8, 1, 8, 100,
         {100}, {}},
        {"24-bit", Riff({{"fmt ", WaveFormat(1, 2, 8000, 24)}, {"data", Pattern(60)}}), AudioFormat::Int24L, 2, 24, 10,
         {10}, {}},
        {"32-bit", Riff({{"fmt ", WaveFormat(1, 1, 8000, 32)}, {"data", Pattern(40)}}), AudioFormat::Int32L, 1, 32, 10,
         {10}, {}},
        {"tag 0 as PCM", Riff({{"fmt ", WaveFormat(0, 1, 8000, 16)}, {"data", Pattern(20)}}), AudioFormat::Int16L, 1,
         16, 10, {10}, {}},
        {"float", Riff({{"fmt ", WaveFormat(3, 1, 8000, 32)}, {"data", Pattern(40)}}), AudioFormat::Float32L, 1, 32, 10,
         {10}, {}},
        {"extensible float", Riff({{"fmt ", WaveFormat(0, 1, 8000, 32, 0x4, 3)}, {"data", Pattern(40)}}),
         AudioFormat::Float32L, 1, 32, 10, {10}, {3}},
        {"mask 0x3F on 6 channels", Riff({{"fmt ", WaveFormat(0, 6, 8000, 16, 0x3F)}, {"data", Pattern(120)}}),
         AudioFormat::Int16L, 6, 16, 10, {10}, {1, 2, 3, 4, 5, 6}},
        {"mask of 2 bits on 4 channels", Riff({{"fmt ", WaveFormat(0, 4, 8000, 16, 0x600)}, {"data", Pattern(80)}}),
         AudioFormat::Int16L, 4, 16, 10, {10}, {10, 11, 0, 0}},
        {"odd chunk padded before data",
         Riff({{"fmt ", fmt16}, {"LIST", Pattern(5)}, {"data", Pattern(40)}}), AudioFormat::Int16L, 2, 16, 10, {10},
         {}},
        {"RF64 size from ds64",
         Riff({{"ds64", ds64.Get()}, {"fmt ", fmt16}, {"data", Pattern(12000), 0xFFFFFFFF}}, "RF64"),
         AudioFormat::Int16L, 2, 16, 3000, {3000}, {}},
        {"fact count below the data", Riff({{"fmt ", fmt16}, {"fact", fact.Get()}, {"data", Pattern(40000)}}),
         AudioFormat::Int16L, 2, 16, 5000, {5000}, {}},
        {"partial last frame ignored", Riff({{"fmt ", fmt16}, {"data", Pattern(43)}}), AudioFormat::Int16L, 2, 16, 10,
         {10}, {}},
    };
}

TEST(WavReader, ReadsEveryLayoutAndCutsOneSecondSamples)
{
    for (const LayoutCase& c : LayoutCases()) {
        SCOPED_TRACE(c.name);
        auto opened = OpenReader<CWavContainerReader>(c.file);
        ASSERT_EQ(opened.result, RESULT_OK);
        CWavContainerReader* reader = opened.reader;
        ASSERT_EQ(reader->GetAudioMediaCount(), 1);
        RObject<CValueList<unsigned int>> formats(reader->GetAudioFormats());
        ASSERT_TRUE(formats);
        ASSERT_EQ(formats->GetCount(), 1);
        EXPECT_EQ(formats->Get(0), c.format);
        CAudioProperties* audio = reader->GetAudioProperties(0);
        EXPECT_EQ(audio->GetChannels(), c.channels);
        EXPECT_EQ(audio->GetBitsPerSample(), c.bits);
        EXPECT_EQ(audio->GetSampleRate(), 8000);
        EXPECT_EQ(audio->GetTimeScale(), 8000);
        EXPECT_EQ(audio->GetBitRate(), int64_t(8000) * audio->GetBytesPerFrame() * 8);
        EXPECT_EQ(audio->GetDuration(), c.frames);
        if (!c.speakers.empty()) {
            EXPECT_EQ(Speakers(audio), c.speakers);
        }
        const auto spans = ReadAllSamples(reader, c.file);
        EXPECT_EQ(PacketCounts(spans), c.packets);
        int64_t time = 0;
        for (const SampleSpan& span : spans) {
            EXPECT_EQ(span.frames, 1);
            EXPECT_EQ(span.time, time);
            time += span.packets;
        }
        CAudioSample* after = nullptr;
        EXPECT_EQ(reader->ReadAudioSample(0, after), RESULT_OK);
        EXPECT_EQ(after, nullptr) << "end of data stays the end";
        EXPECT_TRUE(reader->IsAudioReady(0));
        EXPECT_TRUE(reader->WaitForMedia(0));
        EXPECT_EQ(reader->EndIndex(), RESULT_OK);
    }
}

struct RepairCase {
    const char* name;
    Bytes file;
    int64_t frames;
    const char* logged;
};

TEST(WavReader, KeepsTheAudioOfDamagedAndStreamedFiles)
{
    const Bytes fmt = WaveFormat(1, 2, 8000, 16);
    ByteWriter bigFact;
    bigFact.U32(999999);
    const std::vector<RepairCase> cases = {
        {"truncated data", Riff({{"fmt ", fmt}, {"data", Pattern(402), 4000}}), 100,
         "'data' chunk declares 4000 bytes but the file holds 402 after its header; reading 400"},
        {"size 0 from a streaming writer", Riff({{"fmt ", fmt}, {"data", Pattern(400), 0}}), 100,
         "'data' size 0x00000000 is a placeholder; reading the 400 bytes"},
        {"size 0xFFFFFFFF without ds64", Riff({{"fmt ", fmt}, {"data", Pattern(400), 0xFFFFFFFF}}), 100,
         "'data' size 0xFFFFFFFF is a placeholder"},
        {"fact beyond the data", Riff({{"fmt ", fmt}, {"fact", bigFact.Get()}, {"data", Pattern(400)}}), 100,
         "'fact' count 999999 exceeds the 100 frames the data holds"},
    };
    for (const RepairCase& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(2);
        auto opened = OpenReader<CWavContainerReader>(c.file);
        ASSERT_EQ(opened.result, RESULT_OK);
        EXPECT_EQ(opened.reader->GetAudioProperties(0)->GetDuration(), c.frames);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        const auto spans = ReadAllSamples(opened.reader, c.file);
        ASSERT_EQ(spans.size(), 1u);
        EXPECT_EQ(spans[0].packets, c.frames);
    }
}

struct HostileCase {
    const char* name;
    Bytes file;
    int result;
    const char* logged;
};

Bytes FormatWith(uint16_t channels, uint32_t rate, uint16_t blockAlign, uint16_t bits, uint16_t tag = 1)
{
    ByteWriter w;
    return w.U16(tag).U16(channels).U32(rate).U32(rate * blockAlign).U16(blockAlign).U16(bits).Get();
}

std::vector<HostileCase> HostileCases()
{
    const Bytes fmt = WaveFormat(1, 1, 8000, 16);
    Bytes header = Riff({{"fmt ", fmt}});
    header.resize(6);
    Bytes riffx = Pcm16Mono(8000, 4);
    riffx[3] = 'X';
    Bytes avi = Pcm16Mono(8000, 4);
    std::copy_n("AVI ", 4, avi.begin() + 8);
    Bytes tinyRiff = Pcm16Mono(8000, 4);
    tinyRiff[4] = 2, tinyRiff[5] = tinyRiff[6] = tinyRiff[7] = 0;
    std::vector<Chunk> empties(500, Chunk{"junk", {}});
    empties.push_back({"fmt ", fmt});
    Bytes shortExtensible = fmt;
    shortExtensible[0] = 0xFE, shortExtensible[1] = 0xFF;
    ByteWriter cb;
    cb.U16(4).Zeros(4);
    shortExtensible.insert(shortExtensible.end(), cb.Get().begin(), cb.Get().end());
    return {
        {"header cut short", header, RESULT_END_OF_STREAM, "reading the RIFF header failed with RESULT_END_OF_STREAM"},
        {"RIFX", riffx, RESULT_ERROR, "incorrect chunk ID 'RIFX' (expected 'RIFF' or 'RF64')"},
        {"AVI form", avi, RESULT_ERROR, "incorrect format 'AVI ' (expected 'WAVE')"},
        {"RIFF size 2", tinyRiff, RESULT_ERROR, "RIFF size 2 cannot hold the form type"},
        {"data before fmt", Riff({{"data", Pattern(4)}, {"fmt ", fmt}}), RESULT_ERROR, "missing 'fmt ' chunk"},
        {"no data", Riff({{"fmt ", fmt}}), RESULT_ERROR, "missing 'data' chunk"},
        {"zero-size chunks", Riff(empties), RESULT_ERROR, "missing 'data' chunk"},
        {"chunk beyond the file", Riff({{"fmt ", fmt, 1000}, {"data", Pattern(4)}}), RESULT_ERROR,
         "chunk 'fmt ' at 12 declares 1000 bytes; the file holds"},
        {"chunk size near 2^32", Riff({{"LIST", Pattern(4), 0xFFFFFFF9}, {"data", Pattern(4)}}), RESULT_ERROR,
         "chunk 'LIST' at 12 declares 4294967289 bytes"},
        {"fmt of 14 bytes", Riff({{"fmt ", Bytes(fmt.begin(), fmt.begin() + 14)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "'fmt ' chunk of 14 bytes is shorter than 16"},
        {"rate 0", Riff({{"fmt ", FormatWith(1, 0, 2, 16)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "unsupported nSamplesPerSec 0"},
        {"channels 0", Riff({{"fmt ", FormatWith(0, 8000, 2, 16)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "unsupported nChannels 0"},
        {"channels 65535", Riff({{"fmt ", FormatWith(65535, 8000, 2, 16)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "unsupported nChannels 65535"},
        {"block align 0", Riff({{"fmt ", FormatWith(1, 8000, 0, 16)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "unsupported nBlockAlign 0"},
        {"a second beyond 2 GiB", Riff({{"fmt ", FormatWith(1, 100000, 65535, 16)}, {"data", Pattern(4)}}),
         RESULT_ERROR, "nBlockAlign 65535 x nSamplesPerSec 100000 makes a second of more than"},
        {"12-bit PCM", Riff({{"fmt ", FormatWith(1, 8000, 2, 12)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "CWavContainerReader::BeginIndex: unsupported wBitsPerSample 12\n"},
        {"ADPCM", Riff({{"fmt ", FormatWith(1, 8000, 2, 4, 2)}, {"data", Pattern(4)}}), RESULT_ERROR,
         "CWav64ContainerReader::BeginIndex: unsupported formatd\n"},
        {"unknown sub-format", Riff({{"fmt ", WaveFormat(0, 1, 8000, 16, 0x4, 0x2)}, {"data", Pattern(4)}}),
         RESULT_ERROR, "unsupported formatd"},
        {"extensible cbSize 4", Riff({{"fmt ", shortExtensible}, {"data", Pattern(4)}}), RESULT_ERROR,
         "extensible 'fmt ' record with cbSize 4"},
        {"ds64 of 8 bytes", Riff({{"ds64", Pattern(8)}, {"fmt ", fmt}, {"data", Pattern(4)}}, "RF64"), RESULT_ERROR,
         "'ds64' chunk of 8 bytes is shorter than 24"},
    };
}

TEST(WavReader, RefusesHostileHeadersWithALogLineAndNoTrack)
{
    for (const HostileCase& c : HostileCases()) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        auto opened = OpenReader<CWavContainerReader>(c.file);
        EXPECT_EQ(opened.result, c.result);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        ExpectNoTrack(opened.reader);
    }
}

TEST(WavReader, BroadcastExtensionBecomesContainerAndAudioProperties)
{
    ByteWriter bext;
    bext.Field("Interview, take 3", 256).Field("Recorder X", 32).Field("REF-0042", 32).Field("2024-05-17", 10);
    bext.Field("13:45:00", 8).U32(0x89ABCDEF).U32(0x01).U16(2);
    Bytes umid(64);
    for (size_t i = 0; i < umid.size(); ++i)
        umid[i] = uint8_t(0xC0 + i);
    bext.Append(umid).U16(uint16_t(-2300)).U16(450).U16(uint16_t(-100)).U16(uint16_t(-1800)).U16(uint16_t(-2000));
    bext.Zeros(180).Text("A=PCM,F=48000,W=24\r\n");
    const Bytes file = Riff({{"bext", bext.Get()}, {"fmt ", WaveFormat(1, 1, 8000, 16)}, {"data", Pattern(20)}});
    auto opened = OpenReader<CWavContainerReader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    CWavContainerReader* reader = opened.reader;

    const auto text = [&](const char* key) {
        RObject<CString> value(reader->GetPropertyValue(key));
        return std::string(value->GetChars());
    };
    EXPECT_EQ(text(ContainerProperty::WavDescription), "Interview, take 3");
    EXPECT_EQ(text(ContainerProperty::WavOriginator), "Recorder X");
    EXPECT_EQ(text(ContainerProperty::WavOriginatorReference), "REF-0042");
    EXPECT_EQ(text(ContainerProperty::WavOriginationDate), "2024-05-17");
    EXPECT_EQ(text(ContainerProperty::WavOriginationTime), "13:45:00");
    EXPECT_EQ(text(ContainerProperty::WavCodingHistory), "A=PCM,F=48000,W=24\r\n");
    CByteArray* storedUmid = reader->GetProperty(ContainerProperty::WavUmid);
    ASSERT_NE(storedUmid, nullptr);
    EXPECT_EQ(Bytes(storedUmid->GetData(), storedUmid->GetData() + storedUmid->GetLength()), umid);
    int64_t timeReference = 0;
    EXPECT_EQ(Properties(reader).GetProperty(BroadcastAudioExtension::TimeReference, timeReference), 8);
    EXPECT_EQ(timeReference, 0x189ABCDEFLL);

    Properties audio(reader->GetAudioProperties(0));
    const std::pair<const char*, int16_t> loudness[] = {
        {AudioProperty::WavLoudnessValue, -2300},    {AudioProperty::WavLoudnessRange, 450},
        {AudioProperty::WavMaxTruePeakLevel, -100},  {AudioProperty::WavMaxMomentaryLoudness, -1800},
        {AudioProperty::WavMaxShortTermLoudness, -2000},
    };
    for (const auto& [key, expected] : loudness) {
        int16_t value = 0;
        EXPECT_EQ(audio.GetProperty(key, 2, reinterpret_cast<unsigned char*>(&value)), 2) << key;
        EXPECT_EQ(value, expected) << key;
    }
}

TEST(WavReader, FailedIndexLeavesNoBroadcastFacts)
{
    ByteWriter bext;
    bext.Field("kept?", 256).Zeros(602 - 256);
    const Bytes file = Riff({{"bext", bext.Get()}, {"fmt ", FormatWith(0, 8000, 2, 16)}, {"data", Pattern(4)}});
    auto opened = OpenReader<CWavContainerReader>(file);
    EXPECT_EQ(opened.result, RESULT_ERROR);
    EXPECT_EQ(opened.reader->GetProperty(ContainerProperty::WavDescription), nullptr);
}

// MPEG-1 layer III, 128 kbit/s, 44.1 kHz: 417 bytes, 418 when padded.
Bytes MpegFrame(bool padded)
{
    Bytes frame(padded ? 418 : 417, 0);
    frame[0] = 0xFF, frame[1] = 0xFB, frame[2] = padded ? 0x92 : 0x90, frame[3] = 0x00;
    return frame;
}

TEST(WavReader, CutsMpegAudioIntoWholeFramesAndResynchronises)
{
    for (uint16_t tag : {uint16_t(0x50), uint16_t(0x55)}) {
        SCOPED_TRACE(tag);
        const Bytes frame = MpegFrame(false);
        ByteWriter sound;
        sound.Append(frame).Append(MpegFrame(true)).Text("garbage!").Append(MpegFrame(false));
        sound.Append(Bytes(frame.begin(), frame.begin() + 100)); // cut short
        ByteWriter fmt;
        fmt.U16(tag).U16(2).U32(44100).U32(16000).U16(1).U16(0);
        const Bytes file = Riff({{"fmt ", fmt.Get()}, {"data", sound.Get()}});
        LogCapture log(2);
        auto opened = OpenReader<CWavContainerReader>(file);
        ASSERT_EQ(opened.result, RESULT_OK);
        EXPECT_EQ(opened.reader->GetAudioProperties(0)->GetFormat(), uint32_t(AudioFormat::MPEG));
        const auto spans = ReadAllSamples(opened.reader, file);
        ASSERT_EQ(spans.size(), 3u) << log.Text();
        const int64_t start = 12 + 8 + 16 + 8;
        const int64_t expectedPositions[] = {start, start + 417, start + 417 + 418 + 8};
        for (size_t i = 0; i < spans.size(); ++i) {
            EXPECT_EQ(spans[i].position, expectedPositions[i]);
            EXPECT_EQ(spans[i].packets, 1);
            EXPECT_EQ(spans[i].frames, 1152);
            EXPECT_EQ(spans[i].time, int64_t(1152 * i));
        }
        EXPECT_EQ(log.Count("skipped 8 bytes without a frame header"), 1u) << log.Text();
        EXPECT_EQ(log.Count("needs 417 bytes; the data ends after 100; dropped"), 1u) << log.Text();
    }
}

TEST(WavReader, MpegDataWithoutFramesEndsWithAnError)
{
    ByteWriter fmt;
    fmt.U16(0x55).U16(2).U32(44100).U32(16000).U16(1).U16(0);
    const Bytes file = Riff({{"fmt ", fmt.Get()}, {"data", Bytes(300 * 1024, 0x11)}});
    LogCapture log(1);
    auto opened = OpenReader<CWavContainerReader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    int last = 0;
    EXPECT_TRUE(ReadAllSamples(opened.reader, file, &last).empty());
    EXPECT_EQ(last, RESULT_ERROR);
    EXPECT_EQ(log.Count("no frame header in"), 1u) << log.Text();
    CAudioSample* sample = nullptr;
    EXPECT_EQ(opened.reader->ReadAudioSample(0, sample), RESULT_OK) << "the lost stream has ended";
    EXPECT_EQ(sample, nullptr);
}

TEST(WavReader, OtherTracksAreOutOfRange)
{
    auto opened = OpenReader<CWavContainerReader>(Pcm16Mono(8000, 10));
    CAudioSample* sample = nullptr;
    CMemoryDataReference* data = nullptr;
    RObject<CContainerDataReference> range(new CContainerDataReference(44, 2));
    EXPECT_EQ(opened.reader->ReadAudioSample(1, sample), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(opened.reader->ReadAudioData(1, range, data), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(opened.reader->GetAudioProperties(1), nullptr);
}

TEST(WavReader, ThreadsPullingSamplesShareTheDataExactlyOnce)
{
    const size_t seconds = 40;
    const Bytes file = Pcm16Mono(100, 100 * seconds);
    auto opened = OpenReader<CWavContainerReader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    std::vector<std::atomic<int>> taken(seconds);
    std::atomic<bool> misplaced{false};
    const auto pull = [&] {
        for (;;) {
            CAudioSample* raw = nullptr;
            opened.reader->ReadAudioSample(0, raw);
            RObject<CAudioSample> sample(raw);
            if (!sample)
                return;
            const int64_t second = sample->GetTime() / 100;
            auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
            if (second >= int64_t(seconds) || range->GetPosition() != 44 + second * 200)
                misplaced = true;
            else
                ++taken[size_t(second)];
        }
    };
    std::thread a(pull), b(pull), c(pull);
    a.join(), b.join(), c.join();
    EXPECT_FALSE(misplaced);
    for (size_t i = 0; i < seconds; ++i)
        EXPECT_EQ(taken[i].load(), 1) << "second " << i;
}

TEST(WavReader, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    ByteWriter bext;
    bext.Field("walk", 256).Zeros(602 - 256).Text("history");
    const Bytes pcm = Riff({{"bext", bext.Get()}, {"fmt ", WaveFormat(0, 2, 8000, 16, 0x3)}, {"data", Pattern(48000)}});
    ByteWriter mpegFmt;
    mpegFmt.U16(0x50).U16(2).U32(44100).U32(16000).U16(1).U16(0);
    ByteWriter frames;
    frames.Append(MpegFrame(false)).Text("xx").Append(MpegFrame(true));
    const Bytes mpeg = Riff({{"fmt ", mpegFmt.Get()}, {"data", frames.Get()}});
    WalkOpenIndexRead<CWavContainerReader>("WAV PCM", pcm);
    WalkOpenIndexRead<CWavContainerReader>("WAV MPEG", mpeg);
#endif
}

} // namespace
