#include <cstring>

#include <vek/filters/CAudioFilter.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t OutputPoolFree = 8;

struct Silence {
    uint32_t format;
    int32_t bytes;
    uint8_t pattern[4];
};

// Layouts whose silence is not all zero bytes.
constexpr Silence NonZeroSilences[] = {
    {Four("raw "), 1, {0x80}},
    {Four("u16b"), 2, {0x80, 0x00}},
    {Four("u16l"), 2, {0x00, 0x80}},
    {Four("u24b"), 3, {0x80, 0x00, 0x00}},
    {Four("u24l"), 3, {0x00, 0x00, 0x80}},
    {Four("u32b"), 4, {0x80, 0x00, 0x00, 0x00}},
    {Four("u32l"), 4, {0x00, 0x00, 0x00, 0x80}},
    {Four("alaw"), 1, {0xD5}},
    {Four("ulaw"), 1, {0xFF}},
};

const Silence* FindSilence(uint32_t format)
{
    for (const Silence& silence : NonZeroSilences)
        if (silence.format == format)
            return &silence;
    return nullptr;
}

} // namespace

CAudioFilter::CAudioFilter(uint32_t type) : CFilter(type) {}

CAudioFilter::~CAudioFilter() = default;

int CAudioFilter::Evaluate(const CAudioProperties* properties)
{
    if (!properties)
        return 0;
    const uint32_t format = properties->GetFormat();
    return ScoreFormatFamily(format, AudioFormat::GetCanonicalFormat(format), AudioFormat::GetCategoricalFormat(format));
}

int CAudioFilter::Flush()
{
    CFilter::Flush();
    m_outputQueue.Clear();
    if (AudioMetadataQueue* queue = m_metadataQueue.Get())
        queue->Clear();
    return RESULT_OK;
}

int CAudioFilter::CoreReadSample(CAudioSample*& sample)
{
    return m_outputQueue.Dequeue(sample);
}

int CAudioFilter::EnqueueOutputSample(CAudioSample* sample)
{
    return m_outputQueue.Enqueue(sample);
}

int32_t CAudioFilter::GetPendingOutputSamples()
{
    return m_outputQueue.GetCount();
}

int CAudioFilter::EnqueueSampleMetadata(CAudioSample* sample)
{
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    AudioMetadataQueue* queue = m_metadataQueue.GetOrMake([this] { return AudioMetadataQueue::Create(); });
    if (!queue)
        return RESULT_OUT_OF_MEMORY;
    return queue->Enqueue(sample);
}

int CAudioFilter::DequeueSampleMetadata(CAudioSample* output)
{
    if (!output)
        return RESULT_NULL_POINTER;
    AudioMetadataQueue* queue = m_metadataQueue.Get();
    return queue ? queue->Dequeue(output) : 1;
}

int CAudioFilter::CopySampleMetadata(CAudioSample* to, CAudioSample* from)
{
    if (!to || !from)
        return RESULT_ARGUMENT_NULL;
    if (to == from)
        return RESULT_OK;
    int result = to->SetOriginal(from->GetOriginal());
    if (result < 0)
        return result;
    RObject<CMetadata> copy(from->GetMetadata() ? from->GetMetadata()->Clone() : nullptr);
    if (from->GetMetadata() && !copy)
        return RESULT_OUT_OF_MEMORY;
    to->SetMetadata(copy);
    to->SetHint(from->GetHint());
    to->SetTrim(from->GetTrim());
    to->SetTime(from->GetTime());
    if (from->GetPropertyCount() > 0 && (result = to->SetProperties(from)) < 0)
        return result;
    return RESULT_OK;
}

int CAudioFilter::GetOutputSample(int32_t packets, int32_t framesPerPacket, int32_t bytesPerPacket,
                                  CAudioSample*& sample)
{
    sample = nullptr;
    if (!m_samplePool)
        m_samplePool = RObject<CPool<CAudioSample>>(CPool<CAudioSample>::Create(OutputPoolFree));
    if (!m_samplePool)
        return RESULT_OUT_OF_MEMORY;
    return GetAudioSampleFromPool(m_samplePool, packets, framesPerPacket, bytesPerPacket, sample);
}

int CAudioFilter::GetOutputSample(int32_t frames, int32_t bytesPerFrame, CAudioSample*& sample)
{
    return GetOutputSample(frames, 1, bytesPerFrame, sample);
}

int CAudioFilter::GetAudioSampleFromPool(CPool<CAudioSample>* pool, int32_t packets, int32_t framesPerPacket,
                                         int32_t bytesPerPacket, CAudioSample*& sample)
{
    sample = nullptr;
    if (packets < 0 || framesPerPacket < 0 || bytesPerPacket < 0 ||
        int64_t(packets) * bytesPerPacket > INT32_MAX) {
        Log(LogLevel::Error, "CAudioFilter::GetAudioSampleFromPool: %d packets of %d bytes cannot be one sample\n",
            int(packets), int(bytesPerPacket));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    RObject<CLinearDataReference> buffer(CLinearDataReference::Create(packets * bytesPerPacket));
    RObject<CAudioSample> made(pool ? pool->Get() : CAudioSample::Create());
    if (!buffer || !made)
        return RESULT_OUT_OF_MEMORY;
    made->SetPackets(packets);
    made->SetFrames(framesPerPacket);
    const int result = made->SetDataReference(buffer);
    if (result < 0)
        return result;
    sample = made.Detach();
    return RESULT_OK;
}

int CAudioFilter::GetAudioSampleFromPool(CPool<CAudioSample>* pool, int32_t frames, int32_t bytesPerFrame,
                                         CAudioSample*& sample)
{
    return GetAudioSampleFromPool(pool, frames, 1, bytesPerFrame, sample);
}

int CAudioFilter::GetSilentSampleFromPool(CPool<CAudioSample>* pool, const CAudioProperties* properties,
                                          int32_t frames, CAudioSample*& sample)
{
    sample = nullptr;
    if (!properties)
        return RESULT_ARGUMENT_NULL;
    const uint32_t format = properties->GetFormat();
    const Silence* silence = FindSilence(format);
    if (!silence)
        silence = FindSilence(AudioFormat::GetEquivalentFormat(format));
    const int32_t bytesPerFrame = properties->GetBytesPerFrame();
    if (AudioFormat::GetCanonicalFormat(format) != AudioFormat::LPCM || bytesPerFrame < 1 ||
        (silence && bytesPerFrame % silence->bytes != 0)) {
        Log(LogLevel::Error, "CAudioFilter::GetSilentSampleFromPool: no silence for format '%s' with %d bytes a frame\n",
            FourCCText(format).c_str(), int(bytesPerFrame));
        return RESULT_FORMAT_ERROR;
    }
    int result = GetAudioSampleFromPool(pool, frames, bytesPerFrame, sample);
    if (result < 0 || !silence)
        return result; // the new buffer is zeroed: silence of signed and float layouts
    auto* reference = static_cast<CLinearDataReference*>(sample->GetDataReference());
    unsigned char* data = reference->GetData();
    for (int32_t offset = 0; offset < reference->GetLength(); offset += silence->bytes)
        std::memcpy(data + offset, silence->pattern, size_t(silence->bytes));
    return RESULT_OK;
}

} // namespace Quorvex::Vek
