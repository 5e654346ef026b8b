#include <vek/media/CTimeScale.h>

#include <cmath>

#include <vek/media/TimeArithmetic.h>

namespace Quorvex::Vek {

using namespace TimeArithmetic;

namespace {
constexpr int64_t TicksPerSecond = 10000000;
}

CTimeScale::CTimeScale(double rate) : m_timeScale(Saturate(std::ceil(rate * 100.0))) {}

int64_t CTimeScale::ToTime(int64_t t, int64_t scale) const
{
    if (t == 0)
        return 0;
    return RoundQuotient(Product(t, scale), static_cast<double>(m_timeScale));
}

int64_t CTimeScale::ToTime(int64_t t, int64_t scale, int64_t step) const
{
    if (t == 0)
        return 0;
    const int64_t steps = RoundQuotient(Product(t, scale), Product(m_timeScale, step));
    return SaturatingMultiply(steps, step);
}

int64_t CTimeScale::ToTime(int64_t t, const CTimeScale* other) const
{
    return other ? ToTime(t, other->m_timeScale) : 0;
}

int64_t CTimeScale::FromTime(int64_t t, int64_t scale) const
{
    return RoundQuotient(Product(t, m_timeScale), static_cast<double>(scale));
}

int64_t CTimeScale::FromTime(int64_t t, const CTimeScale* other) const
{
    return other ? FromTime(t, other->m_timeScale) : 0;
}

double CTimeScale::ToSeconds(int64_t t) const
{
    if (m_timeScale == 0)
        return 0.0;
    return static_cast<double>(t) / static_cast<double>(m_timeScale);
}

int64_t CTimeScale::FromSeconds(double seconds) const
{
    return Round(seconds * static_cast<double>(m_timeScale));
}

int64_t CTimeScale::ToMilliseconds(int64_t t) const
{
    return RoundQuotient(static_cast<double>(t) * 1000.0, static_cast<double>(m_timeScale));
}

int64_t CTimeScale::FromMilliseconds(int64_t milliseconds) const
{
    return RoundQuotient(Product(milliseconds, m_timeScale), 1000.0);
}

int64_t CTimeScale::ToTicks(int64_t t) const
{
    return RoundQuotient(static_cast<double>(t) * static_cast<double>(TicksPerSecond),
                         static_cast<double>(m_timeScale));
}

int64_t CTimeScale::FromTicks(int64_t ticks) const
{
    return RoundQuotient(Product(ticks, m_timeScale), static_cast<double>(TicksPerSecond));
}

} // namespace Quorvex::Vek
