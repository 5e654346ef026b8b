#pragma once

// The common part of readers of raw video elementary streams (H.264,
// HEVC, MPEG-1/2 and MPEG-4 Part 2 video files): one video track whose
// samples are the stream's access units, found by walking the file.
//
// BeginIndex opens the file and lets the subclass read the stream's
// headers (ReadStreamHeader: parameter sets or sequence header, into a
// VideoStreamFacts it applies to GetVideo()), then rewinds and asks the
// subclass to start its picture walk (StartPictures). ReadVideoSample then
// pulls coded pictures from the subclass (ReadNextPicture) one at a time
// and hands them out in decode order, timed by PresentationOrder (see its
// header for the timing rule): decode time, duration, composition offset,
// picture type and structure, KeyFrameAligned for key pictures, Exclude
// for pictures a decoder drops, and a container range over the access
// unit's bytes (MakeRange may give a format's own range class).
//
// The time scale is the subclass's choice (commonly twice the frame rate,
// so fields and repeated fields have whole durations). A stream that
// states no frame rate is timed at the reader setting
// VideoStreamFacts::FrameRateSettingKey, 25 frames per second by default.
//
// Media is ready once BeginIndex has returned: IsVideoReady and
// WaitForMedia answer true. Samples are handed out under the reader's
// monitor, so several threads may pull them.
#include <vek/containers/CContainerReader.h>
#include <vek/containers/readers/elementary/PresentationOrder.h>
#include <vek/containers/readers/elementary/VideoStreamFacts.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class VEK_API CVideoStreamReader : public CContainerReader {
public:
    CValueList<unsigned int>* GetVideoFormats() override;
    // 1 after a successful BeginIndex, else 0.
    int32_t GetVideoMediaCount() override;
    // Borrowed; null for any track but 0, or without a track.
    CVideoProperties* GetVideoProperties(int32_t track) override;
    bool IsVideoReady(int32_t track) override;
    bool WaitForMedia(int32_t milliseconds) override;
    // Reads the stream's headers; 0, or the subclass's code (no track then).
    int BeginIndex() override;
    int EndIndex() override;

    using CContainerReader::ReadVideoSample;
    // The next access unit in decode order; 0 with a null sample at the
    // end; -19007 for a track other than 0. When the walk fails, the
    // pictures found before the failure are still handed out, then every
    // call returns the failure.
    int ReadVideoSample(int32_t track, CVideoSample*& sample) override;
    using CContainerReader::ReadVideoData;
    // The range's bytes from the file; -19007 for a track other than 0.
    int ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override;

protected:
    CVideoStreamReader(uint32_t type, unsigned int flags);
    ~CVideoStreamReader() override;

    // Reads the headers from the start of GetStream() (positioned at 0)
    // into `facts`: at least the format, size and, when stated, frame
    // rate. `timeScale` and `declaredDelay` (time-scale units) may be set;
    // by default the time scale is twice the frame rate's numerator over
    // its denominator and the delay comes from the first pictures.
    // 0, -19000 for a stream the reader cannot read (logged), or a code.
    virtual int ReadStreamHeader(VideoStreamFacts& facts) = 0;
    // Starts the picture walk at the first byte of the file.
    virtual int StartPictures() = 0;
    // The next coded picture in decode order: 0, 1 at the end, or a code.
    virtual int ReadNextPicture(CodedPicture& picture) = 0;
    // A new range over an access unit's bytes; the base makes a "cdr ".
    virtual CContainerDataReference* MakeRange(int64_t position, int32_t size);

    CStream* GetStream() const { return m_stream; }
    CVideoProperties* GetVideo() const { return m_video; }
    // The frame rate the subclass times a stream by that states none.
    void GetFallbackFrameRate(int64_t& numerator, int64_t& denominator);
    // Time-scale units of one frame at the track's frame rate and scale.
    int32_t GetFrameDuration() const { return m_frameDuration; }
    // Overrides the timing BeginIndex derived from the facts.
    void SetTiming(int64_t timeScale, int32_t frameDuration, int64_t declaredDelay);

private:
    int OpenTrack();
    int DeriveTiming(VideoStreamFacts& facts);
    int NextPlacedPicture(CodedPicture& picture, bool& ended);
    int MakeSample(const CodedPicture& picture, CVideoSample*& sample);
    void DropTrack();

    RObject<CStream> m_stream;
    RObject<CVideoProperties> m_video;
    PresentationOrder m_order;
    int32_t m_frameDuration = 0;
    int64_t m_declaredDelay = 0;
    bool m_hasTrack = false;
    bool m_walkEnded = false;
    int m_walkFailure = RESULT_OK;
};

} // namespace Quorvex::Vek
