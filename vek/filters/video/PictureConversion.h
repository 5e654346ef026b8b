#pragma once

// Converts a picture between any two of the layouts of PictureLayout.h, row
// by row. Luma is always copied exactly. Chroma is moved (plane copies,
// interleaving, packing) where both layouts have the same subsampling, and
// resampled with the filters described in PictureRows.h where they do not:
// 4:2:0 -> 4:2:2 interpolates rows 3/4 + 1/4, 4:2:2 -> 4:2:0 averages row
// pairs (the last row of an odd height alone), 4:4:4 <-> 4:2:x resamples
// across with co-sited chroma. 4:2:0 <-> 4:4:4 does both.
//
// No allocation: the caller lends scratch rows, so a converter running
// frame after frame reuses one block.
#include <cstdint>

#include <vek/filters/video/PictureView.h>

namespace Quorvex::Vek {

// Bytes of scratch a conversion of pictures `width` wide needs (width in
// 1..kMaxPictureDimension).
VEK_API int64_t GetConversionScratchBytes(int32_t width);

// Writes `out` from `in`. Both views come from ViewContiguousPicture,
// ViewPixelReference or MakePictureBuffer and have the same size. -19003 for
// pictures of different sizes or scratch shorter than
// GetConversionScratchBytes; -19017 for a view without a layout; -19004 for
// null scratch.
VEK_API int ConvertPicture(const PictureView& in, const PictureView& out, uint8_t* scratch, int64_t scratchBytes);

} // namespace Quorvex::Vek
