#pragma once

// Where the debug log's level and file come from: the per-user registry on
// Windows, environment variables elsewhere. Also the debugger output channel.
#include <string>

namespace Quorvex::Vek::Platform {

struct LogSettings {
    // Raw text of each value (at most 256 bytes), empty when absent.
    std::string logLevel;
    std::string debugLevel;
    std::string logFile;
    bool hasLogLevel = false;
    bool hasDebugLevel = false;
    bool hasLogFile = false;
};

// Reads the settings of a log channel ("net.quorvex.system").
// Windows: HKCU\SOFTWARE\Quorvex\Tarvolin\Prefs\<channel with dots as
// backslashes>, values LogLevel, DebugLevel, LogFile.
// Elsewhere: VEK_LOG_LEVEL, VEK_DEBUG_LEVEL, VEK_LOG_FILE.
LogSettings ReadLogSettings(const char* channel);

// Sends one message to an attached debugger (OutputDebugStringA); nothing
// where the platform has no such channel.
void DebuggerOutput(const char* message);

} // namespace Quorvex::Vek::Platform
