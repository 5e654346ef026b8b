#include <vek/samples/CBufferDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CBufferDataReference::CBufferDataReference(CByteArray* buffer) : CMediaSampleDataReference(Type)
{
    SetBuffer(buffer);
}

CBufferDataReference::CBufferDataReference(CByteArray* buffer, int32_t length) : CMediaSampleDataReference(Type)
{
    SetBuffer(buffer);
    if (SetLength(length) < 0)
        m_available = length < 0 ? 0 : Capacity();
}

CBufferDataReference::~CBufferDataReference() = default;

void CBufferDataReference::SetBuffer(CByteArray* buffer)
{
    m_buffer = RObject<CByteArray>::FromObject(buffer);
    m_available = Capacity();
}

unsigned char* CBufferDataReference::GetData() const
{
    return m_buffer ? m_buffer->GetData() : nullptr;
}

int CBufferDataReference::Lock(unsigned char*& data, int32_t& length)
{
    data = GetData();
    length = m_available;
    if (!data && m_available > 0) {
        length = 0;
        Log(LogLevel::Error, "CBufferDataReference::Lock: no memory for %d bytes\n", m_available);
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

int CBufferDataReference::SetLength(int32_t length)
{
    if (length < 0 || length > Capacity()) {
        Log(LogLevel::Error, "CBufferDataReference::SetLength: length %d outside 0..%d\n", length, Capacity());
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_available = length;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
