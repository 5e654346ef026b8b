#pragma once

// Public handle on a file stream (CFileStream). Declares the modes in which
// files are opened.
#include <vek/io/CFileStream.h>
#include <vek/io/Stream.h>

namespace Quorvex::Vek {

class VEK_API FileStream : public Stream {
public:
    // Every mode opens the file in binary; created files are readable and
    // writable by the owner only. AppendReadWrite answers false to both
    // CanRead and CanWrite, although its descriptor reads and writes.
    // Scoped, so that the names do not hide the stream's Read and Write.
    enum class FileMode : int32_t {
        Read = 0,            // read-only
        Write = 1,           // write-only, create, truncate
        ReadWrite = 2,       // read-write, create, truncate
        Append = 3,          // write-only, create, append
        AppendReadWrite = 4, // read-write, create, append
    };

    FileStream() = default;
    // Adopts the caller's reference.
    FileStream(CFileStream* stream) : BaseObject(stream), Stream(stream) {}
    static FileStream FromObject(CFileStream* stream);

    CFileStream* ToFileStream() const { return static_cast<CFileStream*>(m_object); }

    int Open(const char* path);
    int SetReadWaitTime(int32_t milliseconds);
    int32_t GetReadWaitTime() const;
};

} // namespace Quorvex::Vek
