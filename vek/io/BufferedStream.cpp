#include <vek/io/BufferedStream.h>

#include <vek/core/Log.h>

#include <new>

namespace Quorvex::Vek {

BufferedStream BufferedStream::Create(Stream inner, int blockSize, int blockCount)
{
    CBufferedStream* stream =
        new (fallible) CBufferedStream(inner.ToObject(), int32_t(blockSize), int32_t(blockCount));
    if (!stream)
        Log(LogLevel::Error, "BufferedStream::Create: RESULT_OUT_OF_MEMORY\n");
    return BufferedStream(stream);
}

} // namespace Quorvex::Vek
