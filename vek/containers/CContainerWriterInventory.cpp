#include <vek/containers/CContainerWriterInventory.h>

namespace Quorvex::Vek {

CContainerWriter* CContainerWriterInventory::Create(unsigned int id)
{
    return CreateInstance(id);
}

} // namespace Quorvex::Vek
