#pragma once

// The factory interface of one component kind (container reader, video
// decompressor, ...). A factory carries the four-character identifier of the
// component it makes, given when the factory is built, and makes a new
// component on request. Inventories keep factories for the life of the
// process and find them by that identifier.
//
// A kind is any CObject-derived class; its classes name it for
// CInstanceFactory with `using ComponentKind = TheKind;` in the kind's base.
#include <vek/core/CObject.h>

namespace Quorvex::Vek {

template <typename Kind>
class CComponentFactory : public CObject {
public:
    enum : uint32_t { Type = Four("cfac") };

    // The four-character identifier of the component this factory makes.
    uint32_t GetID() const { return m_id; }

    // A new component with one reference for the caller; null without memory.
    virtual Kind* CreateInstance() = 0;

protected:
    explicit CComponentFactory(uint32_t id, uint32_t type = Type) : CObject(type), m_id(id) {}
    ~CComponentFactory() override = default;

private:
    const uint32_t m_id;
};

} // namespace Quorvex::Vek
