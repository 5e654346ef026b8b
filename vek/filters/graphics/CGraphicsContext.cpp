#include <vek/core/Log.h>
#include <vek/filters/graphics/CGraphicsContext.h>

namespace Quorvex::Vek {

CGraphicsContext* CGraphicsContext::Create(int32_t width, int32_t height, uint32_t pixelFormat)
{
    if (width < 1 || height < 1) {
        Log(LogLevel::Error, "CGraphicsContext::Create: size %dx%d is not a picture\n", int(width), int(height));
        return nullptr;
    }
    return new (fallible) CGraphicsContext(width, height, pixelFormat);
}

CGraphicsContext::CGraphicsContext(int32_t width, int32_t height, uint32_t pixelFormat)
    : CObject(Type), m_width(width), m_height(height), m_pixelFormat(pixelFormat)
{
}

CGraphicsContext::~CGraphicsContext() = default;

} // namespace Quorvex::Vek
