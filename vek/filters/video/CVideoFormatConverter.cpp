#include <vek/filters/video/CVideoFormatConverter.h>

#include <array>

#include <vek/components/CInstanceFactory.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/filters/video/PictureBuffer.h>
#include <vek/filters/video/PictureConversion.h>
#include <vek/filters/video/PictureView.h>

namespace Quorvex::Vek {

namespace {

constexpr size_t LayoutCount = size_t(PictureLayout::Count);
using ConfigurationTable = std::array<VideoConfigurationMap, LayoutCount * LayoutCount + 1>;

// Every layout to every layout, each input's own layout first (the output
// Begin picks when none is set), then the others in layout order. The
// last entry stays zero and ends the table.
ConfigurationTable MakeConfigurationTable()
{
    ConfigurationTable table{};
    size_t next = 0;
    for (size_t from = 0; from < LayoutCount; ++from) {
        const uint32_t input = GetLayoutFormat(PictureLayout(from));
        table[next++] = {VideoConfigurationFormat(input), VideoConfigurationFormat(input)};
        for (size_t to = 0; to < LayoutCount; ++to) {
            if (to != from)
                table[next++] = {VideoConfigurationFormat(input),
                                 VideoConfigurationFormat(GetLayoutFormat(PictureLayout(to)))};
        }
    }
    return table;
}

} // namespace

CVideoFormatConverter::CVideoFormatConverter() : CVideoConverter(Type) {}

CVideoFormatConverter::~CVideoFormatConverter() = default;

int CVideoFormatConverter::Register()
{
    using Inventory = CComponentInventory<CComponentFactory<CVideoConverter>>;
    if (Inventory::GetFactoryByID(Type))
        return RESULT_OK;
    RObject<CInstanceFactory<CVideoFormatConverter>> factory(CInstanceFactory<CVideoFormatConverter>::Create(Type));
    if (!factory) {
        Log(LogLevel::Error, "CVideoFormatConverter::Register: no memory for the factory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return Inventory::AddFactory(factory);
}

int CVideoFormatConverter::SetInputStride(int32_t stride)
{
    if (stride < 0) {
        Log(LogLevel::Error, "CVideoFormatConverter::SetInputStride: stride %d is negative\n", stride);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_inputStride = stride;
    return RESULT_OK;
}

const CVideoFilter::ConfigurationMap* CVideoFormatConverter::GetConfigurationTable()
{
    static const ConfigurationTable table = MakeConfigurationTable();
    return table.data();
}

CVideoFilter::FormatList* CVideoFormatConverter::GetOutputFormats()
{
    const CVideoProperties* input = GetInputProperties();
    const PictureLayout layout = input ? GetPictureLayout(input->GetFormat()) : PictureLayout::None;
    if (layout == PictureLayout::None || GetLayoutFormat(layout) == input->GetFormat())
        return CVideoConverter::GetOutputFormats();
    // An alias: what its layout's own code would get. Only formats narrow
    // this table, so the entries are read directly.
    RObject<FormatList> formats(FormatList::Create());
    if (!formats)
        return nullptr;
    for (const ConfigurationMap* entry = GetConfigurationTable(); !IsVideoConfigurationEnd(*entry); ++entry) {
        if (entry->input.format == GetLayoutFormat(layout) && formats->Add(entry->output.format) < 0)
            return nullptr;
    }
    return formats.Detach();
}

int CVideoFormatConverter::Evaluate(const CVideoProperties* properties)
{
    const int score = CVideoConverter::Evaluate(properties);
    if (score > 0 || !properties)
        return score;
    const PictureLayout layout = GetPictureLayout(properties->GetFormat());
    if (layout == PictureLayout::None)
        return 0;
    RObject<CVideoProperties> canonical(static_cast<CVideoProperties*>(properties->Clone()));
    if (!canonical)
        return 0;
    canonical->SetFormat(GetLayoutFormat(layout));
    return CVideoConverter::Evaluate(canonical);
}

bool CVideoFormatConverter::ValidateOutputFormat(unsigned int format)
{
    // Read from the table rather than from a new format list, so that a
    // lack of memory is not mistaken for a format the converter refuses.
    const CVideoProperties* input = GetInputProperties();
    const PictureLayout outputLayout = GetPictureLayout(format);
    if (!input || outputLayout == PictureLayout::None)
        return false;
    const PictureLayout inputLayout = GetPictureLayout(input->GetFormat());
    for (const ConfigurationMap* entry = GetConfigurationTable(); !IsVideoConfigurationEnd(*entry); ++entry) {
        const bool inputMatches = MatchesVideoConfiguration(entry->input, input) ||
                                  (inputLayout != PictureLayout::None &&
                                   entry->input.format == GetLayoutFormat(inputLayout));
        if (inputMatches && entry->output.format == GetLayoutFormat(outputLayout))
            return true;
    }
    return false;
}

int CVideoFormatConverter::CreateOutputProperties(unsigned int format, CVideoProperties*& properties)
{
    int result = CVideoConverter::CreateOutputProperties(format, properties);
    const PictureLayout layout = GetPictureLayout(format);
    if (result < 0 || layout == PictureLayout::None)
        return result;
    const PictureLayoutTraits& traits = GetLayoutTraits(layout);
    return properties->SetSubsampling(1 << traits.chromaShiftX, 1 << traits.chromaShiftY);
}

int CVideoFormatConverter::CoreBegin()
{
    const CVideoProperties* input = GetInputProperties();
    const int32_t width = input->GetWidth();
    const int32_t height = input->GetHeight();
    if (width <= 0 || height <= 0 || width > kMaxPictureDimension || height > kMaxPictureDimension) {
        Log(LogLevel::Error, "CVideoFormatConverter::CoreBegin: picture size %dx%d outside 1..%d\n", width, height,
            kMaxPictureDimension);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    const PictureLayout inputLayout = GetPictureLayout(input->GetFormat());
    const PictureLayout outputLayout = GetPictureLayout(GetOutputFormat());
    if (inputLayout == PictureLayout::None || outputLayout == PictureLayout::None) {
        Log(LogLevel::Error, "CVideoFormatConverter::CoreBegin: cannot convert '%s' to '%s'\n",
            FourCCText(input->GetFormat()).c_str(), FourCCText(GetOutputFormat()).c_str());
        return RESULT_FORMAT_ERROR;
    }
    // At most 8 x 65536 bytes.
    const auto scratchBytes = int32_t(GetConversionScratchBytes(width));
    m_scratch = RObject<CByteArray>(CByteArray::Create(nullptr, scratchBytes));
    m_pool = RObject<CPool<CVideoSample>>(CPool<CVideoSample>::Create(KeptPictures + 2));
    if (!m_scratch || !m_pool) {
        ReleaseBuffers();
        Log(LogLevel::Error, "CVideoFormatConverter::CoreBegin: no memory for %d scratch bytes\n", scratchBytes);
        return RESULT_OUT_OF_MEMORY;
    }
    m_inputLayout = inputLayout;
    m_outputLayout = outputLayout;
    m_width = width;
    m_height = height;
    return RESULT_OK;
}

int CVideoFormatConverter::CoreEnd()
{
    ReleaseBuffers();
    return RESULT_OK;
}

void CVideoFormatConverter::ReleaseBuffers()
{
    m_inputLayout = PictureLayout::None;
    m_outputLayout = PictureLayout::None;
    m_scratch = RObject<CByteArray>();
    m_pool = RObject<CPool<CVideoSample>>();
    for (RObject<CPlanarPixelDataReference>& picture : m_pictures)
        picture = RObject<CPlanarPixelDataReference>();
}

int CVideoFormatConverter::ViewInput(CMediaSampleDataReference* reference, PictureView& view)
{
    if (reference->IsType(CPixelDataReference::Type))
        return ViewPixelReference(static_cast<CPixelDataReference*>(reference), m_inputLayout, m_width, m_height,
                                  view);
    unsigned char* data = nullptr;
    int32_t length = 0;
    int result = reference->Lock(data, length);
    if (result < 0)
        return result;
    result = ViewContiguousPicture(data, length, m_inputLayout, m_width, m_height, m_inputStride, view);
    if (result < 0)
        reference->Unlock();
    return result;
}

int CVideoFormatConverter::TakeOutputPicture(CPlanarPixelDataReference*& picture)
{
    picture = nullptr;
    RObject<CPlanarPixelDataReference>* empty = nullptr;
    for (RObject<CPlanarPixelDataReference>& kept : m_pictures) {
        // Only this converter holds it: the host has let the picture go.
        if (kept && kept->GetReferenceCount() == 1 && PictureBufferFits(kept, m_outputLayout, m_width, m_height)) {
            kept->Acquire();
            picture = kept;
            return RESULT_OK;
        }
        if (!kept && !empty)
            empty = &kept;
    }
    const int result = MakePictureBuffer(m_outputLayout, m_width, m_height, picture);
    if (result >= 0 && empty)
        *empty = RObject<CPlanarPixelDataReference>::FromObject(picture);
    return result;
}

int CVideoFormatConverter::Convert(CVideoSample* input, CVideoSample*& output)
{
    output = nullptr;
    if (!input)
        return 1;
    if (m_outputLayout == PictureLayout::None) {
        Log(LogLevel::Error, "CVideoFormatConverter::Convert: not begun\n");
        return RESULT_BAD_ORDER_ERROR;
    }
    CMediaSampleDataReference* reference = input->GetDataReference();
    if (!reference) {
        Log(LogLevel::Error, "CVideoFormatConverter::Convert: the input picture has no data reference\n");
        return RESULT_ARGUMENT_NULL;
    }
    PictureView in;
    int result = ViewInput(reference, in);
    if (result < 0)
        return result;
    CPlanarPixelDataReference* made = nullptr;
    result = TakeOutputPicture(made);
    RObject<CPlanarPixelDataReference> picture(made);
    PictureView out;
    if (result >= 0 && (result = ViewPixelReference(picture, m_outputLayout, m_width, m_height, out)) >= 0) {
        result = ConvertPicture(in, out, m_scratch->GetData(), m_scratch->GetLength());
        picture->Unlock();
    }
    reference->Unlock();
    if (result < 0)
        return result;
    RObject<CVideoSample> sample(m_pool->Get());
    if (!sample) {
        Log(LogLevel::Error, "CVideoFormatConverter::Convert: no memory for an output picture\n");
        return RESULT_OUT_OF_MEMORY;
    }
    sample->SetDataReference(picture);
    if ((result = CopySampleMetadata(sample, input)) < 0)
        return result;
    output = sample.Detach();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
