// CAudioFormatConverter through its life cycle on host-chosen descriptions
// and data: the bytes choose the input and output layouts (or any code),
// channel counts and speaker masks, a frame count, and the sample data,
// which may be shorter than the frames need. Every run must end in a
// stated result without reading past the data; what is converted must have
// the promised size, a conversion to the same layout must copy, and a
// widening must come back exactly.
#include <vek/filters/audio/CAudioFormatConverter.h>
#include <vek/samples/CLinearDataReference.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    uint8_t Byte() { return m_at < m_size ? m_data[m_at++] : 0; }
    uint32_t Word()
    {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | Byte();
        return value;
    }
    const uint8_t* Rest() const { return m_data + m_at; }
    size_t RestSize() const { return m_size - m_at; }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
};

// A layout's code most of the time, any code now and then.
uint32_t ChooseFormat(Input& in)
{
    const uint8_t choice = in.Byte();
    if (choice == 0xFF)
        return in.Word();
    return PcmLayout::GetFormats()[choice % PcmLayout::GetFormatCount()];
}

RObject<CAudioProperties> Describe(uint32_t format, int32_t channels, uint32_t mask, int32_t rate)
{
    RObject<CAudioProperties> properties(new CAudioProperties());
    if (!properties)
        return properties;
    properties->SetFormat(format);
    if (mask != 0)
        properties->SetSpeakerPositionsFromMask(mask);
    else
        properties->SetChannels(channels);
    properties->SetSampleRate(rate);
    return properties;
}

// Every value of the integer layout `narrow` is a value of `wide`.
bool Holds(const PcmLayout& wide, const PcmLayout& narrow)
{
    if (wide.IsInteger())
        return narrow.IsInteger() && wide.bits >= narrow.bits;
    return wide.coding == PcmLayout::Coding::Float && wide.bytes == 8;
}

RObject<CAudioSample> Convert(CAudioFormatConverter* converter, CAudioSample* input, int& result)
{
    CAudioSample* raw = nullptr;
    result = converter->WriteSample(input);
    if (result >= 0)
        result = converter->ReadSample(raw);
    return RObject<CAudioSample>(raw);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input in(data, size);
    const uint32_t inputFormat = ChooseFormat(in);
    const uint32_t outputFormat = ChooseFormat(in);
    const int32_t inputChannels = in.Byte() % 10;
    const int32_t outputChannels = in.Byte() % 10;
    const uint8_t flags = in.Byte();
    const uint32_t inputMask = (flags & 1) ? in.Byte() : 0;
    const uint32_t outputMask = (flags & 2) ? in.Byte() : 0;
    const int32_t rate = (flags & 4) ? 0 : 8000;
    const int32_t frames = int32_t(in.Byte() | (in.Byte() & 0x0F) << 8);

    RObject<CAudioProperties> input = Describe(inputFormat, inputChannels, inputMask, rate);
    RObject<CAudioFormatConverter> converter(new CAudioFormatConverter());
    RObject<CLinearDataReference> bytes(CLinearDataReference::Create(int32_t(in.RestSize())));
    RObject<CAudioSample> sample(CAudioSample::Create());
    if (!input || !converter || !bytes || !sample)
        return 0;
    std::memcpy(bytes->GetData(), in.Rest(), in.RestSize());
    sample->SetPackets(frames);
    sample->SetFrames(1);
    sample->SetDataReference(bytes);

    converter->SetInputProperties(input);
    int result = converter->SetOutputFormat(outputFormat);
    Check(result == RESULT_OK || result == RESULT_FORMAT_ERROR);
    if (result < 0)
        return 0;
    CAudioProperties* output = converter->GetOutputProperties();
    if (outputMask != 0)
        output->SetSpeakerPositionsFromMask(outputMask);
    else if (outputChannels != 0)
        output->SetChannels(outputChannels);
    result = converter->Begin();
    Check(result == RESULT_OK || result == RESULT_FORMAT_ERROR || result == RESULT_ARGUMENT_OUT_OF_RANGE);
    if (result < 0)
        return 0;

    const PcmLayout* from = PcmLayout::Find(inputFormat);
    const PcmLayout* to = PcmLayout::Find(outputFormat);
    Check(from && to);
    const int32_t inFrameBytes = input->GetChannels() * from->bytes;
    const int32_t outFrameBytes = output->GetChannels() * to->bytes;
    RObject<CAudioSample> converted = Convert(converter, sample, result);
    if (int64_t(frames) * inFrameBytes > int64_t(in.RestSize())) {
        Check(result == RESULT_FORMAT_ERROR && !converted);
        return 0;
    }
    Check(result == RESULT_OK && converted);
    auto* made = static_cast<CLinearDataReference*>(converted->GetDataReference());
    Check(made->GetLength() == frames * outFrameBytes && converted->GetDuration() == frames);
    const bool sameChannels = input->GetChannels() == output->GetChannels() && inputMask == outputMask;
    if (sameChannels && from->format == to->format)
        Check(std::memcmp(made->GetData(), bytes->GetData(), size_t(made->GetLength())) == 0);

    // Widened and narrowed again through a second converter, the converted
    // samples come back as the first conversion of the input made them.
    // Integers only: a float NaN may come back quieted.
    if (!sameChannels || !from->IsInteger() || !Holds(*to, *from) || from->bits != 8 * from->bytes)
        return 0;
    RObject<CAudioFormatConverter> back(new CAudioFormatConverter());
    RObject<CAudioProperties> wide = Describe(to->format, output->GetChannels(), 0, 8000);
    if (!back || !wide || back->SetInputProperties(wide) < 0 || back->SetOutputFormat(from->format) < 0 ||
        back->Begin() < 0)
        return 0;
    RObject<CAudioSample> narrow = Convert(back, converted, result);
    Check(result == RESULT_OK && narrow);
    auto* returned = static_cast<CLinearDataReference*>(narrow->GetDataReference());
    Check(returned->GetLength() == frames * inFrameBytes);
    Check(std::memcmp(returned->GetData(), bytes->GetData(), size_t(returned->GetLength())) == 0);
    return 0;
}
