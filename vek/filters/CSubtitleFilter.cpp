#include <vek/filters/CSubtitleFilter.h>

namespace Quorvex::Vek {

CSubtitleFilter::CSubtitleFilter(uint32_t type) : CFilter(type) {}

CSubtitleFilter::~CSubtitleFilter() = default;

} // namespace Quorvex::Vek
