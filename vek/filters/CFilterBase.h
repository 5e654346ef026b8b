#pragma once

// The root of every filter: a counted object with a property bag for its
// configuration, and the graphics context that rendering filters draw for.
//
// A filter is driven by one thread at a time; only its output and metadata
// queues are shared with other threads (see CVideoFilter, CAudioFilter).
#include <vek/core/RObject.h>
#include <vek/filters/graphics/CGraphicsContext.h>
#include <vek/media/IProperties.h>

namespace Quorvex::Vek {

class VEK_API CFilterBase : public CObject, public IProperties {
public:
    enum : uint32_t { Type = Four("filt") };

    // Borrowed; null until set.
    CGraphicsContext* GetGraphicsContext() const { return m_graphicsContext; }
    // Shares `context` (null clears it).
    void SetGraphicsContext(CGraphicsContext* context) { m_graphicsContext = RObject<CGraphicsContext>::FromObject(context); }

    // True for a filter that hands out pictures in another order than it
    // takes them in; false here.
    virtual bool ChangesTemporalOrder();

protected:
    explicit CFilterBase(uint32_t type);
    ~CFilterBase() override;

private:
    RObject<CGraphicsContext> m_graphicsContext;
};

} // namespace Quorvex::Vek
