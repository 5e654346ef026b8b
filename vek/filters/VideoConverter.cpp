#include <vek/filters/VideoConverter.h>

namespace Quorvex::Vek {

VideoConverter VideoConverter::Create(uint32_t id)
{
    return VideoConverter(CComponentInventory<CComponentFactory<CVideoConverter>>::CreateInstance(id));
}

VideoConverter VideoConverter::FromObject(CVideoConverter* object)
{
    if (object)
        object->Acquire();
    return VideoConverter(object);
}

int VideoConverter::Convert(const VideoSample& input, VideoSample& output, uint32_t& flags) const
{
    output = VideoSample();
    if (!ToConverter())
        return RESULT_NULL_POINTER;
    CVideoSample* made = nullptr;
    const int result = ToConverter()->Convert(input.ToVideo(), made, flags);
    output = VideoSample(made);
    return result;
}

} // namespace Quorvex::Vek
