#pragma once

// MPEG-4 visual (the .m4v, DivX and Xvid syntax) stream headers: the visual
// object sequence, the visual object, the video object layer and the header
// of each video object plane (VOP). Each Parse takes the bytes after a start
// code (00 00 01 xx) up to the next one and never reads past `size`.
//
// Only rectangular layers are accepted; layers with binary or grey-scale
// shape are refused. The layer is read up to its sprite mode: enough for
// size, aspect, timing, interlacing and for reading VOP headers.
//
// Results: 0, RESULT_FORMAT_ERROR (-19017) with a log line naming the field
// and value, RESULT_NOT_SUPPORTED (-19006) for shapes other than
// rectangular, RESULT_ARGUMENT_NULL. Nothing is allocated.
#include <cstddef>
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek {

namespace Mpeg4VideoStartCode {
enum : uint8_t {
    FirstVideoObject = 0x00,
    LastVideoObject = 0x1F,
    FirstVideoObjectLayer = 0x20,
    LastVideoObjectLayer = 0x2F,
    VisualObjectSequence = 0xB0,
    VisualObjectSequenceEnd = 0xB1,
    UserData = 0xB2,
    GroupOfVop = 0xB3,
    VisualObject = 0xB5,
    Vop = 0xB6,
};
}

struct VEK_API Mpeg4VisualObjectSequence {
    uint8_t profileAndLevel = 0;
    static int Parse(const uint8_t* payload, size_t size, Mpeg4VisualObjectSequence& out);
};

struct VEK_API Mpeg4VisualObject {
    bool hasIdentifier = false;
    uint8_t verid = 1;
    uint8_t priority = 0;
    uint8_t type = 1; // 1 video, 2 still texture, 3 mesh, 4 face
    bool videoSignalType = false;
    uint8_t videoFormat = 5;
    bool fullRange = false;
    bool colourDescription = false;
    uint8_t colourPrimaries = 1, transferCharacteristics = 1, matrixCoefficients = 1;

    static int Parse(const uint8_t* payload, size_t size, Mpeg4VisualObject& out);
};

struct VEK_API Mpeg4VideoObjectLayer {
    bool randomAccessible = false;
    uint8_t objectType = 0; // video_object_type_indication
    bool hasIdentifier = false;
    uint8_t verid = 1; // the layer's own, or the visual object's
    uint8_t priority = 0;
    uint8_t aspectRatioInfo = 1;
    uint8_t parWidth = 0, parHeight = 0; // aspectRatioInfo 15
    bool hasControlParameters = false;
    uint8_t chromaFormat = 1; // 4:2:0, the only one defined
    bool lowDelay = false;
    bool hasVbvParameters = false;
    uint32_t bitRate = 0; // units of 400 bit/s
    uint32_t vbvBufferSize = 0; // units of 16384 bits
    uint32_t vbvOccupancy = 0; // units of 64 bits
    uint16_t timeIncrementResolution = 0; // ticks per second
    uint8_t timeIncrementBits = 0; // bits of vop_time_increment
    bool fixedVopRate = false;
    uint16_t fixedVopTimeIncrement = 0;
    uint16_t width = 0;
    uint16_t height = 0;
    bool interlaced = false;
    bool obmcDisabled = false;
    uint8_t spriteEnable = 0; // 0 none, 1 static, 2 global motion compensation

    // `visualObjectVerid` applies when the layer has no identifier of its own.
    static int Parse(const uint8_t* payload, size_t size, Mpeg4VideoObjectLayer& out, uint8_t visualObjectVerid = 1);

    // Reduced fractions: the sample shape; frames per second (fixed-rate
    // layers only, -19017 otherwise).
    int GetSampleAspectRatio(int32_t& numerator, int32_t& denominator) const;
    int GetFrameRate(int32_t& numerator, int32_t& denominator) const;
};

enum class Mpeg4VopType : uint8_t { I = 0, P = 1, B = 2, S = 3 };

struct VEK_API Mpeg4VopHeader {
    Mpeg4VopType type = Mpeg4VopType::I;
    uint32_t moduloTimeBase = 0; // whole seconds since the previous reference VOP's second
    uint16_t timeIncrement = 0; // ticks of the layer's resolution
    bool coded = true; // false: the VOP repeats its reference

    // Reads the header with the layer's time-increment width.
    static int Parse(const uint8_t* payload, size_t size, const Mpeg4VideoObjectLayer& layer, Mpeg4VopHeader& out);
};

} // namespace Quorvex::Vek
