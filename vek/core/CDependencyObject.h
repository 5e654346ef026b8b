#pragma once

// A CObject base for objects that exist to be depended on by others; it adds
// nothing to the lifetime rules of CObject.
#include <vek/core/CObject.h>

namespace Quorvex::Vek {

class VEK_API CDependencyObject : public CObject {
protected:
    explicit CDependencyObject(uint32_t type = 0);
    ~CDependencyObject() override;
};

} // namespace Quorvex::Vek
