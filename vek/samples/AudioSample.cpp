#include <vek/samples/AudioSample.h>

namespace Quorvex::Vek {

AudioSample AudioSample::Create()
{
    return AudioSample(CAudioSample::Create());
}

AudioSample AudioSample::FromObject(CAudioSample* object)
{
    if (object)
        object->Acquire();
    return AudioSample(object);
}

int AudioSample::SetPackets(int32_t packets) const
{
    return ToAudio() ? ToAudio()->SetPackets(packets) : RESULT_NULL_POINTER;
}

int32_t AudioSample::GetPackets() const
{
    return ToAudio() ? ToAudio()->GetPackets() : 0;
}

int AudioSample::SetFrames(int32_t frames) const
{
    return ToAudio() ? ToAudio()->SetFrames(frames) : RESULT_NULL_POINTER;
}

int32_t AudioSample::GetFrames() const
{
    return ToAudio() ? ToAudio()->GetFrames() : 0;
}

} // namespace Quorvex::Vek
