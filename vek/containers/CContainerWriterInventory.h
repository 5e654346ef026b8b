#pragma once

#include <vek/containers/CContainerWriter.h>

namespace Quorvex::Vek {

// The registry of container writers, by four-character identifier.
class VEK_API CContainerWriterInventory : public CComponentInventory<CComponentFactory<CContainerWriter>> {
public:
    CContainerWriterInventory() = delete;

    // A new writer (one reference for the caller) from the factory with
    // identifier `id`; null when none has it.
    static CContainerWriter* Create(unsigned int id);
};

} // namespace Quorvex::Vek
