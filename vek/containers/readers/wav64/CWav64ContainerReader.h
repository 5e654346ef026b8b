#pragma once

// The reader of Sony Wave64 files: WAV's structure with 16-byte GUID chunk
// names, 64-bit chunk sizes that count the 24-byte chunk header, and chunks
// aligned to 8 bytes. One audio track of PCM or IEEE float, cut into
// samples of one second under the reader's monitor. The format record and
// broadcast extension are WAV's (WaveFormatRecord, BroadcastAudioExtension).
#include <vek/containers/readers/CAudioFileReader.h>
#include <vek/core/Guid.h>
#include <vek/io/CBinaryReader.h>

namespace Quorvex::Vek {

struct WaveFormatRecord;

class VEK_API CWav64ContainerReader : public CAudioFileReader {
public:
    enum : uint32_t { Type = Four("wv64") };

    // The chunk names, stored in the file in the Windows GUID layout.
    static const _Guid riff;
    static const _Guid wave;
    static const _Guid fmt;
    static const _Guid data;
    static const _Guid bext;

    CWav64ContainerReader();
    explicit CWav64ContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "WAV64"; }
    // MatchScore for the riff GUID, a size, then the wave GUID; 0 otherwise.
    int Validate(CStream* stream) override;
    // The next second of sound; 0 with a null sample at the end, -19007
    // for a track other than 0.
    int ReadAudioSample(int32_t track, CAudioSample*& sample) override;

protected:
    // Reads the GUID chunks up to data (BeginIndex).
    int IndexHeader() override;
    void ForgetHeaderFacts() override;
    ~CWav64ContainerReader() override;

    int ReadBroadcastAudioExtension(CBinaryReader* reader, int64_t size);

private:
    struct Walk;

    int ReadRiffHeader(CBinaryReader& reader);
    int WalkChunks(CBinaryReader& reader, Walk& walk);
    int ReadChunk(CBinaryReader& reader, const _Guid& id, int64_t size, Walk& walk);
    int LayOutSoundData(const Walk& walk, SoundData& sound);
};

} // namespace Quorvex::Vek
