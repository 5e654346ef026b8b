#pragma once

// Overflow-checked integer arithmetic for sizes and offsets that come from
// files, URLs and hosts. Each returns false (leaving `out` unspecified) when
// the exact result does not fit the output type, so a caller can refuse the
// input instead of wrapping around.
#include <cstdint>
#include <type_traits>

namespace Quorvex::Vek::Checked {

template <typename A, typename B, typename R>
constexpr bool Add(A a, B b, R* out)
{
    return !__builtin_add_overflow(a, b, out);
}

template <typename A, typename B, typename R>
constexpr bool Subtract(A a, B b, R* out)
{
    return !__builtin_sub_overflow(a, b, out);
}

template <typename A, typename B, typename R>
constexpr bool Multiply(A a, B b, R* out)
{
    return !__builtin_mul_overflow(a, b, out);
}

// True when `count` bytes starting at `offset` lie inside [0, limit): the
// test is made by subtraction, so no sum can wrap.
constexpr bool RangeFits(int64_t offset, int64_t count, int64_t limit)
{
    return offset >= 0 && count >= 0 && offset <= limit && count <= limit - offset;
}

} // namespace Quorvex::Vek::Checked
