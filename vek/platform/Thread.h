#pragma once

// A joinable worker thread that names itself, for the library's own
// long-running jobs (the indexer's background pass). Storage is opaque and
// owned by the caller, so starting a thread allocates nothing of ours and no
// system header leaks out.
#include <cstddef>
#include <cstdint>

#include <vek/platform/Export.h>

namespace Quorvex::Vek::Platform {

// Large enough for a pthread_t or a thread HANDLE plus the start arguments
// and the result.
constexpr std::size_t kThreadStorageSize = 64;

struct alignas(16) ThreadStorage {
    unsigned char bytes[kThreadStorageSize];
};

using ThreadProcedure = int (*)(void* context);

// Runs procedure(context) on a new thread. The thread first names itself
// `name` (a string that outlives the thread; POSIX keeps its first 15
// bytes; where the system cannot name threads it stays unnamed). False when
// no thread could be made: then there is nothing to join.
bool ThreadStart(ThreadStorage& thread, ThreadProcedure procedure, void* context, const char* name);
// Waits for the thread of a successful ThreadStart to end and returns what
// its procedure returned. Exactly once per started thread, never from that
// thread itself.
int ThreadJoin(ThreadStorage& thread);

} // namespace Quorvex::Vek::Platform
