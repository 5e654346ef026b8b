#pragma once

// Public wrapper of CVideoDecompressor: a decoder of video.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoDecompressor.h>

namespace Quorvex::Vek {

class VEK_API VideoDecompressor : public VideoFilter {
public:
    VideoDecompressor() = default;
    // Adopts the caller's reference.
    VideoDecompressor(CVideoDecompressor* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static VideoDecompressor Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoDecompressor FromObject(CVideoDecompressor* object);

    CVideoDecompressor* ToDecompressor() const { return static_cast<CVideoDecompressor*>(ToObject()); }

    // Set in the flags of Convert/Decompress while output waits.
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;
    // Writes `input` (null: end of input) and reads one decoded sample.
    int Decompress(const VideoSample& input, VideoSample& output, uint32_t& flags) const;
    // The next picture is coded or decoded as a key frame.
    int ForceKeyFrame() const;
    // The next pictures are the second of a pair (field, stereo view), or not.
    int SecondFrameInPair(bool second) const;
};

} // namespace Quorvex::Vek
