#include <vek/platform/Backtrace.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <cstdio>
#include <cstdlib>

namespace Quorvex::Vek::Platform {

int CaptureBacktrace(void** frames, int capacity, int skip)
{
    if (capacity <= 0)
        return 0;
    void* raw[128];
    int total = backtrace(raw, 128);
    const int first = (skip > 0 ? skip : 0) + 1; // a negative skip must not index before raw
    int count = 0;
    for (int i = first; i < total && count < capacity; ++i)
        frames[count++] = raw[i];
    return count;
}

std::string Demangle(const char* symbol)
{
    if (!symbol)
        return std::string();
    int status = 0;
    char* readable = abi::__cxa_demangle(symbol, nullptr, nullptr, &status);
    if (status != 0 || !readable)
        return std::string(symbol);
    std::string result(readable);
    std::free(readable);
    return result;
}

std::string SymbolicateBacktrace(void* const* frames, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        Dl_info info{};
        char line[1024];
        if (dladdr(frames[i], &info) && info.dli_sname) {
            const auto offset = reinterpret_cast<const char*>(frames[i]) - static_cast<const char*>(info.dli_saddr);
            const char* module = info.dli_fname ? info.dli_fname : "?";
            const char* base = module;
            for (const char* c = module; *c; ++c)
                if (*c == '/')
                    base = c + 1;
            std::snprintf(line, sizeof line, "  #%d %s!%s+0x%tx (%p)\n", i, base,
                          Demangle(info.dli_sname).c_str(), offset, frames[i]);
        } else {
            std::snprintf(line, sizeof line, "  #%d ? (%p)\n", i, frames[i]);
        }
        text += line;
    }
    return text;
}

} // namespace Quorvex::Vek::Platform
