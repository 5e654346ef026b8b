#pragma once

// A picture of one to three planes in one CByteArray: each plane starts at
// its own offset and has its own row stride, row length and row count. The
// array is shared and must hold every row of every plane.
#include <vek/core/CByteArray.h>
#include <vek/samples/CPixelDataReference.h>

namespace Quorvex::Vek {

class VEK_API CPlanarPixelDataReference : public CPixelDataReference {
public:
    enum : uint32_t { Type = Four("ppdr") };
    static constexpr int32_t MaxPlanes = 3;

    struct Plane {
        int32_t offset;
        int32_t stride;
        int32_t rowBytes;
        int32_t rows;
    };

    // A new reference in `out` (owned by the caller). -19004 for a null
    // array or plane list; -19003 for a plane count outside 1..MaxPlanes,
    // a negative size or plane field, a stride shorter than its row, or a
    // plane whose rows pass the array's end. `out` is null on failure.
    static int Create(CByteArray* buffer, int32_t width, int32_t height, uint32_t pixelFormat,
                      const Plane* planes, int32_t planeCount, CPlanarPixelDataReference*& out);

    // Borrowed.
    CByteArray* GetBuffer() const { return m_buffer; }
    // The geometry plane `index` was made with; a zero plane outside
    // 0..GetPlaneCount()-1.
    Plane GetPlaneLayout(int32_t index) const;

    int32_t GetPlaneCount() const override { return m_planeCount; }
    int GetPlane(int32_t index, unsigned char*& data, int32_t& stride) override;
    // The whole array. -19002 when the array cannot make its memory.
    int Lock(unsigned char*& data, int32_t& length) override;

protected:
    CPlanarPixelDataReference(CByteArray* buffer, int32_t width, int32_t height, uint32_t pixelFormat,
                              const Plane* planes, int32_t planeCount);
    ~CPlanarPixelDataReference() override;

private:
    RObject<CByteArray> m_buffer;
    Plane m_planes[MaxPlanes] = {};
    int32_t m_planeCount;
};

} // namespace Quorvex::Vek
