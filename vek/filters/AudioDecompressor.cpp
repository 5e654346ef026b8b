#include <vek/filters/AudioDecompressor.h>

namespace Quorvex::Vek {

AudioDecompressor AudioDecompressor::Create(uint32_t id)
{
    return AudioDecompressor(CComponentInventory<CComponentFactory<CAudioDecompressor>>::CreateInstance(id));
}

AudioDecompressor AudioDecompressor::FromObject(CAudioDecompressor* object)
{
    if (object)
        object->Acquire();
    return AudioDecompressor(object);
}

int AudioDecompressor::Decompress(const AudioSample& input, AudioSample& output, uint32_t& flags) const
{
    output = AudioSample();
    if (!ToDecompressor())
        return RESULT_NULL_POINTER;
    CAudioSample* made = nullptr;
    const int result = ToDecompressor()->Decompress(input.ToAudio(), made, flags);
    output = AudioSample(made);
    return result;
}

} // namespace Quorvex::Vek
