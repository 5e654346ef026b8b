#pragma once

// Public wrapper of CMetadataAnalyzer: examines metadata samples and reports its finding as text.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/MetadataFilter.h>
#include <vek/filters/CMetadataAnalyzer.h>
#include <vek/core/String.h>

namespace Quorvex::Vek {

class VEK_API MetadataAnalyzer : public MetadataFilter {
public:
    MetadataAnalyzer() = default;
    // Adopts the caller's reference.
    MetadataAnalyzer(CMetadataAnalyzer* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static MetadataAnalyzer Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static MetadataAnalyzer FromObject(CMetadataAnalyzer* object);

    CMetadataAnalyzer* ToAnalyzer() const { return static_cast<CMetadataAnalyzer*>(ToObject()); }

    // Writes `input` (null: end of input) for analysis.
    int Analyze(const MediaSample& input) const;
    // The finding so far: 0 with text, 1 (null) while there is none.
    int GetAnalysisResult(String& result) const;
};

} // namespace Quorvex::Vek
