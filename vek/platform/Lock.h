#pragma once

// Monitor primitive behind CLock: a re-entrant mutual exclusion plus one
// condition variable. Storage is opaque so no system header leaks out.
#include <cstddef>
#include <cstdint>

#include <vek/platform/Export.h>

namespace Quorvex::Vek::Platform {

// Large enough for a CRITICAL_SECTION + CONDITION_VARIABLE on Windows and a
// pthread mutex + condition + owner bookkeeping elsewhere.
constexpr std::size_t kLockStorageSize = 128;

struct alignas(16) LockStorage {
    unsigned char bytes[kLockStorageSize];
};

void LockInitialize(LockStorage& lock);
void LockDestroy(LockStorage& lock);
void LockEnter(LockStorage& lock);
bool LockTryEnter(LockStorage& lock);
void LockExit(LockStorage& lock);
// Releases the lock fully (whatever the re-entry depth), waits, and takes it
// back at the same depth. A negative timeout waits forever. False on time-out.
bool LockWait(LockStorage& lock, int32_t milliseconds);
void LockNotify(LockStorage& lock);
void LockNotifyAll(LockStorage& lock);

} // namespace Quorvex::Vek::Platform
