#pragma once

// Public wrapper of CAudioFilter: a host drives any audio filter through it.
// Calls forward and return the filter's results unchanged; a null wrapper
// answers -19001 to every call that acts and 0, false or null to getters.
//
// Order of calls: SetInputProperties, optionally SetOutputFormat, Begin,
// WriteSample/ReadSample, WriteSample(null) to drain, ReadSample until 1,
// End. Kind wrappers (converters, codecs, analyzers) derive from it.
#include <vek/core/BaseObject.h>
#include <vek/filters/CAudioFilter.h>
#include <vek/media/AudioProperties.h>
#include <vek/samples/AudioSample.h>

namespace Quorvex::Vek {

class VEK_API AudioFilter : public Object<CAudioFilter, IProperties> {
public:
    AudioFilter() = default;
    // Adopts the caller's reference.
    AudioFilter(CAudioFilter* object) : BaseObject(object) {}
    using Object::operator=;

    // A filter registered under `id` in the inventory of one of the kinds
    // AudioConverter, AudioCompressor, AudioDecompressor, AudioAnalyzer, AudioFanInConverter (searched in that order); null when none has it.
    static AudioFilter Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static AudioFilter FromObject(CAudioFilter* object);

    // Pulls input number `index` through the pull callback.
    int GetInput(int32_t index, AudioSample& sample) const;
    // Pushes a finished sample through the push callback.
    int ReceiveOutput(const AudioSample& sample) const;
    int SetGetInputCallback(CAudioFilter::GetInputSampleCallback callback, void* context1, void* context2) const;
    int SetReceiveOutputCallback(CAudioFilter::ReceiveOutputSampleCallback callback, void* context1, void* context2) const;
    // The descriptions, shared with the filter; null while absent.
    AudioProperties GetInputProperties() const;
    AudioProperties GetOutputProperties() const;
    int SetInputProperties(const AudioProperties& properties) const;

    // The life cycle (see CFilter). A null sample written starts the drain.
    int SetOutputFormat(uint32_t format) const;
    uint32_t GetOutputFormat() const;
    int Begin() const;
    int WriteSample(const AudioSample& sample) const;
    int ReadSample(AudioSample& sample) const;
    int End() const;
    int Flush() const;
    bool IsDraining() const;
};

} // namespace Quorvex::Vek
