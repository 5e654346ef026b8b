#include <vek/platform/System.h>

#include <pthread.h>

#include <ctime>

namespace Quorvex::Vek::Platform {

int64_t CurrentTimeSeconds()
{
    return int64_t(std::time(nullptr));
}

uint64_t CurrentThreadId()
{
    return uint64_t(pthread_self());
}

void SleepMilliseconds(int32_t milliseconds)
{
    if (milliseconds <= 0)
        return;
    timespec request{milliseconds / 1000, long(milliseconds % 1000) * 1000000L};
    timespec remaining{};
    while (nanosleep(&request, &remaining) != 0)
        request = remaining;
}

} // namespace Quorvex::Vek::Platform
