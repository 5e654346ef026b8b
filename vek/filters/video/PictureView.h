#pragma once

// A picture as up to three planes of rows in memory the view does not own,
// and the two ways the converter finds those planes in a sample's bytes.
// Every view these functions make has been checked: each row of each plane
// lies inside the memory it came from.
#include <cstdint>

#include <vek/filters/video/PictureLayout.h>

namespace Quorvex::Vek {

class CPixelDataReference;

struct PicturePlane {
    unsigned char* data = nullptr;
    // Bytes from one row to the next; at least rowBytes.
    int32_t stride = 0;
    int32_t rowBytes = 0;
    int32_t rows = 0;

    unsigned char* Row(int32_t row) const { return data + int64_t(row) * stride; }
};

struct PictureView {
    PictureLayout layout = PictureLayout::None;
    int32_t width = 0;
    int32_t height = 0;
    PicturePlane planes[3];
};

// Largest width or height a view accepts: the converter's scratch rows and
// packed rows of this size stay far from 32-bit limits.
constexpr int32_t kMaxPictureDimension = 1 << 16;

// A view of `length` bytes at `data` holding the planes of `layout` one
// after the other. `stride0` is the distance between rows of the first
// plane, 0 for tight rows; the other planes' strides follow from it
// (GetDerivedStride). Bytes after the last plane are ignored.
//
// -19003 (with a log line naming the value) for a width or height outside
// 1..kMaxPictureDimension, a negative stride or data shorter than the
// picture; -19017 for a stride shorter than its plane's row; -19004 for
// null data; -19017 for PictureLayout::None.
VEK_API int ViewContiguousPicture(unsigned char* data, int64_t length, PictureLayout layout, int32_t width,
                          int32_t height, int32_t stride0, PictureView& view);

// A view of a locked pixel reference. With as many planes as the layout,
// each plane is where GetPlane puts it, at its stride; with fewer, the
// planes follow plane 0 as in ViewContiguousPicture with plane 0's stride.
// Every plane must lie inside the bytes Lock reports. On success the
// reference stays locked while the view is used, and the caller unlocks it;
// on failure it is unlocked here.
// Codes as above, plus what Lock and GetPlane return.
VEK_API int ViewPixelReference(CPixelDataReference* reference, PictureLayout layout, int32_t width, int32_t height,
                       PictureView& view);

} // namespace Quorvex::Vek
