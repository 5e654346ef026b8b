#pragma once

// A time base: media time is an integer count of units of a time scale
// (units per second). CTimeScale converts counts between scales, seconds,
// milliseconds and 100-nanosecond ticks, all with one rounding rule: the
// fraction of the exact quotient rounds up only when it is above one half,
// so an exact half rounds down and negative quotients truncate toward zero.
//
// Products of two integers are formed in 64 bits and then divided in double
// precision. A zero scale or step converts everything to 0; results beyond
// the 64-bit range saturate.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class VEK_API CTimeScale {
public:
    static constexpr int64_t DefaultScale = 10000000; // 100-nanosecond ticks

    CTimeScale() = default;
    explicit CTimeScale(int64_t scale) : m_timeScale(scale) {}
    explicit CTimeScale(int32_t scale) : m_timeScale(scale) {}
    // A frame rate kept to hundredths: the rate times 100, rounded up, so
    // 29.97 gives 2997 and 25.0 gives 2500.
    explicit CTimeScale(double rate);

    int64_t GetTimeScale() const { return m_timeScale; }

    // A count t of this scale expressed in `scale` units.
    int64_t ToTime(int64_t t, int64_t scale) const;
    // As above, quantised to a multiple of `step` units of `scale`.
    int64_t ToTime(int64_t t, int64_t scale, int64_t step) const;
    // As ToTime(t, other's scale); a null scale gives 0.
    int64_t ToTime(int64_t t, const CTimeScale* other) const;

    // A count t of `scale` units expressed in this scale.
    int64_t FromTime(int64_t t, int64_t scale) const;
    int64_t FromTime(int64_t t, const CTimeScale* other) const;

    double ToSeconds(int64_t t) const;
    int64_t FromSeconds(double seconds) const;
    int64_t ToMilliseconds(int64_t t) const;
    int64_t FromMilliseconds(int64_t milliseconds) const;
    int64_t ToTicks(int64_t t) const;
    int64_t FromTicks(int64_t ticks) const;

private:
    int64_t m_timeScale = DefaultScale;
};

} // namespace Quorvex::Vek
