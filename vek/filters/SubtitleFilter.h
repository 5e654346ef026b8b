#pragma once

// Public wrapper of CSubtitleFilter: a host drives any subtitle filter through it.
// Calls forward and return the filter's results unchanged; a null wrapper
// answers -19001 to every call that acts and 0, false or null to getters.
#include <vek/core/BaseObject.h>
#include <vek/filters/CSubtitleFilter.h>
#include <vek/media/SubtitleProperties.h>
#include <vek/samples/SubtitleSample.h>

namespace Quorvex::Vek {

class VEK_API SubtitleFilter : public Object<CSubtitleFilter, IProperties> {
public:
    SubtitleFilter() = default;
    // Adopts the caller's reference.
    SubtitleFilter(CSubtitleFilter* object) : BaseObject(object) {}
    using Object::operator=;

    // A filter registered under `id` in the inventory of one of the kinds
    // SubtitleConverter (searched in that order); null when none has it.
    static SubtitleFilter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static SubtitleFilter FromObject(CSubtitleFilter* object);

    // The descriptions, shared with the filter; null while absent.
    SubtitleProperties GetInputProperties() const;
    SubtitleProperties GetOutputProperties() const;
    int SetInputProperties(const SubtitleProperties& properties) const;
};

} // namespace Quorvex::Vek
