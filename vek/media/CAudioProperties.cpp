#include <vek/media/CAudioProperties.h>

#include <algorithm>
#include <bit>
#include <new>

#include <vek/core/Result.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/MediaProperty.h>

namespace Quorvex::Vek {

const IProperties::Accessor CAudioProperties::Accessors[] = {
    {MediaProperty::Mpeg2FormatIdentifier, "MPEG-2 Format Identifier", &IProperties::GetUInt32, IProperties::TXT},
    {MediaProperty::Mpeg2TransportStreamPid, "MPEG-2 Transport Stream PID", &IProperties::GetUInt16, IProperties::TXT},
    {AudioProperty::LpcmTransport, "LPCM Transport", &IProperties::GetUInt32, IProperties::TXT},
    {AudioProperty::MpegLayer, "MPEG Audio Layer", &IProperties::GetByte, IProperties::TXT},
    {AudioProperty::Mpeg2AudioType, "MPEG-2 Audio Type", &IProperties::GetByte, IProperties::TXT},
    {AudioProperty::Mpeg4ObjectType, "MPEG-4 Audio Object Type", &IProperties::GetByte, IProperties::TXT},
    {AudioProperty::Mpeg4Transport, "MPEG-4 Audio Transport", &IProperties::GetUInt32, IProperties::TXT},
    {nullptr, nullptr, nullptr, 0},
};

CAudioProperties::CAudioProperties() : CMediaProperties(Type) {}

CAudioProperties::CAudioProperties(const CAudioProperties& other)
    : CMediaProperties(other), m_sampleRate(other.m_sampleRate), m_bitsPerSample(other.m_bitsPerSample),
      m_bytesPerFrame(other.m_bytesPerFrame), m_framesPerPacket(other.m_framesPerPacket),
      m_bytesPerPacket(other.m_bytesPerPacket), m_bitRate(other.m_bitRate)
{
    // Without memory for the layout the copy keeps no channels, which
    // Clone reports as a failure.
    if (SetChannels(other.m_channels) == RESULT_OK && m_channels > 0)
        std::copy(other.m_speakers, other.m_speakers + m_channels, m_speakers);
}

CAudioProperties::~CAudioProperties()
{
    delete[] m_speakers;
}

CMediaProperties* CAudioProperties::Clone() const
{
    auto* copy = new (fallible) CAudioProperties(*this);
    if (copy && copy->m_channels != m_channels) {
        copy->Release();
        return nullptr;
    }
    return CloneChecked(copy);
}

int CAudioProperties::SetSampleRate(int32_t framesPerSecond)
{
    if (framesPerSecond < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_sampleRate = framesPerSecond;
    return RESULT_OK;
}

int CAudioProperties::SetChannels(int32_t channels)
{
    if (channels < 0 || channels > MaxChannels)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (channels == m_channels)
        return RESULT_OK;
    uint32_t* speakers = nullptr;
    if (channels > 0) {
        speakers = new (fallible) uint32_t[channels];
        if (!speakers)
            return RESULT_OUT_OF_MEMORY;
        const int32_t kept = std::min(channels, m_channels);
        std::copy(m_speakers, m_speakers + kept, speakers);
        std::fill(speakers + kept, speakers + channels, SpeakerUnknown);
    }
    delete[] m_speakers;
    m_speakers = speakers;
    m_channels = channels;
    return RESULT_OK;
}

int CAudioProperties::GetSpeakerPosition(int32_t channel, uint32_t& position) const
{
    if (channel < 0 || channel >= m_channels)
        return RESULT_INDEX_OUT_OF_RANGE;
    position = m_speakers[channel];
    return RESULT_OK;
}

int CAudioProperties::SetSpeakerPosition(int32_t channel, uint32_t position)
{
    if (channel < 0 || channel >= m_channels)
        return RESULT_INDEX_OUT_OF_RANGE;
    m_speakers[channel] = position;
    return RESULT_OK;
}

int CAudioProperties::SetSpeakerPositionsFromMask(uint32_t channelMask)
{
    const int result = SetChannels(std::popcount(channelMask));
    if (result < 0)
        return result;
    int32_t channel = 0;
    for (uint32_t bit = 0; bit < 32; ++bit) {
        if (channelMask & (1u << bit))
            m_speakers[channel++] = bit + 1;
    }
    return RESULT_OK;
}

namespace {

int SetCount(int32_t value, int32_t& field)
{
    if (value < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    field = value;
    return RESULT_OK;
}

} // namespace

int CAudioProperties::SetBitsPerSample(int32_t bits)
{
    return SetCount(bits, m_bitsPerSample);
}

int CAudioProperties::SetBytesPerFrame(int32_t bytes)
{
    return SetCount(bytes, m_bytesPerFrame);
}

int CAudioProperties::SetFramesPerPacket(int32_t frames)
{
    return SetCount(frames, m_framesPerPacket);
}

int CAudioProperties::SetBytesPerPacket(int32_t bytes)
{
    return SetCount(bytes, m_bytesPerPacket);
}

int CAudioProperties::SetBitRate(int64_t bitsPerSecond)
{
    if (bitsPerSecond < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_bitRate = bitsPerSecond;
    return RESULT_OK;
}

const IProperties::Accessor* CAudioProperties::GetPropertyAccessors() const
{
    return Accessors;
}

} // namespace Quorvex::Vek
