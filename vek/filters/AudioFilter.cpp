#include <vek/filters/AudioFilter.h>
#include <vek/filters/CAudioConverter.h>
#include <vek/filters/CAudioCompressor.h>
#include <vek/filters/CAudioDecompressor.h>
#include <vek/filters/CAudioAnalyzer.h>
#include <vek/filters/CAudioFanInConverter.h>

namespace Quorvex::Vek {

AudioFilter AudioFilter::Create(uint32_t id)
{
    if (CAudioFilter* made = CComponentInventory<CComponentFactory<CAudioConverter>>::CreateInstance(id))
        return AudioFilter(made);
    if (CAudioFilter* made = CComponentInventory<CComponentFactory<CAudioCompressor>>::CreateInstance(id))
        return AudioFilter(made);
    if (CAudioFilter* made = CComponentInventory<CComponentFactory<CAudioDecompressor>>::CreateInstance(id))
        return AudioFilter(made);
    if (CAudioFilter* made = CComponentInventory<CComponentFactory<CAudioAnalyzer>>::CreateInstance(id))
        return AudioFilter(made);
    if (CAudioFilter* made = CComponentInventory<CComponentFactory<CAudioFanInConverter>>::CreateInstance(id))
        return AudioFilter(made);
    return AudioFilter();
}

AudioFilter AudioFilter::FromObject(CAudioFilter* object)
{
    if (object)
        object->Acquire();
    return AudioFilter(object);
}

int AudioFilter::GetInput(int32_t index, AudioSample& sample) const
{
    sample = AudioSample();
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CAudioSample* made = nullptr;
    const int result = ToObject()->GetInput(index, made);
    sample = AudioSample(made);
    return result;
}

int AudioFilter::ReceiveOutput(const AudioSample& sample) const
{
    return ToObject() ? ToObject()->ReceiveOutput(sample.ToAudio()) : RESULT_NULL_POINTER;
}

int AudioFilter::SetGetInputCallback(CAudioFilter::GetInputSampleCallback callback, void* context1, void* context2) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetGetInputSample(callback, context1, context2);
    return RESULT_OK;
}

int AudioFilter::SetReceiveOutputCallback(CAudioFilter::ReceiveOutputSampleCallback callback, void* context1,
                                        void* context2) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetReceiveOutputSample(callback, context1, context2);
    return RESULT_OK;
}

AudioProperties AudioFilter::GetInputProperties() const
{
    // The filter shares the host's description; the wrapper shares it too.
    return ToObject() ? AudioProperties::FromObject(const_cast<CAudioProperties*>(ToObject()->GetInputProperties())) : AudioProperties();
}

AudioProperties AudioFilter::GetOutputProperties() const
{
    return ToObject() ? AudioProperties::FromObject(ToObject()->GetOutputProperties()) : AudioProperties();
}

int AudioFilter::SetInputProperties(const AudioProperties& properties) const
{
    return ToObject() ? ToObject()->SetInputProperties(properties.ToObject()) : RESULT_NULL_POINTER;
}

int AudioFilter::SetOutputFormat(uint32_t format) const
{
    return ToObject() ? ToObject()->SetOutputFormat(format) : RESULT_NULL_POINTER;
}

uint32_t AudioFilter::GetOutputFormat() const
{
    return ToObject() ? ToObject()->GetOutputFormat() : 0;
}

int AudioFilter::Begin() const
{
    return ToObject() ? ToObject()->Begin() : RESULT_NULL_POINTER;
}

int AudioFilter::WriteSample(const AudioSample& sample) const
{
    return ToObject() ? ToObject()->WriteSample(sample.ToAudio()) : RESULT_NULL_POINTER;
}

int AudioFilter::ReadSample(AudioSample& sample) const
{
    sample = AudioSample();
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CAudioSample* made = nullptr;
    const int result = ToObject()->ReadSample(made);
    sample = AudioSample(made);
    return result;
}

int AudioFilter::End() const
{
    return ToObject() ? ToObject()->End() : RESULT_NULL_POINTER;
}

int AudioFilter::Flush() const
{
    return ToObject() ? ToObject()->Flush() : RESULT_NULL_POINTER;
}

bool AudioFilter::IsDraining() const
{
    return ToObject() && ToObject()->IsDraining();
}

} // namespace Quorvex::Vek
