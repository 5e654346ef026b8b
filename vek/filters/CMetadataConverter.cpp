#include <vek/filters/CMetadataConverter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CMetadataConverter);

namespace Quorvex::Vek {

CMetadataConverter::CMetadataConverter(uint32_t type) : CMetadataFilter(type) {}

CMetadataConverter::~CMetadataConverter() = default;

int CMetadataConverter::Convert(CMediaSample* input, CMediaSample*& output, int32_t& state)
{
    const int result = WriteAndRead(input, output);
    state = output ? OutputSampleReady : NoOutputSampleReady;
    return result < 0 ? result : RESULT_OK;
}

} // namespace Quorvex::Vek
