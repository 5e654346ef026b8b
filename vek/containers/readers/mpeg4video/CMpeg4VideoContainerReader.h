#pragma once

// The reader of raw MPEG-4 visual streams (.m4v, .cmp: the Part 2 syntax
// of DivX, Xvid and ffmpeg's mpeg4 encoder), registered under
// ContainerFormat::Video.
//
// An access unit is one VOP with every unit in front of it since the
// previous VOP (visual object sequence, object, layer and group-of-VOP
// headers, user data); a start code after a VOP begins the next one, as
// decoders and ffmpeg's parser cut them (a sequence end code stays with the
// last picture). I-VOPs are key pictures; VOPs that are not coded carry
// the Exclude hint, as decoders output nothing for them.
//
// Timing: a layer with a fixed VOP rate is timed at that rate; any other at
// the smallest step between the display times of its first VOPs, or, when
// they give none, at the reader's frame-rate setting (25 by default); one
// frame per VOP.
// Display order follows each VOP's own time (Mpeg4VopClock); a stream whose
// time runs backwards at an I-VOP (a splice) starts a new output period.
//
// Validate wants a video object layer that parses and a VOP header after
// it within the first 64 KiB.
#include <vek/containers/readers/elementary/CVideoStreamReader.h>
#include <vek/containers/readers/elementary/StartCodeUnitReader.h>
#include <vek/elementary/Mpeg4VideoHeaders.h>
#include <vek/elementary/Mpeg4VopClock.h>

namespace Quorvex::Vek {

class VEK_API CMpeg4VideoContainerReader : public CVideoStreamReader {
public:
    enum : uint32_t { Type = Four("m4vr") };
    // Scores: headers at the very start of the file, or after other bytes.
    enum : int32_t { MatchScore = 100, LateMatchScore = 60 };
    // Bytes Validate and the header read look at.
    enum : int32_t { ProbeBytes = 64 * 1024 };
    // VOPs whose times give the frame rate of a layer without a fixed rate.
    enum : int32_t { MeasuredVops = 16 };

    CMpeg4VideoContainerReader();
    explicit CMpeg4VideoContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "MPEG-4 Video"; }
    int Validate(CStream* stream) override;

protected:
    ~CMpeg4VideoContainerReader() override;

    int ReadStreamHeader(VideoStreamFacts& facts) override;
    int StartPictures() override;
    int ReadNextPicture(CodedPicture& picture) override;

private:
    // What the headers in front of the first VOP say.
    struct Headers {
        Mpeg4VisualObjectSequence sequence;
        Mpeg4VisualObject object;
        Mpeg4VideoObjectLayer layer;
        bool hasSequence = false, hasObject = false, hasLayer = false, hasVop = false;
        int64_t firstVop = 0; // offset of the first VOP's start code
        int64_t configurationEnd = -1; // the first group-of-VOP header or VOP
        int64_t leadingBytes = 0;
    };

    // Reads units from the walker's position until a VOP follows a layer.
    static int ReadHeaders(StartCodeUnitReader& units, Headers& headers);
    void DescribeStream(const Headers& headers, VideoStreamFacts& facts);
    void MeasureFrameRate(const Headers& headers, VideoStreamFacts& facts);
    int KeepDecoderConfiguration(const Headers& headers, VideoStreamFacts& facts);
    // Takes one non-VOP unit into the stream state (a new layer, a GOV).
    int TakeHeaderUnit(const StartCodeUnitReader::Unit& unit);
    int FinishPicture(const StartCodeUnitReader::Unit& vop, CodedPicture& picture);

    StartCodeUnitReader m_units;
    Mpeg4VideoObjectLayer m_layer;
    uint8_t m_objectVerid = 1;
    Mpeg4VopClock m_clock;
    int64_t m_lastReferenceTime = INT64_MIN;
    int64_t m_pictureStart = -1; // first byte of the access unit being gathered
    StartCodeUnitReader::Unit m_held; // a unit read but not yet placed
    bool m_hasHeld = false;
    bool m_ended = false;
};

} // namespace Quorvex::Vek
