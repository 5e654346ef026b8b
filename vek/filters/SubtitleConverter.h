#pragma once

// Public wrapper of CSubtitleConverter: converts or renders subtitle samples.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/SubtitleFilter.h>
#include <vek/filters/CSubtitleConverter.h>

namespace Quorvex::Vek {

class VEK_API SubtitleConverter : public SubtitleFilter {
public:
    SubtitleConverter() = default;
    // Adopts the caller's reference.
    SubtitleConverter(CSubtitleConverter* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static SubtitleConverter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static SubtitleConverter FromObject(CSubtitleConverter* object);

    CSubtitleConverter* ToConverter() const { return static_cast<CSubtitleConverter*>(ToObject()); }

    // Writes `input` (null: end of input) and reads one converted sample.
    int Convert(const SubtitleSample& input, SubtitleSample& output) const;
};

} // namespace Quorvex::Vek
