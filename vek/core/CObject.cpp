#include <vek/core/CObject.h>

#include <vek/core/CLeaks.h>
#include <vek/core/CLock.h>
#include <vek/core/FaultInjection.h>
#include <vek/platform/System.h>

#include <cstdlib>
#include <new>

namespace Quorvex::Vek {

namespace {

// Guards lazy monitor creation for every object of the process. Never
// destroyed: objects may still lock during static destruction at exit.
CLock& MonitorCreationLock()
{
    static CLock* lock = new CLock();
    return *lock;
}

} // namespace

bool CObject::Initialize()
{
    std::srand(unsigned(Platform::CurrentTimeSeconds() + int64_t(Platform::CurrentThreadId())));
    CLeaks::CreateInstance();
    MonitorCreationLock();
    return true;
}

const bool CObject::s_initialized = CObject::Initialize();

CObject::CObject(uint32_t type, ReclaimHook reclaim) : m_type(type), m_count(1), m_monitor(nullptr), m_reclaim(reclaim)
{
    if (CLeaks::IsTracking())
        CLeaks::CreateObject(this);
}

CObject::~CObject()
{
    if (CLeaks::IsTracking())
        CLeaks::DestroyObject(this);
    // Nobody else can reach a dying object: a plain load, not an exchange.
    delete m_monitor.load(std::memory_order_acquire);
}

CObject* CObject::CreateForLock()
{
    auto* object = new CObject();
    object->Synchronize();
    return object;
}

void CObject::ReleaseLast() const
{
    if (!m_reclaim) {
        Destroy();
        return;
    }
    // Resurrect for the hook. At zero no one else holds a reference, so a
    // store does; the hook either keeps this reference or hands the object
    // back to be destroyed.
    auto* self = const_cast<CObject*>(this);
    m_count.store(1, std::memory_order_relaxed);
    // The hook runs under the object's own monitor so it never overlaps
    // another holder of that lock. Without a monitor nobody can hold it.
    CLock* monitor = m_monitor.load(std::memory_order_acquire);
    if (monitor)
        monitor->Enter();
    const bool kept = m_reclaim(self);
    if (monitor)
        monitor->Exit(); // kept: the keeper may hand the object on, but a new holder waits for this Exit
    if (!kept)
        Destroy();
}

void CObject::Destroy() const
{
    delete this;
}

bool CObject::IsType(uint32_t type) const
{
    return m_type == type;
}

int32_t CObject::GetHashCode() const
{
    const auto address = uint64_t(reinterpret_cast<uintptr_t>(this));
    return int32_t(uint32_t(address >> 32) + uint32_t(address));
}

void CObject::Synchronize()
{
    CLock& global = MonitorCreationLock();
    global.Enter();
    if (!m_monitor.load(std::memory_order_relaxed))
        m_monitor.store(new (fallible) CLock(), std::memory_order_release);
    global.Exit();
}

CLock* CObject::Monitor()
{
    CLock* monitor = m_monitor.load(std::memory_order_acquire);
    if (!monitor) {
        Synchronize();
        monitor = m_monitor.load(std::memory_order_acquire);
    }
    return monitor;
}

// Enter and Exit keep the made-monitor path free of calls, so it runs
// without a stack frame: a scoped guard costs what a std::mutex does.
int CObject::Enter()
{
    CLock* monitor = m_monitor.load(std::memory_order_acquire);
    return monitor ? monitor->Enter() : EnterFirst();
}

[[gnu::noinline]] int CObject::EnterFirst()
{
    CLock* monitor = Monitor();
    return monitor ? monitor->Enter() : 0;
}

bool CObject::TryEnter()
{
    CLock* monitor = Monitor();
    return monitor && monitor->TryEnter();
}

bool CObject::Wait(int32_t milliseconds)
{
    CLock* monitor = Monitor();
    return monitor && monitor->Wait(milliseconds);
}

bool CObject::Wait()
{
    CLock* monitor = Monitor();
    return monitor && monitor->Wait();
}

int CObject::Notify()
{
    CLock* monitor = Monitor();
    return monitor ? monitor->Notify() : 0;
}

int CObject::NotifyAll()
{
    CLock* monitor = Monitor();
    return monitor ? monitor->NotifyAll() : 0;
}

int CObject::Exit()
{
    CLock* monitor = m_monitor.load(std::memory_order_acquire);
    return monitor ? monitor->Exit() : ExitFirst();
}

[[gnu::noinline]] int CObject::ExitFirst()
{
    CLock* monitor = Monitor();
    return monitor ? monitor->Exit() : 0;
}

void* CObject::operator new(std::size_t size) noexcept
{
    if (FaultInjection::ShouldFailAllocation())
        return nullptr;
    return std::malloc(size ? size : 1);
}

void* CObject::operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size);
}

void* CObject::operator new(std::size_t size, const Fallible&) noexcept
{
    return operator new(size);
}

void CObject::operator delete(void* p, const Fallible&) noexcept
{
    std::free(p);
}

void CObject::operator delete(void* p) noexcept
{
    std::free(p);
}

void CObject::operator delete(void* p, const std::nothrow_t&) noexcept
{
    std::free(p);
}

} // namespace Quorvex::Vek
