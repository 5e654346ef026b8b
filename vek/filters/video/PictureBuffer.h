#pragma once

// Output pictures of the video format converter: one owned byte array with
// the planes of a layout, every plane and every row starting on a
// kPictureRowAlignment boundary, described by a CPlanarPixelDataReference
// whose format code is the layout's.
#include <cstdint>

#include <vek/filters/video/PictureLayout.h>

namespace Quorvex::Vek {

class CPlanarPixelDataReference;

constexpr int32_t kPictureRowAlignment = 64;

// A new picture (new reference in `out`) of `width` x `height` (each in
// 1..kMaxPictureDimension) in `layout`. -19003 for a size out of range,
// -19017 for PictureLayout::None, -19002 without memory; `out` is null then.
VEK_API int MakePictureBuffer(PictureLayout layout, int32_t width, int32_t height, CPlanarPixelDataReference*& out);

// True when `picture` (non-null) was made by MakePictureBuffer for exactly
// this layout and size, so it can be written again.
VEK_API bool PictureBufferFits(const CPlanarPixelDataReference* picture, PictureLayout layout, int32_t width, int32_t height);

} // namespace Quorvex::Vek
