#include <vek/containers/readers/aiff/CAiffContainerReader.h>

#include <climits>

#include <vek/core/FourCCText.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

constexpr uint32_t Form = Four("FORM");
constexpr uint32_t Aiff = Four("AIFF");
constexpr uint32_t Common = Four("COMM");
constexpr uint32_t Sound = Four("SSND");

constexpr const char* Owner = "CAiffContainerReader::BeginIndex";
constexpr int64_t FormHeaderBytes = 12;
constexpr int64_t ChunkHeaderBytes = 8;
// channels, frames, sample size, 80-bit rate
constexpr uint32_t CommonBytes = 18;
// offset and block size before the sound
constexpr uint32_t SoundHeaderBytes = 8;

} // namespace

struct CAiffContainerReader::Walk {
    bool hasCommon = false;
    uint16_t channels = 0;
    uint32_t frames = 0;
    uint16_t sampleSize = 0;
    uint32_t sampleRate = 0;
    bool hasSound = false;
    int64_t soundStart = 0;
    int64_t soundSize = 0; // as declared
};

CAiffContainerReader::CAiffContainerReader() : CAiffContainerReader(0) {}

CAiffContainerReader::CAiffContainerReader(unsigned int flags) : CAudioFileReader(Type, flags) {}

CAiffContainerReader::~CAiffContainerReader() = default;

int CAiffContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    CBinaryReader reader(stream, ByteOrder::BigEndian);
    uint32_t id = 0, form = 0;
    if (reader.ReadFourCC(id) < 0 || id != Form || reader.Skip(4) < 0 || reader.ReadFourCC(form) < 0)
        return 0;
    return form == Aiff ? MatchScore : 0;
}

int CAiffContainerReader::IndexHeader()
{
    int result = RESULT_OK;
    CBinaryReader reader(GetStream(), ByteOrder::BigEndian);
    Walk walk;
    if ((result = ReadFormHeader(reader)) < 0 || (result = WalkChunks(reader, walk)) < 0)
        return result;
    if (!walk.hasCommon || !walk.hasSound) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: missing '%s' chunk\n", walk.hasCommon ? "SSND" : "COMM");
        return RESULT_ERROR;
    }
    SoundData sound;
    if ((result = Describe(walk)) < 0 || (result = LayOutSoundData(walk, sound)) < 0)
        return result;
    return CommitTrack(sound);
}

int CAiffContainerReader::ReadFormHeader(CBinaryReader& reader)
{
    uint32_t id = 0, size = 0, form = 0;
    int result = reader.ReadFourCC(id);
    if (result >= 0 && id != Form) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: incorrect chunk ID '%s' (expected 'FORM')\n",
            FourCCText(id).c_str());
        return RESULT_ERROR;
    }
    if (result >= 0 && (result = reader.ReadUInt32(size)) >= 0)
        result = reader.ReadFourCC(form);
    if (result < 0) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: reading the FORM header failed with %s\n",
            GetResultName(result));
        return result;
    }
    if (form != Aiff) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: incorrect form type '%s' (expected 'AIFF')\n",
            FourCCText(form).c_str());
        return RESULT_ERROR;
    }
    if (size < 4) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: FORM size %u cannot hold the form type\n",
            unsigned(size));
        return RESULT_ERROR;
    }
    return RESULT_OK;
}

int CAiffContainerReader::WalkChunks(CBinaryReader& reader, Walk& walk)
{
    const int64_t end = GetStreamEnd();
    int64_t position = FormHeaderBytes;
    while (!(walk.hasCommon && walk.hasSound) && end - position >= ChunkHeaderBytes) {
        uint32_t id = 0, size = 0;
        int result = reader.ReadFourCC(id);
        if (result < 0 || (result = reader.ReadUInt32(size)) < 0) {
            Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: reading the chunk header at %lld failed with %s\n",
                static_cast<long long>(position), GetResultName(result));
            return result;
        }
        const int64_t payload = position + ChunkHeaderBytes;
        // Only the sound may run past the end: a truncated recording keeps
        // the frames it has.
        if (size > end - payload && id != Sound) {
            Log(LogLevel::Error,
                "CAiffContainerReader::BeginIndex: chunk '%s' at %lld declares %u bytes; the file holds %lld after its "
                "header\n",
                FourCCText(id).c_str(), static_cast<long long>(position), unsigned(size),
                static_cast<long long>(end - payload));
            return RESULT_ERROR;
        }
        if (id == Common)
            result = ReadCommon(reader, size, walk);
        else if (id == Sound)
            result = ReadSoundHeader(reader, payload, size, walk);
        else
            Log(LogLevel::Detail, "CAiffContainerReader::BeginIndex: skipping chunk '%s'\n", FourCCText(id).c_str());
        if (result < 0)
            return result;
        int64_t next = 0;
        if (!Checked::Add(payload, int64_t(size), &next) || next > end)
            return RESULT_OK;
        if ((result = GetStream()->Seek(next, CStream::Begin)) < 0) {
            Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: seeking to the chunk at %lld failed with %s\n",
                static_cast<long long>(next), GetResultName(result));
            return result;
        }
        position = next;
    }
    return RESULT_OK;
}

int CAiffContainerReader::ReadCommon(CBinaryReader& reader, uint32_t size, Walk& walk)
{
    if (size < CommonBytes) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: 'COMM' chunk of %u bytes is shorter than %u\n",
            unsigned(size), unsigned(CommonBytes));
        return RESULT_ERROR;
    }
    int result;
    if ((result = reader.ReadUInt16(walk.channels)) < 0 || (result = reader.ReadUInt32(walk.frames)) < 0 ||
        (result = reader.ReadUInt16(walk.sampleSize)) < 0 ||
        (result = GetUInt32FromExtended(&reader, &walk.sampleRate)) < 0) {
        if (result != RESULT_ERROR)
            Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: reading 'COMM' failed with %s\n",
                GetResultName(result));
        return result;
    }
    walk.hasCommon = true;
    return RESULT_OK;
}

int CAiffContainerReader::ReadSoundHeader(CBinaryReader& reader, int64_t payload, uint32_t size, Walk& walk)
{
    uint32_t offset = 0, blockSize = 0;
    int result = RESULT_OK;
    if (size < SoundHeaderBytes || (result = reader.ReadUInt32(offset)) < 0 ||
        (result = reader.ReadUInt32(blockSize)) < 0 || offset > size - SoundHeaderBytes) {
        if (result >= 0)
            result = RESULT_ERROR;
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: 'SSND' chunk of %u bytes with offset %u is unusable (%s)\n",
            unsigned(size), unsigned(offset), GetResultName(result));
        return result;
    }
    walk.hasSound = true;
    walk.soundStart = payload + SoundHeaderBytes + offset;
    walk.soundSize = int64_t(size) - SoundHeaderBytes - offset;
    return RESULT_OK;
}

int CAiffContainerReader::GetUInt32FromExtended(CBinaryReader* reader, uint32_t* out)
{
    uint16_t exponent = 0;
    uint32_t upper = 0, lower = 0;
    int result;
    if ((result = reader->ReadUInt16(exponent)) < 0 || (result = reader->ReadUInt32(upper)) < 0 ||
        (result = reader->ReadUInt32(lower)) < 0)
        return result;
    const int shift = 30 - int(exponent & 0xFF);
    if (shift < 0) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: sampleRate exponent 0x%04X is out of range\n",
            unsigned(exponent));
        return RESULT_ERROR;
    }
    if (shift == 0) {
        *out = upper;
        return RESULT_OK;
    }
    const uint32_t roundUp = (upper >> (shift - 1)) & 1;
    *out = (upper >> shift) + roundUp;
    return RESULT_OK;
}

int CAiffContainerReader::Describe(const Walk& walk)
{
    uint32_t format = 0;
    switch (walk.sampleSize) {
    case 8: format = AudioFormat::UInt8; break;
    case 16: format = AudioFormat::Int16B; break;
    case 24: format = AudioFormat::Int24B; break;
    case 32: format = AudioFormat::Int32B; break;
    default:
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: unsupported sample_size %d\n", int(walk.sampleSize));
        return RESULT_ERROR;
    }
    if (walk.channels == 0 || walk.channels > CAudioProperties::MaxChannels) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: unsupported numChannels %u\n", unsigned(walk.channels));
        return RESULT_ERROR;
    }
    // A sample holds one second: its byte count must fit a data reference.
    const int32_t frameBytes = int32_t(walk.channels) * (walk.sampleSize / 8);
    int32_t secondBytes = 0;
    if (walk.sampleRate == 0 || walk.sampleRate > uint32_t(INT32_MAX) ||
        !Checked::Multiply(frameBytes, int32_t(walk.sampleRate), &secondBytes)) {
        Log(LogLevel::Error, "CAiffContainerReader::BeginIndex: unsupported sampleRate %u for %d-byte frames\n",
            unsigned(walk.sampleRate), int(frameBytes));
        return RESULT_ERROR;
    }
    CAudioProperties* audio = GetAudio();
    audio->SetFormat(format);
    int result;
    if ((result = audio->SetBitRate(int64_t(secondBytes) * 8)) < 0 ||
        (result = audio->SetSampleRate(int32_t(walk.sampleRate))) < 0 ||
        (result = audio->SetTimeScale(walk.sampleRate)) < 0 || (result = audio->SetChannels(walk.channels)) < 0 ||
        (result = audio->SetBitsPerSample(walk.sampleSize)) < 0 || (result = audio->SetBytesPerFrame(frameBytes)) < 0 ||
        (result = audio->SetFramesPerPacket(1)) < 0 || (result = audio->SetBytesPerPacket(frameBytes)) < 0)
        return result;
    return RESULT_OK;
}

int CAiffContainerReader::LayOutSoundData(const Walk& walk, SoundData& sound)
{
    const int32_t frameBytes = GetAudio()->GetBytesPerFrame();
    sound.start = walk.soundStart;
    sound.size = FitSoundData(Owner, "SSND", walk.soundSize, sound.start, frameBytes);
    sound.frames = walk.frames;
    if (sound.frames > sound.size / frameBytes) {
        Log(LogLevel::Warning,
            "CAiffContainerReader::BeginIndex: numSampleFrames %u exceeds the %lld frames the sound holds; using "
            "%lld\n",
            unsigned(walk.frames), static_cast<long long>(sound.size / frameBytes),
            static_cast<long long>(sound.size / frameBytes));
        sound.frames = sound.size / frameBytes;
    }
    return RESULT_OK;
}

int CAiffContainerReader::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    if (track != 0 || GetAudioMediaCount() == 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    return CutPcmSample(sample, Advance::BeforeBuilding);
}

} // namespace Quorvex::Vek
