#pragma once

// AC-3 and E-AC-3 sync frames as the frame scanner sees them. An access
// unit starts with an AC-3 frame or with an independent E-AC-3 substream 0
// frame; the dependent substreams and further independent substreams that
// follow it (up to the next substream 0) belong to the same unit, which
// decodes to the first frame's output frames. Frames of one stream share
// their syntax (AC-3 or E-AC-3) and sample rate. The 16-bit sync word is
// certain: a refused header where a frame is expected is a format error.
#include <vek/containers/readers/AudioFrameScanner.h>
#include <vek/elementary/Ac3Headers.h>

namespace Quorvex::Vek {

class VEK_API Ac3FrameSyntax final : public AudioFrameSyntax {
public:
    // Enough for every field Ac3SyncFrame::Parse needs up to the channel map.
    int32_t GetHeaderBytes() const override { return 16; }
    bool HasSyncWord(const uint8_t* bytes) const override;
    bool LooksLikeFrame(const uint8_t* bytes) const override;
    bool ContinuesUnit(const uint8_t* bytes) const override;
    int ParseFrame(const uint8_t* bytes, int32_t available, AudioFrame& frame) const override;
};

} // namespace Quorvex::Vek
