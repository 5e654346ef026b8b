// AC-3 and E-AC-3 sync frames, walked frame by frame as a reader would,
// with the 'dac3' and 'dec3' payloads built from what was parsed.
#include <vek/elementary/Ac3Headers.h>

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
    Ac3SyncFrame frames[16];
    size_t count = 0;
    for (size_t at = 0; at < size && count < 16;) {
        Ac3SyncFrame& f = frames[count];
        if (Ac3SyncFrame::Parse(data + at, size - at, f) < 0)
            break;
        Check(f.frameBytes > 0 && f.frameBytes <= Ac3SyncFrame::MaxFrameBytes && f.sampleRate > 0);
        Check(f.Channels() >= 0 && f.Channels() <= 32 && f.bitRate > 0);
        uint8_t box[Ac3SyncFrame::DecoderConfigBytes];
        size_t written = 0;
        if (!f.enhanced)
            Check(f.WriteDac3(box, sizeof box, written) == 0 && written == sizeof box);
        ++count;
        at += size_t(f.frameBytes);
    }
    if (count > 0 && frames[0].enhanced) {
        uint8_t box[64];
        size_t written = 0;
        if (WriteEac3DecoderConfig(frames, count, box, sizeof box, written) == 0)
            Check(written >= 5 && written <= sizeof box);
    }
    return 0;
}
