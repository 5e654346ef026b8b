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

bool CPoolObject::Reclaim(CObject* object)
{
    auto* pooled = static_cast<CPoolObject*>(object);
    if (!pooled->m_pool)
        return false;
    pooled->ReclaimCleanUp();
    // The object's reference to its pool moves here: it holds the pool while
    // the object goes back (the object may be handed out again at once, and
    // its pool reference is then the new user's).
    RObject<CPoolBase> pool = std::move(pooled->m_pool);
    return pool->Return(pooled);
}

} // namespace Quorvex::Vek
