#include <vek/io/ExternalStream.h>

#include <vek/io/CExternalStream.h>

#include <new>

namespace Quorvex::Vek {

ExternalStream::ExternalStream() = default;

ExternalStream::~ExternalStream()
{
    Detach();
}

Stream ExternalStream::AsStream()
{
    if (!m_adapter)
        m_adapter = RObject<CExternalStream>(new (fallible) CExternalStream(this));
    return Stream::FromObject(m_adapter);
}

void ExternalStream::Detach()
{
    if (!m_adapter)
        return;
    m_adapter->Detach();
    m_adapter = nullptr;
}

} // namespace Quorvex::Vek
