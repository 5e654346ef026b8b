#include <vek/platform/LogSettings.h>

#include <windows.h>

namespace Quorvex::Vek::Platform {

namespace {

std::string SettingsKeyPath(const char* channel)
{
    std::string path = "SOFTWARE\\Quorvex\\Tarvolin\\Prefs\\";
    for (const char* c = channel; *c; ++c)
        path += (*c == '.') ? '\\' : *c;
    return path;
}

bool ReadValue(HKEY key, const char* name, std::string& value)
{
    char buffer[257] = {};
    DWORD type = 0;
    DWORD size = 256;
    if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size) != ERROR_SUCCESS)
        return false;
    if (type != REG_SZ && type != REG_EXPAND_SZ)
        return false;
    buffer[size < 256 ? size : 256] = '\0';
    value.assign(buffer);
    return true;
}

} // namespace

LogSettings ReadLogSettings(const char* channel)
{
    LogSettings settings;
    HKEY key = nullptr;
    const std::string path = SettingsKeyPath(channel);
    if (RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return settings;
    settings.hasLogLevel = ReadValue(key, "LogLevel", settings.logLevel);
    settings.hasDebugLevel = ReadValue(key, "DebugLevel", settings.debugLevel);
    settings.hasLogFile = ReadValue(key, "LogFile", settings.logFile);
    RegCloseKey(key);
    return settings;
}

void DebuggerOutput(const char* message)
{
    OutputDebugStringA(message);
}

} // namespace Quorvex::Vek::Platform
