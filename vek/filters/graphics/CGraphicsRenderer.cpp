#include <vek/filters/graphics/CGraphicsRenderer.h>

namespace Quorvex::Vek {

CGraphicsRenderer* CGraphicsRenderer::Create()
{
    return new (fallible) CGraphicsRenderer();
}

CGraphicsRenderer::CGraphicsRenderer() : CObject(Type) {}

CGraphicsRenderer::~CGraphicsRenderer() = default;

} // namespace Quorvex::Vek
