#include <vek/containers/readers/mov/CMovContainerReader.h>

namespace Quorvex::Vek {

CMovContainerReader::CMovContainerReader() : CMovContainerReader(0) {}

CMovContainerReader::CMovContainerReader(unsigned int flags) : CMovieFileReader(Type, flags, MovFamily::QuickTime) {}

CMovContainerReader::~CMovContainerReader() = default;

} // namespace Quorvex::Vek
