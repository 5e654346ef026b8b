#include <vek/filters/video/PictureView.h>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/samples/CPixelDataReference.h>

namespace Quorvex::Vek {

namespace {

int CheckGeometry(const char* caller, PictureLayout layout, int32_t width, int32_t height)
{
    if (layout == PictureLayout::None) {
        Log(LogLevel::Error, "%s: not an 8-bit YUV layout the converter knows\n", caller);
        return RESULT_FORMAT_ERROR;
    }
    if (width <= 0 || width > kMaxPictureDimension) {
        Log(LogLevel::Error, "%s: width %d outside 1..%d\n", caller, width, kMaxPictureDimension);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (height <= 0 || height > kMaxPictureDimension) {
        Log(LogLevel::Error, "%s: height %d outside 1..%d\n", caller, height, kMaxPictureDimension);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    return RESULT_OK;
}

// Fills plane `index` of the view with its geometry and a stride, checked
// against the row; the data pointer is the caller's to set.
int SetPlaneGeometry(const char* caller, PictureView& view, int32_t index, int64_t stride)
{
    PicturePlane& plane = view.planes[index];
    const int64_t rowBytes = GetPlaneRowBytes(view.layout, index, view.width);
    if (stride < 0 || stride > INT32_MAX) {
        Log(LogLevel::Error, "%s: plane %d stride %lld out of range\n", caller, index, static_cast<long long>(stride));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    if (stride < rowBytes) {
        Log(LogLevel::Error, "%s: plane %d stride %lld shorter than its row of %lld bytes\n", caller, index,
            static_cast<long long>(stride), static_cast<long long>(rowBytes));
        return RESULT_FORMAT_ERROR;
    }
    plane.stride = int32_t(stride);
    plane.rowBytes = int32_t(rowBytes);
    plane.rows = GetPlaneRows(view.layout, index, view.height);
    return RESULT_OK;
}

// Bytes from a plane's first byte to the end of its last row.
int64_t PlaneExtent(const PicturePlane& plane)
{
    return int64_t(plane.rows - 1) * plane.stride + plane.rowBytes;
}

// True when the plane starting `offset` bytes into `length` bytes keeps all
// its rows inside them; logs otherwise.
bool PlaneFits(const char* caller, int32_t index, const PicturePlane& plane, int64_t offset, int64_t length)
{
    if (Checked::RangeFits(offset, PlaneExtent(plane), length))
        return true;
    Log(LogLevel::Error, "%s: plane %d (%d rows of stride %d, row %d bytes) at offset %lld passes the data "
        "length %lld\n", caller, index, plane.rows, plane.stride, plane.rowBytes, static_cast<long long>(offset),
        static_cast<long long>(length));
    return false;
}

// Places the planes back to back from `data` (`length` bytes), strides
// following plane 0's.
int LayOutContiguous(const char* caller, unsigned char* data, int64_t length, int32_t stride0, PictureView& view)
{
    const int32_t planeCount = GetLayoutTraits(view.layout).planeCount;
    int64_t offset = 0;
    for (int32_t index = 0; index < planeCount; ++index) {
        int result = SetPlaneGeometry(caller, view, index, GetDerivedStride(view.layout, index, stride0));
        if (result < 0)
            return result;
        PicturePlane& plane = view.planes[index];
        if (!PlaneFits(caller, index, plane, offset, length))
            return RESULT_ARGUMENT_OUT_OF_RANGE;
        plane.data = data + offset;
        // Whole rows, the last one's padding included, before the next
        // plane; fits, as the extent did (the padding is at most a stride).
        offset += int64_t(plane.rows) * plane.stride;
    }
    return RESULT_OK;
}

} // namespace

int ViewContiguousPicture(unsigned char* data, int64_t length, PictureLayout layout, int32_t width,
                          int32_t height, int32_t stride0, PictureView& view)
{
    static const char* const caller = "ViewContiguousPicture";
    view = PictureView();
    int result = CheckGeometry(caller, layout, width, height);
    if (result < 0)
        return result;
    if (!data) {
        Log(LogLevel::Error, "%s: data is null\n", caller);
        return RESULT_ARGUMENT_NULL;
    }
    if (length < 0 || stride0 < 0) {
        Log(LogLevel::Error, "%s: length %lld or stride %d negative\n", caller, static_cast<long long>(length),
            stride0);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    view.layout = layout;
    view.width = width;
    view.height = height;
    if (stride0 == 0) {
        // Tight rows; the packed row of the widest picture fits 32 bits.
        stride0 = int32_t(GetPlaneRowBytes(layout, 0, width));
    }
    result = LayOutContiguous(caller, data, length, stride0, view);
    if (result < 0)
        view = PictureView();
    return result;
}

int ViewPixelReference(CPixelDataReference* reference, PictureLayout layout, int32_t width, int32_t height,
                       PictureView& view)
{
    static const char* const caller = "ViewPixelReference";
    view = PictureView();
    if (!reference) {
        Log(LogLevel::Error, "%s: reference is null\n", caller);
        return RESULT_ARGUMENT_NULL;
    }
    int result = CheckGeometry(caller, layout, width, height);
    if (result < 0)
        return result;
    unsigned char* base = nullptr;
    int32_t length = 0;
    result = reference->Lock(base, length);
    if (result < 0)
        return result;
    if (!base || length <= 0) {
        Log(LogLevel::Error, "%s: the reference holds no bytes (length %d)\n", caller, length);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    view.layout = layout;
    view.width = width;
    view.height = height;
    const int32_t planeCount = GetLayoutTraits(layout).planeCount;
    const bool ownPlanes = reference->GetPlaneCount() >= planeCount;
    for (int32_t index = 0; index < (ownPlanes ? planeCount : 1) && result >= 0; ++index) {
        unsigned char* data = nullptr;
        int32_t stride = 0;
        result = reference->GetPlane(index, data, stride);
        if (result < 0)
            break;
        // Compared as addresses: a plane outside the locked bytes is refused
        // before any pointer arithmetic between the two.
        const uintptr_t start = reinterpret_cast<uintptr_t>(base);
        const uintptr_t at = reinterpret_cast<uintptr_t>(data);
        if (!data || at < start || at - start > uintptr_t(length)) {
            Log(LogLevel::Error, "%s: plane %d does not start inside the %d locked bytes\n", caller, index, length);
            result = RESULT_ARGUMENT_OUT_OF_RANGE;
            break;
        }
        const int64_t offset = int64_t(at - start);
        if (!ownPlanes) {
            result = LayOutContiguous(caller, data, length - offset, stride, view);
            break;
        }
        result = SetPlaneGeometry(caller, view, index, stride);
        if (result >= 0 && !PlaneFits(caller, index, view.planes[index], offset, length))
            result = RESULT_ARGUMENT_OUT_OF_RANGE;
        view.planes[index].data = data;
    }
    if (result < 0) {
        view = PictureView();
        reference->Unlock();
    }
    return result;
}

} // namespace Quorvex::Vek
