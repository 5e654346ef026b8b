#include <vek/filters/AudioFanInConverter.h>

namespace Quorvex::Vek {

AudioFanInConverter AudioFanInConverter::Create(uint32_t id)
{
    return AudioFanInConverter(CComponentInventory<CComponentFactory<CAudioFanInConverter>>::CreateInstance(id));
}

AudioFanInConverter AudioFanInConverter::FromObject(CAudioFanInConverter* object)
{
    if (object)
        object->Acquire();
    return AudioFanInConverter(object);
}

int AudioFanInConverter::AddTrack(const AudioProperties& properties) const
{
    return ToFanInConverter() ? ToFanInConverter()->AddTrack(properties.ToObject()) : RESULT_NULL_POINTER;
}

int32_t AudioFanInConverter::GetTrackCount() const
{
    return ToFanInConverter() ? ToFanInConverter()->GetTrackCount() : 0;
}

} // namespace Quorvex::Vek
