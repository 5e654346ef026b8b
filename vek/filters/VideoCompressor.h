#pragma once

// Public wrapper of CVideoCompressor: an encoder of video.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoCompressor.h>

namespace Quorvex::Vek {

class VEK_API VideoCompressor : public VideoFilter {
public:
    VideoCompressor() = default;
    // Adopts the caller's reference.
    VideoCompressor(CVideoCompressor* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static VideoCompressor Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoCompressor FromObject(CVideoCompressor* object);

    CVideoCompressor* ToCompressor() const { return static_cast<CVideoCompressor*>(ToObject()); }

    // Writes `input` (null: end of input) and reads one coded sample.
    int Compress(const VideoSample& input, VideoSample& output) const;
    // The next picture is coded or decoded as a key frame.
    int ForceKeyFrame() const;
    // The next pictures are the second of a pair (field, stereo view), or not.
    int SecondFrameInPair(bool second) const;
};

} // namespace Quorvex::Vek
