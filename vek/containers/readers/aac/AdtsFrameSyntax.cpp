#include <vek/containers/readers/aac/AdtsFrameSyntax.h>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

// The fields below are at fixed places in the first six bytes.
uint32_t SamplingFrequencyIndex(const uint8_t* bytes)
{
    return (bytes[2] >> 2) & 0xF;
}

int32_t FrameLength(const uint8_t* bytes)
{
    return int32_t((bytes[3] & 0x3) << 11 | bytes[4] << 3 | bytes[5] >> 5);
}

bool ProtectionAbsent(const uint8_t* bytes)
{
    return (bytes[1] & 1) != 0;
}

} // namespace

bool AdtsFrameSyntax::HasSyncWord(const uint8_t* bytes) const
{
    // Twelve sync bits and the two layer bits, which are always 0.
    return bytes[0] == 0xFF && (bytes[1] & 0xF6) == 0xF0;
}

bool AdtsFrameSyntax::LooksLikeFrame(const uint8_t* bytes) const
{
    const int32_t headerBytes = ProtectionAbsent(bytes) ? AdtsHeader::SizeWithoutCrc : AdtsHeader::SizeWithCrc;
    return HasSyncWord(bytes) && AacSamplingFrequency(SamplingFrequencyIndex(bytes)) != 0 &&
           FrameLength(bytes) >= headerBytes;
}

int AdtsFrameSyntax::ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const
{
    AdtsHeader header;
    const int result = AdtsHeader::Parse(bytes, size_t(available > 0 ? available : 0), header);
    if (result < 0)
        return result;
    frame.bytes = header.frameLength;
    frame.frames = OutputFramesPerBlock * header.rawDataBlocks;
    frame.family = uint64_t(header.profile) | uint64_t(header.samplingFrequencyIndex) << 8 |
                   uint64_t(header.channelConfiguration) << 16;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
