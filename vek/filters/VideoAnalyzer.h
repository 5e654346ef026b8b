#pragma once

// Public wrapper of CVideoAnalyzer: examines video samples and reports its finding as text.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoAnalyzer.h>
#include <vek/core/String.h>

namespace Quorvex::Vek {

class VEK_API VideoAnalyzer : public VideoFilter {
public:
    VideoAnalyzer() = default;
    // Adopts the caller's reference.
    VideoAnalyzer(CVideoAnalyzer* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static VideoAnalyzer Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoAnalyzer FromObject(CVideoAnalyzer* object);

    CVideoAnalyzer* ToAnalyzer() const { return static_cast<CVideoAnalyzer*>(ToObject()); }

    // Writes `input` (null: end of input) for analysis.
    int Analyze(const VideoSample& input) const;
    // The finding so far: 0 with text, 1 (null) while there is none.
    int GetAnalysisResult(String& result) const;
};

} // namespace Quorvex::Vek
