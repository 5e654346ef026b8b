#include <vek/elementary/MpegVideoHeaders.h>

#include <numeric>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/BitReader.h>

namespace Quorvex::Vek {

namespace {

struct Fraction {
    int32_t numerator;
    int32_t denominator;
};

// Frames per second by frame_rate_code 1..8.
constexpr Fraction FrameRates[9] = {{0, 0},     {24000, 1001}, {24, 1}, {25, 1},   {30000, 1001},
                                    {30, 1},    {50, 1},       {60000, 1001}, {60, 1}};
// MPEG-1 pel aspect ratios (pel height / width) x 10000 by code 1..14.
constexpr int32_t PelAspectRatios[15] = {0,    10000, 6735,  7031,  7615,  8055,  8437, 8935,
                                         9157, 9815,  10255, 10695, 10950, 11575, 12015};
// MPEG-2 display aspect ratios by code 2..4 (code 1: square samples).
constexpr Fraction DisplayAspectRatios[5] = {{0, 0}, {0, 0}, {4, 3}, {16, 9}, {221, 100}};

int Refuse(const char* header, const char* field, uint32_t value)
{
    Log(LogLevel::Error, "%s::Parse: %s %u is forbidden or reserved\n", header, field, unsigned(value));
    return RESULT_FORMAT_ERROR;
}

int Truncated(const char* header, size_t size)
{
    Log(LogLevel::Error, "%s::Parse: %zu bytes end inside the header\n", header, size);
    return RESULT_FORMAT_ERROR;
}

int MissingMarker(const char* header, const char* after)
{
    Log(LogLevel::Error, "%s::Parse: the marker bit after %s is 0\n", header, after);
    return RESULT_FORMAT_ERROR;
}

int CheckExtensionId(BitReader& reader, const char* header, uint32_t expected)
{
    const uint32_t id = reader.ReadBits(4);
    if (reader.HasError())
        return RESULT_OK; // the caller reports the truncation
    if (id != expected) {
        Log(LogLevel::Error, "%s::Parse: extension_start_code_identifier %u (expected %u)\n", header, unsigned(id),
            unsigned(expected));
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

Fraction Reduced(int64_t numerator, int64_t denominator)
{
    const int64_t divisor = std::gcd(numerator, denominator);
    return {int32_t(numerator / divisor), int32_t(denominator / divisor)};
}

// Reduces and checks that the fraction fits 32-bit terms.
int StoreFraction(int64_t numerator, int64_t denominator, int32_t& outNumerator, int32_t& outDenominator)
{
    if (numerator <= 0 || denominator <= 0)
        return RESULT_FORMAT_ERROR;
    const int64_t divisor = std::gcd(numerator, denominator);
    numerator /= divisor, denominator /= divisor;
    if (numerator > INT32_MAX || denominator > INT32_MAX)
        return RESULT_FORMAT_ERROR;
    outNumerator = int32_t(numerator);
    outDenominator = int32_t(denominator);
    return RESULT_OK;
}

// The display aspect ratio describes the display rectangle when the stream
// gives one.
bool UsesDisplaySize(const MpegVideoSequence& s)
{
    return s.hasDisplayExtension && s.display.displayWidth > 0 && s.display.displayHeight > 0;
}

} // namespace

size_t FindMpegStartCode(const uint8_t* bytes, size_t size, size_t from)
{
    if (!bytes || size < 3)
        return size;
    for (size_t i = from; i <= size - 3; ++i) {
        if (bytes[i + 2] > 1) {
            i += 2; // no prefix can end before i + 3
            continue;
        }
        if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1)
            return i;
    }
    return size;
}

int MpegVideoSequenceHeader::Parse(const uint8_t* payload, size_t size, MpegVideoSequenceHeader& out)
{
    constexpr const char* Name = "MpegVideoSequenceHeader";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    MpegVideoSequenceHeader h;
    h.width = uint16_t(reader.ReadBits(12));
    h.height = uint16_t(reader.ReadBits(12));
    h.aspectRatioInformation = uint8_t(reader.ReadBits(4));
    h.frameRateCode = uint8_t(reader.ReadBits(4));
    h.bitRateValue = reader.ReadBits(18);
    const bool marker = reader.ReadFlag();
    h.vbvBufferSizeValue = uint16_t(reader.ReadBits(10));
    h.constrainedParameters = reader.ReadFlag();
    if ((h.loadIntraQuantiserMatrix = reader.ReadFlag()))
        reader.SkipBits(64 * 8);
    if ((h.loadNonIntraQuantiserMatrix = reader.ReadFlag()))
        reader.SkipBits(64 * 8);
    if (reader.HasError())
        return Truncated(Name, size);
    if (h.width == 0)
        return Refuse(Name, "horizontal_size_value", h.width);
    if (h.height == 0)
        return Refuse(Name, "vertical_size_value", h.height);
    if (h.aspectRatioInformation == 0 || h.aspectRatioInformation == 15)
        return Refuse(Name, "aspect_ratio_information", h.aspectRatioInformation);
    if (h.frameRateCode == 0 || h.frameRateCode > 8)
        return Refuse(Name, "frame_rate_code", h.frameRateCode);
    if (!marker)
        return MissingMarker(Name, "bit_rate_value");
    out = h;
    return RESULT_OK;
}

int MpegVideoExtensionId(const uint8_t* payload, size_t size)
{
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    if (size < 1) {
        Log(LogLevel::Error, "MpegVideoExtensionId: an empty extension\n");
        return RESULT_FORMAT_ERROR;
    }
    return payload[0] >> 4;
}

int MpegVideoSequenceExtension::Parse(const uint8_t* payload, size_t size, MpegVideoSequenceExtension& out)
{
    constexpr const char* Name = "MpegVideoSequenceExtension";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    const int r = CheckExtensionId(reader, Name, MpegVideoExtension::Sequence);
    if (r < 0)
        return r;
    MpegVideoSequenceExtension e;
    e.profileAndLevel = uint8_t(reader.ReadBits(8));
    e.progressiveSequence = reader.ReadFlag();
    e.chromaFormat = uint8_t(reader.ReadBits(2));
    e.horizontalSizeExtension = uint8_t(reader.ReadBits(2));
    e.verticalSizeExtension = uint8_t(reader.ReadBits(2));
    e.bitRateExtension = uint16_t(reader.ReadBits(12));
    const bool marker = reader.ReadFlag();
    e.vbvBufferSizeExtension = uint8_t(reader.ReadBits(8));
    e.lowDelay = reader.ReadFlag();
    e.frameRateExtensionN = uint8_t(reader.ReadBits(2));
    e.frameRateExtensionD = uint8_t(reader.ReadBits(5));
    if (reader.HasError())
        return Truncated(Name, size);
    if (e.chromaFormat == 0)
        return Refuse(Name, "chroma_format", e.chromaFormat);
    if (!marker)
        return MissingMarker(Name, "bit_rate_extension");
    out = e;
    return RESULT_OK;
}

int MpegVideoSequenceDisplayExtension::Parse(const uint8_t* payload, size_t size,
                                             MpegVideoSequenceDisplayExtension& out)
{
    constexpr const char* Name = "MpegVideoSequenceDisplayExtension";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    const int r = CheckExtensionId(reader, Name, MpegVideoExtension::SequenceDisplay);
    if (r < 0)
        return r;
    MpegVideoSequenceDisplayExtension e;
    e.videoFormat = uint8_t(reader.ReadBits(3));
    if ((e.colourDescription = reader.ReadFlag())) {
        e.colourPrimaries = uint8_t(reader.ReadBits(8));
        e.transferCharacteristics = uint8_t(reader.ReadBits(8));
        e.matrixCoefficients = uint8_t(reader.ReadBits(8));
    }
    e.displayWidth = uint16_t(reader.ReadBits(14));
    const bool marker = reader.ReadFlag();
    e.displayHeight = uint16_t(reader.ReadBits(14));
    if (reader.HasError())
        return Truncated(Name, size);
    if (e.videoFormat > 5)
        return Refuse(Name, "video_format", e.videoFormat);
    if (!marker)
        return MissingMarker(Name, "display_horizontal_size");
    out = e;
    return RESULT_OK;
}

int32_t MpegVideoSequence::Width() const
{
    return int32_t(mpeg2 ? extension.horizontalSizeExtension : 0) << 12 | header.width;
}

int32_t MpegVideoSequence::Height() const
{
    return int32_t(mpeg2 ? extension.verticalSizeExtension : 0) << 12 | header.height;
}

int64_t MpegVideoSequence::BitRate() const
{
    const int64_t value = int64_t(mpeg2 ? extension.bitRateExtension : 0) << 18 | header.bitRateValue;
    return value * 400;
}

int64_t MpegVideoSequence::VbvBufferBits() const
{
    const int64_t value = int64_t(mpeg2 ? extension.vbvBufferSizeExtension : 0) << 10 | header.vbvBufferSizeValue;
    return value * 16 * 1024;
}

int MpegVideoSequence::GetFrameRate(int32_t& numerator, int32_t& denominator) const
{
    if (header.frameRateCode == 0 || header.frameRateCode > 8) {
        Log(LogLevel::Error, "MpegVideoSequence::GetFrameRate: frame_rate_code %u\n", unsigned(header.frameRateCode));
        return RESULT_FORMAT_ERROR;
    }
    const Fraction rate = FrameRates[header.frameRateCode];
    const int64_t n = mpeg2 ? extension.frameRateExtensionN + 1 : 1;
    const int64_t d = mpeg2 ? extension.frameRateExtensionD + 1 : 1;
    return StoreFraction(rate.numerator * n, rate.denominator * d, numerator, denominator);
}

int MpegVideoSequence::GetSampleAspectRatio(int32_t& numerator, int32_t& denominator) const
{
    const uint32_t code = header.aspectRatioInformation;
    if (!mpeg2) {
        if (code == 0 || code >= 15) {
            Log(LogLevel::Error, "MpegVideoSequence::GetSampleAspectRatio: MPEG-1 pel aspect code %u\n", code);
            return RESULT_FORMAT_ERROR;
        }
        return StoreFraction(10000, PelAspectRatios[code], numerator, denominator);
    }
    if (code == 1)
        return StoreFraction(1, 1, numerator, denominator);
    int32_t darNumerator = 0, darDenominator = 0;
    const int r = GetDisplayAspectRatio(darNumerator, darDenominator);
    if (r < 0)
        return r;
    const int64_t width = UsesDisplaySize(*this) ? display.displayWidth : Width();
    const int64_t height = UsesDisplaySize(*this) ? display.displayHeight : Height();
    return StoreFraction(int64_t(darNumerator) * height, int64_t(darDenominator) * width, numerator, denominator);
}

int MpegVideoSequence::GetDisplayAspectRatio(int32_t& numerator, int32_t& denominator) const
{
    const uint32_t code = header.aspectRatioInformation;
    if (!mpeg2) {
        int32_t sarNumerator = 0, sarDenominator = 0;
        const int r = GetSampleAspectRatio(sarNumerator, sarDenominator);
        if (r < 0)
            return r;
        return StoreFraction(int64_t(sarNumerator) * Width(), int64_t(sarDenominator) * Height(), numerator,
                             denominator);
    }
    if (code == 0 || code > 4) {
        Log(LogLevel::Error, "MpegVideoSequence::GetDisplayAspectRatio: MPEG-2 aspect_ratio_information %u\n", code);
        return RESULT_FORMAT_ERROR;
    }
    if (code == 1) {
        const bool useDisplay = UsesDisplaySize(*this);
        return StoreFraction(useDisplay ? display.displayWidth : Width(), useDisplay ? display.displayHeight : Height(),
                             numerator, denominator);
    }
    const Fraction dar = Reduced(DisplayAspectRatios[code].numerator, DisplayAspectRatios[code].denominator);
    numerator = dar.numerator;
    denominator = dar.denominator;
    return RESULT_OK;
}

int MpegVideoGopHeader::Parse(const uint8_t* payload, size_t size, MpegVideoGopHeader& out)
{
    constexpr const char* Name = "MpegVideoGopHeader";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    MpegVideoGopHeader g;
    g.dropFrame = reader.ReadFlag();
    g.hours = uint8_t(reader.ReadBits(5));
    g.minutes = uint8_t(reader.ReadBits(6));
    const bool marker = reader.ReadFlag();
    g.seconds = uint8_t(reader.ReadBits(6));
    g.pictures = uint8_t(reader.ReadBits(6));
    g.closedGop = reader.ReadFlag();
    g.brokenLink = reader.ReadFlag();
    if (reader.HasError())
        return Truncated(Name, size);
    if (g.hours > 23)
        return Refuse(Name, "time_code_hours", g.hours);
    if (g.minutes > 59)
        return Refuse(Name, "time_code_minutes", g.minutes);
    if (g.seconds > 59)
        return Refuse(Name, "time_code_seconds", g.seconds);
    if (!marker)
        return MissingMarker(Name, "time_code_minutes");
    out = g;
    return RESULT_OK;
}

int MpegVideoPictureHeader::Parse(const uint8_t* payload, size_t size, MpegVideoPictureHeader& out)
{
    constexpr const char* Name = "MpegVideoPictureHeader";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    MpegVideoPictureHeader p;
    p.temporalReference = uint16_t(reader.ReadBits(10));
    const uint32_t type = reader.ReadBits(3);
    p.vbvDelay = uint16_t(reader.ReadBits(16));
    if (type == 2 || type == 3) {
        p.fullPelForwardVector = reader.ReadFlag();
        p.forwardFCode = uint8_t(reader.ReadBits(3));
    }
    if (type == 3) {
        p.fullPelBackwardVector = reader.ReadFlag();
        p.backwardFCode = uint8_t(reader.ReadBits(3));
    }
    if (reader.HasError())
        return Truncated(Name, size);
    if (type == 0 || type > 4)
        return Refuse(Name, "picture_coding_type", type);
    if ((type == 2 || type == 3) && p.forwardFCode == 0)
        return Refuse(Name, "forward_f_code", p.forwardFCode);
    if (type == 3 && p.backwardFCode == 0)
        return Refuse(Name, "backward_f_code", p.backwardFCode);
    p.type = MpegPictureType(type);
    out = p;
    return RESULT_OK;
}

int MpegVideoPictureCodingExtension::Parse(const uint8_t* payload, size_t size,
                                           MpegVideoPictureCodingExtension& out)
{
    constexpr const char* Name = "MpegVideoPictureCodingExtension";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    const int r = CheckExtensionId(reader, Name, MpegVideoExtension::PictureCoding);
    if (r < 0)
        return r;
    MpegVideoPictureCodingExtension e;
    for (auto& direction : e.fCode)
        for (uint8_t& code : direction)
            code = uint8_t(reader.ReadBits(4));
    e.intraDcPrecision = uint8_t(reader.ReadBits(2));
    const uint32_t structure = reader.ReadBits(2);
    e.topFieldFirst = reader.ReadFlag();
    e.framePredFrameDct = reader.ReadFlag();
    e.concealmentMotionVectors = reader.ReadFlag();
    e.qScaleType = reader.ReadFlag();
    e.intraVlcFormat = reader.ReadFlag();
    e.alternateScan = reader.ReadFlag();
    e.repeatFirstField = reader.ReadFlag();
    e.chroma420Type = reader.ReadFlag();
    e.progressiveFrame = reader.ReadFlag();
    if ((e.compositeDisplay = reader.ReadFlag()))
        reader.SkipBits(1 + 3 + 1 + 7 + 8);
    if (reader.HasError())
        return Truncated(Name, size);
    if (structure == 0)
        return Refuse(Name, "picture_structure", structure);
    for (const auto& direction : e.fCode)
        for (uint8_t code : direction)
            if (code == 0 || (code > 9 && code != 15))
                return Refuse(Name, "f_code", code);
    e.structure = MpegPictureStructure(structure);
    out = e;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
