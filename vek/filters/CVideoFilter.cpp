#include <vek/core/FourCCText.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/filters/VideoFrameLayout.h>
#include <vek/media/VideoFormat.h>
#include <vek/samples/CPlanarPixelDataReference.h>

namespace Quorvex::Vek {

namespace {

// Pictures kept for reuse by each filter's own pool.
constexpr int32_t OutputPoolFree = 8;

struct PlaneSplit {
    uint32_t format;
    int32_t chromaStrideShift;
    int32_t chromaHeightShift;
    bool vFirst;
};

constexpr PlaneSplit PlaneSplits[] = {
    {Four("I420"), 1, 1, false}, {Four("YV12"), 1, 1, true},  {Four("I422"), 1, 0, false},
    {Four("YV16"), 1, 0, true},  {Four("I444"), 0, 0, false}, {Four("YV24"), 0, 0, true},
    {Four("I411"), 2, 0, false}, {Four("Y41B"), 2, 0, true},  {Four("I410"), 2, 2, false},
    {Four("YVU9"), 2, 2, true},  {Four("NV12"), 0, 1, false}, {Four("NV21"), 0, 1, false},
};

int FrameLayoutOf(const CVideoProperties* properties, VideoFrameLayout& layout)
{
    const int result = GetVideoFrameLayout(properties->GetFormat(), properties->GetWidth(), properties->GetHeight(),
                                           layout);
    if (result < 0)
        Log(LogLevel::Error, "CVideoFilter: no frame layout for format '%s' at %dx%d: %s\n",
            FourCCText(properties->GetFormat()).c_str(), int(properties->GetWidth()), int(properties->GetHeight()),
            GetResultName(result));
    return result;
}

} // namespace

CVideoFilter::CVideoFilter(uint32_t type) : CFilter(type) {}

CVideoFilter::~CVideoFilter() = default;

const CVideoFilter::ConfigurationMap* CVideoFilter::GetConfigurationTable()
{
    return nullptr;
}

CVideoFilter::FormatList* CVideoFilter::FormatsFromTable(bool inputs)
{
    const ConfigurationMap* table = GetConfigurationTable();
    RObject<FormatList> formats(FormatList::Create());
    if (!formats)
        return nullptr;
    for (const ConfigurationMap* entry = table; !IsVideoConfigurationEnd(*entry); ++entry) {
        const bool matches = inputs ? MatchesVideoConfiguration(entry->output, GetOutputProperties())
                                    : MatchesVideoConfiguration(entry->input, GetInputProperties());
        const uint32_t format = inputs ? entry->input.format : entry->output.format;
        if (matches && format != 0 && !formats->Contains(format) && formats->Add(format) < 0)
            return nullptr;
    }
    return formats.Detach();
}

CVideoFilter::FormatList* CVideoFilter::GetInputFormats()
{
    return GetConfigurationTable() ? FormatsFromTable(true) : CFilter::GetInputFormats();
}

CVideoFilter::FormatList* CVideoFilter::GetOutputFormats()
{
    return GetConfigurationTable() ? FormatsFromTable(false) : CFilter::GetOutputFormats();
}

int CVideoFilter::Evaluate(const CVideoProperties* properties)
{
    if (!properties)
        return 0;
    if (const ConfigurationMap* table = GetConfigurationTable()) {
        for (const ConfigurationMap* entry = table; !IsVideoConfigurationEnd(*entry); ++entry)
            if (MatchesVideoConfiguration(entry->input, properties))
                return AcceptScore;
        return 0;
    }
    const uint32_t format = properties->GetFormat();
    return ScoreFormatFamily(format, VideoFormat::GetCanonicalFormat(format), VideoFormat::GetCategoricalFormat(format));
}

int CVideoFilter::Flush()
{
    CFilter::Flush();
    m_outputQueue.Clear();
    if (VideoMetadataQueue* queue = m_metadataQueue.Get())
        queue->Clear();
    return RESULT_OK;
}

int CVideoFilter::CoreReadSample(CVideoSample*& sample)
{
    return m_outputQueue.Dequeue(sample);
}

int CVideoFilter::EnqueueOutputSample(CVideoSample* sample)
{
    return m_outputQueue.Enqueue(sample);
}

int32_t CVideoFilter::GetPendingOutputSamples()
{
    return m_outputQueue.GetCount();
}

int CVideoFilter::GetOutputSample(int32_t index, CVideoSample*& sample)
{
    sample = nullptr;
    return index == 0 ? GetOutputSample(sample) : RESULT_INDEX_OUT_OF_RANGE;
}

int CVideoFilter::GetOutputSample(CVideoSample*& sample)
{
    sample = nullptr;
    if (!m_samplePool)
        m_samplePool = RObject<CPool<CVideoSample>>(CPool<CVideoSample>::Create(OutputPoolFree));
    if (!m_samplePool)
        return RESULT_OUT_OF_MEMORY;
    return GetVideoSampleFromPool(m_samplePool, GetOutputProperties(), sample);
}

int CVideoFilter::SplitAndEnqueueSampleMetadata(CVideoSample* sample, int32_t* key)
{
    int32_t made = 0;
    if (!sample)
        return RESULT_ARGUMENT_NULL;
    VideoMetadataQueue* queue =
        m_metadataQueue.GetOrMake([this] { return VideoMetadataQueue::Create(m_metadataRingCapacity); });
    if (!queue)
        return RESULT_OUT_OF_MEMORY;
    const int result = queue->Enqueue(sample, made);
    if (key)
        *key = made;
    return result;
}

int CVideoFilter::DequeueAndMergeSampleMetadata(CVideoSample* output, int32_t key)
{
    if (!output)
        return RESULT_ARGUMENT_NULL;
    VideoMetadataQueue* queue = m_metadataQueue.Get();
    if (!queue) {
        Log(LogLevel::Error, "CVideoFilter::DequeueAndMergeSampleMetadata: no record for key %d\n", int(key));
        return RESULT_UNEXPECTED;
    }
    return queue->DequeueAndMerge(output, key);
}

int CVideoFilter::CopySampleMetadata(CVideoSample* to, CVideoSample* from)
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
    to->SetFrameNumber(from->GetFrameNumber());
    to->SetPictureType(from->GetPictureType());
    to->SetPictureStructure(from->GetPictureStructure());
    to->SetHint(from->GetHint());
    to->SetTrim(from->GetTrim());
    to->SetTime(from->GetTime());
    to->SetDuration(int32_t(from->GetDuration()));
    to->SetCompositionOffset(from->GetCompositionOffset());
    if (from->GetPropertyCount() > 0 && (result = to->SetProperties(from)) < 0)
        return result;
    return RESULT_OK;
}

int CVideoFilter::CreateDataReference(const CVideoProperties* properties, int32_t size,
                                      CLinearDataReference*& reference)
{
    reference = nullptr;
    if (!properties)
        return RESULT_ARGUMENT_NULL;
    if (size < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    reference = CLinearDataReference::Create(size);
    return reference ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

int CVideoFilter::CreateIntermediateBuffer(const CVideoProperties* properties, CByteArray*& buffer)
{
    buffer = nullptr;
    if (!properties)
        return RESULT_ARGUMENT_NULL;
    VideoFrameLayout layout;
    const int result = FrameLayoutOf(properties, layout);
    if (result < 0)
        return result;
    RObject<CByteArray> made(new (fallible) CByteArray(int32_t(layout.totalBytes)));
    if (!made || !made->GetData())
        return RESULT_OUT_OF_MEMORY;
    buffer = made.Detach();
    return RESULT_OK;
}

int CVideoFilter::CreateDataReference(const CVideoProperties* properties, CPixelDataReference*& reference)
{
    reference = nullptr;
    CByteArray* made = nullptr;
    int result = CreateIntermediateBuffer(properties, made);
    if (result < 0)
        return result;
    RObject<CByteArray> buffer(made);
    VideoFrameLayout layout;
    GetVideoFrameLayout(properties->GetFormat(), properties->GetWidth(), properties->GetHeight(), layout);
    CPlanarPixelDataReference::Plane planes[3] = {};
    for (int32_t i = 0; i < layout.planeCount; ++i)
        planes[i] = {int32_t(layout.offset[i]), layout.rowBytes[i], layout.rowBytes[i], layout.rows[i]};
    CPlanarPixelDataReference* pixels = nullptr;
    result = CPlanarPixelDataReference::Create(buffer, properties->GetWidth(), properties->GetHeight(),
                                               properties->GetFormat(), planes, layout.planeCount, pixels);
    reference = pixels;
    return result;
}

int CVideoFilter::GetVideoSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties, int32_t size,
                                         CVideoSample*& sample)
{
    sample = nullptr;
    CLinearDataReference* made = nullptr;
    int result = CreateDataReference(properties, size, made);
    if (result < 0)
        return result;
    RObject<CLinearDataReference> reference(made);
    RObject<CVideoSample> picture(pool ? pool->Get() : CVideoSample::Create());
    if (!picture)
        return RESULT_OUT_OF_MEMORY;
    if ((result = picture->SetDataReference(reference)) < 0)
        return result;
    sample = picture.Detach();
    return RESULT_OK;
}

int CVideoFilter::GetVideoSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties,
                                         CVideoSample*& sample)
{
    sample = nullptr;
    if (!properties)
        return RESULT_ARGUMENT_NULL;
    VideoFrameLayout layout;
    const int result = FrameLayoutOf(properties, layout);
    return result < 0 ? result : GetVideoSampleFromPool(pool, properties, int32_t(layout.totalBytes), sample);
}

int CVideoFilter::GetBlackSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties,
                                         CVideoSample*& sample)
{
    int result = GetVideoSampleFromPool(pool, properties, sample);
    if (result < 0)
        return result;
    VideoFrameLayout layout;
    GetVideoFrameLayout(properties->GetFormat(), properties->GetWidth(), properties->GetHeight(), layout);
    auto* reference = static_cast<CLinearDataReference*>(sample->GetDataReference());
    FillBlackVideoFrame(layout, reference->GetData());
    return RESULT_OK;
}

int CVideoFilter::GetSamplePlanes(unsigned char* data, uint32_t format, int32_t rowBytes, int32_t height,
                                  unsigned char* planes[3], int32_t strides[3])
{
    const PlaneSplit* split = nullptr;
    for (const PlaneSplit& candidate : PlaneSplits)
        if (candidate.format == format)
            split = &candidate;
    if (!split) {
        Log(LogLevel::Error, "CVideoFilter::GetSamplePlanes : Unknown format %s.\n", FourCCText(format).c_str());
        return RESULT_FORMAT_ERROR;
    }
    if (!data || !planes || !strides)
        return RESULT_ARGUMENT_NULL;
    const int32_t chromaStride = rowBytes >> split->chromaStrideShift;
    const int32_t chromaHeight = height >> split->chromaHeightShift;
    planes[0] = data;
    planes[1] = planes[0] + int64_t(height) * rowBytes;
    planes[2] = planes[1] + int64_t(chromaStride) * chromaHeight;
    if (split->vFirst)
        std::swap(planes[1], planes[2]);
    strides[0] = rowBytes;
    strides[1] = chromaStride;
    strides[2] = chromaStride;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
