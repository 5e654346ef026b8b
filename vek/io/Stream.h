#pragma once

// Public handle on a CStream. Every call forwards to the stream and hands
// its result back unchanged; on a null handle the calls answer
// -19001 (RESULT_NULL_POINTER), false or -1 and touch nothing.
#include <vek/core/BaseObject.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class VEK_API Stream : public Object<CStream> {
public:
    using SeekOrigin = CStream::SeekOrigin;

    Stream() = default;
    // Adopts the caller's reference. BaseObject is a virtual base, so every
    // wrapper constructor initialises it itself.
    Stream(CStream* stream) : BaseObject(stream), Object<CStream>(stream) {}
    static Stream FromObject(CStream* stream);

    int Control(uint32_t code, int32_t size, unsigned char* data) const;
    bool CanRead() const;
    bool CanSeek() const;
    bool CanWrite() const;
    int64_t GetLength() const;
    int64_t GetAvailableLength() const;
    int SetLength(int64_t length) const;
    int64_t GetPosition() const;
    int Read(unsigned char* buffer, int32_t count) const;
    int32_t ReadByte() const;
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) const;
    int Write(const unsigned char* buffer, int32_t count) const;
    int WriteByte(unsigned char value) const;
    int Flush() const;
    void Close() const;
};

} // namespace Quorvex::Vek
