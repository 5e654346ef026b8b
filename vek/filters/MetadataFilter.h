#pragma once

// Public wrapper of CMetadataFilter: a host drives any metadata filter through it.
// Calls forward and return the filter's results unchanged; a null wrapper
// answers -19001 to every call that acts and 0, false or null to getters.
#include <vek/core/BaseObject.h>
#include <vek/filters/CMetadataFilter.h>
#include <vek/media/VideoProperties.h>
#include <vek/samples/MediaSample.h>

namespace Quorvex::Vek {

class VEK_API MetadataFilter : public Object<CMetadataFilter, IProperties> {
public:
    MetadataFilter() = default;
    // Adopts the caller's reference.
    MetadataFilter(CMetadataFilter* object) : BaseObject(object) {}
    using Object::operator=;

    // A filter registered under `id` in the inventory of one of the kinds
    // MetadataConverter, MetadataAnalyzer (searched in that order); null when none has it.
    static MetadataFilter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static MetadataFilter FromObject(CMetadataFilter* object);

    // The descriptions, shared with the filter; null while absent.
    VideoProperties GetInputProperties() const;
    VideoProperties GetOutputProperties() const;
    int SetInputProperties(const VideoProperties& properties) const;
};

} // namespace Quorvex::Vek
