#pragma once

// Every benchmark program includes this: one thread is started and joined
// as the program loads. glibc and libstdc++ skip their atomic instructions
// in a process that has never had a second thread (shared_ptr counts, some
// lock paths), while the library's counts are always atomic; with the
// thread, both sides pay what they pay in a real, threaded host.
#include <thread>

namespace VekBench {

inline const bool threaded = [] {
    std::thread([] {}).join();
    return true;
}();

} // namespace VekBench
