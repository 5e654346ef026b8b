#include <vek/filters/CMetadataFilter.h>

namespace Quorvex::Vek {

CMetadataFilter::CMetadataFilter(uint32_t type) : CFilter(type) {}

CMetadataFilter::~CMetadataFilter() = default;

} // namespace Quorvex::Vek
