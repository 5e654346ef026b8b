#pragma once

// The base of every filter that works on the metadata of a video stream:
// any media sample in and out, described by the video medium it belongs
// to. The life cycle of CFilter, nothing added.
#include <vek/filters/CFilter.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

using CMetadataFilterContext = CFilterContext<CMediaSample, CVideoProperties>;

class VEK_API CMetadataFilter : public CFilter<CMetadataFilterContext, CMetadataFilterContext> {
protected:
    explicit CMetadataFilter(uint32_t type);
    ~CMetadataFilter() override;
};

} // namespace Quorvex::Vek
