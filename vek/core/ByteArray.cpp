#include <vek/core/ByteArray.h>

#include <vek/core/String.h>

#include <new>

namespace Quorvex::Vek {

ByteArray ByteArray::Create(int32_t length)
{
    return ByteArray(new (fallible) CByteArray(length));
}

ByteArray ByteArray::Create(const unsigned char* bytes, int32_t length)
{
    auto* array = CByteArray::Create(bytes, length);
    // The copy constructor cannot report a failed allocation; check here.
    if (array && array->GetLength() > 0 && !array->GetData()) {
        array->Release();
        array = nullptr;
    }
    return ByteArray(array);
}

ByteArray ByteArray::FromObject(CByteArray* bytes)
{
    if (bytes)
        bytes->Acquire();
    return ByteArray(bytes);
}

int ByteArray::FromHexString(const char* text, ByteArray& out)
{
    CByteArray* bytes = nullptr;
    const int result = CByteArray::FromHexString(text, bytes);
    out = ByteArray(bytes);
    return result;
}

int32_t ByteArray::GetLength() const
{
    return ToObject() ? ToObject()->GetLength() : 0;
}

unsigned char* ByteArray::GetData() const
{
    return ToObject() ? ToObject()->GetData() : nullptr;
}

unsigned char ByteArray::GetData(int32_t index) const
{
    return ToObject() ? ToObject()->GetData(index) : 0;
}

int ByteArray::GetView(int32_t offset, int32_t length, ByteArray& out) const
{
    if (!ToObject()) {
        out = ByteArray();
        return RESULT_NULL_POINTER;
    }
    CByteArray* view = nullptr;
    const int result = ToObject()->GetData(offset, length, &view);
    out = ByteArray(view);
    return result;
}

bool ByteArray::Equals(const ByteArray& other) const
{
    if (!ToObject() || !other.ToObject())
        return ToObject() == other.ToObject();
    return ToObject()->Equals(other.ToObject());
}

int32_t ByteArray::GetHashCode() const
{
    return ToObject() ? ToObject()->GetHashCode() : 0;
}

String ByteArray::ToHexString() const
{
    return String(CString::FromBytes(ToObject()));
}

} // namespace Quorvex::Vek
