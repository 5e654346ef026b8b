#include <vek/io/CBufferedStream.h>

#include <vek/core/CByteArray.h>
#include <vek/core/CList.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

namespace Quorvex::Vek {

// One cache block: a copy of the inner stream's bytes at [start, start +
// valid), possibly changed (dirty) and not yet written back.
class CBufferedStream::CCacheBlock : public CObject {
public:
    explicit CCacheBlock(int32_t size) : m_array(new (fallible) CByteArray(size))
    {
        bytes = m_array ? m_array->GetData() : nullptr;
    }

    bool IsUsable() const { return bytes != nullptr; }
    int64_t End() const { return start + valid; }

    unsigned char* bytes = nullptr;
    int64_t start = -1; // -1: holds nothing
    int32_t valid = 0;
    bool dirty = false;
    uint64_t lastUse = 0;

protected:
    ~CCacheBlock() override = default;

private:
    RObject<CByteArray> m_array;
};

CBufferedStream::CBufferedStream(CStream* inner, int32_t blockSize, int32_t blockCount)
    : CStream(Type), m_inner(RObject<CStream>::FromObject(inner))
{
    m_length = inner ? std::max<int64_t>(inner->GetLength(), 0) : 0;
    if (blockSize <= 0 || blockCount <= 0)
        return;
    m_blocks = CList<CCacheBlock>::Create();
    if (!m_blocks) {
        Log(LogLevel::Error, "CBufferedStream::CBufferedStream: RESULT_OUT_OF_MEMORY\n");
        return;
    }
    m_blockSize = blockSize;
    for (int32_t i = 0; i < blockCount; ++i) {
        RObject<CCacheBlock> block(new (fallible) CCacheBlock(blockSize));
        if (!block || !block->IsUsable()) {
            Log(LogLevel::Error,
                "CBufferedStream::CBufferedStream: RESULT_OUT_OF_MEMORY after %d of %d blocks\n",
                i, blockCount);
            break;
        }
        if (m_blocks->Add(block) < 0)
            break;
    }
    if (GetBlockCount() == 0)
        m_blockSize = 0;
}

CBufferedStream::~CBufferedStream()
{
    // Keep written bytes, but leave committing to disk to an explicit Flush.
    if (m_inner && m_inner->CanWrite())
        WriteBackAll();
}

int32_t CBufferedStream::GetBlockCount() const
{
    return m_blocks ? m_blocks->GetCount() : 0;
}

CBufferedStream::CCacheBlock* CBufferedStream::BlockAt(int32_t index) const
{
    return m_blocks->Get(index);
}

int CBufferedStream::Control(uint32_t code, int32_t size, unsigned char* data)
{
    m_innerPosition = -1; // a control request may move the inner stream
    return m_inner ? m_inner->Control(code, size, data) : RESULT_NOT_SUPPORTED;
}

bool CBufferedStream::CanRead()
{
    return m_inner && m_inner->CanRead();
}

bool CBufferedStream::CanSeek()
{
    return m_inner && m_inner->CanSeek();
}

bool CBufferedStream::CanWrite()
{
    return m_inner && m_inner->CanWrite();
}

int64_t CBufferedStream::GetAvailableLength()
{
    const int64_t inner = m_inner ? m_inner->GetAvailableLength() : -1;
    return std::max(m_length, inner);
}

int CBufferedStream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition)
{
    int64_t target = 0;
    switch (ResolveSeek(offset, origin, m_position, m_length, INT64_MAX, target)) {
    case SeekTarget::OutOfRange: return RESULT_ARGUMENT_OUT_OF_RANGE;
    case SeekTarget::Known: m_position = target; break;
    case SeekTarget::Unknown: break;
    }
    if (newPosition)
        *newPosition = m_position;
    return 0;
}

// Skips the seek when the inner stream already stands there: sequential
// reads then cost one inner call each, not a seek and a read.
int CBufferedStream::SeekInner(int64_t position)
{
    if (position == m_innerPosition)
        return 0;
    const int result = m_inner->Seek(position, Begin, nullptr);
    m_innerPosition = result < 0 ? -1 : position;
    return result;
}

// ---- blocks ------------------------------------------------------------

CBufferedStream::CCacheBlock* CBufferedStream::PickVictim()
{
    CCacheBlock* victim = BlockAt(0);
    for (int32_t i = 0; i < GetBlockCount(); ++i) {
        CCacheBlock* block = BlockAt(i);
        if (block->start < 0)
            return block;
        if (block->lastUse < victim->lastUse)
            victim = block;
    }
    return victim;
}

// The block covering `position`: a cached one, or a reused victim that is
// loaded from the inner stream when `load` is set and left empty otherwise
// (for a write that covers the whole block). `fresh` tells whether the
// block was just read from the inner stream.
int32_t CBufferedStream::CachedIndex(int64_t start) const
{
    if (BlockAt(m_lastHit)->start == start)
        return m_lastHit;
    for (int32_t i = 0; i < GetBlockCount(); ++i)
        if (BlockAt(i)->start == start)
            return i;
    return -1;
}

int CBufferedStream::FindBlock(int64_t position, bool load, CCacheBlock*& block, bool& fresh)
{
    const int64_t start = position / m_blockSize * m_blockSize;
    fresh = false;
    const int32_t cached = CachedIndex(start);
    if (cached >= 0) {
        m_lastHit = cached;
        block = BlockAt(cached);
        block->lastUse = ++m_clock;
        return 0;
    }
    CCacheBlock* victim = PickVictim();
    if (victim->dirty) {
        const int result = WriteBack(*victim);
        if (result < 0)
            return result;
    }
    if (load) {
        const int result = LoadBlock(*victim, start);
        if (result < 0)
            return result;
        fresh = true;
    } else {
        victim->start = start;
        victim->valid = 0;
        victim->dirty = false;
    }
    for (int32_t i = 0; i < GetBlockCount(); ++i)
        if (BlockAt(i) == victim)
            m_lastHit = i;
    victim->lastUse = ++m_clock;
    block = victim;
    return 0;
}

int CBufferedStream::LoadBlock(CCacheBlock& block, int64_t start)
{
    if (!m_inner->CanSeek())
        return RESULT_BAD_ORDER_ERROR;
    block.start = -1;
    block.valid = 0;
    block.dirty = false;
    const int got = ReadInner(start, block.bytes, m_blockSize);
    if (got < 0)
        return got;
    block.start = start;
    block.valid = got;
    // Bytes up to the buffered length that the inner stream does not hold
    // yet lie in a gap that a pending write beyond them will create.
    const int64_t wanted = std::min<int64_t>(m_blockSize, m_length - start);
    if (wanted > block.valid) {
        std::memset(block.bytes + block.valid, 0, size_t(wanted - block.valid));
        block.valid = int32_t(wanted);
    }
    return 0;
}

// Reads what the inner stream now holds after the block's valid bytes;
// those bytes were never written through the cache, so a dirty block
// stays coherent without a write-back.
int CBufferedStream::TopUp(CCacheBlock& block)
{
    if (!m_inner->CanSeek())
        return RESULT_BAD_ORDER_ERROR;
    const int got = ReadInner(block.End(), block.bytes + block.valid, m_blockSize - block.valid);
    if (got < 0)
        return got;
    block.valid += got;
    return 0;
}

// Reads up to `count` bytes of the inner stream at `position`. A short
// piece ends the read unless the inner stream says it holds more: a file
// stream that follows a growing file has already waited for it before
// answering short, and asking again would wait a second time.
int CBufferedStream::ReadInner(int64_t position, unsigned char* buffer, int32_t count)
{
    const int sought = SeekInner(position);
    if (sought < 0)
        return sought;
    int32_t got = 0;
    while (got < count) {
        const int result = m_inner->Read(buffer + got, count - got);
        if (result < 0) {
            m_innerPosition = -1;
            return result;
        }
        if (result == 0)
            break;
        got += result;
        if (got < count && !InnerHasMore(position + got))
            break;
    }
    m_innerPosition = position + got;
    return got;
}

bool CBufferedStream::InnerHasMore(int64_t position)
{
    const int64_t available = m_inner->GetAvailableLength();
    return available < 0 || position < available;
}

int CBufferedStream::WriteBack(CCacheBlock& block)
{
    if (!m_inner->CanSeek())
        return RESULT_BAD_ORDER_ERROR;
    if (!block.dirty)
        return 0;
    if (block.start < 0)
        return RESULT_BAD_ORDER_ERROR;
    int result = SeekInner(block.start);
    if (result < 0)
        return result;
    result = m_inner->Write(block.bytes, block.valid);
    m_innerPosition = result < 0 ? -1 : block.start + result;
    if (result < 0)
        return result;
    if (result != block.valid) {
        Log(LogLevel::Error, "CBufferedStream::WriteBack: wrote %d of %d bytes at %lld\n", result,
            block.valid, static_cast<long long>(block.start));
        return RESULT_IO_ERROR;
    }
    block.dirty = false;
    return 0;
}

// Cached blocks that ended short at the old end read the new gap as zeros.
void CBufferedStream::ExtendLength(int64_t length)
{
    if (length <= m_length)
        return;
    for (int32_t i = 0; i < GetBlockCount(); ++i) {
        CCacheBlock* block = BlockAt(i);
        if (block->start < 0 || block->start >= length)
            continue;
        const int64_t wanted = std::min<int64_t>(m_blockSize, length - block->start);
        if (wanted > block->valid) {
            std::memset(block->bytes + block->valid, 0, size_t(wanted - block->valid));
            block->valid = int32_t(wanted);
        }
    }
    m_length = length;
}

// ---- reading -----------------------------------------------------------

int CBufferedStream::Read(unsigned char* buffer, int32_t count)
{
    if (!m_inner || !m_inner->CanRead())
        return RESULT_BAD_ORDER_ERROR;
    if (m_position < 0)
        return RESULT_END_OF_STREAM;
    if (count <= 0) {
        if (m_position > m_length)
            m_length = m_position;
        return 0;
    }
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    // No byte lies beyond the largest position: stop there rather than let
    // the position arithmetic overflow.
    count = int32_t(std::min<int64_t>(count, INT64_MAX - m_position));
    if (count == 0)
        return 0;
    const int got = GetBlockCount() == 0 ? PassThroughRead(buffer, count) : ReadCached(buffer, count);
    if (got < 0)
        return got;
    m_position += got;
    // Bytes past the length were found: the inner stream has grown.
    if (got > 0 && m_position > m_length)
        m_length = m_position;
    return got;
}

// Every byte a cached block covers comes from that block (dirty or not);
// other bytes are loaded a whole aligned block at a time. Only a run of
// whole aligned blocks that none of the cache holds goes straight from the
// inner stream into the caller's buffer, so the inner stream only ever sees
// aligned reads of whole blocks.
int CBufferedStream::ReadCached(unsigned char* buffer, int32_t count)
{
    int32_t got = 0;
    // Set once the inner stream has come up short in this call: it is not
    // asked again (a growing file would make each ask wait anew).
    bool innerEnded = false;
    while (got < count) {
        const int64_t position = m_position + got;
        const int32_t remaining = count - got;
        if (!innerEnded) {
            const int32_t run = UncachedRun(position, remaining);
            if (run > 0) {
                const int result = ReadInner(position, buffer + got, run);
                if (result < 0)
                    return result;
                got += result;
                if (result == run)
                    continue;
                innerEnded = true;
                // Short: the rest may lie in a gap only the cache knows about.
                if (position + result >= m_length)
                    break;
                continue;
            }
        }
        CCacheBlock* block = nullptr;
        bool fresh = false;
        int result = FindBlock(position, true, block, fresh);
        if (result < 0)
            return result;
        const int64_t offset = position - block->start;
        if (fresh) {
            innerEnded = innerEnded || block->valid < m_blockSize;
        } else if (offset >= block->valid && !innerEnded) {
            // Past what the block knows: the inner stream may have grown.
            if ((result = TopUp(*block)) < 0)
                return result;
            innerEnded = block->valid < m_blockSize;
        }
        if (offset >= block->valid)
            break;
        const int32_t n = int32_t(std::min<int64_t>(block->valid - offset, remaining));
        std::memcpy(buffer + got, block->bytes + offset, size_t(n));
        got += n;
    }
    return got;
}

// Bytes from `position` (when it starts a block) that make whole blocks of
// which the cache holds none, up to `count`; 0 when none qualify.
int32_t CBufferedStream::UncachedRun(int64_t position, int32_t count) const
{
    if (position % m_blockSize != 0)
        return 0;
    int32_t run = 0;
    while (count - run >= m_blockSize && CachedIndex(position + run) < 0)
        run += m_blockSize;
    return run;
}

int CBufferedStream::PassThroughRead(unsigned char* buffer, int32_t count)
{
    const int result = SeekInner(m_position);
    if (result < 0)
        return result;
    const int got = m_inner->Read(buffer, count);
    m_innerPosition = got < 0 ? -1 : m_position + got;
    return got;
}

// ---- writing -----------------------------------------------------------

int CBufferedStream::Write(const unsigned char* buffer, int32_t count)
{
    if (!m_inner)
        return RESULT_BAD_ORDER_ERROR;
    if (!m_inner->CanWrite())
        return RESULT_NOT_SUPPORTED;
    if (m_position < 0)
        return RESULT_END_OF_STREAM;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (count == 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    if (count > INT64_MAX - m_position)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    const int put = GetBlockCount() == 0 ? PassThroughWrite(buffer, count) : WriteCached(buffer, count);
    if (put < 0)
        return put;
    m_position += put;
    ExtendLength(m_position);
    return put;
}

int CBufferedStream::WriteCached(const unsigned char* buffer, int32_t count)
{
    int32_t done = 0;
    while (done < count) {
        const int64_t position = m_position + done;
        const int32_t offset = int32_t(position % m_blockSize);
        const int32_t n = std::min(m_blockSize - offset, count - done);
        const bool wholeBlock = offset == 0 && n == m_blockSize;
        CCacheBlock* block = nullptr;
        bool fresh = false;
        const int result = FindBlock(position, !wholeBlock, block, fresh);
        if (result < 0)
            return result;
        if (offset > block->valid)
            std::memset(block->bytes + block->valid, 0, size_t(offset - block->valid));
        std::memcpy(block->bytes + offset, buffer + done, size_t(n));
        block->valid = std::max(block->valid, offset + n);
        block->dirty = true;
        done += n;
    }
    return done;
}

int CBufferedStream::PassThroughWrite(const unsigned char* buffer, int32_t count)
{
    const int result = SeekInner(m_position);
    if (result < 0)
        return result;
    const int put = m_inner->Write(buffer, count);
    m_innerPosition = put < 0 ? -1 : m_position + put;
    return put;
}

// ---- flushing and closing ---------------------------------------------

int CBufferedStream::Flush()
{
    if (!m_inner)
        return RESULT_BAD_ORDER_ERROR;
    if (!m_inner->CanWrite())
        return 0;
    const int result = WriteBackAll();
    if (result < 0)
        return result;
    m_innerPosition = -1;
    return m_inner->Flush();
}

int CBufferedStream::WriteBackAll()
{
    for (int32_t i = GetBlockCount(); i-- > 0;) {
        const int result = WriteBack(*BlockAt(i));
        if (result < 0)
            return result;
    }
    return 0;
}

void CBufferedStream::Close()
{
    if (!m_inner)
        return;
    Flush();
    m_inner->Close();
    m_inner.SafeRelease();
    m_innerPosition = -1;
    m_blocks.SafeRelease();
    m_blockSize = 0;
    m_lastHit = 0;
}

} // namespace Quorvex::Vek
