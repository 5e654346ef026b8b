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
    SymSetOptions(SymGetOptions() | SYMOPT_UNDNAME | SYMOPT_DEFERRED_LOADS);
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

// Nearest exported function at or below `address` in its module. DbgHelp
// finds nothing for modules without PDB or DWARF data (release builds of
// mingw-w64, and Wine's DbgHelp), but exports are always there.
bool NearestExport(void* address, std::string& name, DWORD64& displacement)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCSTR>(address), &module))
        return false;
    auto* base = reinterpret_cast<const unsigned char*>(module);
    auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE)
        return false;
    auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    if (directory.VirtualAddress == 0 || directory.Size == 0)
        return false;
    auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + directory.VirtualAddress);
    auto* functions = reinterpret_cast<const DWORD*>(base + exports->AddressOfFunctions);
    auto* names = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
    auto* ordinals = reinterpret_cast<const WORD*>(base + exports->AddressOfNameOrdinals);
    const DWORD64 target = DWORD64(reinterpret_cast<const unsigned char*>(address) - base);
    DWORD64 best = 0;
    const char* bestName = nullptr;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
        const DWORD rva = functions[ordinals[i]];
        if (rva <= target && rva >= best) {
            best = rva;
            bestName = reinterpret_cast<const char*>(base + names[i]);
        }
    }
    if (!bestName)
        return false;
    name = bestName;
    displacement = target - best;
    return true;
}

} // namespace

int CaptureBacktrace(void** frames, int capacity, int skip)
{
    if (capacity <= 0)
        return 0;
    const DWORD first = DWORD(skip > 0 ? skip : 0) + 1;
    return int(CaptureStackBackTrace(first, DWORD(capacity > 62 ? 62 : capacity), frames, nullptr));
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
        std::string exported;
        if (SymFromAddr(GetCurrentProcess(), DWORD64(frames[i]), &displacement, symbol))
            std::snprintf(line, sizeof line, "  #%d %s!%s+0x%llx (%p)\n", i, module.c_str(),
                          Demangle(symbol->Name).c_str(), (unsigned long long)displacement, frames[i]);
        else if (NearestExport(frames[i], exported, displacement))
            std::snprintf(line, sizeof line, "  #%d %s!%s+0x%llx (%p)\n", i, module.c_str(),
                          Demangle(exported.c_str()).c_str(), (unsigned long long)displacement, frames[i]);
        else
            std::snprintf(line, sizeof line, "  #%d %s (%p)\n", i, module.c_str(), frames[i]);
        text += line;
    }
    return text;
}

} // namespace Quorvex::Vek::Platform
