#include <vek/samples/CContainerDataReference.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CContainerDataReference::CContainerDataReference(int64_t position, int32_t length)
    : CContainerDataReference(Type, position, length)
{
}

CContainerDataReference::CContainerDataReference(uint32_t type, int64_t position, int32_t length)
    : CMediaSampleDataReference(type)
{
    SetPosition(position < 0 ? 0 : position);
    SetLength(length < 0 ? 0 : length);
    if (position < 0 || length < 0)
        Log(LogLevel::Error, "CContainerDataReference::CContainerDataReference: position %lld or length %d "
            "negative, stored as 0\n", static_cast<long long>(position), length);
}

CContainerDataReference::~CContainerDataReference() = default;

int CContainerDataReference::SetPosition(int64_t position)
{
    if (position < 0) {
        Log(LogLevel::Error, "CContainerDataReference::SetPosition: position %lld is negative\n",
            static_cast<long long>(position));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_position = position;
    return RESULT_OK;
}

int CContainerDataReference::SetLength(int32_t length)
{
    if (length < 0) {
        Log(LogLevel::Error, "CContainerDataReference::SetLength: length %d is negative\n", length);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    m_length = length;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
