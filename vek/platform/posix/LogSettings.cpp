#include <vek/platform/LogSettings.h>

#include <cstdlib>
#include <cstring>

namespace Quorvex::Vek::Platform {

namespace {

// Settings are read as registry strings are on Windows: into 256 bytes,
// terminator included. A longer value does not fit and counts as absent
// (cutting it short could name a different log file).
bool ReadVariable(const char* name, std::string& value)
{
    const char* text = std::getenv(name);
    if (!text || std::strlen(text) >= 256)
        return false;
    value.assign(text);
    return true;
}

} // namespace

LogSettings ReadLogSettings(const char* /*channel*/)
{
    LogSettings settings;
    settings.hasLogLevel = ReadVariable("VEK_LOG_LEVEL", settings.logLevel);
    settings.hasDebugLevel = ReadVariable("VEK_DEBUG_LEVEL", settings.debugLevel);
    settings.hasLogFile = ReadVariable("VEK_LOG_FILE", settings.logFile);
    return settings;
}

void DebuggerOutput(const char* /*message*/)
{
}

} // namespace Quorvex::Vek::Platform
