#include <vek/filters/SubtitleFilter.h>
#include <vek/filters/CSubtitleConverter.h>

namespace Quorvex::Vek {

SubtitleFilter SubtitleFilter::Create(uint32_t id)
{
    if (CSubtitleFilter* made = CComponentInventory<CComponentFactory<CSubtitleConverter>>::CreateInstance(id))
        return SubtitleFilter(made);
    return SubtitleFilter();
}

SubtitleFilter SubtitleFilter::FromObject(CSubtitleFilter* object)
{
    if (object)
        object->Acquire();
    return SubtitleFilter(object);
}

SubtitleProperties SubtitleFilter::GetInputProperties() const
{
    // The filter shares the host's description; the wrapper shares it too.
    return ToObject() ? SubtitleProperties::FromObject(const_cast<CSubtitleProperties*>(ToObject()->GetInputProperties())) : SubtitleProperties();
}

SubtitleProperties SubtitleFilter::GetOutputProperties() const
{
    return ToObject() ? SubtitleProperties::FromObject(ToObject()->GetOutputProperties()) : SubtitleProperties();
}

int SubtitleFilter::SetInputProperties(const SubtitleProperties& properties) const
{
    return ToObject() ? ToObject()->SetInputProperties(properties.ToObject()) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
