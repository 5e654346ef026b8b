// MPEG-1/2 video headers, found by start code as a reader finds them; the
// sequence description derived from them keeps positive fractions.
#include <vek/elementary/MpegVideoHeaders.h>

#include <cstdint>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

void CheckSequence(const MpegVideoSequence& s)
{
    int32_t n = 0, d = 0;
    if (s.GetFrameRate(n, d) == 0)
        Check(n > 0 && d > 0);
    if (s.GetSampleAspectRatio(n, d) == 0)
        Check(n > 0 && d > 0);
    if (s.GetDisplayAspectRatio(n, d) == 0)
        Check(n > 0 && d > 0);
    Check(s.Width() > 0 && s.Height() > 0 && s.BitRate() >= 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    MpegVideoSequence sequence;
    bool haveSequence = false;
    for (size_t at = FindMpegStartCode(data, size, 0); at < size;) {
        const size_t payload = at + 4;
        const size_t next = payload <= size ? FindMpegStartCode(data, size, payload) : size;
        if (payload > size)
            break;
        const uint8_t* p = data + payload;
        const size_t n = next - payload;
        switch (data[at + 3]) {
        case MpegVideoStartCode::SequenceHeader:
            haveSequence = MpegVideoSequenceHeader::Parse(p, n, sequence.header) == 0;
            sequence.mpeg2 = false;
            sequence.hasDisplayExtension = false;
            break;
        case MpegVideoStartCode::Extension: {
            const int id = MpegVideoExtensionId(p, n);
            if (id == MpegVideoExtension::Sequence)
                sequence.mpeg2 = MpegVideoSequenceExtension::Parse(p, n, sequence.extension) == 0;
            else if (id == MpegVideoExtension::SequenceDisplay)
                sequence.hasDisplayExtension = MpegVideoSequenceDisplayExtension::Parse(p, n, sequence.display) == 0;
            else if (id == MpegVideoExtension::PictureCoding) {
                MpegVideoPictureCodingExtension e;
                if (MpegVideoPictureCodingExtension::Parse(p, n, e) == 0)
                    Check(e.structure >= MpegPictureStructure::TopField && e.structure <= MpegPictureStructure::Frame);
            }
            break;
        }
        case MpegVideoStartCode::GroupOfPictures: {
            MpegVideoGopHeader g;
            if (MpegVideoGopHeader::Parse(p, n, g) == 0)
                Check(g.hours < 24 && g.minutes < 60 && g.seconds < 60);
            break;
        }
        case MpegVideoStartCode::Picture: {
            MpegVideoPictureHeader h;
            if (MpegVideoPictureHeader::Parse(p, n, h) == 0)
                Check(h.type >= MpegPictureType::I && h.type <= MpegPictureType::D);
            break;
        }
        default:
            break;
        }
        if (haveSequence)
            CheckSequence(sequence);
        Check(next > at);
        at = next;
    }
    return 0;
}
