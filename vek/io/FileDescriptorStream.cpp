#include <vek/io/FileDescriptorStream.h>

#include <vek/core/CString.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <new>

namespace Quorvex::Vek {

int FileDescriptorStream::Open(CString* path, FileStream::FileMode mode, Stream& result)
{
    CFileDescriptorStream* stream = new (fallible) CFileDescriptorStream(mode);
    if (!stream) {
        Log(LogLevel::Error, "FileDescriptorStream::Open: RESULT_OUT_OF_MEMORY\n");
        return RESULT_OUT_OF_MEMORY;
    }
    const int opened = stream->Open(path);
    if (opened < 0) {
        stream->Release();
        return opened;
    }
    result = Stream(stream);
    return 0;
}

int FileDescriptorStream::Open(String path, FileStream::FileMode mode, Stream& result)
{
    return Open(path.ToObject(), mode, result);
}

int FileDescriptorStream::Open(const char* path, FileStream::FileMode mode, Stream& result)
{
    if (!path)
        return RESULT_ARGUMENT_NULL;
    CString* text = CString::Create(path);
    if (!text)
        return RESULT_OUT_OF_MEMORY;
    const int opened = Open(text, mode, result);
    text->Release();
    return opened;
}

} // namespace Quorvex::Vek
