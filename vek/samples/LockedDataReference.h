#pragma once

// Public wrapper of CLockedDataReference: the bytes of a sample, locked for
// as long as the last copy of the wrapper lives. A null wrapper has no data
// (null, length 0) and answers -19001 to SetLength.
#include <vek/core/BaseObject.h>
#include <vek/samples/CLockedDataReference.h>

namespace Quorvex::Vek {

class VEK_API LockedDataReference : public Object<CLockedDataReference> {
public:
    LockedDataReference() = default;
    // Adopts the caller's reference. BaseObject is a virtual base: the most
    // derived wrapper initialises it.
    LockedDataReference(CLockedDataReference* object) : BaseObject(object) {}
    using Object::operator=;

    // A wrapper sharing `object` (its count goes up by one).
    static LockedDataReference FromObject(CLockedDataReference* object);

    unsigned char* GetData() const;
    int32_t GetLength() const;
    int SetLength(int32_t length) const;
    int GetLockResult() const;
};

} // namespace Quorvex::Vek
