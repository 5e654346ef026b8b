#pragma once

// The drawing settings a rendering filter paints text and bitmaps with:
// a property bag of style keys (font, size, colours, safe area) that the
// host fills before Begin and the renderer reads. One per rendering filter.
#include <vek/core/CObject.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

class VEK_API CGraphicsRenderer : public CObject, public IProperties {
public:
    enum : uint32_t { Type = Four("grnd") };

    // Null without memory.
    static CGraphicsRenderer* Create();

protected:
    CGraphicsRenderer();
    ~CGraphicsRenderer() override;
};

} // namespace Quorvex::Vek
