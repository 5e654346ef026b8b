#pragma once

// Cuts a byte stream of start-code-delimited units (H.264/HEVC Annex B NAL
// units, MPEG-1/2/4 video start codes) into units, reading the stream in
// large blocks once and never seeking back.
//
// A unit runs from its prefix (00 00 01, or 00 00 00 01 whose leading zero
// belongs to it) to the prefix of the next unit or the end of the stream.
// Its first bytes after the prefix are kept in a buffer of the reader's own
// (the head), which is what header parsers need; the rest of a unit is
// passed over. Bytes before the first prefix are reported as skipped.
//
// Not thread-safe: one reader serves one walker. The stream is read from
// offset `origin` on, each block under the stream's monitor from the
// walk's own position, so others may read the same stream between calls.
#include <cstdint>

#include <vek/core/CByteArray.h>
#include <vek/core/RObject.h>
#include <vek/elementary/StartCodeScanner.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API StartCodeUnitReader {
public:
    struct Unit {
        int64_t start = 0; // first byte of the prefix
        int64_t payload = 0; // first byte after 00 00 01
        int64_t end = 0; // one past the last byte
        const uint8_t* head = nullptr; // first headSize payload bytes
        int32_t headSize = 0;
        int64_t PayloadSize() const { return end - payload; }
        int64_t Size() const { return end - start; }
    };

    // Blocks are BlockSize bytes, or the stream's length when it is shorter
    // (at least MinBlockSize).
    enum : int32_t { DefaultHeadCapacity = 4096, BlockSize = 1 << 20, MinBlockSize = 4096 };

    StartCodeUnitReader();
    ~StartCodeUnitReader();
    StartCodeUnitReader(const StartCodeUnitReader&) = delete;
    StartCodeUnitReader& operator=(const StartCodeUnitReader&) = delete;

    // Starts over on `stream` (shared while the reader lives), whose current
    // position is stream offset `origin`. `headCapacity` bytes of each
    // unit's payload are kept (1..1 MiB). 0, -19004 for a null stream,
    // -19003 for a bad capacity, -19002 without memory.
    int Reset(CStream* stream, int64_t origin = 0, int32_t headCapacity = DefaultHeadCapacity);

    // The next unit: 0 and the unit (its head valid until the next call),
    // 1 at the end of the stream, or the stream's failure.
    int Next(Unit& unit);

    // Bytes before the first prefix (0 once a prefix was found at offset 0).
    int64_t GetLeadingBytes() const { return m_leadingBytes; }
    // Stream bytes consumed so far.
    int64_t GetOffset() const { return m_origin + m_blockOffset + m_blockFill; }

private:
    int FillBlock();
    void KeepHead(const uint8_t* from, size_t count);
    bool FindNextPrefix(StartCodeScanner::Hit& hit, int& result);

    RObject<CStream> m_stream;
    RObject<CByteArray> m_block;
    RObject<CByteArray> m_head;
    StartCodeScanner m_scanner;
    int64_t m_origin = 0;
    int64_t m_blockOffset = 0; // stream offset of the block's first byte
    int32_t m_blockFill = 0;
    int32_t m_headCapacity = DefaultHeadCapacity;
    int32_t m_headFill = 0;
    int64_t m_leadingBytes = 0;
    bool m_haveCurrent = false; // a prefix was found and its unit is open
    bool m_pendingStart = false; // the open unit's head is not started yet
    StartCodeScanner::Hit m_current;
    bool m_streamEnded = false;
};

} // namespace Quorvex::Vek
