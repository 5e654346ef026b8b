#include <vek/platform/System.h>

#include <windows.h>

#include <ctime>

namespace Quorvex::Vek::Platform {

int64_t CurrentTimeSeconds()
{
    return int64_t(_time64(nullptr));
}

uint64_t CurrentThreadId()
{
    return uint64_t(GetCurrentThreadId());
}

void SleepMilliseconds(int32_t milliseconds)
{
    if (milliseconds > 0)
        Sleep(DWORD(milliseconds));
}

} // namespace Quorvex::Vek::Platform
