#pragma once

// The factory of one registered component class: makes an Impl with its
// default constructor. Kind is the component kind Impl belongs to, by
// default the `ComponentKind` that Impl's kind base declares.
#include <vek/components/CComponentFactory.h>
#include <vek/core/Log.h>

#include <type_traits>

namespace Quorvex::Vek {

template <typename Impl, typename Kind = typename Impl::ComponentKind>
class CInstanceFactory : public CComponentFactory<Kind> {
    static_assert(std::is_base_of_v<Kind, Impl>, "a factory makes components of its own kind");

public:
    // `id`: the four-character identifier of Impl's components.
    explicit CInstanceFactory(uint32_t id) : CComponentFactory<Kind>(id) {}

    // A new factory, or null without memory.
    static CInstanceFactory* Create(uint32_t id) { return new (fallible) CInstanceFactory(id); }

    Kind* CreateInstance() override
    {
        Impl* made = new (fallible) Impl();
        if (!made)
            Log(LogLevel::Error, "CInstanceFactory::CreateInstance: no memory for component 0x%08X\n",
                unsigned(this->GetID()));
        return made;
    }

protected:
    ~CInstanceFactory() override = default;
};

} // namespace Quorvex::Vek
