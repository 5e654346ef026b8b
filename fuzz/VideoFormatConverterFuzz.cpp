// The video format converter on pictures whose size, layouts, strides and
// byte counts come from the input: every conversion either succeeds or
// returns a result code, never reads or writes past a buffer, and a
// successful conversion between layouts of one subsampling converts back to
// the very bytes it started from.
//
// Input: byte 0 input layout, byte 1 output layout, byte 2 width - 1,
// byte 3 height - 1 (both 1..64), byte 4 stride padding (0: tight; bit 7
// set: that many bytes short of the row), byte 5 bit 0: a one-plane pixel
// reference rather than a linear one; the rest is the picture's bytes, as
// many as there are.
#include <vek/core/CByteArray.h>
#include <vek/filters/video/CVideoFormatConverter.h>
#include <vek/filters/video/PictureLayout.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CPixelBufferDataReference.h>
#include <vek/samples/CVideoSample.h>

#include <cstdint>
#include <cstring>

using namespace Quorvex::Vek;

namespace {

void Check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

// Aliases as well as the layouts' own codes, so both paths are taken.
const uint32_t kFormats[] = {
    Four("I420"), Four("YV12"), Four("NV12"), Four("NV21"), Four("I422"), Four("YV16"), Four("I444"),
    Four("UYVY"), Four("YUYV"), Four("IYUV"), Four("YUY2"), Four("2vuy"), Four("Y42B"), Four("J420"),
};

RObject<CVideoFormatConverter> Begin(uint32_t from, uint32_t to, int32_t width, int32_t height, int32_t stride)
{
    RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetFormat(from);
    properties->SetSize(width, height);
    converter->SetInputProperties(properties);
    converter->SetInputStride(stride);
    if (converter->SetOutputFormat(to) < 0 || converter->Begin() < 0)
        return RObject<CVideoFormatConverter>();
    return converter;
}

RObject<CVideoSample> Convert(CVideoFormatConverter* converter, CVideoSample* input)
{
    const int written = converter->WriteSample(input);
    CVideoSample* made = nullptr;
    const int read = converter->ReadSample(made);
    Check(written < 0 ? read == 1 && !made : read == 0 && made);
    return RObject<CVideoSample>(made);
}

// Every byte of every row of both pictures' planes is the same.
bool SamePlanes(CPixelDataReference* a, const unsigned char* b, int32_t bStride, PictureLayout layout, int32_t width,
                int32_t height)
{
    const unsigned char* plane = b;
    for (int32_t index = 0; index < GetLayoutTraits(layout).planeCount; ++index) {
        unsigned char* data = nullptr;
        int32_t stride = 0;
        Check(a->GetPlane(index, data, stride) == 0);
        const int32_t rows = GetPlaneRows(layout, index, height);
        const auto rowBytes = size_t(GetPlaneRowBytes(layout, index, width));
        const auto planeStride = int32_t(GetDerivedStride(layout, index, bStride));
        for (int32_t row = 0; row < rows; ++row) {
            if (std::memcmp(data + int64_t(row) * stride, plane + int64_t(row) * planeStride, rowBytes) != 0)
                return false;
        }
        plane += int64_t(rows) * planeStride;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 6)
        return 0;
    const uint32_t from = kFormats[data[0] % std::size(kFormats)];
    const uint32_t to = kFormats[data[1] % std::size(kFormats)];
    const int32_t width = data[2] % 64 + 1;
    const int32_t height = data[3] % 64 + 1;
    const PictureLayout inputLayout = GetPictureLayout(from);
    const auto rowBytes = int32_t(inputLayout == PictureLayout::None ? width : GetPlaneRowBytes(inputLayout, 0, width));
    const int32_t stride = data[4] == 0 ? 0 : data[4] & 0x80 ? rowBytes - (data[4] & 0x7F) : rowBytes + data[4];
    const bool pixelReference = data[5] & 1;
    const auto length = int32_t(size - 6);

    RObject<CVideoFormatConverter> converter(Begin(from, to, width, height, stride < 0 ? 0 : stride));
    if (!converter)
        return 0;
    // Exactly as long as the input, so that any read past it is caught.
    RObject<CMediaSampleDataReference> reference;
    if (pixelReference) {
        RObject<CByteArray> bytes(CByteArray::Create(data + 6, length));
        const int32_t pixelStride = stride > 0 ? stride : rowBytes;
        CPixelBufferDataReference* made = nullptr;
        if (CPixelBufferDataReference::Create(bytes, width, length / pixelStride, pixelStride, 1, from, made) < 0)
            return 0;
        reference = RObject<CMediaSampleDataReference>(made);
    } else {
        RObject<CLinearDataReference> linear(CLinearDataReference::Create(length));
        if (length > 0)
            std::memcpy(linear->GetData(), data + 6, size_t(length));
        reference = RObject<CMediaSampleDataReference>(linear.Detach());
    }
    RObject<CVideoSample> input(CVideoSample::Create());
    input->SetDataReference(reference);
    RObject<CVideoSample> output(Convert(converter, input));
    if (!output)
        return 0;

    // Same subsampling both ways: back again gives the input's bytes
    // (except the repeated luma that pads an odd packed row).
    const PictureLayout outputLayout = GetPictureLayout(to);
    const PictureLayoutTraits& a = GetLayoutTraits(inputLayout);
    const PictureLayoutTraits& b = GetLayoutTraits(outputLayout);
    if (a.chromaShiftX != b.chromaShiftX || a.chromaShiftY != b.chromaShiftY ||
        (width % 2 == 1 && (a.arrangement == ChromaArrangement::Packed || b.arrangement == ChromaArrangement::Packed)))
        return 0;
    RObject<CVideoFormatConverter> back(Begin(to, GetLayoutFormat(inputLayout), width, height, 0));
    Check(bool(back));
    RObject<CVideoSample> again(Convert(back, output));
    Check(bool(again));
    unsigned char* original = nullptr;
    int32_t originalLength = 0;
    Check(reference->Lock(original, originalLength) == 0);
    const int32_t originalStride = pixelReference ? (stride > 0 ? stride : rowBytes) : (stride > 0 ? stride : rowBytes);
    Check(SamePlanes(static_cast<CPixelDataReference*>(again->GetDataReference()), original, originalStride,
                     inputLayout, width, height));
    return 0;
}
