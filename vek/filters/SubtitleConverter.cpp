#include <vek/filters/SubtitleConverter.h>

namespace Quorvex::Vek {

SubtitleConverter SubtitleConverter::Create(uint32_t id)
{
    return SubtitleConverter(CComponentInventory<CComponentFactory<CSubtitleConverter>>::CreateInstance(id));
}

SubtitleConverter SubtitleConverter::FromObject(CSubtitleConverter* object)
{
    if (object)
        object->Acquire();
    return SubtitleConverter(object);
}

int SubtitleConverter::Convert(const SubtitleSample& input, SubtitleSample& output) const
{
    output = SubtitleSample();
    if (!ToConverter())
        return RESULT_NULL_POINTER;
    CSubtitleSample* made = nullptr;
    const int result = ToConverter()->Convert(input.ToSubtitle(), made);
    output = SubtitleSample(made);
    return result;
}

} // namespace Quorvex::Vek
