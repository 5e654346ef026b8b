#pragma once

// Public wrapper of CMetadata. Calls forward to the metadata and return its
// results unchanged; a null wrapper answers 0, false or null to the getters
// and -19001 to everything that changes or makes something.
#include <vek/core/BaseObject.h>
#include <vek/core/ByteArray.h>
#include <vek/samples/CMetadata.h>

namespace Quorvex::Vek {

class VEK_API Metadata : public Object<CMetadata> {
public:
    Metadata() = default;
    // Adopts the caller's reference.
    Metadata(CMetadata* object) : BaseObject(object) {}
    using Object::operator=;

    // Empty metadata from the shared pool; null without memory.
    static Metadata Create();
    // A wrapper sharing `object` (its count goes up by one).
    static Metadata FromObject(CMetadata* object);
    // Null for input the readers refuse.
    static Metadata FromAtom(const ByteArray& atom);
    static Metadata FromByteArray(const ByteArray& bytes);

    int AddElement(CMetadataElement* element) const;
    // Borrowed from the metadata, or null.
    CMetadataElement* GetElement(uint32_t type) const;
    bool ContainsElement(uint32_t type) const;
    int RemoveElement(uint32_t type) const;
    int32_t GetElementCount() const;
    void ResetElements() const;
    bool MoveNextElement() const;
    CMetadataElement* GetCurrentElement() const;

    // New metadata in `first` and `second`; see CMetadata::Split.
    int Split(Metadata& first, Metadata& second) const;
    int Merge(const Metadata& other) const;
    Metadata ExtractOrderedMetadata(bool remove) const;

    int SetDuration(int64_t duration) const;
    int64_t GetDuration() const;
    bool HasLocalDataCopy() const;
    int SetHasLocalDataCopy(bool local) const;
    int32_t GetLength() const;
    ByteArray ToAtom() const;
    ByteArray ToByteArray() const;
};

} // namespace Quorvex::Vek
