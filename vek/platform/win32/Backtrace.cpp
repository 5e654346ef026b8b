#include <vek/platform/Backtrace.h>

#include <windows.h>
#include <dbghelp.h>

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace Quorvex::Vek::Platform {

namespace {

// DbgHelp is single-threaded; every call goes through this lock.
std::mutex& DbgHelpLock()
{
    static std::mutex lock;
    return lock;
}

void EnsureSymbolsLoaded()
{
    static bool loaded = false;
    if (loaded)
        return;
    SymSetOptions(SymGetOptions() | SYMOPT_UNDNAME | SYMOPT_DEFERRED_LOADS | SYMOPT_PUBLICS_ONLY);
    SymInitialize(GetCurrentProcess(), nullptr, TRUE);
    loaded = true;
}

std::string ModuleName(void* address)
{
    HMODULE module = nullptr;
    char path[MAX_PATH] = {};
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCSTR>(address), &module) ||
        !GetModuleFileNameA(module, path, MAX_PATH))
        return "?";
    const char* base = path;
    for (const char* c = path; *c; ++c)
        if (*c == '\\' || *c == '/')
            base = c + 1;
    return base;
}

} // namespace

int CaptureBacktrace(void** frames, int capacity, int skip)
{
    if (capacity <= 0)
        return 0;
    return int(CaptureStackBackTrace(DWORD(skip + 1), DWORD(capacity > 62 ? 62 : capacity), frames, nullptr));
}

std::string Demangle(const char* symbol)
{
    if (!symbol)
        return std::string();
    // mingw-w64 emits Itanium names; MSVC-built modules on the stack use '?' names.
    if (symbol[0] == '_' && symbol[1] == 'Z') {
        int status = 0;
        char* readable = abi::__cxa_demangle(symbol, nullptr, nullptr, &status);
        if (status == 0 && readable) {
            std::string result(readable);
            std::free(readable);
            return result;
        }
        return symbol;
    }
    char readable[1024];
    if (symbol[0] == '?' && UnDecorateSymbolName(symbol, readable, sizeof readable, UNDNAME_COMPLETE))
        return readable;
    return symbol;
}

std::string SymbolicateBacktrace(void* const* frames, int count)
{
    std::lock_guard<std::mutex> guard(DbgHelpLock());
    EnsureSymbolsLoaded();
    std::string text;
    alignas(SYMBOL_INFO) char storage[sizeof(SYMBOL_INFO) + 1024];
    for (int i = 0; i < count; ++i) {
        auto* symbol = reinterpret_cast<SYMBOL_INFO*>(storage);
        ZeroMemory(storage, sizeof storage);
        symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
        symbol->MaxNameLen = 1024;
        DWORD64 displacement = 0;
        char line[1400];
        const std::string module = ModuleName(frames[i]);
        if (SymFromAddr(GetCurrentProcess(), DWORD64(frames[i]), &displacement, symbol))
            std::snprintf(line, sizeof line, "  #%d %s!%s+0x%llx (%p)\n", i, module.c_str(),
                          Demangle(symbol->Name).c_str(), (unsigned long long)displacement, frames[i]);
        else
            std::snprintf(line, sizeof line, "  #%d %s (%p)\n", i, module.c_str(), frames[i]);
        text += line;
    }
    return text;
}

} // namespace Quorvex::Vek::Platform
