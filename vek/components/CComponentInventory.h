#pragma once

// The registry of one component kind: its factories in registration order,
// found by the identifier of the component each makes. There is one
// inventory per kind in the process, reached only through the private
// GetSingleton(); every member is static and safe to call from several
// threads at once.
//
// A kind gets its inventory from two macros, used at global scope: its
// header declares the one instance (VEK_DECLARE_COMPONENT_INVENTORY, with
// VEK_API for the library's kinds so that every module links the same one)
// and exactly one source file defines it (VEK_DEFINE_COMPONENT_INVENTORY).
// Without the definition a program using the kind does not link.
//
// Factories are never removed: an inventory keeps a reference to each for
// the life of the process and is itself never destroyed, so a factory
// pointer handed out stays valid, and registration from static
// constructors or lookups from static destructors elsewhere are safe.
#include <vek/components/CComponentFactory.h>
#include <vek/core/CList.h>
#include <vek/core/CLock.h>
#include <vek/core/Log.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

template <typename Factory>
class CComponentInventory;

template <typename Kind>
class CComponentInventory<CComponentFactory<Kind>> {
public:
    using Factory = CComponentFactory<Kind>;

    // Appends `factory`; the inventory keeps a reference. 0, or
    // RESULT_ARGUMENT_NULL, RESULT_OUT_OF_MEMORY.
    static int AddFactory(Factory* factory)
    {
        if (!factory) {
            Log(LogLevel::Error, "CComponentInventory::AddFactory: the factory is null\n");
            return RESULT_ARGUMENT_NULL;
        }
        CComponentInventory& inventory = GetSingleton();
        Guard guard(inventory.m_lock);
        if (!inventory.m_factories)
            inventory.m_factories = CList<Factory>::Create();
        const int result = inventory.m_factories ? inventory.m_factories->Add(factory) : RESULT_OUT_OF_MEMORY;
        if (result < 0)
            Log(LogLevel::Error, "CComponentInventory::AddFactory: adding factory 0x%08X failed with %s\n",
                unsigned(factory->GetID()), GetResultName(result));
        return result;
    }

    // New reference: a snapshot of the factories in registration order
    // (empty when none is registered), or null without memory.
    static CList<Factory>* GetFactories()
    {
        RObject<CList<Factory>> copy(CList<Factory>::Create());
        CComponentInventory& inventory = GetSingleton();
        Guard guard(inventory.m_lock);
        const int32_t count = inventory.m_factories ? inventory.m_factories->GetCount() : 0;
        if (!copy || copy->Reserve(count) < 0) {
            Log(LogLevel::Error, "CComponentInventory::GetFactories: no memory for a list of %d factories\n",
                int(count));
            return nullptr;
        }
        for (int32_t i = 0; i < count; ++i)
            copy->Add(inventory.m_factories->Get(i)); // room was reserved
        return copy.Detach();
    }

    // Borrowed (factories live as long as the process): the first factory
    // registered with identifier `id`, or null.
    static Factory* GetFactoryByID(uint32_t id)
    {
        CComponentInventory& inventory = GetSingleton();
        Guard guard(inventory.m_lock);
        const int32_t count = inventory.m_factories ? inventory.m_factories->GetCount() : 0;
        for (int32_t i = 0; i < count; ++i) {
            Factory* factory = inventory.m_factories->Get(i);
            if (factory->GetID() == id)
                return factory;
        }
        return nullptr;
    }

    // A new component (one reference for the caller) from the factory with
    // identifier `id`; null when none has it or without memory.
    static Kind* CreateInstance(uint32_t id)
    {
        Factory* factory = GetFactoryByID(id);
        return factory ? factory->CreateInstance() : nullptr;
    }

private:
    class Guard {
    public:
        explicit Guard(CLock& lock) : m_lock(lock) { m_lock.Enter(); }
        ~Guard() { m_lock.Exit(); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        CLock& m_lock;
    };

    CComponentInventory() = default;
    ~CComponentInventory() = default;

    // The process's one inventory of this kind; see VEK_DEFINE_COMPONENT_INVENTORY.
    static CComponentInventory& GetSingleton();

    CLock m_lock;
    RObject<CList<Factory>> m_factories; // made at the first AddFactory
};

} // namespace Quorvex::Vek

// In the kind's header, at global scope: declares the one inventory of Kind.
// `api` is VEK_API for the library's kinds, empty for a program's own.
#define VEK_DECLARE_COMPONENT_INVENTORY(api, Kind)                                                      \
    template <>                                                                                         \
    api ::Quorvex::Vek::CComponentInventory<::Quorvex::Vek::CComponentFactory<Kind>>&                   \
    ::Quorvex::Vek::CComponentInventory<::Quorvex::Vek::CComponentFactory<Kind>>::GetSingleton()

// In exactly one source file, at global scope: defines the one inventory of
// Kind, made at first use (thread-safe) and never destroyed.
#define VEK_DEFINE_COMPONENT_INVENTORY(Kind)                                                            \
    template <>                                                                                         \
    ::Quorvex::Vek::CComponentInventory<::Quorvex::Vek::CComponentFactory<Kind>>&                       \
    ::Quorvex::Vek::CComponentInventory<::Quorvex::Vek::CComponentFactory<Kind>>::GetSingleton()        \
    {                                                                                                   \
        using Inventory = ::Quorvex::Vek::CComponentInventory<::Quorvex::Vek::CComponentFactory<Kind>>; \
        alignas(Inventory) static unsigned char storage[sizeof(Inventory)];                             \
        static Inventory* const inventory = new (storage) Inventory();                                  \
        return *inventory;                                                                              \
    }
