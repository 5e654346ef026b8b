#include <vek/core/CDependencyObject.h>

namespace Quorvex::Vek {

CDependencyObject::CDependencyObject(uint32_t type) : CObject(type) {}

CDependencyObject::~CDependencyObject() = default;

} // namespace Quorvex::Vek
