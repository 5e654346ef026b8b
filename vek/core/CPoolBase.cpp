#include <vek/core/CPoolBase.h>

namespace Quorvex::Vek {

CPoolBase::CPoolBase(int32_t maxFree, uint32_t type) : CObject(type), m_maxFree(maxFree < 0 ? 0 : maxFree)
{
    m_free.reserve(size_t(m_maxFree));
}

CPoolBase::~CPoolBase()
{
    // Free objects hold no pool reference, so releasing them destroys them.
    for (CPoolObject* object : m_free)
        object->Release();
}

CPoolObject* CPoolBase::Get()
{
    CPoolObject* object = nullptr;
    {
        CAutoLock guard(this);
        if (!m_free.empty()) {
            object = m_free.back();
            m_free.pop_back();
        }
    }
    if (!object) {
        object = CreateObject();
        if (!object)
            return nullptr;
        CAutoLock guard(this);
        ++m_created;
    }
    object->Pool(this);
    return object;
}

int32_t CPoolBase::GetFreeCount()
{
    CAutoLock guard(this);
    return int32_t(m_free.size());
}

void CPoolBase::Return(CPoolObject* object)
{
    CAutoLock guard(this);
    if (int32_t(m_free.size()) >= m_maxFree)
        return; // not kept: the object is destroyed by its Release
    object->Acquire();
    m_free.push_back(object);
}

} // namespace Quorvex::Vek
