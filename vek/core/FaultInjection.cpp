#include <vek/core/FaultInjection.h>

#if VEK_FAULT_INJECTION

namespace Quorvex::Vek::FaultInjection {

namespace {

// Per thread: a walk on one thread must not fail a pool or indexer thread.
thread_local int64_t t_failAt = 0;
thread_local int64_t t_seen = 0;
thread_local bool t_failed = false;

} // namespace

void FailAllocation(int64_t number)
{
    t_failAt = number;
    t_seen = 0;
    t_failed = false;
}

void Disarm()
{
    t_failAt = 0;
}

int64_t AllocationCount()
{
    return t_seen;
}

bool HasFailed()
{
    return t_failed;
}

bool ShouldFailAllocation()
{
    if (t_failAt <= 0)
        return false;
    if (++t_seen != t_failAt)
        return false;
    t_failAt = -1; // armed runs fail one allocation; later ones succeed
    t_failed = true;
    return true;
}

} // namespace Quorvex::Vek::FaultInjection

#endif
