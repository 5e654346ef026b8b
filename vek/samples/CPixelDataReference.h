#pragma once

// A picture as planes of pixel rows: its size, its pixel format code and,
// in subclasses, where each plane starts and how far apart its rows lie.
// This base describes a picture without planes (GetPlaneCount 0).
#include <vek/samples/CMediaSampleDataReference.h>

namespace Quorvex::Vek {

class VEK_API CPixelDataReference : public CMediaSampleDataReference {
public:
    enum : uint32_t { Type = Four("pdr ") };

    // A negative width or height is stored as 0.
    CPixelDataReference(int32_t width, int32_t height, uint32_t pixelFormat);

    int32_t GetWidth() const { return m_width; }
    int32_t GetHeight() const { return m_height; }
    uint32_t GetPixelFormat() const { return m_pixelFormat; }

    // True for this base's tag as well as the subclass's own, so that a
    // holder of any data reference can tell a picture with planes.
    bool IsType(uint32_t type) const override;

    virtual int32_t GetPlaneCount() const;
    // First byte and row stride of plane `index`; -19007 for a plane the
    // picture does not have (data null, stride 0).
    virtual int GetPlane(int32_t index, unsigned char*& data, int32_t& stride);

protected:
    CPixelDataReference(uint32_t type, int32_t width, int32_t height, uint32_t pixelFormat);
    ~CPixelDataReference() override;

private:
    int32_t m_width;
    int32_t m_height;
    uint32_t m_pixelFormat;
};

} // namespace Quorvex::Vek
