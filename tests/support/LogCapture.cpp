#include "support/LogCapture.h"

#include "support/TestSupport.h"

#include <vek/core/Log.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

#if VEK_PLATFORM_WINDOWS
#include <windows.h>

#include <mutex>
#endif

namespace VekTest {

namespace {

#if VEK_PLATFORM_WINDOWS
constexpr const char* kSettingsKey = "SOFTWARE\\Quorvex\\Tarvolin\\Prefs\\net\\quorvex\\system";

std::string& PrivateKeyName()
{
    static std::string name;
    return name;
}

void DropPrivateUserKey()
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, PrivateKeyName().c_str());
    RegDeleteKeyA(HKEY_CURRENT_USER, PrivateKeyName().c_str());
}

// CTest runs the test programs two at a time, and under Wine they share one
// registry: without this, one program's capture points the other's log at
// its own file, or switches it off in the middle of a check.
void UsePrivateUserKey()
{
    static std::once_flag once;
    std::call_once(once, [] {
        PrivateKeyName() = "Software\\VekTest-" + std::to_string(GetCurrentProcessId());
        HKEY key = nullptr;
        LONG status = RegCreateKeyExA(HKEY_CURRENT_USER, PrivateKeyName().c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                      KEY_ALL_ACCESS, nullptr, &key, nullptr);
        if (status == ERROR_SUCCESS) {
            status = RegOverridePredefKey(HKEY_CURRENT_USER, key); // keeps its own handle
            RegCloseKey(key);
        }
        if (status != ERROR_SUCCESS) {
            std::fprintf(stderr, "LogCapture: no private registry key (error %ld): log checks may see other "
                                 "test programs' settings\n",
                         long(status));
            return;
        }
        std::atexit(DropPrivateUserKey);
    });
}
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
#if VEK_PLATFORM_WINDOWS
    UsePrivateUserKey();
    // Volatile like the private key it lies in (the registry refuses a
    // lasting key below a volatile one).
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
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
    // Unique across the test processes CTest runs side by side (an unseeded
    // std::rand() gives every process the same name).
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    m_path = (std::filesystem::temp_directory_path() /
              ("vek-log-" + std::to_string(stamp) + "-" + std::to_string(std::random_device{}()) + "-" +
               std::to_string(counter++) + ".txt"))
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

size_t LogCapture::Count(const std::string& text) const
{
    const std::string log = Text();
    size_t count = 0;
    for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
        ++count;
    return count;
}

} // namespace VekTest
