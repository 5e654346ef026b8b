#include <vek/elementary/Mpeg4VideoHeaders.h>

#include <numeric>

#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/BitReader.h>

namespace Quorvex::Vek {

namespace {

constexpr uint8_t ExtendedPar = 15;
constexpr uint8_t RectangularShape = 0;
// Sample aspect ratios by aspect_ratio_info 1..5.
constexpr uint8_t PixelAspectRatios[6][2] = {{0, 0}, {1, 1}, {12, 11}, {10, 11}, {16, 11}, {40, 33}};

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

// Reads a marker bit; a zero one sets the reader's error flag and names
// the field it follows.
void ReadMarker(BitReader& reader, const char*& missingAfter, const char* after)
{
    if (!reader.ReadFlag() && !reader.HasError() && !missingAfter)
        missingAfter = after;
}

// Bits of vop_time_increment: enough for resolution - 1, at least one.
uint8_t TimeIncrementBits(uint32_t resolution)
{
    uint8_t bits = 1;
    while (bits < 16 && (resolution - 1) >> bits)
        ++bits;
    return bits;
}

void ReadVbvParameters(BitReader& reader, Mpeg4VideoObjectLayer& l, const char*& missingMarker)
{
    l.bitRate = reader.ReadBits(15) << 15;
    ReadMarker(reader, missingMarker, "first_half_bit_rate");
    l.bitRate |= reader.ReadBits(15);
    ReadMarker(reader, missingMarker, "latter_half_bit_rate");
    l.vbvBufferSize = reader.ReadBits(15) << 3;
    ReadMarker(reader, missingMarker, "first_half_vbv_buffer_size");
    l.vbvBufferSize |= reader.ReadBits(3);
    l.vbvOccupancy = reader.ReadBits(11) << 15;
    ReadMarker(reader, missingMarker, "first_half_vbv_occupancy");
    l.vbvOccupancy |= reader.ReadBits(15);
    ReadMarker(reader, missingMarker, "latter_half_vbv_occupancy");
}

int StoreFraction(int64_t numerator, int64_t denominator, int32_t& outNumerator, int32_t& outDenominator)
{
    if (numerator <= 0 || denominator <= 0)
        return RESULT_FORMAT_ERROR;
    const int64_t divisor = std::gcd(numerator, denominator);
    outNumerator = int32_t(numerator / divisor);
    outDenominator = int32_t(denominator / divisor);
    return RESULT_OK;
}

} // namespace

int Mpeg4VisualObjectSequence::Parse(const uint8_t* payload, size_t size, Mpeg4VisualObjectSequence& out)
{
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    if (size < 1)
        return Truncated("Mpeg4VisualObjectSequence", size);
    out.profileAndLevel = payload[0];
    return RESULT_OK;
}

int Mpeg4VisualObject::Parse(const uint8_t* payload, size_t size, Mpeg4VisualObject& out)
{
    constexpr const char* Name = "Mpeg4VisualObject";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    Mpeg4VisualObject o;
    if ((o.hasIdentifier = reader.ReadFlag())) {
        o.verid = uint8_t(reader.ReadBits(4));
        o.priority = uint8_t(reader.ReadBits(3));
    }
    o.type = uint8_t(reader.ReadBits(4));
    if ((o.type == 1 || o.type == 2) && (o.videoSignalType = reader.ReadFlag())) {
        o.videoFormat = uint8_t(reader.ReadBits(3));
        o.fullRange = reader.ReadFlag();
        if ((o.colourDescription = reader.ReadFlag())) {
            o.colourPrimaries = uint8_t(reader.ReadBits(8));
            o.transferCharacteristics = uint8_t(reader.ReadBits(8));
            o.matrixCoefficients = uint8_t(reader.ReadBits(8));
        }
    }
    if (reader.HasError())
        return Truncated(Name, size);
    if (o.hasIdentifier && o.verid == 0)
        return Refuse(Name, "visual_object_verid", o.verid);
    if (o.type == 0 || o.type > 5)
        return Refuse(Name, "visual_object_type", o.type);
    out = o;
    return RESULT_OK;
}

int Mpeg4VideoObjectLayer::Parse(const uint8_t* payload, size_t size, Mpeg4VideoObjectLayer& out,
                                 uint8_t visualObjectVerid)
{
    constexpr const char* Name = "Mpeg4VideoObjectLayer";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    const char* missingMarker = nullptr;
    Mpeg4VideoObjectLayer l;
    l.verid = visualObjectVerid;
    l.randomAccessible = reader.ReadFlag();
    l.objectType = uint8_t(reader.ReadBits(8));
    if ((l.hasIdentifier = reader.ReadFlag())) {
        l.verid = uint8_t(reader.ReadBits(4));
        l.priority = uint8_t(reader.ReadBits(3));
    }
    l.aspectRatioInfo = uint8_t(reader.ReadBits(4));
    if (l.aspectRatioInfo == ExtendedPar) {
        l.parWidth = uint8_t(reader.ReadBits(8));
        l.parHeight = uint8_t(reader.ReadBits(8));
    }
    if ((l.hasControlParameters = reader.ReadFlag())) {
        l.chromaFormat = uint8_t(reader.ReadBits(2));
        l.lowDelay = reader.ReadFlag();
        if ((l.hasVbvParameters = reader.ReadFlag()))
            ReadVbvParameters(reader, l, missingMarker);
    }
    const uint32_t shape = reader.ReadBits(2);
    if (shape != RectangularShape && !reader.HasError()) {
        Log(LogLevel::Error, "%s::Parse: video_object_layer_shape %u (only rectangular layers are supported)\n", Name,
            unsigned(shape));
        return RESULT_NOT_SUPPORTED;
    }
    ReadMarker(reader, missingMarker, "video_object_layer_shape");
    l.timeIncrementResolution = uint16_t(reader.ReadBits(16));
    ReadMarker(reader, missingMarker, "vop_time_increment_resolution");
    l.timeIncrementBits = TimeIncrementBits(l.timeIncrementResolution);
    if ((l.fixedVopRate = reader.ReadFlag()))
        l.fixedVopTimeIncrement = uint16_t(reader.ReadBits(l.timeIncrementBits));
    ReadMarker(reader, missingMarker, "fixed_vop_rate");
    l.width = uint16_t(reader.ReadBits(13));
    ReadMarker(reader, missingMarker, "video_object_layer_width");
    l.height = uint16_t(reader.ReadBits(13));
    ReadMarker(reader, missingMarker, "video_object_layer_height");
    l.interlaced = reader.ReadFlag();
    l.obmcDisabled = reader.ReadFlag();
    l.spriteEnable = uint8_t(reader.ReadBits(l.verid == 1 ? 1 : 2));
    if (reader.HasError())
        return Truncated(Name, size);
    if (l.verid == 0)
        return Refuse(Name, "video_object_layer_verid", l.verid);
    if (l.aspectRatioInfo == 0 || (l.aspectRatioInfo > 5 && l.aspectRatioInfo != ExtendedPar))
        return Refuse(Name, "aspect_ratio_info", l.aspectRatioInfo);
    if (l.aspectRatioInfo == ExtendedPar && (l.parWidth == 0 || l.parHeight == 0))
        return Refuse(Name, "par_width/par_height", uint32_t(l.parWidth) << 8 | l.parHeight);
    if (l.chromaFormat != 1)
        return Refuse(Name, "chroma_format", l.chromaFormat);
    if (l.timeIncrementResolution == 0)
        return Refuse(Name, "vop_time_increment_resolution", 0);
    if (l.fixedVopRate && l.fixedVopTimeIncrement == 0)
        return Refuse(Name, "fixed_vop_time_increment", 0);
    if (l.width == 0 || l.height == 0)
        return Refuse(Name, l.width == 0 ? "video_object_layer_width" : "video_object_layer_height", 0);
    if (l.spriteEnable == 3)
        return Refuse(Name, "sprite_enable", l.spriteEnable);
    if (missingMarker) {
        Log(LogLevel::Error, "%s::Parse: the marker bit after %s is 0\n", Name, missingMarker);
        return RESULT_FORMAT_ERROR;
    }
    out = l;
    return RESULT_OK;
}

int Mpeg4VideoObjectLayer::GetSampleAspectRatio(int32_t& numerator, int32_t& denominator) const
{
    if (aspectRatioInfo == ExtendedPar)
        return StoreFraction(parWidth, parHeight, numerator, denominator);
    if (aspectRatioInfo == 0 || aspectRatioInfo > 5) {
        Log(LogLevel::Error, "Mpeg4VideoObjectLayer::GetSampleAspectRatio: aspect_ratio_info %u\n",
            unsigned(aspectRatioInfo));
        return RESULT_FORMAT_ERROR;
    }
    return StoreFraction(PixelAspectRatios[aspectRatioInfo][0], PixelAspectRatios[aspectRatioInfo][1], numerator,
                         denominator);
}

int Mpeg4VideoObjectLayer::GetFrameRate(int32_t& numerator, int32_t& denominator) const
{
    if (!fixedVopRate || fixedVopTimeIncrement == 0 || timeIncrementResolution == 0) {
        Log(LogLevel::Warning, "Mpeg4VideoObjectLayer::GetFrameRate: the layer has no fixed VOP rate\n");
        return RESULT_FORMAT_ERROR;
    }
    return StoreFraction(timeIncrementResolution, fixedVopTimeIncrement, numerator, denominator);
}

int Mpeg4VopHeader::Parse(const uint8_t* payload, size_t size, const Mpeg4VideoObjectLayer& layer,
                          Mpeg4VopHeader& out)
{
    constexpr const char* Name = "Mpeg4VopHeader";
    if (!payload)
        return RESULT_ARGUMENT_NULL;
    if (layer.timeIncrementBits == 0 || layer.timeIncrementResolution == 0) {
        Log(LogLevel::Error, "%s::Parse: the layer has no time increment resolution\n", Name);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    BitReader reader(payload, size, BitReader::Escapes::Keep);
    const char* missingMarker = nullptr;
    Mpeg4VopHeader v;
    v.type = Mpeg4VopType(reader.ReadBits(2));
    while (reader.ReadFlag())
        ++v.moduloTimeBase;
    ReadMarker(reader, missingMarker, "modulo_time_base");
    v.timeIncrement = uint16_t(reader.ReadBits(layer.timeIncrementBits));
    ReadMarker(reader, missingMarker, "vop_time_increment");
    v.coded = reader.ReadFlag();
    if (reader.HasError())
        return Truncated(Name, size);
    if (missingMarker) {
        Log(LogLevel::Error, "%s::Parse: the marker bit after %s is 0\n", Name, missingMarker);
        return RESULT_FORMAT_ERROR;
    }
    if (v.timeIncrement >= layer.timeIncrementResolution) {
        Log(LogLevel::Error, "%s::Parse: vop_time_increment %u reaches the resolution %u\n", Name,
            unsigned(v.timeIncrement), unsigned(layer.timeIncrementResolution));
        return RESULT_FORMAT_ERROR;
    }
    if (v.type == Mpeg4VopType::S && layer.spriteEnable == 0)
        return Refuse(Name, "vop_coding_type (S without sprites)", 3);
    out = v;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
