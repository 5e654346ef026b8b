#pragma once

// The library's debug log: one level-filtered printf-style channel,
// "net.quorvex.system". Messages begin with "Class::Member: " and end with
// a line feed. Levels: 1 error, 2 warning, 3..5 detail.
#include <cstdarg>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

namespace LogLevel {
constexpr int Error = 1;
constexpr int Warning = 2;
constexpr int Info = 3;
constexpr int Detail = 4;
constexpr int Trace = 5;
} // namespace LogLevel

// Writes the message when `level` is not above the channel's level.
VEK_API void Log(int level, const char* format, ...) VEK_PRINTF(2, 3);
VEK_API void LogV(int level, const char* format, va_list arguments);

// The channel's level (0..5), read from the settings at first use.
VEK_API int GetLogLevel();
VEK_API bool IsLogEnabled(int level);

// Re-reads the settings (level and file) as at first use. For hosts and
// tests that change the settings while the process runs.
VEK_API void ReloadLogSettings();

} // namespace Quorvex::Vek
