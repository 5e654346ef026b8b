#pragma once

// Scope guard over a sample's data reference: making it Acquires the
// reference and calls its Lock; destroying it calls Unlock (when the lock
// succeeded) and releases the reference. The bytes of a sample are read or
// written only while such a guard lives.
//
// The guard has no type tag of its own (0): it is not a data reference.
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CLockedDataReference : public CObject {
public:
    // A new guard (new reference) over `reference`; null when `reference` is
    // null or without memory. A guard whose Lock failed is still returned:
    // GetLockResult tells, and it has no data.
    static CLockedDataReference* Create(CMediaSampleDataReference* reference);

    // The locked bytes (null when the lock failed) and their length.
    unsigned char* GetData() const { return m_data; }
    int32_t GetLength() const { return m_length; }
    // Forwards to the reference; on success the guard reports the new length.
    int SetLength(int32_t length);
    int GetLockResult() const { return m_lockResult; }
    // Borrowed.
    CMediaSampleDataReference* GetReference() const { return m_reference; }

protected:
    explicit CLockedDataReference(CMediaSampleDataReference* reference);
    ~CLockedDataReference() override;

private:
    RObject<CMediaSampleDataReference> m_reference;
    unsigned char* m_data = nullptr;
    int32_t m_length = 0;
    int m_lockResult;
};

} // namespace Quorvex::Vek
