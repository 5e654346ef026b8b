#include <vek/samples/CPixelDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CPixelDataReference::CPixelDataReference(int32_t width, int32_t height, uint32_t pixelFormat)
    : CPixelDataReference(Type, width, height, pixelFormat)
{
}

CPixelDataReference::CPixelDataReference(uint32_t type, int32_t width, int32_t height, uint32_t pixelFormat)
    : CMediaSampleDataReference(type), m_width(width < 0 ? 0 : width), m_height(height < 0 ? 0 : height),
      m_pixelFormat(pixelFormat)
{
}

CPixelDataReference::~CPixelDataReference() = default;

bool CPixelDataReference::IsType(uint32_t type) const
{
    return type == Type || CMediaSampleDataReference::IsType(type);
}

int32_t CPixelDataReference::GetPlaneCount() const
{
    return 0;
}

int CPixelDataReference::GetPlane(int32_t index, unsigned char*& data, int32_t& stride)
{
    data = nullptr;
    stride = 0;
    Log(LogLevel::Error, "CPixelDataReference::GetPlane: plane %d of %d\n", index, GetPlaneCount());
    return RESULT_INDEX_OUT_OF_RANGE;
}

} // namespace Quorvex::Vek
