#pragma once

// The bytes of one H.264 access unit in a container file, with the framing
// of its NAL units: start codes (raw .h264 files, transport
// streams) or a big-endian length of 1, 2 or 4 bytes before each unit (MP4
// and Matroska samples). A decoder needs the framing to find the units; the
// range itself is read like any container range (it answers IsType for
// CContainerDataReference::Type too).
#include <vek/samples/CContainerDataReference.h>

namespace Quorvex::Vek {

class VEK_API CMpeg4AvcDataReference : public CContainerDataReference {
public:
    enum : uint32_t { Type = Four("h264") };
    enum : int32_t { StartCodes = 0 };

    // Null (logged) for a framing other than StartCodes, 1, 2 or 4, a
    // negative position or length, or without memory.
    static CMpeg4AvcDataReference* Create(int64_t position, int32_t length, int32_t lengthSize);

    // StartCodes, or the bytes of the length before each unit.
    int32_t GetNalLengthSize() const { return m_lengthSize; }

    bool IsType(uint32_t type) const override;

protected:
    CMpeg4AvcDataReference(int64_t position, int32_t length, int32_t lengthSize);
    ~CMpeg4AvcDataReference() override;

private:
    int32_t m_lengthSize;
};

} // namespace Quorvex::Vek
