#include <vek/elementary/MpegAudioFrameHeader.h>

namespace Quorvex::Vek {

namespace {

// Kilobits per second by bitrate index 1..14 (index 0, free format, and
// index 15, reserved, have no entry).
constexpr int16_t Mpeg1Layer1[14] = {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448};
constexpr int16_t Mpeg1Layer2[14] = {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr int16_t Mpeg1Layer3[14] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr int16_t Mpeg2Layer1[14] = {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256};
constexpr int16_t Mpeg2Layer23[14] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

// Hertz by sample-rate index 0..2, for MPEG-1; MPEG-2 halves and MPEG-2.5
// quarters them.
constexpr int32_t Mpeg1Rates[3] = {44100, 48000, 32000};

const int16_t* BitRateTable(MpegAudioFrameHeader::Version version, int layer)
{
    if (version == MpegAudioFrameHeader::Mpeg1)
        return layer == 1 ? Mpeg1Layer1 : layer == 2 ? Mpeg1Layer2 : Mpeg1Layer3;
    return layer == 1 ? Mpeg2Layer1 : Mpeg2Layer23;
}

int32_t SamplesPerFrame(MpegAudioFrameHeader::Version version, int layer)
{
    if (layer == 1)
        return 384;
    if (layer == 2 || version == MpegAudioFrameHeader::Mpeg1)
        return 1152;
    return 576;
}

// Layer I counts its length in 4-byte slots, layers II and III in bytes.
int32_t FrameBytes(const MpegAudioFrameHeader& h)
{
    const int32_t padding = h.padded ? 1 : 0;
    if (h.layer == 1)
        return (12 * h.bitRate / h.sampleRate + padding) * 4;
    const int32_t bytesPerSampleOver8 = h.samplesPerFrame / 8;
    return bytesPerSampleOver8 * h.bitRate / h.sampleRate + padding;
}

} // namespace

bool MpegAudioFrameHeader::Parse(const unsigned char* bytes, MpegAudioFrameHeader& out)
{
    if (!bytes)
        return false;
    const uint32_t word = uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
    if ((word >> 21) != 0x7FF)
        return false;
    const uint32_t versionBits = (word >> 19) & 3;
    const uint32_t layerBits = (word >> 17) & 3;
    const uint32_t bitRateIndex = (word >> 12) & 15;
    const uint32_t rateIndex = (word >> 10) & 3;
    const uint32_t emphasis = word & 3;
    if (versionBits == 1 || layerBits == 0 || bitRateIndex == 0 || bitRateIndex == 15 || rateIndex == 3 ||
        emphasis == 2)
        return false;

    MpegAudioFrameHeader h;
    h.version = versionBits == 3 ? Mpeg1 : versionBits == 2 ? Mpeg2 : Mpeg25;
    h.layer = uint8_t(4 - layerBits);
    h.crcProtected = ((word >> 16) & 1) == 0;
    h.bitRate = BitRateTable(h.version, h.layer)[bitRateIndex - 1] * 1000;
    const int32_t divisor = h.version == Mpeg1 ? 1 : h.version == Mpeg2 ? 2 : 4;
    h.sampleRate = Mpeg1Rates[rateIndex] / divisor;
    h.padded = ((word >> 9) & 1) != 0;
    h.channelMode = uint8_t((word >> 6) & 3);
    h.channels = h.channelMode == 3 ? 1 : 2;
    h.samplesPerFrame = SamplesPerFrame(h.version, h.layer);
    h.frameBytes = FrameBytes(h);
    if (h.frameBytes < int32_t(Size))
        return false;
    out = h;
    return true;
}

bool MpegAudioFrameHeader::IsSameStreamAs(const MpegAudioFrameHeader& other) const
{
    return version == other.version && layer == other.layer && sampleRate == other.sampleRate;
}

} // namespace Quorvex::Vek
