#pragma once

// The HEVC decoder configuration record ('hvcC' in MP4, the codec private
// data of Matroska): general profile, tier and level, chroma format, bit
// depths, NAL length size and the parameter set arrays. Parsing points into
// the record's bytes, so the record must outlive the parsed object; writing
// produces the record from the same fields.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/HevcProfileTierLevel.h>

namespace Quorvex::Vek {

struct VEK_API HevcDecoderConfiguration {
    // Records with more units than this are refused (typical ones hold 3).
    enum : uint32_t { MaxUnits = 64 };

    struct Unit {
        const uint8_t* data = nullptr;
        uint16_t size = 0;
        uint8_t type = 0; // the NAL unit type of its array
        bool arrayComplete = false; // of its array
    };

    HevcProfileTierLevel profileTierLevel; // general part only
    uint16_t minSpatialSegmentationIdc = 0;
    uint8_t parallelismType = 0;
    uint8_t chromaFormatIdc = 1;
    uint8_t bitDepthLuma = 8;
    uint8_t bitDepthChroma = 8;
    uint16_t averageFrameRate = 0; // frames per 256 seconds, 0 unknown
    uint8_t constantFrameRate = 0;
    uint8_t numTemporalLayers = 0;
    bool temporalIdNested = false;
    uint8_t lengthBytes = 4; // 1, 2 or 4
    // Units in record order; units of one type form one array when written.
    uint32_t unitCount = 0;
    Unit units[MaxUnits];

    // 0, or RESULT_FORMAT_ERROR with a log line for a truncated record, a
    // version other than 1, a 3-byte length size, a unit past the end or
    // more than MaxUnits units.
    static int Parse(const uint8_t* record, size_t size, HevcDecoderConfiguration& out);

    // The size Write needs; 0 when a field cannot be stored.
    size_t WrittenSize() const;
    // RESULT_ARGUMENT_OUT_OF_RANGE when `capacity` is below WrittenSize() or
    // a field cannot be stored; else 0 and `written`.
    int Write(uint8_t* out, size_t capacity, size_t& written) const;
};

} // namespace Quorvex::Vek
