#include <vek/filters/CVideoFanOutCompressor.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CVideoFanOutCompressor);

namespace Quorvex::Vek {

CVideoFanOutCompressor::CVideoFanOutCompressor(uint32_t type) : CVideoFilter(type) {}

CVideoFanOutCompressor::~CVideoFanOutCompressor() = default;

int CVideoFanOutCompressor::AddVariant(CCompressorVariant* variant)
{
    if (!variant)
        return RESULT_ARGUMENT_NULL;
    if (!m_variants)
        m_variants = RObject<CList<CCompressorVariant>>(CList<CCompressorVariant>::Create());
    return m_variants ? m_variants->Add(variant) : RESULT_OUT_OF_MEMORY;
}

int32_t CVideoFanOutCompressor::GetVariantCount()
{
    return m_variants ? m_variants->GetCount() : 0;
}

CCompressorVariant* CVideoFanOutCompressor::GetVariant(int32_t index)
{
    return index >= 0 && index < GetVariantCount() ? m_variants->Get(index) : nullptr;
}

int CVideoFanOutCompressor::GetVariantSample(int32_t index, CVideoSample*& sample)
{
    sample = nullptr;
    CCompressorVariant* variant = GetVariant(index);
    return variant ? variant->ReadSample(sample) : RESULT_INDEX_OUT_OF_RANGE;
}

int32_t CVideoFanOutCompressor::GetVariantSampleCount(int32_t index)
{
    CCompressorVariant* variant = GetVariant(index);
    return variant ? variant->GetPendingSampleCount() : RESULT_INDEX_OUT_OF_RANGE;
}

int CVideoFanOutCompressor::DeliverToVariant(int32_t index, CVideoSample* sample)
{
    CCompressorVariant* variant = GetVariant(index);
    return variant ? variant->Deliver(sample) : RESULT_INDEX_OUT_OF_RANGE;
}

int CVideoFanOutCompressor::CoreBegin()
{
    for (int32_t i = 0; i < GetVariantCount(); ++i) {
        CCompressorVariant* variant = m_variants->Get(i);
        variant->SetInputProperties(GetInputProperties());
        const int result = variant->Begin();
        if (result < 0) {
            Log(LogLevel::Error, "CVideoFanOutCompressor::CoreBegin: variant %d cannot begin: %s\n", int(i),
                GetResultName(result));
            return result;
        }
    }
    return RESULT_OK;
}

int CVideoFanOutCompressor::CoreEnd()
{
    int failure = RESULT_OK;
    for (int32_t i = 0; i < GetVariantCount(); ++i) {
        const int result = m_variants->Get(i)->End();
        if (result < 0 && failure == RESULT_OK)
            failure = result;
    }
    return failure;
}

} // namespace Quorvex::Vek
