#pragma once

// The base of every multiplexer, and the kind its factories are registered
// under. It holds what all writers share with readers (context, media,
// container properties); the writing operations arrive with the first
// writer format, which is why this class has no virtuals of its own yet.
#include <vek/components/CComponentInventory.h>
#include <vek/containers/CContainer.h>

namespace Quorvex::Vek {

class VEK_API CContainerWriter : public CContainer {
public:
    enum : uint32_t { Type = Four("cwtr") };
    using ComponentKind = CContainerWriter;

protected:
    explicit CContainerWriter(uint32_t type) : CContainer(type) {}
    ~CContainerWriter() override;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CContainerWriter);
