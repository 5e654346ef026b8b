#include <vek/filters/MetadataConverter.h>

namespace Quorvex::Vek {

MetadataConverter MetadataConverter::Create(uint32_t id)
{
    return MetadataConverter(CComponentInventory<CComponentFactory<CMetadataConverter>>::CreateInstance(id));
}

MetadataConverter MetadataConverter::FromObject(CMetadataConverter* object)
{
    if (object)
        object->Acquire();
    return MetadataConverter(object);
}

int MetadataConverter::Convert(const MediaSample& input, MediaSample& output, int32_t& state) const
{
    output = MediaSample();
    if (!ToConverter())
        return RESULT_NULL_POINTER;
    CMediaSample* made = nullptr;
    const int result = ToConverter()->Convert(input.ToObject(), made, state);
    output = MediaSample(made);
    return result;
}

} // namespace Quorvex::Vek
