#include <vek/filters/video/PictureBuffer.h>

#include <vek/core/CByteArray.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/filters/video/PictureView.h>
#include <vek/samples/CPlanarPixelDataReference.h>

namespace Quorvex::Vek {

namespace {

constexpr int64_t AlignUp(int64_t value)
{
    return (value + kPictureRowAlignment - 1) / kPictureRowAlignment * kPictureRowAlignment;
}

} // namespace

int MakePictureBuffer(PictureLayout layout, int32_t width, int32_t height, CPlanarPixelDataReference*& out)
{
    out = nullptr;
    if (layout >= PictureLayout::Count) {
        Log(LogLevel::Error, "MakePictureBuffer: no layout\n");
        return RESULT_FORMAT_ERROR;
    }
    if (width <= 0 || height <= 0 || width > kMaxPictureDimension || height > kMaxPictureDimension) {
        Log(LogLevel::Error, "MakePictureBuffer: size %dx%d outside 1..%d\n", width, height, kMaxPictureDimension);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    const int32_t planeCount = GetLayoutTraits(layout).planeCount;
    CPlanarPixelDataReference::Plane planes[CPlanarPixelDataReference::MaxPlanes] = {};
    // Room to move the first plane to an aligned address, wherever the
    // allocator puts the array.
    int64_t total = kPictureRowAlignment;
    for (int32_t index = 0; index < planeCount; ++index) {
        const int64_t rowBytes = GetPlaneRowBytes(layout, index, width);
        const int64_t stride = AlignUp(rowBytes);
        const int32_t rows = GetPlaneRows(layout, index, height);
        planes[index] = {int32_t(total), int32_t(stride), int32_t(rowBytes), rows};
        total += stride * rows;
    }
    // 3 x 2^17 x 2^16 at most: the largest picture needs more than 32 bits.
    if (total > INT32_MAX) {
        Log(LogLevel::Error, "MakePictureBuffer: %dx%d needs %lld bytes\n", width, height,
            static_cast<long long>(total));
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, int32_t(total)));
    unsigned char* data = bytes ? bytes->GetData() : nullptr;
    if (!data) {
        Log(LogLevel::Error, "MakePictureBuffer: no memory for %lld bytes\n", static_cast<long long>(total));
        return RESULT_OUT_OF_MEMORY;
    }
    const auto misalignment = int32_t(reinterpret_cast<uintptr_t>(data) % kPictureRowAlignment);
    const int32_t shift = misalignment == 0 ? 0 : kPictureRowAlignment - misalignment;
    // The planes were laid out after the slack; they move back to start at
    // the first aligned byte.
    for (int32_t index = 0; index < planeCount; ++index)
        planes[index].offset += shift - kPictureRowAlignment;
    return CPlanarPixelDataReference::Create(bytes, width, height, GetLayoutFormat(layout), planes, planeCount,
                                             out);
}

bool PictureBufferFits(const CPlanarPixelDataReference* picture, PictureLayout layout, int32_t width, int32_t height)
{
    return picture->GetPixelFormat() == GetLayoutFormat(layout) && picture->GetWidth() == width &&
           picture->GetHeight() == height && picture->GetPlaneCount() == GetLayoutTraits(layout).planeCount;
}

} // namespace Quorvex::Vek
