#pragma once

// The indexer of a container reader: runs the reader's index pass and keeps
// one index per track (CVideoIndexer, CAudioIndexer, CSubtitleIndexer),
// which answer time-based questions; Seek builds a read cursor over them.
//
// Life cycle:
//   Create -> Begin(background) -> [RunIndexPass when not background]
//   -> WaitForIndex / queries / Seek ... -> End -> Release.
// The state goes "idle" -> "run " -> "done" or "fail".
//
// The pass reads the tracks round-robin: one sample of every track that
// has not ended (video, then audio, then subtitle tracks, each in track
// order) per round, until every track has reported its end. A failed or
// stopped pass keeps the samples indexed so far and still completes every
// track, so that queries beyond them end (-19272) instead of waiting for
// samples that will not come; only the state ("fail") tells the index is
// partial.
//
// Ownership: the reader is shared; the per-track getters lend (valid while
// the indexer lives); Seek hands the caller a new traverser.
#include <atomic>

#include <vek/containers/CAudioIndexer.h>
#include <vek/containers/CContainerReader.h>
#include <vek/containers/CSubtitleIndexer.h>
#include <vek/containers/CVideoIndexer.h>
#include <vek/platform/Thread.h>

namespace Quorvex::Vek {

class CIndexerTraverser;

class VEK_API CIndexer : public CObject, public IProperties {
public:
    enum : uint32_t { Type = Four("indx") };
    // States, four characters with the first in the most significant byte.
    enum State : uint32_t {
        Idle = Four("idle"),
        Active = Four("run "),
        Complete = Four("done"),
        Failed = Four("fail"),
    };

    // Called on the thread running the pass after every round of samples
    // with the state ("run ") and the progress so far (0..1), and once at
    // the end with "done" or "fail" and the final progress. A non-zero
    // return stops the pass (it ends "fail"). Must not call End or release
    // the indexer's last reference.
    using ProgressCallback = int (*)(void* context, unsigned int state, double progress);

    // A new indexer over `reader` (shared; null is allowed and makes Begin
    // fail with -19001); null without memory.
    static CIndexer* Create(CContainerReader* reader);

    // Calls the reader's BeginIndex and makes one index per track from the
    // reader's descriptions, in track order, at most MaxVideoMedia video,
    // MaxAudioMedia audio and MaxSubtitleMedia subtitle tracks. With
    // `background` the pass then starts on a thread of its own; without, no
    // pass starts (see RunIndexPass).
    // Precondition: state "idle", Begin not called before, End not called.
    // Returns 0; -19001 without a reader; -19010 out of order; the reader's
    // failure as it is; -19000 for a track without a description; -19002
    // without memory. After any other failure than -19001 and -19010 the
    // state is "fail" and Begin may not be called again.
    int Begin(bool background);

    // The same pass the background thread runs, on the caller's thread, for
    // hosts that begin without background indexing. Returns when the pass
    // has ended: 0 and state "done", or the failure and state "fail".
    // Precondition: Begin(false) succeeded and no pass has run; -19010
    // otherwise (it is illegal while a background pass runs).
    int RunIndexPass();

    // Stops a running pass at its next sample and waits for the index
    // thread to end; releases what the reader kept for the pass. Safe to
    // call twice, without a pass and from the destructor; not from the
    // progress callback. Afterwards Begin and RunIndexPass answer -19010;
    // the indexed tracks stay readable. Always 0.
    int End();

    // True once the state is "done" or "fail"; waits at most `milliseconds`
    // for that (negative: without limit).
    bool WaitForIndex(int32_t milliseconds);

    // A new traverser positioned at `seconds` (see CIndexerTraverser::Seek
    // for flags and results); null on failure.
    int Seek(double seconds, int32_t flags, CIndexerTraverser*& traverser);

    uint32_t GetState() const { return m_state.load(std::memory_order_acquire); }
    // The longest track, in seconds; 0 until a pass has ended.
    double GetDuration();
    // Borrowed.
    CContainerReader* GetContainerReader() const { return m_reader; }

    // Whether the pass loads each video sample's bytes ("indexer.
    // enable_video_data") and its metadata ("indexer.enable_video_metadata")
    // before indexing it. Read by the pass at every sample.
    void SetReadVideoData(bool enable) { m_readVideoData.store(enable); }
    bool GetReadVideoData() const { return m_readVideoData.load(); }
    void SetReadVideoMetadata(bool enable) { m_readVideoMetadata.store(enable); }
    bool GetReadVideoMetadata() const { return m_readVideoMetadata.load(); }

    // Replaces the callback (null for none) and its context.
    int SetProgressCallback(ProgressCallback callback, void* context);

    // Track counts and per-track indexes and descriptions (borrowed; null
    // for a track outside the counts). Valid once Begin has succeeded.
    int32_t GetVideoMediaCount() const { return m_videoCount; }
    int32_t GetAudioMediaCount() const { return m_audioCount; }
    int32_t GetSubtitleMediaCount() const { return m_subtitleCount; }
    CVideoIndexer* GetVideoIndexer(int32_t track) const;
    CAudioIndexer* GetAudioIndexer(int32_t track) const;
    CSubtitleIndexer* GetSubtitleIndexer(int32_t track) const;
    CVideoProperties* GetVideoProperties(int32_t track) const;
    CAudioProperties* GetAudioProperties(int32_t track) const;
    CSubtitleProperties* GetSubtitleProperties(int32_t track) const;

    // The two switches as 1-byte bools (a value of another size is -19000);
    // every other key is the bag's.
    int GetProperty(const char* key, int32_t capacity, unsigned char* out) override;
    int SetProperty(const char* key, int32_t length, const unsigned char* data) override;
    using IProperties::GetProperty;
    using IProperties::SetProperty;

protected:
    explicit CIndexer(CContainerReader* reader);
    ~CIndexer() override;

private:
    static int IndexThread(void* context);
    int StartIndexThread();
    int CreateMediaIndexers();
    template <typename Indexer, typename Properties>
    int CreateTracks(int32_t available, int32_t limit, Properties* (CContainer::*describe)(int32_t),
                     RObject<Indexer>* indexers, int32_t& count);
    void ReleaseMediaIndexers();
    int ReadIndex();
    int ReadRounds();
    int IndexNextSample(int32_t slot, bool& ended);
    int IndexVideoSample(int32_t track, bool& ended);
    int IndexAudioSample(int32_t track, bool& ended);
    int IndexSubtitleSample(int32_t track, bool& ended);
    CMediaIndexer* MediaIndexerAt(int32_t slot) const;
    int32_t TrackCount() const { return m_videoCount + m_audioCount + m_subtitleCount; }
    double Progress() const;
    int ReportProgress(uint32_t state);
    int CompleteTracks();
    void SetDuration(double seconds);
    void SetState(uint32_t state);
    void EndReaderIndex();
    std::atomic<bool>* SwitchFor(const char* key);

    RObject<CContainerReader> m_reader;
    RObject<CVideoIndexer> m_video[CContainer::MaxVideoMedia];
    RObject<CAudioIndexer> m_audio[CContainer::MaxAudioMedia];
    RObject<CSubtitleIndexer> m_subtitle[CContainer::MaxSubtitleMedia];
    int32_t m_videoCount = 0;
    int32_t m_audioCount = 0;
    int32_t m_subtitleCount = 0;

    std::atomic<uint32_t> m_state{Idle};
    std::atomic<bool> m_readVideoData{false};
    std::atomic<bool> m_readVideoMetadata{false};
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_threadRunning{false};
    std::atomic<bool> m_readerIndexing{false};
    bool m_begun = false;
    bool m_passStarted = false;
    double m_duration = 0.0;
    ProgressCallback m_callback = nullptr;
    void* m_callbackContext = nullptr;
    Platform::ThreadStorage m_thread{};
};

} // namespace Quorvex::Vek
