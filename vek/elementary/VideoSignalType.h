#pragma once

// The part of AVC and HEVC video usability information the two standards
// share word for word: the video signal type (format, range, colour
// description) and the chroma sample location. `Usability` is either
// standard's VUI struct; both name these fields alike.
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

template <typename Usability>
int ReadVideoSignalTypeAndChromaLocation(BitReader& bits, Usability& vui, const char* where)
{
    vui.videoSignalTypePresent = bits.ReadFlag();
    if (vui.videoSignalTypePresent) {
        vui.videoFormat = uint8_t(bits.ReadBits(3));
        vui.fullRange = bits.ReadFlag();
        vui.colourDescriptionPresent = bits.ReadFlag();
        if (vui.colourDescriptionPresent) {
            vui.colourPrimaries = uint8_t(bits.ReadBits(8));
            vui.transferCharacteristics = uint8_t(bits.ReadBits(8));
            vui.matrixCoefficients = uint8_t(bits.ReadBits(8));
        }
    }
    vui.chromaLocationPresent = bits.ReadFlag();
    if (vui.chromaLocationPresent) {
        const uint32_t top = bits.ReadUE();
        const uint32_t bottom = bits.ReadUE();
        if (top > 5 || bottom > 5)
            return FieldCheck::Refuse(where, "chroma_sample_loc_type", top > 5 ? top : bottom);
        vui.chromaSampleLocTop = uint8_t(top);
        vui.chromaSampleLocBottom = uint8_t(bottom);
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
