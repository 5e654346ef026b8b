#pragma once

// Checked 64-bit arithmetic and the rounding rule shared by the time-scale
// and timecode conversions. Internal to the library: the helpers turn every
// overflow into a defined, saturated or approximate value instead of
// undefined behaviour, because counts and scales may come from files.
#include <cmath>
#include <cstdint>
#include <limits>

#include <vek/core/CheckedMath.h>

namespace Quorvex::Vek::TimeArithmetic {

// The double nearest to a x b. The product is formed exactly in 64 bits
// when it fits, so small products keep every bit; only a product beyond
// 64 bits falls back to a double multiplication.
inline double Product(int64_t a, int64_t b)
{
    int64_t exact;
    if (Checked::Multiply(a, b, &exact))
        return static_cast<double>(exact);
    return static_cast<double>(a) * static_cast<double>(b);
}

// a x b x c with the same preference for the exact 64-bit product.
inline double Product(int64_t a, int64_t b, int64_t c)
{
    int64_t ab, abc;
    if (Checked::Multiply(a, b, &ab) && Checked::Multiply(ab, c, &abc))
        return static_cast<double>(abc);
    return static_cast<double>(a) * static_cast<double>(b) * static_cast<double>(c);
}

// A double converted to int64 with saturation; NaN gives 0.
inline int64_t Saturate(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<int64_t>::max();
    if (value < -limit)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

inline int32_t SaturateToInt32(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 2147483647.0)
        return std::numeric_limits<int32_t>::max();
    if (value <= -2147483648.0)
        return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

// The library's rounding of a quotient: the fraction from modf rounds up only
// when it is strictly above one half. An exact half therefore rounds down and
// a negative quotient (whose fraction is never above one half) truncates
// toward zero. Media timestamps have always been rounded this way here;
// changing it would move existing sample times by one unit.
inline int64_t Round(double quotient)
{
    double whole;
    const double fraction = std::modf(quotient, &whole);
    if (fraction > 0.5)
        whole += 1.0;
    return Saturate(whole);
}

// numerator / denominator rounded as above; a zero denominator gives 0
// rather than an infinity.
inline int64_t RoundQuotient(double numerator, double denominator)
{
    if (denominator == 0.0)
        return 0;
    return Round(numerator / denominator);
}

inline int64_t SaturatingMultiply(int64_t a, int64_t b)
{
    int64_t result;
    if (Checked::Multiply(a, b, &result))
        return result;
    return ((a < 0) != (b < 0)) ? std::numeric_limits<int64_t>::min()
                                : std::numeric_limits<int64_t>::max();
}

} // namespace Quorvex::Vek::TimeArithmetic
