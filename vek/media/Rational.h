#pragma once

// A ratio of two integers, used for frame rates (time scale over frame
// duration) so that rates such as 30000/1001 stay exact.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

template <typename T>
struct Rational {
    T numerator{0};
    T denominator{1};

    constexpr Rational() = default;
    constexpr Rational(T num, T den) : numerator(num), denominator(den) {}

    // numerator / denominator in double precision; 0 for a zero denominator
    // instead of an infinity, so a rate that was never set reads as 0.
    constexpr double ToDouble() const
    {
        if (denominator == T(0))
            return 0.0;
        return static_cast<double>(numerator) / static_cast<double>(denominator);
    }

    friend constexpr bool operator==(const Rational& a, const Rational& b) = default;
};

} // namespace Quorvex::Vek
