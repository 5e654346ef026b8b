#include <vek/containers/readers/mov/MovFileWalk.h>

#include <algorithm>
#include <cstring>
#include <vek/core/Allocation.h>

#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>
#include <vek/io/CFileStream.h>

namespace Quorvex::Vek {

namespace {

bool IsBoxTypeCharacter(uint8_t c)
{
    return (c >= 0x20 && c < 0x7F) || c == 0xA9; // QuickTime's '©' atoms
}

bool LooksLikeBoxType(uint32_t type)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        if (!IsBoxTypeCharacter(uint8_t(type >> shift)))
            return false;
    return true;
}

} // namespace

void MovFileWalk::Start(CStream* stream, const char* owner)
{
    m_owner = owner;
    m_stream = RObject<CStream>::FromObject(stream);
    m_position = 0;
    m_bytesRead = 0;
    m_finished = false;
    m_resumeAllowed = false;
    m_previousType = 0;
    m_peeked = 0;
    m_peekAt = -1;
    m_knownFragments.Clear();
    int32_t wait = 0;
    m_following = stream->Control(CFileStream::GetReadTimeout, int32_t(sizeof wait),
                                  reinterpret_cast<unsigned char*>(&wait)) >= 0 &&
                  wait > 0;
    m_length = 0;
    RefreshLength();
}

void MovFileWalk::RefreshLength()
{
    const int64_t length = m_stream->GetAvailableLength();
    if (length > m_length)
        m_length = length;
}

int MovFileWalk::AddKnownFragment(int64_t offset)
{
    const int32_t count = m_knownFragments.Count();
    return m_knownFragments.Insert(count, int64_t(offset)) ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

void MovFileWalk::SortKnownFragments()
{
    int64_t* begin = m_knownFragments.Data();
    int64_t* end = begin + m_knownFragments.Count();
    std::sort(begin, end);
    m_knownFragments.Truncate(int32_t(std::unique(begin, end) - begin));
}

// Reads up to `count` bytes at `position`; fewer only where the file ends
// (after the stream's own wait when it follows a growing file).
int MovFileWalk::ReadAt(int64_t position, unsigned char* buffer, int32_t count)
{
    CObject::CAutoLock lock(m_stream); // a stream context hands the reader one stream for everything
    int result = m_stream->Seek(position, CStream::Begin);
    if (result < 0)
        return result;
    int32_t got = 0;
    while (got < count) {
        result = m_stream->Read(buffer + got, count - got);
        if (result < 0)
            return result;
        if (result == 0)
            break;
        got += result;
    }
    m_bytesRead += got;
    return got;
}

// Makes at least `count` bytes from m_position available in m_peek (fewer
// at the end of the file). A window read earlier is reused unless the file
// is growing: a writer may yet rewrite what was read.
int MovFileWalk::Peek(int32_t count)
{
    if (!m_following && m_peekAt >= 0 && m_position >= m_peekAt && m_position - m_peekAt + count <= m_peeked)
        return RESULT_OK;
    int32_t wanted = PeekBytes;
    if (!m_following && m_length - m_position < wanted)
        wanted = int32_t(m_length - m_position);
    if (m_following && count < wanted)
        wanted = count; // a read waits until every byte asked for exists
    const int got = ReadAt(m_position, m_peek, wanted);
    if (got < 0)
        return got;
    m_peekAt = m_position;
    m_peeked = got;
    return RESULT_OK;
}

int MovFileWalk::Next(MovBox& header, bool& cut)
{
    cut = false;
    while (!m_finished) {
        if (!m_following && m_position >= m_length)
            RefreshLength();
        if (!m_following && m_position >= m_length)
            break;
        // A followed file is asked for no byte more than the header: each
        // byte asked for is waited for.
        int result = Peek(m_following ? 8 : m_previousType == Four("moof") ? HeaderBytes : PeekBytes);
        if (result >= 0 && m_following && m_peeked == 8 && BigEndian::Load32(m_peek) == 1)
            result = Peek(HeaderBytes);
        if (result < 0)
            return result;
        const int64_t inWindow = m_position - m_peekAt;
        if (m_peeked - inWindow < 8) {
            if (m_peeked > inWindow)
                Log(LogLevel::Warning, "%s: %lld stray bytes at the end of the file (%lld) are ignored\n", m_owner,
                    static_cast<long long>(m_peeked - inWindow), static_cast<long long>(m_position));
            break;
        }
        uint64_t size = 0;
        result = ParseHeader(header, size);
        if (result > 0)
            break;
        if (result < 0) {
            if (!m_resumeAllowed)
                return result;
            if ((result = Resume()) != RESULT_OK)
                return result;
            continue;
        }
        if (m_following)
            RefreshLength();
        // ParseHeader has bounded size by what is left below INT64_MAX.
        const int64_t end = m_position + int64_t(size);
        cut = !m_following && end > m_length;
        m_previousType = header.type;
        m_position = cut ? m_length : end;
        // A box that runs to the end of the file is the last one, even in a
        // file that grows.
        if (cut || BigEndian::Load32(m_peek + (header.fileOffset - m_peekAt)) == 0)
            m_finished = true;
        return RESULT_OK;
    }
    m_finished = true;
    return 1;
}

// The header at m_position, from the peek window: 0; 1 for a 64-bit header
// the file ends inside; RESULT_FORMAT_ERROR (logged) for one that cannot be
// a box.
int MovFileWalk::ParseHeader(MovBox& header, uint64_t& size)
{
    const unsigned char* bytes = m_peek + (m_position - m_peekAt);
    const int64_t available = m_peeked - (m_position - m_peekAt);
    header = MovBox();
    header.type = BigEndian::Load32(bytes + 4);
    header.fileOffset = m_position;
    header.headerSize = 8;
    size = BigEndian::Load32(bytes);
    if (size == 1) {
        if (available < HeaderBytes)
            return 1;
        size = BigEndian::Load64(bytes + 8);
        header.headerSize = HeaderBytes;
    } else if (size == 0) {
        RefreshLength();
        size = uint64_t(m_length - m_position); // to the end of the file
    }
    const char* problem = nullptr;
    if (!LooksLikeBoxType(header.type))
        problem = "a type that is not text";
    else if (size < header.headerSize)
        problem = "a size below its header";
    else if (size > uint64_t(INT64_MAX - m_position))
        problem = "a size past the largest offset";
    if (problem) {
        Log(LogLevel::Error, "%s: the box at %lld has %s (type 0x%08X, size %llu)\n", m_owner,
            static_cast<long long>(m_position), problem, header.type, static_cast<unsigned long long>(size));
        return RESULT_FORMAT_ERROR;
    }
    header.size = size_t(size - header.headerSize);
    if (uint64_t(header.size) != size - header.headerSize) // 32-bit hosts
        header.size = SIZE_MAX;
    return RESULT_OK;
}

int MovFileWalk::Resume()
{
    const int64_t* begin = m_knownFragments.Data();
    const int64_t* next = std::upper_bound(begin, begin + m_knownFragments.Count(), m_position);
    if (next != begin + m_knownFragments.Count()) {
        Log(LogLevel::Warning, "%s: the walk resumes at the 'moof' at %lld that 'mfra' names\n", m_owner,
            static_cast<long long>(*next));
        m_position = *next;
        m_previousType = 0;
        return RESULT_OK;
    }
    int64_t found = -1;
    const int result = ScanForFragment(m_position + 1, found);
    if (result < 0)
        return result;
    if (found < 0) {
        Log(LogLevel::Warning, "%s: no 'moof' within %lld bytes after %lld; the walk ends there\n", m_owner,
            static_cast<long long>(MaxResyncBytes), static_cast<long long>(m_position));
        m_finished = true;
        return 1;
    }
    Log(LogLevel::Warning, "%s: the walk resumes at the 'moof' found at %lld\n", m_owner,
        static_cast<long long>(found));
    m_position = found;
    m_previousType = 0;
    return RESULT_OK;
}

// The first offset from `from` on that holds a plausible 'moof' header: the
// tag, a size that holds at least an 'mfhd', and 'mfhd' as first child.
int MovFileWalk::ScanForFragment(int64_t from, int64_t& found)
{
    enum : int32_t { Overlap = 16, MinimumMoof = 8 + 16 };
    found = -1;
    unsigned char* block = new (fallible) unsigned char[ScanBlock];
    if (!block)
        return RESULT_OUT_OF_MEMORY;
    const int64_t limit = from > INT64_MAX - MaxResyncBytes ? INT64_MAX : from + MaxResyncBytes;
    int result = RESULT_OK;
    for (int64_t start = from; start < limit && found < 0;) {
        const int got = ReadAt(start, block, ScanBlock);
        if (got < 0) {
            result = got;
            break;
        }
        for (int32_t i = 0; i + Overlap <= got && found < 0; ++i) {
            if (std::memcmp(block + i + 4, "moof", 4) == 0 && std::memcmp(block + i + 12, "mfhd", 4) == 0 &&
                BigEndian::Load32(block + i) >= uint32_t(MinimumMoof))
                found = start + i;
        }
        if (got < ScanBlock)
            break;
        start += int64_t(ScanBlock) - int64_t(Overlap);
    }
    delete[] block;
    return result;
}

int MovFileWalk::ReadPayload(const MovBox& header, RObject<CByteArray>& bytes, MovBox& box)
{
    if (header.size > MaxPayloadBytes) {
        Log(LogLevel::Error, "%s: '%s' at %lld holds %llu bytes, more than the %u this reader reads\n", m_owner,
            FourCCText(header.type).c_str(), static_cast<long long>(header.fileOffset),
            static_cast<unsigned long long>(header.size), unsigned(MaxPayloadBytes));
        return RESULT_FORMAT_ERROR;
    }
    // Memory only for bytes the file holds: a followed file is waited for
    // up to the payload's last byte first.
    const int64_t offset = header.PayloadOffset();
    const int32_t size = int32_t(header.size);
    if (size > 0 && m_following) {
        unsigned char last = 0;
        if (ReadAt(offset + size - 1, &last, 1) == 1)
            RefreshLength();
    }
    if (m_length - offset < size) {
        return DropCutBox(header);
    }
    bytes = RObject<CByteArray>(CByteArray::Create(nullptr, size));
    if (!bytes || (size > 0 && !bytes->GetData()))
        return RESULT_OUT_OF_MEMORY;
    // What the peek window already holds is not read again.
    int32_t copied = 0;
    if (!m_following && offset >= m_peekAt && offset - m_peekAt < m_peeked) {
        const int64_t held = m_peeked - (offset - m_peekAt);
        copied = held < size ? int32_t(held) : size;
        if (copied > 0)
            std::memcpy(bytes->GetData(), m_peek + (offset - m_peekAt), size_t(copied));
    }
    int got = size;
    if (copied < size) {
        got = ReadAt(offset + copied, bytes->GetData() + copied, size - copied);
        if (got >= 0)
            got += copied;
    }
    if (got < 0) {
        Log(LogLevel::Error, "%s: reading '%s' at %lld failed with %s\n", m_owner, FourCCText(header.type).c_str(),
            static_cast<long long>(header.fileOffset), GetResultName(got));
        return got;
    }
    if (got < size || (m_following && header.type == Four("moof") && !WaitForFragmentData(header))) {
        return DropCutBox(header);
    }
    box = header;
    box.payload = bytes->GetData();
    return RESULT_OK;
}

// A box the file ends inside: what a stopped writer left. The walk ends.
int MovFileWalk::DropCutBox(const MovBox& header)
{
    Log(LogLevel::Warning, "%s: '%s' at %lld is cut short where the file ends (%lld); it is dropped\n", m_owner,
        FourCCText(header.type).c_str(), static_cast<long long>(header.fileOffset), static_cast<long long>(m_length));
    m_finished = true;
    return 1;
}

// Following: waits until the 'mdat' right after `moof` is whole, so the
// fragment's samples are in the file before it is read. False when the
// file stopped growing first.
bool MovFileWalk::WaitForFragmentData(const MovBox& moof)
{
    const int64_t after = moof.fileOffset + moof.TotalSize();
    unsigned char header[HeaderBytes];
    int got = ReadAt(after, header, 8);
    if (got < 8)
        return false;
    uint64_t size = BigEndian::Load32(header);
    if (BigEndian::Load32(header + 4) != Four("mdat") || size == 0) {
        RefreshLength();
        return true;
    }
    if (size == 1) {
        if (ReadAt(after + 8, header + 8, 8) < 8)
            return false;
        size = BigEndian::Load64(header + 8);
    }
    if (size < 8 || size > uint64_t(INT64_MAX - after))
        return true; // the walk judges that header next
    unsigned char last = 0;
    got = ReadAt(after + int64_t(size) - 1, &last, 1);
    RefreshLength();
    return got == 1;
}

} // namespace Quorvex::Vek
