#include <vek/io/CExternalStream.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/ExternalStream.h>

namespace Quorvex::Vek {

// Every call into the host runs under the adapter's lock, so that Detach
// (taking the same lock) cannot return while the host is in use. An
// uncontended lock costs little next to the host's own input/output.
class CExternalStream::Use {
public:
    explicit Use(CExternalStream& stream) : m_stream(stream) { m_stream.m_lock.Enter(); }
    ~Use() { m_stream.m_lock.Exit(); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    ExternalStream* host() const { return m_stream.m_host; }

private:
    CExternalStream& m_stream;
};

CExternalStream::CExternalStream(ExternalStream* host) : m_host(host)
{
}

CExternalStream::~CExternalStream() = default;

void CExternalStream::Detach()
{
    Use use(*this);
    m_host = nullptr;
}

bool CExternalStream::IsDetached()
{
    Use use(*this);
    return m_host == nullptr;
}

bool CExternalStream::CanRead()
{
    Use use(*this);
    return use.host() && use.host()->CanRead();
}

bool CExternalStream::CanSeek()
{
    Use use(*this);
    return use.host() && use.host()->CanSeek();
}

bool CExternalStream::CanWrite()
{
    Use use(*this);
    return use.host() && use.host()->CanWrite();
}

int64_t CExternalStream::GetLength()
{
    Use use(*this);
    if (!use.host())
        return -1;
    const int64_t length = use.host()->GetLength();
    return length < 0 ? -1 : length;
}

int64_t CExternalStream::GetPosition()
{
    Use use(*this);
    if (!use.host())
        return -1;
    const int64_t position = use.host()->GetPosition();
    return position < 0 ? -1 : position;
}

int CExternalStream::Read(unsigned char* buffer, int32_t count)
{
    Use use(*this);
    if (!use.host())
        return RESULT_BAD_ORDER_ERROR;
    if (count <= 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    const int got = use.host()->Read(buffer, count);
    if (got > count) {
        Log(LogLevel::Error, "CExternalStream::Read: host returned %d bytes for %d asked\n", got,
            count);
        return RESULT_UNEXPECTED;
    }
    return got;
}

int CExternalStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    Use use(*this);
    if (!use.host())
        return RESULT_BAD_ORDER_ERROR;
    if (!use.host()->CanSeek())
        return CStream::Seek(offset, origin, newPosition);
    int64_t position = -1;
    const int result = use.host()->Seek(offset, int32_t(origin), &position);
    if (result < 0)
        return result;
    if (newPosition)
        *newPosition = position;
    return 0;
}

int CExternalStream::Write(const unsigned char* buffer, int32_t count)
{
    Use use(*this);
    if (!use.host())
        return RESULT_BAD_ORDER_ERROR;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (count == 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    const int put = use.host()->Write(buffer, count);
    if (put > count) {
        Log(LogLevel::Error, "CExternalStream::Write: host reported %d bytes for %d given\n", put,
            count);
        return RESULT_UNEXPECTED;
    }
    return put;
}

int CExternalStream::Flush()
{
    Use use(*this);
    return use.host() ? use.host()->Flush() : RESULT_BAD_ORDER_ERROR;
}

} // namespace Quorvex::Vek
