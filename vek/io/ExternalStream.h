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
// Lifetime: the library never deletes this object, and may hold a Stream
// made by AsStream() (in a cache, a reader) after the host is done with
// it. Detach() cuts every such Stream off: from then on they answer as a
// closed stream (-19010, RESULT_BAD_ORDER_ERROR) and never call this
// object again. The destructor detaches too; a host whose streams are used
// from other threads calls Detach() first thing in its own destructor,
// because by the time this base destructor runs the derived object is
// already gone.
#include <vek/core/RObject.h>
#include <vek/io/Stream.h>

namespace Quorvex::Vek {

class CExternalStream;

class VEK_API ExternalStream {
public:
    ExternalStream();
    virtual ~ExternalStream();
    // Not copyable: the streams made by AsStream() belong to this object.
    ExternalStream(const ExternalStream&) = delete;
    ExternalStream& operator=(const ExternalStream&) = delete;

    virtual int Read(unsigned char* buffer, int32_t count) = 0;
    virtual int Write(const unsigned char* buffer, int32_t count) = 0;
    virtual int Seek(int64_t offset, int32_t origin, int64_t* newPosition) = 0;
    virtual int64_t GetPosition() = 0;
    virtual int64_t GetLength() = 0;
    virtual bool CanRead() = 0;
    virtual bool CanWrite() = 0;
    virtual bool CanSeek() = 0;
    virtual int Flush() = 0;

    // A stream over this object (a null Stream when out of memory). Every
    // call hands out the same underlying stream until Detach(); after it a
    // new one.
    Stream AsStream();
    // Cuts off every Stream made by AsStream() so far; see above.
    void Detach();

private:
    RObject<CExternalStream> m_adapter;
};

} // namespace Quorvex::Vek
