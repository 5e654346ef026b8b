#pragma once

// ADTS frames as the frame scanner sees them: the 13-bit frame_length of
// the header gives the length, header included; frames of one stream share
// profile, sampling frequency index and channel configuration. The sync
// word with layer 0 is certain enough that a header refused where a frame
// is expected (frame_length shorter than the header, a reserved rate) is a
// format error.
#include <vek/containers/readers/AudioFrameScanner.h>
#include <vek/elementary/AacHeaders.h>

namespace Quorvex::Vek {

class VEK_API AdtsFrameSyntax final : public AudioFrameSyntax {
public:
    enum : int32_t { OutputFramesPerBlock = 1024 };

    // With the CRC word, so ParseFrame always has it.
    int32_t GetHeaderBytes() const override { return AdtsHeader::SizeWithCrc; }
    bool HasSyncWord(const uint8_t* bytes) const override;
    bool LooksLikeFrame(const uint8_t* bytes) const override;
    int ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const override;
};

} // namespace Quorvex::Vek
