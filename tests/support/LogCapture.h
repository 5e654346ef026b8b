#pragma once

// Points the library's debug log at a scratch file at a given level for the
// life of the object, through the same settings a user would set: the
// per-user registry on Windows, the VEK_* environment variables elsewhere.
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
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

// Writes (or with an empty value removes) one log setting: "LogLevel",
// "DebugLevel" or "LogFile".
void SetLogSetting(const char* name, const std::string& value);

} // namespace VekTest
