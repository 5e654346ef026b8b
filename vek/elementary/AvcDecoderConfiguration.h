#pragma once

// The AVC decoder configuration record ('avcC' in MP4, the codec private
// data of Matroska): profile, level, NAL length size and the parameter sets.
// Parsing points into the record's bytes instead of copying them, so the
// record must outlive the parsed object. Writing produces the record from
// the same fields.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct VEK_API AvcDecoderConfiguration {
    enum : uint32_t { MaxSequenceSets = 31, MaxPictureSets = 255, MaxExtensionSets = 255 };

    struct Unit {
        const uint8_t* data = nullptr;
        uint16_t size = 0;
    };

    uint8_t profileIdc = 0;
    uint8_t profileCompatibility = 0;
    uint8_t levelIdc = 0;
    uint8_t lengthBytes = 4; // 1, 2 or 4
    uint32_t sequenceSetCount = 0;
    Unit sequenceSets[MaxSequenceSets];
    uint32_t pictureSetCount = 0;
    Unit pictureSets[MaxPictureSets];
    // The extension of the high profiles (100, 110, 122, 244); records of
    // other writers sometimes lack it even there.
    bool hasHighProfileExtension = false;
    uint8_t chromaFormatIdc = 1;
    uint8_t bitDepthLuma = 8;
    uint8_t bitDepthChroma = 8;
    uint32_t extensionSetCount = 0;
    Unit extensionSets[MaxExtensionSets];

    // 0, or RESULT_FORMAT_ERROR with a log line for a record that is
    // truncated, has a version other than 1, a 3-byte length size or a unit
    // length past its end. Bytes after the last field are ignored.
    static int Parse(const uint8_t* record, size_t size, AvcDecoderConfiguration& out);

    // The size Write needs; 0 when a count or unit size cannot be stored.
    size_t WrittenSize() const;
    // Writes the record; RESULT_ARGUMENT_OUT_OF_RANGE when `capacity` is
    // below WrittenSize() or a field cannot be stored, else 0 and `written`.
    int Write(uint8_t* out, size_t capacity, size_t& written) const;

    static bool IsHighProfile(uint8_t profile) { return profile == 100 || profile == 110 || profile == 122 || profile == 244; }
};

} // namespace Quorvex::Vek
