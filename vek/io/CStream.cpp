#include <vek/io/CStream.h>

#include <vek/core/CheckedMath.h>

#include <vek/core/CByteArray.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <algorithm>
#include <memory>
#include <new>

namespace Quorvex::Vek {

namespace {

constexpr int32_t kSkipPieceSize = 65536;
constexpr int32_t kSmallSkipSize = 4096;

} // namespace

CStream::CStream(uint32_t type) : CObject(type)
{
}

CStream::~CStream() = default;

int CStream::Control(uint32_t /*code*/, int32_t /*size*/, unsigned char* /*data*/)
{
    return RESULT_NOT_SUPPORTED;
}

bool CStream::CanRead()
{
    return false;
}

bool CStream::CanSeek()
{
    return false;
}

bool CStream::CanWrite()
{
    return false;
}

int64_t CStream::GetLength()
{
    return -1;
}

int64_t CStream::GetAvailableLength()
{
    return GetLength();
}

int CStream::SetLength(int64_t /*length*/)
{
    return RESULT_NOT_IMPLEMENTED;
}

int64_t CStream::GetPosition()
{
    return -1;
}

int CStream::Read(CByteArray* buffer)
{
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    return Read(buffer->GetData(), buffer->GetLength());
}

int32_t CStream::ReadByte()
{
    unsigned char value = 0;
    if (Read(&value, 1) != 1)
        return -1;
    return value;
}

CStream::SeekTarget CStream::ResolveSeek(int64_t offset, SeekOrigin origin, int64_t position, int64_t length,
                                         int64_t maximum, int64_t& target)
{
    int64_t base = 0;
    switch (origin) {
    case Begin: base = 0; break;
    case Current: base = position; break;
    case End: base = length; break;
    default: return SeekTarget::Unknown;
    }
    if (!Checked::Add(base, offset, &target) || target < 0 || target > maximum)
        return SeekTarget::OutOfRange;
    return SeekTarget::Known;
}

int CStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    if (origin != Current)
        return RESULT_NOT_IMPLEMENTED;
    int result = 0;
    if (offset > 0) {
        // Short skips (padding, small chunks) are the common case: they use
        // the stack, and only long ones take a heap buffer of a full piece.
        unsigned char small[kSmallSkipSize];
        std::unique_ptr<unsigned char[]> large;
        unsigned char* scratch = small;
        if (offset > kSmallSkipSize) {
            large.reset(new (fallible) unsigned char[kSkipPieceSize]);
            if (!large) {
                Log(LogLevel::Error, "CStream::Seek: RESULT_OUT_OF_MEMORY\n");
                return RESULT_OUT_OF_MEMORY;
            }
            scratch = large.get();
        }
        int64_t remaining = offset;
        while (remaining > 0) {
            const int32_t piece = int32_t(std::min<int64_t>(remaining, kSkipPieceSize));
            result = Read(scratch, piece);
            if (result < 0)
                return result;
            if (result == 0)
                break; // end of data: nothing more to skip
            remaining -= result;
        }
    }
    if (newPosition)
        *newPosition = GetPosition();
    return result;
}

int CStream::Write(CByteArray* buffer, int32_t offset, int32_t count)
{
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    // Compared by subtraction so that a huge count cannot wrap past the check.
    if (offset < 0 || count < 0 || offset > buffer->GetLength() ||
        count > buffer->GetLength() - offset)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    unsigned char* data = buffer->GetData();
    if (!data && count > 0)
        return RESULT_OUT_OF_MEMORY;
    return Write(data ? data + offset : nullptr, count);
}

int CStream::Write(CByteArray* buffer)
{
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    return Write(buffer->GetData(), buffer->GetLength());
}

int CStream::WriteByte(unsigned char value)
{
    return Write(&value, 1);
}

int CStream::Flush()
{
    return 0;
}

void CStream::Close()
{
    Flush();
}

} // namespace Quorvex::Vek
