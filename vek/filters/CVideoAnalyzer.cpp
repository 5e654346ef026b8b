#include <vek/filters/CVideoAnalyzer.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CVideoAnalyzer);

namespace Quorvex::Vek {

CVideoAnalyzer::CVideoAnalyzer(uint32_t type) : CVideoFilter(type) {}

CVideoAnalyzer::~CVideoAnalyzer() = default;

int CVideoAnalyzer::Analyze(CVideoSample* input)
{
    return WriteSample(input);
}

int CVideoAnalyzer::GetAnalysisResult(CString*& result)
{
    return m_result.Get(result);
}

} // namespace Quorvex::Vek
