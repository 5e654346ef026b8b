#pragma once

// The kind of every audio analyzer: it looks at the samples written to
// it and reports what it found as text, registered in its own inventory
// under its FilterType code. A concrete analyzer examines each sample in
// CoreWriteSample and records its finding with SetAnalysisResult.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/AnalysisResult.h>
#include <vek/filters/CAudioFilter.h>

namespace Quorvex::Vek {

class VEK_API CAudioAnalyzer : public CAudioFilter {
public:
    enum : uint32_t { Type = Four("aana") };
    using ComponentKind = CAudioAnalyzer;

    // Writes `input` (null: end of input) for analysis.
    virtual int Analyze(CAudioSample* input);
    // The finding so far as a new string in `result`; 1 (null) while
    // there is none.
    virtual int GetAnalysisResult(CString*& result);

protected:
    explicit CAudioAnalyzer(uint32_t type);
    ~CAudioAnalyzer() override;

    void SetAnalysisResult(CString* text) { m_result.Set(text); }

private:
    AnalysisResult m_result;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CAudioAnalyzer);
