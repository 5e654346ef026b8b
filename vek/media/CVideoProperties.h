#pragma once

// Description of a video medium: picture size, pixel shape, chroma
// subsampling, colour space, frame rate, field order and bit rate, on top of
// the common media facts. Zero means "not known" for every fact.
#include <vek/media/CMediaProperties.h>

namespace Quorvex::Vek {

class VEK_API CVideoProperties : public CMediaProperties {
public:
    enum : uint32_t { Type = Four("vide") };

    // Field order of interlaced pictures.
    enum FieldOrder : uint32_t {
        FieldOrderUnknown = 0,
        FieldOrderProgressive = 1,
        FieldOrderTopFirst = 2,
        FieldOrderBottomFirst = 3,
    };

    // Colour spaces (matrix and primaries of a family of standards).
    enum ColorSpace : uint32_t {
        ColorSpaceUnknown = 0,
        ColorSpaceRec601 = Four("r601"),
        ColorSpaceRec709 = Four("r709"),
        ColorSpaceRec2020 = Four("r202"),
        ColorSpaceRgb = Four("rgb "),
    };

    // The described video keys, common media keys included; ends with a null key.
    static const Accessor Accessors[];

    CVideoProperties();
    CMediaProperties* Clone() const override;

    int32_t GetWidth() const { return m_width; }
    int32_t GetHeight() const { return m_height; }
    // -19003 for a negative width or height; nothing changes then.
    int SetSize(int32_t width, int32_t height);

    // Width of a pixel relative to its height, as a reduced fraction.
    // 0/0 is unknown; a zero denominator with a non-zero numerator, or a
    // negative part, is -19003.
    void GetPixelAspectRatio(int64_t& numerator, int64_t& denominator) const;
    int SetPixelAspectRatio(int64_t numerator, int64_t denominator);

    // Luma samples per chroma sample across and down: 1,1 is 4:4:4, 2,1 is
    // 4:2:2, 2,2 is 4:2:0, 4,1 is 4:1:1; 0,0 unknown. Each factor 0..16.
    void GetSubsampling(int32_t& horizontal, int32_t& vertical) const;
    int SetSubsampling(int32_t horizontal, int32_t vertical);

    uint32_t GetColorSpace() const { return m_colorSpace; }
    void SetColorSpace(uint32_t colorSpace) { m_colorSpace = colorSpace; }

    // Frames per second as a reduced fraction (30000/1001); rules as for the
    // pixel aspect ratio.
    void GetFrameRate(int64_t& numerator, int64_t& denominator) const;
    int SetFrameRate(int64_t numerator, int64_t denominator);

    uint32_t GetFieldOrder() const { return m_fieldOrder; }
    // -19003 for a value other than the FieldOrder constants.
    int SetFieldOrder(uint32_t fieldOrder);

    // Bits per second; -19003 when negative.
    int64_t GetBitRate() const { return m_bitRate; }
    int SetBitRate(int64_t bitsPerSecond);

protected:
    CVideoProperties(const CVideoProperties& other);
    ~CVideoProperties() override;

    const Accessor* GetPropertyAccessors() const override;

private:
    int32_t m_width = 0;
    int32_t m_height = 0;
    int64_t m_aspectNumerator = 0;
    int64_t m_aspectDenominator = 0;
    int32_t m_subsamplingHorizontal = 0;
    int32_t m_subsamplingVertical = 0;
    uint32_t m_colorSpace = ColorSpaceUnknown;
    int64_t m_rateNumerator = 0;
    int64_t m_rateDenominator = 0;
    uint32_t m_fieldOrder = FieldOrderUnknown;
    int64_t m_bitRate = 0;
};

} // namespace Quorvex::Vek
