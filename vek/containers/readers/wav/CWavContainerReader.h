#pragma once

// The reader of RIFF WAVE files, their 64-bit RF64 form and broadcast-wave
// files: one audio track of PCM, IEEE float or MPEG audio.
//
// PCM and float data is cut into samples of one second; MPEG audio (format
// tags 0x50 and 0x55) into its frames, found by their headers. Samples are
// handed out under the reader's monitor, so several threads may pull them.
//
// The broadcast extension goes to the reader's bag (text, UMID, coding
// history, time reference: see BroadcastAudioExtension.h) and to the
// track's description (loudness). The MPEG extension ("mext") is read and
// logged at level 4 but not kept: its facts (homogeneous frames, padding,
// frame size) are redundant with the frame headers the reader parses.
//
// A "data" chunk that runs past the end of the file (a truncated recording,
// or the 0 / 0xFFFFFFFF size a streaming writer leaves behind) is read as
// far as the file holds whole frames, with a level-2 log line.
#include <vek/containers/readers/CAudioFileReader.h>
#include <vek/containers/readers/AudioFrameScanner.h>
#include <vek/containers/readers/mpegaudio/MpegAudioFrameSyntax.h>
#include <vek/io/CBinaryReader.h>

namespace Quorvex::Vek {

struct WaveFormatRecord;

class VEK_API CWavContainerReader : public CAudioFileReader {
public:
    enum : uint32_t { Type = Four("wav ") };

    CWavContainerReader();
    explicit CWavContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "WAV"; }
    // MatchScore for "RIFF" or "RF64" followed by "WAVE"; 0 otherwise.
    int Validate(CStream* stream) override;
    // The next sample: one second of PCM or float, or one MPEG audio frame.
    // 0 with a null sample at the end; -19007 for a track other than 0.
    int ReadAudioSample(int32_t track, CAudioSample*& sample) override;

protected:
    // Reads the chunks up to "data" (BeginIndex).
    int IndexHeader() override;
    void ForgetHeaderFacts() override;
    ~CWavContainerReader() override;

    int ReadPcmAudioSample(CAudioSample*& sample);
    int ReadMpegAudioSample(CAudioSample*& sample);
    int ReadBroadcastAudioExtension(CBinaryReader* reader, uint32_t size);
    int ReadMpegAudioExtension(CBinaryReader* reader, uint32_t size);

private:
    struct Walk;

    int ReadRiffHeader(CBinaryReader& reader);
    int WalkChunks(CBinaryReader& reader, Walk& walk);
    int ReadChunk(CBinaryReader& reader, uint32_t id, uint32_t size, Walk& walk);
    int ReadDataSize64(CBinaryReader& reader, uint32_t size, Walk& walk);
    int LayOutSoundData(const Walk& walk, SoundData& data);

    bool m_mpeg = false;
    int64_t m_mpegTime = 0; // frames handed out
    MpegAudioFrameSyntax m_mpegSyntax;
    AudioFrameScanner m_mpegFrames; // over the sound data; locked on the first frame
};

} // namespace Quorvex::Vek
