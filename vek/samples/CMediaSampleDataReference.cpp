#include <vek/samples/CMediaSampleDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CMediaSampleDataReference::CMediaSampleDataReference(uint32_t type) : CObject(type) {}

CMediaSampleDataReference::~CMediaSampleDataReference() = default;

int CMediaSampleDataReference::Lock(unsigned char*& data, int32_t& length)
{
    data = nullptr;
    length = 0;
    Log(LogLevel::Error, "CMediaSampleDataReference::Lock: reference of type 0x%08x has no bytes in memory\n",
        GetType());
    return RESULT_NOT_SUPPORTED;
}

int CMediaSampleDataReference::Unlock()
{
    return RESULT_OK;
}

int CMediaSampleDataReference::SetLength(int32_t length)
{
    Log(LogLevel::Error, "CMediaSampleDataReference::SetLength: length of type 0x%08x is fixed, refused %d\n",
        GetType(), length);
    return RESULT_NOT_SUPPORTED;
}

} // namespace Quorvex::Vek
