#pragma once

// A byte range of the container file: where a sample's bytes start and how
// many there are. The bytes stay in the file until the reader's ReadData
// fetches them, so the reference cannot be locked (Lock gives -19006).
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CContainerDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("cdr ") };

    // A negative position or length is stored as 0 (with a log line).
    CContainerDataReference(int64_t position, int32_t length);

    int64_t GetPosition() const { return m_position; }
    int32_t GetLength() const { return m_length; }
    // -19003 for a negative position; nothing changes then.
    int SetPosition(int64_t position);
    // -19003 for a negative length; nothing changes then.
    int SetLength(int32_t length) override;

protected:
    // For format-specific ranges that carry their own tag.
    CContainerDataReference(uint32_t type, int64_t position, int32_t length);
    ~CContainerDataReference() override;

private:
    int64_t m_position = 0;
    int32_t m_length = 0;
};

} // namespace Quorvex::Vek
