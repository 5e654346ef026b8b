#pragma once

// A stream over bytes in memory, backed by a CByteArray. A growable stream
// enlarges its array on demand (to twice the size a write needs); every
// other stream is fixed and refuses to write past its capacity. The view
// constructor exposes a window of another array without copying.
//
// Capacity is the number of bytes from the stream's first byte to the end
// of its array (the whole array unless the stream is a view at an offset).
#include <vek/core/RObject.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API CMemoryStream : public CStream {
public:
    enum : uint32_t { Type = Four("mems") };

    // Growable, capacity 32, length 0.
    CMemoryStream();
    // Fixed, empty, of the given capacity (negative is 0).
    explicit CMemoryStream(int32_t capacity);
    // Fixed, holding a copy of the bytes.
    CMemoryStream(int32_t count, const unsigned char* bytes);
    // Fixed, sharing the array (one reference taken); length = its length.
    explicit CMemoryStream(CByteArray* buffer);
    // Fixed view of `count` bytes at `offset` into the array: an offset
    // outside 0..length becomes the length, a negative count 0, and a count
    // running past the end is cut to the end.
    CMemoryStream(CByteArray* buffer, int32_t offset, int32_t count);

    using CStream::Read;
    using CStream::Write;

    bool CanRead() override { return true; }
    bool CanSeek() override { return true; }
    bool CanWrite() override { return true; }
    int64_t GetLength() override { return m_length; }
    int64_t GetAvailableLength() override { return m_length; }
    // Sets the length only: -19003 below 0 or above the capacity; the array
    // is never enlarged here.
    int SetLength(int64_t length) override;
    int64_t GetPosition() override { return m_position; }

    // -19010 without a buffer; reading at or past the end returns 0. The
    // array form (inherited) reads through this one.
    int Read(unsigned char* buffer, int32_t count) override;
    int32_t ReadByte() override;
    // Targets below 0 or above 2,147,483,647 give -19003 and change nothing;
    // an origin other than Begin/Current/End only reports the position.
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) override;
    // A null array writes nothing and returns 0.
    int Write(CByteArray* buffer) override;
    // -19101 without a buffer or at a negative position, -19003 for a
    // negative count or when a fixed stream would overflow its capacity,
    // -19002 when a growable one cannot grow (what it holds is kept).
    int Write(const unsigned char* buffer, int32_t count) override;
    // Writes `count` copies of `value`, with the rules of the block write.
    int Write(unsigned char value, int32_t count);
    // 1 on success; -19101 when the byte does not fit, -19002 when a
    // growable stream cannot grow.
    int WriteByte(unsigned char value) override;

    int32_t GetCapacity() const { return m_capacity; }
    bool IsGrowable() const { return m_growable; }
    unsigned char* GetData() const { return m_data; }
    // The backing array with one more reference, released by the caller.
    CByteArray* GetBuffer() const;
    // A new array (owned by the caller) holding a copy of the valid bytes.
    CByteArray* ToByteArray() const;

protected:
    ~CMemoryStream() override;

private:
    void Attach(CByteArray* buffer, int32_t offset);
    // 0, or -19002 when a growable stream cannot get the larger array.
    int Expand(int64_t needed, RObject<CByteArray>& retired);
    // Common checks of the block and fill writes; 0 when `count` bytes may
    // be stored at the position.
    int PrepareWrite(int32_t count, RObject<CByteArray>& retired);
    void Advance(int32_t count);

    RObject<CByteArray> m_buffer;
    unsigned char* m_data = nullptr;
    int32_t m_length = 0;
    int64_t m_position = 0;
    bool m_growable = false;
    int32_t m_capacity = 0;
};

} // namespace Quorvex::Vek
