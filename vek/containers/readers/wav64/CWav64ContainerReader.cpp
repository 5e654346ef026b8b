#include <vek/containers/readers/wav64/CWav64ContainerReader.h>

#include <vek/containers/readers/wav/BroadcastAudioExtension.h>
#include <vek/containers/readers/wav/WaveFormatRecord.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

const _Guid CWav64ContainerReader::riff = {0x66666972, 0x912E, 0x11CF, {0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00}};
const _Guid CWav64ContainerReader::wave = {0x65766177, 0xACF3, 0x11D3, {0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A}};
const _Guid CWav64ContainerReader::fmt = {0x20746D66, 0xACF3, 0x11D3, {0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A}};
const _Guid CWav64ContainerReader::data = {0x61746164, 0xACF3, 0x11D3, {0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A}};
const _Guid CWav64ContainerReader::bext = {0x74786562, 0xACF3, 0x11D3, {0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A}};

namespace {

constexpr const char* Owner = "CWav64ContainerReader::BeginIndex";
// A chunk header: the GUID and the 64-bit size that includes the header.
constexpr int64_t ChunkHeaderBytes = 24;
// The riff header and the wave GUID.
constexpr int64_t RiffHeaderBytes = ChunkHeaderBytes + 16;
constexpr int64_t Alignment = 8;

struct GuidText {
    explicit GuidText(const _Guid& guid) { guid.Format(text, false); }
    char text[_Guid::TextLength + 1];
};

} // namespace

struct CWav64ContainerReader::Walk {
    bool hasFormat = false;
    WaveFormatRecord format;
    bool hasData = false;
    int64_t dataStart = 0;
    uint64_t dataChunkSize = 0; // as declared, header included
};

CWav64ContainerReader::CWav64ContainerReader() : CWav64ContainerReader(0) {}

CWav64ContainerReader::CWav64ContainerReader(unsigned int flags) : CAudioFileReader(Type, flags) {}

CWav64ContainerReader::~CWav64ContainerReader() = default;

int CWav64ContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    CBinaryReader reader(stream);
    _Guid id, form;
    if (reader.ReadGuid(id) < 0 || id != riff || reader.Skip(8) < 0 || reader.ReadGuid(form) < 0)
        return 0;
    return form == wave ? MatchScore : 0;
}

void CWav64ContainerReader::ForgetHeaderFacts()
{
    BroadcastAudioExtension::Remove(this);
}

int CWav64ContainerReader::IndexHeader()
{
    int result = RESULT_OK;
    CBinaryReader reader(GetStream());
    Walk walk;
    if ((result = ReadRiffHeader(reader)) < 0 || (result = WalkChunks(reader, walk)) < 0)
        return result;
    if (!walk.hasFormat) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: missing 'fmt ' chunk\n");
        return RESULT_ERROR;
    }
    if (!walk.hasData) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: missing 'data' chunk\n");
        return RESULT_ERROR;
    }
    SoundData sound;
    if ((result = walk.format.Describe(Owner, false, GetAudio())) < 0 || (result = LayOutSoundData(walk, sound)) < 0)
        return result;
    return CommitTrack(sound);
}

int CWav64ContainerReader::ReadRiffHeader(CBinaryReader& reader)
{
    _Guid id, form;
    uint64_t size = 0;
    int result = reader.ReadGuid(id);
    if (result >= 0 && id != riff) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: incorrect chunk identifier (expected 'riff')\n");
        return RESULT_ERROR;
    }
    if (result >= 0)
        result = reader.ReadUInt64(size);
    if (result >= 0 && size < uint64_t(RiffHeaderBytes)) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: invalid 'riff'\n");
        return RESULT_ERROR;
    }
    if (result >= 0)
        result = reader.ReadGuid(form);
    if (result < 0) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: reading the riff header failed with %s\n",
            GetResultName(result));
        return result;
    }
    if (form != wave) {
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: incorrect format (expected 'wave')\n");
        return RESULT_ERROR;
    }
    return RESULT_OK;
}

int CWav64ContainerReader::WalkChunks(CBinaryReader& reader, Walk& walk)
{
    const int64_t end = GetStreamEnd();
    int64_t position = RiffHeaderBytes;
    while (!walk.hasData && end - position >= ChunkHeaderBytes) {
        _Guid id;
        uint64_t size = 0;
        int result = reader.ReadGuid(id);
        if (result < 0 || (result = reader.ReadUInt64(size)) < 0) {
            Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: reading the chunk header at %lld failed with %s\n",
                static_cast<long long>(position), GetResultName(result));
            return result;
        }
        const int64_t payload = position + ChunkHeaderBytes;
        if (id == data) {
            walk.hasData = true;
            walk.dataStart = payload;
            walk.dataChunkSize = size;
            return RESULT_OK;
        }
        // Subtraction first: a size below the header would walk backwards
        // or stand still, one beyond the file would skip past its end.
        if (size < uint64_t(ChunkHeaderBytes) || size - ChunkHeaderBytes > uint64_t(end - payload)) {
            Log(LogLevel::Error,
                "CWav64ContainerReader::BeginIndex: chunk %s at %lld declares %llu bytes; the file holds %lld from "
                "there\n",
                GuidText(id).text, static_cast<long long>(position), static_cast<unsigned long long>(size),
                static_cast<long long>(end - position));
            return RESULT_ERROR;
        }
        const int64_t payloadSize = int64_t(size - ChunkHeaderBytes);
        if ((result = ReadChunk(reader, id, payloadSize, walk)) < 0)
            return result;
        // Chunks start on multiples of 8; the last one's padding may be missing.
        const int64_t padding = (Alignment - payloadSize % Alignment) % Alignment;
        int64_t next = 0;
        if (!Checked::Add(payload, payloadSize, &next) || !Checked::Add(next, padding, &next) || next > end)
            return RESULT_OK;
        if ((result = GetStream()->Seek(next, CStream::Begin)) < 0) {
            Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: seeking to the chunk at %lld failed with %s\n",
                static_cast<long long>(next), GetResultName(result));
            return result;
        }
        position = next;
    }
    return RESULT_OK;
}

int CWav64ContainerReader::ReadChunk(CBinaryReader& reader, const _Guid& id, int64_t size, Walk& walk)
{
    int result = RESULT_OK;
    if (id == fmt) {
        result = WaveFormatRecord::Read(reader, size, Owner, walk.format);
        walk.hasFormat = walk.hasFormat || result >= 0;
    } else if (id == bext) {
        result = ReadBroadcastAudioExtension(&reader, size);
    } else {
        Log(LogLevel::Detail, "CWav64ContainerReader::BeginIndex: skipping chunk %s\n", GuidText(id).text);
    }
    if (result < 0 && result != RESULT_ERROR)
        Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: reading chunk %s failed with %s\n", GuidText(id).text,
            GetResultName(result));
    return result;
}

int CWav64ContainerReader::ReadBroadcastAudioExtension(CBinaryReader* reader, int64_t size)
{
    return reader ? BroadcastAudioExtension::Read(*reader, size, Owner, this, GetAudio()) : RESULT_ARGUMENT_NULL;
}

int CWav64ContainerReader::LayOutSoundData(const Walk& walk, SoundData& sound)
{
    const int32_t frameBytes = walk.format.blockAlign;
    sound.start = walk.dataStart;
    if (walk.dataChunkSize < uint64_t(ChunkHeaderBytes)) {
        // A writer that could not seek back left the size unset.
        sound.size = GetWholeFramesToEnd(sound.start, frameBytes);
        if (sound.size > 0)
            Log(LogLevel::Warning,
                "CWav64ContainerReader::BeginIndex: data size %llu is a placeholder; reading the %lld bytes to the "
                "end of the file\n",
                static_cast<unsigned long long>(walk.dataChunkSize), static_cast<long long>(sound.size));
    } else {
        const uint64_t payload = walk.dataChunkSize - ChunkHeaderBytes;
        const int64_t declared = payload > uint64_t(INT64_MAX) ? INT64_MAX : int64_t(payload);
        sound.size = FitSoundData(Owner, "data", declared, sound.start, frameBytes);
    }
    sound.frames = sound.size / frameBytes;
    return RESULT_OK;
}

int CWav64ContainerReader::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    if (track != 0 || GetAudioMediaCount() == 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    CAutoLock lock(this);
    return CutPcmSample(sample, Advance::AfterBuilding);
}

} // namespace Quorvex::Vek
