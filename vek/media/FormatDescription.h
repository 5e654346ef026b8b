#pragma once

// The two kinds of rows behind the format families: a description entry
// (code, parent, display name) of a family's description table, and an
// exported constant (name, code) as listed by a family's GetConstants.
#include <vek/core/Types.h>

namespace Quorvex::Vek {

// One known code of a family. Related codes (aliases, variants, byte
// orders) point at a parent, and following parents leads to the canonical
// root, whose parent is 0. A null name means "use the parent's name", which
// is how a pure alias is written. A table ends with an entry whose code is 0.
struct FormatDescription {
    uint32_t code;
    uint32_t parent;
    const char* name;
};

// One exported constant of a format family, named as in the source.
struct FormatConstant {
    const char* name;
    uint32_t code;
};

} // namespace Quorvex::Vek
