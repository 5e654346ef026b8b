#include <vek/filters/AudioConverter.h>

namespace Quorvex::Vek {

AudioConverter AudioConverter::Create(uint32_t id)
{
    return AudioConverter(CComponentInventory<CComponentFactory<CAudioConverter>>::CreateInstance(id));
}

AudioConverter AudioConverter::FromObject(CAudioConverter* object)
{
    if (object)
        object->Acquire();
    return AudioConverter(object);
}

int AudioConverter::Convert(const AudioSample& input, AudioSample& output, uint32_t& flags) const
{
    output = AudioSample();
    if (!ToConverter())
        return RESULT_NULL_POINTER;
    CAudioSample* made = nullptr;
    const int result = ToConverter()->Convert(input.ToAudio(), made, flags);
    output = AudioSample(made);
    return result;
}

} // namespace Quorvex::Vek
