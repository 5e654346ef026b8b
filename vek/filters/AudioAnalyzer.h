#pragma once

// Public wrapper of CAudioAnalyzer: examines audio samples and reports its finding as text.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioAnalyzer.h>
#include <vek/core/String.h>

namespace Quorvex::Vek {

class VEK_API AudioAnalyzer : public AudioFilter {
public:
    AudioAnalyzer() = default;
    // Adopts the caller's reference.
    AudioAnalyzer(CAudioAnalyzer* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static AudioAnalyzer Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioAnalyzer FromObject(CAudioAnalyzer* object);

    CAudioAnalyzer* ToAnalyzer() const { return static_cast<CAudioAnalyzer*>(ToObject()); }

    // Writes `input` (null: end of input) for analysis.
    int Analyze(const AudioSample& input) const;
    // The finding so far: 0 with text, 1 (null) while there is none.
    int GetAnalysisResult(String& result) const;
};

} // namespace Quorvex::Vek
