#include <vek/io/ExternalStream.h>

#include <vek/io/CExternalStream.h>

#include <new>

namespace Quorvex::Vek {

ExternalStream::~ExternalStream() = default;

Stream ExternalStream::AsStream()
{
    return Stream(new (std::nothrow) CExternalStream(this));
}

} // namespace Quorvex::Vek
