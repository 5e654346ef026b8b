#pragma once

// The video format converter ("vfc "): rewrites each 8-bit Y'CbCr picture
// in another layout of the same size: I420, YV12, NV12, NV21, I422, YV16,
// I444, UYVY or YUYV, from any of them (aliases such as IYUV, YUY2 or 2vuy
// are accepted on either side as the layout they name). One output picture
// per input picture, with the input's time, duration, hints, metadata and
// properties.
//
// Luma is copied exactly. Chroma moves without change where the two layouts
// share their subsampling, and is resampled where they do not (see
// PictureConversion.h and PictureRows.h for the filters: MPEG-2 chroma
// siting, 3/4 + 1/4 interpolation from 4:2:0 rows, pair means to 4:2:0,
// co-sited [1 2 1]/4 and neighbour means across).
//
// Input bytes: a pixel data reference (CPixelDataReference and its kinds)
// is read at its planes' own strides; a reference with fewer planes than
// the layout, and any other reference (linear, memory, buffer), holds the
// planes one after another with row strides from SetInputStride (see
// ViewContiguousPicture). Every plane is checked against the bytes the
// reference locks; a picture that does not fit is refused with -19003 or
// -19017 and a log line, and nothing is written.
//
// Output: a CPlanarPixelDataReference whose planes and rows start on
// 64-byte boundaries. Output buffers are reused once the host has released
// the pictures made in them, so a steady stream allocates nothing per frame.
//
// Life cycle as every filter (CFilter.h). Begin: -19003 for a width or
// height outside 1..65536 in the input description, -19017 for an input
// format that is not one of the layouts. Without SetOutputFormat the output
// layout is the input's own (a copy at aligned strides).
#include <vek/core/CByteArray.h>
#include <vek/filters/CVideoConverter.h>
#include <vek/filters/video/PictureLayout.h>
#include <vek/samples/CPlanarPixelDataReference.h>

namespace Quorvex::Vek {

struct PictureView;

class VEK_API CVideoFormatConverter : public CVideoConverter {
public:
    enum : uint32_t { Type = Four("vfc ") };

    CVideoFormatConverter();

    // Adds the converter's factory to the CVideoConverter inventory under
    // "vfc ". 0, -19002.
    static int Register();

    using CVideoConverter::Convert;

    // Row stride of the first plane of pictures in contiguous references
    // (0, the default: tight rows); takes effect at the next picture.
    // -19003, logged, when negative.
    int SetInputStride(int32_t stride);
    int32_t GetInputStride() const { return m_inputStride; }

    const ConfigurationMap* GetConfigurationTable() override;
    // The table's lists, with an alias input read as its layout.
    FormatList* GetOutputFormats() override;
    int Evaluate(const CVideoProperties* properties) override;

protected:
    ~CVideoFormatConverter() override;

    bool ValidateOutputFormat(unsigned int format) override;
    // The input description with the output format and its subsampling.
    int CreateOutputProperties(unsigned int format, CVideoProperties*& properties) override;
    int CoreBegin() override;
    int CoreEnd() override;
    // One converted picture per input; null input (the drain) makes none.
    int Convert(CVideoSample* input, CVideoSample*& output) override;

private:
    // Output buffers kept for reuse; a host holding more pictures than this
    // gets fresh ones for the rest.
    static constexpr int32_t KeptPictures = 6;

    int ViewInput(CMediaSampleDataReference* reference, PictureView& view);
    int TakeOutputPicture(CPlanarPixelDataReference*& picture);
    void ReleaseBuffers();

    PictureLayout m_inputLayout = PictureLayout::None;
    PictureLayout m_outputLayout = PictureLayout::None;
    int32_t m_width = 0;
    int32_t m_height = 0;
    int32_t m_inputStride = 0;
    RObject<CByteArray> m_scratch;
    RObject<CPool<CVideoSample>> m_pool;
    RObject<CPlanarPixelDataReference> m_pictures[KeptPictures];
};

} // namespace Quorvex::Vek
