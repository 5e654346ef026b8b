#pragma once

// The reader of raw H.264 (AVC) elementary streams framed by start codes (.h264,
// .264, .avc files): one video track whose samples are the stream's access
// units, each a CMpeg4AvcDataReference over its bytes with start-code
// framing. AvcAccessUnitSplitter (vek/elementary) groups the units and
// describes each picture: its rules for access units, picture types, key
// pictures and output order are the reader's.
//
// Probing needs a sequence set, a picture set and a first slice that
// refers to them within the first 2 MiB: 100 when the stream starts with a
// start code (leading zero bytes allowed), 60 after other leading bytes,
// which belong to no sample. Container formats that carry H.264 score
// higher and win.
//
// The track is timed at twice the frame rate the sequence set's timing
// states (fields and repeated fields take whole units; 25 frames per
// second when it states none, or the reader setting
// VideoStreamFacts::FrameRateSettingKey); its description carries the
// cropped size, aspect ratio, colour, field order, profile and level texts
// (and profile_idc, level_idc under "h264.profile", "h264.level"), the declared reorder depth
// (max_num_reorder_frames, when the sets state it) and an 'avcC' decoder
// configuration made from the first picture's sets.
#include <vek/containers/readers/elementary/CVideoStreamReader.h>
#include <vek/containers/readers/elementary/StartCodeUnitReader.h>
#include <vek/elementary/AvcAccessUnitSplitter.h>

namespace Quorvex::Vek {

class CMemoryStream;

class VEK_API CMpeg4AvcContainerReader : public CVideoStreamReader {
public:
    enum : uint32_t { Type = Four("h264") };
    enum : int32_t { StartScore = 100, DisplacedScore = 60 };
    // Bytes from the start within which probing must find a first picture.
    enum : int64_t { ProbeLimit = 2 << 20 };

    CMpeg4AvcContainerReader();
    explicit CMpeg4AvcContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "H.264"; }
    // StartScore, DisplacedScore or 0, as described above.
    int Validate(CStream* stream) override;

protected:
    ~CMpeg4AvcContainerReader() override;

    int ReadStreamHeader(VideoStreamFacts& facts) override;
    int StartPictures() override;
    int ReadNextPicture(CodedPicture& picture) override;
    // A CMpeg4AvcDataReference with start-code framing.
    CContainerDataReference* MakeRange(int64_t position, int32_t size) override;

private:
    // The bytes of a parameter set unit as the stream holds them.
    struct SetBytes {
        uint8_t type = 0;
        int32_t size = 0;
        uint8_t data[StartCodeUnitReader::DefaultHeadCapacity];
    };
    struct FirstPicture {
        AvcAccessUnitSplitter::AccessUnit unit;
        int64_t leadingBytes = 0;
    };

    int MakeSplitter();
    static CMemoryStream* ReadProbeWindow(CStream* stream);
    // Copies a parameter set unit's bytes into its slot.
    static void KeepSet(const StartCodeUnitReader::Unit& unit, SetBytes* sequenceSet, SetBytes* pictureSet);
    // Walks `stream` from its start to the end of the first access unit
    // that holds a picture, within ProbeLimit. 0, -19000 when there is
    // none, or a code.
    int FindFirstPicture(CStream* stream, FirstPicture& first, SetBytes* sequenceSet, SetBytes* pictureSet);
    int DescribeStream(const FirstPicture& first, VideoStreamFacts& facts);
    int MakeDecoderConfiguration(const SetBytes& sequenceSet, const SetBytes& pictureSet,
                                 const AvcSequenceParameterSet& sps, uint32_t pictureSetId, VideoStreamFacts& facts);
    int ToCodedPicture(const AvcAccessUnitSplitter::AccessUnit& unit, CodedPicture& picture);

    AvcAccessUnitSplitter* m_splitter = nullptr;
    StartCodeUnitReader m_units;
    int64_t m_streamEnd = 0;
    bool m_ended = false;
    int m_failure = RESULT_OK; // of the walk, reported after the picture before it
};

} // namespace Quorvex::Vek
