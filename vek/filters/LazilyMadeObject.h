#pragma once

// An object made at its first use and published atomically, so one thread
// may look for it while another is making it (a filter's queues: the
// writing thread makes them, a reading thread may ask first). Holds one
// reference, released with the holder.
#include <atomic>

#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename T>
class LazilyMadeObject {
public:
    LazilyMadeObject() = default;
    LazilyMadeObject(const LazilyMadeObject&) = delete;
    LazilyMadeObject& operator=(const LazilyMadeObject&) = delete;
    ~LazilyMadeObject()
    {
        if (T* object = Get())
            object->Release();
    }

    // Borrowed; null until made.
    T* Get() const { return m_object.load(std::memory_order_acquire); }

    // The object, made by `make()` (a new reference or null) when there is
    // none yet; null when it cannot be made. When two threads make it at
    // once, one object wins and the other is released.
    template <typename Make>
    T* GetOrMake(Make make)
    {
        T* object = Get();
        if (object)
            return object;
        T* made = make();
        if (!made)
            return nullptr;
        if (m_object.compare_exchange_strong(object, made, std::memory_order_acq_rel))
            return made;
        made->Release();
        return object;
    }

private:
    std::atomic<T*> m_object{nullptr};
};

} // namespace Quorvex::Vek
