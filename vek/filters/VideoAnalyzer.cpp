#include <vek/filters/VideoAnalyzer.h>

namespace Quorvex::Vek {

VideoAnalyzer VideoAnalyzer::Create(uint32_t id)
{
    return VideoAnalyzer(CComponentInventory<CComponentFactory<CVideoAnalyzer>>::CreateInstance(id));
}

VideoAnalyzer VideoAnalyzer::FromObject(CVideoAnalyzer* object)
{
    if (object)
        object->Acquire();
    return VideoAnalyzer(object);
}

int VideoAnalyzer::Analyze(const VideoSample& input) const
{
    return ToAnalyzer() ? ToAnalyzer()->Analyze(input.ToVideo()) : RESULT_NULL_POINTER;
}

int VideoAnalyzer::GetAnalysisResult(String& result) const
{
    result = String();
    if (!ToAnalyzer())
        return RESULT_NULL_POINTER;
    CString* text = nullptr;
    const int answer = ToAnalyzer()->GetAnalysisResult(text);
    result = String(text);
    return answer;
}

} // namespace Quorvex::Vek
