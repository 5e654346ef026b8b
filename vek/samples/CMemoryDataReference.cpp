#include <vek/samples/CMemoryDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CMemoryDataReference::CMemoryDataReference(CVideoProperties* properties, CByteArray* buffer)
    : CMediaSampleDataReference(Type),
      m_properties(RObject<CVideoProperties>::FromObject(properties)),
      m_buffer(RObject<CByteArray>::FromObject(buffer))
{
}

CMemoryDataReference::~CMemoryDataReference() = default;

int CMemoryDataReference::Lock(unsigned char*& data, int32_t& length)
{
    data = m_buffer ? m_buffer->GetData() : nullptr;
    length = data ? m_buffer->GetLength() : 0;
    if (!data && m_buffer && m_buffer->GetLength() > 0) {
        Log(LogLevel::Error, "CMemoryDataReference::Lock: no memory for %d bytes\n", m_buffer->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
