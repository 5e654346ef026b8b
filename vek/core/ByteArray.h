#pragma once

// Public value-type wrapper over CByteArray. Copies share the same bytes
// (nothing is cloned). A default ByteArray is null; it reads as empty.
#include <vek/core/BaseObject.h>
#include <vek/core/CByteArray.h>

namespace Quorvex::Vek {

class String; // vek/core/String.h

class VEK_API ByteArray : public Object<CByteArray> {
public:
    ByteArray() = default;
    // Adopts the caller's reference.
    ByteArray(CByteArray* bytes) : BaseObject(bytes), Object<CByteArray>() {}
    // BaseObject is a virtual base: this class initialises it.
    ByteArray(const ByteArray& other) : BaseObject(other), Object<CByteArray>() {}
    ByteArray(ByteArray&& other) noexcept : BaseObject(static_cast<BaseObject&&>(other)), Object<CByteArray>() {}
    ByteArray& operator=(const ByteArray& other)
    {
        BaseObject::operator=(other);
        return *this;
    }
    ByteArray& operator=(ByteArray&& other) noexcept
    {
        BaseObject::operator=(static_cast<BaseObject&&>(other));
        return *this;
    }

    // `length` zero bytes / a copy of `length` bytes; null on failure.
    static ByteArray Create(int32_t length);
    static ByteArray Create(const unsigned char* bytes, int32_t length);
    // Shares an array the caller keeps too.
    static ByteArray FromObject(CByteArray* bytes);
    // See CByteArray::FromHexString; `out` is null on failure.
    static int FromHexString(const char* text, ByteArray& out);

    int32_t GetLength() const;
    // The first byte; null for a null or empty array.
    unsigned char* GetData() const;
    unsigned char GetData(int32_t index) const;
    // A view of `length` bytes at `offset` that keeps this array alive;
    // RESULT_INDEX_OUT_OF_RANGE when the range passes the end.
    int GetView(int32_t offset, int32_t length, ByteArray& out) const;

    bool Equals(const ByteArray& other) const;
    int32_t GetHashCode() const;
    // Two upper-case hexadecimal digits per byte.
    String ToHexString() const;
};

} // namespace Quorvex::Vek
