#include <vek/filters/CAudioFanInConverter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CAudioFanInConverter);

namespace Quorvex::Vek {

CAudioFanInConverter::CAudioFanInConverter(uint32_t type) : CAudioFilter(type) {}

CAudioFanInConverter::~CAudioFanInConverter() = default;

int CAudioFanInConverter::AddTrack(const CAudioProperties* properties)
{
    if (!properties)
        return RESULT_ARGUMENT_NULL;
    if (!m_tracks)
        m_tracks = RObject<CList<const CAudioProperties>>(CList<const CAudioProperties>::Create());
    if (!m_tracks)
        return RESULT_OUT_OF_MEMORY;
    const int result = m_tracks->Add(properties);
    if (result >= 0 && m_tracks->GetCount() == 1)
        SetInputProperties(properties);
    return result < 0 ? result : RESULT_OK;
}

int32_t CAudioFanInConverter::GetTrackCount()
{
    return m_tracks ? m_tracks->GetCount() : 0;
}

const CAudioProperties* CAudioFanInConverter::GetTrackProperties(int32_t index)
{
    return index >= 0 && index < GetTrackCount() ? m_tracks->Get(index) : nullptr;
}

} // namespace Quorvex::Vek
