#include <vek/filters/CSubtitleConverter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CSubtitleConverter);

namespace Quorvex::Vek {

CSubtitleConverter::CSubtitleConverter(uint32_t type) : CSubtitleFilter(type) {}

CSubtitleConverter::~CSubtitleConverter() = default;

int CSubtitleConverter::Convert(CSubtitleSample* input, CSubtitleSample*& output)
{
    return WriteAndRead(input, output);
}

CGraphicsRenderer* CSubtitleConverter::GetGraphicsRenderer()
{
    if (!m_renderer)
        m_renderer = RObject<CGraphicsRenderer>(CGraphicsRenderer::Create());
    return m_renderer;
}

} // namespace Quorvex::Vek
