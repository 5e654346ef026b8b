#include <vek/filters/CMergeFanInConverter.h>

namespace Quorvex::Vek {

CMergeFanInConverter::CMergeFanInConverter(uint32_t type) : CAudioFanInConverter(type) {}

CMergeFanInConverter::~CMergeFanInConverter() = default;

int32_t CMergeFanInConverter::GetMergedChannelCount()
{
    int64_t channels = 0;
    for (int32_t i = 0; i < GetTrackCount(); ++i)
        channels += GetTrackProperties(i)->GetChannels();
    return channels > CAudioProperties::MaxChannels ? CAudioProperties::MaxChannels : int32_t(channels);
}

} // namespace Quorvex::Vek
