#pragma once

// An HEVC sequence parameter set (NAL unit type 33), read through its video
// usability information: size and display window, chroma format, bit
// depths, picture order count length, reordering, the short-term reference
// picture sets slice headers refer to, aspect ratio, colour, field coding
// and timing. Parsing allocates nothing.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>
#include <vek/elementary/HevcProfileTierLevel.h>
#include <vek/elementary/HevcShortTermRefPicSet.h>
#include <vek/elementary/SampleAspectRatio.h>

namespace Quorvex::Vek {

struct VEK_API HevcVideoUsability {
    bool aspectRatioPresent = false;
    uint8_t aspectRatioIdc = 0;
    SampleAspectRatio sampleAspectRatio;
    bool videoSignalTypePresent = false;
    uint8_t videoFormat = 5;
    bool fullRange = false;
    bool colourDescriptionPresent = false;
    uint8_t colourPrimaries = 2;
    uint8_t transferCharacteristics = 2;
    uint8_t matrixCoefficients = 2;
    bool chromaLocationPresent = false;
    uint8_t chromaSampleLocTop = 0;
    uint8_t chromaSampleLocBottom = 0;
    bool fieldSeq = false; // pictures are fields
    bool frameFieldInfoPresent = false; // picture timing messages say how
    bool defaultDisplayWindowPresent = false;
    uint32_t defaultDisplayWindow[4] = {}; // left, right, top, bottom, in chroma units
    bool timingPresent = false;
    uint32_t numUnitsInTick = 0;
    uint32_t timeScale = 0;
    bool pocProportionalToTiming = false;
    uint32_t numTicksPocDiffOne = 0;
    bool hrdPresent = false;
    bool bitstreamRestrictionPresent = false;
    uint32_t minSpatialSegmentationIdc = 0;
};

struct VEK_API HevcSequenceParameterSet {
    enum : uint32_t { MaxId = 15, MaxDimension = 16888, MaxLongTermPictures = 32 };

    uint8_t videoSetId = 0;
    uint8_t maxSubLayers = 1;
    bool temporalIdNesting = false;
    HevcProfileTierLevel profileTierLevel;
    uint32_t id = 0;
    uint32_t chromaFormatIdc = 1;
    bool separateColourPlanes = false;
    uint32_t width = 0; // coded luma samples
    uint32_t height = 0;
    bool conformanceWindowPresent = false;
    uint32_t conformanceWindow[4] = {}; // left, right, top, bottom, in chroma units
    uint32_t bitDepthLuma = 8;
    uint32_t bitDepthChroma = 8;
    uint32_t log2MaxPicOrderCntLsb = 4;
    // Per sub-layer; entries below the highest repeat it when the set codes
    // only the highest.
    uint32_t maxDecPicBuffering[7] = {};
    uint32_t maxNumReorderPics[7] = {};
    uint32_t maxLatencyIncreasePlus1[7] = {};
    uint32_t log2MinCodingBlockSize = 3;
    uint32_t log2CodingTreeBlockSize = 4;
    uint32_t log2MinTransformBlockSize = 2;
    uint32_t log2MaxTransformBlockSize = 2;
    bool scalingListEnabled = false;
    bool ampEnabled = false;
    bool sampleAdaptiveOffsetEnabled = false;
    bool pcmEnabled = false;
    uint32_t numShortTermRefPicSets = 0;
    HevcShortTermRefPicSet shortTermRefPicSets[HevcShortTermRefPicSet::MaxSetsInSequence];
    bool longTermRefPicsPresent = false;
    uint32_t numLongTermRefPicsSps = 0;
    bool temporalMvpEnabled = false;
    bool strongIntraSmoothing = false;
    bool vuiPresent = false;
    HevcVideoUsability vui;

    // Derived by Parse: the conformance window applied.
    int32_t displayLeft = 0;
    int32_t displayTop = 0;
    int32_t displayWidth = 0;
    int32_t displayHeight = 0;

    uint32_t ChromaArrayType() const { return separateColourPlanes ? 0 : chromaFormatIdc; }
    // Coding tree blocks of a picture (slice segment addresses count them).
    uint32_t PicSizeInCtbs() const;

    // Parses the unit, header included. 0, or RESULT_FORMAT_ERROR with a log
    // line naming the field; `out` is written only on success.
    static int Parse(const uint8_t* unit, size_t size, HevcSequenceParameterSet& out);
};

} // namespace Quorvex::Vek
