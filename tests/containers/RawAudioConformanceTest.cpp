// The raw ADTS, AC-3/E-AC-3 and MPEG audio readers against streams that
// ffmpeg's and sox's encoders write at test time, with ffprobe and ffmpeg's
// decoder as the oracle: stream facts, every packet's place, size and time,
// the decoder configuration ffmpeg puts in an MP4 of the same frames, and
// the number of samples ffmpeg decodes (the gapless length of LAME files).
#include "AudioReaderHarness.h"
#include "elementary/ExternalStreams.h"

#include <cstdlib>
#include <cstring>
#include <map>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

enum class Kind { Aac, Ac3, Mpeg };

struct StreamCase {
    const char* name;
    Kind kind;
    const char* encoder; // ffmpeg's encoder, or "sox"
    const char* input; // lavfi source, or sox's effect chain
    const char* options; // ffmpeg's output options, or sox's output options
    const char* file;
};

const StreamCase Cases[] = {
    {"AAC mono 44.1 kHz", Kind::Aac, "aac", "sine=f=440:d=1.1:r=44100", "-ac 1 -c:a aac -b:a 64k", "a.aac"},
    {"AAC stereo 48 kHz", Kind::Aac, "aac", "sine=f=440:d=1:r=48000", "-ac 2 -c:a aac -b:a 128k", "a.aac"},
    {"AAC 5.1 48 kHz", Kind::Aac, "aac", "sine=f=440:d=0.7:r=48000", "-ac 6 -c:a aac", "a.aac"},
    {"AAC stereo 16 kHz", Kind::Aac, "aac", "sine=f=300:d=1.3:r=16000", "-ac 2 -c:a aac", "a.aac"},
    {"AC-3 stereo 48 kHz", Kind::Ac3, "ac3", "sine=f=440:d=1:r=48000", "-ac 2 -c:a ac3", "a.ac3"},
    {"AC-3 5.1 44.1 kHz", Kind::Ac3, "ac3", "sine=f=440:d=0.8:r=44100", "-ac 6 -c:a ac3", "a.ac3"},
    {"E-AC-3 5.1 48 kHz", Kind::Ac3, "eac3", "sine=f=440:d=1:r=48000", "-ac 6 -c:a eac3", "a.eac3"},
    {"E-AC-3 stereo 32 kHz", Kind::Ac3, "eac3", "sine=f=440:d=0.9:r=32000", "-ac 2 -c:a eac3 -b:a 96k", "a.eac3"},
    {"MP3 CBR with an Info tag", Kind::Mpeg, "libmp3lame", "sine=f=440:d=1:r=44100", "-c:a libmp3lame -b:a 128k",
     "a.mp3"},
    {"MP3 VBR MPEG-2 with a Xing tag", Kind::Mpeg, "libmp3lame", "sine=f=440:d=1.2:r=22050",
     "-ac 2 -c:a libmp3lame -q:a 4", "a.mp3"},
    {"MP3 VBR MPEG-2.5 mono", Kind::Mpeg, "libmp3lame", "sine=f=440:d=1:r=8000", "-c:a libmp3lame -q:a 6", "a.mp3"},
    {"MP3 without a tag, with ID3v1", Kind::Mpeg, "libmp3lame", "sine=f=440:d=1:r=44100",
     "-c:a libmp3lame -b:a 96k -write_xing 0 -write_id3v1 1", "a.mp3"},
    {"MP2 stereo 48 kHz", Kind::Mpeg, "mp2", "sine=f=440:d=1:r=48000", "-ac 2 -c:a mp2 -b:a 192k", "a.mp2"},
    {"MP2 MPEG-2 24 kHz", Kind::Mpeg, "mp2", "sine=f=440:d=1:r=24000", "-c:a mp2 -b:a 64k", "a.mp2"},
    {"sox MP3", Kind::Mpeg, "sox", "synth 1 sine 440", "-r 44100 -c 2", "s.mp3"},
    {"sox MP2", Kind::Mpeg, "sox", "synth 1 sine 440", "-r 48000 -c 2", "s.mp2"},
};

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

bool HasSoxFormat(const std::string& extension)
{
    const auto formats = RunCommand("sox -h 2>/dev/null | grep 'AUDIO FILE FORMATS'");
    return formats && formats->find(" " + extension + " ") != std::string::npos;
}

// The file the case's writer makes, or empty when the writer is missing.
std::string Write(const TempDir& dir, const StreamCase& c)
{
    if (std::strcmp(c.encoder, "sox") == 0) {
        const std::string name = c.file;
        if (!HasSoxFormat(name.substr(name.rfind('.') + 1)))
            return {};
        const std::string path = dir.File(c.file);
        const std::string command =
            std::string("sox -n ") + c.options + " '" + path + "' " + c.input + " >/dev/null 2>&1";
        return std::system(command.c_str()) == 0 ? ReadFile(path) : std::string();
    }
    if (!HasEncoder(c.encoder))
        return {};
    return Encode(dir, c.input, c.options, c.file);
}

uint32_t FormatOfCodec(const std::string& codec)
{
    static const std::map<std::string, uint32_t> formats = {
        {"aac", AudioFormat::ADTS}, {"ac3", AudioFormat::AC3}, {"eac3", AudioFormat::EC3},
        {"mp3", AudioFormat::MP3},  {"mp2", AudioFormat::MPEG}, {"mp1", AudioFormat::MPEG},
    };
    const auto found = formats.find(codec);
    return found == formats.end() ? 0 : found->second;
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

struct ReadSample {
    int64_t position, time;
    int32_t length, frames, leading, trailing;
    bool excluded;
};

std::vector<ReadSample> ReadEverySample(CContainerReader* reader, const Bytes& file)
{
    std::vector<ReadSample> samples;
    for (;;) {
        CAudioSample* raw = nullptr;
        const int result = reader->ReadAudioSample(0, raw);
        RObject<CAudioSample> sample(raw);
        EXPECT_EQ(result, RESULT_OK);
        if (result < 0 || !sample)
            return samples;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        ReadSample read{range->GetPosition(), sample->GetTime(), range->GetLength(), sample->GetFrames(), 0, 0,
                        sample->IsExcluded()};
        sample->GetCompositionTrim(read.leading, read.trailing);
        EXPECT_EQ(sample->GetPackets(), 1);
        EXPECT_EQ(reader->ReadAudioData(0, sample.Get()), RESULT_OK);
        CByteArray* bytes = static_cast<CMemoryDataReference*>(sample->GetDataReference())->GetBuffer();
        EXPECT_TRUE(bytes->GetLength() == read.length &&
                    std::memcmp(bytes->GetData(), file.data() + read.position, size_t(read.length)) == 0)
            << "the sample at " << read.position << " differs from the file";
        samples.push_back(read);
    }
}

// A time base "num/den" and the track's rate: whether the time base counts
// whole samples, and a count of samples in its ticks.
struct TimeBase {
    int64_t numerator = 0, denominator = 0;

    explicit TimeBase(const std::string& text)
        : numerator(std::atoll(text.c_str())), denominator(std::atoll(text.c_str() + text.find('/') + 1))
    {
    }
    bool CountsSamplesOf(int64_t rate) const { return denominator % (numerator * rate) == 0; }
    double Ticks(int64_t samples, int64_t rate) const
    {
        return double(samples) * double(denominator) / double(numerator * rate);
    }
};

// The samples ffmpeg's decoder gives for the file (its gapless length when
// it honours an encoder's delay and padding).
int64_t DecodedSamples(const TempDir& dir, const std::string& path)
{
    const std::string wav = dir.File("decoded.wav");
    const std::string command = "ffmpeg -v error -nostdin -y -i '" + path + "' -f wav '" + wav + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return -1;
    const std::string value = JsonValue(Probe(wav, "-show_streams"), "duration_ts");
    return value.empty() ? -1 : std::atoll(value.c_str());
}

// What ffmpeg's MP4 muxer stores as the decoder configuration of the same
// frames: the 'dac3' or 'dec3' payload, or the esds box holding the
// AudioSpecificConfig.
std::string Mp4DecoderConfiguration(const TempDir& dir, const std::string& path, uint32_t format)
{
    const std::string mp4 = dir.File("remuxed.mp4");
    const std::string command = "ffmpeg -v error -nostdin -y -i '" + path + "' -c copy '" + mp4 + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return {};
    const std::string file = ReadFile(mp4);
    return BoxPayload(file, format == AudioFormat::AC3 ? "dac3" : format == AudioFormat::EC3 ? "dec3" : "esds");
}

void ExpectStreamFacts(CAudioProperties* audio, const std::string& streams)
{
    EXPECT_EQ(audio->GetFormat(), FormatOfCodec(JsonValue(streams, "codec_name")));
    EXPECT_EQ(std::to_string(audio->GetSampleRate()), JsonValue(streams, "sample_rate"));
    EXPECT_EQ(audio->GetTimeScale(), audio->GetSampleRate());
    EXPECT_EQ(std::to_string(audio->GetChannels()), JsonValue(streams, "channels"));
    EXPECT_EQ(SpeakerMask(audio), FfmpegLayoutMask(JsonValue(streams, "channel_layout")));
    const double probedRate = std::atof(JsonValue(streams, "bit_rate").c_str());
    EXPECT_NEAR(double(audio->GetBitRate()), probedRate, probedRate * 0.02);
    if (audio->GetFormat() == AudioFormat::ADTS) {
        uint8_t objectType = 0;
        EXPECT_EQ(audio->GetProperty(AudioProperty::Mpeg4ObjectType, 1, &objectType), 1);
        EXPECT_EQ(JsonValue(streams, "profile"), objectType == AacObjectType::LowComplexity ? "LC" : "other");
    }
}

void ExpectPackets(const std::vector<ReadSample>& samples, const std::string& packets, const TimeBase& timeBase,
                   int64_t rate)
{
    const auto positions = JsonValues(packets, "pos"), sizes = JsonValues(packets, "size"),
               times = JsonValues(packets, "pts"), durations = JsonValues(packets, "duration");
    ASSERT_EQ(samples.size(), positions.size());
    ASSERT_EQ(sizes.size(), positions.size());
    ASSERT_EQ(times.size(), positions.size());
    ASSERT_EQ(durations.size(), positions.size());
    // A time base finer than samples but not counting them (90 kHz for
    // 44.1 kHz AC-3) rounds each packet's duration: its times drift by up
    // to a tick a packet.
    const bool exact = timeBase.CountsSamplesOf(rate);
    for (size_t i = 0; i < samples.size(); ++i) {
        SCOPED_TRACE("packet " + std::to_string(i));
        EXPECT_EQ(std::to_string(samples[i].position), positions[i]);
        EXPECT_EQ(std::to_string(samples[i].length), sizes[i]);
        EXPECT_NEAR(timeBase.Ticks(samples[i].time, rate), std::atof(times[i].c_str()), exact ? 0 : double(i + 1));
        EXPECT_NEAR(timeBase.Ticks(samples[i].frames, rate), std::atof(durations[i].c_str()), exact ? 0 : 1);
    }
}

// Leading trims and excluded samples before the first presented one
// against the first packet's skip, and the trimmed end against the
// discarded padding.
void ExpectTrims(const std::vector<ReadSample>& samples, const std::string& packets)
{
    int64_t skipped = 0, padded = 0;
    bool presented = false;
    for (const ReadSample& sample : samples) {
        if (sample.excluded)
            (presented ? padded : skipped) += sample.frames;
        presented = presented || !sample.excluded;
        skipped += sample.leading;
        padded += sample.trailing;
    }
    int64_t probedSkip = 0, probedPadding = 0;
    for (const std::string& value : JsonValues(packets, "skip_samples"))
        probedSkip += std::atoll(value.c_str());
    for (const std::string& value : JsonValues(packets, "discard_padding"))
        probedPadding += std::atoll(value.c_str());
    EXPECT_EQ(skipped, probedSkip);
    EXPECT_EQ(padded, probedPadding);
}

TEST(RawAudioConformance, EveryFactAndPacketMatchesFfprobe)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "ffmpeg and ffprobe are not available";
    int tested = 0;
    for (const StreamCase& c : Cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string written = Write(dir, c);
        if (written.empty())
            continue; // this writer is missing
        ++tested;
        const std::string path = dir.File(c.file);
        const Bytes file(written.begin(), written.end());
        auto opened = Open(c.kind, file);
        ASSERT_EQ(opened.result, RESULT_OK);
        CAudioProperties* audio = opened.reader->GetAudioProperties(0);
        const std::string streams = Probe(path, "-show_streams");
        ExpectStreamFacts(audio, streams);

        const std::vector<ReadSample> samples = ReadEverySample(opened.reader, file);
        const std::string packets = Probe(path, "-show_packets");
        ExpectPackets(samples, packets, TimeBase(JsonValue(streams, "time_base")), audio->GetSampleRate());
        ExpectTrims(samples, packets);

        int64_t frames = 0, presented = 0;
        for (const ReadSample& sample : samples) {
            frames += sample.frames;
            presented += sample.excluded ? 0 : sample.frames - sample.leading - sample.trailing;
        }
        EXPECT_EQ(audio->GetDuration(), frames);
        EXPECT_EQ(audio->GetFramesPerPacket(), samples.empty() ? 0 : samples.front().frames);
        EXPECT_EQ(presented, DecodedSamples(dir, path));

        CByteArray* config = audio->GetProperty(AudioProperty::DecoderConfiguration);
        if (audio->GetFormat() == AudioFormat::MP3 || audio->GetFormat() == AudioFormat::MPEG) {
            EXPECT_EQ(config, nullptr);
            continue;
        }
        ASSERT_NE(config, nullptr);
        const std::string ours(reinterpret_cast<const char*>(config->GetData()), size_t(config->GetLength()));
        const std::string muxed = Mp4DecoderConfiguration(dir, path, audio->GetFormat());
        if (audio->GetFormat() == AudioFormat::ADTS)
            // The DecoderSpecificInfo: its length (the last byte of the
            // descriptor's size), then the configuration.
            EXPECT_NE(muxed.find(std::string(1, char(ours.size())) + ours), std::string::npos)
                << "the esds box holds no DecoderSpecificInfo of our bytes";
        else
            EXPECT_EQ(ours, muxed);
    }
    if (tested == 0)
        GTEST_SKIP() << "no encoder of the cases is available";
}

} // namespace
