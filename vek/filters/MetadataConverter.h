#pragma once

// Public wrapper of CMetadataConverter: rewrites the metadata samples of a video stream.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/MetadataFilter.h>
#include <vek/filters/CMetadataConverter.h>

namespace Quorvex::Vek {

class VEK_API MetadataConverter : public MetadataFilter {
public:
    MetadataConverter() = default;
    // Adopts the caller's reference.
    MetadataConverter(CMetadataConverter* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static MetadataConverter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static MetadataConverter FromObject(CMetadataConverter* object);

    CMetadataConverter* ToConverter() const { return static_cast<CMetadataConverter*>(ToObject()); }

    // Output states of Convert.
    static constexpr int32_t NoOutputSampleReady = CMetadataConverter::NoOutputSampleReady;
    static constexpr int32_t OutputSampleReady = CMetadataConverter::OutputSampleReady;
    static constexpr int32_t MoreOutputSamplesReady = CMetadataConverter::MoreOutputSamplesReady;
    // Writes `input` (null: end of input) and reads one sample; `state`
    // says whether one came.
    int Convert(const MediaSample& input, MediaSample& output, int32_t& state) const;
};

} // namespace Quorvex::Vek
