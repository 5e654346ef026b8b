#pragma once

// G.711 companding: A-law and mu-law codes to and from 16-bit linear PCM.
//
// Decoding gives the midpoint of a code's quantisation interval, scaled to
// 16 bits (A-law values are multiples of 8, mu-law values of 4). Encoding
// takes the interval that holds the input: the 16-bit value is cut to the
// coder's 13 (A-law) or 14 (mu-law) bits, the segment found from its
// highest set bit, and the mantissa taken from the bits below it, as the
// G.711 tables and the classic reference coders (sox, audioop) do. Negative
// A-law inputs are coded from their one's complement, so -1 and 0 meet the
// two smallest codes of either sign. mu-law clips magnitudes above 8159
// (14-bit) to the largest code.
#include <cstdint>

#include <vek/core/Types.h>

namespace Quorvex::Vek::G711 {

VEK_API int16_t DecodeALaw(uint8_t code);
VEK_API int16_t DecodeMuLaw(uint8_t code);
VEK_API uint8_t EncodeALaw(int16_t linear);
VEK_API uint8_t EncodeMuLaw(int16_t linear);

} // namespace Quorvex::Vek::G711
