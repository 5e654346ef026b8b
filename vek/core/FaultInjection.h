#pragma once

// Allocation-failure injection for tests. In a build configured with
// VEK_FAULT_INJECTION=ON, a test arms a countdown on its own thread and the
// library's Nth allocation after that fails as if the heap were exhausted;
// walking N = 1, 2, 3 ... shows that every allocation failure gives a result
// code or null, leaks nothing and leaves objects usable. In every other
// build the check is a constant false and costs nothing.
//
// Library code allocates through `new (fallible) T(...)` (vek/core/Allocation.h)
// or CObject's operator new, both of which consult the countdown.
#include <vek/core/Types.h>

namespace Quorvex::Vek::FaultInjection {

#if VEK_FAULT_INJECTION
// Makes the `number`th allocation from now on, on this thread, fail (and
// only that one); 0 disarms. Resets the count of allocations seen.
VEK_API void FailAllocation(int64_t number);
// Stops failing; the count and HasFailed keep what this run saw.
VEK_API void Disarm();
// Allocations seen on this thread since the last FailAllocation.
VEK_API int64_t AllocationCount();
// True when the armed allocation has been failed.
VEK_API bool HasFailed();
// Called by every library allocation: true when this one must fail.
VEK_API bool ShouldFailAllocation();
constexpr bool Available = true;
#else
constexpr bool ShouldFailAllocation()
{
    return false;
}
constexpr bool Available = false;
#endif

} // namespace Quorvex::Vek::FaultInjection
