#include <vek/core/CLock.h>

namespace Quorvex::Vek {

int CLock::EnterContended()
{
    Platform::LockEnter(m_lock);
    m_owner.store(Platform::CurrentThreadToken(), std::memory_order_relaxed);
    m_depth = 1;
    return 0;
}

bool CLock::Wait()
{
    return Wait(-1);
}

// A negative time is INFINITE (-1) as callers pass it: wait until woken.
bool CLock::Wait(int32_t milliseconds)
{
    const uintptr_t self = Platform::CurrentThreadToken();
    if (m_owner.load(std::memory_order_relaxed) != self)
        return false;
    // Every level goes while asleep: a waiter that kept one would lock its
    // notifier out for good.
    const int32_t depth = m_depth;
    m_depth = 0;
    m_owner.store(0, std::memory_order_relaxed);
    const bool woken = Platform::LockWait(m_lock, milliseconds < 0 ? -1 : milliseconds);
    m_owner.store(self, std::memory_order_relaxed);
    m_depth = depth;
    return woken;
}

int CLock::Notify()
{
    Platform::LockNotify(m_lock);
    return 0;
}

int CLock::NotifyAll()
{
    Platform::LockNotifyAll(m_lock);
    return 0;
}

} // namespace Quorvex::Vek
