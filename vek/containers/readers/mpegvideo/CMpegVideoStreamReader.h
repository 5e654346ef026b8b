#pragma once

// The walk shared by the readers of raw MPEG-1 and MPEG-2 video streams
// (.m1v, .m2v, .mpv): the two codings differ only in the sequence
// extension that MPEG-2 puts after every sequence header, which is how
// each reader recognises its own streams.
//
// Validate and BeginIndex read the first access units of the stream (at
// most HeaderWindow bytes; leading bytes without a sequence header are
// passed over): a sequence header that parses, of the reader's coding, and
// a picture header after it. Validate scores ExactScore when the sequence
// header is the first thing in the file (zero bytes before it allowed) and
// GarbageScore after other bytes, below the score of a container whose
// signature matches, so a stray start code in another file loses.
//
// Samples are the access units of MpegVideoAccessUnitSplitter (see there
// for key pictures, output order and dropped leading B pictures), timed at
// twice the frame rate: a frame lasts two units, a field one, and
// repeat_first_field adds a field (or in a progressive sequence repeats
// the frame). The declared reorder depth is one picture when the first
// pictures hold a B picture and the sequence is not low-delay, else none.
//
// Track facts: sizes (coded size rounded to macroblocks, to 32 lines for
// an interlaced MPEG-2 sequence), sample aspect ratio, frame rate, chroma
// format and location, 8 bits, bit rate, field order (progressive when the
// sequence or its first picture is; else the first picture's field
// first), colour description from the sequence display extension, MPEG-2
// profile and level (texts: "Main", "4:2:2" ...; "LL", "ML", "H-14", "HL";
// and the byte under "mp2v.profile_and_level"),
// and "mpgv.closed_gop" of the first GOP header.
#include <vek/containers/readers/elementary/CVideoStreamReader.h>
#include <vek/containers/readers/elementary/StartCodeUnitReader.h>
#include <vek/elementary/MpegVideoAccessUnitSplitter.h>

namespace Quorvex::Vek {

class VEK_API CMpegVideoStreamReader : public CVideoStreamReader {
public:
    enum : int32_t { ExactScore = 100, GarbageScore = 60 };
    enum : int64_t { HeaderWindow = 2 << 20 };

    int Validate(CStream* stream) override;

protected:
    CMpegVideoStreamReader(uint32_t type, unsigned int flags, bool mpeg2);
    ~CMpegVideoStreamReader() override;

    int ReadStreamHeader(VideoStreamFacts& facts) override;
    int StartPictures() override;
    int ReadNextPicture(CodedPicture& picture) override;

private:
    struct HeaderScan;

    const char* ClassName() const;
    int ScanHeaders(CStream* stream, HeaderScan& scan);
    int DescribeSequence(const HeaderScan& scan, VideoStreamFacts& facts);
    int SetCodecProperties(const HeaderScan& scan);
    void FillPicture(const MpegVideoAccessUnit& unit, CodedPicture& picture) const;

    StartCodeUnitReader m_units;
    MpegVideoAccessUnitSplitter m_splitter;
    int64_t m_streamEnd = 0;
    bool m_walkEnded = false;
    const bool m_mpeg2;
};

} // namespace Quorvex::Vek
