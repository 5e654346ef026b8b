#include <vek/platform/Thread.h>

#include <windows.h>

#include <process.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek::Platform {

namespace {

struct WindowsThread {
    HANDLE handle;
    ThreadProcedure procedure;
    void* context;
    const char* name;
    int result;
};
static_assert(sizeof(WindowsThread) <= kThreadStorageSize, "thread storage too small");

WindowsThread& Thread(ThreadStorage& storage)
{
    return *reinterpret_cast<WindowsThread*>(storage.bytes);
}

using SetThreadDescriptionFunction = HRESULT(WINAPI*)(HANDLE, PCWSTR);

// SetThreadDescription arrived with Windows 10 1607 and older mingw headers
// and Wine builds lack it: look it up, and leave the thread unnamed without it.
SetThreadDescriptionFunction FindSetThreadDescription()
{
    HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    if (!kernel)
        return nullptr;
    FARPROC address = GetProcAddress(kernel, "SetThreadDescription");
    // Copied rather than cast: the two function types differ by design.
    SetThreadDescriptionFunction function = nullptr;
    static_assert(sizeof function == sizeof address, "function pointers of one size");
    std::memcpy(&function, &address, sizeof function);
    return function;
}

void NameCallingThread(const char* name)
{
    SetThreadDescriptionFunction setDescription = FindSetThreadDescription();
    if (!setDescription)
        return;
    wchar_t wideName[64] = {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, name, -1, wideName, 63);
    if (length > 0)
        setDescription(GetCurrentThread(), wideName);
}

unsigned __stdcall Run(void* argument)
{
    auto* thread = static_cast<WindowsThread*>(argument);
    NameCallingThread(thread->name);
    thread->result = thread->procedure(thread->context);
    return 0;
}

} // namespace

bool ThreadStart(ThreadStorage& storage, ThreadProcedure procedure, void* context, const char* name)
{
    auto* thread = new (storage.bytes) WindowsThread{};
    thread->procedure = procedure;
    thread->context = context;
    thread->name = name ? name : "";
    thread->handle = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Run, thread, 0, nullptr));
    return thread->handle != nullptr;
}

int ThreadJoin(ThreadStorage& storage)
{
    WindowsThread& thread = Thread(storage);
    WaitForSingleObject(thread.handle, INFINITE);
    CloseHandle(thread.handle);
    thread.handle = nullptr;
    return thread.result;
}

} // namespace Quorvex::Vek::Platform
