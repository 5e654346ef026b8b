#pragma once

// Vector forms of the busiest direct kernels (PcmDirectKernels.h) for x86
// processors with AVX2, chosen at run time: 16-, 24- and 32-bit signed
// little-endian integers to and from one another and to and from 32-bit
// little-endian float, and the 16- and 32-bit byte swaps. A bulk kernel
// converts the longest run of whole blocks of 8 or 16 samples from the
// start that it can without touching memory past either buffer, and returns
// how many samples it did; the direct kernel of the pair does the rest. Both
// give the same bytes.
//
// Internal to the library.
#include <cstddef>
#include <cstdint>

#include <vek/filters/audio/PcmLayout.h>

namespace Quorvex::Vek::PcmVectorKernels {

using BulkKernel = size_t (*)(const uint8_t* in, uint8_t* out, size_t samples);

// Null when the pair has none, or the processor or the build has no AVX2.
BulkKernel Find(const PcmLayout& input, const PcmLayout& output);

} // namespace Quorvex::Vek::PcmVectorKernels
