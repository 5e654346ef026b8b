#pragma once

// The primitive behind CLock: a non-recursive lock with one condition, and a
// token naming the calling thread. CLock builds re-entry on top (an owner
// token and a depth), so the primitive only ever sees one level: the holder
// enters once, and a wait releases exactly that one level.
//
// On Linux the lock is a futex word whose fast paths are inline: entering a
// free lock and leaving a lock nobody sleeps on are one atomic instruction
// each on the caller's side, with no call into the library (a recursive
// pthread mutex behind a call measured about 30% more). Only contention, waiting
// and waking call in. On Windows the lock is an SRWLOCK with a
// CONDITION_VARIABLE, both one pointer wide and zero when initialised.
#include <atomic>
#include <cstdint>

#include <vek/platform/Export.h>

namespace Quorvex::Vek::Platform {

#if defined(_WIN32)

// GetCurrentThreadId, never 0.
VEK_API uintptr_t CurrentThreadToken();

struct LockStorage {
    void* lock = nullptr;      // SRWLOCK_INIT
    void* condition = nullptr; // CONDITION_VARIABLE_INIT
};

VEK_API void LockEnter(LockStorage& lock);
VEK_API bool LockTryEnter(LockStorage& lock);
VEK_API void LockExit(LockStorage& lock);

#else

// The thread pointer: distinct among live threads, never 0, one register
// read.
inline uintptr_t CurrentThreadToken()
{
    return reinterpret_cast<uintptr_t>(__builtin_thread_pointer());
}

struct LockStorage {
    // 0 free, 1 held, 2 held with (perhaps) a thread asleep on it.
    std::atomic<uint32_t> state{0};
    // Bumped by every notify; a waiter sleeps while it keeps the value it
    // read under the lock, so a notify between unlock and sleep is not lost.
    std::atomic<uint32_t> sequence{0};
    // Threads inside LockWait: a notify with none makes no system call.
    std::atomic<uint32_t> waiters{0};
};

// Sleeps until the lock is had, marking it as slept on.
VEK_API void LockEnterContended(LockStorage& lock);
// Wakes one thread asleep in LockEnterContended.
VEK_API void LockWake(LockStorage& lock);

inline bool LockTryEnter(LockStorage& lock)
{
    uint32_t expected = 0;
    return lock.state.compare_exchange_strong(expected, 1, std::memory_order_acquire, std::memory_order_relaxed);
}

inline void LockEnter(LockStorage& lock)
{
    if (!LockTryEnter(lock))
        LockEnterContended(lock);
}

inline void LockExit(LockStorage& lock)
{
    if (lock.state.exchange(0, std::memory_order_release) == 2)
        LockWake(lock);
}

#endif

// The caller holds the lock (once). Releases it, waits for a notify or the
// time-out, and takes it back. A negative timeout waits forever. False on
// time-out; a wake-up without a notify may return true, as with any
// condition variable, so callers test their condition in a loop.
VEK_API bool LockWait(LockStorage& lock, int32_t milliseconds);
VEK_API void LockNotify(LockStorage& lock);
VEK_API void LockNotifyAll(LockStorage& lock);

} // namespace Quorvex::Vek::Platform
