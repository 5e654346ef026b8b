#include <vek/containers/readers/mpegaudio/MpegAudioFrameSyntax.h>

#include <vek/core/Result.h>

namespace Quorvex::Vek {

bool MpegAudioFrameSyntax::LooksLikeFrame(const uint8_t* bytes) const
{
    MpegAudioFrameHeader header;
    return MpegAudioFrameHeader::Parse(bytes, header);
}

int MpegAudioFrameSyntax::ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const
{
    MpegAudioFrameHeader header;
    if (available < GetHeaderBytes() || !MpegAudioFrameHeader::Parse(bytes, header))
        return RESULT_FORMAT_ERROR;
    frame.bytes = header.frameBytes;
    frame.frames = header.samplesPerFrame;
    frame.family = FamilyOf(header);
    return RESULT_OK;
}

uint64_t MpegAudioFrameSyntax::FamilyOf(const MpegAudioFrameHeader& header)
{
    // What IsSameStreamAs compares.
    return uint64_t(header.version) | uint64_t(header.layer) << 8 | uint64_t(uint32_t(header.sampleRate)) << 16;
}

} // namespace Quorvex::Vek
