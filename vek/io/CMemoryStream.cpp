#include <vek/io/CMemoryStream.h>

#include <vek/core/CByteArray.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace Quorvex::Vek {

namespace {

constexpr int32_t kDefaultCapacity = 32;
constexpr int64_t kMaxSize = 0x7FFFFFFF;

} // namespace

CMemoryStream::CMemoryStream() : CStream(Type), m_growable(true)
{
    Attach(new (fallible) CByteArray(kDefaultCapacity), 0);
}

CMemoryStream::CMemoryStream(int32_t capacity) : CStream(Type)
{
    Attach(new (fallible) CByteArray(std::max(capacity, 0)), 0);
}

CMemoryStream::CMemoryStream(int32_t count, const unsigned char* bytes) : CStream(Type)
{
    Attach(CByteArray::Create(bytes, std::max(count, 0)), 0);
    if (m_buffer)
        m_length = m_buffer->GetLength();
}

CMemoryStream::CMemoryStream(CByteArray* buffer) : CStream(Type)
{
    if (buffer)
        buffer->Acquire();
    Attach(buffer, 0);
    if (m_buffer)
        m_length = m_buffer->GetLength();
}

CMemoryStream::CMemoryStream(CByteArray* buffer, int32_t offset, int32_t count) : CStream(Type)
{
    if (!buffer)
        return;
    buffer->Acquire();
    const int32_t arrayLength = buffer->GetLength();
    if (offset < 0 || offset > arrayLength)
        offset = arrayLength;
    Attach(buffer, offset);
    m_length = std::min(std::max(count, 0), arrayLength - offset);
}

CMemoryStream::~CMemoryStream() = default;

// Adopts one reference to `buffer` and points the stream at `offset` into it.
void CMemoryStream::Attach(CByteArray* buffer, int32_t offset)
{
    m_buffer = buffer;
    if (!buffer) {
        Log(LogLevel::Error, "CMemoryStream::CMemoryStream: RESULT_OUT_OF_MEMORY\n");
        return;
    }
    unsigned char* start = buffer->GetData();
    m_data = start ? start + offset : nullptr;
    m_capacity = start ? buffer->GetLength() - offset : 0;
}

int CMemoryStream::SetLength(int64_t length)
{
    if (length < 0 || length > m_capacity)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_length = int32_t(length);
    return 0;
}

CByteArray* CMemoryStream::GetBuffer() const
{
    if (m_buffer)
        m_buffer->Acquire();
    return m_buffer;
}

CByteArray* CMemoryStream::ToByteArray() const
{
    return CByteArray::Create(m_data, m_data ? m_length : 0);
}

int CMemoryStream::Read(unsigned char* buffer, int32_t count)
{
    if (!m_data || m_position < 0)
        return RESULT_BAD_ORDER_ERROR;
    const int64_t available = std::max<int64_t>(m_length - m_position, 0);
    // A negative count comes back unchanged, as no bytes are moved.
    const int32_t n = int32_t(std::min<int64_t>(available, count));
    if (n < 1)
        return n;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    std::memcpy(buffer, m_data + m_position, size_t(n));
    m_position += n;
    return n;
}

int32_t CMemoryStream::ReadByte()
{
    if (!m_data || m_position < 0 || m_position >= m_length)
        return -1;
    return m_data[m_position++];
}

int CMemoryStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    int64_t target = 0;
    switch (ResolveSeek(offset, origin, m_position, m_length, kMaxSize, target)) {
    case SeekTarget::OutOfRange: return RESULT_ARGUMENT_OUT_OF_RANGE;
    case SeekTarget::Known: m_position = target; break;
    case SeekTarget::Unknown: break;
    }
    if (newPosition)
        *newPosition = m_position;
    return 0;
}

// The old array goes to `retired` instead of being released: a write may be
// copying from it (a stream written from its own GetData()).
int CMemoryStream::Expand(int64_t needed, RObject<CByteArray>& retired)
{
    if (!m_growable || needed <= m_capacity || needed > kMaxSize)
        return 0;
    // Twice the size asked for, not twice the old capacity.
    const int32_t capacity = int32_t(std::min<int64_t>(2 * needed, kMaxSize));
    CByteArray* grown = new (fallible) CByteArray(capacity);
    unsigned char* data = grown ? grown->GetData() : nullptr;
    if (!data) {
        Log(LogLevel::Error, "CMemoryStream::Expand: RESULT_OUT_OF_MEMORY (%d bytes)\n", capacity);
        if (grown)
            grown->Release();
        return RESULT_OUT_OF_MEMORY;
    }
    if (m_data && m_length > 0)
        std::memcpy(data, m_data, size_t(m_length));
    retired = std::move(m_buffer);
    m_buffer = grown;
    m_data = data;
    m_capacity = capacity;
    return 0;
}

int CMemoryStream::PrepareWrite(int32_t count, RObject<CByteArray>& retired)
{
    if ((!m_data && !m_growable) || m_position < 0)
        return RESULT_END_OF_STREAM;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    // A growable stream whose first array could not be had tries again here.
    const int grown = Expand(m_position + count, retired);
    if (grown < 0)
        return grown;
    if (m_position + count > m_capacity)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    return 0;
}

void CMemoryStream::Advance(int32_t count)
{
    m_position += count;
    if (m_position > m_length)
        m_length = int32_t(m_position);
}

int CMemoryStream::Write(CByteArray* buffer)
{
    if (!buffer)
        return 0;
    return CStream::Write(buffer);
}

int CMemoryStream::Write(const unsigned char* buffer, int32_t count)
{
    RObject<CByteArray> retired; // keeps `buffer` alive if it lay in the old array
    const int result = PrepareWrite(count, retired);
    if (result < 0)
        return result;
    if (count > 0) {
        if (!buffer)
            return RESULT_ARGUMENT_NULL;
        std::memmove(m_data + m_position, buffer, size_t(count));
    }
    Advance(count);
    return count;
}

int CMemoryStream::Write(unsigned char value, int32_t count)
{
    RObject<CByteArray> retired;
    const int result = PrepareWrite(count, retired);
    if (result < 0)
        return result;
    std::memset(m_data + m_position, value, size_t(count));
    Advance(count);
    return count;
}

int CMemoryStream::WriteByte(unsigned char value)
{
    RObject<CByteArray> retired;
    const int ready = PrepareWrite(1, retired);
    if (ready == RESULT_OUT_OF_MEMORY)
        return ready;
    if (ready < 0)
        return RESULT_END_OF_STREAM;
    m_data[m_position] = value;
    Advance(1);
    return 1;
}

} // namespace Quorvex::Vek
