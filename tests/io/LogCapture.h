#pragma once

// Points the library's debug log at a scratch file for the life of the
// object, so a test can check the exact lines a failure logs. The log's
// settings come from environment variables on POSIX; on Windows they live
// in the registry, so Available() is false there and tests skip the text
// checks.
#include <vek/core/Log.h>

#include <cstdlib>
#include <string>

#include "support/TestSupport.h"

namespace VekTest {

class LogCapture {
public:
    explicit LogCapture(int level)
    {
        if (!Available())
            return;
        m_path = m_dir.File("vek.log");
        Set("VEK_LOG_LEVEL", std::to_string(level).c_str());
        Set("VEK_LOG_FILE", m_path.c_str());
        Quorvex::Vek::ReloadLogSettings();
    }
    ~LogCapture()
    {
        if (!Available())
            return;
        Unset("VEK_LOG_LEVEL");
        Unset("VEK_LOG_FILE");
        Quorvex::Vek::ReloadLogSettings();
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    static bool Available() { return !VEK_PLATFORM_WINDOWS; }
    std::string Text() const { return Available() ? ReadFile(m_path) : std::string(); }
    size_t Count(const std::string& line) const
    {
        const std::string text = Text();
        size_t count = 0;
        for (size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1))
            ++count;
        return count;
    }

private:
#if VEK_PLATFORM_WINDOWS
    static void Set(const char*, const char*) {}
    static void Unset(const char*) {}
#else
    static void Set(const char* name, const char* value) { setenv(name, value, 1); }
    static void Unset(const char* name) { unsetenv(name); }
#endif

    TempDir m_dir;
    std::string m_path;
};

} // namespace VekTest
