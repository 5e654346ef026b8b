#include <vek/filters/CAudioAnalyzer.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CAudioAnalyzer);

namespace Quorvex::Vek {

CAudioAnalyzer::CAudioAnalyzer(uint32_t type) : CAudioFilter(type) {}

CAudioAnalyzer::~CAudioAnalyzer() = default;

int CAudioAnalyzer::Analyze(CAudioSample* input)
{
    return WriteSample(input);
}

int CAudioAnalyzer::GetAnalysisResult(CString*& result)
{
    return m_result.Get(result);
}

} // namespace Quorvex::Vek
