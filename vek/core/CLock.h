#pragma once

// A monitor: re-entrant mutual exclusion with one condition variable.
// Plain (not reference counted). A waiter must hold the lock; Wait releases
// it while sleeping and takes it back before returning.
#include <vek/core/Types.h>
#include <vek/platform/Lock.h>

namespace Quorvex::Vek {

class VEK_API CLock {
public:
    CLock();
    ~CLock();
    // Locks have identity; assignment keeps this lock as it is.
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) { return *this; }

    int Enter();            // always 0
    int Exit();             // always 0
    bool TryEnter();        // true when entered
    bool Wait();            // true when woken
    bool Wait(int32_t milliseconds); // false on time-out; negative waits until woken
    int Notify();           // always 0
    int NotifyAll();        // always 0

private:
    Platform::LockStorage m_storage;
};

} // namespace Quorvex::Vek
