#include <vek/filters/CompressorVariant.h>

namespace Quorvex::Vek {

CompressorVariant CompressorVariant::Create(const VideoProperties& output)
{
    return CompressorVariant(CCompressorVariant::Create(output.ToObject()));
}

CompressorVariant CompressorVariant::FromObject(CCompressorVariant* object)
{
    if (object)
        object->Acquire();
    return CompressorVariant(object);
}

} // namespace Quorvex::Vek
