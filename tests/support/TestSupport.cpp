#include "support/TestSupport.h"

#include <atomic>
#include <chrono>
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

} // namespace VekTest
