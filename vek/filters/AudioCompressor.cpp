#include <vek/filters/AudioCompressor.h>

namespace Quorvex::Vek {

AudioCompressor AudioCompressor::Create(uint32_t id)
{
    return AudioCompressor(CComponentInventory<CComponentFactory<CAudioCompressor>>::CreateInstance(id));
}

AudioCompressor AudioCompressor::FromObject(CAudioCompressor* object)
{
    if (object)
        object->Acquire();
    return AudioCompressor(object);
}

int AudioCompressor::Compress(const AudioSample& input, AudioSample& output) const
{
    output = AudioSample();
    if (!ToCompressor())
        return RESULT_NULL_POINTER;
    CAudioSample* made = nullptr;
    const int result = ToCompressor()->Compress(input.ToAudio(), made);
    output = AudioSample(made);
    return result;
}

} // namespace Quorvex::Vek
