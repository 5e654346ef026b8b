#include <vek/containers/readers/elementary/SequenceFacts.h>

#include <cstdio>
#include <numeric>

#include <vek/core/Log.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek::SequenceFacts {

namespace {

// The profile as ffprobe and most tools name it.
const char* AvcProfileName(const AvcSequenceParameterSet& sps)
{
    const bool constraint1 = (sps.constraintFlags & 0x40) != 0;
    const bool constraint3 = (sps.constraintFlags & 0x10) != 0;
    switch (sps.profileIdc) {
    case 66: return constraint1 ? "Constrained Baseline" : "Baseline";
    case 77: return "Main";
    case 88: return "Extended";
    case 100: return "High";
    case 110: return constraint3 ? "High 10 Intra" : "High 10";
    case 122: return constraint3 ? "High 4:2:2 Intra" : "High 4:2:2";
    case 244: return constraint3 ? "High 4:4:4 Intra" : "High 4:4:4 Predictive";
    case 44: return "CAVLC 4:4:4";
    default: return "Unknown";
    }
}

// "3.1"; level 1b (level_idc 11 with constraint_set3 in the baseline and
// main profiles, or 9) reads "1b".
void AvcLevelText(const AvcSequenceParameterSet& sps, char (&text)[8])
{
    const bool oneB = sps.levelIdc == 9 ||
                      (sps.levelIdc == 11 && (sps.constraintFlags & 0x10) != 0 && (sps.profileIdc == 66 || sps.profileIdc == 77));
    if (oneB)
        std::snprintf(text, sizeof text, "1b");
    else
        std::snprintf(text, sizeof text, "%u.%u", sps.levelIdc / 10u, sps.levelIdc % 10u);
}

const char* HevcProfileName(uint8_t profileIdc)
{
    switch (profileIdc) {
    case 1: return "Main";
    case 2: return "Main 10";
    case 3: return "Main Still Picture";
    case 4: return "Rext";
    case 5: return "High Throughput 4:4:4";
    case 9: return "SCC";
    default: return nullptr;
    }
}

// "4", "5.1": the level number is the level code over 30.
void HevcLevelText(uint8_t levelIdc, char (&text)[8])
{
    if (levelIdc % 30 == 0)
        std::snprintf(text, sizeof text, "%d", levelIdc / 30);
    else
        std::snprintf(text, sizeof text, "%d.%d", levelIdc / 30, levelIdc % 30 / 3);
}

const char* MpegVideoProfileName(uint8_t profileAndLevel)
{
    if (profileAndLevel == 0x82 || profileAndLevel == 0x85)
        return "4:2:2";
    if (profileAndLevel & 0x80)
        return nullptr; // multi-view and other escaped codes
    switch (profileAndLevel >> 4 & 7) {
    case 1: return "High";
    case 2: return "Spatially Scalable";
    case 3: return "SNR Scalable";
    case 4: return "Main";
    case 5: return "Simple";
    default: return nullptr;
    }
}

// The usual short names: they fit the level text of the stream facts.
const char* MpegVideoLevelName(uint8_t profileAndLevel)
{
    if (profileAndLevel == 0x82)
        return "HL";
    if (profileAndLevel == 0x85)
        return "ML";
    if (profileAndLevel & 0x80)
        return nullptr;
    switch (profileAndLevel & 15) {
    case 4: return "HL";
    case 6: return "H-14";
    case 8: return "ML";
    case 10: return "LL";
    default: return nullptr;
    }
}

int32_t RoundUp(int32_t value, int32_t multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

} // namespace

void DescribeAvc(const AvcSequenceParameterSet& sps, VideoStreamFacts& facts)
{
    const AvcVideoUsability& vui = sps.vui;
    facts.format = VideoFormat::H264;
    facts.width = sps.displayWidth;
    facts.height = sps.displayHeight;
    facts.codedWidth = sps.codedWidth;
    facts.codedHeight = sps.codedHeight;
    facts.aspectNumerator = vui.sampleAspectRatio.width;
    facts.aspectDenominator = vui.sampleAspectRatio.height;
    facts.chromaFormat = int32_t(sps.chromaFormatIdc);
    facts.bitDepth = int32_t(sps.bitDepthLuma);
    facts.chromaBitDepth = int32_t(sps.bitDepthChroma);
    if (vui.timingPresent && vui.numUnitsInTick > 0 && vui.timeScale > 0) {
        // A tick is one field: a frame lasts two.
        facts.frameRateNumerator = vui.timeScale;
        facts.frameRateDenominator = 2 * int64_t(vui.numUnitsInTick);
    }
    facts.fieldOrder = sps.frameMbsOnly ? CVideoProperties::FieldOrderProgressive : CVideoProperties::FieldOrderUnknown;
    if (vui.colourDescriptionPresent) {
        facts.colourPrimaries = vui.colourPrimaries;
        facts.transfer = vui.transferCharacteristics;
        facts.matrix = vui.matrixCoefficients;
    }
    facts.fullRange = vui.videoSignalTypePresent && vui.fullRange;
    if (vui.chromaLocationPresent)
        facts.chromaLocation = vui.chromaSampleLocTop;
    if (vui.bitstreamRestrictionPresent)
        facts.reorderDepth = int32_t(vui.maxNumReorderFrames);
    facts.profile = AvcProfileName(sps);
    AvcLevelText(sps, facts.level);
    facts.scan = sps.frameMbsOnly ? "progressive" : sps.mbAdaptiveFrameField ? "mbaff" : "paff";
    facts.profileCodeKey = VideoProperty::H264Profile;
    facts.profileCode = sps.profileIdc;
    facts.levelCodeKey = VideoProperty::H264Level;
    facts.levelCode = sps.levelIdc;
}

void DescribeHevc(const char* owner, const HevcSequenceParameterSet& sps, VideoStreamFacts& facts)
{
    const HevcVideoUsability& vui = sps.vui;
    facts.format = VideoFormat::H265;
    facts.width = sps.displayWidth;
    facts.height = sps.displayHeight;
    facts.codedWidth = int32_t(sps.width);
    facts.codedHeight = int32_t(sps.height);
    facts.chromaFormat = int32_t(sps.chromaFormatIdc);
    facts.bitDepth = int32_t(sps.bitDepthLuma);
    facts.chromaBitDepth = int32_t(sps.bitDepthChroma);
    facts.reorderDepth = int32_t(sps.maxNumReorderPics[sps.maxSubLayers - 1]);
    facts.profile = HevcProfileName(sps.profileTierLevel.profileIdc);
    facts.tier = sps.profileTierLevel.highTier ? "High" : "Main";
    HevcLevelText(sps.profileTierLevel.levelIdc, facts.level);
    facts.scan = sps.vuiPresent && vui.fieldSeq ? "interlaced" : "progressive";
    if (!sps.vuiPresent)
        return;
    if (vui.aspectRatioPresent && vui.sampleAspectRatio.width > 0 && vui.sampleAspectRatio.height > 0) {
        facts.aspectNumerator = vui.sampleAspectRatio.width;
        facts.aspectDenominator = vui.sampleAspectRatio.height;
    }
    if (vui.colourDescriptionPresent) {
        facts.colourPrimaries = vui.colourPrimaries;
        facts.transfer = vui.transferCharacteristics;
        facts.matrix = vui.matrixCoefficients;
    }
    facts.fullRange = vui.videoSignalTypePresent && vui.fullRange;
    if (vui.chromaLocationPresent)
        facts.chromaLocation = vui.chromaSampleLocTop;
    if (vui.timingPresent && vui.timeScale > 0 && vui.numUnitsInTick > 0) {
        // A tick is a picture; a stream of fields ticks at the field rate.
        const uint64_t divisor = std::gcd(uint64_t(vui.timeScale), uint64_t(vui.numUnitsInTick) * (vui.fieldSeq ? 2 : 1));
        facts.frameRateNumerator = int64_t(vui.timeScale / divisor);
        facts.frameRateDenominator = int64_t(uint64_t(vui.numUnitsInTick) * (vui.fieldSeq ? 2 : 1) / divisor);
    } else if (vui.timingPresent) {
        Log(LogLevel::Warning, "%s: vui_time_scale %u over vui_num_units_in_tick %u is no frame rate; ignored\n", owner,
            vui.timeScale, vui.numUnitsInTick);
    }
}

void DescribeMpeg4Video(const Mpeg4VideoObjectLayer& layer, const Mpeg4VisualObject* object, VideoStreamFacts& facts)
{
    facts.format = VideoFormat::MPEG4;
    facts.width = layer.width;
    facts.height = layer.height;
    int32_t numerator = 0;
    int32_t denominator = 0;
    if (layer.GetSampleAspectRatio(numerator, denominator) >= 0) {
        facts.aspectNumerator = numerator;
        facts.aspectDenominator = denominator;
    }
    if (layer.fixedVopRate && layer.GetFrameRate(numerator, denominator) >= 0) {
        facts.frameRateNumerator = numerator;
        facts.frameRateDenominator = denominator;
    }
    facts.chromaFormat = layer.chromaFormat;
    facts.bitDepth = 8;
    facts.chromaBitDepth = 8;
    facts.fieldOrder = layer.interlaced ? CVideoProperties::FieldOrderUnknown : CVideoProperties::FieldOrderProgressive;
    facts.scan = layer.interlaced ? "interlaced" : "progressive";
    facts.reorderDepth = layer.lowDelay ? 0 : -1;
    if (layer.hasVbvParameters)
        facts.bitRate = int64_t(layer.bitRate) * 400;
    if (object && object->videoSignalType) {
        facts.fullRange = object->fullRange;
        if (object->colourDescription) {
            facts.colourPrimaries = object->colourPrimaries;
            facts.transfer = object->transferCharacteristics;
            facts.matrix = object->matrixCoefficients;
        }
    }
}

int DescribeMpegVideo(const char* owner, const MpegVideoSequence& sequence, VideoStreamFacts& facts)
{
    const bool interlacedSequence = sequence.mpeg2 && !sequence.extension.progressiveSequence;
    facts.format = sequence.mpeg2 ? VideoFormat::MPEG2 : VideoFormat::MPEG1;
    facts.width = sequence.Width();
    facts.height = sequence.Height();
    facts.codedWidth = RoundUp(facts.width, 16);
    facts.codedHeight = RoundUp(facts.height, interlacedSequence ? 32 : 16);
    int32_t numerator = 0, denominator = 0;
    if (sequence.GetSampleAspectRatio(numerator, denominator) >= 0) {
        facts.aspectNumerator = numerator;
        facts.aspectDenominator = denominator;
    } else {
        Log(LogLevel::Warning, "%s: aspect_ratio_information %u left unstated\n", owner,
            unsigned(sequence.header.aspectRatioInformation));
    }
    const int result = sequence.GetFrameRate(numerator, denominator);
    if (result < 0)
        return result;
    facts.frameRateNumerator = numerator;
    facts.frameRateDenominator = denominator;
    facts.chromaFormat = sequence.ChromaFormat();
    facts.bitDepth = 8;
    facts.chromaBitDepth = 8;
    // MPEG-1 puts 4:2:0 chroma between the luma samples, MPEG-2 beside the
    // left one; 4:2:2 and 4:4:4 chroma rows are those of the luma.
    facts.chromaLocation = !sequence.mpeg2 ? 1 : facts.chromaFormat == 1 ? 0 : 2;
    // 0x3FFFF in an MPEG-1 header marks a variable bit rate.
    facts.bitRate = !sequence.mpeg2 && sequence.header.bitRateValue == 0x3FFFF ? 0 : sequence.BitRate();
    facts.fieldOrder = interlacedSequence ? CVideoProperties::FieldOrderUnknown : CVideoProperties::FieldOrderProgressive;
    facts.scan = interlacedSequence ? "interlaced" : "progressive";
    if (sequence.hasDisplayExtension && sequence.display.colourDescription) {
        facts.colourPrimaries = sequence.display.colourPrimaries;
        facts.transfer = sequence.display.transferCharacteristics;
        facts.matrix = sequence.display.matrixCoefficients;
    }
    if (sequence.mpeg2) {
        facts.profile = MpegVideoProfileName(sequence.extension.profileAndLevel);
        if (const char* level = MpegVideoLevelName(sequence.extension.profileAndLevel))
            std::snprintf(facts.level, sizeof facts.level, "%s", level);
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek::SequenceFacts
