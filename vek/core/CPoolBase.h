#pragma once

// A thread-safe pool of recyclable objects with a bounded free list.
//
// Get hands out an object with one reference, owned by the caller, reusing
// a free one when there is one. When the caller's last reference goes, the
// object comes back through its ReclaimCleanUp into the free list; once the
// free list holds `maxFree` objects, returning ones are destroyed instead.
// The pool stays alive while any of its objects is out.
#include <vek/core/CPoolObject.h>
#include <vek/core/CollectionStorage.h>

namespace Quorvex::Vek {

class VEK_API CPoolBase : public CObject {
public:
    enum : uint32_t { Type = Four("pool") };

    // An object with one reference for the caller, or null when the factory
    // fails.
    CPoolObject* Get();

    int32_t GetFreeCount();
    int32_t GetMaxFree() const { return m_maxFree; }
    // Objects made by the factory over the pool's life.
    int64_t GetCreatedCount() const { return m_created.load(std::memory_order_relaxed); }

protected:
    explicit CPoolBase(int32_t maxFree, uint32_t type = Type);
    ~CPoolBase() override;

    // Makes a new object for the pool (count 1); null on failure.
    virtual CPoolObject* CreateObject() = 0;

private:
    friend class CPoolObject;
    // Takes back an object at the end of its life, with the one reference it
    // was resurrected with: true when that reference is now the free list's,
    // false (the list is full) when the object is to be destroyed.
    bool Return(CPoolObject* object);

    // Grows on demand and never throws: `maxFree` is only a bound, and a
    // failed growth just lets the returning object be destroyed.
    Detail::GrowBuffer<CPoolObject*> m_free;
    int32_t m_maxFree;
    std::atomic<int64_t> m_created{0}; // read without the lock
};

// A pool of T made with `new (fallible) T(args...)`.
template <typename T>
class CPool : public CPoolBase {
public:
    static CPool* Create(int32_t maxFree) { return new (fallible) CPool(maxFree); }

    T* Get() { return static_cast<T*>(CPoolBase::Get()); }

protected:
    explicit CPool(int32_t maxFree) : CPoolBase(maxFree) {}
    CPoolObject* CreateObject() override { return new (fallible) T(); }
};

} // namespace Quorvex::Vek
