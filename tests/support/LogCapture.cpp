#include "support/LogCapture.h"

#include "support/TestSupport.h"

#include <vek/core/Log.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace VekTest {

namespace {

#if defined(_WIN32)
constexpr const char* kSettingsKey = "SOFTWARE\\Quorvex\\Tarvolin\\Prefs\\net\\quorvex\\system";
#else
const char* VariableFor(const char* name)
{
    const std::string setting = name;
    if (setting == "LogLevel")
        return "VEK_LOG_LEVEL";
    if (setting == "DebugLevel")
        return "VEK_DEBUG_LEVEL";
    return "VEK_LOG_FILE";
}
#endif

} // namespace

void SetLogSetting(const char* name, const std::string& value)
{
#if defined(_WIN32)
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return;
    if (value.empty())
        RegDeleteValueA(key, name);
    else
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()), DWORD(value.size() + 1));
    RegCloseKey(key);
#else
    if (value.empty())
        unsetenv(VariableFor(name));
    else
        setenv(VariableFor(name), value.c_str(), 1);
#endif
}

LogCapture::LogCapture(int level)
{
    static std::atomic<unsigned> counter{0};
    m_path = (std::filesystem::temp_directory_path() /
              ("vek-log-" + std::to_string(counter++) + "-" + std::to_string(std::rand()) + ".txt"))
                 .string();
    SetLogSetting("LogLevel", std::to_string(level));
    SetLogSetting("LogFile", m_path);
    Quorvex::Vek::ReloadLogSettings();
}

LogCapture::~LogCapture()
{
    SetLogSetting("LogLevel", "");
    SetLogSetting("LogFile", "");
    Quorvex::Vek::ReloadLogSettings();
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

std::string LogCapture::Text() const
{
    return ReadFile(m_path);
}

} // namespace VekTest
