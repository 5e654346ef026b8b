#include <vek/containers/readers/elementary/VideoStreamFacts.h>

#include <cstring>


namespace Quorvex::Vek {

const char* const VideoStreamFacts::CodedWidthKey = "es.coded_width";
const char* const VideoStreamFacts::CodedHeightKey = "es.coded_height";
const char* const VideoStreamFacts::ChromaFormatKey = "es.chroma_format";
const char* const VideoStreamFacts::BitDepthKey = "es.bit_depth";
const char* const VideoStreamFacts::ChromaBitDepthKey = "es.bit_depth_chroma";
const char* const VideoStreamFacts::ColourPrimariesKey = "es.colour_primaries";
const char* const VideoStreamFacts::TransferKey = "es.transfer_characteristics";
const char* const VideoStreamFacts::MatrixKey = "es.matrix_coefficients";
const char* const VideoStreamFacts::FullRangeKey = "es.full_range";
const char* const VideoStreamFacts::ChromaLocationKey = "es.chroma_location";
const char* const VideoStreamFacts::ProfileKey = "es.profile";
const char* const VideoStreamFacts::LevelKey = "es.level";
const char* const VideoStreamFacts::TierKey = "es.tier";
const char* const VideoStreamFacts::ScanKey = "es.scan";
const char* const VideoStreamFacts::ReorderDepthKey = "es.reorder_depth";
const char* const VideoStreamFacts::DecoderConfigurationKey = "es.decoder_configuration";
const char* const VideoStreamFacts::FrameRateSettingKey = "es.frame_rate";

namespace {

int SetNumber(CVideoProperties* video, const char* key, int64_t value, bool stated)
{
    if (!stated)
        return RESULT_OK;
    const auto word = uint32_t(value);
    const unsigned char bytes[4] = {uint8_t(word), uint8_t(word >> 8), uint8_t(word >> 16), uint8_t(word >> 24)};
    return video->SetProperty(key, 4, bytes);
}

int SetText(CVideoProperties* video, const char* key, const char* text)
{
    if (!key || !text || !*text)
        return RESULT_OK;
    return video->SetProperty(key, int32_t(std::strlen(text) + 1), reinterpret_cast<const unsigned char*>(text));
}

// The colour space family of an H.273 matrix code.
uint32_t ColorSpaceOfMatrix(int32_t matrix)
{
    switch (matrix) {
    case 0: return CVideoProperties::ColorSpaceRgb;
    case 1: return CVideoProperties::ColorSpaceRec709;
    case 5:
    case 6: return CVideoProperties::ColorSpaceRec601;
    case 9:
    case 10: return CVideoProperties::ColorSpaceRec2020;
    default: return CVideoProperties::ColorSpaceUnknown;
    }
}

// Luma samples per chroma sample across and down for a chroma format code.
void SubsamplingOf(int32_t chromaFormat, int32_t& horizontal, int32_t& vertical)
{
    static const int32_t factors[4][2] = {{0, 0}, {2, 2}, {2, 1}, {1, 1}};
    horizontal = chromaFormat >= 0 && chromaFormat < 4 ? factors[chromaFormat][0] : 0;
    vertical = chromaFormat >= 0 && chromaFormat < 4 ? factors[chromaFormat][1] : 0;
}

} // namespace

int VideoStreamFacts::Apply(CVideoProperties* video) const
{
    if (!video)
        return RESULT_ARGUMENT_NULL;
    video->SetFormat(format);
    int32_t horizontal = 0;
    int32_t vertical = 0;
    SubsamplingOf(chromaFormat, horizontal, vertical);
    if (matrix != 2 && (matrix != 0 || chromaFormat == 3))
        video->SetColorSpace(ColorSpaceOfMatrix(matrix));
    int result = RESULT_OK;
    if ((result = video->SetSize(width, height)) < 0 ||
        (result = video->SetPixelAspectRatio(aspectNumerator, aspectDenominator)) < 0 ||
        (result = video->SetSubsampling(horizontal, vertical)) < 0 ||
        (result = video->SetFrameRate(frameRateNumerator, frameRateDenominator)) < 0 ||
        (result = video->SetFieldOrder(fieldOrder)) < 0 || (result = video->SetBitRate(bitRate)) < 0)
        return result;
    const bool describedColour = colourPrimaries != 0 || transfer != 0 || matrix != 0;
    const unsigned char range = fullRange ? 1 : 0;
    if ((result = SetNumber(video, CodedWidthKey, codedWidth, codedWidth > 0)) < 0 ||
        (result = SetNumber(video, CodedHeightKey, codedHeight, codedHeight > 0)) < 0 ||
        (result = SetNumber(video, ChromaFormatKey, chromaFormat, chromaFormat >= 0)) < 0 ||
        (result = SetNumber(video, BitDepthKey, bitDepth, bitDepth > 0)) < 0 ||
        (result = SetNumber(video, ChromaBitDepthKey, chromaBitDepth, chromaBitDepth > 0)) < 0 ||
        (result = SetNumber(video, ColourPrimariesKey, colourPrimaries, describedColour)) < 0 ||
        (result = SetNumber(video, TransferKey, transfer, describedColour)) < 0 ||
        (result = SetNumber(video, MatrixKey, matrix, describedColour)) < 0 ||
        (result = SetNumber(video, ChromaLocationKey, chromaLocation + 1, chromaLocation >= 0)) < 0 ||
        (result = SetNumber(video, ReorderDepthKey, reorderDepth, reorderDepth >= 0)) < 0 ||
        (result = video->SetProperty(FullRangeKey, 1, &range)) < 0 ||
        (result = SetText(video, ProfileKey, profile)) < 0 || (result = SetText(video, LevelKey, level)) < 0 ||
        (result = SetText(video, TierKey, tier)) < 0 || (result = SetText(video, ScanKey, scan)) < 0 ||
        (result = profileCodeKey ? video->SetProperty(profileCodeKey, 1, &profileCode) : RESULT_OK) < 0 ||
        (result = levelCodeKey ? video->SetProperty(levelCodeKey, 1, &levelCode) : RESULT_OK) < 0)
        return result;
    if (decoderConfiguration)
        return video->SetProperty(DecoderConfigurationKey, decoderConfiguration);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
