#include <vek/core/BaseObject.h>

#include <utility>

namespace Quorvex::Vek {

BaseObject::BaseObject(CObject* object) : m_object(object) {}

BaseObject::BaseObject(const BaseObject& other) : m_object(other.m_object)
{
    if (m_object)
        m_object->Acquire();
}

BaseObject::BaseObject(BaseObject&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}

BaseObject::~BaseObject()
{
    Reset(nullptr);
}

BaseObject& BaseObject::operator=(const BaseObject& other)
{
    if (other.m_object)
        other.m_object->Acquire();
    Reset(other.m_object);
    return *this;
}

BaseObject& BaseObject::operator=(BaseObject&& other) noexcept
{
    if (this != &other)
        Reset(std::exchange(other.m_object, nullptr));
    return *this;
}

BaseObject& BaseObject::operator=(CObject* object)
{
    if (object != m_object)
        Reset(object);
    return *this;
}

BaseObject BaseObject::FromObject(CObject* object)
{
    if (object)
        object->Acquire();
    return BaseObject(object);
}

void BaseObject::Reset(CObject* object)
{
    // Store first: releasing the old object may re-enter this wrapper.
    CObject* old = std::exchange(m_object, object);
    if (old)
        old->Release();
}

} // namespace Quorvex::Vek
