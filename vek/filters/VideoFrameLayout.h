#pragma once

// How one picture of an 8-bit format lies in a contiguous buffer with tight
// rows: up to three planes in stored order, their row bytes and row counts,
// and the byte a black picture holds at each position. Chroma planes of odd
// sizes round up, so every pixel has its chroma sample.
//
// Known: the planar YUV families I420/YV12, I422/YV16, I444/YV24,
// I411/Y41B, I410/YVU9, the biplanar NV12/NV21, packed 4:2:2 YUYV, UYVY,
// YVYU, VYUY, packed BGR/BGRA/RGBA/ABGR and grey Y800 (aliases through
// VideoFormat::GetEquivalentFormat).
#include <vek/core/Result.h>

namespace Quorvex::Vek {

struct VideoFrameLayout {
    int32_t planeCount = 0;
    int32_t rowBytes[3] = {};
    int32_t rows[3] = {};
    int64_t offset[3] = {};
    int64_t totalBytes = 0;
    // Black: packed formats repeat `blackPattern` (its first `patternBytes`
    // bytes) along each row; planar planes are filled with their own byte.
    uint8_t blackPattern[4] = {};
    int32_t patternBytes = 0;
    uint8_t planeBlack[3] = {};
};

// The layout of a `width` x `height` picture of `format`. -19017 for a
// format not listed above, -19003 for a size below 1 or a frame larger than
// 2^31 - 1 bytes (the reach of a sample's data).
VEK_API int GetVideoFrameLayout(uint32_t format, int32_t width, int32_t height, VideoFrameLayout& layout);

// Writes a black picture over `data` (at least layout.totalBytes long).
VEK_API void FillBlackVideoFrame(const VideoFrameLayout& layout, unsigned char* data);

} // namespace Quorvex::Vek
