#pragma once

// A file stream over a platform file descriptor. It can follow a file that
// another process is still writing: with a read wait time above 0, a read
// that reaches the end waits (in 100 ms steps) for the file to grow, and
// every time it grows the wait starts over.
//
// Control codes beyond those of CFileStream: "cach" and "rdah" (1 byte)
// are accepted and ignored; with another size they give -19000.
#include <vek/core/RObject.h>
#include <vek/io/CFileStream.h>
#include <vek/io/FileStream.h>

namespace Quorvex::Vek {

class CString;

class VEK_API CFileDescriptorStream : public CFileStream {
public:
    explicit CFileDescriptorStream(FileStream::FileMode mode = FileStream::FileMode::Read);

    using CFileStream::Open;
    using CStream::Read;
    using CStream::Write;

    // Opens the file in the stream's mode and learns its length. Results:
    // -19004 null path, -19006 unknown mode, -19264 no such file, -19102
    // access denied, -19261 file exists, -19262 a directory, -19263 name
    // too long, -19265 disk full, -19000 anything else (each logged).
    int Open(CString* path) override;

    int Control(uint32_t code, int32_t size, unsigned char* data) override;
    // An AppendReadWrite stream answers false to both (see FileStream).
    bool CanRead() override;
    bool CanSeek() override { return true; }
    bool CanWrite() override;
    // The length cached at Open and kept up by writes (below 2 GiB only)
    // and by reads that saw the file grow.
    int64_t GetLength() override { return m_length; }
    // Measures the file now.
    int64_t GetAvailableLength() override;
    int64_t GetPosition() override;
    // Short counts only at the end of the file (after the wait, if any); a
    // descriptor failure returns its code even after earlier pieces moved.
    int Read(unsigned char* buffer, int32_t count) override;
    // -19100 when the descriptor seek fails; the position is then unchanged.
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) override;
    int Write(const unsigned char* buffer, int32_t count) override;
    // 0 in mode Read; otherwise commits the file to disk (-19100 on failure).
    int Flush() override;
    // Closes the descriptor (without flushing to disk).
    void Close() override;

    FileStream::FileMode GetMode() const { return m_mode; }
    CString* GetPath() const { return m_path; }
    bool IsOpen() const { return m_descriptor >= 0; }

protected:
    ~CFileDescriptorStream() override;

private:
    // Waits for the file to grow past `position`; returns the wait left.
    int32_t WaitForGrowth(int64_t position, int32_t remainingWait);

    FileStream::FileMode m_mode;
    RObject<CString> m_path;
    int m_descriptor = -1;
    int64_t m_length = 0;
    // The descriptor's offset while this stream knows it, else -1. Readers
    // seek to where the last read ended before every sample; with the
    // offset known that seek (and GetPosition) costs no system call.
    int64_t m_knownPosition = -1;
};

} // namespace Quorvex::Vek
