#pragma once

// Binds a filter side to its sample class and its media-description class:
// CFilterContext<CVideoSample, CVideoProperties> is a video input or output.
namespace Quorvex::Vek {

template <typename SampleClass, typename PropertiesClass>
struct CFilterContext {
    using Sample = SampleClass;
    using Properties = PropertiesClass;
};

} // namespace Quorvex::Vek
