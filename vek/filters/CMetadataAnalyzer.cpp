#include <vek/filters/CMetadataAnalyzer.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CMetadataAnalyzer);

namespace Quorvex::Vek {

CMetadataAnalyzer::CMetadataAnalyzer(uint32_t type) : CMetadataFilter(type) {}

CMetadataAnalyzer::~CMetadataAnalyzer() = default;

int CMetadataAnalyzer::Analyze(CMediaSample* input)
{
    return WriteSample(input);
}

int CMetadataAnalyzer::GetAnalysisResult(CString*& result)
{
    return m_result.Get(result);
}

} // namespace Quorvex::Vek
