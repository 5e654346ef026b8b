// The raw ADTS, AC-3/E-AC-3 and MPEG audio readers over streams built
// frame by frame: access-unit cutting, tags, damage and probing.
#include "AudioReaderHarness.h"
#include "RawAudioFrames.h"

#include "support/LogCapture.h"

#include <functional>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

enum class Kind { Aac, Ac3, Mpeg };

Opened<CContainerReader> Open(Kind kind, const Bytes& file)
{
    const auto share = [](auto opened) {
        Opened<CContainerReader> out;
        out.result = opened.result;
        out.reader = RObject<CContainerReader>::FromObject(opened.reader.Get());
        return out;
    };
    switch (kind) {
    case Kind::Aac:
        return share(OpenReader<CAacContainerReader>(file));
    case Kind::Ac3:
        return share(OpenReader<CAc3ContainerReader>(file));
    default:
        return share(OpenReader<CMpegAudioContainerReader>(file));
    }
}

RObject<CContainerReader> MakeReader(Kind kind)
{
    switch (kind) {
    case Kind::Aac:
        return RObject<CContainerReader>(new CAacContainerReader());
    case Kind::Ac3:
        return RObject<CContainerReader>(new CAc3ContainerReader());
    default:
        return RObject<CContainerReader>(new CMpegAudioContainerReader());
    }
}

int Score(Kind kind, const Bytes& file)
{
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    return MakeReader(kind)->Validate(stream);
}

uint32_t SpeakerMask(CAudioProperties* audio)
{
    uint32_t mask = 0;
    for (int32_t channel = 0; channel < audio->GetChannels(); ++channel) {
        uint32_t position = 0;
        audio->GetSpeakerPosition(channel, position);
        mask |= position ? 1u << (position - 1) : 0u;
    }
    return mask;
}

struct CutCase {
    const char* name;
    Kind kind;
    Bytes file;
    uint32_t format;
    int32_t channels;
    uint32_t mask;
    std::vector<std::pair<int64_t, int32_t>> units; // position and size of each sample
    int32_t framesPerUnit;
};

std::vector<CutCase> CutCases()
{
    const Bytes a = AdtsFrame(3, 2, 100), b = AdtsFrame(3, 2, 120), c = AdtsFrame(3, 2, 90);
    const Bytes ac3 = Ac3Frame();
    const Bytes independent = Eac3Frame(0, 0, 7, true, 300), dependent = Eac3Frame(1, 0, 2, false, 200, 0x0200);
    const Bytes mp3 = Mp3Frame(), id3 = Id3v2Tag(30, 30);
    return {
        {"ADTS", Kind::Aac, Concat({a, b, c, a}), AudioFormat::ADTS, 2, 0x3, {{0, 100}, {100, 120}, {220, 90}, {310, 100}},
         1024},
        {"ADTS between ID3v2 and ID3v1 tags", Kind::Aac, Concat({id3, a, b, c, Id3v1Tag()}), AudioFormat::ADTS, 2, 0x3,
         {{40, 100}, {140, 120}, {260, 90}}, 1024},
        {"AC-3", Kind::Ac3, Repeat(ac3, 4), AudioFormat::AC3, 2, 0x3, {{0, 256}, {256, 256}, {512, 256}, {768, 256}},
         1536},
        {"E-AC-3 5.1 with a dependent back pair", Kind::Ac3, Repeat(Concat({independent, dependent}), 3),
         AudioFormat::EC3, 8, 0x63F, {{0, 500}, {500, 500}, {1000, 500}}, 1536},
        {"MP3 before APEv2 and ID3v1 tags", Kind::Mpeg, Concat({Repeat(mp3, 3), ApeTag(40), Id3v1Tag()}),
         AudioFormat::MP3, 2, 0x3, {{0, 417}, {417, 417}, {834, 417}}, 1152},
    };
}

TEST(RawAudioReaders, CutStreamsIntoAccessUnitsBetweenTags)
{
    for (const CutCase& c : CutCases()) {
        SCOPED_TRACE(c.name);
        auto opened = Open(c.kind, c.file);
        ASSERT_EQ(opened.result, RESULT_OK);
        CAudioProperties* audio = opened.reader->GetAudioProperties(0);
        ASSERT_NE(audio, nullptr);
        EXPECT_EQ(audio->GetFormat(), c.format);
        EXPECT_EQ(audio->GetChannels(), c.channels);
        EXPECT_EQ(SpeakerMask(audio), c.mask);
        EXPECT_EQ(audio->GetFramesPerPacket(), c.framesPerUnit);
        EXPECT_EQ(audio->GetTimeScale(), audio->GetSampleRate());
        EXPECT_EQ(audio->GetDuration(), int64_t(c.units.size()) * c.framesPerUnit);
        const auto spans = ReadAllSamples(opened.reader, c.file);
        ASSERT_EQ(spans.size(), c.units.size());
        for (size_t i = 0; i < spans.size(); ++i) {
            EXPECT_EQ(spans[i].position, c.units[i].first) << "sample " << i;
            EXPECT_EQ(spans[i].length, c.units[i].second) << "sample " << i;
            EXPECT_EQ(spans[i].packets, 1);
            EXPECT_EQ(spans[i].frames, c.framesPerUnit);
            EXPECT_EQ(spans[i].time, int64_t(i) * c.framesPerUnit);
        }
    }
}

TEST(RawAudioReaders, DecoderConfigurationsDescribeTheFirstUnit)
{
    auto aac = Open(Kind::Aac, Repeat(AdtsFrame(4, 6, 64), 4));
    ASSERT_EQ(aac.result, RESULT_OK);
    CByteArray* config = aac.reader->GetAudioProperties(0)->GetProperty(AudioProperty::DecoderConfiguration);
    ASSERT_NE(config, nullptr);
    AacAudioSpecificConfig parsed;
    ASSERT_EQ(AacAudioSpecificConfig::Parse(config->GetData(), size_t(config->GetLength()), parsed), RESULT_OK);
    EXPECT_EQ(parsed.objectType, AacObjectType::LowComplexity);
    EXPECT_EQ(parsed.samplingFrequency, 44100);
    EXPECT_EQ(parsed.channelConfiguration, 6);

    auto eac3 = Open(Kind::Ac3, Repeat(Concat({Eac3Frame(0, 0, 7, true, 300), Eac3Frame(1, 0, 2, false, 200, 0x0200)}), 4));
    ASSERT_EQ(eac3.result, RESULT_OK);
    config = eac3.reader->GetAudioProperties(0)->GetProperty(AudioProperty::DecoderConfiguration);
    ASSERT_NE(config, nullptr);
    // One independent substream with one dependent one: its count and its
    // channel locations follow the stream's three-byte description.
    ASSERT_EQ(config->GetLength(), 6);
    EXPECT_EQ(config->GetData()[1] & 0x7, 0) << "one independent substream";
    EXPECT_EQ((config->GetData()[4] >> 1) & 0xF, 1) << "one dependent substream";
}

struct DamageCase {
    const char* name;
    Kind kind;
    Bytes file;
    int result; // of BeginIndex
    const char* logged;
};

std::vector<DamageCase> DamageCases()
{
    const Bytes good = Repeat(AdtsFrame(3, 2, 100), 4), mp3 = Mp3Frame();
    Bytes notSyncsafe = Id3v2Tag(10, 10);
    notSyncsafe[7] = 0x80;
    Bytes badAc3 = Ac3Frame();
    badAc3[4] = 40; // fscod 0, frmsizecod 40
    return {
        {"ADTS frame_length 0", Kind::Aac, Concat({good, AdtsFrame(3, 2, 0), good}), RESULT_FORMAT_ERROR,
         "frame_length 0 is shorter than the 7-byte header"},
        {"ADTS frame_length 5", Kind::Aac, Concat({good, AdtsFrame(3, 2, 5), good}), RESULT_FORMAT_ERROR,
         "frame_length 5 is shorter than the 7-byte header"},
        {"ADTS reserved rate", Kind::Aac, Concat({AdtsFrame(13, 2, 100), good}), RESULT_FORMAT_ERROR,
         "reserved sampling_frequency_index 13"},
        {"AC-3 reserved frmsizecod", Kind::Ac3, Concat({Repeat(Ac3Frame(), 3), badAc3}), RESULT_FORMAT_ERROR,
         "reserved frmsizecod 40"},
        {"ID3v2 size past the end", Kind::Mpeg, Concat({Id3v2Tag(100000, 10), Repeat(Mp3Frame(), 4)}),
         RESULT_FORMAT_ERROR, "size 100010 runs past the end of the file"},
        {"ID3v2 size not syncsafe", Kind::Aac, Concat({notSyncsafe, good}), RESULT_FORMAT_ERROR, "are not syncsafe"},
        {"empty file", Kind::Ac3, Bytes(), RESULT_FORMAT_ERROR, "no AC-3 frame in the 0 bytes from 0"},
        {"endless zeros", Kind::Aac, Bytes(1 << 20, 0), RESULT_FORMAT_ERROR, "no AAC frame in the 1048576 bytes"},
        {"a lone MP3 header", Kind::Mpeg, Concat({Bytes(mp3.begin(), mp3.begin() + 4), Bytes(100, 0)}),
         RESULT_FORMAT_ERROR, "no MPEG audio frame in the 104 bytes"},
    };
}

TEST(RawAudioReaders, DamagedStreamsFailWithACodeAndALogLine)
{
    for (const DamageCase& c : DamageCases()) {
        SCOPED_TRACE(c.name);
        LogCapture log(2);
        auto opened = Open(c.kind, c.file);
        EXPECT_EQ(opened.result, c.result);
        EXPECT_GE(log.Count(c.logged), 1u) << log.Text();
        ExpectNoTrack(opened.reader);
    }
}

struct RepairCase {
    const char* name;
    Kind kind;
    Bytes file;
    std::vector<int64_t> positions;
    const char* logged; // once over the index pass and the reading
};

std::vector<RepairCase> RepairCases()
{
    const Bytes mp3 = Mp3Frame(), adts = AdtsFrame(3, 2, 100), ac3 = Ac3Frame();
    // A header that parses but is not followed by another: garbage.
    const Bytes longer = AdtsFrame(3, 2, 50);
    const Bytes lure = Concat({Bytes(longer.begin(), longer.begin() + 7), Bytes(10, 0x11)});
    return {
        {"garbage between MP3 frames", Kind::Mpeg, Concat({mp3, mp3, Bytes{'j', 'u', 'n', 'k', '!'}, mp3, mp3}),
         {0, 417, 839, 1256}, "skipped 5 bytes without a frame header at 834"},
        {"an unchained ADTS header in garbage", Kind::Aac, Concat({adts, adts, Bytes{'x', 'x'}, lure, adts, adts}),
         {0, 100, 219, 319}, "skipped 19 bytes without a frame header at 200"},
        {"last MP3 frame cut short", Kind::Mpeg, Concat({mp3, mp3, Bytes(mp3.begin(), mp3.begin() + 100)}), {0, 417},
         "the frame at 834 needs 417 bytes; the data ends after 100; dropped"},
        {"AC-3 frames then endless zeros", Kind::Ac3, Concat({ac3, ac3, ac3, Bytes(300 * 1024, 0)}), {0, 256, 512},
         "no frame header in 262144 bytes from 768"},
        {"trailing bytes after ADTS", Kind::Aac, Concat({adts, adts, Bytes{1, 2, 3}}), {0, 100},
         "3 trailing bytes hold no frame"},
    };
}

TEST(RawAudioReaders, GarbageAndCutFramesAreSkippedAndLoggedOnce)
{
    for (const RepairCase& c : RepairCases()) {
        SCOPED_TRACE(c.name);
        LogCapture log(2);
        auto opened = Open(c.kind, c.file);
        ASSERT_EQ(opened.result, RESULT_OK) << log.Text();
        const auto spans = ReadAllSamples(opened.reader, c.file);
        std::vector<int64_t> positions;
        for (const SampleSpan& span : spans)
            positions.push_back(span.position);
        EXPECT_EQ(positions, c.positions);
        EXPECT_EQ(opened.reader->GetAudioProperties(0)->GetDuration(),
                  int64_t(spans.size()) * opened.reader->GetAudioProperties(0)->GetFramesPerPacket());
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
    }
}

struct ProbeCase {
    const char* name;
    Kind kind;
    Bytes file;
    int score;
};

std::vector<ProbeCase> ProbeCases()
{
    const Bytes adts = AdtsFrame(3, 2, 100), mp3 = Mp3Frame();
    ByteWriter fmt;
    fmt.U16(0x55).U16(2).U32(44100).U32(16000).U16(1).U16(0);
    return {
        {"four ADTS frames", Kind::Aac, Repeat(adts, 4), CAudioFrameFileReader::MatchScore},
        {"a whole file of two frames", Kind::Aac, Repeat(adts, 2), CAudioFrameFileReader::WeakMatchScore},
        {"frames after garbage", Kind::Aac, Concat({Bytes(300, 0x11), Repeat(adts, 4)}),
         CAudioFrameFileReader::WeakMatchScore},
        {"a lone sync word", Kind::Aac, Concat({Bytes(adts.begin(), adts.begin() + 9), Bytes(200, 0)}), 0},
        {"three frames then garbage", Kind::Aac, Concat({Repeat(adts, 3), Bytes(200, 0x11)}), 0},
        {"ADTS frames for the AC-3 reader", Kind::Ac3, Repeat(adts, 8), 0},
        {"AC-3 frames", Kind::Ac3, Repeat(Ac3Frame(), 4), CAudioFrameFileReader::MatchScore},
        {"MP3 after an ID3v2 tag", Kind::Mpeg, Concat({Id3v2Tag(500, 500), Repeat(mp3, 4)}),
         CAudioFrameFileReader::MatchScore},
        {"MP3 frames in a WAV file", Kind::Mpeg, Riff({{"fmt ", fmt.Get()}, {"data", Repeat(mp3, 6)}}),
         CAudioFrameFileReader::WeakMatchScore},
        {"frames beyond the probe distance", Kind::Mpeg,
         Concat({Bytes(CAudioFrameFileReader::ProbeDistance, 0x11), Repeat(mp3, 4)}), 0},
    };
}

TEST(RawAudioReaders, ProbingNeedsChainedFramesAndStaysBelowSignatures)
{
    for (const ProbeCase& c : ProbeCases()) {
        SCOPED_TRACE(c.name);
        const int score = Score(c.kind, c.file);
        EXPECT_EQ(score, c.score);
        EXPECT_LT(score, int(CAudioFileReader::MatchScore));
    }
}

TEST(RawAudioReaders, OtherTracksAreOutOfRange)
{
    auto opened = Open(Kind::Aac, Repeat(AdtsFrame(3, 2, 100), 4));
    ASSERT_EQ(opened.result, RESULT_OK);
    CAudioSample* sample = nullptr;
    EXPECT_EQ(opened.reader->ReadAudioSample(1, sample), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(sample, nullptr);
    EXPECT_EQ(opened.reader->GetAudioProperties(1), nullptr);
}

TEST(RawAudioReaders, AFailedSampleIsHandedOutByTheNextRead)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    const std::pair<Kind, Bytes> streams[] = {
        {Kind::Aac, Repeat(AdtsFrame(3, 2, 100), 5)},
        {Kind::Ac3, Repeat(Ac3Frame(), 5)},
        {Kind::Mpeg, Repeat(Mp3Frame(), 5)},
    };
    for (const auto& [kind, file] : streams) {
        auto opened = Open(kind, file);
        ASSERT_EQ(opened.result, RESULT_OK);
        // One read warms the sample pool, one counts what a read allocates,
        // the third fails at its last allocation.
        const auto read = [&](int64_t failAt) {
            CAudioSample* raw = nullptr;
            FaultInjection::FailAllocation(failAt);
            const int result = opened.reader->ReadAudioSample(0, raw);
            FaultInjection::Disarm();
            RObject<CAudioSample> sample(raw);
            return result < 0 || !sample ? int64_t(result)
                                         : static_cast<CContainerDataReference*>(sample->GetDataReference())
                                               ->GetPosition();
        };
        const int64_t unitBytes = read(0) == 0 ? read(INT64_MAX) : -1;
        EXPECT_EQ(read(FaultInjection::AllocationCount()), RESULT_OUT_OF_MEMORY);
        EXPECT_EQ(read(0), 2 * unitBytes) << "the unit whose sample failed comes next";
    }
#endif
}

TEST(RawAudioReaders, SurviveEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    const Bytes junk = {'j', 'u', 'n', 'k'};
    WalkOpenIndexRead<CAacContainerReader>(
        "ADTS", Concat({Id3v2Tag(20, 20), AdtsFrame(3, 2, 100), junk, Repeat(AdtsFrame(3, 2, 100), 3)}));
    WalkOpenIndexRead<CAc3ContainerReader>(
        "E-AC-3", Repeat(Concat({Eac3Frame(0, 0, 7, true, 300), Eac3Frame(1, 0, 2, false, 200, 0x0200)}), 3));
    WalkOpenIndexRead<CMpegAudioContainerReader>("MP3", Concat({Repeat(Mp3Frame(), 3), junk, Mp3Frame(), Id3v1Tag()}));
#endif
}

} // namespace
