#include <vek/samples/CMpeg4AvcDataReference.h>

#include <vek/core/Allocation.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

CMpeg4AvcDataReference* CMpeg4AvcDataReference::Create(int64_t position, int32_t length, int32_t lengthSize)
{
    if (lengthSize != StartCodes && lengthSize != 1 && lengthSize != 2 && lengthSize != 4) {
        Log(LogLevel::Error, "CMpeg4AvcDataReference::Create: NAL length size %d is not 0, 1, 2 or 4\n", lengthSize);
        return nullptr;
    }
    if (position < 0 || length < 0) {
        Log(LogLevel::Error, "CMpeg4AvcDataReference::Create: position %lld or length %d is negative\n",
            static_cast<long long>(position), length);
        return nullptr;
    }
    return new (fallible) CMpeg4AvcDataReference(position, length, lengthSize);
}

CMpeg4AvcDataReference::CMpeg4AvcDataReference(int64_t position, int32_t length, int32_t lengthSize)
    : CContainerDataReference(Type, position, length), m_lengthSize(lengthSize)
{
}

CMpeg4AvcDataReference::~CMpeg4AvcDataReference() = default;

bool CMpeg4AvcDataReference::IsType(uint32_t type) const
{
    return type == Type || type == CContainerDataReference::Type || CContainerDataReference::IsType(type);
}

} // namespace Quorvex::Vek
