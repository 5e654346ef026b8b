#pragma once

// What a video stream's headers say about it, in codec-neutral form: the
// readers of every video coding fill one from their parameter sets and
// Apply writes it onto a track's description, so that every reader
// describes a stream with the same fields and the same keys.
//
// Facts with a field of CVideoProperties go there; the rest go to the
// description's bag under the keys below (numbers as 4 little-endian
// bytes, texts zero-terminated, the decoder configuration as its bytes).
// Zero (or empty) means "not stated" and is not written, except the range,
// which is always written: a stream that does not state it is limited.
#include <cstdint>

#include <vek/core/CByteArray.h>
#include <vek/core/RObject.h>
#include <vek/media/CVideoProperties.h>

namespace Quorvex::Vek {

struct VEK_API VideoStreamFacts {
    static const char* const CodedWidthKey; // "es.coded_width"
    static const char* const CodedHeightKey; // "es.coded_height"
    static const char* const ChromaFormatKey; // "es.chroma_format" (0 mono, 1 4:2:0, 2 4:2:2, 3 4:4:4)
    static const char* const BitDepthKey; // "es.bit_depth" (luma)
    static const char* const ChromaBitDepthKey; // "es.bit_depth_chroma"
    static const char* const ColourPrimariesKey; // "es.colour_primaries" (H.273 code)
    static const char* const TransferKey; // "es.transfer_characteristics"
    static const char* const MatrixKey; // "es.matrix_coefficients"
    static const char* const FullRangeKey; // "es.full_range" (1 byte)
    static const char* const ChromaLocationKey; // "es.chroma_location" (H.273 code + 1; 0 not stated)
    static const char* const ProfileKey; // "es.profile" (text)
    static const char* const LevelKey; // "es.level" (text)
    static const char* const TierKey; // "es.tier" (text)
    static const char* const ScanKey; // "es.scan" (text: progressive, interlaced, paff, mbaff)
    static const char* const ReorderDepthKey; // "es.reorder_depth" (pictures)
    static const char* const DecoderConfigurationKey; // "es.decoder_configuration" (avcC, hvcC ... bytes)
    // A reader setting: the frame rate of a stream that does not state
    // one, as two 4-byte little-endian integers (numerator, denominator).
    static const char* const FrameRateSettingKey; // "es.frame_rate"

    uint32_t format = 0;
    int32_t width = 0; // displayed (after cropping)
    int32_t height = 0;
    int32_t codedWidth = 0;
    int32_t codedHeight = 0;
    int64_t aspectNumerator = 0; // pixel aspect ratio
    int64_t aspectDenominator = 0;
    int32_t chromaFormat = -1; // -1 not stated
    int32_t bitDepth = 0;
    int32_t chromaBitDepth = 0;
    int64_t frameRateNumerator = 0;
    int64_t frameRateDenominator = 0;
    uint32_t fieldOrder = CVideoProperties::FieldOrderUnknown;
    int32_t colourPrimaries = 0;
    int32_t transfer = 0;
    int32_t matrix = 0;
    bool fullRange = false;
    int32_t chromaLocation = -1; // -1 not stated
    int64_t bitRate = 0;
    int32_t reorderDepth = -1; // -1 not stated
    const char* profile = nullptr; // static texts
    char level[8] = {};
    const char* tier = nullptr;
    const char* scan = nullptr;
    // Codec keys that hold the profile and level codes as one byte each
    // ("h264.profile" = profile_idc, "h264.level" = level_idc); null for none.
    const char* profileCodeKey = nullptr;
    uint8_t profileCode = 0;
    const char* levelCodeKey = nullptr;
    uint8_t levelCode = 0;
    RObject<CByteArray> decoderConfiguration;

    // Writes the facts onto `video`. 0, -19004 for null, or the failure of
    // a setter (-19003 for an impossible value, -19002 without memory).
    int Apply(CVideoProperties* video) const;
};

} // namespace Quorvex::Vek
