#include <vek/filters/audio/PcmVectorKernels.h>

#if (defined(__x86_64__) || defined(__i386__)) && defined(__GNUC__)
#include <cstdint>
#define VEK_HAS_AVX2_KERNELS 1
#include <immintrin.h>
#else
#define VEK_HAS_AVX2_KERNELS 0
#endif

namespace Quorvex::Vek::PcmVectorKernels {

#if VEK_HAS_AVX2_KERNELS

namespace {

// Compiled for AVX2 whatever the build's baseline; called only after the
// processor has been asked.
#define VEK_AVX2 __attribute__((target("avx2"), always_inline)) inline

enum class Kind { Integer, Float };

// Eight samples with their values at the top of each 32-bit lane.
template <int Bytes>
VEK_AVX2 __m256i LoadHigh(const uint8_t* p)
{
    if constexpr (Bytes == 2) {
        const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        return _mm256_slli_epi32(_mm256_cvtepi16_epi32(words), 16);
    } else if constexpr (Bytes == 3) {
        // Four 3-byte samples from each 16-byte half (read 4 bytes past the
        // 24 used), each moved above a zero low byte.
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 12));
        const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
        const __m256i spread = _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 0, 1, 2, -1,
                                                3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11);
        return _mm256_shuffle_epi8(both, spread);
    } else {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
}

// Eight values in the low `Bytes` of each lane, already in range; the
// 24-bit form writes 4 bytes past the 24 it fills.
template <int Bytes>
VEK_AVX2 void StoreLow(uint8_t* p, __m256i values)
{
    if constexpr (Bytes == 2) {
        const __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(values, values), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(packed));
    } else if constexpr (Bytes == 3) {
        const __m256i gather = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4, 5,
                                                6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
        const __m256i packed = _mm256_shuffle_epi8(values, gather);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(packed));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 12), _mm256_extracti128_si256(packed, 1));
    } else {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), values);
    }
}

// The top `Bits` of high-aligned values rounded to nearest, ties to even:
// (x + half - 1 + (kept & 1)) >> shift. Every value from the largest that
// rounds down to positive full scale upwards gives full scale, so clamping
// to that value first clips and keeps the sum inside 32 bits.
template <int Bits>
VEK_AVX2 __m256i RoundHigh(__m256i high)
{
    constexpr int shift = 32 - Bits;
    constexpr int32_t half = 1 << (shift - 1);
    const __m256i clamped = _mm256_min_epi32(high, _mm256_set1_epi32(INT32_MAX - half));
    const __m256i odd = _mm256_and_si256(_mm256_srai_epi32(clamped, shift), _mm256_set1_epi32(1));
    const __m256i bias = _mm256_add_epi32(odd, _mm256_set1_epi32(half - 1));
    return _mm256_srai_epi32(_mm256_add_epi32(clamped, bias), shift);
}

// Eight floats scaled to `Bits`, NaN zeroed, clipped and rounded to nearest
// (ties to even in the default MXCSR mode).
template <int Bits>
VEK_AVX2 __m256i Quantise(const uint8_t* p)
{
    const __m256 scale = _mm256_set1_ps(float(1u << (Bits - 1)));
    __m256 value = _mm256_loadu_ps(reinterpret_cast<const float*>(p));
    value = _mm256_and_ps(value, _mm256_cmp_ps(value, value, _CMP_ORD_Q));
    value = _mm256_mul_ps(value, scale);
    if constexpr (Bits == 32) {
        // 2^31 and above convert to 0x80000000: flip those to 0x7FFFFFFF.
        const __m256 over = _mm256_cmp_ps(value, scale, _CMP_GE_OQ);
        return _mm256_xor_si256(_mm256_cvtps_epi32(value), _mm256_castps_si256(over));
    } else if constexpr (Bits == 16) {
        // Only the top needs clipping here: everything below -2^31 converts
        // to 0x80000000, which the saturating pack of the store makes -32768.
        return _mm256_cvtps_epi32(_mm256_min_ps(value, _mm256_sub_ps(scale, _mm256_set1_ps(1.0f))));
    } else {
        value = _mm256_min_ps(_mm256_max_ps(value, _mm256_sub_ps(_mm256_setzero_ps(), scale)),
                              _mm256_sub_ps(scale, _mm256_set1_ps(1.0f)));
        return _mm256_cvtps_epi32(value);
    }
}

// Eight integer samples of the output, in the low `OutBytes` of each lane
// (the 16-bit ones still to be clipped by the saturating pack).
template <int InBytes, Kind In, int OutBytes>
VEK_AVX2 __m256i IntegerValues(const uint8_t* in)
{
    if constexpr (In == Kind::Float)
        return Quantise<8 * OutBytes>(in);
    else if constexpr (OutBytes >= InBytes)
        return _mm256_srai_epi32(LoadHigh<InBytes>(in), 32 - 8 * OutBytes);
    else
        return RoundHigh<8 * OutBytes>(LoadHigh<InBytes>(in));
}

// Sixteen high-aligned values rounded to their top 16 bits, to nearest with
// ties to even, in the lane order of _mm256_packs_epi32(first, second).
// Each 32-bit lane is split into its 16-bit halves; the low half carries
// into the high one when low + 0x7FFF + (high & 1) passes 16 bits (the
// carry is bit 15 of the unsigned average of low and 0x7FFE + (high & 1)),
// and the saturating add clips the one value that rounds past full scale.
VEK_AVX2 __m256i RoundToInt16(__m256i first, __m256i second)
{
    const __m256i split = _mm256_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15, 0, 1, 4, 5, 8, 9, 12,
                                           13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m256i a = _mm256_shuffle_epi8(first, split);
    const __m256i b = _mm256_shuffle_epi8(second, split);
    const __m256i low = _mm256_unpacklo_epi64(a, b);
    const __m256i high = _mm256_unpackhi_epi64(a, b);
    const __m256i bias = _mm256_or_si256(_mm256_and_si256(high, _mm256_set1_epi16(1)), _mm256_set1_epi16(0x7FFE));
    const __m256i carry = _mm256_srli_epi16(_mm256_avg_epu16(low, bias), 15);
    return _mm256_adds_epi16(high, carry);
}

// Sixteen floats with NaN zeroed and the top clipped, for the rare block
// the plain conversion below cannot take. Out of the loop, so that the
// loop stays small.
__attribute__((target("avx2"), noinline, cold)) __m256i QuantiseSixteenCarefully(const uint8_t* in)
{
    return _mm256_packs_epi32(Quantise<16>(in), Quantise<16>(in + 32));
}

// Sixteen 16-bit samples: two vectors packed into one store. Floats are
// first converted plainly: NaN and values of 2^16 or more convert to
// 0x80000000 and pack to -32768, as only a sample at negative full scale
// does otherwise, so a block with -32768 in it is converted again with
// NaN zeroed and the top clipped. Values from 32767.5 up and below -32768
// need nothing: the saturating pack clips them.
template <int InBytes, Kind In>
VEK_AVX2 void ConvertSixteenToInt16(const uint8_t* in, uint8_t* out)
{
    __m256i packed;
    if constexpr (In == Kind::Float) {
        const __m256 scale = _mm256_set1_ps(32768.0f);
        const __m256 first = _mm256_loadu_ps(reinterpret_cast<const float*>(in));
        const __m256 second = _mm256_loadu_ps(reinterpret_cast<const float*>(in + 32));
        packed = _mm256_packs_epi32(_mm256_cvtps_epi32(_mm256_mul_ps(first, scale)),
                                    _mm256_cvtps_epi32(_mm256_mul_ps(second, scale)));
        const __m256i lowest = _mm256_cmpeq_epi16(packed, _mm256_set1_epi16(INT16_MIN));
        if (__builtin_expect(!_mm256_testz_si256(lowest, lowest), 0))
            packed = QuantiseSixteenCarefully(in);
    } else {
        packed = RoundToInt16(LoadHigh<InBytes>(in), LoadHigh<InBytes>(in + 8 * InBytes));
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permute4x64_epi64(packed, 0xD8));
}

template <int InBytes, Kind In, int OutBytes, Kind Out>
VEK_AVX2 void ConvertEight(const uint8_t* in, uint8_t* out)
{
    if constexpr (Out == Kind::Float) {
        const __m256 value = _mm256_cvtepi32_ps(LoadHigh<InBytes>(in));
        _mm256_storeu_ps(reinterpret_cast<float*>(out), _mm256_mul_ps(value, _mm256_set1_ps(1.0f / 2147483648.0f)));
    } else {
        StoreLow<OutBytes>(out, IntegerValues<InBytes, In, OutBytes>(in));
    }
}

template <int InBytes, Kind In, int OutBytes, Kind Out>
__attribute__((target("avx2"))) size_t Bulk(const uint8_t* in, uint8_t* out, size_t samples)
{
    // A 24-bit block reads or writes 4 bytes past its 24: keep two samples
    // of room.
    constexpr size_t room = (InBytes == 3 || OutBytes == 3) ? 2 : 0;
    size_t done = 0;
    if constexpr (OutBytes == 2 && Out == Kind::Integer) {
        for (; done + 16 + room <= samples; done += 16)
            ConvertSixteenToInt16<InBytes, In>(in + InBytes * done, out + 2 * done);
    }
    for (; done + 8 + room <= samples; done += 8)
        ConvertEight<InBytes, In, OutBytes, Out>(in + InBytes * done, out + OutBytes * done);
    return done;
}

template <int Bytes>
__attribute__((target("avx2"))) size_t Swap(const uint8_t* in, uint8_t* out, size_t samples)
{
    const __m256i order = Bytes == 2 ? _mm256_setr_epi8(1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14, 1, 0, 3,
                                                        2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14)
                                     : _mm256_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12, 3, 2, 1,
                                                        0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
    constexpr size_t block = 32 / Bytes;
    size_t done = 0;
    for (; done + block <= samples; done += block) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + Bytes * done));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + Bytes * done), _mm256_shuffle_epi8(bytes, order));
    }
    return done;
}

bool HasAvx2()
{
    static const bool has = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") != 0;
    }();
    return has;
}

bool IsFullLittleSigned(const PcmLayout& layout)
{
    return layout.coding == PcmLayout::Coding::Signed && layout.order == ByteOrder::LittleEndian && layout.bytes >= 2 &&
           layout.bits == 8 * layout.bytes;
}

bool IsLittleFloat32(const PcmLayout& layout)
{
    return layout.coding == PcmLayout::Coding::Float && layout.order == ByteOrder::LittleEndian && layout.bytes == 4;
}

template <int InBytes, Kind In>
BulkKernel FindTo(const PcmLayout& output)
{
    if (IsLittleFloat32(output))
        return In == Kind::Float ? nullptr : Bulk<InBytes, In, 4, Kind::Float>;
    if (!IsFullLittleSigned(output) || (In == Kind::Integer && output.bytes == InBytes))
        return nullptr;
    switch (output.bytes) {
    case 2: return Bulk<InBytes, In, 2, Kind::Integer>;
    case 3: return Bulk<InBytes, In, 3, Kind::Integer>;
    default: return Bulk<InBytes, In, 4, Kind::Integer>;
    }
}

BulkKernel FindSwap(const PcmLayout& input, const PcmLayout& output)
{
    const bool swapped = input.coding == output.coding && input.bytes == output.bytes && input.bits == output.bits &&
                         input.order != output.order && input.bits == 8 * input.bytes;
    if (!swapped)
        return nullptr;
    return input.bytes == 2 ? Swap<2> : input.bytes == 4 ? Swap<4> : nullptr;
}

} // namespace

BulkKernel Find(const PcmLayout& input, const PcmLayout& output)
{
    if (!HasAvx2() || input.format == output.format)
        return nullptr;
    if (BulkKernel swap = FindSwap(input, output))
        return swap;
    if (IsLittleFloat32(input))
        return FindTo<4, Kind::Float>(output);
    if (!IsFullLittleSigned(input))
        return nullptr;
    switch (input.bytes) {
    case 2: return FindTo<2, Kind::Integer>(output);
    case 3: return FindTo<3, Kind::Integer>(output);
    default: return FindTo<4, Kind::Integer>(output);
    }
}

#else

BulkKernel Find(const PcmLayout&, const PcmLayout&)
{
    return nullptr;
}

#endif

} // namespace Quorvex::Vek::PcmVectorKernels
