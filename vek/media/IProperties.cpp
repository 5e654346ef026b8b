#include <vek/media/IProperties.h>

#include <cstdint>
#include <cstring>
#include <new>

#include <vek/core/Log.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/platform/TextCodec.h>

namespace Quorvex::Vek {

IProperties::IProperties(const IProperties& other)
{
    SetProperties(&other);
}

IProperties::~IProperties()
{
    if (m_properties)
        m_properties->Release();
}

bool IProperties::EnsureDictionary()
{
    if (!m_properties)
        m_properties = Dictionary::Create();
    return m_properties != nullptr;
}

CByteArray* IProperties::Find(const char* key) const
{
    if (!m_properties || !key)
        return nullptr;
    return m_properties->Get(key);
}

template <typename Key>
int IProperties::Store(Key key, CByteArray* value)
{
    if (!EnsureDictionary()) {
        Log(LogLevel::Error, "IProperties::SetProperty: no memory for the dictionary\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return m_properties->Set(key, value);
}

namespace {

// A key that is not well-formed UTF-8 would be stored under its repaired
// text and could never be found again by the bytes the caller wrote.
int CheckKey(const char* key)
{
    if (!key) {
        Log(LogLevel::Error, "IProperties::SetProperty: null key\n");
        return RESULT_ARGUMENT_NULL;
    }
    const size_t length = std::strlen(key);
    if (length > INT32_MAX || !Platform::IsWellFormedUtf8(key, static_cast<int32_t>(length))) {
        Log(LogLevel::Error, "IProperties::SetProperty: key is not well-formed UTF-8\n");
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

} // namespace

int IProperties::SetProperty(const char* key, int32_t length, const unsigned char* data)
{
    if (const int result = CheckKey(key); result < 0)
        return result;
    if (length < 0) {
        Log(LogLevel::Error, "IProperties::SetProperty: negative length %d for \"%s\"\n", length, key);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    // A null `data` leaves the new array's bytes at zero.
    RObject<CByteArray> value(CByteArray::Create(data, length));
    if (!value || (length > 0 && !value->GetData())) {
        Log(LogLevel::Error, "IProperties::SetProperty: no memory for %d bytes of \"%s\"\n", length, key);
        return RESULT_OUT_OF_MEMORY;
    }
    return Store(key, value.Get());
}

int IProperties::SetProperty(const char* key, CByteArray* value)
{
    if (const int result = CheckKey(key); result < 0)
        return result;
    if (!value) {
        Log(LogLevel::Error, "IProperties::SetProperty: null array for \"%s\"\n", key);
        return RESULT_ARGUMENT_NULL;
    }
    return Store(key, value);
}

int IProperties::SetProperty(CString* key, CByteArray* value)
{
    if (!key || !value)
        return RESULT_ARGUMENT_NULL;
    return Store(key, value);
}

int IProperties::GetProperty(const char* key, int32_t capacity, unsigned char* out)
{
    CByteArray* value = Find(key);
    if (!value)
        return 0;
    const int32_t length = value->GetLength();
    if (!out)
        return length;
    if (capacity < length)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (length > 0) {
        const unsigned char* data = value->GetData();
        if (!data)
            return RESULT_OUT_OF_MEMORY; // an array whose memory could not be made
        std::memcpy(out, data, static_cast<size_t>(length));
    }
    return length;
}

CByteArray* IProperties::GetProperty(const char* key) const
{
    return Find(key);
}

CByteArray* IProperties::GetProperty(CString* key) const
{
    return key ? Find(key->GetChars()) : nullptr;
}

int IProperties::GetFourProperty(const char* key, unsigned int& value)
{
    unsigned char bytes[4];
    const int result = GetProperty(key, sizeof bytes, bytes);
    if (result <= 0)
        return result;
    if (result != sizeof bytes)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    value = (uint32_t(bytes[0]) << 24) | (uint32_t(bytes[1]) << 16) | (uint32_t(bytes[2]) << 8) | uint32_t(bytes[3]);
    return result;
}

int IProperties::SetFourProperty(const char* key, unsigned int value)
{
    const unsigned char bytes[4] = {
        static_cast<unsigned char>(value >> 24),
        static_cast<unsigned char>(value >> 16),
        static_cast<unsigned char>(value >> 8),
        static_cast<unsigned char>(value),
    };
    return SetProperty(key, sizeof bytes, bytes);
}

int IProperties::RemoveProperty(const char* key)
{
    if (!m_properties || !key || m_properties->Remove(key) == 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    return RESULT_OK;
}

void IProperties::ClearProperties()
{
    if (Dictionary* old = m_properties) {
        m_properties = nullptr;
        old->Release();
    }
}

int IProperties::SetProperties(const IProperties* other)
{
    if (!other || other == this || !other->m_properties)
        return RESULT_OK;
    const int32_t count = other->GetPropertyCount();
    for (int32_t i = 0; i < count; ++i) {
        CString* key = other->m_properties->GetKey(i);
        CByteArray* value = other->m_properties->GetValue(i);
        if (!key || !value)
            continue;
        // Copy the bytes: the two bags must not share writable memory.
        const unsigned char* data = value->GetData();
        if (value->GetLength() > 0 && !data)
            return RESULT_OUT_OF_MEMORY;
        RObject<CByteArray> copy(CByteArray::Create(data, value->GetLength()));
        if (!copy || (copy->GetLength() > 0 && !copy->GetData()))
            return RESULT_OUT_OF_MEMORY;
        const int result = Store(key, copy.Get());
        if (result < 0)
            return result;
    }
    return RESULT_OK;
}

int32_t IProperties::GetPropertyCount() const
{
    return m_properties ? m_properties->GetCount() : 0;
}

CString* IProperties::GetPropertyName(int32_t index) const
{
    return m_properties ? m_properties->GetKey(index) : nullptr;
}

const IProperties::Accessor* IProperties::GetPropertyAccessors() const
{
    return nullptr;
}

const IProperties::Accessor* IProperties::FindAccessor(const char* key) const
{
    if (!key)
        return nullptr;
    const Accessor* accessor = GetPropertyAccessors();
    for (; accessor && accessor->key; ++accessor) {
        if (std::strcmp(accessor->key, key) == 0)
            return accessor;
    }
    return nullptr;
}

unsigned int IProperties::GetPropertyType(const char* key)
{
    const Accessor* accessor = FindAccessor(key);
    return accessor ? accessor->type : 0;
}

const char* IProperties::GetPropertyDescription(const char* key)
{
    const Accessor* accessor = FindAccessor(key);
    return accessor ? accessor->description : nullptr;
}

CString* IProperties::GetPropertyValue(const char* key)
{
    const Accessor* accessor = FindAccessor(key);
    if (!accessor || !accessor->formatter)
        return CString::Create("(null)");
    CString* text = nullptr;
    const int result = accessor->formatter(this, key, &text);
    if (result < 0 || !text) {
        if (text)
            text->Release();
        return CString::Create("(error)");
    }
    return text;
}

namespace {

// Reads exactly `width` bytes of `key` through the bag's virtual reader.
int ReadExact(IProperties* bag, const char* key, unsigned char* out, int32_t width)
{
    const int length = bag->GetProperty(key, 0, nullptr);
    if (length == 0)
        return bag->GetProperty(key) ? RESULT_TYPE_MISMATCH : RESULT_INDEX_OUT_OF_RANGE;
    if (length != width)
        return RESULT_TYPE_MISMATCH;
    const int result = bag->GetProperty(key, width, out);
    return result == width ? RESULT_OK : (result < 0 ? result : RESULT_TYPE_MISMATCH);
}

int Emit(CString* text, CString** out)
{
    if (!text)
        return RESULT_OUT_OF_MEMORY;
    *out = text;
    return RESULT_OK;
}

} // namespace

int IProperties::GetBool(IProperties* bag, const char* key, CString** out)
{
    if (!bag || !out)
        return RESULT_ARGUMENT_NULL;
    unsigned char byte = 0;
    const int result = ReadExact(bag, key, &byte, 1);
    if (result < 0)
        return result;
    return Emit(CString::Create(byte ? "true" : "false"), out);
}

int IProperties::GetByte(IProperties* bag, const char* key, CString** out)
{
    if (!bag || !out)
        return RESULT_ARGUMENT_NULL;
    unsigned char byte = 0;
    const int result = ReadExact(bag, key, &byte, 1);
    if (result < 0)
        return result;
    return Emit(CString::WithFormat("%u", static_cast<unsigned>(byte)), out);
}

int IProperties::GetUInt16(IProperties* bag, const char* key, CString** out)
{
    if (!bag || !out)
        return RESULT_ARGUMENT_NULL;
    unsigned char bytes[2] = {};
    const int result = ReadExact(bag, key, bytes, 2);
    if (result < 0)
        return result;
    const unsigned value = bytes[0] | (unsigned(bytes[1]) << 8);
    return Emit(CString::WithFormat("%u", value), out);
}

int IProperties::GetUInt32(IProperties* bag, const char* key, CString** out)
{
    if (!bag || !out)
        return RESULT_ARGUMENT_NULL;
    unsigned char bytes[4] = {};
    const int result = ReadExact(bag, key, bytes, 4);
    if (result < 0)
        return result;
    const uint32_t value = bytes[0] | (uint32_t(bytes[1]) << 8) | (uint32_t(bytes[2]) << 16) |
                           (uint32_t(bytes[3]) << 24);
    return Emit(CString::WithFormat("%lu", static_cast<unsigned long>(value)), out);
}

int IProperties::GetString(IProperties* bag, const char* key, CString** out)
{
    if (!bag || !out)
        return RESULT_ARGUMENT_NULL;
    const int length = bag->GetProperty(key, 0, nullptr);
    if (length < 0)
        return length;
    if (length == 0)
        return bag->GetProperty(key) ? Emit(CString::Create(""), out) : RESULT_INDEX_OUT_OF_RANGE;
    unsigned char* bytes = new (fallible) unsigned char[static_cast<size_t>(length)];
    if (!bytes)
        return RESULT_OUT_OF_MEMORY;
    const int result = bag->GetProperty(key, length, bytes);
    int32_t textLength = 0;
    if (result > 0) {
        const void* zero = std::memchr(bytes, 0, static_cast<size_t>(result));
        textLength = zero ? static_cast<int32_t>(static_cast<const unsigned char*>(zero) - bytes) : result;
    }
    CString* text = result >= 0 ? CString::Create(reinterpret_cast<const char*>(bytes), textLength) : nullptr;
    delete[] bytes;
    if (result < 0)
        return result;
    return Emit(text, out);
}

} // namespace Quorvex::Vek
