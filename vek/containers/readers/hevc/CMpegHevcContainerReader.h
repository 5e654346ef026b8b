#pragma once

// The reader of raw HEVC elementary streams (.hevc, .h265: NAL units with
// start codes): one video track whose samples are the stream's access
// units, each a CMpegHevcDataReference over its bytes (start-code framed).
//
// The stream is recognised by a video, a sequence and a picture parameter
// set and a first slice segment that refers to them, all within the first
// ProbeBytes of the file; bytes before them (garbage, a cut unit) are
// passed over and are in no sample. The track is described from the sequence set that
// first slice uses: size after the conformance window, chroma format, bit
// depths, aspect ratio, colour, frame rate (from the timing information,
// when stated), profile, tier and level, the reorder depth of the highest
// sub-layer, and an 'hvcC' record of the parameter sets found before the
// first picture.
//
// Pictures are grouped and described by HevcAccessUnitSplitter (see there
// for the access unit and picture type rules). A sample is key for an
// intra random access point; it is excluded when a decoder drops it or does
// not output it (a RASL picture after a point where decoding starts, a
// picture with pic_output_flag 0, a picture still waiting for output when
// a new coded video sequence empties the buffer: HevcPictureOutput). Output order is the picture order count,
// restarting at every random access point that starts a new coded video
// sequence. A picture lasts one frame, or what its picture timing message
// says (a field, three fields, two or three frames). A stream coded as
// fields without picture timing messages has fields of alternating parity,
// taken from the picture order count (even: upper).
#include <vek/containers/readers/elementary/CVideoStreamReader.h>
#include <vek/containers/readers/elementary/StartCodeUnitReader.h>
#include <vek/elementary/HevcAccessUnitSplitter.h>
#include <vek/elementary/HevcPictureOutput.h>

namespace Quorvex::Vek {

class VEK_API CMpegHevcContainerReader : public CVideoStreamReader {
public:
    enum : uint32_t { Type = Four("hevc") };
    enum : int32_t {
        // A stream that begins with its parameter sets, and one whose
        // parameter sets follow other bytes: below every container format's
        // score, as a stray start code can appear in any file.
        MatchScore = 100,
        MatchScoreAfterGarbage = 60,
        ProbeBytes = 2 << 20,
        // Bytes of each unit the walk reads: parameter sets and the start
        // of slice segment headers fit many times over.
        HeadBytes = StartCodeUnitReader::DefaultHeadCapacity,
    };

    CMpegHevcContainerReader();
    explicit CMpegHevcContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "HEVC"; }
    // MatchScore when the parameter sets and a first slice segment are found
    // from the first byte (or after zero bytes), MatchScoreAfterGarbage when
    // other bytes come first, 0 otherwise.
    int Validate(CStream* stream) override;

protected:
    ~CMpegHevcContainerReader() override;

    int ReadStreamHeader(VideoStreamFacts& facts) override;
    int StartPictures() override;
    int ReadNextPicture(CodedPicture& picture) override;
    CContainerDataReference* MakeRange(int64_t position, int32_t size) override;

private:
    struct Found;

    int FindFirstPicture(CStream* stream, Found& found);
    int KeepParameterSet(const StartCodeUnitReader::Unit& unit, Found& found);
    void DescribeSequence(const HevcSequenceParameterSet& sps, VideoStreamFacts& facts);
    int MakeDecoderConfiguration(const HevcSequenceParameterSet& sps, const Found& found, VideoStreamFacts& facts);
    int NextAccessUnit(HevcAccessUnitSplitter::AccessUnit& completed);
    int DescribePicture(const HevcAccessUnitSplitter::AccessUnit& unit, CodedPicture& picture);

    HevcAccessUnitSplitter m_splitter;
    StartCodeUnitReader m_units;
    int64_t m_firstPicture = 0; // where the walk starts: bytes before are not the stream's
    int64_t m_streamEnd = 0;
    bool m_unitsEnded = false;
    bool m_walkDone = false; // no access unit is left
    HevcPictureOutput m_output;
    CodedPicture m_waiting[HevcPictureOutput::Capacity]; // in decode order, from m_waitingFirst
    int32_t m_waitingFirst = 0;
    int m_walkFailure = RESULT_OK; // a unit that cannot be read ended the walk
};

} // namespace Quorvex::Vek
