#include <vek/filters/video/PictureRows.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#define VEK_PICTURE_ROWS_SSE2 1
#endif
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define VEK_PICTURE_ROWS_AVX2 1
#endif

// The SSE2 loops move 16 or 32 samples per step and leave the rest of a
// row to the plain loops after them. The arithmetic kernels are plain loops
// that the compiler vectorises at the release optimisation level.

namespace Quorvex::Vek::PictureRows {

namespace {

#if VEK_PICTURE_ROWS_SSE2
inline __m128i Load(const uint8_t* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

inline void Store(uint8_t* p, __m128i value)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), value);
}

inline __m128i LowBytes(__m128i a, __m128i b)
{
    const __m128i mask = _mm_set1_epi16(0x00FF);
    return _mm_packus_epi16(_mm_and_si128(a, mask), _mm_and_si128(b, mask));
}

inline __m128i HighBytes(__m128i a, __m128i b)
{
    return _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8));
}
#endif

struct Offsets {
    int y;
    int u;
    int v;
};

constexpr Offsets OffsetsOf(PackedOrder order)
{
    return order == PackedOrder::UYVY ? Offsets{1, 0, 2} : Offsets{0, 1, 3};
}

} // namespace

void Interleave(const uint8_t* u, const uint8_t* v, uint8_t* uv, int32_t count)
{
    int32_t i = 0;
#if VEK_PICTURE_ROWS_SSE2
    for (; i + 16 <= count; i += 16) {
        const __m128i a = Load(u + i);
        const __m128i b = Load(v + i);
        Store(uv + 2 * i, _mm_unpacklo_epi8(a, b));
        Store(uv + 2 * i + 16, _mm_unpackhi_epi8(a, b));
    }
#endif
    for (; i < count; ++i) {
        uv[2 * i] = u[i];
        uv[2 * i + 1] = v[i];
    }
}

#if VEK_PICTURE_ROWS_AVX2
namespace {

// Chosen once per process: the build targets plain x86-64 (SSE2), so the
// wider loop is compiled apart and taken where the processor has it.
bool HasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

// 32 pairs per step; the rest is left to the caller's loops.
__attribute__((target("avx2"))) int32_t DeinterleaveAvx2(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t count)
{
    const __m256i mask = _mm256_set1_epi16(0x00FF);
    int32_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(uv + 2 * i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(uv + 2 * i + 32));
        // packus works within 128-bit lanes: put the quarters back in order.
        const __m256i low = _mm256_packus_epi16(_mm256_and_si256(a, mask), _mm256_and_si256(b, mask));
        const __m256i high = _mm256_packus_epi16(_mm256_srli_epi16(a, 8), _mm256_srli_epi16(b, 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(u + i), _mm256_permute4x64_epi64(low, 0xD8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(v + i), _mm256_permute4x64_epi64(high, 0xD8));
    }
    return i;
}

} // namespace
#endif

void Deinterleave(const uint8_t* uv, uint8_t* u, uint8_t* v, int32_t count)
{
    int32_t i = 0;
#if VEK_PICTURE_ROWS_AVX2
    if (HasAvx2())
        i = DeinterleaveAvx2(uv, u, v, count);
#endif
#if VEK_PICTURE_ROWS_SSE2
    for (; i + 16 <= count; i += 16) {
        const __m128i a = Load(uv + 2 * i);
        const __m128i b = Load(uv + 2 * i + 16);
        Store(u + i, LowBytes(a, b));
        Store(v + i, HighBytes(a, b));
    }
#endif
    for (; i < count; ++i) {
        u[i] = uv[2 * i];
        v[i] = uv[2 * i + 1];
    }
}

void Pack(const uint8_t* y, const uint8_t* u, const uint8_t* v, uint8_t* packed, int32_t width, PackedOrder order)
{
    int32_t x = 0;
#if VEK_PICTURE_ROWS_SSE2
    for (; x + 32 <= width; x += 32) {
        const __m128i cu = Load(u + x / 2);
        const __m128i cv = Load(v + x / 2);
        const __m128i uvLow = _mm_unpacklo_epi8(cu, cv);
        const __m128i uvHigh = _mm_unpackhi_epi8(cu, cv);
        const __m128i yLow = Load(y + x);
        const __m128i yHigh = Load(y + x + 16);
        uint8_t* out = packed + 2 * x;
        if (order == PackedOrder::UYVY) {
            Store(out, _mm_unpacklo_epi8(uvLow, yLow));
            Store(out + 16, _mm_unpackhi_epi8(uvLow, yLow));
            Store(out + 32, _mm_unpacklo_epi8(uvHigh, yHigh));
            Store(out + 48, _mm_unpackhi_epi8(uvHigh, yHigh));
        } else {
            Store(out, _mm_unpacklo_epi8(yLow, uvLow));
            Store(out + 16, _mm_unpackhi_epi8(yLow, uvLow));
            Store(out + 32, _mm_unpacklo_epi8(yHigh, uvHigh));
            Store(out + 48, _mm_unpackhi_epi8(yHigh, uvHigh));
        }
    }
#endif
    const Offsets at = OffsetsOf(order);
    for (; x < width; x += 2) {
        uint8_t* out = packed + 2 * x;
        out[at.y] = y[x];
        out[at.y + 2] = y[x + 1 < width ? x + 1 : x];
        out[at.u] = u[x / 2];
        out[at.v] = v[x / 2];
    }
}

void Unpack(const uint8_t* packed, uint8_t* y, uint8_t* u, uint8_t* v, int32_t width, PackedOrder order)
{
    int32_t x = 0;
#if VEK_PICTURE_ROWS_SSE2
    for (; x + 32 <= width; x += 32) {
        const uint8_t* in = packed + 2 * x;
        const __m128i a = Load(in);
        const __m128i b = Load(in + 16);
        const __m128i c = Load(in + 32);
        const __m128i d = Load(in + 48);
        __m128i chromaLow;
        __m128i chromaHigh;
        if (order == PackedOrder::UYVY) {
            Store(y + x, HighBytes(a, b));
            Store(y + x + 16, HighBytes(c, d));
            chromaLow = LowBytes(a, b);
            chromaHigh = LowBytes(c, d);
        } else {
            Store(y + x, LowBytes(a, b));
            Store(y + x + 16, LowBytes(c, d));
            chromaLow = HighBytes(a, b);
            chromaHigh = HighBytes(c, d);
        }
        Store(u + x / 2, LowBytes(chromaLow, chromaHigh));
        Store(v + x / 2, HighBytes(chromaLow, chromaHigh));
    }
#endif
    const Offsets at = OffsetsOf(order);
    for (; x < width; x += 2) {
        const uint8_t* in = packed + 2 * x;
        y[x] = in[at.y];
        if (x + 1 < width)
            y[x + 1] = in[at.y + 2];
        u[x / 2] = in[at.u];
        v[x / 2] = in[at.v];
    }
}

void SwapPairs(const uint8_t* from, uint8_t* to, int32_t bytes)
{
    int32_t i = 0;
#if VEK_PICTURE_ROWS_SSE2
    for (; i + 16 <= bytes; i += 16) {
        const __m128i a = Load(from + i);
        Store(to + i, _mm_or_si128(_mm_slli_epi16(a, 8), _mm_srli_epi16(a, 8)));
    }
#endif
    for (; i + 1 < bytes; i += 2) {
        const uint8_t first = from[i];
        to[i] = from[i + 1];
        to[i + 1] = first;
    }
}

void AverageRows(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        out[i] = uint8_t((a[i] + b[i] + 1) >> 1);
}

void InterpolateRows(const uint8_t* nearRow, const uint8_t* farRow, uint8_t* out, int32_t count)
{
    int32_t i = 0;
#if VEK_PICTURE_ROWS_SSE2
    // (3a + b + 2) >> 2 == avg(a, floor((a + b) / 2)), where avg rounds up
    // (pavgb) and floor((a + b) / 2) is avg(a, b) less the odd bit of a ^ b:
    // exact, in bytes, without widening.
    const __m128i one = _mm_set1_epi8(1);
    for (; i + 16 <= count; i += 16) {
        const __m128i a = Load(nearRow + i);
        const __m128i b = Load(farRow + i);
        const __m128i half = _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(_mm_xor_si128(a, b), one));
        Store(out + i, _mm_avg_epu8(a, half));
    }
#endif
    for (; i < count; ++i)
        out[i] = uint8_t((3 * nearRow[i] + farRow[i] + 2) >> 2);
}

void HalveRow(const uint8_t* in, uint8_t* out, int32_t inCount)
{
    if (inCount <= 0)
        return;
    const int32_t outCount = (inCount + 1) / 2;
    // Out sample k reads in[2k+1]; the interior stops before it passes the end.
    const int32_t interiorEnd = (inCount - 1) / 2;
    out[0] = uint8_t((3 * in[0] + in[inCount > 1 ? 1 : 0] + 2) >> 2);
    for (int32_t k = 1; k < interiorEnd; ++k)
        out[k] = uint8_t((in[2 * k - 1] + 2 * in[2 * k] + in[2 * k + 1] + 2) >> 2);
    for (int32_t k = interiorEnd > 1 ? interiorEnd : 1; k < outCount; ++k) {
        const int32_t right = 2 * k + 1 < inCount ? 2 * k + 1 : 2 * k;
        out[k] = uint8_t((in[2 * k - 1] + 2 * in[2 * k] + in[right] + 2) >> 2);
    }
}

void DoubleRow(const uint8_t* in, uint8_t* out, int32_t outCount)
{
    if (outCount <= 0)
        return;
    const int32_t inCount = (outCount + 1) / 2;
    for (int32_t k = 0; k + 1 < inCount; ++k) {
        out[2 * k] = in[k];
        out[2 * k + 1] = uint8_t((in[k] + in[k + 1] + 1) >> 1);
    }
    const int32_t last = inCount - 1;
    out[2 * last] = in[last];
    if (2 * last + 1 < outCount)
        out[2 * last + 1] = in[last];
}

} // namespace Quorvex::Vek::PictureRows
