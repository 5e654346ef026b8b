#include <vek/containers/CContainerWriter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CContainerWriter);

namespace Quorvex::Vek {

CContainerWriter::~CContainerWriter() = default;

} // namespace Quorvex::Vek
