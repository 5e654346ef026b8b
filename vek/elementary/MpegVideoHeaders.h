#pragma once

// MPEG-1 and MPEG-2 video headers: the sequence header and its extensions,
// the group-of-pictures header, the picture header and the picture coding
// extension. Each Parse takes the bytes after a start code (00 00 01 xx)
// up to the next one, reads only what it needs and never past `size`.
//
// The sequence description (MpegVideoSequence) gives what a reader puts in
// CVideoProperties: size, frame rate, sample and display aspect, chroma
// format; the picture headers give what access units need: picture type,
// temporal reference, structure and field order, GOP boundaries.
//
// Results: 0, RESULT_FORMAT_ERROR (-19017) with a log line naming the field
// and value (forbidden and reserved values, a missing marker bit, too few
// bytes), RESULT_ARGUMENT_NULL. Nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

namespace MpegVideoStartCode {
enum : uint8_t {
    Picture = 0x00,
    FirstSlice = 0x01,
    LastSlice = 0xAF,
    UserData = 0xB2,
    SequenceHeader = 0xB3,
    SequenceError = 0xB4,
    Extension = 0xB5,
    SequenceEnd = 0xB7,
    GroupOfPictures = 0xB8,
};
}

// The offset of the next 00 00 01 prefix at or after `from`, or `size`
// when there is none.
VEK_API size_t FindMpegStartCode(const uint8_t* bytes, size_t size, size_t from);

struct VEK_API MpegVideoSequenceHeader {
    uint16_t width = 0; // the low 12 bits; the sequence extension adds two more
    uint16_t height = 0;
    uint8_t aspectRatioInformation = 0;
    uint8_t frameRateCode = 0;
    uint32_t bitRateValue = 0; // units of 400 bit/s; 0x3FFFF in MPEG-1: variable
    uint16_t vbvBufferSizeValue = 0; // units of 16 kbit
    bool constrainedParameters = false;
    bool loadIntraQuantiserMatrix = false;
    bool loadNonIntraQuantiserMatrix = false;

    static int Parse(const uint8_t* payload, size_t size, MpegVideoSequenceHeader& out);
};

// Which extension an extension start code introduces (its first 4 bits);
// -19017 for fewer than one byte.
VEK_API int MpegVideoExtensionId(const uint8_t* payload, size_t size);

namespace MpegVideoExtension {
enum : uint8_t { Sequence = 1, SequenceDisplay = 2, QuantMatrix = 3, PictureDisplay = 7, PictureCoding = 8 };
}

struct VEK_API MpegVideoSequenceExtension {
    uint8_t profileAndLevel = 0;
    bool progressiveSequence = false;
    uint8_t chromaFormat = 1; // 1 4:2:0, 2 4:2:2, 3 4:4:4
    uint8_t horizontalSizeExtension = 0;
    uint8_t verticalSizeExtension = 0;
    uint16_t bitRateExtension = 0;
    uint8_t vbvBufferSizeExtension = 0;
    bool lowDelay = false;
    uint8_t frameRateExtensionN = 0;
    uint8_t frameRateExtensionD = 0;

    uint8_t Profile() const { return uint8_t(profileAndLevel >> 4 & 7); }
    uint8_t Level() const { return uint8_t(profileAndLevel & 15); }
    static int Parse(const uint8_t* payload, size_t size, MpegVideoSequenceExtension& out);
};

struct VEK_API MpegVideoSequenceDisplayExtension {
    uint8_t videoFormat = 5; // 5: unspecified
    bool colourDescription = false;
    uint8_t colourPrimaries = 2, transferCharacteristics = 2, matrixCoefficients = 2; // 2: unspecified
    uint16_t displayWidth = 0;
    uint16_t displayHeight = 0;

    static int Parse(const uint8_t* payload, size_t size, MpegVideoSequenceDisplayExtension& out);
};

// A sequence header with the extensions that follow it: MPEG-2 when the
// sequence extension is there, MPEG-1 otherwise.
struct VEK_API MpegVideoSequence {
    MpegVideoSequenceHeader header;
    bool mpeg2 = false;
    MpegVideoSequenceExtension extension;
    bool hasDisplayExtension = false;
    MpegVideoSequenceDisplayExtension display;

    int32_t Width() const;
    int32_t Height() const;
    int64_t BitRate() const; // bits per second
    int64_t VbvBufferBits() const;
    uint8_t ChromaFormat() const { return mpeg2 ? extension.chromaFormat : 1; }
    // Frames per second as a fraction, the MPEG-2 extension applied.
    // -19017 for a forbidden or reserved frame_rate_code.
    int GetFrameRate(int32_t& numerator, int32_t& denominator) const;
    // The shape of one sample, and of the whole picture. MPEG-1 codes the
    // sample shape (pel aspect ratio), MPEG-2 the picture's (display aspect
    // of the display size, or the coded size without a display extension).
    // Reduced fractions; -19017 for forbidden or reserved codes.
    int GetSampleAspectRatio(int32_t& numerator, int32_t& denominator) const;
    int GetDisplayAspectRatio(int32_t& numerator, int32_t& denominator) const;
};

struct VEK_API MpegVideoGopHeader {
    bool dropFrame = false;
    uint8_t hours = 0, minutes = 0, seconds = 0, pictures = 0;
    bool closedGop = false;
    bool brokenLink = false;

    static int Parse(const uint8_t* payload, size_t size, MpegVideoGopHeader& out);
};

enum class MpegPictureType : uint8_t { I = 1, P = 2, B = 3, D = 4 };

struct VEK_API MpegVideoPictureHeader {
    uint16_t temporalReference = 0;
    MpegPictureType type = MpegPictureType::I;
    uint16_t vbvDelay = 0;
    bool fullPelForwardVector = false;
    uint8_t forwardFCode = 0;
    bool fullPelBackwardVector = false;
    uint8_t backwardFCode = 0;

    static int Parse(const uint8_t* payload, size_t size, MpegVideoPictureHeader& out);
};

enum class MpegPictureStructure : uint8_t { TopField = 1, BottomField = 2, Frame = 3 };

struct VEK_API MpegVideoPictureCodingExtension {
    uint8_t fCode[2][2] = {}; // [forward, backward][horizontal, vertical]
    uint8_t intraDcPrecision = 0; // 8 + this many bits
    MpegPictureStructure structure = MpegPictureStructure::Frame;
    bool topFieldFirst = false;
    bool framePredFrameDct = false;
    bool concealmentMotionVectors = false;
    bool qScaleType = false;
    bool intraVlcFormat = false;
    bool alternateScan = false;
    bool repeatFirstField = false;
    bool chroma420Type = false;
    bool progressiveFrame = false;
    bool compositeDisplay = false;

    static int Parse(const uint8_t* payload, size_t size, MpegVideoPictureCodingExtension& out);
};

} // namespace Quorvex::Vek
