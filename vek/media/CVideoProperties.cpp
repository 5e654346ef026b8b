#include <vek/media/CVideoProperties.h>

#include <new>
#include <numeric>

#include <vek/core/Result.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek {

namespace {

constexpr int32_t MaxSubsampling = 16;

// Validates and reduces a fraction whose 0/0 form means "unknown".
bool ReduceFraction(int64_t& numerator, int64_t& denominator)
{
    if (numerator < 0 || denominator < 0)
        return false;
    if (denominator == 0)
        return numerator == 0;
    const int64_t divisor = std::gcd(numerator, denominator);
    numerator /= divisor;
    denominator /= divisor;
    return true;
}

} // namespace

const IProperties::Accessor CVideoProperties::Accessors[] = {
    {MediaProperty::Mpeg2FormatIdentifier, "MPEG-2 Format Identifier", &IProperties::GetUInt32, IProperties::TXT},
    {MediaProperty::Mpeg2TransportStreamPid, "MPEG-2 Transport Stream PID", &IProperties::GetUInt16, IProperties::TXT},
    {VideoProperty::ActiveFormatDescriptor, "Active Format Descriptor", &IProperties::GetByte, IProperties::TXT},
    {VideoProperty::AlphaChannel, "Alpha Channel", &IProperties::GetBool, IProperties::TXT},
    {VideoProperty::AvidCompression, "Avid Compression", &IProperties::GetString, IProperties::TXT},
    {VideoProperty::H264Profile, "H.264 Profile", &IProperties::GetByte, IProperties::TXT},
    {VideoProperty::H264Level, "H.264 Level", &IProperties::GetByte, IProperties::TXT},
    {VideoProperty::MdpmDateTime, "Camera Recording Date and Time", &IProperties::GetString, IProperties::TXT},
    {VideoProperty::MdpmMakeModel, "Camera Make and Model", &IProperties::GetString, IProperties::TXT},
    {VideoProperty::MpegClosedGop, "MPEG Closed GOP", &IProperties::GetBool, IProperties::TXT},
    {VideoProperty::MpegIdenticalGop, "MPEG Identical GOP", &IProperties::GetBool, IProperties::TXT},
    {VideoProperty::MpegMaxGopLength, "MPEG Maximum GOP Length", &IProperties::GetUInt32, IProperties::TXT},
    {VideoProperty::MpegVbvBufferSize, "MPEG VBV Buffer Size", &IProperties::GetUInt32, IProperties::TXT},
    {VideoProperty::Mpeg2ProfileAndLevel, "MPEG-2 Profile and Level", &IProperties::GetByte, IProperties::TXT},
    {VideoProperty::Mpeg4ProfileAndLevel, "MPEG-4 Profile and Level", &IProperties::GetByte, IProperties::TXT},
    {VideoProperty::Mpeg4CompressorName, "MPEG-4 Compressor Name", &IProperties::GetString, IProperties::TXT},
    {VideoProperty::ProResEncoder, "ProRes Encoder", &IProperties::GetString, IProperties::TXT},
    {nullptr, nullptr, nullptr, 0},
};

CVideoProperties::CVideoProperties() : CMediaProperties(Type) {}

CVideoProperties::CVideoProperties(const CVideoProperties& other) = default;

CVideoProperties::~CVideoProperties() = default;

CMediaProperties* CVideoProperties::Clone() const
{
    return CloneChecked(new (fallible) CVideoProperties(*this));
}

int CVideoProperties::SetSize(int32_t width, int32_t height)
{
    if (width < 0 || height < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_width = width;
    m_height = height;
    return RESULT_OK;
}

void CVideoProperties::GetPixelAspectRatio(int64_t& numerator, int64_t& denominator) const
{
    numerator = m_aspectNumerator;
    denominator = m_aspectDenominator;
}

int CVideoProperties::SetPixelAspectRatio(int64_t numerator, int64_t denominator)
{
    if (!ReduceFraction(numerator, denominator))
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_aspectNumerator = numerator;
    m_aspectDenominator = denominator;
    return RESULT_OK;
}

void CVideoProperties::GetSubsampling(int32_t& horizontal, int32_t& vertical) const
{
    horizontal = m_subsamplingHorizontal;
    vertical = m_subsamplingVertical;
}

int CVideoProperties::SetSubsampling(int32_t horizontal, int32_t vertical)
{
    if (horizontal < 0 || horizontal > MaxSubsampling || vertical < 0 || vertical > MaxSubsampling)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_subsamplingHorizontal = horizontal;
    m_subsamplingVertical = vertical;
    return RESULT_OK;
}

void CVideoProperties::GetFrameRate(int64_t& numerator, int64_t& denominator) const
{
    numerator = m_rateNumerator;
    denominator = m_rateDenominator;
}

int CVideoProperties::SetFrameRate(int64_t numerator, int64_t denominator)
{
    if (!ReduceFraction(numerator, denominator))
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_rateNumerator = numerator;
    m_rateDenominator = denominator;
    return RESULT_OK;
}

int CVideoProperties::SetFieldOrder(uint32_t fieldOrder)
{
    if (fieldOrder > FieldOrderBottomFirst)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_fieldOrder = fieldOrder;
    return RESULT_OK;
}

int CVideoProperties::SetBitRate(int64_t bitsPerSecond)
{
    if (bitsPerSecond < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    m_bitRate = bitsPerSecond;
    return RESULT_OK;
}

const IProperties::Accessor* CVideoProperties::GetPropertyAccessors() const
{
    return Accessors;
}

} // namespace Quorvex::Vek
