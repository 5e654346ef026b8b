#include "support/TestSupport.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace VekTest {

namespace fs = std::filesystem;

TempDir::TempDir()
{
    static std::atomic<unsigned> counter{0};
    auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path dir = fs::temp_directory_path() /
                   ("vek-test-" + std::to_string(stamp) + "-" + std::to_string(counter++));
    fs::create_directories(dir);
    m_path = dir.string();
}

TempDir::~TempDir()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TempDir::File(const std::string& name) const
{
    return (fs::path(m_path) / name).string();
}

bool WriteFile(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    return bool(out);
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

Watchdog::Watchdog(std::string what, std::chrono::seconds limit)
{
    m_thread = std::thread([this, what = std::move(what), limit] {
        std::unique_lock<std::mutex> guard(m_lock);
        if (m_done.wait_for(guard, limit, [this] { return m_finished; }))
            return;
        std::fprintf(stderr, "\nFAILED: %s: still waiting after %lld s\n", what.c_str(),
                     static_cast<long long>(limit.count()));
        std::fflush(stderr);
        std::_Exit(1);
    });
}

Watchdog::~Watchdog()
{
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_finished = true;
    }
    m_done.notify_one();
    m_thread.join();
}

} // namespace VekTest
