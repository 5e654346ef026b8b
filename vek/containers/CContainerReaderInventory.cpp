#include <vek/containers/CContainerReaderInventory.h>

#include <vek/components/ComponentProbe.h>

namespace Quorvex::Vek {

CContainerReader* CContainerReaderInventory::Create(unsigned int id)
{
    return CreateInstance(id);
}

CContainerReader* CContainerReaderInventory::Create(CStream* stream)
{
    return ChooseByProbing<CContainerReader>(stream);
}

} // namespace Quorvex::Vek
