#pragma once

// Public handle on a CFileDescriptorStream, with the statics that open a
// file by path.
#include <vek/core/String.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/FileStream.h>

namespace Quorvex::Vek {

class VEK_API FileDescriptorStream : public FileStream {
public:
    FileDescriptorStream() = default;
    // Adopts the caller's reference.
    FileDescriptorStream(CFileDescriptorStream* stream) : BaseObject(stream), FileStream(stream) {}

    // Makes a stream in `mode` and opens the UTF-8 path. On success
    // `result` holds the stream (one reference) and the result is 0; on
    // failure the code is returned and `result` is left as it was.
    static int Open(const char* path, FileStream::FileMode mode, Stream& result);
    static int Open(String path, FileStream::FileMode mode, Stream& result);
    static int Open(CString* path, FileStream::FileMode mode, Stream& result);
};

} // namespace Quorvex::Vek
