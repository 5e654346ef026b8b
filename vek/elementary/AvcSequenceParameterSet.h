#pragma once

// An AVC sequence parameter set (NAL unit type 7), with its video usability
// information: everything a reader needs to describe the stream (coded and
// display size, chroma format, bit depth, aspect ratio, colour, frame rate,
// field structure, reordering depth) and what slice headers and picture
// order counting depend on. Parsing allocates nothing.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/SampleAspectRatio.h>

namespace Quorvex::Vek {

struct VEK_API AvcVideoUsability {
    bool aspectRatioPresent = false;
    uint8_t aspectRatioIdc = 0;
    SampleAspectRatio sampleAspectRatio; // 0:0 when unknown
    bool overscanPresent = false;
    bool overscanAppropriate = false;
    bool videoSignalTypePresent = false;
    uint8_t videoFormat = 5; // unspecified
    bool fullRange = false;
    bool colourDescriptionPresent = false;
    uint8_t colourPrimaries = 2; // 2: unspecified
    uint8_t transferCharacteristics = 2;
    uint8_t matrixCoefficients = 2;
    bool chromaLocationPresent = false;
    uint8_t chromaSampleLocTop = 0;
    uint8_t chromaSampleLocBottom = 0;
    bool timingPresent = false;
    uint32_t numUnitsInTick = 0;
    uint32_t timeScale = 0;
    bool fixedFrameRate = false;
    bool nalHrdPresent = false;
    bool vclHrdPresent = false;
    // Field lengths of the picture timing message, from the hypothetical
    // reference decoder parameters (meaningful when either HRD is present).
    uint8_t cpbRemovalDelayBits = 24;
    uint8_t dpbOutputDelayBits = 24;
    uint8_t timeOffsetBits = 24;
    bool lowDelayHrd = false;
    bool picStructPresent = false;
    bool bitstreamRestrictionPresent = false;
    uint32_t maxNumReorderFrames = 0;
    uint32_t maxDecFrameBuffering = 0;
};

struct VEK_API AvcSequenceParameterSet {
    enum : uint32_t { MaxId = 31, MaxRefFrames = 16, MaxMacroblocksAcross = 4096 };

    uint8_t profileIdc = 0;
    uint8_t constraintFlags = 0; // constraint_set0..5 and the two reserved bits, as stored
    uint8_t levelIdc = 0;
    uint32_t id = 0;
    uint32_t chromaFormatIdc = 1; // 0 monochrome, 1 4:2:0, 2 4:2:2, 3 4:4:4
    bool separateColourPlanes = false;
    uint32_t bitDepthLuma = 8;
    uint32_t bitDepthChroma = 8;
    bool transformBypass = false;
    bool scalingMatrixPresent = false;
    uint32_t log2MaxFrameNum = 4;
    uint32_t picOrderCntType = 0;
    uint32_t log2MaxPicOrderCntLsb = 4; // type 0
    bool deltaPicOrderAlwaysZero = false; // type 1
    int32_t offsetForNonRefPic = 0;
    int32_t offsetForTopToBottomField = 0;
    uint32_t numRefFramesInPicOrderCntCycle = 0;
    int32_t offsetForRefFrame[255] = {};
    uint32_t maxNumRefFrames = 0;
    bool gapsInFrameNumAllowed = false;
    uint32_t widthInMacroblocks = 0;
    uint32_t heightInMapUnits = 0;
    bool frameMbsOnly = true; // false: fields (PAFF) and perhaps MBAFF
    bool mbAdaptiveFrameField = false;
    bool direct8x8Inference = false;
    bool croppingPresent = false;
    uint32_t cropLeft = 0; // in crop units, as coded
    uint32_t cropRight = 0;
    uint32_t cropTop = 0;
    uint32_t cropBottom = 0;
    bool vuiPresent = false;
    AvcVideoUsability vui;

    // Derived values, filled by Parse.
    int32_t codedWidth = 0; // luma samples of the whole frame
    int32_t codedHeight = 0;
    int32_t displayLeft = 0; // the cropping applied
    int32_t displayTop = 0;
    int32_t displayWidth = 0;
    int32_t displayHeight = 0;

    // 0 for separate colour planes (each coded as monochrome), else chromaFormatIdc.
    uint32_t ChromaArrayType() const { return separateColourPlanes ? 0 : chromaFormatIdc; }
    int32_t HeightInMapUnitsToMacroblocks() const { return frameMbsOnly ? 1 : 2; }

    // Parses the whole unit, its one-byte NAL header included. 0, or
    // RESULT_FORMAT_ERROR (with a log line naming the field) for a unit that
    // is not a sequence parameter set, is truncated or holds a value out of
    // range. `out` is written only on success.
    static int Parse(const uint8_t* unit, size_t size, AvcSequenceParameterSet& out);
};

} // namespace Quorvex::Vek
