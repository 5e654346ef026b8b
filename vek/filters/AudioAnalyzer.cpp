#include <vek/filters/AudioAnalyzer.h>

namespace Quorvex::Vek {

AudioAnalyzer AudioAnalyzer::Create(uint32_t id)
{
    return AudioAnalyzer(CComponentInventory<CComponentFactory<CAudioAnalyzer>>::CreateInstance(id));
}

AudioAnalyzer AudioAnalyzer::FromObject(CAudioAnalyzer* object)
{
    if (object)
        object->Acquire();
    return AudioAnalyzer(object);
}

int AudioAnalyzer::Analyze(const AudioSample& input) const
{
    return ToAnalyzer() ? ToAnalyzer()->Analyze(input.ToAudio()) : RESULT_NULL_POINTER;
}

int AudioAnalyzer::GetAnalysisResult(String& result) const
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
