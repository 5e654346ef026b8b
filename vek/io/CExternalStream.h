#pragma once

// Adapter that makes a host's ExternalStream usable wherever a CStream is
// expected. The host's answers are untrusted: a count larger than asked
// for is reported as -19015 (RESULT_UNEXPECTED) with a log line instead of
// being passed on, and negative lengths and positions become -1.
#include <vek/io/CStream.h>

namespace Quorvex::Vek {

class ExternalStream;

class VEK_API CExternalStream : public CStream {
public:
    // Uses `host` without owning it; the host keeps it alive.
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

    ExternalStream* GetHost() const { return m_host; }

protected:
    ~CExternalStream() override;

private:
    ExternalStream* m_host;
};

} // namespace Quorvex::Vek
