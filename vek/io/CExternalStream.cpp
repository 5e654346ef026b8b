#include <vek/io/CExternalStream.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/ExternalStream.h>

namespace Quorvex::Vek {

CExternalStream::CExternalStream(ExternalStream* host) : m_host(host)
{
}

CExternalStream::~CExternalStream() = default;

bool CExternalStream::CanRead()
{
    return m_host && m_host->CanRead();
}

bool CExternalStream::CanSeek()
{
    return m_host && m_host->CanSeek();
}

bool CExternalStream::CanWrite()
{
    return m_host && m_host->CanWrite();
}

int64_t CExternalStream::GetLength()
{
    if (!m_host)
        return -1;
    const int64_t length = m_host->GetLength();
    return length < 0 ? -1 : length;
}

int64_t CExternalStream::GetPosition()
{
    if (!m_host)
        return -1;
    const int64_t position = m_host->GetPosition();
    return position < 0 ? -1 : position;
}

int CExternalStream::Read(unsigned char* buffer, int32_t count)
{
    if (!m_host)
        return RESULT_NULL_POINTER;
    if (count <= 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    const int got = m_host->Read(buffer, count);
    if (got > count) {
        Log(LogLevel::Error, "CExternalStream::Read: host returned %d bytes for %d asked\n", got,
            count);
        return RESULT_UNEXPECTED;
    }
    return got;
}

int CExternalStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    if (!m_host)
        return RESULT_NULL_POINTER;
    if (!m_host->CanSeek())
        return CStream::Seek(offset, origin, newPosition);
    int64_t position = -1;
    const int result = m_host->Seek(offset, int32_t(origin), &position);
    if (result < 0)
        return result;
    if (newPosition)
        *newPosition = position;
    return 0;
}

int CExternalStream::Write(const unsigned char* buffer, int32_t count)
{
    if (!m_host)
        return RESULT_NULL_POINTER;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (count == 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    const int put = m_host->Write(buffer, count);
    if (put > count) {
        Log(LogLevel::Error, "CExternalStream::Write: host reported %d bytes for %d given\n", put,
            count);
        return RESULT_UNEXPECTED;
    }
    return put;
}

int CExternalStream::Flush()
{
    return m_host ? m_host->Flush() : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
