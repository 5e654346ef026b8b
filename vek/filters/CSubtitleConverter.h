#pragma once

// The kind of every subtitle converter (caption and subtitle renderers,
// text format converters), registered in its own inventory under its
// FilterType code. Renderers draw with their graphics renderer's settings
// onto pictures the size of the filter's graphics context.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CSubtitleFilter.h>
#include <vek/filters/graphics/CGraphicsRenderer.h>

namespace Quorvex::Vek {

class VEK_API CSubtitleConverter : public CSubtitleFilter {
public:
    enum : uint32_t { Type = Four("scnv") };
    using ComponentKind = CSubtitleConverter;

    // Writes `input` (null: end of input) and reads one converted sample:
    // 0 with one in `output`, 1 without, or the failure.
    virtual int Convert(CSubtitleSample* input, CSubtitleSample*& output);
    // The drawing settings (borrowed), made at the first call; null only
    // without memory.
    CGraphicsRenderer* GetGraphicsRenderer();

protected:
    explicit CSubtitleConverter(uint32_t type);
    ~CSubtitleConverter() override;

private:
    RObject<CGraphicsRenderer> m_renderer;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CSubtitleConverter);
