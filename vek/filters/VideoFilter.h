#pragma once

// Public wrapper of CVideoFilter: a host drives any video filter through it.
// Calls forward and return the filter's results unchanged; a null wrapper
// answers -19001 to every call that acts and 0, false or null to getters.
//
// Order of calls: SetInputProperties, optionally SetOutputFormat, Begin,
// WriteSample/ReadSample, WriteSample(null) to drain, ReadSample until 1,
// End. Kind wrappers (converters, codecs, analyzers) derive from it.
#include <vek/core/BaseObject.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/media/VideoProperties.h>
#include <vek/samples/VideoSample.h>

namespace Quorvex::Vek {

class VEK_API VideoFilter : public Object<CVideoFilter, IProperties> {
public:
    VideoFilter() = default;
    // Adopts the caller's reference.
    VideoFilter(CVideoFilter* object) : BaseObject(object) {}
    using Object::operator=;

    // A filter registered under `id` in the inventory of one of the kinds
    // VideoConverter, VideoCompressor, VideoDecompressor, VideoAnalyzer, VideoFanOutCompressor (searched in that order); null when none has it.
    static VideoFilter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoFilter FromObject(CVideoFilter* object);

    int Evaluate(const VideoProperties& properties) const;
    // Pulls input number `index` through the pull callback.
    int GetInput(int32_t index, VideoSample& sample) const;
    // Pushes a finished sample through the push callback.
    int ReceiveOutput(const VideoSample& sample) const;
    int SetGetInputCallback(CVideoFilter::GetInputSampleCallback callback, void* context1, void* context2) const;
    int SetReceiveOutputCallback(CVideoFilter::ReceiveOutputSampleCallback callback, void* context1, void* context2) const;
    // The descriptions, shared with the filter; null while absent.
    VideoProperties GetInputProperties() const;
    VideoProperties GetOutputProperties() const;
    int SetInputProperties(const VideoProperties& properties) const;

    // The life cycle (see CFilter). A null sample written starts the drain.
    int SetOutputFormat(uint32_t format) const;
    uint32_t GetOutputFormat() const;
    int Begin() const;
    int WriteSample(const VideoSample& sample) const;
    int ReadSample(VideoSample& sample) const;
    int End() const;
    int Flush() const;
    bool IsDraining() const;
};

} // namespace Quorvex::Vek
