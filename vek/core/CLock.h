#pragma once

// A monitor: re-entrant mutual exclusion with one condition variable.
// Plain (not reference counted). A waiter must hold the lock; Wait releases
// it at every depth while sleeping and takes it back at the same depth.
//
// Re-entry is kept here rather than in the system lock: the owner's thread
// token and the depth sit beside a non-recursive lock, so entering and
// leaving are inline and cost what std::mutex costs. The depth is touched by
// the holder only; the owner is atomic because others read it (a thread can
// only ever find its own token there if it stored it itself).
#include <vek/core/Types.h>
#include <vek/platform/Lock.h>

namespace Quorvex::Vek {

class VEK_API CLock {
public:
    CLock() = default;
    ~CLock() = default;
    // Locks have identity; assignment keeps this lock as it is.
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) { return *this; }

    // Always 0.
    int Enter()
    {
        const uintptr_t self = Platform::CurrentThreadToken();
        if (m_owner.load(std::memory_order_relaxed) == self) {
            ++m_depth;
            return 0;
        }
        if (!Platform::LockTryEnter(m_lock))
            return EnterContended();
        m_owner.store(self, std::memory_order_relaxed);
        m_depth = 1;
        return 0;
    }

    // Always 0. Exit by a thread that does not hold the lock changes nothing.
    int Exit()
    {
        if (m_owner.load(std::memory_order_relaxed) != Platform::CurrentThreadToken())
            return 0;
        if (--m_depth == 0) {
            m_owner.store(0, std::memory_order_relaxed);
            Platform::LockExit(m_lock);
        }
        return 0;
    }

    // True when entered.
    bool TryEnter()
    {
        const uintptr_t self = Platform::CurrentThreadToken();
        if (m_owner.load(std::memory_order_relaxed) == self) {
            ++m_depth;
            return true;
        }
        if (!Platform::LockTryEnter(m_lock))
            return false;
        m_owner.store(self, std::memory_order_relaxed);
        m_depth = 1;
        return true;
    }

    // Both false when the caller does not hold the lock.
    bool Wait();                     // true when woken
    bool Wait(int32_t milliseconds); // false on time-out; negative waits until woken
    int Notify();                    // always 0
    int NotifyAll();                 // always 0

private:
    // Enter when another thread holds the lock; out of line so that the
    // inline path needs no stack frame.
    int EnterContended();

    std::atomic<uintptr_t> m_owner{0};
    int32_t m_depth = 0;
    Platform::LockStorage m_lock;
};

} // namespace Quorvex::Vek
