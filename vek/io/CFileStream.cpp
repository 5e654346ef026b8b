#include <vek/io/CFileStream.h>

#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek {

CFileStream::CFileStream(uint32_t type) : CStream(type)
{
}

CFileStream::~CFileStream() = default;

int CFileStream::Control(uint32_t code, int32_t size, unsigned char* data)
{
    if (code != GetReadTimeout && code != SetReadTimeout)
        return RESULT_NOT_SUPPORTED;
    if (size != int32_t(sizeof(int32_t)))
        return RESULT_ERROR;
    if (!data)
        return RESULT_ARGUMENT_NULL;
    if (code == GetReadTimeout) {
        std::memcpy(data, &m_readWaitTime, sizeof m_readWaitTime);
        return 0;
    }
    int32_t milliseconds = 0;
    std::memcpy(&milliseconds, data, sizeof milliseconds);
    return SetReadWaitTime(milliseconds);
}

int CFileStream::Open(const char* path)
{
    if (!path)
        return Open(static_cast<CString*>(nullptr));
    RObject<CString> text(CString::Create(path));
    if (!text)
        return RESULT_OUT_OF_MEMORY;
    return Open(text.Get());
}

int CFileStream::SetReadWaitTime(int32_t milliseconds)
{
    if (milliseconds > MaxReadWaitTime)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_readWaitTime = milliseconds;
    return 0;
}

} // namespace Quorvex::Vek
