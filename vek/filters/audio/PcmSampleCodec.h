#pragma once

// The general path of a PCM conversion: any layout decoded to doubles (the
// fraction of full scale that PcmLayout.h describes) and encoded back. Every
// value of every layout is exact in a double, so a conversion through one
// rounds once, when it is encoded:
// - to an integer layout (and to the 16-bit value a G.711 code is made
//   from) by scaling by 2^(bits-1), rounding to nearest with ties to even,
//   and clipping to [-2^(bits-1), 2^(bits-1) - 1]; NaN gives 0;
// - to 32-bit float by the usual rounding of double to float.
// Rounding follows the floating-point environment, which the library
// expects to be the default one (round to nearest).
//
// Internal to the library.
#include <cstddef>
#include <cstdint>

#include <vek/filters/audio/PcmLayout.h>

namespace Quorvex::Vek::PcmSampleCodec {

using DecodeFunction = void (*)(const uint8_t* in, double* out, size_t count);
using EncodeFunction = void (*)(const double* in, uint8_t* out, size_t count);

// Null for a layout PcmLayout::FromFormat does not make.
DecodeFunction FindDecoder(const PcmLayout& layout);
EncodeFunction FindEncoder(const PcmLayout& layout);

} // namespace Quorvex::Vek::PcmSampleCodec
