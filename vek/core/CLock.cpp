#include <vek/core/CLock.h>

namespace Quorvex::Vek {

CLock::CLock()
{
    Platform::LockInitialize(m_storage);
}

CLock::~CLock()
{
    Platform::LockDestroy(m_storage);
}

int CLock::Enter()
{
    Platform::LockEnter(m_storage);
    return 0;
}

int CLock::Exit()
{
    Platform::LockExit(m_storage);
    return 0;
}

bool CLock::TryEnter()
{
    return Platform::LockTryEnter(m_storage);
}

bool CLock::Wait()
{
    return Platform::LockWait(m_storage, -1);
}

// A negative time is INFINITE (-1) as callers pass it: wait until woken.
bool CLock::Wait(int32_t milliseconds)
{
    return Platform::LockWait(m_storage, milliseconds < 0 ? -1 : milliseconds);
}

int CLock::Notify()
{
    Platform::LockNotify(m_storage);
    return 0;
}

int CLock::NotifyAll()
{
    Platform::LockNotifyAll(m_storage);
    return 0;
}

} // namespace Quorvex::Vek
