#include <vek/containers/readers/mov/CMpeg4ContainerReader.h>

namespace Quorvex::Vek {

CMpeg4ContainerReader::CMpeg4ContainerReader() : CMpeg4ContainerReader(0) {}

CMpeg4ContainerReader::CMpeg4ContainerReader(unsigned int flags) : CMovieFileReader(Type, flags, MovFamily::Iso) {}

CMpeg4ContainerReader::~CMpeg4ContainerReader() = default;

} // namespace Quorvex::Vek
