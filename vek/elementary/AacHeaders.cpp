#include <vek/elementary/AacHeaders.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/AudioChannelMask.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/PlainBitWriter.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t SamplingFrequencies[13] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                             22050, 16000, 12000, 11025, 8000,  7350};
constexpr uint32_t ExplicitFrequencyIndex = 15;
constexpr uint32_t SyncExtensionSbr = 0x2b7;
constexpr uint32_t SyncExtensionPs = 0x548;
constexpr uint32_t ErBsac = 22;

// Channels and speakers of channel configurations 1..14; 8..10 are
// reserved (0 channels). Configuration 13 (22.2) has no WAVE mask.
struct ChannelConfiguration {
    int8_t channels;
    uint32_t mask;
};
using namespace ChannelMask;
constexpr uint32_t Surround51 = Stereo | FrontCenter | LowFrequency | BackLeft | BackRight;
constexpr ChannelConfiguration ChannelConfigurations[15] = {
    {0, 0},
    {1, FrontCenter},
    {2, Stereo},
    {3, Stereo | FrontCenter},
    {4, Stereo | FrontCenter | BackCenter},
    {5, Stereo | FrontCenter | BackLeft | BackRight},
    {6, Surround51},
    {8, Surround51 | FrontLeftOfCenter | FrontRightOfCenter},
    {0, 0},
    {0, 0},
    {0, 0},
    {7, Surround51 | BackCenter},
    {8, Surround51 | SideLeft | SideRight},
    {24, 0},
    {8, Surround51 | TopFrontLeft | TopFrontRight},
};

bool IsReservedChannelConfiguration(uint32_t configuration)
{
    return configuration >= 15 || (configuration > 0 && ChannelConfigurations[configuration].channels == 0);
}

bool IsGeneralAudio(uint32_t objectType)
{
    switch (objectType) {
    case 1: case 2: case 3: case 4: case 6: case 7: case 17: case 19: case 20: case 21: case 22: case 23:
        return true;
    default:
        return false;
    }
}

bool IsErrorResilient(uint32_t objectType)
{
    return objectType >= 17 && objectType <= 27;
}

uint8_t ReadObjectType(BitReader& reader)
{
    const uint32_t type = reader.ReadBits(5);
    return uint8_t(type == AacObjectType::Escape ? 32 + reader.ReadBits(6) : type);
}

void WriteObjectType(PlainBitWriter& writer, uint32_t type)
{
    if (type >= AacObjectType::Escape) {
        writer.WriteBits(AacObjectType::Escape, 5);
        writer.WriteBits(type - 32, 6);
    } else {
        writer.WriteBits(type, 5);
    }
}

// A frequency index and, for the escape, the explicit 24-bit rate.
int ReadFrequency(BitReader& reader, const char* field, uint8_t& index, int32_t& frequency)
{
    index = uint8_t(reader.ReadBits(4));
    frequency = index == ExplicitFrequencyIndex ? int32_t(reader.ReadBits(24)) : AacSamplingFrequency(index);
    if (reader.HasError())
        return RESULT_OK; // the caller reports the truncation
    if (frequency == 0) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: %s index %u gives no sampling frequency\n", field,
            unsigned(index));
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

void WriteFrequency(PlainBitWriter& writer, uint32_t index, int32_t frequency)
{
    writer.WriteBits(index, 4);
    if (index == ExplicitFrequencyIndex)
        writer.WriteBits(uint32_t(frequency), 24);
}

// Counts the channels of a program config element and steps over it.
void ReadProgramConfig(BitReader& reader, AacProgramConfig& config)
{
    reader.SkipBits(4 + 2 + 4); // element tag, object type, frequency index
    const uint32_t front = reader.ReadBits(4), side = reader.ReadBits(4), back = reader.ReadBits(4);
    const uint32_t lfe = reader.ReadBits(2), associated = reader.ReadBits(3), coupling = reader.ReadBits(4);
    for (int mixdown = 0; mixdown < 2; ++mixdown)
        if (reader.ReadFlag())
            reader.SkipBits(4);
    if (reader.ReadFlag())
        reader.SkipBits(3);
    auto countElements = [&reader](uint32_t elements) {
        uint32_t channels = 0;
        for (uint32_t i = 0; i < elements; ++i) {
            channels += reader.ReadFlag() ? 2 : 1;
            reader.SkipBits(4);
        }
        return uint8_t(channels);
    };
    config.frontChannels = countElements(front);
    config.sideChannels = countElements(side);
    config.backChannels = countElements(back);
    config.lfeChannels = uint8_t(lfe);
    reader.SkipBits(size_t(lfe) * 4 + size_t(associated) * 4 + size_t(coupling) * 5);
    reader.SkipToByteBoundary();
    reader.SkipBits(size_t(reader.ReadBits(8)) * 8);
}

int ReadGeneralAudioConfig(BitReader& reader, AacAudioSpecificConfig& c)
{
    c.frameLength960 = reader.ReadFlag();
    c.dependsOnCoreCoder = reader.ReadFlag();
    if (c.dependsOnCoreCoder)
        c.coreCoderDelay = uint16_t(reader.ReadBits(14));
    c.extensionFlag = reader.ReadFlag();
    if (c.channelConfiguration == 0) {
        c.hasProgramConfig = true;
        ReadProgramConfig(reader, c.programConfig);
    }
    if (c.objectType == AacObjectType::Scalable || c.objectType == 20)
        c.layerNumber = uint8_t(reader.ReadBits(3));
    if (c.extensionFlag) {
        if (c.objectType == ErBsac)
            reader.SkipBits(5 + 11); // sub-frames, layer length
        if (c.objectType == 17 || c.objectType == 19 || c.objectType == 20 || c.objectType == 23)
            reader.SkipBits(3); // resilience flags
        reader.SkipBits(1);
    }
    return RESULT_OK;
}

// The sync extension that announces SBR (and PS) after the core
// configuration; absent when fewer than 16 bits are left.
int ReadSyncExtension(BitReader& reader, AacAudioSpecificConfig& c)
{
    if (reader.BitsLeft() < 16)
        return RESULT_OK;
    if (reader.ReadBits(11) != SyncExtensionSbr)
        return RESULT_OK;
    const uint8_t extensionType = ReadObjectType(reader);
    if (extensionType != AacObjectType::SpectralBandReplication)
        return RESULT_OK;
    c.signalling = AacAudioSpecificConfig::BackwardCompatible;
    c.sbrPresent = reader.ReadFlag();
    if (!c.sbrPresent)
        return RESULT_OK;
    const int r = ReadFrequency(reader, "extensionSamplingFrequency", c.extensionSamplingFrequencyIndex,
                                c.extensionSamplingFrequency);
    if (r < 0)
        return r;
    if (reader.BitsLeft() >= 12 && reader.ReadBits(11) == SyncExtensionPs)
        c.psPresent = reader.ReadFlag();
    if (reader.HasError()) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: the configuration ends inside its SBR sync extension\n");
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

} // namespace

int32_t AacSamplingFrequency(uint32_t index)
{
    return index < 13 ? SamplingFrequencies[index] : 0;
}

int AacAudioSpecificConfig::Parse(const uint8_t* bytes, size_t size, AacAudioSpecificConfig& out)
{
    if (!bytes)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(bytes, size, BitReader::Escapes::Keep);
    AacAudioSpecificConfig c;
    c.objectType = ReadObjectType(reader);
    int r = ReadFrequency(reader, "samplingFrequency", c.samplingFrequencyIndex, c.samplingFrequency);
    if (r < 0)
        return r;
    c.channelConfiguration = uint8_t(reader.ReadBits(4));
    if (c.objectType == AacObjectType::SpectralBandReplication || c.objectType == AacObjectType::ParametricStereo) {
        c.signalling = Hierarchical;
        c.sbrPresent = true;
        c.psPresent = c.objectType == AacObjectType::ParametricStereo;
        r = ReadFrequency(reader, "extensionSamplingFrequency", c.extensionSamplingFrequencyIndex,
                          c.extensionSamplingFrequency);
        if (r < 0)
            return r;
        c.objectType = ReadObjectType(reader);
        if (c.objectType == ErBsac)
            c.extensionChannelConfiguration = uint8_t(reader.ReadBits(4));
    }
    if (reader.HasError()) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: %zu bytes end inside the object type and rate\n", size);
        return RESULT_FORMAT_ERROR;
    }
    if (IsReservedChannelConfiguration(c.channelConfiguration)) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: reserved channelConfiguration %u\n",
            unsigned(c.channelConfiguration));
        return RESULT_FORMAT_ERROR;
    }
    if (!IsGeneralAudio(c.objectType)) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: audioObjectType %u is not a general-audio coder\n",
            unsigned(c.objectType));
        return RESULT_NOT_SUPPORTED;
    }
    ReadGeneralAudioConfig(reader, c);
    if (IsErrorResilient(c.objectType) && reader.ReadBits(2) != 0) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: error protection (epConfig) is not supported\n");
        return RESULT_NOT_SUPPORTED;
    }
    if (reader.HasError()) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Parse: %zu bytes end inside the GASpecificConfig\n", size);
        return RESULT_FORMAT_ERROR;
    }
    if (c.signalling == NoExtension) {
        r = ReadSyncExtension(reader, c);
        if (r < 0)
            return r;
    }
    out = c;
    return RESULT_OK;
}

int AacAudioSpecificConfig::Write(uint8_t* buffer, size_t capacity, size_t& written) const
{
    written = 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    if (hasProgramConfig || channelConfiguration == 0 || IsReservedChannelConfiguration(channelConfiguration) ||
        !IsGeneralAudio(objectType)) {
        Log(LogLevel::Error,
            "AacAudioSpecificConfig::Write: object type %u with channelConfiguration %u cannot be written\n",
            unsigned(objectType), unsigned(channelConfiguration));
        return RESULT_NOT_SUPPORTED;
    }
    PlainBitWriter writer(buffer, capacity);
    const bool hierarchical = signalling == Hierarchical && sbrPresent;
    const uint32_t extensionType = psPresent ? AacObjectType::ParametricStereo : AacObjectType::SpectralBandReplication;
    WriteObjectType(writer, hierarchical ? extensionType : objectType);
    WriteFrequency(writer, samplingFrequencyIndex, samplingFrequency);
    writer.WriteBits(channelConfiguration, 4);
    if (hierarchical) {
        WriteFrequency(writer, extensionSamplingFrequencyIndex, extensionSamplingFrequency);
        WriteObjectType(writer, objectType);
        if (objectType == ErBsac)
            writer.WriteBits(extensionChannelConfiguration, 4);
    }
    writer.WriteBits(frameLength960, 1);
    writer.WriteBits(dependsOnCoreCoder, 1);
    if (dependsOnCoreCoder)
        writer.WriteBits(coreCoderDelay, 14);
    writer.WriteBits(0, 1); // no extension fields follow
    if (objectType == AacObjectType::Scalable || objectType == 20)
        writer.WriteBits(layerNumber, 3);
    if (IsErrorResilient(objectType))
        writer.WriteBits(0, 2);
    if (signalling == BackwardCompatible) {
        writer.WriteBits(SyncExtensionSbr, 11);
        WriteObjectType(writer, AacObjectType::SpectralBandReplication);
        writer.WriteBits(sbrPresent, 1);
        if (sbrPresent) {
            WriteFrequency(writer, extensionSamplingFrequencyIndex, extensionSamplingFrequency);
            if (psPresent) {
                writer.WriteBits(SyncExtensionPs, 11);
                writer.WriteBits(1, 1);
            }
        }
    }
    if (writer.HasError()) {
        Log(LogLevel::Error, "AacAudioSpecificConfig::Write: %zu bytes cannot hold the configuration\n", capacity);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    written = writer.BytesWritten();
    return RESULT_OK;
}

int32_t AacAudioSpecificConfig::Channels() const
{
    if (hasProgramConfig)
        return programConfig.Channels();
    const int32_t channels = channelConfiguration < 15 ? ChannelConfigurations[channelConfiguration].channels : 0;
    // Parametric stereo makes two channels of one.
    return psPresent && channels == 1 ? 2 : channels;
}

uint32_t AacAudioSpecificConfig::ChannelMask() const
{
    if (hasProgramConfig || channelConfiguration >= 15)
        return 0;
    return psPresent && channelConfiguration == 1 ? uint32_t(Stereo) : ChannelConfigurations[channelConfiguration].mask;
}

int32_t AacAudioSpecificConfig::SamplesPerFrame() const
{
    const int32_t core = frameLength960 ? 960 : 1024;
    return sbrPresent ? 2 * core : core;
}

int32_t AacAudioSpecificConfig::OutputSampleRate() const
{
    return sbrPresent && extensionSamplingFrequency > 0 ? extensionSamplingFrequency : samplingFrequency;
}

int AdtsHeader::Parse(const uint8_t* bytes, size_t size, AdtsHeader& out)
{
    if (!bytes)
        return RESULT_ARGUMENT_NULL;
    if (size < size_t(SizeWithoutCrc)) {
        Log(LogLevel::Error, "AdtsHeader::Parse: %zu bytes cannot hold a header\n", size);
        return RESULT_FORMAT_ERROR;
    }
    BitReader reader(bytes, size, BitReader::Escapes::Keep);
    const uint32_t sync = reader.ReadBits(12);
    AdtsHeader h;
    h.mpeg2 = reader.ReadFlag();
    const uint32_t layer = reader.ReadBits(2);
    h.protectionAbsent = reader.ReadFlag();
    h.profile = uint8_t(reader.ReadBits(2));
    h.samplingFrequencyIndex = uint8_t(reader.ReadBits(4));
    reader.SkipBits(1); // private bit
    h.channelConfiguration = uint8_t(reader.ReadBits(3));
    reader.SkipBits(4); // original, home, copyright bits
    h.frameLength = int32_t(reader.ReadBits(13));
    h.bufferFullness = uint16_t(reader.ReadBits(11));
    h.rawDataBlocks = uint8_t(reader.ReadBits(2) + 1);
    h.samplingFrequency = AacSamplingFrequency(h.samplingFrequencyIndex);
    if (sync != 0xFFF) {
        Log(LogLevel::Error, "AdtsHeader::Parse: syncword 0x%03x (expected 0xfff)\n", unsigned(sync));
        return RESULT_FORMAT_ERROR;
    }
    if (layer != 0) {
        Log(LogLevel::Error, "AdtsHeader::Parse: layer %u (expected 0)\n", unsigned(layer));
        return RESULT_FORMAT_ERROR;
    }
    if (h.samplingFrequency == 0) {
        Log(LogLevel::Error, "AdtsHeader::Parse: reserved sampling_frequency_index %u\n",
            unsigned(h.samplingFrequencyIndex));
        return RESULT_FORMAT_ERROR;
    }
    if (h.frameLength < h.HeaderSize()) {
        Log(LogLevel::Error, "AdtsHeader::Parse: frame_length %d is shorter than the %d-byte header\n",
            int(h.frameLength), int(h.HeaderSize()));
        return RESULT_FORMAT_ERROR;
    }
    if (size < size_t(h.HeaderSize())) {
        Log(LogLevel::Error, "AdtsHeader::Parse: %zu bytes end inside the header's CRC\n", size);
        return RESULT_FORMAT_ERROR;
    }
    out = h;
    return RESULT_OK;
}

AacAudioSpecificConfig AdtsHeader::ToAudioSpecificConfig() const
{
    AacAudioSpecificConfig c;
    c.objectType = uint8_t(profile + 1);
    c.samplingFrequencyIndex = samplingFrequencyIndex;
    c.samplingFrequency = samplingFrequency;
    c.channelConfiguration = channelConfiguration;
    return c;
}

} // namespace Quorvex::Vek
