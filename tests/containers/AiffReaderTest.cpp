#include "AudioReaderHarness.h"

#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

Bytes Extended(uint16_t exponent, uint64_t mantissa)
{
    ByteWriter w(true);
    return w.U16(exponent).U64(mantissa).Get();
}

Bytes CommonWithRate(const Bytes& rate, uint16_t channels = 1, uint16_t bits = 8, uint32_t frames = 4)
{
    ByteWriter w(true);
    return w.U16(channels).U32(frames).U16(bits).Append(rate).Get();
}

struct RateCase {
    const char* name;
    Bytes extended;
    uint32_t rate;
};

TEST(AiffReader, ConvertsExtendedSampleRates)
{
    const std::vector<RateCase> cases = {
        {"44100 as written by every tool", Extended(0x400E, 0xAC44000000000000), 44100},
        {"8000", VekTest::Extended(8000), 8000},
        {"22050", VekTest::Extended(22050), 22050},
        {"48000", VekTest::Extended(48000), 48000},
        {"192000", VekTest::Extended(192000), 192000},
        {"2 Hz", VekTest::Extended(2), 2},
        {"half rounds up", VekTest::Extended(22050.5), 22051},
        {"a quarter rounds down", VekTest::Extended(22050.25), 22050},
        {"only the low exponent byte counts", Extended(0xC00E, 0xAC44000000000000), 44100},
        {"2^31 - 1", VekTest::Extended(2147483647.0), 2147483647u},
    };
    for (const RateCase& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes file = Aiff({{"COMM", CommonWithRate(c.extended)}, {"SSND", AiffSound(Pattern(8))}});
        auto opened = OpenReader<CAiffContainerReader>(file);
        ASSERT_EQ(opened.result, RESULT_OK);
        EXPECT_EQ(uint32_t(opened.reader->GetAudioProperties(0)->GetSampleRate()), c.rate);
        EXPECT_EQ(opened.reader->GetAudioProperties(0)->GetTimeScale(), int64_t(c.rate));
    }
}

struct LayoutCase {
    const char* name;
    Bytes file;
    uint32_t format;
    int64_t dataStart;
    int64_t frames;
    std::vector<int32_t> packets;
};

TEST(AiffReader, ReadsEveryDepthAndChunkOrder)
{
    const auto plain = [](uint16_t channels, uint16_t bits, uint32_t frames) {
        return Aiff({{"COMM", AiffCommon(channels, frames, bits, 8000)},
                     {"SSND", AiffSound(Pattern(size_t(frames) * channels * bits / 8))}});
    };
    const int64_t afterComm = 12 + 8 + 18 + 8 + 8;
    const std::vector<LayoutCase> cases = {
        {"8-bit declared unsigned on purpose", plain(1, 8, 100), AudioFormat::UInt8, afterComm, 100, {100}},
        {"1.5 s of 16-bit stereo", plain(2, 16, 12000), AudioFormat::Int16B, afterComm, 12000, {8000, 4000}},
        {"24-bit", plain(2, 24, 10), AudioFormat::Int24B, afterComm, 10, {10}},
        {"32-bit", plain(1, 32, 10), AudioFormat::Int32B, afterComm, 10, {10}},
        {"SSND offset", Aiff({{"COMM", AiffCommon(1, 10, 16, 8000)}, {"SSND", AiffSound(Pattern(20), 6)}}),
         AudioFormat::Int16B, afterComm + 6, 10, {10}},
        {"SSND before COMM", Aiff({{"SSND", AiffSound(Pattern(20))}, {"COMM", AiffCommon(1, 10, 16, 8000)}}),
         AudioFormat::Int16B, 12 + 8 + 8, 10, {10}},
        {"other chunks skipped", Aiff({{"NAME", Pattern(6)}, {"COMM", AiffCommon(1, 10, 16, 8000)},
                                       {"ANNO", Pattern(4)}, {"SSND", AiffSound(Pattern(20))}}),
         AudioFormat::Int16B, afterComm + 14 + 12, 10, {10}},
        {"numSampleFrames beyond the sound", Aiff({{"COMM", AiffCommon(1, 500, 16, 8000)}, {"SSND", AiffSound(Pattern(20))}}),
         AudioFormat::Int16B, afterComm, 10, {10}},
        {"truncated SSND", Aiff({{"COMM", AiffCommon(1, 500, 16, 8000)}, {"SSND", AiffSound(Pattern(21)), 1008}}),
         AudioFormat::Int16B, afterComm, 10, {10}},
    };
    for (const LayoutCase& c : cases) {
        SCOPED_TRACE(c.name);
        auto opened = OpenReader<CAiffContainerReader>(c.file);
        ASSERT_EQ(opened.result, RESULT_OK);
        CAudioProperties* audio = opened.reader->GetAudioProperties(0);
        EXPECT_EQ(audio->GetFormat(), c.format);
        EXPECT_EQ(audio->GetDuration(), c.frames);
        const auto spans = ReadAllSamples(opened.reader, c.file);
        EXPECT_EQ(PacketCounts(spans), c.packets);
        ASSERT_FALSE(spans.empty());
        EXPECT_EQ(spans[0].position, c.dataStart);
    }
}

TEST(AiffReader, ValidateRefusesAifc)
{
    const Bytes aiff = Aiff({{"COMM", AiffCommon(1, 4, 16, 8000)}, {"SSND", AiffSound(Pattern(8))}});
    const Bytes aifc = Aiff({{"COMM", AiffCommon(1, 4, 16, 8000)}, {"SSND", AiffSound(Pattern(8))}}, "AIFC");
    for (const auto& [file, score] : {std::pair{&aiff, 128}, std::pair{&aifc, 0}}) {
        RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file->size()), file->data()));
        RObject<CAiffContainerReader> reader(new CAiffContainerReader());
        EXPECT_EQ(reader->Validate(stream), score);
    }
}

struct HostileCase {
    const char* name;
    Bytes file;
    int result;
    const char* logged;
};

TEST(AiffReader, RefusesHostileHeadersWithALogLineAndNoTrack)
{
    const Bytes sound = AiffSound(Pattern(8));
    const Bytes comm = AiffCommon(1, 4, 16, 8000);
    const Bytes good = Aiff({{"COMM", comm}, {"SSND", sound}});
    Bytes riff = good;
    std::copy_n("RIFF", 4, riff.begin());
    ByteWriter badOffset(true);
    badOffset.U32(100).U32(0).Append(Pattern(8));
    const std::vector<HostileCase> cases = {
        {"header cut short", Bytes(good.begin(), good.begin() + 7), RESULT_END_OF_STREAM,
         "reading the FORM header failed"},
        {"RIFF", riff, RESULT_ERROR, "incorrect chunk ID 'RIFF' (expected 'FORM')"},
        {"AIFC", Aiff({{"COMM", AiffCommon(1, 4, 16, 8000)}, {"SSND", sound}}, "AIFC"), RESULT_ERROR,
         "incorrect form type 'AIFC' (expected 'AIFF')"},
        {"12-bit", Aiff({{"COMM", AiffCommon(1, 4, 12, 8000)}, {"SSND", sound}}), RESULT_ERROR,
         "CAiffContainerReader::BeginIndex: unsupported sample_size 12\n"},
        {"channels 0", Aiff({{"COMM", AiffCommon(0, 4, 16, 8000)}, {"SSND", sound}}), RESULT_ERROR,
         "unsupported numChannels 0"},
        {"channels 65535", Aiff({{"COMM", AiffCommon(65535, 4, 16, 8000)}, {"SSND", sound}}), RESULT_ERROR,
         "unsupported numChannels 65535"},
        {"rate 0", Aiff({{"COMM", AiffCommon(1, 4, 16, 0)}, {"SSND", sound}}), RESULT_ERROR,
         "unsupported sampleRate 0"},
        {"exponent beyond 2^31", Aiff({{"COMM", CommonWithRate(Extended(0x4020, 1ull << 63))}, {"SSND", sound}}),
         RESULT_ERROR, "sampleRate exponent 0x4020 is out of range"},
        {"COMM of 16 bytes", Aiff({{"COMM", Bytes(comm.begin(), comm.begin() + 16)},
                                   {"SSND", sound}}),
         RESULT_ERROR, "'COMM' chunk of 16 bytes is shorter than 18"},
        {"SSND offset beyond it", Aiff({{"COMM", AiffCommon(1, 4, 16, 8000)}, {"SSND", badOffset.Get()}}), RESULT_ERROR,
         "'SSND' chunk of 16 bytes with offset 100 is unusable"},
        {"chunk beyond the file", Aiff({{"COMM", AiffCommon(1, 4, 16, 8000), 5000}, {"SSND", sound}}), RESULT_ERROR,
         "chunk 'COMM' at 12 declares 5000 bytes"},
        {"no SSND", Aiff({{"COMM", AiffCommon(1, 4, 16, 8000)}}), RESULT_ERROR, "missing 'SSND' chunk"},
        {"zero-size chunks", Aiff(std::vector<Chunk>(300, Chunk{"junk", {}})), RESULT_ERROR, "missing 'COMM' chunk"},
    };
    for (const HostileCase& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        auto opened = OpenReader<CAiffContainerReader>(c.file);
        EXPECT_EQ(opened.result, c.result);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        ExpectNoTrack(opened.reader);
    }
}

// A failure while a sample is built costs AIFF that second; the wave
// readers advance only over a finished sample, so they hand it out again.
TEST(AiffReader, AFailedSampleIsSkippedWhereTheWaveReadersRetryIt)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    // 3.5 seconds: one read warms the sample pool, one counts what a read
    // allocates, the third fails at its last allocation.
    const Bytes aiff = Aiff({{"COMM", AiffCommon(2, 28000, 16, 8000)}, {"SSND", AiffSound(Pattern(112000))}});
    const Bytes wav = Riff({{"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(112000)}});
    const auto afterFailure = [](CContainerReader* reader) {
        const auto read = [&](int64_t failAt) {
            CAudioSample* raw = nullptr;
            FaultInjection::FailAllocation(failAt);
            const int result = reader->ReadAudioSample(0, raw);
            FaultInjection::Disarm();
            RObject<CAudioSample> sample(raw);
            return result < 0 ? result : sample->GetPackets();
        };
        read(0);
        read(INT64_MAX);
        EXPECT_EQ(read(FaultInjection::AllocationCount()), RESULT_OUT_OF_MEMORY);
        return read(0);
    };
    EXPECT_EQ(afterFailure(OpenReader<CAiffContainerReader>(aiff).reader), 4000);
    EXPECT_EQ(afterFailure(OpenReader<CWavContainerReader>(wav).reader), 8000);
#endif
}

TEST(AiffReader, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    const Bytes file = Aiff({{"COMM", AiffCommon(2, 12000, 16, 8000)}, {"SSND", AiffSound(Pattern(48000))}});
    WalkOpenIndexRead<CAiffContainerReader>("AIFF", file);
#endif
}

} // namespace
