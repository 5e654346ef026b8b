#pragma once

// MPEG audio frames (layers I-III, MPEG-1, 2 and 2.5) as the frame scanner
// sees them: the four-byte header gives the length; frames of one stream
// share version, layer and sample rate (their family). The 11-bit sync
// word is too common in audio data to be certain: a header that does not
// hold is garbage, searched past, never an error.
#include <vek/containers/readers/AudioFrameScanner.h>
#include <vek/elementary/MpegAudioFrameHeader.h>

namespace Quorvex::Vek {

class VEK_API MpegAudioFrameSyntax final : public AudioFrameSyntax {
public:
    int32_t GetHeaderBytes() const override { return MpegAudioFrameHeader::Size; }
    bool HasSyncWord(const uint8_t*) const override { return false; }
    bool LooksLikeFrame(const uint8_t* bytes) const override;
    int ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const override;

    // The family of frames with this header.
    static uint64_t FamilyOf(const MpegAudioFrameHeader& header);
};

} // namespace Quorvex::Vek
