#include <vek/samples/CLockedDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CLockedDataReference* CLockedDataReference::Create(CMediaSampleDataReference* reference)
{
    if (!reference) {
        Log(LogLevel::Error, "CLockedDataReference::Create: reference is null\n");
        return nullptr;
    }
    return new (fallible) CLockedDataReference(reference);
}

CLockedDataReference::CLockedDataReference(CMediaSampleDataReference* reference)
    : CObject(0), m_reference(RObject<CMediaSampleDataReference>::FromObject(reference))
{
    m_lockResult = m_reference->Lock(m_data, m_length);
    if (m_lockResult < 0) {
        m_data = nullptr;
        m_length = 0;
    }
}

CLockedDataReference::~CLockedDataReference()
{
    if (m_lockResult >= 0)
        m_reference->Unlock();
}

int CLockedDataReference::SetLength(int32_t length)
{
    if (m_lockResult < 0) {
        Log(LogLevel::Error, "CLockedDataReference::SetLength: reference is not locked (%d), length %d\n",
            m_lockResult, length);
        return RESULT_BAD_ORDER_ERROR;
    }
    const int result = m_reference->SetLength(length);
    if (result < 0)
        return result;
    // References keep their bytes in place when the length changes.
    m_length = length;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
