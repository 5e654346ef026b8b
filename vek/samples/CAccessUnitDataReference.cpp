#include <vek/samples/CAccessUnitDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CAccessUnitDataReference::CAccessUnitDataReference(CByteArray* unit)
    : CMediaSampleDataReference(Type), m_unit(RObject<CByteArray>::FromObject(unit))
{
}

CAccessUnitDataReference::~CAccessUnitDataReference() = default;

int CAccessUnitDataReference::Lock(unsigned char*& data, int32_t& length)
{
    data = nullptr;
    length = 0;
    if (!m_unit) {
        Log(LogLevel::Error, "CAccessUnitDataReference::Lock: the access unit was already released\n");
        return RESULT_BAD_ORDER_ERROR;
    }
    data = m_unit->GetData();
    if (!data && m_unit->GetLength() > 0) {
        Log(LogLevel::Error, "CAccessUnitDataReference::Lock: no memory for %d bytes\n", m_unit->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    length = data ? m_unit->GetLength() : 0;
    return RESULT_OK;
}

int CAccessUnitDataReference::Unlock()
{
    m_unit.SafeRelease();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
