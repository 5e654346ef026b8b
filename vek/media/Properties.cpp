#include <vek/media/Properties.h>

#include <cstring>
#include <utility>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

Properties::Properties(IProperties* bag) : m_bag(bag), m_owner(dynamic_cast<CObject*>(bag))
{
    if (m_owner)
        m_owner->Acquire();
}

Properties::Properties(const Properties& other) : m_bag(other.m_bag), m_owner(other.m_owner)
{
    if (m_owner)
        m_owner->Acquire();
}

Properties& Properties::operator=(const Properties& other)
{
    if (other.m_owner)
        other.m_owner->Acquire();
    CObject* old = std::exchange(m_owner, other.m_owner);
    m_bag = other.m_bag;
    if (old)
        old->Release();
    return *this;
}

Properties::~Properties()
{
    if (CObject* old = std::exchange(m_owner, nullptr))
        old->Release();
}

// Numbers go to the bag as the machine holds them: little-endian on every
// platform the library builds for.
template <typename T>
int Properties::Write(const char* key, T value)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    unsigned char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    return m_bag->SetProperty(key, static_cast<int32_t>(sizeof(T)), bytes);
}

// Reads straight into the variable, so a shorter stored value fills only
// its first bytes and an absent key leaves it untouched.
template <typename T>
int Properties::Read(const char* key, T& value)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    return m_bag->GetProperty(key, static_cast<int32_t>(sizeof(T)), reinterpret_cast<unsigned char*>(&value));
}

int Properties::SetProperty(const char* key, int value)
{
    return Write(key, static_cast<int32_t>(value));
}

int Properties::SetProperty(const char* key, unsigned int value)
{
    return Write(key, static_cast<uint32_t>(value));
}

int Properties::SetProperty(const char* key, int64_t value)
{
    return Write(key, value);
}

int Properties::SetProperty(const char* key, bool value)
{
    return Write(key, static_cast<unsigned char>(value ? 1 : 0));
}

int Properties::SetProperty(const char* key, int length, const unsigned char* data)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    return m_bag->SetProperty(key, length, data);
}

int Properties::SetProperty(const char* key, const ByteArray& value)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    return m_bag->SetProperty(key, value.ToObject());
}

int Properties::GetProperty(const char* key, int& value)
{
    return Read(key, value);
}

int Properties::GetProperty(const char* key, unsigned int& value)
{
    return Read(key, value);
}

int Properties::GetProperty(const char* key, int64_t& value)
{
    return Read(key, value);
}

int Properties::GetProperty(const char* key, bool& value)
{
    // Through a byte: a stored 2 must not land in a bool's storage.
    unsigned char byte = 0;
    const int result = Read(key, byte);
    if (result > 0)
        value = byte != 0;
    return result;
}

int Properties::GetProperty(const char* key, int capacity, unsigned char* out)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    return m_bag->GetProperty(key, capacity, out);
}

int Properties::GetProperty(const char* key, ByteArray& out)
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    CByteArray* value = m_bag->GetProperty(key);
    if (!value)
        return 0;
    out = ByteArray::FromObject(value);
    return value->GetLength();
}

int Properties::GetFourProperty(const char* key, unsigned int& value)
{
    return m_bag ? m_bag->GetFourProperty(key, value) : RESULT_NULL_POINTER;
}

int Properties::SetFourProperty(const char* key, unsigned int value)
{
    return m_bag ? m_bag->SetFourProperty(key, value) : RESULT_NULL_POINTER;
}

int Properties::RemoveProperty(const char* key)
{
    return m_bag ? m_bag->RemoveProperty(key) : RESULT_NULL_POINTER;
}

int Properties::ClearProperties()
{
    if (!m_bag)
        return RESULT_NULL_POINTER;
    m_bag->ClearProperties();
    return RESULT_OK;
}

int32_t Properties::GetPropertyCount() const
{
    return m_bag ? m_bag->GetPropertyCount() : 0;
}

String Properties::GetPropertyName(int32_t index) const
{
    return String::FromObject(m_bag ? m_bag->GetPropertyName(index) : nullptr);
}

unsigned int Properties::GetPropertyType(const char* key)
{
    return m_bag ? m_bag->GetPropertyType(key) : 0;
}

const char* Properties::GetPropertyDescription(const char* key)
{
    return m_bag ? m_bag->GetPropertyDescription(key) : nullptr;
}

String Properties::GetPropertyValue(const char* key)
{
    return String(m_bag ? m_bag->GetPropertyValue(key) : nullptr);
}

} // namespace Quorvex::Vek
