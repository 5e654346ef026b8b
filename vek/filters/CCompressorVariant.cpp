#include <vek/filters/CCompressorVariant.h>

namespace Quorvex::Vek {

CCompressorVariant* CCompressorVariant::Create(CVideoProperties* output)
{
    if (!output)
        return nullptr;
    RObject<CCompressorVariant> variant(new (fallible) CCompressorVariant());
    if (!variant)
        return nullptr;
    variant->m_output = RObject<CVideoProperties>::FromObject(output);
    return variant.Detach();
}

CCompressorVariant::CCompressorVariant() : CVideoFilter(Type) {}

CCompressorVariant::~CCompressorVariant() = default;

CCompressorVariant::FormatList* CCompressorVariant::GetOutputFormats()
{
    RObject<FormatList> formats(FormatList::Create());
    if (!formats || formats->Add(m_output->GetFormat()) < 0)
        return nullptr;
    return formats.Detach();
}

int CCompressorVariant::CreateOutputProperties(unsigned int format, CVideoProperties*& properties)
{
    properties = static_cast<CVideoProperties*>(m_output->Clone());
    if (!properties)
        return RESULT_OUT_OF_MEMORY;
    properties->SetFormat(format);
    return RESULT_OK;
}

int CCompressorVariant::Deliver(CVideoSample* sample)
{
    return EnqueueOutputSample(sample);
}

int32_t CCompressorVariant::GetPendingSampleCount()
{
    return GetPendingOutputSamples();
}

} // namespace Quorvex::Vek
