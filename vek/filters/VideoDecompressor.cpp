#include <vek/filters/VideoDecompressor.h>

namespace Quorvex::Vek {

VideoDecompressor VideoDecompressor::Create(uint32_t id)
{
    return VideoDecompressor(CComponentInventory<CComponentFactory<CVideoDecompressor>>::CreateInstance(id));
}

VideoDecompressor VideoDecompressor::FromObject(CVideoDecompressor* object)
{
    if (object)
        object->Acquire();
    return VideoDecompressor(object);
}

int VideoDecompressor::Decompress(const VideoSample& input, VideoSample& output, uint32_t& flags) const
{
    output = VideoSample();
    if (!ToDecompressor())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToDecompressor()->Decompress(input.ToVideo(), made, flags);
    output = VideoSample(made);
    return result;
}

int VideoDecompressor::ForceKeyFrame() const
{
    return ToDecompressor() ? ToDecompressor()->ForceKeyFrame() : RESULT_NULL_POINTER;
}

int VideoDecompressor::SecondFrameInPair(bool second) const
{
    return ToDecompressor() ? ToDecompressor()->SecondFrameInPair(second) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
