#pragma once

// Root of the public value-type layer. A wrapper holds one reference to an
// internal CObject; copies share the object (nothing is cloned).
//
// Construction from a pointer ADOPTS the caller's reference; FromObject
// SHARES (adds a reference) and is the form used when the library keeps the
// object too. A null wrapper is never dereferenced.
#include <vek/core/CObject.h>

namespace Quorvex::Vek {

class VEK_API BaseObject {
public:
    BaseObject() = default;
    BaseObject(CObject* object);
    BaseObject(const BaseObject& other);
    BaseObject(BaseObject&& other) noexcept;
    virtual ~BaseObject();

    BaseObject& operator=(const BaseObject& other);
    BaseObject& operator=(BaseObject&& other) noexcept;
    // Adopts `object` unless it is the one already held.
    BaseObject& operator=(CObject* object);

    static BaseObject FromObject(CObject* object);

    CObject* ToObject() const { return m_object; }
    operator CObject*() const { return m_object; }
    bool IsNull() const { return m_object == nullptr; }

    bool operator==(CObject* object) const { return m_object == object; }
    bool operator!=(CObject* object) const { return m_object != object; }

protected:
    // Replaces the held object with `object` (already owned by the caller).
    void Reset(CObject* object);

    CObject* m_object = nullptr;
};

// The typed wrapper over internal class CImpl. Iface, when not void, is an
// interface CImpl implements (for example IProperties) and is reachable
// through GetInterface; X distinguishes wrappers that share an implementation.
template <typename CImpl, typename Iface = void, typename X = void>
class Object : public virtual BaseObject {
public:
    using Impl = CImpl;

    Object() = default;
    Object(CImpl* object) : BaseObject(object) {}
    Object(const Object& other) : BaseObject(other) {}
    Object(Object&& other) noexcept : BaseObject(static_cast<BaseObject&&>(other)) {}
    Object& operator=(const Object& other)
    {
        BaseObject::operator=(other);
        return *this;
    }
    Object& operator=(Object&& other) noexcept
    {
        BaseObject::operator=(static_cast<BaseObject&&>(other));
        return *this;
    }
    Object& operator=(CImpl* object)
    {
        BaseObject::operator=(static_cast<CObject*>(object));
        return *this;
    }

    static Object FromObject(CImpl* object)
    {
        if (object)
            object->Acquire();
        return Object(object);
    }

    CImpl* ToObject() const { return static_cast<CImpl*>(m_object); }
    operator CImpl*() const { return static_cast<CImpl*>(m_object); }
    CImpl* operator->() const { return static_cast<CImpl*>(m_object); }

    template <typename I = Iface>
    I* GetInterface() const
    {
        return m_object ? static_cast<I*>(static_cast<CImpl*>(m_object)) : nullptr;
    }

    bool operator==(CImpl* object) const { return m_object == object; }
    bool operator!=(CImpl* object) const { return m_object != object; }
};

} // namespace Quorvex::Vek
