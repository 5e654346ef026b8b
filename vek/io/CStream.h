#pragma once

// The abstract, reference-counted byte stream with 64-bit positions. Every
// byte the library reads from or writes to a container passes through one.
//
// Reads and writes return the number of bytes moved (0 or more) or a
// negative result code; ReadByte returns -1 for end of data or failure.
// Streams carry no lock: one stream serves one thread at a time.
#include <vek/core/CObject.h>

namespace Quorvex::Vek {

class CByteArray;

class VEK_API CStream : public CObject {
public:
    // Any other value is accepted by the memory stream as "report the
    // position only".
    enum SeekOrigin : int32_t {
        Begin = 0,
        Current = 1,
        End = 2,
    };

    // Stream-specific requests named by four-character codes, with `size`
    // bytes of `data`. The base answers -19006 (not supported).
    virtual int Control(uint32_t code, int32_t size, unsigned char* data);
    virtual bool CanRead();
    virtual bool CanSeek();
    virtual bool CanWrite();
    // -1 when the stream has no length.
    virtual int64_t GetLength();
    // The length as it stands now (a file still being written may have
    // grown since it was opened); the base returns GetLength().
    virtual int64_t GetAvailableLength();
    virtual int SetLength(int64_t length);
    // -1 when the stream has no position.
    virtual int64_t GetPosition();
    // Reads up to the array's whole length into it; -19004 for null.
    virtual int Read(CByteArray* buffer);
    virtual int Read(unsigned char* buffer, int32_t count) = 0;
    // 0..255, or -1 unless exactly one byte was read.
    virtual int32_t ReadByte();
    // The base serves only forward skips from the current position (origin
    // Current) by reading and discarding; any other origin gives -19005.
    // `newPosition` may be null.
    virtual int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr);
    // Writes `count` bytes of the array from `offset`; -19003 when the range
    // is not inside the array, -19004 for null.
    virtual int Write(CByteArray* buffer, int32_t offset, int32_t count);
    // Writes the whole array; -19004 for null.
    virtual int Write(CByteArray* buffer);
    virtual int Write(const unsigned char* buffer, int32_t count) = 0;
    virtual int WriteByte(unsigned char value);
    virtual int Flush();
    // The base flushes; file streams close their descriptor.
    virtual void Close();

protected:
    // The absolute target of a seek for streams that keep their own position
    // and length. Unknown: the origin is not Begin/Current/End (such a seek
    // only reports the position); OutOfRange: the sum overflows or leaves
    // 0..maximum.
    enum class SeekTarget { Known, Unknown, OutOfRange };
    static SeekTarget ResolveSeek(int64_t offset, SeekOrigin origin, int64_t position, int64_t length,
                                  int64_t maximum, int64_t& target);

    explicit CStream(uint32_t type = 0);
    ~CStream() override;
};

} // namespace Quorvex::Vek
