#include <vek/filters/video/PictureLayout.h>

#include <vek/media/VideoFormat.h>

#include <iterator>

namespace Quorvex::Vek {

namespace {

using A = ChromaArrangement;

constexpr PictureLayoutTraits kTraits[] = {
    {VideoFormat::Planar420YUV, A::Planar, 1, 1, false, 0, 0, 0, 3},
    {VideoFormat::Planar420YVU, A::Planar, 1, 1, true, 0, 0, 0, 3},
    {VideoFormat::Biplanar420YUV, A::Interleaved, 1, 1, false, 0, 0, 0, 2},
    {VideoFormat::Biplanar420YVU, A::Interleaved, 1, 1, true, 0, 0, 0, 2},
    {VideoFormat::Planar422YUV, A::Planar, 1, 0, false, 0, 0, 0, 3},
    {VideoFormat::Planar422YVU, A::Planar, 1, 0, true, 0, 0, 0, 3},
    {VideoFormat::Planar444YUV, A::Planar, 0, 0, false, 0, 0, 0, 3},
    {VideoFormat::Packed422UYVY, A::Packed, 1, 0, false, 1, 0, 2, 1},
    {VideoFormat::Packed422YUYV, A::Packed, 1, 0, false, 0, 1, 3, 1},
};
static_assert(std::size(kTraits) == size_t(PictureLayout::Count));

PictureLayout FindLayout(uint32_t format)
{
    for (size_t i = 0; i < std::size(kTraits); ++i) {
        if (kTraits[i].format == format)
            return PictureLayout(i);
    }
    return PictureLayout::None;
}

} // namespace

const PictureLayoutTraits& GetLayoutTraits(PictureLayout layout)
{
    return kTraits[size_t(layout) < std::size(kTraits) ? size_t(layout) : 0];
}

PictureLayout GetPictureLayout(uint32_t format)
{
    // An unnamed table entry is an alias: its equivalent is its parent,
    // which it therefore descends from. A named entry's equivalent is a
    // child of its own, never an ancestor. The table has no loops, and the
    // bound keeps this so even if it had.
    for (int depth = 0; depth < 8 && format != 0; ++depth) {
        const PictureLayout layout = FindLayout(format);
        if (layout != PictureLayout::None)
            return layout;
        const uint32_t parent = VideoFormat::GetEquivalentFormat(format);
        if (parent == 0 || parent == format || !VideoFormat::IsFormat(format, parent))
            break;
        format = parent;
    }
    return PictureLayout::None;
}

int64_t GetPlaneRowBytes(PictureLayout layout, int32_t plane, int32_t width)
{
    const PictureLayoutTraits& traits = GetLayoutTraits(layout);
    if (traits.arrangement == A::Packed)
        return plane == 0 ? 4 * ((int64_t(width) + 1) >> 1) : 0;
    if (plane == 0)
        return width;
    if (plane >= traits.planeCount)
        return 0;
    const int64_t chromaWidth = GetChromaWidth(layout, width);
    return traits.arrangement == A::Interleaved ? 2 * chromaWidth : chromaWidth;
}

int32_t GetPlaneRows(PictureLayout layout, int32_t plane, int32_t height)
{
    const PictureLayoutTraits& traits = GetLayoutTraits(layout);
    if (plane == 0)
        return height;
    return plane < traits.planeCount ? GetChromaHeight(layout, height) : 0;
}

int32_t GetChromaWidth(PictureLayout layout, int32_t width)
{
    const int shift = GetLayoutTraits(layout).chromaShiftX;
    return int32_t((int64_t(width) + (1 << shift) - 1) >> shift);
}

int32_t GetChromaHeight(PictureLayout layout, int32_t height)
{
    const int shift = GetLayoutTraits(layout).chromaShiftY;
    return int32_t((int64_t(height) + (1 << shift) - 1) >> shift);
}

int64_t GetDerivedStride(PictureLayout layout, int32_t plane, int32_t stride0)
{
    const PictureLayoutTraits& traits = GetLayoutTraits(layout);
    if (plane == 0)
        return stride0;
    if (plane >= traits.planeCount)
        return 0;
    const int shift = traits.chromaShiftX;
    const int64_t chroma = (int64_t(stride0) + (1 << shift) - 1) >> shift;
    return traits.arrangement == A::Interleaved ? 2 * chroma : chroma;
}

} // namespace Quorvex::Vek
