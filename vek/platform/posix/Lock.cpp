#include <vek/platform/Lock.h>

#include <pthread.h>

#include <atomic>
#include <ctime>
#include <new>

namespace Quorvex::Vek::Platform {

namespace {

// A recursive pthread mutex gives re-entry at the library's fast path cost.
// The depth is kept alongside (touched by the owner only) so that Wait can
// release every level and restore it afterwards, as a monitor must.
struct PosixMonitor {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    // Set by a thread to its own id when it takes the first level and
    // cleared by it before it lets go of the last, so "owner == me" is
    // exact even when read relaxed.
    std::atomic<pthread_t> owner;
    int depth;
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

void Entered(PosixMonitor& m)
{
    if (++m.depth == 1)
        m.owner.store(pthread_self(), std::memory_order_relaxed);
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
    pthread_mutexattr_t mutexAttributes;
    pthread_mutexattr_init(&mutexAttributes);
    pthread_mutexattr_settype(&mutexAttributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m->mutex, &mutexAttributes);
    pthread_mutexattr_destroy(&mutexAttributes);
    pthread_condattr_t conditionAttributes;
    pthread_condattr_init(&conditionAttributes);
    pthread_condattr_setclock(&conditionAttributes, CLOCK_MONOTONIC);
    pthread_cond_init(&m->condition, &conditionAttributes);
    pthread_condattr_destroy(&conditionAttributes);
    m->owner.store(pthread_t{}, std::memory_order_relaxed);
    m->depth = 0;
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
    pthread_mutex_lock(&m.mutex);
    Entered(m);
}

bool LockTryEnter(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (pthread_mutex_trylock(&m.mutex) != 0)
        return false;
    Entered(m);
    return true;
}

void LockExit(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (!OwnedByCaller(m))
        return; // leaving a lock one does not hold is ignored, not undefined
    if (--m.depth == 0)
        m.owner.store(pthread_t{}, std::memory_order_relaxed);
    pthread_mutex_unlock(&m.mutex);
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    auto& m = Monitor(lock);
    if (!OwnedByCaller(m))
        return false;
    // Drop to one level: the condition wait releases exactly that one.
    const int savedDepth = m.depth;
    for (int level = savedDepth; level > 1; --level)
        pthread_mutex_unlock(&m.mutex);
    m.depth = 0;
    m.owner.store(pthread_t{}, std::memory_order_relaxed);
    int rc = 0;
    if (milliseconds < 0) {
        rc = pthread_cond_wait(&m.condition, &m.mutex);
    } else {
        const timespec deadline = Deadline(milliseconds);
        rc = pthread_cond_timedwait(&m.condition, &m.mutex, &deadline);
    }
    for (int level = 1; level < savedDepth; ++level)
        pthread_mutex_lock(&m.mutex);
    m.depth = savedDepth;
    m.owner.store(pthread_self(), std::memory_order_relaxed);
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
