#pragma once

// A picture in one CByteArray: `height` rows of `stride` bytes each, one
// plane. The array is shared and must hold every row.
#include <vek/core/CByteArray.h>
#include <vek/samples/CPixelDataReference.h>

namespace Quorvex::Vek {

class VEK_API CPixelBufferDataReference : public CPixelDataReference {
public:
    enum : uint32_t { Type = Four("pbdr") };

    // A new reference in `out` (owned by the caller). -19004 for a null
    // array; -19003 for a negative size or stride, a stride too short for
    // `width` bytes per row at `bytesPerPixel`, or an array shorter than
    // height x stride. `out` is null on failure.
    static int Create(CByteArray* buffer, int32_t width, int32_t height, int32_t stride, int32_t bytesPerPixel,
                      uint32_t pixelFormat, CPixelBufferDataReference*& out);

    int32_t GetStride() const { return m_stride; }
    // Borrowed.
    CByteArray* GetBuffer() const { return m_buffer; }

    int32_t GetPlaneCount() const override { return 1; }
    int GetPlane(int32_t index, unsigned char*& data, int32_t& stride) override;
    // All rows: height x stride bytes. -19002 when the array cannot make its memory.
    int Lock(unsigned char*& data, int32_t& length) override;

protected:
    CPixelBufferDataReference(CByteArray* buffer, int32_t width, int32_t height, int32_t stride,
                              uint32_t pixelFormat);
    ~CPixelBufferDataReference() override;

private:
    RObject<CByteArray> m_buffer;
    int32_t m_stride;
};

} // namespace Quorvex::Vek
