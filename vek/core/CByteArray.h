#pragma once

// Reference-counted bytes: either owned (allocated on first need and freed
// by the destructor) or a view on foreign memory kept alive by an owner
// object. A negative length is stored as 0.
#include <vek/core/CObject.h>
#include <vek/core/RObject.h>
#include <vek/platform/OleMembers.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

class VEK_API CByteArray : public CObject {
public:
    enum : uint32_t { Type = Four("data") };

    // `length` bytes, allocated (zeroed) when first needed.
    explicit CByteArray(int32_t length);
    // A copy of `length` bytes from src (nothing copied when src is null).
    CByteArray(const unsigned char* src, int32_t length);
    // As that constructor, but null when the object or its bytes cannot be
    // allocated, where the constructor would leave zeros. The library makes
    // its copies this way.
    static CByteArray* Create(const unsigned char* src, int32_t length);
    // A view on foreign memory; `owner` (may be null) is Acquired and keeps
    // the memory alive; the memory is never freed by this array.
    CByteArray(int32_t length, unsigned char* data, CObject* owner);

    int32_t GetLength() const { return m_length; }
    // The first byte (allocating owned memory on first need); null on
    // allocation failure, for a zero-length array without memory, and for
    // a view of null memory (which never allocates).
    unsigned char* GetData();
    // One byte; 0 when out of range.
    unsigned char GetData(int32_t index);
    // Repoints the array at other memory of the same length. The caller
    // keeps that memory alive as long as this array and its views.
    void SetData(unsigned char* data);

    // A new view of `length` bytes at `offset`, owned by this array.
    // -19007 when offset or length is negative or the range passes the end.
    int GetData(int32_t offset, int32_t length, CByteArray** out);
    // Makes this array a view of its own length into source at offset.
    // -19003 when `source` is itself a view of this array: each would keep
    // the other alive for ever. Views of this array made earlier stay
    // valid: while any is alive, the memory it pointed at is kept until this
    // array is destroyed.
    int SetData(CByteArray* source, int32_t offset);

    void Clear();
    // -19000 when there is no data, -19003 when the range is out of bounds.
    int Clear(int32_t offset, int32_t length);

    bool Equals(CByteArray* other);
    bool Equals(const unsigned char* bytes, int32_t length);
    bool StartsWith(const unsigned char* bytes, int32_t length);

    // Hexadecimal text to bytes; a new array in `out` on success.
    static int FromHexString(const char* text, CByteArray*& out);

    // 32-bit FNV-1a over the bytes; 0 without data.
    int32_t GetHashCode() const override;

    // ToSAFEARRAY(): Windows build only.
    VEK_CBYTEARRAY_OLE_MEMBERS

protected:
    ~CByteArray() override;

private:
    bool AllocateInternalBuffer();
    void SetOwner(CObject* owner);
    bool IsViewOf(const CByteArray* array) const;
    int KeepOwnerUntilDestruction();

    int32_t m_length;
    unsigned char* m_owned = nullptr;
    unsigned char* m_data = nullptr;
    // Set for views and repointed arrays: their memory is someone else's,
    // and null memory is never replaced by a buffer of their own.
    bool m_foreign = false;
    RObject<CObject> m_owner;
    // The owner when it is a byte array, which then counts this array among
    // its views.
    CByteArray* m_ownerArray = nullptr;
    std::atomic<int32_t> m_views{0};
    // Earlier owners that views of this array may still point into.
    RObject<CObject> m_formerOwners;
};

} // namespace Quorvex::Vek
