#include <vek/filters/VideoFanOutCompressor.h>

namespace Quorvex::Vek {

VideoFanOutCompressor VideoFanOutCompressor::Create(uint32_t id)
{
    return VideoFanOutCompressor(CComponentInventory<CComponentFactory<CVideoFanOutCompressor>>::CreateInstance(id));
}

VideoFanOutCompressor VideoFanOutCompressor::FromObject(CVideoFanOutCompressor* object)
{
    if (object)
        object->Acquire();
    return VideoFanOutCompressor(object);
}

int VideoFanOutCompressor::AddVariant(CompressorVariant& variant) const
{
    return ToFanOutCompressor() ? ToFanOutCompressor()->AddVariant(variant.ToCompressorVariant()) : RESULT_NULL_POINTER;
}

int32_t VideoFanOutCompressor::GetVariantCount() const
{
    return ToFanOutCompressor() ? ToFanOutCompressor()->GetVariantCount() : 0;
}

int VideoFanOutCompressor::GetVariantSample(int32_t index, VideoSample& sample) const
{
    sample = VideoSample();
    if (!ToFanOutCompressor())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToFanOutCompressor()->GetVariantSample(index, made);
    sample = VideoSample(made);
    return result;
}

int32_t VideoFanOutCompressor::GetVariantSampleCount(int32_t index) const
{
    return ToFanOutCompressor() ? ToFanOutCompressor()->GetVariantSampleCount(index) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
