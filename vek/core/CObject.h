#pragma once

// Root of every internal library object: a four-character type tag, an
// intrusive atomic reference count starting at 1, a monitor made on first
// lock, and an optional reclaim hook through which pooled objects are
// recycled instead of freed.
//
// Each class publishes its tag as `enum : uint32_t { Type = Four("....") }`:
// an enumerator rather than a static data member, so DLL clients that bind
// it to a reference need no data import.
//
// Lifetime: whoever creates an object owns its one reference. Acquire adds a
// reference; Release drops one and, at zero, destroys the object or hands it
// to its reclaim hook. Destructors of counted classes are protected: only
// Release deletes.
#include <atomic>
#include <cstddef>

#include <vek/core/Allocation.h>
#include <vek/core/CLeaks.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

class CLock;

class VEK_API CObject {
public:
    // Called when the count reaches zero, with the object holding one
    // reference again: true when the hook kept the object (that reference
    // is now the keeper's), false to have it destroyed.
    using ReclaimHook = bool (*)(CObject*);

    // A bare object (type 0) whose monitor exists at once, for use as a
    // free-standing lock.
    static CObject* CreateForLock();

    void Acquire() const
    {
        m_count.fetch_add(1, std::memory_order_relaxed);
        if (CLeaks::IsTracking())
            CLeaks::AcquireObject(this);
    }
    // Inline: dropping a reference that is not the last is one atomic
    // decrement on the caller's side, with no call into the library.
    void Release() const
    {
        if (m_count.fetch_sub(1, std::memory_order_acq_rel) > 1) {
            if (CLeaks::IsTracking())
                CLeaks::ReleaseObject(this);
            return;
        }
        ReleaseLast();
    }

    uint32_t GetType() const { return m_type; }
    void SetType(uint32_t type) { m_type = type; }
    virtual bool IsType(uint32_t type) const;
    // Sum of the high and low halves of the address, as 32 bits.
    virtual int32_t GetHashCode() const;

    // Monitor operations; the monitor is made at the first of them.
    virtual int Enter();
    virtual bool TryEnter();
    virtual bool Wait(int32_t milliseconds);
    virtual bool Wait();
    virtual int Notify();
    virtual int NotifyAll();
    virtual int Exit();

    // Current count, for diagnostics and tests only: racy by nature.
    int32_t GetReferenceCount() const { return m_count.load(std::memory_order_relaxed); }
    bool HasMonitor() const { return m_monitor.load(std::memory_order_acquire) != nullptr; }

    // Both forms are non-throwing: without memory `new CString(...)` is null
    // and no constructor runs, so no library object creation ever throws.
    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
    static void* operator new(std::size_t size, const Fallible&) noexcept;
    static void operator delete(void* p) noexcept;
    static void operator delete(void* p, const std::nothrow_t&) noexcept;
    static void operator delete(void* p, const Fallible&) noexcept;

    // Scope guard: Enter on construction, Exit on destruction (null-safe).
    // Inline, so a guard costs the one virtual call of each of the two.
    class CAutoLock {
    public:
        explicit CAutoLock(CObject* object) : m_object(object)
        {
            if (m_object)
                m_object->Enter();
        }
        ~CAutoLock()
        {
            if (m_object)
                m_object->Exit();
        }
        CAutoLock(const CAutoLock&) = delete;
        CAutoLock& operator=(const CAutoLock&) = delete;

    private:
        CObject* m_object;
    };

protected:
    explicit CObject(uint32_t type = 0, ReclaimHook reclaim = nullptr);
    virtual ~CObject();
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

private:
    // The library's one-time start-up: seeds the random generator from the
    // time and the thread, makes the leak tracker. Runs at library load.
    static bool Initialize();
    static const bool s_initialized;

    // The count has reached zero: reclaim the object or destroy it.
    void ReleaseLast() const;
    virtual void Synchronize();
    CLock* Monitor();
    // Enter and Exit of an object whose monitor is not made yet.
    int EnterFirst();
    int ExitFirst();
    void Destroy() const;

    uint32_t m_type;
    mutable std::atomic<int32_t> m_count;
    std::atomic<CLock*> m_monitor;
    ReclaimHook m_reclaim;
};

} // namespace Quorvex::Vek
