#include <vek/containers/readers/mpegvideo/CMpeg1VideoContainerReader.h>

namespace Quorvex::Vek {

CMpeg1VideoContainerReader::CMpeg1VideoContainerReader() : CMpeg1VideoContainerReader(0) {}

CMpeg1VideoContainerReader::CMpeg1VideoContainerReader(unsigned int flags)
    : CMpegVideoStreamReader(Type, flags, false)
{
}

CMpeg1VideoContainerReader::~CMpeg1VideoContainerReader() = default;

} // namespace Quorvex::Vek
