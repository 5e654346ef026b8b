#include <vek/filters/MetadataAnalyzer.h>

namespace Quorvex::Vek {

MetadataAnalyzer MetadataAnalyzer::Create(uint32_t id)
{
    return MetadataAnalyzer(CComponentInventory<CComponentFactory<CMetadataAnalyzer>>::CreateInstance(id));
}

MetadataAnalyzer MetadataAnalyzer::FromObject(CMetadataAnalyzer* object)
{
    if (object)
        object->Acquire();
    return MetadataAnalyzer(object);
}

int MetadataAnalyzer::Analyze(const MediaSample& input) const
{
    return ToAnalyzer() ? ToAnalyzer()->Analyze(input.ToObject()) : RESULT_NULL_POINTER;
}

int MetadataAnalyzer::GetAnalysisResult(String& result) const
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
