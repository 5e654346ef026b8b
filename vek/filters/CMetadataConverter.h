#pragma once

// The kind of every metadata converter (caption extraction, timecode
// rewriting ...), registered in its own inventory under its FilterType
// code. Convert reports the output state in small values of its own,
// unlike the high bit the video converters use: the two families are
// driven by different hosts and keep their own conventions.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CMetadataFilter.h>

namespace Quorvex::Vek {

class VEK_API CMetadataConverter : public CMetadataFilter {
public:
    enum : uint32_t { Type = Four("mcnv") };
    using ComponentKind = CMetadataConverter;

    // Output states of Convert.
    static constexpr int32_t NoOutputSampleReady = 1;
    static constexpr int32_t OutputSampleReady = 2;
    static constexpr int32_t MoreOutputSamplesReady = 4;

    // Writes `input` (null: end of input) and reads one sample: `state` is
    // OutputSampleReady with one in `output`, NoOutputSampleReady without.
    // The result is 0 or the failure.
    virtual int Convert(CMediaSample* input, CMediaSample*& output, int32_t& state);

protected:
    explicit CMetadataConverter(uint32_t type);
    ~CMetadataConverter() override;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CMetadataConverter);
