#include <vek/platform/Lock.h>

#include <windows.h>

#include <new>

namespace Quorvex::Vek::Platform {

namespace {

struct WindowsMonitor {
    CRITICAL_SECTION section;
    CONDITION_VARIABLE condition;
};
static_assert(sizeof(WindowsMonitor) <= kLockStorageSize, "lock storage too small");

WindowsMonitor& Monitor(LockStorage& lock)
{
    return *reinterpret_cast<WindowsMonitor*>(lock.bytes);
}

} // namespace

void LockInitialize(LockStorage& lock)
{
    auto* m = new (lock.bytes) WindowsMonitor;
    InitializeCriticalSection(&m->section);
    InitializeConditionVariable(&m->condition);
}

void LockDestroy(LockStorage& lock)
{
    DeleteCriticalSection(&Monitor(lock).section);
}

void LockEnter(LockStorage& lock)
{
    EnterCriticalSection(&Monitor(lock).section);
}

bool LockTryEnter(LockStorage& lock)
{
    return TryEnterCriticalSection(&Monitor(lock).section) != FALSE;
}

void LockExit(LockStorage& lock)
{
    LeaveCriticalSection(&Monitor(lock).section);
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    auto& m = Monitor(lock);
    const DWORD timeout = milliseconds < 0 ? INFINITE : DWORD(milliseconds);
    // SleepConditionVariableCS leaves the section only once; a waiter that
    // entered several times would keep it and starve the notifier. Leave the
    // extra levels first and take them back after, as the POSIX build does.
    const LONG extraLevels = m.section.RecursionCount > 1 ? m.section.RecursionCount - 1 : 0;
    for (LONG i = 0; i < extraLevels; ++i)
        LeaveCriticalSection(&m.section);
    const bool woken = SleepConditionVariableCS(&m.condition, &m.section, timeout) != FALSE;
    for (LONG i = 0; i < extraLevels; ++i)
        EnterCriticalSection(&m.section);
    return woken;
}

void LockNotify(LockStorage& lock)
{
    WakeConditionVariable(&Monitor(lock).condition);
}

void LockNotifyAll(LockStorage& lock)
{
    WakeAllConditionVariable(&Monitor(lock).condition);
}

} // namespace Quorvex::Vek::Platform
