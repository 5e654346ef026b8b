#pragma once

// The surface a rendering filter paints on: the size and pixel format of the
// pictures that captions and subtitle bitmaps are drawn for. The host makes
// one and hands it to a filter with SetGraphicsContext; filters that do not
// render ignore it. The values are fixed at creation.
#include <vek/core/CObject.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

class VEK_API CGraphicsContext : public CObject {
public:
    enum : uint32_t { Type = Four("gctx") };

    // A new context (one reference), or null without memory. -19003 is
    // logged and null returned for a width or height below 1.
    static CGraphicsContext* Create(int32_t width, int32_t height, uint32_t pixelFormat);

    int32_t GetWidth() const { return m_width; }
    int32_t GetHeight() const { return m_height; }
    uint32_t GetPixelFormat() const { return m_pixelFormat; }

protected:
    CGraphicsContext(int32_t width, int32_t height, uint32_t pixelFormat);
    ~CGraphicsContext() override;

private:
    int32_t m_width;
    int32_t m_height;
    uint32_t m_pixelFormat;
};

} // namespace Quorvex::Vek
