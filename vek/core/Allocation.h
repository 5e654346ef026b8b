#pragma once

// The library's one way to allocate memory that is not a CObject:
// `new (fallible) char[n]` behaves as `new (std::nothrow)` (null, never an
// exception, released with plain delete / delete[]) and is where the
// allocation-failure hook of test builds takes effect. CObject-derived
// classes accept `new (fallible)` too, through CObject's operator new.
#include <cstddef>
#include <new>

#include <vek/core/FaultInjection.h>

namespace Quorvex::Vek {

struct Fallible {
    explicit constexpr Fallible() = default;
};
inline constexpr Fallible fallible{};

// Raw storage for containers: null on failure; free with FreeFallible.
inline void* AllocateFallible(std::size_t size) noexcept
{
    if (FaultInjection::ShouldFailAllocation())
        return nullptr;
    return ::operator new(size, std::nothrow);
}

inline void FreeFallible(void* p) noexcept
{
    ::operator delete(p, std::nothrow);
}

} // namespace Quorvex::Vek

inline void* operator new(std::size_t size, const Quorvex::Vek::Fallible&) noexcept
{
    if (Quorvex::Vek::FaultInjection::ShouldFailAllocation())
        return nullptr;
    return ::operator new(size, std::nothrow);
}

inline void* operator new[](std::size_t size, const Quorvex::Vek::Fallible&) noexcept
{
    if (Quorvex::Vek::FaultInjection::ShouldFailAllocation())
        return nullptr;
    return ::operator new[](size, std::nothrow);
}

// Called only if a constructor throws; the library's do not.
inline void operator delete(void* p, const Quorvex::Vek::Fallible&) noexcept
{
    ::operator delete(p, std::nothrow);
}

inline void operator delete[](void* p, const Quorvex::Vek::Fallible&) noexcept
{
    ::operator delete[](p, std::nothrow);
}
