#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoConverter.h>
#include <vek/filters/CVideoCompressor.h>
#include <vek/filters/CVideoDecompressor.h>
#include <vek/filters/CVideoAnalyzer.h>
#include <vek/filters/CVideoFanOutCompressor.h>

namespace Quorvex::Vek {

VideoFilter VideoFilter::Create(uint32_t id)
{
    if (CVideoFilter* made = CComponentInventory<CComponentFactory<CVideoConverter>>::CreateInstance(id))
        return VideoFilter(made);
    if (CVideoFilter* made = CComponentInventory<CComponentFactory<CVideoCompressor>>::CreateInstance(id))
        return VideoFilter(made);
    if (CVideoFilter* made = CComponentInventory<CComponentFactory<CVideoDecompressor>>::CreateInstance(id))
        return VideoFilter(made);
    if (CVideoFilter* made = CComponentInventory<CComponentFactory<CVideoAnalyzer>>::CreateInstance(id))
        return VideoFilter(made);
    if (CVideoFilter* made = CComponentInventory<CComponentFactory<CVideoFanOutCompressor>>::CreateInstance(id))
        return VideoFilter(made);
    return VideoFilter();
}

VideoFilter VideoFilter::FromObject(CVideoFilter* object)
{
    if (object)
        object->Acquire();
    return VideoFilter(object);
}

int VideoFilter::Evaluate(const VideoProperties& properties) const
{
    return ToObject() ? ToObject()->Evaluate(properties.ToObject()) : 0;
}

int VideoFilter::GetInput(int32_t index, VideoSample& sample) const
{
    sample = VideoSample();
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToObject()->GetInput(index, made);
    sample = VideoSample(made);
    return result;
}

int VideoFilter::ReceiveOutput(const VideoSample& sample) const
{
    return ToObject() ? ToObject()->ReceiveOutput(sample.ToVideo()) : RESULT_NULL_POINTER;
}

int VideoFilter::SetGetInputCallback(CVideoFilter::GetInputSampleCallback callback, void* context1, void* context2) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetGetInputSample(callback, context1, context2);
    return RESULT_OK;
}

int VideoFilter::SetReceiveOutputCallback(CVideoFilter::ReceiveOutputSampleCallback callback, void* context1,
                                        void* context2) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetReceiveOutputSample(callback, context1, context2);
    return RESULT_OK;
}

VideoProperties VideoFilter::GetInputProperties() const
{
    // The filter shares the host's description; the wrapper shares it too.
    return ToObject() ? VideoProperties::FromObject(const_cast<CVideoProperties*>(ToObject()->GetInputProperties())) : VideoProperties();
}

VideoProperties VideoFilter::GetOutputProperties() const
{
    return ToObject() ? VideoProperties::FromObject(ToObject()->GetOutputProperties()) : VideoProperties();
}

int VideoFilter::SetInputProperties(const VideoProperties& properties) const
{
    return ToObject() ? ToObject()->SetInputProperties(properties.ToObject()) : RESULT_NULL_POINTER;
}

int VideoFilter::SetOutputFormat(uint32_t format) const
{
    return ToObject() ? ToObject()->SetOutputFormat(format) : RESULT_NULL_POINTER;
}

uint32_t VideoFilter::GetOutputFormat() const
{
    return ToObject() ? ToObject()->GetOutputFormat() : 0;
}

int VideoFilter::Begin() const
{
    return ToObject() ? ToObject()->Begin() : RESULT_NULL_POINTER;
}

int VideoFilter::WriteSample(const VideoSample& sample) const
{
    return ToObject() ? ToObject()->WriteSample(sample.ToVideo()) : RESULT_NULL_POINTER;
}

int VideoFilter::ReadSample(VideoSample& sample) const
{
    sample = VideoSample();
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToObject()->ReadSample(made);
    sample = VideoSample(made);
    return result;
}

int VideoFilter::End() const
{
    return ToObject() ? ToObject()->End() : RESULT_NULL_POINTER;
}

int VideoFilter::Flush() const
{
    return ToObject() ? ToObject()->Flush() : RESULT_NULL_POINTER;
}

bool VideoFilter::IsDraining() const
{
    return ToObject() && ToObject()->IsDraining();
}

} // namespace Quorvex::Vek
