#pragma once

// Row kernels of the video format converter: moving 8-bit samples between
// plane arrangements and resampling chroma. Each works on one row (or one
// pair of rows); `count` is in output samples unless said otherwise. Rows
// may not overlap, except where said.
//
// Chroma siting, which the resampling kernels assume:
// - Across: chroma is co-sited with the even luma columns (MPEG-2, H.264
//   and HEVC by default, 4:2:2 and 4:2:0 alike). Halving takes the [1 2 1]/4
//   filter centred on the even column; doubling copies the chroma sample to
//   its even column and gives the odd column the rounded mean of its two
//   neighbours.
// - Down, 4:2:0: the chroma sample of rows 2k and 2k+1 lies midway between
//   them (MPEG-2). A 4:2:2 row takes 3/4 of the nearer and 1/4 of the
//   farther chroma row; halving averages each pair of rows.
// Neighbours past an edge repeat the edge sample. Sums round half up.
#include <cstdint>

namespace Quorvex::Vek::PictureRows {

// uv[2i] = u[i], uv[2i+1] = v[i].
void Interleave(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t count);
// The inverse: `count` pairs.
void Deinterleave(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t count);

// Where luma and chroma sit in a 4-byte packed 4:2:2 macropixel.
enum class PackedOrder : uint8_t { UYVY, YUYV };

// `width` pixels of luma and (width+1)/2 chroma pairs into (width+1)/2
// macropixels; an odd width repeats the last luma byte.
void Pack(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* packed, int32_t width, PackedOrder order);
// The inverse.
void Unpack(const uint8_t* packed, uint8_t* y, uint8_t* u, uint8_t* v, int32_t width, PackedOrder order);
// UYVY <-> YUYV: swaps the bytes of each pair; `bytes` even.
void SwapPairs(const uint8_t* from, uint8_t* to, int32_t bytes);

// (a + b + 1) >> 1; `out` may be `a` or `b`.
void AverageRows(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t count);
// (3 near + far + 2) >> 2.
void InterpolateRows(const uint8_t* nearRow, const uint8_t* farRow, uint8_t* out, int32_t count);

// Halves a row of `inCount` samples across into (inCount+1)/2.
void HalveRow(const uint8_t* in, uint8_t* out, int32_t inCount);
// Doubles a row of (outCount+1)/2 samples across into `outCount`.
void DoubleRow(const uint8_t* in, uint8_t* out, int32_t outCount);

} // namespace Quorvex::Vek::PictureRows
