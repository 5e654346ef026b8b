#include <vek/filters/audio/CAudioFormatConverter.h>

#include <atomic>

#include <vek/components/CInstanceFactory.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/FourCCText.h>
#include <vek/filters/FilterType.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

using Inventory = CComponentInventory<CComponentFactory<CAudioConverter>>;

// Holds a data reference's Lock for a scope; the reference is borrowed
// from a sample that outlives the guard.
class DataLock {
public:
    explicit DataLock(CMediaSampleDataReference* reference) : m_reference(reference)
    {
        if (m_reference)
            m_result = m_reference->Lock(m_data, m_length);
    }
    ~DataLock()
    {
        if (m_reference && m_result >= 0)
            m_reference->Unlock();
    }
    DataLock(const DataLock&) = delete;
    DataLock& operator=(const DataLock&) = delete;

    int GetResult() const { return m_result; }
    const unsigned char* GetData() const { return m_data; }
    int32_t GetLength() const { return m_length; }

private:
    CMediaSampleDataReference* m_reference;
    int m_result = RESULT_OK;
    unsigned char* m_data = nullptr;
    int32_t m_length = 0;
};

} // namespace

CAudioFormatConverter::CAudioFormatConverter() : CAudioConverter(FilterType::AudioFormatConverter) {}

CAudioFormatConverter::~CAudioFormatConverter() = default;

int CAudioFormatConverter::Register()
{
    if (Inventory::GetFactoryByID(FilterType::AudioFormatConverter))
        return RESULT_OK;
    RObject<CInstanceFactory<CAudioFormatConverter>> factory(
        CInstanceFactory<CAudioFormatConverter>::Create(FilterType::AudioFormatConverter));
    if (!factory) {
        Log(LogLevel::Error, "CAudioFormatConverter::Register: no memory for the factory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return Inventory::AddFactory(factory);
}

CAudioFormatConverter::FormatList* CAudioFormatConverter::GetInputFormats()
{
    RObject<FormatList> formats(FormatList::Create());
    for (size_t i = 0; formats && i < PcmLayout::GetFormatCount(); ++i)
        if (formats->Add(PcmLayout::GetFormats()[i]) < 0)
            return nullptr;
    return formats.Detach();
}

CAudioFormatConverter::FormatList* CAudioFormatConverter::GetOutputFormats()
{
    RObject<FormatList> formats(FormatList::Create());
    if (!formats || formats->Add(AudioFormat::Float32L) < 0)
        return nullptr;
    for (size_t i = 0; i < PcmLayout::GetFormatCount(); ++i) {
        const uint32_t format = PcmLayout::GetFormats()[i];
        if (format != AudioFormat::Float32L && formats->Add(format) < 0)
            return nullptr;
    }
    return formats.Detach();
}

int CAudioFormatConverter::Evaluate(const CAudioProperties* properties)
{
    return properties && PcmLayout::Find(properties->GetFormat()) ? AcceptScore : 0;
}

bool CAudioFormatConverter::ValidateOutputFormat(unsigned int format)
{
    return PcmLayout::Find(format) != nullptr;
}

int CAudioFormatConverter::CreateOutputProperties(unsigned int format, CAudioProperties*& properties)
{
    properties = nullptr;
    PcmLayout layout;
    int result = PcmLayout::FromFormat(format, layout);
    if (result < 0)
        return result;
    CAudioProperties* made = nullptr;
    result = CAudioConverter::CreateOutputProperties(layout.format, made);
    RObject<CAudioProperties> owned(made);
    if (result < 0 || (result = DescribeOutput(layout, owned)) < 0)
        return result;
    properties = owned.Detach();
    return RESULT_OK;
}

int CAudioFormatConverter::DescribeOutput(const PcmLayout& layout, CAudioProperties* output)
{
    // At most MaxChannels x 8 bytes a frame, and an int32 rate: no overflow.
    const int32_t frameBytes = output->GetChannels() * layout.bytes;
    output->SetFormat(layout.format);
    int result;
    if ((result = output->SetBitsPerSample(layout.bits)) < 0 || (result = output->SetBytesPerFrame(frameBytes)) < 0 ||
        (result = output->SetFramesPerPacket(1)) < 0 || (result = output->SetBytesPerPacket(frameBytes)) < 0 ||
        (result = output->SetBitRate(int64_t(output->GetSampleRate()) * frameBytes * 8)) < 0)
        return result;
    return RESULT_OK;
}

int CAudioFormatConverter::CheckInput(const CAudioProperties* input, const PcmLayout& layout)
{
    const int32_t channels = input->GetChannels();
    if (channels < 1 || channels > CAudioProperties::MaxChannels) {
        Log(LogLevel::Error, "CAudioFormatConverter::Begin: input channels %d is outside 1..%d\n", int(channels),
            int(CAudioProperties::MaxChannels));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (input->GetSampleRate() <= 0) {
        Log(LogLevel::Error, "CAudioFormatConverter::Begin: input sample rate %d is not above 0\n",
            int(input->GetSampleRate()));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    const int32_t frameBytes = channels * layout.bytes;
    if (input->GetBytesPerFrame() != 0 && input->GetBytesPerFrame() != frameBytes) {
        Log(LogLevel::Error,
            "CAudioFormatConverter::Begin: input bytes per frame %d is not %d channels x %d bytes of '%s'\n",
            int(input->GetBytesPerFrame()), int(channels), int(layout.bytes), FourCCText(layout.format).c_str());
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

int CAudioFormatConverter::CoreBegin()
{
    m_running = false;
    const CAudioProperties* input = GetInputProperties();
    CAudioProperties* output = GetOutputProperties();
    PcmLayout in;
    PcmLayout out;
    int result = PcmLayout::FromFormat(input->GetFormat(), in);
    if (result < 0) {
        Log(LogLevel::Error, "CAudioFormatConverter::Begin: input format '%s' (0x%08X) is no PCM layout\n",
            FourCCText(input->GetFormat()).c_str(), unsigned(input->GetFormat()));
        return result;
    }
    if ((result = CheckInput(input, in)) < 0)
        return result;
    if ((result = PcmLayout::FromFormat(output->GetFormat(), out)) < 0) {
        Log(LogLevel::Error, "CAudioFormatConverter::Begin: output format '%s' (0x%08X) is no PCM layout\n",
            FourCCText(output->GetFormat()).c_str(), unsigned(output->GetFormat()));
        return result;
    }
    // An output described before the input was known takes its channels.
    if (output->GetChannels() == 0) {
        if ((result = output->SetChannels(input->GetChannels())) < 0)
            return result;
        for (int32_t channel = 0; channel < input->GetChannels(); ++channel) {
            uint32_t position = CAudioProperties::SpeakerUnknown;
            input->GetSpeakerPosition(channel, position);
            output->SetSpeakerPosition(channel, position);
        }
    }
    AudioChannelMap map;
    if ((result = map.Build(input, output)) < 0 || (result = output->SetSampleRate(input->GetSampleRate())) < 0 ||
        (result = output->SetTimeScale(input->GetTimeScale())) < 0 || (result = DescribeOutput(out, output)) < 0 ||
        (result = m_conversion.Prepare(in, out, map)) < 0)
        return result;
    Log(LogLevel::Detail, "CAudioFormatConverter::Begin: '%s' x %d to '%s' x %d%s\n", FourCCText(in.format).c_str(),
        int(map.GetInputChannels()), FourCCText(out.format).c_str(), int(map.GetOutputChannels()),
        m_conversion.IsDirect() ? ", direct" : "");
    m_running = true;
    return RESULT_OK;
}

int CAudioFormatConverter::CoreEnd()
{
    m_running = false;
    for (RObject<CLinearDataReference>& kept : m_buffers)
        kept = RObject<CLinearDataReference>();
    return RESULT_OK;
}

int CAudioFormatConverter::Convert(CAudioSample* input, CAudioSample*& output)
{
    output = nullptr;
    if (!input)
        return 1; // nothing is held back
    if (!m_running) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: called before a successful Begin\n");
        return RESULT_BAD_ORDER_ERROR;
    }
    if (input->GetPackets() < 0 || input->GetFrames() < 0) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: input sample of %d packets of %d frames\n",
            int(input->GetPackets()), int(input->GetFrames()));
        return RESULT_FORMAT_ERROR;
    }
    const int64_t frames = input->GetDuration();
    int64_t outputBytes = 0;
    if (!Checked::Multiply(frames, int64_t(m_conversion.GetOutputFrameBytes()), &outputBytes) ||
        outputBytes > INT32_MAX) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: %lld frames of %d bytes make an output over %d bytes\n",
            static_cast<long long>(frames), int(m_conversion.GetOutputFrameBytes()), INT32_MAX);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    RObject<CLinearDataReference> buffer;
    int result = GetOutputBuffer(int32_t(outputBytes), buffer);
    if (result < 0 || (result = ConvertData(input, frames, buffer)) < 0)
        return result;
    RObject<CAudioSample> made(CAudioSample::Create());
    if (!made) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: no memory for an output sample\n");
        return RESULT_OUT_OF_MEMORY;
    }
    made->SetPackets(int32_t(frames));
    made->SetFrames(1);
    if ((result = made->SetDataReference(buffer)) < 0 || (result = EnqueueSampleMetadata(input)) < 0 ||
        (result = DequeueSampleMetadata(made)) < 0)
        return result;
    output = made.Detach();
    return RESULT_OK;
}

int CAudioFormatConverter::ConvertData(CAudioSample* input, int64_t frames, CLinearDataReference* buffer)
{
    DataLock data(input->GetDataReference());
    if (data.GetResult() < 0) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: the input sample at %lld cannot be read: %s\n",
            static_cast<long long>(input->GetTime()), GetResultName(data.GetResult()));
        return data.GetResult();
    }
    // No overflow: the frames fit 31 bits (their output does) and an input
    // frame is at most MaxChannels x 8 bytes.
    const int64_t needed = frames * m_conversion.GetInputFrameBytes();
    if (data.GetLength() < needed) {
        Log(LogLevel::Error,
            "CAudioFormatConverter::Convert: the input sample at %lld holds %d bytes; its %lld frames need %lld\n",
            static_cast<long long>(input->GetTime()), int(data.GetLength()), static_cast<long long>(frames),
            static_cast<long long>(needed));
        return RESULT_FORMAT_ERROR;
    }
    return m_conversion.Convert(data.GetData(), data.GetLength(), buffer->GetData(), buffer->GetLength(), frames);
}

int CAudioFormatConverter::GetOutputBuffer(int32_t length, RObject<CLinearDataReference>& buffer)
{
    RObject<CLinearDataReference>* spare = nullptr;
    for (RObject<CLinearDataReference>& kept : m_buffers) {
        if (kept && kept->GetReferenceCount() != 1)
            continue; // still in an output sample
        if (kept && kept->GetCapacity() >= length) {
            // The last holder let go with a release: its use of the bytes
            // happened before this reuse.
            std::atomic_thread_fence(std::memory_order_acquire);
            kept->SetLength(length);
            buffer = kept;
            return RESULT_OK;
        }
        if (!spare)
            spare = &kept;
    }
    RObject<CLinearDataReference> made(CLinearDataReference::Create(length));
    if (!made) {
        Log(LogLevel::Error, "CAudioFormatConverter::Convert: no memory for an output of %d bytes\n", int(length));
        return RESULT_OUT_OF_MEMORY;
    }
    if (spare)
        *spare = made;
    buffer = std::move(made);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
