#pragma once

// Conversions of the common layout pairs straight from input to output, for
// a conversion that keeps every channel where it is (the sample stream is
// then flat). They give exactly what the general path through doubles gives
// (PcmSampleCodec.h), only faster:
// - the same layout: a copy, as PcmConversion defines it; the same layout
//   in the other byte order: a byte swap of every sample;
// - 16-, 24- and 32-bit signed little-endian integers to one another:
//   widening shifts left, narrowing rounds to nearest (ties to even) and
//   clips the one value that rounds past positive full scale;
// - those integers to and from 32-bit little-endian float: x / 2^(bits-1)
//   one way, scale, round to nearest (ties to even), clip, NaN to 0 the
//   other.
// The integer loops are written for the compiler to vectorise; float to
// integer uses SSE2 where the target has it (every x86-64), with a plain
// loop elsewhere and for the tail. Nothing allocates.
//
// Internal to the library.
#include <cstddef>
#include <cstdint>

#include <vek/filters/audio/PcmLayout.h>

namespace Quorvex::Vek::PcmDirectKernels {

using Kernel = void (*)(const uint8_t* in, uint8_t* out, size_t samples);

// Null when the pair has no direct kernel on this machine.
Kernel Find(const PcmLayout& input, const PcmLayout& output);

} // namespace Quorvex::Vek::PcmDirectKernels
