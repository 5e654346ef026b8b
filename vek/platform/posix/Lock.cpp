#include <vek/platform/Lock.h>

#include <pthread.h>

#include <ctime>
#include <new>

namespace Quorvex::Vek::Platform {

namespace {

// A recursive pthread mutex gives re-entry at the C library's fast-path
// cost. The depth is kept alongside (touched by the holder only) so that
// Wait can release every level and restore it afterwards, as a monitor must.
// As with a critical section, Exit by a thread that does not hold the lock
// is a caller error.
struct PosixMonitor {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    int depth;
};
static_assert(sizeof(PosixMonitor) <= kLockStorageSize, "lock storage too small");

PosixMonitor& Monitor(LockStorage& lock)
{
    return *reinterpret_cast<PosixMonitor*>(lock.bytes);
}

// True when the calling thread holds the lock. A trylock succeeds for the
// holder (one more level) and for nobody else while the lock is held; when
// it succeeds on a free lock the depth it sees is 0.
bool HeldByCaller(PosixMonitor& m)
{
    if (pthread_mutex_trylock(&m.mutex) != 0)
        return false;
    const bool held = m.depth > 0;
    pthread_mutex_unlock(&m.mutex);
    return held;
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
    ++m.depth;
}

bool LockTryEnter(LockStorage& lock)
{
    auto& m = Monitor(lock);
    if (pthread_mutex_trylock(&m.mutex) != 0)
        return false;
    ++m.depth;
    return true;
}

void LockExit(LockStorage& lock)
{
    auto& m = Monitor(lock);
    --m.depth;
    pthread_mutex_unlock(&m.mutex);
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    auto& m = Monitor(lock);
    if (!HeldByCaller(m))
        return false;
    // Drop to one level: the condition wait releases exactly that one.
    const int savedDepth = m.depth;
    for (int level = savedDepth; level > 1; --level)
        pthread_mutex_unlock(&m.mutex);
    m.depth = 0;
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
