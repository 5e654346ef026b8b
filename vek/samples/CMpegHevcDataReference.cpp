#include <vek/samples/CMpegHevcDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CMpegHevcDataReference::CMpegHevcDataReference(int64_t position, int32_t length, int32_t nalLengthSize)
    : CContainerDataReference(Type, position, length)
{
    if (nalLengthSize == AnnexB || nalLengthSize == 1 || nalLengthSize == 2 || nalLengthSize == 4) {
        m_nalLengthSize = nalLengthSize;
        return;
    }
    Log(LogLevel::Error, "CMpegHevcDataReference::CMpegHevcDataReference: NAL length size %d is not 0, 1, 2 or 4; "
        "stored as 0 (start codes)\n", nalLengthSize);
}

CMpegHevcDataReference::~CMpegHevcDataReference() = default;

bool CMpegHevcDataReference::IsType(uint32_t type) const
{
    return type == Type || type == CContainerDataReference::Type;
}

} // namespace Quorvex::Vek
