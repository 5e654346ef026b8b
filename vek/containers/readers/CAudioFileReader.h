#pragma once

// The common part of readers of single-track audio files (WAV, Wave64,
// AIFF): one audio track whose sound data is one contiguous byte range of
// the file, cut into samples that point into it.
//
// BeginIndex opens the file, then a subclass's IndexHeader parses the
// header (with the stream's monitor held) into GetAudio() and the
// sound-data layout and ends with CommitTrack; on failure the base forgets
// the track and ForgetHeaderFacts drops what the parse stored elsewhere.
// A subclass's ReadAudioSample cuts samples with CutPcmSample. Media is ready once BeginIndex has returned,
// so IsAudioReady and WaitForMedia answer true without waiting.
#include <vek/containers/CContainerReader.h>
#include <vek/core/RObject.h>

namespace Quorvex::Vek {

class VEK_API CAudioFileReader : public CContainerReader {
public:
    // What Validate returns for a file whose signature matches.
    enum : int32_t { MatchScore = 128 };

    // The one track's format as a new list; null without a track.
    CValueList<unsigned int>* GetAudioFormats() override;
    // 1 after a successful BeginIndex, else 0.
    int32_t GetAudioMediaCount() override;
    // Borrowed; null for any track but 0, or without a track.
    CAudioProperties* GetAudioProperties(int32_t track) override;
    bool IsAudioReady(int32_t track) override;
    bool WaitForMedia(int32_t milliseconds) override;
    // Reads the header once; 0, or the parse's code with no track left.
    int BeginIndex() override;
    // Nothing to drop: succeeds.
    int EndIndex() override;

    using CContainerReader::ReadAudioData;
    // The range's bytes from the file; -19007 for a track other than 0.
    int ReadAudioData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data) override;

protected:
    // Where the sound data lies and how many frames it holds.
    struct SoundData {
        int64_t start = 0; // first byte of the data
        int64_t size = 0; // bytes
        int64_t frames = 0;
    };
    // Whether CutPcmSample moves the read position before it builds the
    // sample (a failure then skips that stretch) or only once the sample
    // is complete.
    enum class Advance { BeforeBuilding, AfterBuilding };

    CAudioFileReader(uint32_t type, unsigned int flags);
    ~CAudioFileReader() override;

    // Parses the header from the start of GetStream() into GetAudio() and
    // commits the track. 0, -19000 for a file the reader cannot read
    // (logged), or the stream's code.
    virtual int IndexHeader() = 0;
    // Drops the facts a failed parse may have stored beyond the track.
    virtual void ForgetHeaderFacts() {}
    // Publishes the track: its layout, its duration (frames) and read
    // position 0.
    int CommitTrack(const SoundData& data);
    // Forgets the track after a failed index pass.
    void DropTrack();

    CStream* GetStream() const { return m_stream; }
    CAudioProperties* GetAudio() const { return m_audio; }
    const SoundData& GetSoundData() const { return m_data; }
    // The file's length, or INT64_MAX when the stream cannot tell.
    int64_t GetStreamEnd() const;

    // The bytes of whole frames of `frameBytes` the file holds from `start`.
    int64_t GetWholeFramesToEnd(int64_t start, int32_t frameBytes) const;
    // The byte count of sound data declared as `declared` bytes from
    // `start`: the declared count when the file holds it, else the whole
    // frames of `frameBytes` the file holds from `start` (logged at level
    // 2 under `owner`, naming the `chunk`). Truncated recordings keep
    // their audio this way.
    int64_t FitSoundData(const char* owner, const char* chunk, int64_t declared, int64_t start,
                         int32_t frameBytes) const;

    // The next sample of up to one second (time scale frames) of PCM from
    // the read position: 0 with a null sample at the end of the data. The
    // caller provides any locking.
    int CutPcmSample(CAudioSample*& sample, Advance order);

private:
    // Opens the context's file and makes an empty description. 0 or a code.
    int OpenTrack();

    RObject<CStream> m_stream;
    RObject<CAudioProperties> m_audio;
    SoundData m_data;
    int64_t m_position = 0; // frames handed out by CutPcmSample
    bool m_hasTrack = false;
};

} // namespace Quorvex::Vek
