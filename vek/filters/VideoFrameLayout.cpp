#include <cstring>

#include <vek/filters/VideoFrameLayout.h>
#include <vek/media/VideoFormat.h>

namespace Quorvex::Vek {

namespace {

enum class Shape { Planar, Biplanar, Packed };

struct FormatShape {
    uint32_t format;
    Shape shape;
    int32_t chromaShiftX; // planar: log2 of the subsampling across
    int32_t chromaShiftY; // and down
    int32_t bytesPerPixel; // packed: per pixel (4:2:2 formats: per pixel of a pair)
    uint8_t black[4];
};

constexpr FormatShape Shapes[] = {
    {Four("I420"), Shape::Planar, 1, 1, 0, {16, 128, 128}},
    {Four("YV12"), Shape::Planar, 1, 1, 0, {16, 128, 128}},
    {Four("I422"), Shape::Planar, 1, 0, 0, {16, 128, 128}},
    {Four("YV16"), Shape::Planar, 1, 0, 0, {16, 128, 128}},
    {Four("I444"), Shape::Planar, 0, 0, 0, {16, 128, 128}},
    {Four("YV24"), Shape::Planar, 0, 0, 0, {16, 128, 128}},
    {Four("I411"), Shape::Planar, 2, 0, 0, {16, 128, 128}},
    {Four("Y41B"), Shape::Planar, 2, 0, 0, {16, 128, 128}},
    {Four("I410"), Shape::Planar, 2, 2, 0, {16, 128, 128}},
    {Four("YVU9"), Shape::Planar, 2, 2, 0, {16, 128, 128}},
    {Four("NV12"), Shape::Biplanar, 1, 1, 0, {16, 128, 128}},
    {Four("NV21"), Shape::Biplanar, 1, 1, 0, {16, 128, 128}},
    {Four("YUYV"), Shape::Packed, 1, 0, 2, {16, 128, 16, 128}},
    {Four("YVYU"), Shape::Packed, 1, 0, 2, {16, 128, 16, 128}},
    {Four("UYVY"), Shape::Packed, 1, 0, 2, {128, 16, 128, 16}},
    {Four("VYUY"), Shape::Packed, 1, 0, 2, {128, 16, 128, 16}},
    {Four("24BG"), Shape::Packed, 0, 0, 3, {0, 0, 0}},
    {Four("BGRA"), Shape::Packed, 0, 0, 4, {0, 0, 0, 255}},
    {Four("RGBA"), Shape::Packed, 0, 0, 4, {0, 0, 0, 255}},
    {Four("ABGR"), Shape::Packed, 0, 0, 4, {255, 0, 0, 0}},
    {Four("Y800"), Shape::Packed, 0, 0, 1, {16}},
};

const FormatShape* FindShape(uint32_t format)
{
    for (const FormatShape& shape : Shapes)
        if (shape.format == format)
            return &shape;
    return nullptr;
}

int32_t RoundUpShift(int32_t value, int32_t shift)
{
    return int32_t((int64_t(value) + (int64_t(1) << shift) - 1) >> shift);
}

void Describe(const FormatShape& shape, int32_t width, int32_t height, VideoFrameLayout& layout)
{
    const int32_t chromaWidth = RoundUpShift(width, shape.chromaShiftX);
    const int32_t chromaRows = RoundUpShift(height, shape.chromaShiftY);
    switch (shape.shape) {
    case Shape::Planar:
        layout.planeCount = 3;
        layout.rowBytes[0] = width;
        layout.rows[0] = height;
        for (int plane = 1; plane < 3; ++plane) {
            layout.rowBytes[plane] = chromaWidth;
            layout.rows[plane] = chromaRows;
        }
        break;
    case Shape::Biplanar:
        layout.planeCount = 2;
        layout.rowBytes[0] = width;
        layout.rows[0] = height;
        layout.rowBytes[1] = chromaWidth * 2; // width < 2^31, so this fits
        layout.rows[1] = chromaRows;
        break;
    case Shape::Packed:
        layout.planeCount = 1;
        layout.rows[0] = height;
        break;
    }
    for (int plane = 0; plane < 3; ++plane)
        layout.planeBlack[plane] = shape.black[plane];
}

} // namespace

int GetVideoFrameLayout(uint32_t format, int32_t width, int32_t height, VideoFrameLayout& layout)
{
    layout = VideoFrameLayout();
    const FormatShape* shape = FindShape(format);
    if (!shape)
        shape = FindShape(VideoFormat::GetEquivalentFormat(format));
    if (!shape)
        return RESULT_FORMAT_ERROR;
    if (width < 1 || height < 1)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    Describe(*shape, width, height, layout);
    if (shape->shape == Shape::Packed) {
        // 4:2:2 packings store whole pixel pairs.
        const int64_t pixels = shape->chromaShiftX ? (int64_t(width) + 1) / 2 * 2 : width;
        const int64_t rowBytes = pixels * shape->bytesPerPixel;
        if (rowBytes > INT32_MAX)
            return RESULT_ARGUMENT_OUT_OF_RANGE;
        layout.rowBytes[0] = int32_t(rowBytes);
        layout.patternBytes = shape->chromaShiftX ? 4 : shape->bytesPerPixel;
        std::memcpy(layout.blackPattern, shape->black, sizeof layout.blackPattern);
    }
    int64_t total = 0;
    for (int32_t plane = 0; plane < layout.planeCount; ++plane) {
        layout.offset[plane] = total;
        total += int64_t(layout.rowBytes[plane]) * layout.rows[plane]; // each term < 2^62
        if (total > INT32_MAX)
            return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    layout.totalBytes = total;
    return RESULT_OK;
}

void FillBlackVideoFrame(const VideoFrameLayout& layout, unsigned char* data)
{
    if (layout.patternBytes > 0) {
        const int64_t bytes = int64_t(layout.rowBytes[0]) * layout.rows[0];
        for (int64_t i = 0; i < bytes; ++i)
            data[i] = layout.blackPattern[i % layout.patternBytes];
        return;
    }
    for (int32_t plane = 0; plane < layout.planeCount; ++plane)
        std::memset(data + layout.offset[plane], layout.planeBlack[plane],
                    size_t(int64_t(layout.rowBytes[plane]) * layout.rows[plane]));
}

} // namespace Quorvex::Vek
