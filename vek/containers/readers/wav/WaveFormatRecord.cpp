#include <vek/containers/readers/wav/WaveFormatRecord.h>

#include <climits>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek {

namespace {

// The standard sub-formats are the KSDATAFORMAT GUIDs
// {tttttttt-0000-0010-8000-00AA00389B71}, tttttttt being the format tag.
bool IsStandardSubFormat(const _Guid& guid)
{
    static const uint8_t tail[8] = {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
    for (int i = 0; i < 8; ++i) {
        if (guid.Data4[i] != tail[i])
            return false;
    }
    return guid.Data1 <= 0xFFFF && guid.Data2 == 0x0000 && guid.Data3 == 0x0010;
}

int ReadExtension(CBinaryReader& reader, int64_t size, const char* owner, WaveFormatRecord& out)
{
    // A 17-byte record has no room for the whole cbSize field: no extension.
    if (size < WaveFormatRecord::BaseBytes + 2)
        return RESULT_OK;
    int result = reader.ReadUInt16(out.cbSize);
    if (result < 0 || out.formatTag != WaveFormatRecord::TagExtensible)
        return result;
    if (out.cbSize < WaveFormatRecord::ExtensibleBytes ||
        size - (WaveFormatRecord::BaseBytes + 2) < WaveFormatRecord::ExtensibleBytes) {
        Log(LogLevel::Error, "%s: extensible 'fmt ' record with cbSize %u in %lld bytes (needs %u)\n", owner,
            unsigned(out.cbSize), static_cast<long long>(size), unsigned(WaveFormatRecord::ExtensibleBytes));
        return RESULT_ERROR;
    }
    if ((result = reader.ReadUInt16(out.validBitsPerSample)) < 0 || (result = reader.ReadUInt32(out.channelMask)) < 0 ||
        (result = reader.ReadGuid(out.subFormat, GuidByteOrder::Windows)) < 0)
        return result;
    out.extensible = true;
    return RESULT_OK;
}

} // namespace

int WaveFormatRecord::Read(CBinaryReader& reader, int64_t size, const char* owner, WaveFormatRecord& out)
{
    if (size < BaseBytes) {
        Log(LogLevel::Error, "%s: 'fmt ' chunk of %lld bytes is shorter than %lld\n", owner,
            static_cast<long long>(size), static_cast<long long>(BaseBytes));
        return RESULT_ERROR;
    }
    WaveFormatRecord record;
    int result;
    if ((result = reader.ReadUInt16(record.formatTag)) < 0 || (result = reader.ReadUInt16(record.channels)) < 0 ||
        (result = reader.ReadUInt32(record.samplesPerSec)) < 0 ||
        (result = reader.ReadUInt32(record.avgBytesPerSec)) < 0 ||
        (result = reader.ReadUInt16(record.blockAlign)) < 0 || (result = reader.ReadUInt16(record.bitsPerSample)) < 0 ||
        (result = ReadExtension(reader, size, owner, record)) < 0)
        return result;
    out = record;
    return RESULT_OK;
}

uint16_t WaveFormatRecord::GetEffectiveTag() const
{
    if (formatTag != TagExtensible || !extensible)
        return formatTag;
    return IsStandardSubFormat(subFormat) ? uint16_t(subFormat.Data1) : uint16_t(TagExtensible);
}

int WaveFormatRecord::ChooseFormat(const char* owner, bool acceptMpeg, uint32_t& format) const
{
    const uint16_t tag = GetEffectiveTag();
    if (tag == TagPcm || tag == TagUnknown) {
        switch (bitsPerSample) {
        case 8: format = AudioFormat::UInt8; return RESULT_OK;
        case 16: format = AudioFormat::Int16L; return RESULT_OK;
        case 24: format = AudioFormat::Int24L; return RESULT_OK;
        case 32: format = AudioFormat::Int32L; return RESULT_OK;
        default:
            Log(LogLevel::Error, "%s: unsupported wBitsPerSample %d\n", owner, int(bitsPerSample));
            return RESULT_ERROR;
        }
    }
    if (tag == TagIeeeFloat) {
        format = AudioFormat::Float32L;
        return RESULT_OK;
    }
    // Tag 0x55 (MPEG layer III) frames its data exactly as tag 0x50 does.
    if (acceptMpeg && (tag == TagMpeg || tag == TagMpegLayer3)) {
        format = AudioFormat::MPEG;
        return RESULT_OK;
    }
    // Both wave readers log this one text, the Wave64 reader's.
    Log(LogLevel::Error, "CWav64ContainerReader::BeginIndex: unsupported formatd\n");
    return RESULT_ERROR;
}

int WaveFormatRecord::CheckGeometry(const char* owner) const
{
    const char* field = nullptr;
    long long value = 0;
    int32_t secondBytes = 0;
    if (channels == 0 || channels > CAudioProperties::MaxChannels) {
        field = "nChannels";
        value = channels;
    } else if (samplesPerSec == 0 || samplesPerSec > uint32_t(INT32_MAX)) {
        field = "nSamplesPerSec";
        value = samplesPerSec;
    } else if (blockAlign == 0) {
        field = "nBlockAlign";
        value = blockAlign;
    } else if (!Checked::Multiply(int32_t(blockAlign), int32_t(samplesPerSec), &secondBytes)) {
        // A sample holds one second: its byte count must fit a data reference.
        Log(LogLevel::Error, "%s: nBlockAlign %u x nSamplesPerSec %u makes a second of more than %d bytes\n", owner,
            unsigned(blockAlign), unsigned(samplesPerSec), INT32_MAX);
        return RESULT_ERROR;
    }
    if (!field)
        return RESULT_OK;
    Log(LogLevel::Error, "%s: unsupported %s %lld\n", owner, field, value);
    return RESULT_ERROR;
}

int WaveFormatRecord::SetChannelLayout(CAudioProperties* audio) const
{
    if (!extensible)
        return RESULT_OK;
    int32_t channel = 0;
    for (uint32_t bit = 0; bit < 32 && channel < int32_t(channels); ++bit) {
        if (!(channelMask & (1u << bit)))
            continue;
        const int result = audio->SetSpeakerPosition(channel++, bit + 1);
        if (result < 0)
            return result;
    }
    return RESULT_OK;
}

int WaveFormatRecord::Describe(const char* owner, bool acceptMpeg, CAudioProperties* audio) const
{
    if (!audio)
        return RESULT_ARGUMENT_NULL;
    uint32_t format = 0;
    int result = ChooseFormat(owner, acceptMpeg, format);
    if (result < 0 || (result = CheckGeometry(owner)) < 0)
        return result;
    audio->SetFormat(format);
    if ((result = audio->SetBitRate(int64_t(avgBytesPerSec) * 8)) < 0 ||
        (result = audio->SetSampleRate(int32_t(samplesPerSec))) < 0 ||
        (result = audio->SetTimeScale(samplesPerSec)) < 0 || (result = audio->SetChannels(channels)) < 0 ||
        (result = audio->SetBitsPerSample(bitsPerSample)) < 0 || (result = audio->SetBytesPerFrame(blockAlign)) < 0 ||
        (result = audio->SetFramesPerPacket(1)) < 0 || (result = audio->SetBytesPerPacket(blockAlign)) < 0)
        return result;
    return SetChannelLayout(audio);
}

} // namespace Quorvex::Vek
