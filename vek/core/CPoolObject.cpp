#include <vek/core/CPoolObject.h>

#include <vek/core/CPoolBase.h>

namespace Quorvex::Vek {

CPoolObject::CPoolObject(uint32_t type) : CObject(type, &CPoolObject::Reclaim) {}

CPoolObject::~CPoolObject() = default;

void CPoolObject::Pool(CPoolBase* pool)
{
    m_pool = RObject<CPoolBase>::FromObject(pool);
}

void CPoolObject::ReclaimCleanUp() {}

void CPoolObject::Reclaim(CObject* object)
{
    auto* pooled = static_cast<CPoolObject*>(object);
    if (!pooled->m_pool)
        return;
    pooled->ReclaimCleanUp();
    // Hold the pool while handing the object back: clearing the object's
    // own reference may otherwise drop the pool's last count.
    RObject<CPoolBase> pool = pooled->m_pool;
    pooled->m_pool.SafeRelease();
    pool->Return(pooled);
}

} // namespace Quorvex::Vek
