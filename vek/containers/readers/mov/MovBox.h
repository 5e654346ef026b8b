#pragma once

// Boxes (QuickTime atoms) held in memory, and the bounded readers every box
// parser of the QuickTime and ISO readers goes through.
//
// A MovBox is a box's type and payload: a span of bytes inside its parent
// plus the file offset of its first header byte, for log lines and for
// offsets computed relative to the box (fragments). MovBoxIterator walks
// the children of a span: 32-bit sizes, 64-bit sizes (size 1), size 0 (to
// the end of the parent) and the 16-byte user type of 'uuid' boxes. Every
// size is checked by subtraction against what remains of the parent, so a
// lying size stops the walk with a code and a log line and a child can
// never reach past its parent. QuickTime's 32-bit terminator (a zero-size
// header of four bytes at the end of a list) ends a walk quietly.
//
// MovFieldReader reads a box's fields in order; each read past the end of
// the span fails (and keeps failing), so a parser can read a record and
// test once.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct VEK_API MovBox {
    uint32_t type = 0;
    const uint8_t* payload = nullptr;
    size_t size = 0; // payload bytes
    int64_t fileOffset = 0; // first byte of the box header in the file
    uint32_t headerSize = 0; // 8, 16, or 24/32 with a user type
    uint8_t userType[16] = {}; // 'uuid' boxes only

    int64_t PayloadOffset() const { return fileOffset + headerSize; }
    int64_t TotalSize() const { return int64_t(headerSize) + int64_t(size); }
};

class VEK_API MovBoxIterator {
public:
    enum : int { MaxDepth = 32 };

    // The children of `parent`'s payload.
    explicit MovBoxIterator(const MovBox& parent);
    // The children of `size` bytes at `data`, whose first byte is at
    // `fileOffset`; `parentType` names them in log lines (0 for the file).
    MovBoxIterator(const uint8_t* data, size_t size, int64_t fileOffset, uint32_t parentType);

    // The next child: 0 with `box` set, 1 at the end, RESULT_FORMAT_ERROR
    // (logged, naming the box and its size) for a header that does not fit.
    int Next(MovBox& box);
    // The first child of `type`: 0, 1 when there is none, or a code.
    int Find(uint32_t type, MovBox& box);

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_position = 0;
    int64_t m_fileOffset;
    uint32_t m_parentType;
};

// Reads the fields of a span in order, big-endian.
class VEK_API MovFieldReader {
public:
    MovFieldReader(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    explicit MovFieldReader(const MovBox& box) : m_data(box.payload), m_size(box.size) {}

    uint8_t Read8();
    uint16_t Read16();
    uint32_t Read24();
    uint32_t Read32();
    uint64_t Read64();
    // Skips `count` bytes; fails past the end.
    void Skip(size_t count);
    // The next `count` bytes in place (null past the end).
    const uint8_t* Take(size_t count);
    // Reads a full box's version and flags.
    void ReadVersionAndFlags(uint8_t& version, uint32_t& flags);
    // A time or size field: 64 bits in a version 1 box, 32 bits otherwise.
    uint64_t ReadVersioned(uint8_t version) { return version == 1 ? Read64() : Read32(); }

    bool Failed() const { return m_failed; }
    size_t Remaining() const { return m_failed ? 0 : m_size - m_position; }
    size_t Position() const { return m_position; }
    const uint8_t* Here() const { return m_data + m_position; }

private:
    bool Has(size_t count);

    const uint8_t* m_data;
    size_t m_size;
    size_t m_position = 0;
    bool m_failed = false;
};

} // namespace Quorvex::Vek
