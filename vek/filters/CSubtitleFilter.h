#pragma once

// The base of every filter with subtitle input and output: the life cycle
// of CFilter on subtitle samples and descriptions, nothing added.
#include <vek/filters/CFilter.h>
#include <vek/media/CSubtitleProperties.h>
#include <vek/samples/CSubtitleSample.h>

namespace Quorvex::Vek {

using CSubtitleFilterContext = CFilterContext<CSubtitleSample, CSubtitleProperties>;

class VEK_API CSubtitleFilter : public CFilter<CSubtitleFilterContext, CSubtitleFilterContext> {
protected:
    explicit CSubtitleFilter(uint32_t type);
    ~CSubtitleFilter() override;
};

} // namespace Quorvex::Vek
