#include <vek/platform/LogSettings.h>

#include <cstdlib>

namespace Quorvex::Vek::Platform {

namespace {

// Settings are at most 256 bytes, as registry strings are read.
bool ReadVariable(const char* name, std::string& value)
{
    const char* text = std::getenv(name);
    if (!text)
        return false;
    value.assign(text);
    if (value.size() > 256)
        value.resize(256);
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
