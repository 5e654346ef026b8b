#include <vek/core/CPoolBase.h>

namespace Quorvex::Vek {

CPoolBase::CPoolBase(int32_t maxFree, uint32_t type) : CObject(type), m_maxFree(maxFree < 0 ? 0 : maxFree) {}

CPoolBase::~CPoolBase()
{
    // Free objects hold no pool reference, so releasing them destroys them.
    while (m_free.Count() > 0)
        m_free.Take(m_free.Count() - 1)->Release();
}

CPoolObject* CPoolBase::Get()
{
    CPoolObject* object = nullptr;
    {
        CAutoLock guard(this);
        if (m_free.Count() > 0)
            object = m_free.Take(m_free.Count() - 1);
    }
    if (!object) {
        object = CreateObject();
        if (!object)
            return nullptr;
        m_created.fetch_add(1, std::memory_order_relaxed);
    }
    object->Pool(this);
    return object;
}

int32_t CPoolBase::GetFreeCount()
{
    CAutoLock guard(this);
    return m_free.Count();
}

bool CPoolBase::Return(CPoolObject* object)
{
    CAutoLock guard(this);
    return m_free.Count() < m_maxFree && m_free.Insert(m_free.Count(), std::move(object));
}

} // namespace Quorvex::Vek
