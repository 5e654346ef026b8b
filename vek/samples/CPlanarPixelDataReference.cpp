#include <vek/samples/CPlanarPixelDataReference.h>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

namespace {

bool PlaneIsValid(const CPlanarPixelDataReference::Plane& plane, int32_t index, int32_t length)
{
    if (plane.offset < 0 || plane.stride < 0 || plane.rowBytes < 0 || plane.rows < 0 ||
        plane.stride < plane.rowBytes) {
        Log(LogLevel::Error, "CPlanarPixelDataReference::Create: plane %d offset %d, stride %d, row %d bytes, "
            "%d rows\n", index, plane.offset, plane.stride, plane.rowBytes, plane.rows);
        return false;
    }
    const int64_t extent = plane.rows == 0 ? 0 : int64_t(plane.rows - 1) * plane.stride + plane.rowBytes;
    if (!Checked::RangeFits(plane.offset, extent, length)) {
        Log(LogLevel::Error, "CPlanarPixelDataReference::Create: plane %d (%lld bytes at offset %d) passes the "
            "buffer length %d\n", index, static_cast<long long>(extent), plane.offset, length);
        return false;
    }
    return true;
}

} // namespace

int CPlanarPixelDataReference::Create(CByteArray* buffer, int32_t width, int32_t height, uint32_t pixelFormat,
                                      const Plane* planes, int32_t planeCount, CPlanarPixelDataReference*& out)
{
    out = nullptr;
    if (!buffer || !planes) {
        Log(LogLevel::Error, "CPlanarPixelDataReference::Create: %s is null\n", buffer ? "plane list" : "buffer");
        return RESULT_ARGUMENT_NULL;
    }
    if (planeCount < 1 || planeCount > MaxPlanes || width < 0 || height < 0) {
        Log(LogLevel::Error, "CPlanarPixelDataReference::Create: %d planes, size %dx%d\n", planeCount, width,
            height);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    for (int32_t index = 0; index < planeCount; ++index) {
        if (!PlaneIsValid(planes[index], index, buffer->GetLength()))
            return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    out = new (fallible) CPlanarPixelDataReference(buffer, width, height, pixelFormat, planes, planeCount);
    if (!out) {
        Log(LogLevel::Error, "CPlanarPixelDataReference::Create: no memory\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

CPlanarPixelDataReference::CPlanarPixelDataReference(CByteArray* buffer, int32_t width, int32_t height,
                                                     uint32_t pixelFormat, const Plane* planes, int32_t planeCount)
    : CPixelDataReference(Type, width, height, pixelFormat), m_buffer(RObject<CByteArray>::FromObject(buffer)),
      m_planeCount(planeCount)
{
    for (int32_t index = 0; index < planeCount; ++index)
        m_planes[index] = planes[index];
}

CPlanarPixelDataReference::~CPlanarPixelDataReference() = default;

CPlanarPixelDataReference::Plane CPlanarPixelDataReference::GetPlaneLayout(int32_t index) const
{
    return index >= 0 && index < m_planeCount ? m_planes[index] : Plane{};
}

int CPlanarPixelDataReference::GetPlane(int32_t index, unsigned char*& data, int32_t& stride)
{
    if (index < 0 || index >= m_planeCount)
        return CPixelDataReference::GetPlane(index, data, stride);
    int32_t length = 0;
    unsigned char* base = nullptr;
    const int result = Lock(base, length);
    data = result < 0 ? nullptr : base + m_planes[index].offset;
    stride = result < 0 ? 0 : m_planes[index].stride;
    return result;
}

int CPlanarPixelDataReference::Lock(unsigned char*& data, int32_t& length)
{
    length = m_buffer->GetLength();
    data = m_buffer->GetData();
    if (!data && length > 0) {
        length = 0;
        Log(LogLevel::Error, "CPlanarPixelDataReference::Lock: no memory for %d bytes\n", m_buffer->GetLength());
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
