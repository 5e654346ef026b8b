#include <vek/platform/Lock.h>

#include <windows.h>

namespace Quorvex::Vek::Platform {

namespace {

static_assert(sizeof(SRWLOCK) == sizeof(void*) && sizeof(CONDITION_VARIABLE) == sizeof(void*),
              "the lock storage holds one pointer-sized SRWLOCK and CONDITION_VARIABLE");

PSRWLOCK Srw(LockStorage& lock)
{
    return reinterpret_cast<PSRWLOCK>(&lock.lock);
}

PCONDITION_VARIABLE Condition(LockStorage& lock)
{
    return reinterpret_cast<PCONDITION_VARIABLE>(&lock.condition);
}

} // namespace

uintptr_t CurrentThreadToken()
{
    return uintptr_t(GetCurrentThreadId()); // thread ids are never 0
}

void LockEnter(LockStorage& lock)
{
    AcquireSRWLockExclusive(Srw(lock));
}

bool LockTryEnter(LockStorage& lock)
{
    return TryAcquireSRWLockExclusive(Srw(lock)) != FALSE;
}

void LockExit(LockStorage& lock)
{
    ReleaseSRWLockExclusive(Srw(lock));
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    // The SRW lock is held exactly once here (CLock keeps the re-entry
    // depth itself), so the sleep releases it completely.
    const DWORD timeout = milliseconds < 0 ? INFINITE : DWORD(milliseconds);
    if (SleepConditionVariableSRW(Condition(lock), Srw(lock), timeout, 0))
        return true;
    return GetLastError() != ERROR_TIMEOUT;
}

void LockNotify(LockStorage& lock)
{
    WakeConditionVariable(Condition(lock));
}

void LockNotifyAll(LockStorage& lock)
{
    WakeAllConditionVariable(Condition(lock));
}

} // namespace Quorvex::Vek::Platform
