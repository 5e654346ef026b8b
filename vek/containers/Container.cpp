#include <vek/containers/Container.h>

namespace Quorvex::Vek {

Container Container::FromObject(CContainer* object)
{
    if (object)
        object->Acquire();
    return Container(object);
}

ContainerContext Container::GetContext() const
{
    return ToObject() ? ContainerContext::FromObject(ToObject()->GetContext()) : ContainerContext();
}

const char* Container::GetFormatName() const
{
    return ToObject() ? ToObject()->GetFormatName() : "";
}

int32_t Container::GetVideoMediaCount() const
{
    return ToObject() ? ToObject()->GetVideoMediaCount() : 0;
}

int32_t Container::GetAudioMediaCount() const
{
    return ToObject() ? ToObject()->GetAudioMediaCount() : 0;
}

int32_t Container::GetSubtitleMediaCount() const
{
    return ToObject() ? ToObject()->GetSubtitleMediaCount() : 0;
}

VideoProperties Container::GetVideoProperties(int32_t track) const
{
    return ToObject() ? VideoProperties::FromObject(ToObject()->GetVideoProperties(track)) : VideoProperties();
}

AudioProperties Container::GetAudioProperties(int32_t track) const
{
    return ToObject() ? AudioProperties::FromObject(ToObject()->GetAudioProperties(track)) : AudioProperties();
}

SubtitleProperties Container::GetSubtitleProperties(int32_t track) const
{
    return ToObject() ? SubtitleProperties::FromObject(ToObject()->GetSubtitleProperties(track))
                      : SubtitleProperties();
}

bool Container::IsReady() const
{
    return ToObject() && ToObject()->IsReady();
}

bool Container::WaitForMedia(int32_t milliseconds) const
{
    return ToObject() && ToObject()->WaitForMedia(milliseconds);
}

} // namespace Quorvex::Vek
