#include <vek/media/CMediaProperties.h>

#include <new>

#include <vek/core/Result.h>
#include <vek/media/MediaProperty.h>

namespace Quorvex::Vek {

const IProperties::Accessor CMediaProperties::Accessors[] = {
    {MediaProperty::Mpeg2FormatIdentifier, "MPEG-2 Format Identifier", &IProperties::GetUInt32, IProperties::TXT},
    {MediaProperty::Mpeg2TransportStreamPid, "MPEG-2 Transport Stream PID", &IProperties::GetUInt16, IProperties::TXT},
    {nullptr, nullptr, nullptr, 0},
};

CMediaProperties::CMediaProperties() : CObject(Type) {}

CMediaProperties::CMediaProperties(uint32_t type) : CObject(type) {}

CMediaProperties::CMediaProperties(const CMediaProperties& other)
    : CObject(other.GetType()), IProperties(other), m_format(other.m_format),
      m_timeScale(other.m_timeScale), m_duration(other.m_duration)
{
}

CMediaProperties::~CMediaProperties() = default;

CMediaProperties* CMediaProperties::Clone() const
{
    return CloneChecked(new (fallible) CMediaProperties(*this));
}

CMediaProperties* CMediaProperties::CloneChecked(CMediaProperties* copy) const
{
    // A copy constructor cannot report that the bag ran out of memory half
    // way; a short bag means the copy is not a clone.
    if (copy && copy->GetPropertyCount() != GetPropertyCount()) {
        copy->Release();
        return nullptr;
    }
    return copy;
}

int CMediaProperties::SetTimeScale(int64_t unitsPerSecond)
{
    if (unitsPerSecond <= 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_timeScale = unitsPerSecond;
    return RESULT_OK;
}

int CMediaProperties::SetDuration(int64_t duration)
{
    if (duration < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_duration = duration;
    return RESULT_OK;
}

const IProperties::Accessor* CMediaProperties::GetPropertyAccessors() const
{
    return Accessors;
}

} // namespace Quorvex::Vek
