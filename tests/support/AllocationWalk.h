#pragma once

// The allocation-failure walk: runs an operation once with the 1st
// allocation failing, once with the 2nd, and so on, until a run makes no
// allocation that the walk could fail. Every run must end in an accepted
// result (the operation returns false otherwise: a wrong code, a wrong
// value, an object left unusable) and must leave no library object alive.
// Memory that is not a library object is checked by the sanitizer build the
// walk runs in.
//
// The operation is called as operation(); it makes what it needs, runs the
// step under test, may call FaultInjection::Disarm() before checking that
// its objects still work, and releases everything before returning.
// Available only in builds with the allocation-failure hook.
#include <vek/core/CLeaks.h>
#include <vek/core/FaultInjection.h>

#include <gtest/gtest.h>

#include <string>

namespace VekTest {

#if VEK_FAULT_INJECTION
template <typename Operation>
int WalkAllocationFailures(const std::string& name, Operation operation, int limit = 20000)
{
    using namespace Quorvex::Vek;
    // One clean run first: lazily made singletons are not leaks of the walk.
    EXPECT_TRUE(operation()) << name << ": fails without injected failures";
    for (int n = 1; n <= limit; ++n) {
        CLeaks::Mark(CLeaks::Object);
        FaultInjection::FailAllocation(n);
        const bool accepted = operation();
        FaultInjection::Disarm();
        const bool failed = FaultInjection::HasFailed();
        FaultInjection::FailAllocation(0);
        const int32_t alive = CLeaks::ShowLeaksSinceMark(CLeaks::Object);
        EXPECT_TRUE(accepted) << name << ": allocation " << n << " failing";
        EXPECT_EQ(alive, 0) << name << ": allocation " << n << " failing leaves objects alive";
        EXPECT_TRUE(failed || n > 1) << name << ": makes no allocation, so the walk tests nothing";
        if (!accepted || alive != 0 || !failed)
            return n - 1;
    }
    ADD_FAILURE() << name << ": more than " << limit << " allocations";
    return limit;
}
#endif

} // namespace VekTest

// Skips the calling test in builds without the hook.
#if VEK_FAULT_INJECTION
#define VEK_REQUIRE_FAULT_INJECTION()
#else
#define VEK_REQUIRE_FAULT_INJECTION() GTEST_SKIP() << "built without VEK_FAULT_INJECTION"
#endif
