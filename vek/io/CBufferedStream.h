#pragma once

// A block cache in front of another stream. Reads are served from blocks
// of `blockSize` bytes aligned on multiples of the block size; writes go
// into the covering block and mark it dirty; dirty blocks are written back
// when they are reused, on Flush and on Close.
//
// Eviction: when no block covers a position, the least recently used
// block is reused (empty blocks first). A dirty victim is written back
// before it is reused; if that fails the operation fails and the block
// keeps its data. Every byte that a cached block covers is served from that
// block; other bytes are loaded one aligned block at a time, except that a
// run of whole aligned blocks the cache does not hold is read straight into
// the caller's buffer. The inner stream only ever sees aligned reads of whole
// blocks, so large sequential reads cost about one inner read each and
// small ones one inner read per block.
//
// A short answer from the inner stream ends the inner read unless the
// stream's available length says more is there (or is unknown), and a
// Read that has met the inner stream's end does not top blocks up from it
// again: a file stream that follows a growing file then waits once per
// Read, not once per block (a Read into a gap left by pending writes may
// still meet it twice).
//
// Bytes between the inner stream's end and the buffered length (a gap
// left by a write beyond the end that is not written back yet) read as 0.
#include <vek/core/RObject.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

template <typename T>
class CList;

class VEK_API CBufferedStream : public CStream {
public:
    enum : uint32_t { Type = Four("bfst") };

    // Takes one reference to `inner`. Makes `blockCount` blocks of
    // `blockSize` bytes (none when either is 0 or less; every operation then
    // goes straight to the inner stream). Position 0; the length is the
    // inner stream's (0 without one).
    CBufferedStream(CStream* inner, int32_t blockSize, int32_t blockCount);

    using CStream::Read;
    using CStream::Write;

    // Forwarded to the inner stream.
    int Control(uint32_t code, int32_t size, unsigned char* data) override;
    bool CanRead() override;
    bool CanSeek() override;
    bool CanWrite() override;
    int64_t GetLength() override { return m_length; }
    // The larger of the buffered length and the inner stream's.
    int64_t GetAvailableLength() override;
    int64_t GetPosition() override { return m_position; }
    // -19010 without a readable inner stream, -19101 at a negative
    // position; a count of 0 or less returns 0 (raising the length to the
    // position if it has passed it).
    int Read(unsigned char* buffer, int32_t count) override;
    // Moves the position only; -19003 for a target below 0. An unknown
    // origin reports the position.
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) override;
    // -19010 without an inner stream, -19006 when it cannot be written,
    // -19003 when the bytes would run past the largest 64-bit position.
    int Write(const unsigned char* buffer, int32_t count) override;
    // Writes back every dirty block, last to first, then flushes the inner
    // stream. A no-op when the inner stream cannot be written.
    int Flush() override;
    // Flush, close the inner stream, then let go of it and of the blocks.
    void Close() override;

    int32_t GetBlockSize() const { return m_blockSize; }
    int32_t GetBlockCount() const;
    CStream* GetInner() const { return m_inner; }

    class CCacheBlock;

protected:
    // Writes dirty blocks back; neither flushes nor closes the inner stream.
    ~CBufferedStream() override;

private:
    int ReadCached(unsigned char* buffer, int32_t count);
    int32_t UncachedRun(int64_t position, int32_t count) const;
    // Index of the block holding the aligned `start`, or -1.
    int32_t CachedIndex(int64_t start) const;
    int WriteCached(const unsigned char* buffer, int32_t count);
    int PassThroughRead(unsigned char* buffer, int32_t count);
    int PassThroughWrite(const unsigned char* buffer, int32_t count);

    int FindBlock(int64_t position, bool load, CCacheBlock*& block, bool& fresh);
    CCacheBlock* PickVictim();
    CCacheBlock* BlockAt(int32_t index) const;
    int LoadBlock(CCacheBlock& block, int64_t start);
    int TopUp(CCacheBlock& block);
    int ReadInner(int64_t position, unsigned char* buffer, int32_t count);
    bool InnerHasMore(int64_t position);
    int WriteBack(CCacheBlock& block);
    // Every block from the last to the first, stopping at the first failure.
    int WriteBackAll();
    void ExtendLength(int64_t length);
    int SeekInner(int64_t position);

    RObject<CStream> m_inner;
    int64_t m_position = 0;
    int64_t m_length = 0;
    int32_t m_blockSize = 0;
    // In creation order; write-back on Flush runs from last to first.
    RObject<CList<CCacheBlock>> m_blocks;
    // Where the inner stream stands after this stream's last call into it;
    // -1 when unknown. The inner stream is this stream's to move: a caller
    // that moves it behind the cache's back already breaks the cached bytes.
    int64_t m_innerPosition = -1;
    uint64_t m_clock = 0;
    int32_t m_lastHit = 0;
};

} // namespace Quorvex::Vek
