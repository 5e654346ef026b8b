#include <vek/io/Stream.h>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

Stream Stream::FromObject(CStream* stream)
{
    if (stream)
        stream->Acquire();
    return Stream(stream);
}

int Stream::Control(uint32_t code, int32_t size, unsigned char* data) const
{
    CStream* stream = ToObject();
    return stream ? stream->Control(code, size, data) : RESULT_NULL_POINTER;
}

bool Stream::CanRead() const
{
    CStream* stream = ToObject();
    return stream && stream->CanRead();
}

bool Stream::CanSeek() const
{
    CStream* stream = ToObject();
    return stream && stream->CanSeek();
}

bool Stream::CanWrite() const
{
    CStream* stream = ToObject();
    return stream && stream->CanWrite();
}

int64_t Stream::GetLength() const
{
    CStream* stream = ToObject();
    return stream ? stream->GetLength() : -1;
}

int64_t Stream::GetAvailableLength() const
{
    CStream* stream = ToObject();
    return stream ? stream->GetAvailableLength() : -1;
}

int Stream::SetLength(int64_t length) const
{
    CStream* stream = ToObject();
    return stream ? stream->SetLength(length) : RESULT_NULL_POINTER;
}

int64_t Stream::GetPosition() const
{
    CStream* stream = ToObject();
    return stream ? stream->GetPosition() : -1;
}

int Stream::Read(unsigned char* buffer, int32_t count) const
{
    CStream* stream = ToObject();
    return stream ? stream->Read(buffer, count) : RESULT_NULL_POINTER;
}

int32_t Stream::ReadByte() const
{
    CStream* stream = ToObject();
    return stream ? stream->ReadByte() : -1;
}

int Stream::Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition) const
{
    CStream* stream = ToObject();
    return stream ? stream->Seek(offset, origin, newPosition) : RESULT_NULL_POINTER;
}

int Stream::Write(const unsigned char* buffer, int32_t count) const
{
    CStream* stream = ToObject();
    return stream ? stream->Write(buffer, count) : RESULT_NULL_POINTER;
}

int Stream::WriteByte(unsigned char value) const
{
    CStream* stream = ToObject();
    return stream ? stream->WriteByte(value) : RESULT_NULL_POINTER;
}

int Stream::Flush() const
{
    CStream* stream = ToObject();
    return stream ? stream->Flush() : RESULT_NULL_POINTER;
}

void Stream::Close() const
{
    if (CStream* stream = ToObject())
        stream->Close();
}

} // namespace Quorvex::Vek
