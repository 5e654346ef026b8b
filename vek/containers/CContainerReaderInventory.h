#pragma once

// The registry of container readers: the factories of the registered reader
// classes, in registration order, and the choice of a reader for a stream.
#include <vek/containers/CContainerReader.h>

namespace Quorvex::Vek {

class VEK_API CContainerReaderInventory : public CComponentInventory<CComponentFactory<CContainerReader>> {
public:
    CContainerReaderInventory() = delete;

    // A new reader (one reference for the caller) from the factory with
    // identifier `id`; null when none has it.
    static CContainerReader* Create(unsigned int id);
    // The reader that scores `stream` best: every registered factory makes
    // a reader, the stream is rewound before each Validate, only a strictly
    // higher score replaces the kept reader (the earliest registered wins a
    // tie, 0 or below never wins), and a kept score above 255 ends the
    // search. Null when no reader scores above 0.
    static CContainerReader* Create(CStream* stream);
};

} // namespace Quorvex::Vek
