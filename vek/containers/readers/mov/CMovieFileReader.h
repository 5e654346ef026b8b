#pragma once

// The common part of the QuickTime (CMovContainerReader) and ISO MP4
// (CMpeg4ContainerReader) readers: both read the same box structure and
// differ in which family of files they claim and in a few atoms.
//
// BeginIndex walks the file's top-level boxes by their headers only
// (MovFileWalk), reads 'moov' into memory and, in a fragmented movie, the
// first 'moof' after it, and builds the tracks: at most one video track (the first enabled one; others are
// logged), up to 32 audio and 32 subtitle tracks. A 'tmcd' track becomes
// the container's start timecode ("timecode", "mov.tmcd"), a 'c608'/'c708'
// track a subtitle track whose format says so ("mov.clcp"), a text track
// that another track names as its chapters becomes ChaptersKey. The
// movie's 'udta' and 'meta' become container properties. Media is ready
// once BeginIndex has returned: WaitForMedia answers true.
//
// Fragmented movies: BeginIndex does not wait for the fragments after the
// first. A track's sample read that reaches the end of what is parsed walks
// on to the next 'moof' (reading only it and box headers), so the index
// pass, on its own thread or not, parses the rest as it goes; every thread
// waiting on the reader's monitor is woken after each fragment. The
// duration a track states at BeginIndex is the longest of what 'mehd', the
// 'sidx' boxes before the first fragment, the last fragment 'mfra' names and
// the first fragment give; the index holds the real one. 'mfra' offsets
// also let the walk resume after a damaged box.
//
// A file still being written (the reader's read timeout above 0, so its
// stream waits for growth) is followed: each fragment is parsed once it is
// whole, and the walk ends when the file has not grown for the read
// timeout. Samples are read from a second stream that never waits.
//
// Samples come out per track in decode order, one access unit each
// (compressed audio: packets 1, frames = its duration), except PCM, which
// is cut into samples of at most one second from whole chunks. Times are
// in the track's media time scale on the presentation timeline (see
// MovTrack::GetShift): decode time, duration, composition offset ('ctts').
// The edit list decides what is shown: a sample no edit shows keeps its
// place with the Exclude hint (a decoder still needs it), a sample an edit
// cuts carries a composition trim at the cut end, and empty edits delay
// the track. Key samples ('stss', or every sample without one) carry
// KeyFrameAligned. A video sample's picture type is I for key samples, B
// for one presented before a sample decoded earlier, P otherwise.
//
// Several sample descriptions: the video track is described by entry
// "mov.video_sample_description_index" (1-based, 4 bytes; 1 by default);
// its samples of every entry are handed out.
#include <vek/containers/CContainerReader.h>
#include <atomic>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/containers/readers/mov/MovFileWalk.h>
#include <vek/containers/readers/mov/MovFileProbe.h>
#include <vek/containers/readers/mov/MovTrack.h>
#include <vek/core/CByteArray.h>

namespace Quorvex::Vek {

class VEK_API CMovieFileReader : public CContainerReader {
public:
    // What Validate returns for a file of the reader's own family, and for
    // one of the sibling family (which it reads as well, but should leave
    // to the sibling when both are registered).
    enum : int32_t { MatchScore = 128, SiblingScore = 64 };
    // "mov.chapters": the chapter titles of a chapter track, one line each,
    // "HH:MM:SS.mmm title" at the chapter's start on the presentation
    // timeline (UTF-8, up to 1000 chapters of up to 256 bytes).
    static const char* const ChaptersKey;

    int Validate(CStream* stream) override;

    CValueList<unsigned int>* GetVideoFormats() override;
    int32_t GetVideoMediaCount() override;
    CVideoProperties* GetVideoProperties(int32_t track) override;
    CValueList<unsigned int>* GetAudioFormats() override;
    int32_t GetAudioMediaCount() override;
    CAudioProperties* GetAudioProperties(int32_t track) override;
    CValueList<unsigned int>* GetSubtitleFormats() override;
    int32_t GetSubtitleMediaCount() override;
    CSubtitleProperties* GetSubtitleProperties(int32_t track) override;
    bool IsVideoReady(int32_t track) override;
    bool IsAudioReady(int32_t track) override;
    bool IsSubtitleReady(int32_t track) override;
    bool WaitForMedia(int32_t milliseconds) override;

    // Reads the movie; 0, or a code (logged) with no tracks left.
    int BeginIndex() override;
    int EndIndex() override;

    using CContainerReader::ReadVideoSample;
    // The next sample of the track in decode order; 0 with a null sample
    // at the end; -19007 for a track that does not exist.
    int ReadVideoSample(int32_t track, CVideoSample*& sample) override;
    int ReadAudioSample(int32_t track, CAudioSample*& sample) override;
    int ReadSubtitleSample(int32_t track, CSubtitleSample*& sample) override;
    using CContainerReader::ReadVideoData;
    using CContainerReader::ReadAudioData;
    using CContainerReader::ReadSubtitleData;
    int ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override;
    int ReadAudioData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override;
    int ReadSubtitleData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override;

    // Where the walk over the file stands; safe to ask from any thread, at
    // any time (it never waits for the walk).
    struct WalkProgress {
        int64_t bytesWalked; // offset of the next top-level box
        int64_t fileBytes; // the file's length as last seen
        int64_t bytesRead; // bytes the walk read, samples not counted
        bool following; // the file is followed while it grows
        bool finished; // every fragment has been parsed
    };
    WalkProgress GetWalkProgress() const;
    // A fragmented movie without an 'mfra' (its writer adds it last): the
    // file may still be growing.
    bool MayStillGrow() const { return m_fragmented.load() && !m_randomAccessSeen.load(); }

protected:
    CMovieFileReader(uint32_t type, unsigned int flags, MovFamily family);
    ~CMovieFileReader() override;

private:
    // Tracks kept while the movie is read, of every kind.
    enum : int32_t { MaxTracks = 256 };

    int OpenFile();
    int OpenWalk();
    int WalkStep();
    int WalkToMovie();
    int ReadTopLevelBox(const MovBox& header);
    int NextSample(MovTrack& track, MovSample& sample);
    void PublishWalkProgress();
    // The file's length as the walk last saw it (it grows while followed).
    int64_t FileSize() const { return m_walk.GetLength(); }
    int ReadWholeBox(int64_t offset, uint32_t type, uint32_t maxBytes, RObject<CByteArray>& bytes, MovBox& box);
    int ReadRandomAccess();
    int ReadRandomAccessBoxes(const MovBox& mfra, int64_t& lastFragment);
    int ReadLastFragmentDurations(int64_t offset);
    int ReadDeclaredSegments(const MovBox& sidx);
    void DeclareDuration(MovTrack& track, int64_t duration, uint32_t timeScale);
    int ReadMovie(const MovBox& moov);
    int ReadMovieHeader(const MovBox& mvhd);
    int ReadTrack(const MovBox& trak);
    int ReadMedia(const MovBox& mdia, MovTrack& track, const MovBox* elst);
    int ReadMediaHeader(const MovBox& mdhd, MovTrack& track);
    int ReadHandler(const MovBox& hdlr, MovTrack& track);
    int ReadSampleDescriptions(const MovBox& stsd, MovTrack& track);
    int DescribeEntry(const MovBox& entry, MovTrack& track);
    int ReadFragment(const MovBox& moof);
    int ReadExtends(const MovBox& mvex);
    int ReadExtendsHeader(const MovBox& mehd);
    int AdoptTrack(MovTrack*& track);
    int FinishTracks();
    int PublishVideo(MovTrack& track);
    int PublishAudio(MovTrack& track);
    int PublishSubtitle(MovTrack& track);
    int ReadMpegAudioLayout(MovTrack& track);
    enum : uint32_t { MaxChapters = 1000, MaxChapterTitle = 256 };
    int ReportChapters(MovTrack& track);
    int ReadChapterTitle(const MovSample& sample, char (&title)[MaxChapterTitle + 1]);
    int ApplyTimeCode(MovTrack& track);
    static int64_t GetTrackDuration(const MovTrack& track);
    uint32_t GetChosenVideoDescription();
    int32_t FindNalLengthSize(const MovTrack& track) const;
    void DropTracks();

    MovTrack* FindTrack(MovTrack::Kind kind, int32_t index) const;
    int MakeVideoSample(MovTrack& track, const MovSample& found, CVideoSample*& sample);
    int MakeAudioSample(MovTrack& track, const MovSample& found, CAudioSample*& sample);
    int CutPcmSample(MovTrack& track, CAudioSample*& sample);
    CContainerDataReference* MakeRange(const MovTrack& track, int64_t position, uint32_t size) const;
    int32_t Place(const MovTrack& track, int64_t start, int64_t duration, CMediaSample* sample) const;

    const MovFamily m_family;
    MovFamily m_fileFamily = MovFamily::None;
    RObject<CStream> m_stream; // samples and the boxes read outside the walk
    MovFileWalk m_walk;
    std::atomic<bool> m_fragmented{false};
    std::atomic<bool> m_randomAccessSeen{false};
    int32_t m_fragmentsRead = 0;
    std::atomic<int64_t> m_walkedBytes{0}, m_walkLength{0}, m_walkRead{0};
    std::atomic<bool> m_walkFinished{false}, m_walkFollowing{false};
    uint32_t m_movieTimeScale = 0;
    bool m_movieSeen = false;
    bool m_timeCodeSeen = false;
    RObject<CByteArray> m_movie; // the 'moov' bytes, kept while the tables may point into them
    MovTrack* m_tracks[MaxTracks] = {};
    int32_t m_trackCount = 0;
    MovTrack* m_video = nullptr;
    MovTrack* m_audio[MaxAudioMedia] = {};
    int32_t m_audioCount = 0;
    MovTrack* m_subtitles[MaxSubtitleMedia] = {};
    int32_t m_subtitleCount = 0;
};

} // namespace Quorvex::Vek
