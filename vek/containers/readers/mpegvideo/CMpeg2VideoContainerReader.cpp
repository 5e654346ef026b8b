#include <vek/containers/readers/mpegvideo/CMpeg2VideoContainerReader.h>

namespace Quorvex::Vek {

CMpeg2VideoContainerReader::CMpeg2VideoContainerReader() : CMpeg2VideoContainerReader(0) {}

CMpeg2VideoContainerReader::CMpeg2VideoContainerReader(unsigned int flags)
    : CMpegVideoStreamReader(Type, flags, true)
{
}

CMpeg2VideoContainerReader::~CMpeg2VideoContainerReader() = default;

} // namespace Quorvex::Vek
