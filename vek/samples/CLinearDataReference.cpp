#include <vek/samples/CLinearDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CLinearDataReference* CLinearDataReference::Create(int32_t length)
{
    if (length < 0) {
        Log(LogLevel::Error, "CLinearDataReference::Create: length %d is negative\n", length);
        return nullptr;
    }
    // One byte at least, so that an empty block still has an address.
    unsigned char* data = new (fallible) unsigned char[length > 0 ? length : 1]();
    if (!data) {
        Log(LogLevel::Error, "CLinearDataReference::Create: no memory for %d bytes\n", length);
        return nullptr;
    }
    auto* reference = new (fallible) CLinearDataReference(data, length);
    if (!reference) {
        delete[] data;
        Log(LogLevel::Error, "CLinearDataReference::Create: no memory for the reference\n");
    }
    return reference;
}

CLinearDataReference::CLinearDataReference(unsigned char* data, int32_t length)
    : CMediaSampleDataReference(Type), m_data(data), m_capacity(length), m_length(length)
{
}

CLinearDataReference::~CLinearDataReference()
{
    delete[] m_data;
}

int CLinearDataReference::Lock(unsigned char*& data, int32_t& length)
{
    data = m_data;
    length = m_length;
    return RESULT_OK;
}

int CLinearDataReference::SetLength(int32_t length)
{
    if (length < 0 || length > m_capacity) {
        Log(LogLevel::Error, "CLinearDataReference::SetLength: length %d outside 0..%d\n", length, m_capacity);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_length = length;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
