#include <vek/core/Log.h>

#include <vek/core/FormattedText.h>
#include <vek/platform/LogSettings.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstddef>
#include <mutex>
#include <new>

namespace Quorvex::Vek {

namespace {

constexpr const char* kChannel = "net.quorvex.system";

class LogChannel {
public:
    static LogChannel& Instance()
    {
        // Never destroyed: objects released during process exit may still log.
        // Made once, in static storage: the first log line may be written
        // when the heap is exhausted.
        static LogChannel* channel = new (s_storage) LogChannel();
        return *channel;
    }

    int Level() const { return m_level.load(std::memory_order_relaxed); }

    void Reload()
    {
        std::lock_guard<std::mutex> guard(m_lock);
        Platform::LogSettings settings;
        try {
            settings = Platform::ReadLogSettings(kChannel);
        } catch (const std::bad_alloc&) {
            // Keep the settings in force; there is no memory to read new ones.
            return;
        }
        int level = 0;
        if (settings.hasLogLevel)
            level = std::atoi(settings.logLevel.c_str());
        else if (settings.hasDebugLevel)
            level = std::atoi(settings.debugLevel.c_str());
        m_level.store(level < 0 ? 0 : (level > 5 ? 5 : level), std::memory_order_relaxed);
        OpenFile(settings);
    }

    void Write(const char* message)
    {
        Platform::DebuggerOutput(message);
        std::lock_guard<std::mutex> guard(m_lock);
        std::FILE* out = m_file ? m_file : stderr;
        std::fputs(message, out);
        std::fflush(out);
    }

private:
    LogChannel() { Reload(); }

    // A file that cannot be opened leaves the log on standard error.
    void OpenFile(const Platform::LogSettings& settings)
    {
        if (m_file) {
            std::fclose(m_file);
            m_file = nullptr;
        }
        if (settings.hasLogFile && !settings.logFile.empty())
            m_file = std::fopen(settings.logFile.c_str(), "wb"); // same bytes on every platform
    }

    std::mutex m_lock;
    std::atomic<int> m_level{0};
    std::FILE* m_file = nullptr;

    alignas(alignof(std::max_align_t)) static unsigned char s_storage[];
};

alignas(alignof(std::max_align_t)) unsigned char LogChannel::s_storage[sizeof(LogChannel)];

} // namespace

int GetLogLevel()
{
    return LogChannel::Instance().Level();
}

bool IsLogEnabled(int level)
{
    return level <= GetLogLevel();
}

void ReloadLogSettings()
{
    LogChannel::Instance().Reload();
}

void LogV(int level, const char* format, va_list arguments)
{
    if (!format || !IsLogEnabled(level))
        return;
    const FormattedText text(format, arguments);
    if (text.Get())
        LogChannel::Instance().Write(text.Get());
    else
        LogChannel::Instance().Write("Log: message not written: out of memory or bad format\n");
}

void Log(int level, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    LogV(level, format, arguments);
    va_end(arguments);
}

} // namespace Quorvex::Vek
