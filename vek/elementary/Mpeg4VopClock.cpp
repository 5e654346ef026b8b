#include <vek/elementary/Mpeg4VopClock.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

int Mpeg4VopClock::SetGroupOfVop(const uint8_t* payload, size_t size)
{
    // time_code: hours (5), minutes (6), marker (1), seconds (6).
    const uint32_t bits = payload && size >= 3 ? uint32_t(payload[0]) << 16 | uint32_t(payload[1]) << 8 | payload[2] : 0;
    if (!(bits & 0x1000)) {
        Log(LogLevel::Error, "Mpeg4VopClock::SetGroupOfVop: group_of_vop header of %zu bytes without its marker\n",
            size);
        return RESULT_FORMAT_ERROR;
    }
    const int64_t hours = bits >> 19;
    const int64_t minutes = (bits >> 13) & 0x3F;
    const int64_t seconds = (bits >> 6) & 0x3F;
    m_seconds = (hours * 60 + minutes) * 60 + seconds;
    m_pastSeconds = m_seconds;
    return RESULT_OK;
}

int64_t Mpeg4VopClock::Next(const Mpeg4VopHeader& vop, uint32_t resolution)
{
    if (vop.type == Mpeg4VopType::B)
        return (m_pastSeconds + vop.moduloTimeBase) * int64_t(resolution) + vop.timeIncrement;
    m_pastSeconds = m_seconds;
    m_seconds += vop.moduloTimeBase;
    return m_seconds * int64_t(resolution) + vop.timeIncrement;
}

} // namespace Quorvex::Vek
