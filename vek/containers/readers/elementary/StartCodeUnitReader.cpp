#include <vek/containers/readers/elementary/StartCodeUnitReader.h>

#include <algorithm>
#include <cstring>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

StartCodeUnitReader::StartCodeUnitReader() = default;

StartCodeUnitReader::~StartCodeUnitReader() = default;

int StartCodeUnitReader::Reset(CStream* stream, int64_t origin, int32_t headCapacity)
{
    if (!stream)
        return RESULT_ARGUMENT_NULL;
    if (headCapacity < 1 || headCapacity > BlockSize || origin < 0) {
        Log(LogLevel::Error, "StartCodeUnitReader::Reset: head capacity %d or origin %lld out of range\n", headCapacity,
            static_cast<long long>(origin));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    // A short file needs no more than itself: probing many small inputs
    // then costs no megabyte each.
    const int64_t length = stream->GetLength();
    const int64_t remaining = length >= origin ? length - origin : int64_t(BlockSize);
    const auto wanted = int32_t(std::clamp<int64_t>(remaining, MinBlockSize, BlockSize));
    if (!m_block || m_block->GetLength() < wanted)
        m_block = RObject<CByteArray>(CByteArray::Create(nullptr, wanted));
    if (!m_head || m_headCapacity != headCapacity)
        m_head = RObject<CByteArray>(CByteArray::Create(nullptr, headCapacity));
    if (!m_block || !m_head || !m_block->GetData() || !m_head->GetData()) {
        m_block = RObject<CByteArray>();
        m_head = RObject<CByteArray>();
        return RESULT_OUT_OF_MEMORY;
    }
    m_stream = RObject<CStream>::FromObject(stream);
    m_scanner.Reset();
    m_origin = origin;
    m_blockOffset = 0;
    m_blockFill = 0;
    m_headCapacity = headCapacity;
    m_headFill = 0;
    m_leadingBytes = 0;
    m_haveCurrent = false;
    m_pendingStart = false;
    m_streamEnded = false;
    return RESULT_OK;
}

int StartCodeUnitReader::FillBlock()
{
    // The scanner looks back at the end of the previous block for zeros
    // that begin a prefix: let it before the block is overwritten.
    m_scanner.Feed(nullptr, 0);
    m_blockOffset += m_blockFill;
    m_blockFill = 0;
    unsigned char* data = m_block->GetData();
    // Other users of the stream (sample data fetches) move its position:
    // every block is read from where the walk is, under the stream's monitor.
    CObject::CAutoLock lock(m_stream);
    const int sought = m_stream->Seek(m_origin + m_blockOffset, CStream::Begin);
    if (sought < 0) {
        Log(LogLevel::Error, "StartCodeUnitReader: seeking to offset %lld failed with %s\n",
            static_cast<long long>(m_origin + m_blockOffset), GetResultName(sought));
        return sought;
    }
    const int32_t capacity = m_block->GetLength();
    while (m_blockFill < capacity) {
        const int read = m_stream->Read(data + m_blockFill, capacity - m_blockFill);
        if (read < 0) {
            Log(LogLevel::Error, "StartCodeUnitReader: reading at offset %lld failed with %s\n",
                static_cast<long long>(m_origin + m_blockOffset + m_blockFill), GetResultName(read));
            return read;
        }
        if (read == 0)
            break;
        m_blockFill += read;
    }
    if (m_blockFill == 0)
        m_streamEnded = true;
    m_scanner.Feed(data, size_t(m_blockFill));
    return RESULT_OK;
}

void StartCodeUnitReader::KeepHead(const uint8_t* from, size_t count)
{
    const size_t room = size_t(m_headCapacity - m_headFill);
    const size_t taken = std::min(room, count);
    if (taken == 0)
        return;
    std::memcpy(m_head->GetData() + m_headFill, from, taken);
    m_headFill += int32_t(taken);
}

// The next prefix of the stream, reading blocks as needed and feeding the
// open unit's head from every new block. False at the end of the stream
// (result 0) or on a read failure (result negative).
bool StartCodeUnitReader::FindNextPrefix(StartCodeScanner::Hit& hit, int& result)
{
    result = RESULT_OK;
    while (!m_scanner.Next(hit)) {
        if (m_streamEnded)
            return false;
        if ((result = FillBlock()) < 0)
            return false;
        if (m_streamEnded)
            return false;
        if (m_haveCurrent)
            KeepHead(m_block->GetData(), size_t(m_blockFill));
    }
    return true;
}

int StartCodeUnitReader::Next(Unit& unit)
{
    int result = RESULT_OK;
    StartCodeScanner::Hit hit;
    if (!m_haveCurrent) {
        if (m_streamEnded)
            return 1;
        if (!FindNextPrefix(hit, result)) {
            m_leadingBytes = m_blockOffset + m_blockFill;
            return result < 0 ? result : 1;
        }
        m_leadingBytes = hit.prefixOffset;
        m_current = hit;
        m_haveCurrent = true;
        m_pendingStart = true;
    }
    if (m_pendingStart) {
        m_pendingStart = false;
        m_headFill = 0;
        KeepHead(m_block->GetData() + (m_current.payloadOffset - m_blockOffset),
                 size_t(m_blockOffset + m_blockFill - m_current.payloadOffset));
    }
    const bool found = FindNextPrefix(hit, result);
    if (result < 0)
        return result;
    const int64_t end = found ? hit.prefixOffset : m_blockOffset + m_blockFill;
    unit.start = m_origin + m_current.prefixOffset;
    unit.payload = m_origin + m_current.payloadOffset;
    unit.end = m_origin + end;
    unit.headSize = int32_t(std::min<int64_t>(m_headFill, end - m_current.payloadOffset));
    unit.head = m_head->GetData();
    if (!found) {
        m_haveCurrent = false;
        return RESULT_OK;
    }
    // The returned head stays valid until the next call, which starts the
    // new unit's head from the block that holds its first byte.
    m_current = hit;
    m_pendingStart = true;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
