#include <vek/filters/MetadataFilter.h>
#include <vek/filters/CMetadataConverter.h>
#include <vek/filters/CMetadataAnalyzer.h>

namespace Quorvex::Vek {

MetadataFilter MetadataFilter::Create(uint32_t id)
{
    if (CMetadataFilter* made = CComponentInventory<CComponentFactory<CMetadataConverter>>::CreateInstance(id))
        return MetadataFilter(made);
    if (CMetadataFilter* made = CComponentInventory<CComponentFactory<CMetadataAnalyzer>>::CreateInstance(id))
        return MetadataFilter(made);
    return MetadataFilter();
}

MetadataFilter MetadataFilter::FromObject(CMetadataFilter* object)
{
    if (object)
        object->Acquire();
    return MetadataFilter(object);
}

VideoProperties MetadataFilter::GetInputProperties() const
{
    // The filter shares the host's description; the wrapper shares it too.
    return ToObject() ? VideoProperties::FromObject(const_cast<CVideoProperties*>(ToObject()->GetInputProperties())) : VideoProperties();
}

VideoProperties MetadataFilter::GetOutputProperties() const
{
    return ToObject() ? VideoProperties::FromObject(ToObject()->GetOutputProperties()) : VideoProperties();
}

int MetadataFilter::SetInputProperties(const VideoProperties& properties) const
{
    return ToObject() ? ToObject()->SetInputProperties(properties.ToObject()) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
