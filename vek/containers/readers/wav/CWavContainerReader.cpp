#include <vek/containers/readers/wav/CWavContainerReader.h>

#include <algorithm>

#include <vek/core/FourCCText.h>
#include <vek/containers/readers/wav/BroadcastAudioExtension.h>
#include <vek/containers/readers/wav/WaveFormatRecord.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

constexpr uint32_t Riff = Four("RIFF");
constexpr uint32_t Rf64 = Four("RF64");
constexpr uint32_t Wave = Four("WAVE");
constexpr uint32_t Fmt = Four("fmt ");
constexpr uint32_t Fact = Four("fact");
constexpr uint32_t Bext = Four("bext");
constexpr uint32_t Ds64 = Four("ds64");
constexpr uint32_t Mext = Four("mext");
constexpr uint32_t Data = Four("data");

constexpr const char* Owner = "CWavContainerReader::BeginIndex";
constexpr int64_t RiffHeaderBytes = 12;
constexpr int64_t ChunkHeaderBytes = 8;
// The RIFF size, data size and sample count that ds64 carries first.
constexpr uint32_t Ds64Bytes = 24;
constexpr uint32_t MextBytes = 12;
// The data sizes a writer that could not seek back leaves in place.
constexpr uint32_t UnknownSize = 0xFFFFFFFF;

} // namespace

struct CWavContainerReader::Walk {
    bool hasFormat = false;
    WaveFormatRecord format;
    uint32_t factFrames = 0;
    bool hasDs64 = false;
    uint64_t ds64DataSize = 0;
    bool hasData = false;
    int64_t dataStart = 0;
    uint32_t dataSize = 0;
};

CWavContainerReader::CWavContainerReader() : CWavContainerReader(0) {}

CWavContainerReader::CWavContainerReader(unsigned int flags)
    : CAudioFileReader(Type, flags), m_mpegFrames("CWavContainerReader::ReadMpegAudioSample")
{
}

CWavContainerReader::~CWavContainerReader() = default;

int CWavContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    CBinaryReader reader(stream);
    uint32_t id = 0, form = 0;
    if (reader.ReadFourCC(id) < 0 || (id != Riff && id != Rf64) || reader.Skip(4) < 0 || reader.ReadFourCC(form) < 0)
        return 0;
    return form == Wave ? MatchScore : 0;
}

void CWavContainerReader::ForgetHeaderFacts()
{
    BroadcastAudioExtension::Remove(this);
}

int CWavContainerReader::IndexHeader()
{
    int result = RESULT_OK;
    CBinaryReader reader(GetStream());
    Walk walk;
    if ((result = ReadRiffHeader(reader)) < 0 || (result = WalkChunks(reader, walk)) < 0)
        return result;
    if (!walk.hasFormat) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: missing 'fmt ' chunk\n");
        return RESULT_ERROR;
    }
    if (!walk.hasData) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: missing 'data' chunk\n");
        return RESULT_ERROR;
    }
    SoundData data;
    if ((result = walk.format.Describe(Owner, true, GetAudio())) < 0 || (result = LayOutSoundData(walk, data)) < 0)
        return result;
    m_mpeg = GetAudio()->GetFormat() == AudioFormat::MPEG;
    m_mpegTime = 0;
    if (m_mpeg && (result = m_mpegFrames.Reset(GetStream(), data.start, data.start + data.size)) < 0)
        return result;
    return CommitTrack(data);
}

int CWavContainerReader::ReadRiffHeader(CBinaryReader& reader)
{
    uint32_t id = 0, riffSize = 0, form = 0;
    int result = reader.ReadFourCC(id);
    if (result >= 0 && id != Riff && id != Rf64) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: incorrect chunk ID '%s' (expected 'RIFF' or 'RF64')\n",
            FourCCText(id).c_str());
        return RESULT_ERROR;
    }
    if (result >= 0 && (result = reader.ReadUInt32(riffSize)) >= 0)
        result = reader.ReadFourCC(form);
    if (result < 0) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: reading the RIFF header failed with %s\n",
            GetResultName(result));
        return result;
    }
    if (form != Wave) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: incorrect format '%s' (expected 'WAVE')\n",
            FourCCText(form).c_str());
        return RESULT_ERROR;
    }
    // RF64 writers put 0xFFFFFFFF here and the true size in ds64; any
    // size that at least holds the form type is taken as it comes, since
    // the walk checks each chunk against the file itself.
    if (riffSize < 4) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: RIFF size %u cannot hold the form type\n",
            unsigned(riffSize));
        return RESULT_ERROR;
    }
    return RESULT_OK;
}

int CWavContainerReader::WalkChunks(CBinaryReader& reader, Walk& walk)
{
    const int64_t end = GetStreamEnd();
    int64_t position = RiffHeaderBytes;
    while (!walk.hasData && end - position >= ChunkHeaderBytes) {
        uint32_t id = 0, size = 0;
        int result = reader.ReadFourCC(id);
        if (result < 0 || (result = reader.ReadUInt32(size)) < 0) {
            Log(LogLevel::Error, "CWavContainerReader::BeginIndex: reading the chunk header at %lld failed with %s\n",
                static_cast<long long>(position), GetResultName(result));
            return result;
        }
        const int64_t payload = position + ChunkHeaderBytes;
        if (id == Data) {
            walk.hasData = true;
            walk.dataStart = payload;
            walk.dataSize = size;
            return RESULT_OK;
        }
        if (size > end - payload) {
            Log(LogLevel::Error,
                "CWavContainerReader::BeginIndex: chunk '%s' at %lld declares %u bytes; the file holds %lld after its "
                "header\n",
                FourCCText(id).c_str(), static_cast<long long>(position), unsigned(size),
                static_cast<long long>(end - payload));
            return RESULT_ERROR;
        }
        if ((result = ReadChunk(reader, id, size, walk)) < 0)
            return result;
        // Chunks are padded to an even size; the pad byte of the last one
        // may be missing.
        int64_t next = 0;
        if (!Checked::Add(payload, int64_t(size) + (size & 1), &next) || next > end)
            return RESULT_OK;
        if ((result = GetStream()->Seek(next, CStream::Begin)) < 0) {
            Log(LogLevel::Error, "CWavContainerReader::BeginIndex: seeking to the chunk at %lld failed with %s\n",
                static_cast<long long>(next), GetResultName(result));
            return result;
        }
        position = next;
    }
    return RESULT_OK;
}

int CWavContainerReader::ReadChunk(CBinaryReader& reader, uint32_t id, uint32_t size, Walk& walk)
{
    int result = RESULT_OK;
    switch (id) {
    case Fmt:
        result = WaveFormatRecord::Read(reader, size, Owner, walk.format);
        walk.hasFormat = walk.hasFormat || result >= 0;
        break;
    case Fact:
        if (size < 4)
            Log(LogLevel::Warning, "CWavContainerReader::BeginIndex: 'fact' chunk of %u bytes holds no count; ignored\n",
                unsigned(size));
        else
            result = reader.ReadUInt32(walk.factFrames);
        break;
    case Bext:
        result = ReadBroadcastAudioExtension(&reader, size);
        break;
    case Ds64:
        result = ReadDataSize64(reader, size, walk);
        break;
    case Mext:
        result = ReadMpegAudioExtension(&reader, size);
        break;
    default:
        Log(LogLevel::Detail, "CWavContainerReader::BeginIndex: skipping extension chunk '%s'\n", FourCCText(id).c_str());
        break;
    }
    if (result < 0 && result != RESULT_ERROR)
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: reading chunk '%s' failed with %s\n",
            FourCCText(id).c_str(), GetResultName(result));
    return result;
}

int CWavContainerReader::ReadDataSize64(CBinaryReader& reader, uint32_t size, Walk& walk)
{
    if (size < Ds64Bytes) {
        Log(LogLevel::Error, "CWavContainerReader::BeginIndex: 'ds64' chunk of %u bytes is shorter than %u\n",
            unsigned(size), unsigned(Ds64Bytes));
        return RESULT_ERROR;
    }
    int result = reader.Skip(8);
    if (result < 0 || (result = reader.ReadUInt64(walk.ds64DataSize)) < 0)
        return result;
    walk.hasDs64 = true;
    return RESULT_OK;
}

int CWavContainerReader::ReadBroadcastAudioExtension(CBinaryReader* reader, uint32_t size)
{
    return reader ? BroadcastAudioExtension::Read(*reader, size, Owner, this, GetAudio()) : RESULT_ARGUMENT_NULL;
}

int CWavContainerReader::ReadMpegAudioExtension(CBinaryReader* reader, uint32_t size)
{
    if (!reader)
        return RESULT_ARGUMENT_NULL;
    if (size < MextBytes) {
        Log(LogLevel::Warning, "CWavContainerReader::BeginIndex: 'mext' chunk of %u bytes is shorter than %u; ignored\n",
            unsigned(size), unsigned(MextBytes));
        return RESULT_OK;
    }
    uint16_t soundInformation = 0, frameSize = 0, ancillaryLength = 0, ancillaryDefinition = 0;
    int result;
    if ((result = reader->ReadUInt16(soundInformation)) < 0 || (result = reader->ReadUInt16(frameSize)) < 0 ||
        (result = reader->ReadUInt16(ancillaryLength)) < 0 || (result = reader->ReadUInt16(ancillaryDefinition)) < 0)
        return result;
    Log(LogLevel::Detail,
        "CWavContainerReader::BeginIndex: 'mext' sound information 0x%04X, frame size %u, ancillary data %u bytes "
        "(0x%04X)\n",
        unsigned(soundInformation), unsigned(frameSize), unsigned(ancillaryLength), unsigned(ancillaryDefinition));
    return RESULT_OK;
}

int CWavContainerReader::LayOutSoundData(const Walk& walk, SoundData& data)
{
    const int32_t frameBytes = walk.format.blockAlign;
    data.start = walk.dataStart;
    if (walk.dataSize == UnknownSize && walk.hasDs64) {
        const int64_t declared = walk.ds64DataSize > uint64_t(INT64_MAX) ? INT64_MAX : int64_t(walk.ds64DataSize);
        data.size = FitSoundData(Owner, "data", declared, data.start, frameBytes);
    } else if (walk.dataSize == UnknownSize || walk.dataSize == 0) {
        data.size = GetWholeFramesToEnd(data.start, frameBytes);
        if (data.size > 0)
            Log(LogLevel::Warning,
                "CWavContainerReader::BeginIndex: 'data' size 0x%08X is a placeholder; reading the %lld bytes to the "
                "end of the file\n",
                unsigned(walk.dataSize), static_cast<long long>(data.size));
    } else {
        data.size = FitSoundData(Owner, "data", walk.dataSize, data.start, frameBytes);
    }
    data.frames = data.size / frameBytes;
    if (walk.factFrames == 0)
        return RESULT_OK;
    // MPEG data holds an unknown number of frames per byte: its count is
    // believed as it stands.
    const bool pcm = GetAudio()->GetFormat() != AudioFormat::MPEG;
    if (pcm && int64_t(walk.factFrames) > data.frames) {
        Log(LogLevel::Warning,
            "CWavContainerReader::BeginIndex: 'fact' count %u exceeds the %lld frames the data holds; using %lld\n",
            unsigned(walk.factFrames), static_cast<long long>(data.frames), static_cast<long long>(data.frames));
        return RESULT_OK;
    }
    data.frames = walk.factFrames;
    return RESULT_OK;
}

int CWavContainerReader::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    if (track != 0 || GetAudioMediaCount() == 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    CAutoLock lock(this);
    return m_mpeg ? ReadMpegAudioSample(sample) : ReadPcmAudioSample(sample);
}

int CWavContainerReader::ReadPcmAudioSample(CAudioSample*& sample)
{
    return CutPcmSample(sample, Advance::AfterBuilding);
}

int CWavContainerReader::ReadMpegAudioSample(CAudioSample*& sample)
{
    sample = nullptr;
    AudioFrame frame;
    const bool first = m_mpegFrames.GetPosition() == GetSoundData().start;
    int result = m_mpegFrames.Next(m_mpegSyntax, frame);
    if (result == RESULT_ERROR)
        m_mpegFrames.Seek(m_mpegFrames.GetEnd()); // the stream is lost: end it here
    if (result < 0 || frame.bytes == 0)
        return result;
    if (first)
        m_mpegFrames.Lock(frame.family);
    RObject<CAudioSample> made(CAudioSample::Create());
    RObject<CContainerDataReference> range(new (fallible) CContainerDataReference(frame.offset, frame.bytes));
    result = made && range ? RESULT_OK : RESULT_OUT_OF_MEMORY;
    if (result >= 0) {
        made->SetPackets(1);
        made->SetFrames(frame.frames);
        made->SetTime(m_mpegTime);
        result = made->SetDataReference(range);
    }
    if (result < 0) {
        // Nothing was handed out: the next call cuts the same frame again.
        m_mpegFrames.Seek(frame.offset);
        return result;
    }
    m_mpegTime += frame.frames;
    sample = made.Detach();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
