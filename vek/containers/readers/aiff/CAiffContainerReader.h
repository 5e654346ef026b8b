#pragma once

// The reader of AIFF files (big-endian, "FORM" of type "AIFF"): one track
// of 8-, 16-, 24- or 32-bit integer PCM described by "COMM", whose sound
// lies in "SSND". Compressed AIFF-C is left to other readers: Validate
// refuses it.
//
// Two habits of this reader are deliberate and stay:
// - 8-bit sound is declared AudioFormat::UInt8, the id of unsigned WAV
//   bytes, although AIFF stores 8-bit samples signed;
// - the chunk walk skips a chunk by exactly its size, without the pad byte
//   that follows an odd-sized chunk.
//
// Samples of one second are cut without a lock: read one reader from one
// thread at a time. The read position moves before a sample is built, so
// a failure while building skips that stretch.
#include <vek/containers/readers/CAudioFileReader.h>
#include <vek/io/CBinaryReader.h>

namespace Quorvex::Vek {

class VEK_API CAiffContainerReader : public CAudioFileReader {
public:
    enum : uint32_t { Type = Four("aiff") };

    CAiffContainerReader();
    explicit CAiffContainerReader(unsigned int flags);

    const char* GetFormatName() override { return "AIFF"; }
    // MatchScore for "FORM", a size, then "AIFF"; 0 otherwise (AIFC too).
    int Validate(CStream* stream) override;
    // The next second of sound; 0 with a null sample at the end, -19007
    // for a track other than 0.
    int ReadAudioSample(int32_t track, CAudioSample*& sample) override;

protected:
    // Reads the chunks up to COMM and SSND, in whichever order they come
    // (BeginIndex).
    int IndexHeader() override;
    ~CAiffContainerReader() override;

private:
    struct Walk;

    int ReadFormHeader(CBinaryReader& reader);
    int WalkChunks(CBinaryReader& reader, Walk& walk);
    int ReadCommon(CBinaryReader& reader, uint32_t size, Walk& walk);
    int ReadSoundHeader(CBinaryReader& reader, int64_t payload, uint32_t size, Walk& walk);
    int Describe(const Walk& walk);
    int LayOutSoundData(const Walk& walk, SoundData& sound);

    // The 80-bit extended sample rate as an integer, rounded half up.
    // Only the low 8 bits of the exponent count: exact for every biased
    // exponent 0x40xx, which covers rates from 2 Hz to 2^31 Hz.
    int GetUInt32FromExtended(CBinaryReader* reader, uint32_t* out);
};

} // namespace Quorvex::Vek
