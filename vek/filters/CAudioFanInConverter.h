#pragma once

// The kind of every fan-in converter: several audio tracks in, one out
// (merging channels of several tracks into one, mixing, inserting),
// registered in its own inventory under its FilterType code. The host
// describes each input track with AddTrack before Begin; the filter's own
// input description is the first track's.
#include <vek/components/CComponentInventory.h>
#include <vek/core/CList.h>
#include <vek/filters/CAudioFilter.h>

namespace Quorvex::Vek {

class VEK_API CAudioFanInConverter : public CAudioFilter {
public:
    enum : uint32_t { Type = Four("afin") };
    using ComponentKind = CAudioFanInConverter;

    // Adds an input track described by `properties` (shared); the first
    // also becomes the filter's input description. -19004, -19002.
    virtual int AddTrack(const CAudioProperties* properties);
    int32_t GetTrackCount();
    // Borrowed; null outside 0..count-1.
    const CAudioProperties* GetTrackProperties(int32_t index);

protected:
    explicit CAudioFanInConverter(uint32_t type);
    ~CAudioFanInConverter() override;

private:
    RObject<CList<const CAudioProperties>> m_tracks;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CAudioFanInConverter);
