#pragma once

// The kind of every video analyzer: it looks at the samples written to
// it and reports what it found as text, registered in its own inventory
// under its FilterType code. A concrete analyzer examines each sample in
// CoreWriteSample and records its finding with SetAnalysisResult.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/AnalysisResult.h>
#include <vek/filters/CVideoFilter.h>

namespace Quorvex::Vek {

class VEK_API CVideoAnalyzer : public CVideoFilter {
public:
    enum : uint32_t { Type = Four("vana") };
    using ComponentKind = CVideoAnalyzer;

    // Writes `input` (null: end of input) for analysis.
    virtual int Analyze(CVideoSample* input);
    // The finding so far as a new string in `result`; 1 (null) while
    // there is none.
    virtual int GetAnalysisResult(CString*& result);

protected:
    explicit CVideoAnalyzer(uint32_t type);
    ~CVideoAnalyzer() override;

    void SetAnalysisResult(CString* text) { m_result.Set(text); }

private:
    AnalysisResult m_result;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CVideoAnalyzer);
