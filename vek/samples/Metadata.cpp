#include <vek/samples/Metadata.h>

namespace Quorvex::Vek {

Metadata Metadata::Create()
{
    return Metadata(CMetadata::Create());
}

Metadata Metadata::FromObject(CMetadata* object)
{
    if (object)
        object->Acquire();
    return Metadata(object);
}

Metadata Metadata::FromAtom(const ByteArray& atom)
{
    return Metadata(CMetadata::FromAtom(atom.ToObject()));
}

Metadata Metadata::FromByteArray(const ByteArray& bytes)
{
    return Metadata(CMetadata::FromByteArray(bytes.ToObject()));
}

int Metadata::AddElement(CMetadataElement* element) const
{
    return ToObject() ? ToObject()->AddElement(element) : RESULT_NULL_POINTER;
}

CMetadataElement* Metadata::GetElement(uint32_t type) const
{
    return ToObject() ? ToObject()->GetElement(type) : nullptr;
}

bool Metadata::ContainsElement(uint32_t type) const
{
    return ToObject() && ToObject()->ContainsElement(type);
}

int Metadata::RemoveElement(uint32_t type) const
{
    return ToObject() ? ToObject()->RemoveElement(type) : RESULT_NULL_POINTER;
}

int32_t Metadata::GetElementCount() const
{
    return ToObject() ? ToObject()->GetElementCount() : 0;
}

void Metadata::ResetElements() const
{
    if (ToObject())
        ToObject()->ResetElements();
}

bool Metadata::MoveNextElement() const
{
    return ToObject() && ToObject()->MoveNextElement();
}

CMetadataElement* Metadata::GetCurrentElement() const
{
    return ToObject() ? ToObject()->GetCurrentElement() : nullptr;
}

int Metadata::Split(Metadata& first, Metadata& second) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    CMetadata* a = nullptr;
    CMetadata* b = nullptr;
    const int result = ToObject()->Split(a, b);
    first = a;
    second = b;
    return result;
}

int Metadata::Merge(const Metadata& other) const
{
    return ToObject() ? ToObject()->Merge(other.ToObject()) : RESULT_NULL_POINTER;
}

Metadata Metadata::ExtractOrderedMetadata(bool remove) const
{
    return Metadata(ToObject() ? ToObject()->ExtractOrderedMetadata(remove) : nullptr);
}

int Metadata::SetDuration(int64_t duration) const
{
    return ToObject() ? ToObject()->SetDuration(duration) : RESULT_NULL_POINTER;
}

int64_t Metadata::GetDuration() const
{
    return ToObject() ? ToObject()->GetDuration() : 0;
}

bool Metadata::HasLocalDataCopy() const
{
    return ToObject() && ToObject()->HasLocalDataCopy();
}

int Metadata::SetHasLocalDataCopy(bool local) const
{
    if (!ToObject())
        return RESULT_NULL_POINTER;
    ToObject()->SetHasLocalDataCopy(local);
    return RESULT_OK;
}

int32_t Metadata::GetLength() const
{
    return ToObject() ? ToObject()->GetLength() : 0;
}

ByteArray Metadata::ToAtom() const
{
    return ByteArray(ToObject() ? ToObject()->ToAtom() : nullptr);
}

ByteArray Metadata::ToByteArray() const
{
    return ByteArray(ToObject() ? ToObject()->ToByteArray() : nullptr);
}

} // namespace Quorvex::Vek
