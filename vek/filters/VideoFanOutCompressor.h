#pragma once

// Public wrapper of CVideoFanOutCompressor: one picture stream in, one coded stream per variant out.
// A null wrapper answers -19001 to every call that acts.
#include <vek/filters/VideoFilter.h>
#include <vek/filters/CVideoFanOutCompressor.h>
#include <vek/filters/CompressorVariant.h>

namespace Quorvex::Vek {

class VEK_API VideoFanOutCompressor : public VideoFilter {
public:
    VideoFanOutCompressor() = default;
    // Adopts the caller's reference.
    VideoFanOutCompressor(CVideoFanOutCompressor* object) : BaseObject(object) {}
    // A new filter from the factory registered under `id` (a FilterType
    // code); null when none is or without memory.
    static VideoFanOutCompressor Create(uint32_t id);
    // A wrapper sharing `object` (its count goes up by one).
    static VideoFanOutCompressor FromObject(CVideoFanOutCompressor* object);

    CVideoFanOutCompressor* ToFanOutCompressor() const { return static_cast<CVideoFanOutCompressor*>(ToObject()); }

    int AddVariant(CompressorVariant& variant) const;
    int32_t GetVariantCount() const;
    // The oldest coded picture of variant `index`: 0 with one, 1 without.
    int GetVariantSample(int32_t index, VideoSample& sample) const;
    int32_t GetVariantSampleCount(int32_t index) const;
};

} // namespace Quorvex::Vek
