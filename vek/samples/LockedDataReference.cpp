#include <vek/samples/LockedDataReference.h>

namespace Quorvex::Vek {

LockedDataReference LockedDataReference::FromObject(CLockedDataReference* object)
{
    if (object)
        object->Acquire();
    return LockedDataReference(object);
}

unsigned char* LockedDataReference::GetData() const
{
    return ToObject() ? ToObject()->GetData() : nullptr;
}

int32_t LockedDataReference::GetLength() const
{
    return ToObject() ? ToObject()->GetLength() : 0;
}

int LockedDataReference::SetLength(int32_t length) const
{
    return ToObject() ? ToObject()->SetLength(length) : RESULT_NULL_POINTER;
}

int LockedDataReference::GetLockResult() const
{
    return ToObject() ? ToObject()->GetLockResult() : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
