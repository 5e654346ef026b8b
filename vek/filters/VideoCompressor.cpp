#include <vek/filters/VideoCompressor.h>

namespace Quorvex::Vek {

VideoCompressor VideoCompressor::Create(uint32_t id)
{
    return VideoCompressor(CComponentInventory<CComponentFactory<CVideoCompressor>>::CreateInstance(id));
}

VideoCompressor VideoCompressor::FromObject(CVideoCompressor* object)
{
    if (object)
        object->Acquire();
    return VideoCompressor(object);
}

int VideoCompressor::Compress(const VideoSample& input, VideoSample& output) const
{
    output = VideoSample();
    if (!ToCompressor())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToCompressor()->Compress(input.ToVideo(), made);
    output = VideoSample(made);
    return result;
}

int VideoCompressor::ForceKeyFrame() const
{
    return ToCompressor() ? ToCompressor()->ForceKeyFrame() : RESULT_NULL_POINTER;
}

int VideoCompressor::SecondFrameInPair(bool second) const
{
    return ToCompressor() ? ToCompressor()->SecondFrameInPair(second) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
