#include <vek/samples/SubtitleSample.h>

namespace Quorvex::Vek {

SubtitleSample SubtitleSample::Create()
{
    return SubtitleSample(CSubtitleSample::Create());
}

SubtitleSample SubtitleSample::FromObject(CSubtitleSample* object)
{
    if (object)
        object->Acquire();
    return SubtitleSample(object);
}

int SubtitleSample::SetDuration(int32_t duration) const
{
    return ToSubtitle() ? ToSubtitle()->SetDuration(duration) : RESULT_NULL_POINTER;
}

} // namespace Quorvex::Vek
