#pragma once

// The 8-bit Y'CbCr picture layouts the video format converter reads and
// writes, and the geometry of their planes.
//
//   I420, YV12  planar 4:2:0, U plane first / V plane first
//   NV12, NV21  Y plane + one plane of interleaved U,V / V,U pairs, 4:2:0
//   I422, YV16  planar 4:2:2, U first / V first
//   I444        planar 4:4:4
//   UYVY, YUYV  packed 4:2:2: one plane of 4-byte macropixels (two pixels)
//
// Chroma dimensions of odd pictures round up: a 5x3 picture at 4:2:0 has
// 3x2 chroma samples. A packed row of an odd width ends in a whole
// macropixel whose second luma byte repeats the last pixel's luma.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

enum class PictureLayout : uint8_t { I420, YV12, NV12, NV21, I422, YV16, I444, UYVY, YUYV, Count, None = Count };

enum class ChromaArrangement : uint8_t {
    Planar,     // separate U and V planes
    Interleaved, // one plane of U,V (or V,U) pairs
    Packed,     // luma and chroma in one plane of macropixels
};

struct PictureLayoutTraits {
    uint32_t format;
    ChromaArrangement arrangement;
    // log2 of the luma samples per chroma sample across and down.
    uint8_t chromaShiftX;
    uint8_t chromaShiftY;
    // Planar and interleaved: V before U (plane order or pair order).
    // Packed: the byte offsets of Y0, U and V in the macropixel.
    bool vFirst;
    uint8_t packedLuma;
    uint8_t packedU;
    uint8_t packedV;
    int32_t planeCount;
};

VEK_API const PictureLayoutTraits& GetLayoutTraits(PictureLayout layout);

// The layout of a format code: one of the codes above, or an unnamed alias
// in the video format table that leads to one (IYUV, Y42B, YUY2, 2vuy ...).
// Named relatives with a meaning of their own (J420 full range, HDYC
// BT.709) are not aliases. PictureLayout::None for any other code.
VEK_API PictureLayout GetPictureLayout(uint32_t format);

// Every format code GetPictureLayout maps to a layout is this layout's
// format or an alias of it; this is the layout's own code.
inline uint32_t GetLayoutFormat(PictureLayout layout)
{
    return GetLayoutTraits(layout).format;
}

// Bytes in one row and number of rows of plane `plane` (0 is luma or the
// packed plane) of a picture `width` x `height` (both >= 0). 64 bits: the
// row of a packed picture 2^31 - 1 wide does not fit 32.
VEK_API int64_t GetPlaneRowBytes(PictureLayout layout, int32_t plane, int32_t width);
VEK_API int32_t GetPlaneRows(PictureLayout layout, int32_t plane, int32_t height);

// Chroma samples per row and chroma rows.
VEK_API int32_t GetChromaWidth(PictureLayout layout, int32_t width);
VEK_API int32_t GetChromaHeight(PictureLayout layout, int32_t height);

// The stride of plane `plane` that goes with a luma (or packed) stride of
// `stride0` when only the first plane's stride is known: in proportion to
// the row bytes, rounded up (I420 chroma of a stride 1920 luma: 960; of a
// tight 5-wide luma: 3; NV12 chroma of a 5-wide luma: 6).
VEK_API int64_t GetDerivedStride(PictureLayout layout, int32_t plane, int32_t stride0);

} // namespace Quorvex::Vek
