#include <vek/filters/CFilterBase.h>

namespace Quorvex::Vek {

CFilterBase::CFilterBase(uint32_t type) : CObject(type) {}

CFilterBase::~CFilterBase() = default;

bool CFilterBase::ChangesTemporalOrder()
{
    return false;
}

} // namespace Quorvex::Vek
