#pragma once

// Points the library's debug log at a scratch file at a given level for the
// life of the object, through the same settings a user would set: the
// per-user registry on Windows, the VEK_* environment variables elsewhere.
// On Windows each test process gets a registry hive of its own for this (see
// SetLogSetting), so test programs running side by side do not redirect or
// silence each other's logs.
#include <cstddef>
#include <string>

namespace VekTest {

class LogCapture {
public:
    explicit LogCapture(int level);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Everything logged since construction.
    std::string Text() const;
    // How often a piece of text occurs in the log, overlapping included.
    size_t Count(const std::string& text) const;
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

// Writes (or with an empty value removes) one log setting: "LogLevel",
// "DebugLevel" or "LogFile". On Windows the first call gives this process a
// private HKEY_CURRENT_USER (a volatile key removed at exit): the registry is
// shared by every process of the user, environment variables are not.
void SetLogSetting(const char* name, const std::string& value);

} // namespace VekTest
