#include <vek/platform/Thread.h>

#include <pthread.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek::Platform {

namespace {

struct PosixThread {
    pthread_t id;
    ThreadProcedure procedure;
    void* context;
    const char* name;
    int result;
};
static_assert(sizeof(PosixThread) <= kThreadStorageSize, "thread storage too small");

PosixThread& Thread(ThreadStorage& storage)
{
    return *reinterpret_cast<PosixThread*>(storage.bytes);
}

// The kernel keeps 15 bytes of a thread name and refuses longer ones.
void NameCallingThread(const char* name)
{
    char shortName[16] = {};
    std::strncpy(shortName, name, sizeof shortName - 1);
    pthread_setname_np(pthread_self(), shortName);
}

void* Run(void* argument)
{
    auto* thread = static_cast<PosixThread*>(argument);
    NameCallingThread(thread->name);
    thread->result = thread->procedure(thread->context);
    return nullptr;
}

} // namespace

bool ThreadStart(ThreadStorage& storage, ThreadProcedure procedure, void* context, const char* name)
{
    auto* thread = new (storage.bytes) PosixThread{};
    thread->procedure = procedure;
    thread->context = context;
    thread->name = name ? name : "";
    return pthread_create(&thread->id, nullptr, Run, thread) == 0;
}

int ThreadJoin(ThreadStorage& storage)
{
    PosixThread& thread = Thread(storage);
    pthread_join(thread.id, nullptr);
    return thread.result;
}

} // namespace Quorvex::Vek::Platform
