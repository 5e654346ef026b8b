#pragma once

// A video filter's table of supported conversions: each entry is an input
// half and an output half describing a video medium in eleven 32-bit
// fields. A zero field is a wildcard, except the format (see
// MatchesVideoConfiguration). A table ends with an entry whose input and
// output formats are both zero.
//
// Subsampling is packed as horizontal factor x 256 + vertical factor
// (VideoSubsampling(2, 2) is 4:2:0), matching CVideoProperties's two factors.
#include <vek/media/CVideoProperties.h>

namespace Quorvex::Vek {

struct VideoConfigurationHalf {
    uint32_t width;
    uint32_t height;
    uint32_t pixelAspectNumerator;
    uint32_t pixelAspectDenominator;
    uint32_t subsampling;
    uint32_t colorSpace;
    uint32_t frameRateNumerator;
    uint32_t frameRateDenominator;
    uint32_t fieldOrder;
    uint32_t bitRate; // read as signed 32 bits
    uint32_t format;
};

struct VideoConfigurationMap {
    VideoConfigurationHalf input;
    VideoConfigurationHalf output;
};

constexpr uint32_t VideoSubsampling(uint32_t horizontal, uint32_t vertical)
{
    return horizontal << 8 | vertical;
}

// A half with only the format set: every other fact is a wildcard.
constexpr VideoConfigurationHalf VideoConfigurationFormat(uint32_t format)
{
    return {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, format};
}

inline bool IsVideoConfigurationEnd(const VideoConfigurationMap& entry)
{
    return entry.input.format == 0 && entry.output.format == 0;
}

// True when no field of `half` contradicts `description` (a null description
// reads as all zero). A field contradicts only when both values are non-zero
// and differ; frame rates given in full on both sides are compared as
// quotients and contradict when they differ by more than 0.01; the bit rate
// is the table's signed 32 bits against the description's 64. The format is
// strict: a non-zero table format must equal the description's, even when
// that is zero.
VEK_API bool MatchesVideoConfiguration(const VideoConfigurationHalf& half, const CVideoProperties* description);

} // namespace Quorvex::Vek
