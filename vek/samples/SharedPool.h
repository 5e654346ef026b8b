#pragma once

// The process-wide pool of one sample or metadata class, made at first use
// and kept for the life of the process. Include only from a .cpp of the
// library: each class's Create keeps its slot there, so the DLL and its
// users share one pool rather than one per module.
#include <atomic>

#include <vek/core/CPoolBase.h>

namespace Quorvex::Vek::Detail {

// An object from the pool in `slot` (one reference for the caller), making
// the pool with `maxFree` free places first; null without memory. A failed
// pool creation is retried by the next call.
template <typename T>
T* TakeFromSharedPool(std::atomic<CPool<T>*>& slot, int32_t maxFree)
{
    CPool<T>* pool = slot.load(std::memory_order_acquire);
    if (!pool) {
        CPool<T>* made = CPool<T>::Create(maxFree);
        if (!made)
            return nullptr;
        if (slot.compare_exchange_strong(pool, made, std::memory_order_acq_rel))
            pool = made;
        else
            made->Release(); // another thread was first; `pool` holds its pool
    }
    return pool->Get();
}

} // namespace Quorvex::Vek::Detail
