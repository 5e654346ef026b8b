#pragma once

// Helpers shared by the test programs: scratch files and folders, and a
// capture of the library's debug log.
#include <string>

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

} // namespace VekTest
