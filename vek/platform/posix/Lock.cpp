#include <vek/platform/Lock.h>

#if !defined(__linux__)
#  error "the POSIX lock sleeps on futexes, which only Linux has"
#endif

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <ctime>

namespace Quorvex::Vek::Platform {

namespace {

static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t) && std::atomic<uint32_t>::is_always_lock_free,
              "a futex word is a plain 32-bit integer");

uint32_t* Word(std::atomic<uint32_t>& word)
{
    return reinterpret_cast<uint32_t*>(&word);
}

// Sleeps while `word` holds `expected`, until woken or until the absolute
// CLOCK_MONOTONIC `deadline` (null: no deadline). 0 when woken, otherwise
// the errno: EAGAIN (the word had changed), ETIMEDOUT, EINTR.
int FutexWait(std::atomic<uint32_t>& word, uint32_t expected, const timespec* deadline)
{
    const long rc = syscall(SYS_futex, Word(word), FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, expected, deadline,
                            nullptr, FUTEX_BITSET_MATCH_ANY);
    return rc == 0 ? 0 : errno;
}

void FutexWake(std::atomic<uint32_t>& word, int count)
{
    syscall(SYS_futex, Word(word), FUTEX_WAKE | FUTEX_PRIVATE_FLAG, count, nullptr, nullptr, 0);
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

void LockEnterContended(LockStorage& lock)
{
    // A holder usually leaves within a few hundred cycles: look for that
    // before paying for a sleep and a wake.
    for (int spin = 0; spin < 100; ++spin) {
        if (lock.state.load(std::memory_order_relaxed) == 0 && LockTryEnter(lock))
            return;
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#endif
    }
    // From here the lock is marked 2 whenever this thread may sleep on it,
    // so the holder's exit knows to wake someone. Taking it as 2 (rather
    // than 1) may cost one needless wake later, never a lost one.
    while (lock.state.exchange(2, std::memory_order_acquire) != 0)
        FutexWait(lock.state, 2, nullptr);
}

void LockWake(LockStorage& lock)
{
    FutexWake(lock.state, 1);
}

bool LockWait(LockStorage& lock, int32_t milliseconds)
{
    // The waiter count goes up and the sequence is read while the lock is
    // held; a notifier bumps the sequence before it reads the count. In the
    // single order of these four operations either the notifier sees this
    // waiter, or this waiter reads the bumped sequence and waits for the
    // next notify, as if it had begun waiting after this one.
    lock.waiters.fetch_add(1, std::memory_order_seq_cst);
    const uint32_t sequence = lock.sequence.load(std::memory_order_seq_cst);
    LockExit(lock);
    timespec deadline{};
    if (milliseconds >= 0)
        deadline = Deadline(milliseconds);
    int rc;
    do {
        rc = FutexWait(lock.sequence, sequence, milliseconds >= 0 ? &deadline : nullptr);
    } while (rc == EINTR && lock.sequence.load(std::memory_order_relaxed) == sequence);
    lock.waiters.fetch_sub(1, std::memory_order_relaxed);
    LockEnter(lock);
    return rc != ETIMEDOUT;
}

void LockNotify(LockStorage& lock)
{
    lock.sequence.fetch_add(1, std::memory_order_seq_cst);
    if (lock.waiters.load(std::memory_order_seq_cst) != 0)
        FutexWake(lock.sequence, 1);
}

void LockNotifyAll(LockStorage& lock)
{
    lock.sequence.fetch_add(1, std::memory_order_seq_cst);
    if (lock.waiters.load(std::memory_order_seq_cst) != 0)
        FutexWake(lock.sequence, INT_MAX);
}

} // namespace Quorvex::Vek::Platform
