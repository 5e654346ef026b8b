#include <vek/filters/CAudioConverter.h>

VEK_DEFINE_COMPONENT_INVENTORY(::Quorvex::Vek::CAudioConverter);

namespace Quorvex::Vek {

CAudioConverter::CAudioConverter(uint32_t type) : CAudioFilter(type) {}

CAudioConverter::~CAudioConverter() = default;

int CAudioConverter::Convert(CAudioSample*, CAudioSample*& output)
{
    output = nullptr;
    return RESULT_NOT_IMPLEMENTED;
}

int CAudioConverter::Convert(CAudioSample* input, CAudioSample*& output, uint32_t& flags)
{
    flags = 0;
    const int result = Convert(input, output);
    if (GetPendingOutputSamples() > 0)
        flags |= MoreOutputSamplesReady;
    return result;
}

int CAudioConverter::CoreWriteSample(CAudioSample* sample)
{
    CAudioSample* made = nullptr;
    const int result = Convert(sample, made);
    RObject<CAudioSample> output(made);
    if (result < 0)
        return result;
    return output ? EnqueueOutputSample(output) : 1;
}

void CAudioConverter::Drain()
{
    for (;;) {
        CAudioSample* made = nullptr;
        uint32_t flags = 0;
        const int result = Convert(nullptr, made, flags);
        RObject<CAudioSample> output(made);
        if (result < 0 || !output)
            return;
        if (EnqueueOutputSample(output) < 0) {
            Log(LogLevel::Error, "CAudioConverter::Drain: filter '%s' lost a drained sample\n",
                FourCCText(GetType()).c_str());
            return;
        }
    }
}

} // namespace Quorvex::Vek
