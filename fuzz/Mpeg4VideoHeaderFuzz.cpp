// MPEG-4 visual headers found by start code: object sequence, visual
// object, video object layer and the VOP headers read with the layer's
// time-increment width.
#include <vek/elementary/Mpeg4VideoHeaders.h>
#include <vek/elementary/MpegVideoHeaders.h>

#include <cstdint>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Mpeg4VisualObject object;
    Mpeg4VideoObjectLayer layer;
    bool haveLayer = false;
    for (size_t at = FindMpegStartCode(data, size, 0); at < size;) {
        const size_t payload = at + 4;
        if (payload > size)
            break;
        const size_t next = FindMpegStartCode(data, size, payload);
        const uint8_t* p = data + payload;
        const size_t n = next - payload;
        const uint8_t code = data[at + 3];
        if (code == Mpeg4VideoStartCode::VisualObjectSequence) {
            Mpeg4VisualObjectSequence sequence;
            Mpeg4VisualObjectSequence::Parse(p, n, sequence);
        } else if (code == Mpeg4VideoStartCode::VisualObject) {
            Mpeg4VisualObject::Parse(p, n, object);
        } else if (code >= Mpeg4VideoStartCode::FirstVideoObjectLayer &&
                   code <= Mpeg4VideoStartCode::LastVideoObjectLayer) {
            haveLayer = Mpeg4VideoObjectLayer::Parse(p, n, layer, object.verid) == 0;
            if (haveLayer) {
                int32_t num = 0, den = 0;
                Check(layer.GetSampleAspectRatio(num, den) == 0 && num > 0 && den > 0);
                if (layer.GetFrameRate(num, den) == 0)
                    Check(num > 0 && den > 0);
                Check(layer.timeIncrementBits >= 1 && layer.timeIncrementBits <= 16);
            }
        } else if (code == Mpeg4VideoStartCode::Vop && haveLayer) {
            Mpeg4VopHeader vop;
            if (Mpeg4VopHeader::Parse(p, n, layer, vop) == 0)
                Check(vop.timeIncrement < layer.timeIncrementResolution);
        }
        at = next;
    }
    return 0;
}
