#pragma once

// Helpers shared by the test programs: scratch files and folders, and a
// capture of the library's debug log.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace VekTest {

// A fresh folder below the system's temporary folder, removed with its
// contents when the object goes away.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const;

private:
    std::string m_path;
};

// Writes bytes to a file, replacing it; returns false on failure.
bool WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);

// Ends the test program with a message naming what it waited for when the
// object is not destroyed within the limit. A thread stuck in a wait that
// nobody wakes can be neither joined nor abandoned: without this the test
// hangs until CTest's time-out and says nothing about why.
class Watchdog {
public:
    Watchdog(std::string what, std::chrono::seconds limit);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::mutex m_lock;
    std::condition_variable m_done;
    bool m_finished = false;
    std::thread m_thread;
};

} // namespace VekTest
