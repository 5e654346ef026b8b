#pragma once

// The kind of the fan-in converters that merge the channels of their input
// tracks into one output (the tracks' channels side by side, in track
// order, routed by the "merge.route_array" key when the host sets one).
// Registered with the fan-in converters.
#include <vek/filters/CAudioFanInConverter.h>

namespace Quorvex::Vek {

class VEK_API CMergeFanInConverter : public CAudioFanInConverter {
public:
    enum : uint32_t { Type = Four("mfic") };

    // The sum of the tracks' channel counts: the width of the merged output.
    int32_t GetMergedChannelCount();

protected:
    explicit CMergeFanInConverter(uint32_t type);
    ~CMergeFanInConverter() override;
};

} // namespace Quorvex::Vek
