#include <vek/samples/CPixelBufferDataReference.h>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

int CPixelBufferDataReference::Create(CByteArray* buffer, int32_t width, int32_t height, int32_t stride,
                                      int32_t bytesPerPixel, uint32_t pixelFormat, CPixelBufferDataReference*& out)
{
    out = nullptr;
    if (!buffer) {
        Log(LogLevel::Error, "CPixelBufferDataReference::Create: buffer is null\n");
        return RESULT_ARGUMENT_NULL;
    }
    int64_t rowBytes = 0;
    int64_t total = 0;
    if (width < 0 || height < 0 || stride < 0 || bytesPerPixel < 0 ||
        !Checked::Multiply(int64_t(width), int64_t(bytesPerPixel), &rowBytes) || rowBytes > stride) {
        Log(LogLevel::Error, "CPixelBufferDataReference::Create: width %d x %d bytes does not fit stride %d "
            "(height %d)\n", width, bytesPerPixel, stride, height);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (!Checked::Multiply(int64_t(height), int64_t(stride), &total) || total > buffer->GetLength()) {
        Log(LogLevel::Error, "CPixelBufferDataReference::Create: %d rows of stride %d exceed buffer length %d\n",
            height, stride, buffer->GetLength());
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    out = new (fallible) CPixelBufferDataReference(buffer, width, height, stride, pixelFormat);
    if (!out) {
        Log(LogLevel::Error, "CPixelBufferDataReference::Create: no memory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

CPixelBufferDataReference::CPixelBufferDataReference(CByteArray* buffer, int32_t width, int32_t height,
                                                     int32_t stride, uint32_t pixelFormat)
    : CPixelDataReference(Type, width, height, pixelFormat), m_buffer(RObject<CByteArray>::FromObject(buffer)),
      m_stride(stride)
{
}

CPixelBufferDataReference::~CPixelBufferDataReference() = default;

int CPixelBufferDataReference::GetPlane(int32_t index, unsigned char*& data, int32_t& stride)
{
    if (index != 0)
        return CPixelDataReference::GetPlane(index, data, stride);
    int32_t length = 0;
    const int result = Lock(data, length);
    stride = result < 0 ? 0 : m_stride;
    return result;
}

int CPixelBufferDataReference::Lock(unsigned char*& data, int32_t& length)
{
    // Create checked that height x stride fits the array, so fits 32 bits.
    length = GetHeight() * m_stride;
    data = m_buffer->GetData();
    if (!data && length > 0) {
        length = 0;
        Log(LogLevel::Error, "CPixelBufferDataReference::Lock: no memory for %d bytes\n", m_buffer->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
