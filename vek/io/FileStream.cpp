#include <vek/io/FileStream.h>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

FileStream FileStream::FromObject(CFileStream* stream)
{
    if (stream)
        stream->Acquire();
    return FileStream(stream);
}

int FileStream::Open(const char* path)
{
    CFileStream* stream = ToFileStream();
    return stream ? stream->Open(path) : RESULT_NULL_POINTER;
}

int FileStream::SetReadWaitTime(int32_t milliseconds)
{
    CFileStream* stream = ToFileStream();
    return stream ? stream->SetReadWaitTime(milliseconds) : RESULT_NULL_POINTER;
}

int32_t FileStream::GetReadWaitTime() const
{
    CFileStream* stream = ToFileStream();
    return stream ? stream->GetReadWaitTime() : 0;
}

} // namespace Quorvex::Vek
