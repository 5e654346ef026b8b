#pragma once

// The bytes of one HEVC access unit in the container file, with the way
// its NAL units are framed there: Annex B start codes (a raw .hevc stream,
// MPEG transport) or a big-endian length of 1, 2 or 4 bytes in front of
// each unit (MP4, Matroska). A consumer that needs one framing converts by
// it. The range is a container range too: IsType answers true for
// CContainerDataReference::Type as well, so a reader's ReadData resolves it.
#include <vek/samples/CContainerDataReference.h>

namespace Quorvex::Vek {

class VEK_API CMpegHevcDataReference : public CContainerDataReference {
public:
    enum : uint32_t { Type = Four("h265") };
    enum : int32_t { AnnexB = 0 };

    // `nalLengthSize` is AnnexB (0) or 1, 2 or 4; any other value is stored
    // as AnnexB (with a log line).
    CMpegHevcDataReference(int64_t position, int32_t length, int32_t nalLengthSize);

    int32_t GetNalLengthSize() const { return m_nalLengthSize; }
    bool IsType(uint32_t type) const override;

protected:
    ~CMpegHevcDataReference() override;

private:
    int32_t m_nalLengthSize = AnnexB;
};

} // namespace Quorvex::Vek
