#include <vek/filters/CVideoConverter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CVideoConverter);

namespace Quorvex::Vek {

CVideoConverter::CVideoConverter(uint32_t type) : CVideoFilter(type) {}

CVideoConverter::~CVideoConverter() = default;

int CVideoConverter::Convert(CVideoSample*, CVideoSample*& output)
{
    output = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CVideoConverter::Convert(CVideoSample* input, CVideoSample*& output, uint32_t& flags)
{
    flags = 0;
    const int result = Convert(input, output);
    if (GetPendingOutputSamples() > 0)
        flags |= MoreOutputSamplesReady;
    return result;
}

int CVideoConverter::CoreWriteSample(CVideoSample* sample)
{
    CVideoSample* made = nullptr;
    const int result = Convert(sample, made);
    RObject<CVideoSample> output(made);
    if (result < 0)
        return result;
    return output ? EnqueueOutputSample(output) : 1;
}

void CVideoConverter::Drain()
{
    for (;;) {
        CVideoSample* made = nullptr;
        uint32_t flags = 0;
        const int result = Convert(nullptr, made, flags);
        RObject<CVideoSample> output(made);
        if (result < 0 || !output)
            return;
        if (EnqueueOutputSample(output) < 0) {
            Log(LogLevel::Error, "CVideoConverter::Drain: filter '%s' lost a drained sample\n",
                FourCCText(GetType()).c_str());
            return;
        }
    }
}

} // namespace Quorvex::Vek
