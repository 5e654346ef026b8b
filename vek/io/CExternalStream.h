#pragma once

// Adapter that makes a host's ExternalStream usable wherever a CStream is
// expected. The host's answers are untrusted: a count larger than asked
// for is reported as -19015 (RESULT_UNEXPECTED) with a log line instead of
// being passed on, and negative lengths and positions become -1.
//
// The adapter is reference counted and may outlive the host object (a
// cache or a reader may still hold it), so the host detaches it before it
// goes away. Every call made after Detach answers as a closed stream does:
// -19010 (RESULT_BAD_ORDER_ERROR) for operations with a result code, false
// for the capability questions and -1 for length and position.
#include <vek/core/CLock.h>
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class ExternalStream;

class VEK_API CExternalStream : public CStream {
public:
    // Uses `host` without owning it until Detach.
    explicit CExternalStream(ExternalStream* host);

    using CStream::Read;
    using CStream::Write;

    bool CanRead() override;
    bool CanSeek() override;
    bool CanWrite() override;
    int64_t GetLength() override;
    int64_t GetPosition() override;
    int Read(unsigned char* buffer, int32_t count) override;
    // Streams the host cannot seek still skip forward (origin Current)
    // by reading, as every CStream does.
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) override;
    int Write(const unsigned char* buffer, int32_t count) override;
    int Flush() override;

    // Forgets the host. Waits for a call into the host that another thread
    // has under way, so once Detach returns the host is never touched
    // again and may be destroyed. May be called from inside a host
    // operation (the lock is re-entrant) and more than once.
    void Detach();
    bool IsDetached();

protected:
    ~CExternalStream() override;

private:
    // Holds m_lock for the life of the object; host() is null once detached.
    class Use;

    CLock m_lock;
    ExternalStream* m_host;
};

} // namespace Quorvex::Vek
