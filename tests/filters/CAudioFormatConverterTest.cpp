#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <containers/AudioReaderHarness.h>
#include <support/AllocationWalk.h>
#include <support/AudioFileBuilder.h>
#include <support/LogCapture.h>
#include <vek/containers/readers/aiff/CAiffContainerReader.h>
#include <vek/containers/readers/wav/CWavContainerReader.h>
#include <vek/filters/AudioConverter.h>
#include <vek/filters/FilterType.h>
#include <vek/filters/audio/CAudioFormatConverter.h>
#include <vek/media/AudioFormat.h>
#include <vek/samples/CMemoryDataReference.h>

#include "PcmReference.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

constexpr uint32_t kRate = 8000;
// Two whole seconds and a part: three samples from a reader.
constexpr uint32_t kFrames = 2 * kRate + 123;

struct Source {
    RObject<CAudioProperties> properties;
    std::vector<RObject<CAudioSample>> samples;
};

// Every sample of the file's one track, with its bytes read.
template <typename Reader>
Source ReadFile(const Bytes& file)
{
    Source source;
    auto opened = OpenReader<Reader>(file);
    EXPECT_EQ(opened.result, RESULT_OK);
    if (opened.result < 0)
        return source;
    source.properties = RObject<CAudioProperties>::FromObject(opened.reader->GetAudioProperties(0));
    for (;;) {
        CAudioSample* raw = nullptr;
        EXPECT_EQ(opened.reader->ReadAudioSample(0, raw), RESULT_OK);
        RObject<CAudioSample> sample(raw);
        if (!sample)
            break;
        EXPECT_EQ(opened.reader->ReadAudioData(0, sample.Get()), RESULT_OK);
        source.samples.push_back(sample);
    }
    return source;
}

Bytes SampleBytes(CAudioSample* sample)
{
    unsigned char* data = nullptr;
    int32_t length = 0;
    CMediaSampleDataReference* reference = sample->GetDataReference();
    if (!reference || reference->Lock(data, length) < 0)
        return {};
    Bytes bytes(data, data + length);
    reference->Unlock();
    return bytes;
}

Bytes WaveFile(uint16_t channels, uint16_t bits, std::optional<uint32_t> mask = std::nullopt, uint16_t tag = 1)
{
    const size_t bytes = size_t(kFrames) * channels * (bits / 8);
    return Riff({{"fmt ", WaveFormat(tag, channels, kRate, bits, mask)}, {"data", Pattern(bytes)}});
}

Bytes AiffFile(uint16_t channels, uint16_t bits)
{
    const size_t bytes = size_t(kFrames) * channels * (bits / 8);
    return Aiff({{"COMM", AiffCommon(channels, kFrames, bits, kRate)}, {"SSND", AiffSound(Pattern(bytes, 5))}});
}

RObject<CAudioProperties> Input(uint32_t format, int32_t channels = 2, int32_t rate = 48000, int32_t bytesPerFrame = 0)
{
    RObject<CAudioProperties> input(new CAudioProperties());
    input->SetFormat(format);
    input->SetChannels(channels);
    input->SetSampleRate(rate);
    input->SetBytesPerFrame(bytesPerFrame);
    return input;
}

// The converted samples of a whole file, each checked against the reference
// conversion of its input, with the drain and End after them.
void ExpectConversion(const Source& source, uint32_t outputFormat, int32_t outputChannels,
                      const std::vector<int>& sources)
{
    RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
    ASSERT_EQ(converter->SetInputProperties(source.properties), RESULT_OK);
    ASSERT_EQ(converter->SetOutputFormat(outputFormat), RESULT_OK);
    CAudioProperties* output = converter->GetOutputProperties();
    if (outputChannels != source.properties->GetChannels()) {
        ASSERT_EQ(output->SetChannels(outputChannels), RESULT_OK);
    }
    ASSERT_EQ(converter->Begin(), RESULT_OK);

    const PcmLayout in = Layout(source.properties->GetFormat());
    const PcmLayout out = Layout(outputFormat);
    EXPECT_EQ(output->GetFormat(), out.format);
    EXPECT_EQ(output->GetChannels(), outputChannels);
    EXPECT_EQ(output->GetBitsPerSample(), out.bits);
    EXPECT_EQ(output->GetBytesPerFrame(), outputChannels * out.bytes);
    EXPECT_EQ(output->GetBytesPerPacket(), outputChannels * out.bytes);
    EXPECT_EQ(output->GetFramesPerPacket(), 1);
    EXPECT_EQ(output->GetBitRate(), int64_t(kRate) * outputChannels * out.bytes * 8);

    int64_t frames = 0;
    for (const RObject<CAudioSample>& sample : source.samples) {
        ASSERT_EQ(converter->WriteSample(sample), RESULT_OK);
        CAudioSample* raw = nullptr;
        ASSERT_EQ(converter->ReadSample(raw), RESULT_OK);
        RObject<CAudioSample> converted(raw);
        EXPECT_EQ(converted->GetDuration(), sample->GetDuration());
        EXPECT_EQ(converted->GetTime(), sample->GetTime());
        const Bytes input = SampleBytes(sample);
        const Bytes expected = ReferenceConvert(in, source.properties->GetChannels(), out, sources, input.data(),
                                                size_t(sample->GetDuration()));
        const Bytes got = SampleBytes(converted);
        ASSERT_EQ(got.size(), expected.size());
        for (size_t at = 0; at < got.size(); at += size_t(out.bytes))
            ASSERT_TRUE(SameSample(out, got.data() + at, expected.data() + at)) << "byte " << at;
        frames += converted->GetDuration();
        ASSERT_EQ(converter->ReadSample(raw), 1) << "one output per input";
    }
    EXPECT_EQ(frames, int64_t(kFrames));
    EXPECT_EQ(converter->WriteSample(nullptr), RESULT_OK);
    CAudioSample* raw = nullptr;
    EXPECT_EQ(converter->ReadSample(raw), 1) << "nothing is held back";
    EXPECT_EQ(converter->End(), RESULT_OK);
}

struct FileCase {
    const char* name;
    Bytes (*file)();
    bool aiff;
    uint32_t output;
    int32_t outputChannels;
    std::vector<int> sources;
};

const uint32_t Stereo = 0x3;
const uint32_t FiveOne = 0x3F;

const FileCase FileCases[] = {
    {"WAV 16-bit stereo to f32le", [] { return WaveFile(2, 16); }, false, AudioFormat::Float32L, 2, {0, 1}},
    {"WAV 24-bit mono to 20-bit big-endian", [] { return WaveFile(1, 24); }, false, AudioFormat::Int20B, 1, {0}},
    {"WAV 8-bit to mu-law", [] { return WaveFile(1, 8); }, false, AudioFormat::muLaw, 1, {0}},
    {"WAV float to s16be", [] { return WaveFile(2, 32, std::nullopt, 3); }, false, AudioFormat::Int16B, 2, {0, 1}},
    {"WAV 5.1 to stereo by position", [] { return WaveFile(6, 16, FiveOne); }, false, AudioFormat::Int16L, 2, {0, 1}},
    {"WAV 5.1 to eight channels by index", [] { return WaveFile(6, 16, FiveOne); }, false, AudioFormat::Float64L, 8,
     {0, 1, 2, 3, 4, 5, -1, -1}},
    {"WAV stereo to mono", [] { return WaveFile(2, 16, Stereo); }, false, AudioFormat::aLaw, 1, {0}},
    {"AIFF 16-bit to s16le", [] { return AiffFile(2, 16); }, true, AudioFormat::Int16L, 2, {0, 1}},
    {"AIFF 32-bit to u24be", [] { return AiffFile(1, 32); }, true, AudioFormat::UInt24B, 1, {0}},
    {"AIFF 8-bit to s8", [] { return AiffFile(3, 8); }, true, AudioFormat::Int8, 3, {0, 1, 2}},
};

TEST(CAudioFormatConverter, ConvertsTheSamplesOfWaveAndAiffFiles)
{
    for (const FileCase& c : FileCases) {
        SCOPED_TRACE(c.name);
        const Bytes file = c.file();
        const Source source = c.aiff ? ReadFile<CAiffContainerReader>(file) : ReadFile<CWavContainerReader>(file);
        ASSERT_TRUE(source.properties);
        ASSERT_EQ(source.samples.size(), 3u);
        ExpectConversion(source, c.output, c.outputChannels, c.sources);
    }
}

TEST(CAudioFormatConverter, OffersEveryLayoutAndFloatFirst)
{
    RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
    RObject<CValueList<unsigned int>> inputs(converter->GetInputFormats());
    RObject<CValueList<unsigned int>> outputs(converter->GetOutputFormats());
    EXPECT_EQ(inputs->GetCount(), int32_t(PcmLayout::GetFormatCount()));
    ASSERT_EQ(outputs->GetCount(), int32_t(PcmLayout::GetFormatCount()));
    EXPECT_EQ(outputs->Get(0), uint32_t(AudioFormat::Float32L));
    const std::pair<uint32_t, int> scores[] = {
        {Four("s16l"), CAudioFormatConverter::AcceptScore},
        {AudioFormat::MicrosoftG711u, CAudioFormatConverter::AcceptScore},
        {AudioFormat::LPCM, 0},
        {AudioFormat::AAC, 0},
    };
    for (auto [format, score] : scores)
        EXPECT_EQ(converter->Evaluate(Input(format)), score) << FourCCText(format).c_str();

    // Without a chosen output, Begin converts to float.
    ASSERT_EQ(converter->SetInputProperties(Input(AudioFormat::Int16L)), RESULT_OK);
    ASSERT_EQ(converter->Begin(), RESULT_OK);
    EXPECT_EQ(converter->GetOutputFormat(), uint32_t(AudioFormat::Float32L));
    EXPECT_EQ(converter->GetOutputProperties()->GetBytesPerFrame(), 8);

    // An alias is accepted and described by the code that names its layout.
    EXPECT_EQ(converter->SetOutputFormat(Four("s24b")), RESULT_OK);
    EXPECT_EQ(converter->GetOutputFormat(), uint32_t(AudioFormat::Int24B));
    VekTest::LogCapture log(1);
    EXPECT_EQ(converter->SetOutputFormat(AudioFormat::LPCM), RESULT_FORMAT_ERROR);
    EXPECT_EQ(converter->GetOutputFormat(), uint32_t(AudioFormat::Int24B));
}

TEST(CAudioFormatConverter, BeginRefusesInputThatIsNoPcmLayout)
{
    struct Case {
        RObject<CAudioProperties> input;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {Input(AudioFormat::LPCM), RESULT_FORMAT_ERROR, "input format 'lpcm'"},
        {Input(AudioFormat::Int16L, 0), RESULT_ARGUMENT_OUT_OF_RANGE, "input channels 0"},
        {Input(AudioFormat::Int16L, 2, 0, 4), RESULT_ARGUMENT_OUT_OF_RANGE, "input sample rate 0"},
        {Input(AudioFormat::Int24L, 2, 48000, 8), RESULT_FORMAT_ERROR,
         "input bytes per frame 8 is not 2 channels x 3 bytes"},
    };
    for (const Case& c : cases) {
        RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
        ASSERT_EQ(converter->SetInputProperties(c.input), RESULT_OK);
        ASSERT_EQ(converter->SetOutputFormat(AudioFormat::Int16B), RESULT_OK);
        VekTest::LogCapture log(1);
        EXPECT_EQ(converter->Begin(), c.result) << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        RObject<CAudioSample> sample(CAudioSample::Create());
        sample->SetPackets(1);
        sample->SetFrames(1);
        EXPECT_EQ(converter->WriteSample(sample), RESULT_BAD_ORDER_ERROR) << "a failed Begin converts nothing";
    }
}

// A stereo 16-bit converter to float, begun.
RObject<CAudioFormatConverter> BegunConverter()
{
    RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
    if (converter->SetInputProperties(Input(AudioFormat::Int16L)) < 0 ||
        converter->SetOutputFormat(AudioFormat::Float32L) < 0 || converter->Begin() < 0)
        return RObject<CAudioFormatConverter>();
    return converter;
}

// A sample of `packets` x `frames` frames over `bytes` bytes (no data
// reference for a negative count).
RObject<CAudioSample> MakeSample(int32_t packets, int32_t frames, int32_t bytes)
{
    RObject<CAudioSample> sample(CAudioSample::Create());
    sample->SetPackets(packets);
    sample->SetFrames(frames);
    if (bytes >= 0) {
        RObject<CLinearDataReference> data(CLinearDataReference::Create(bytes));
        sample->SetDataReference(data);
    }
    return sample;
}

TEST(CAudioFormatConverter, WriteSampleRefusesDataShorterThanItsFrames)
{
    struct Case {
        const char* name;
        int32_t packets, frames, bytes;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {"one byte short", 10, 1, 39, RESULT_FORMAT_ERROR, "holds 39 bytes; its 10 frames need 40"},
        {"packets of several frames", 3, 4, 47, RESULT_FORMAT_ERROR, "holds 47 bytes; its 12 frames need 48"},
        {"no data at all", 2, 1, -1, RESULT_FORMAT_ERROR, "holds 0 bytes; its 2 frames need 8"},
        {"negative packets", -1, 1, 64, RESULT_FORMAT_ERROR, "-1 packets of 1 frames"},
        {"an output past 31 bits", 65536, 32768, 0, RESULT_ARGUMENT_OUT_OF_RANGE, "make an output over"},
    };
    RObject<CAudioFormatConverter> converter = BegunConverter();
    ASSERT_TRUE(converter);
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        EXPECT_EQ(converter->WriteSample(MakeSample(c.packets, c.frames, c.bytes)), c.result) << c.name;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        CAudioSample* raw = nullptr;
        EXPECT_EQ(converter->ReadSample(raw), 1);
    }
    // Longer data is fine: the frames say how much is converted. Time, hint
    // and trim go with them.
    RObject<CAudioSample> input = MakeSample(3, 2, 30);
    input->SetTime(96000);
    input->SetHint(3);
    input->SetTrim(2);
    ASSERT_EQ(converter->WriteSample(input), RESULT_OK);
    CAudioSample* raw = nullptr;
    ASSERT_EQ(converter->ReadSample(raw), RESULT_OK);
    RObject<CAudioSample> output(raw);
    EXPECT_EQ(SampleBytes(output).size(), 48u);
    EXPECT_EQ(output->GetDuration(), 6);
    EXPECT_EQ(output->GetTime(), 96000);
    EXPECT_EQ(output->GetHint(), 3);
    EXPECT_EQ(output->GetTrim(), 2);
}

TEST(CAudioFormatConverter, ReusesAnOutputBufferOnceTheHostLetsGoOfIt)
{
    RObject<CAudioFormatConverter> converter = BegunConverter();
    ASSERT_TRUE(converter);
    RObject<CAudioSample> input = MakeSample(100, 1, 400);
    auto convert = [&] {
        CAudioSample* raw = nullptr;
        EXPECT_EQ(converter->WriteSample(input), RESULT_OK);
        EXPECT_EQ(converter->ReadSample(raw), RESULT_OK);
        return RObject<CAudioSample>(raw);
    };
    RObject<CAudioSample> first = convert();
    CMediaSampleDataReference* firstBuffer = first->GetDataReference();
    RObject<CAudioSample> second = convert();
    EXPECT_NE(second->GetDataReference(), firstBuffer) << "the first buffer is still held";
    first = RObject<CAudioSample>();
    RObject<CAudioSample> third = convert();
    EXPECT_EQ(third->GetDataReference(), firstBuffer) << "the released buffer comes back";

#if VEK_FAULT_INJECTION
    // Warm: the buffers, the samples and the queues exist. Then converting
    // and releasing allocates nothing.
    second = RObject<CAudioSample>();
    third = RObject<CAudioSample>();
    convert();
    constexpr int Loop = 1000;
    FaultInjection::FailAllocation(int64_t(Loop) * 100);
    for (int i = 0; i < Loop; ++i)
        convert();
    const int64_t allocations = FaultInjection::AllocationCount();
    FaultInjection::FailAllocation(0);
    EXPECT_EQ(allocations, 0) << "allocations over " << Loop << " conversions";
#endif
}

TEST(CAudioFormatConverter, RegistersOnceUnderItsFilterType)
{
    ASSERT_EQ(CAudioFormatConverter::Register(), RESULT_OK);
    ASSERT_EQ(CAudioFormatConverter::Register(), RESULT_OK);
    RObject<CList<CComponentFactory<CAudioConverter>>> factories(
        CComponentInventory<CComponentFactory<CAudioConverter>>::GetFactories());
    int found = 0;
    for (int32_t i = 0; i < factories->GetCount(); ++i)
        found += factories->Get(i)->GetID() == FilterType::AudioFormatConverter;
    EXPECT_EQ(found, 1);

    AudioConverter converter = AudioConverter::Create(FilterType::AudioFormatConverter);
    ASSERT_TRUE(converter.ToConverter());
    EXPECT_EQ(converter.ToConverter()->GetType(), FilterType::AudioFormatConverter);
    EXPECT_EQ(converter.SetOutputFormat(AudioFormat::Int24L), RESULT_OK);
}

#if VEK_FAULT_INJECTION
TEST(CAudioFormatConverter, EveryAllocationFailureEndsInOutOfMemory)
{
    const Source source = ReadFile<CWavContainerReader>(WaveFile(2, 24));
    ASSERT_EQ(source.samples.size(), 3u);
    WalkAllocationFailures("Begin, WriteSample, ReadSample, drain", [&] {
        RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
        if (!converter)
            return true;
        int result = converter->SetInputProperties(source.properties);
        if (result >= 0)
            result = converter->SetOutputFormat(AudioFormat::Float32L);
        if (result >= 0)
            result = converter->Begin();
        for (size_t i = 0; result >= 0 && i < source.samples.size(); ++i) {
            if ((result = converter->WriteSample(source.samples[i])) < 0)
                break;
            CAudioSample* raw = nullptr;
            result = converter->ReadSample(raw);
            RObject<CAudioSample> output(raw);
            if (result == RESULT_OK && (!output || output->GetDuration() != source.samples[i]->GetDuration()))
                return false;
        }
        if (result >= 0)
            result = converter->WriteSample(nullptr);
        CAudioSample* raw = nullptr;
        if (result >= 0)
            result = converter->ReadSample(raw);
        converter->End();
        return result == 1 || result == RESULT_OUT_OF_MEMORY;
    });
}
#endif

} // namespace
