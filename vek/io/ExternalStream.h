#pragma once

// A byte stream implemented by the host application, so that the library
// can read from and write to the host's own input/output. The host derives
// from this class and supplies every operation; AsStream() then gives a
// Stream that any part of the library accepts.
//
// The operations follow the conventions of CStream: Read and Write return
// the number of bytes moved or a negative result code; Seek takes origin
// 0 (beginning), 1 (current) or 2 (end) and returns 0 or a negative code;
// GetPosition and GetLength return -1 when unknown. Everything the host
// returns is checked before the library relies on it.
//
// Lifetime: the host keeps this object alive for as long as any Stream
// made by AsStream() is in use; the library never deletes it.
#include <vek/io/Stream.h>

namespace Quorvex::Vek {

class VEK_API ExternalStream {
public:
    virtual ~ExternalStream();

    virtual int Read(unsigned char* buffer, int32_t count) = 0;
    virtual int Write(const unsigned char* buffer, int32_t count) = 0;
    virtual int Seek(int64_t offset, int32_t origin, int64_t* newPosition) = 0;
    virtual int64_t GetPosition() = 0;
    virtual int64_t GetLength() = 0;
    virtual bool CanRead() = 0;
    virtual bool CanWrite() = 0;
    virtual bool CanSeek() = 0;
    virtual int Flush() = 0;

    // A stream over this object (a null Stream when out of memory).
    Stream AsStream();
};

} // namespace Quorvex::Vek
