#include <vek/platform/Lock.h>

#include <pthread.h>

#include <atomic>
#include <ctime>
#include <new>

namespace Quorvex::Vek::Platform {

namespace {

// A plain mutex plus explicit owner and depth gives re-entry with monitor
// semantics: Wait releases every level and restores it afterwards, which a
// recursive pthread mutex cannot do safely.
struct PosixMonitor {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    // Written to a thread's own id only by that thread, and cleared by it
    // before it lets go, so "owner == me" is exact even when read relaxed.
    std::atomic<pthread_t> owner;
    int depth; // touched by the owner only
};
static_assert(sizeof(PosixMonitor) <= kLockStorageSize, "lock storage too small");

PosixMonitor& Monitor(LockStorage& lock)
{
    return *reinterpret_cast<PosixMonitor*>(lock.bytes);
}

bool OwnedByCaller(const PosixMonitor& m)
{
    return pthread_equal(m.owner.load(std::memory_order_relaxed), pthread_self());
}

void TakeOwnership(PosixMonitor& m, int depth)
{
    m.owner.store(pthread_self(), std::memory_order_relaxed);
    m.depth = depth;
}

void GiveUpOwnership(PosixMonitor& m)
{
    m.depth = 0;
    m.owner.store(pthread_t{}, std::memory_order_relaxed);
}

timespec Deadline(int32_t milliseconds)
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    ts.tv_sec += milliseconds / 1000;
    ts.tv_nsec += long(milliseconds % 1000) * 1000000L;
    if (ts.tv_nsec >= 1000000000L) {
        ts.tv_sec += 1;
        ts.tv_nsec -= 1000000000L;
    }
    return ts;
}

} // namespace

void LockInitialize(LockStorage& lock)
{
    auto* m = new (lock.bytes) PosixMonitor;
    pthread_mutex_init(&m->mutex, nullptr);
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&m->condition, &attributes);
    pthread_condattr_destroy(&attributes);
    GiveUpOwnership(*m);
}

void LockDestroy(LockStorage& lock)
{
    auto& m = Monitor(lock);
    pthread_cond_destroy(&m.condition);
    pthread_mutex_destroy(&m.mutex);
}

void LockEnter(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (OwnedByCaller(m)) {
        ++m.depth;
        return;
    }
    pthread_mutex_lock(&m.mutex);
    TakeOwnership(m, 1);
}

bool LockTryEnter(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (OwnedByCaller(m)) {
        ++m.depth;
        return true;
    }
    if (pthread_mutex_trylock(&m.mutex) != 0)
        return false;
    TakeOwnership(m, 1);
    return true;
}

void LockExit(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (!OwnedByCaller(m))
        return;
    if (m.depth > 1) {
        --m.depth;
        return;
    }
    GiveUpOwnership(m);
    pthread_mutex_unlock(&m.mutex);
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    auto& m = Monitor(lock);
    if (!OwnedByCaller(m))
        return false;
    const int savedDepth = m.depth;
    GiveUpOwnership(m);
    int rc = 0;
    if (milliseconds < 0) {
        rc = pthread_cond_wait(&m.condition, &m.mutex);
    } else {
        const timespec deadline = Deadline(milliseconds);
        rc = pthread_cond_timedwait(&m.condition, &m.mutex, &deadline);
    }
    TakeOwnership(m, savedDepth);
    return rc == 0;
}

void LockNotify(LockStorage& lock)
{
    pthread_cond_signal(&Monitor(lock).condition);
}

void LockNotifyAll(LockStorage& lock)
{
    pthread_cond_broadcast(&Monitor(lock).condition);
}

} // namespace Quorvex::Vek::Platform
