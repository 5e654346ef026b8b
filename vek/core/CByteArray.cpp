#include <vek/core/CByteArray.h>

#include <vek/core/CList.h>
#include <vek/core/CharClass.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <cstring>
#include <new>

namespace Quorvex::Vek {

CByteArray::CByteArray(int32_t length) : CObject(Type), m_length(length < 0 ? 0 : length) {}

CByteArray::CByteArray(const unsigned char* src, int32_t length) : CObject(Type), m_length(length < 0 ? 0 : length)
{
    if (m_length == 0 || !AllocateInternalBuffer())
        return;
    if (src)
        std::memcpy(m_data, src, std::size_t(m_length));
}

CByteArray* CByteArray::Create(const unsigned char* src, int32_t length)
{
    auto* array = new (fallible) CByteArray(src, length);
    if (array && array->m_length > 0 && !array->m_data) {
        array->Release();
        return nullptr;
    }
    return array;
}

CByteArray::CByteArray(int32_t length, unsigned char* data, CObject* owner)
    : CObject(Type), m_length(length < 0 ? 0 : length), m_data(data), m_foreign(true)
{
    SetOwner(owner);
}

CByteArray::~CByteArray()
{
    if (m_ownerArray)
        m_ownerArray->m_views.fetch_sub(1, std::memory_order_relaxed);
    delete[] m_owned;
}

void CByteArray::SetOwner(CObject* owner)
{
    CByteArray* array = dynamic_cast<CByteArray*>(owner);
    if (array)
        array->m_views.fetch_add(1, std::memory_order_relaxed);
    if (m_ownerArray)
        m_ownerArray->m_views.fetch_sub(1, std::memory_order_relaxed);
    m_ownerArray = array;
    m_owner = RObject<CObject>::FromObject(owner);
}

bool CByteArray::AllocateInternalBuffer()
{
    if (m_data)
        return true;
    // A view of null memory has no data; memory of its own would silently
    // detach it from whatever it was meant to show.
    if (m_length == 0 || m_foreign)
        return false;
    m_owned = new (fallible) unsigned char[std::size_t(m_length)]();
    if (!m_owned) {
        Log(LogLevel::Error, "CByteArray::AllocateInternalBuffer: out of memory for %d bytes\n", m_length);
        return false;
    }
    m_data = m_owned;
    return true;
}

unsigned char* CByteArray::GetData()
{
    AllocateInternalBuffer();
    return m_data;
}

unsigned char CByteArray::GetData(int32_t index)
{
    if (index < 0 || index >= m_length)
        return 0;
    const unsigned char* data = GetData();
    return data ? data[index] : 0;
}

void CByteArray::SetData(unsigned char* data)
{
    m_data = data;
    m_foreign = true;
}

int CByteArray::GetData(int32_t offset, int32_t length, CByteArray** out)
{
    if (!out)
        return RESULT_ARGUMENT_NULL;
    *out = nullptr;
    if (offset < 0 || length < 0 || offset > m_length || length > m_length - offset) {
        Log(LogLevel::Error, "CByteArray::GetData: range %d+%d outside %d bytes\n", offset, length, m_length);
        return RESULT_INDEX_OUT_OF_RANGE;
    }
    unsigned char* data = GetData();
    if (m_length > 0 && !data)
        return RESULT_OUT_OF_MEMORY;
    auto* view = new (fallible) CByteArray(length, data ? data + offset : nullptr, this);
    if (!view)
        return RESULT_OUT_OF_MEMORY;
    *out = view;
    return RESULT_OK;
}

int CByteArray::SetData(CByteArray* source, int32_t offset)
{
    if (!source)
        return RESULT_ARGUMENT_NULL;
    if (offset < 0 || offset > source->m_length || m_length > source->m_length - offset) {
        Log(LogLevel::Error, "CByteArray::SetData: %d bytes at %d outside %d bytes\n", m_length, offset,
            source->m_length);
        return RESULT_INDEX_OUT_OF_RANGE;
    }
    if (source == this)
        return RESULT_OK; // the range check left only offset 0: nothing changes
    if (source->IsViewOf(this)) {
        Log(LogLevel::Error, "CByteArray::SetData: the source is a view of this array\n");
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    unsigned char* data = source->GetData();
    if (source->m_length > 0 && !data)
        return RESULT_OUT_OF_MEMORY;
    // Any owned buffer stays until destruction: earlier views may point into
    // it. Those views hold this array, not its owner, so while any is alive
    // the owner stays too.
    if (m_owner && m_owner.Get() != source && m_views.load(std::memory_order_relaxed) > 0) {
        if (const int result = KeepOwnerUntilDestruction(); result < 0)
            return result;
    }
    SetOwner(source);
    m_data = data ? data + offset : nullptr;
    m_foreign = true;
    return RESULT_OK;
}

// True when this array reaches `array` through its chain of owners.
bool CByteArray::IsViewOf(const CByteArray* array) const
{
    for (const CByteArray* owner = m_ownerArray; owner; owner = owner->m_ownerArray) {
        if (owner == array)
            return true;
    }
    return false;
}

int CByteArray::KeepOwnerUntilDestruction()
{
    if (!m_formerOwners)
        m_formerOwners = CList<CObject>::Create();
    auto* owners = static_cast<CList<CObject>*>(m_formerOwners.Get());
    if (!owners || owners->Add(m_owner.Get()) < 0) {
        Log(LogLevel::Error, "CByteArray::SetData: no memory to keep the earlier owner\n");
        return RESULT_OUT_OF_MEMORY;
    }
    return RESULT_OK;
}

void CByteArray::Clear()
{
    if (m_data && m_length > 0)
        std::memset(m_data, 0, std::size_t(m_length));
}

int CByteArray::Clear(int32_t offset, int32_t length)
{
    unsigned char* data = GetData();
    if (!data)
        return RESULT_ERROR;
    if (offset < 0 || length < 0 || offset > m_length || length > m_length - offset) {
        Log(LogLevel::Error, "CByteArray::Clear: range %d+%d outside %d bytes\n", offset, length, m_length);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (length > 0)
        std::memset(data + offset, 0, std::size_t(length));
    return RESULT_OK;
}

bool CByteArray::Equals(CByteArray* other)
{
    if (!other)
        return false;
    if (other == this)
        return true;
    return other->m_length == m_length && Equals(other->GetData(), other->m_length);
}

bool CByteArray::Equals(const unsigned char* bytes, int32_t length)
{
    return length == m_length && StartsWith(bytes, length);
}

bool CByteArray::StartsWith(const unsigned char* bytes, int32_t length)
{
    if (length < 0 || length > m_length)
        return false;
    if (length == 0)
        return true;
    const unsigned char* data = GetData();
    return bytes && data && std::memcmp(data, bytes, std::size_t(length)) == 0;
}

// Accepts an optional "0x"/"0X" prefix and hexadecimal digits of either
// case; an odd count is read as if a '0' led it. Nothing else is allowed.
int CByteArray::FromHexString(const char* text, CByteArray*& out)
{
    out = nullptr;
    if (!text)
        return RESULT_ARGUMENT_NULL;
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
        text += 2;
    std::size_t digits = 0;
    for (; text[digits]; ++digits) {
        if (CharClass::HexDigitValue(CharClass::Widen(text[digits])) < 0) {
            Log(LogLevel::Error, "CByteArray::FromHexString: no hexadecimal digit at position %lld\n", (long long)digits);
            return RESULT_FORMAT_ERROR;
        }
        if (digits >= std::size_t(INT32_MAX)) {
            Log(LogLevel::Error, "CByteArray::FromHexString: text too long\n");
            return RESULT_OVERFLOW;
        }
    }
    const int32_t count = int32_t((digits + 1) / 2);
    auto* bytes = new (fallible) CByteArray(count);
    unsigned char* data = bytes ? bytes->GetData() : nullptr;
    if (!bytes || (count > 0 && !data)) {
        if (bytes)
            bytes->Release();
        return RESULT_OUT_OF_MEMORY;
    }
    const std::size_t padding = digits % 2;
    for (std::size_t i = 0; i < digits; ++i) {
        const std::size_t digit = padding + i;
        const int value = CharClass::HexDigitValue(CharClass::Widen(text[i]));
        data[digit / 2] |= (unsigned char)(digit % 2 == 0 ? value << 4 : value);
    }
    out = bytes;
    return RESULT_OK;
}

int32_t CByteArray::GetHashCode() const
{
    if (m_length == 0)
        return int32_t(0x811c9dc5u);
    if (!m_data)
        return 0;
    uint32_t hash = 0x811c9dc5u;
    for (int32_t i = 0; i < m_length; ++i) {
        hash ^= m_data[i];
        hash *= 16777619u;
    }
    return int32_t(hash);
}

} // namespace Quorvex::Vek
