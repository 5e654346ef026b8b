#include <vek/filters/audio/PcmDirectKernels.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Quorvex::Vek::PcmDirectKernels {

namespace {

template <typename T>
inline T Load(const uint8_t* p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

template <typename T>
inline void Store(uint8_t* p, T value)
{
    std::memcpy(p, &value, sizeof value);
}

// A little-endian signed sample of `Bytes` bytes with its value moved to the
// top of an int32 (the low bits zero). The 24-bit form reads one byte past
// the sample, so the loops below give their last 24-bit sample to the exact
// form.
template <int Bytes>
inline int32_t LoadHigh(const uint8_t* p)
{
    if constexpr (Bytes == 2)
        return int32_t(uint32_t(uint16_t(Load<int16_t>(p))) << 16);
    else if constexpr (Bytes == 3)
        return int32_t(Load<uint32_t>(p) << 8);
    else
        return Load<int32_t>(p);
}

inline int32_t LoadHigh24Exact(const uint8_t* p)
{
    return int32_t(uint32_t(p[0]) << 8 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 24);
}

template <int Bytes>
inline void StoreLow(uint8_t* p, int32_t value)
{
    if constexpr (Bytes == 2) {
        Store(p, int16_t(value));
    } else if constexpr (Bytes == 3) {
        p[0] = uint8_t(value);
        p[1] = uint8_t(value >> 8);
        p[2] = uint8_t(value >> 16);
    } else {
        Store(p, value);
    }
}

// The top `Bits` of a high-aligned value, rounded to nearest with ties to
// even; rounding up from just below positive full scale is clipped.
template <int Bits>
inline int32_t RoundHigh(int32_t high)
{
    if constexpr (Bits == 32) {
        return high;
    } else {
        constexpr int shift = 32 - Bits;
        constexpr uint32_t half = 1u << (shift - 1);
        constexpr int32_t largest = (1 << (Bits - 1)) - 1;
        const int32_t kept = high >> shift;
        const uint32_t rest = uint32_t(high) & ((1u << shift) - 1);
        const int32_t up = int32_t((rest > half) | ((rest == half) & uint32_t(kept)));
        return std::min(kept + up, largest);
    }
}

// The last sample of a 24-bit input is read exactly; every other one with
// the wide load.
template <int InBytes, typename Body>
inline void ForEachSample(size_t samples, Body body)
{
    if constexpr (InBytes == 3) {
        if (samples == 0)
            return;
        for (size_t i = 0; i + 1 < samples; ++i)
            body(i, false);
        body(samples - 1, true);
    } else {
        for (size_t i = 0; i < samples; ++i)
            body(i, false);
    }
}

template <int InBytes>
inline int32_t LoadHighAt(const uint8_t* in, size_t i, bool last)
{
    if constexpr (InBytes == 3)
        return last ? LoadHigh24Exact(in + 3 * i) : LoadHigh<3>(in + 3 * i);
    else
        return LoadHigh<InBytes>(in + InBytes * i);
}

template <int InBytes, int OutBytes>
void IntegerToInteger(const uint8_t* in, uint8_t* out, size_t samples)
{
    ForEachSample<InBytes>(samples, [&](size_t i, bool last) {
        const int32_t high = LoadHighAt<InBytes>(in, i, last);
        int32_t value;
        if constexpr (OutBytes >= InBytes)
            value = high >> (32 - 8 * OutBytes);
        else
            value = RoundHigh<8 * OutBytes>(high);
        StoreLow<OutBytes>(out + OutBytes * i, value);
    });
}

template <int InBytes>
void IntegerToFloat(const uint8_t* in, uint8_t* out, size_t samples)
{
    constexpr float unit = 1.0f / 2147483648.0f;
    ForEachSample<InBytes>(
        samples, [&](size_t i, bool last) { Store(out + 4 * i, float(LoadHighAt<InBytes>(in, i, last)) * unit); });
}

template <int OutBytes>
inline int32_t QuantiseFloat(float x)
{
    constexpr float scale = float(1u << (8 * OutBytes - 1));
    const float value = x * scale;
    if (std::isnan(value))
        return 0;
    if constexpr (OutBytes == 4) {
        // 2^31 - 1 is no float: compare against 2^31 itself.
        if (value >= scale)
            return INT32_MAX;
        if (value <= -scale)
            return INT32_MIN;
        return int32_t(std::nearbyint(value));
    } else {
        return int32_t(std::nearbyint(std::clamp(value, -scale, scale - 1)));
    }
}

#if defined(__SSE2__)
// Four floats scaled, NaN zeroed, clipped and rounded to nearest (ties to
// even in the default MXCSR mode, as nearbyint under the default
// environment).
template <int OutBytes>
inline __m128i QuantiseFour(const uint8_t* in)
{
    constexpr float scale = float(1u << (8 * OutBytes - 1));
    __m128 value = _mm_loadu_ps(reinterpret_cast<const float*>(in));
    value = _mm_and_ps(value, _mm_cmpord_ps(value, value));
    value = _mm_mul_ps(value, _mm_set1_ps(scale));
    if constexpr (OutBytes == 4) {
        // cvtps2dq gives 0x80000000 for 2^31 and above; flip those to
        // 0x7FFFFFFF.
        const __m128 over = _mm_cmpge_ps(value, _mm_set1_ps(scale));
        return _mm_xor_si128(_mm_cvtps_epi32(value), _mm_castps_si128(over));
    } else {
        value = _mm_min_ps(_mm_max_ps(value, _mm_set1_ps(-scale)), _mm_set1_ps(scale - 1));
        return _mm_cvtps_epi32(value);
    }
}
#endif

template <int OutBytes>
void FloatToInteger(const uint8_t* in, uint8_t* out, size_t samples)
{
    size_t i = 0;
#if defined(__SSE2__)
    if constexpr (OutBytes == 2) {
        for (; i + 8 <= samples; i += 8) {
            const __m128i low = QuantiseFour<2>(in + 4 * i);
            const __m128i high = QuantiseFour<2>(in + 4 * i + 16);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * i), _mm_packs_epi32(low, high));
        }
    } else if constexpr (OutBytes == 4) {
        for (; i + 4 <= samples; i += 4)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * i), QuantiseFour<4>(in + 4 * i));
    } else {
        for (; i + 4 <= samples; i += 4) {
            alignas(16) int32_t values[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(values), QuantiseFour<3>(in + 4 * i));
            for (int k = 0; k < 4; ++k)
                StoreLow<3>(out + 3 * (i + size_t(k)), values[k]);
        }
    }
#endif
    for (; i < samples; ++i)
        StoreLow<OutBytes>(out + OutBytes * i, QuantiseFloat<OutBytes>(Load<float>(in + 4 * i)));
}

void Copy(const uint8_t* in, uint8_t* out, size_t samples, size_t bytes)
{
    std::memcpy(out, in, samples * bytes);
}

template <int Bytes>
void CopySamples(const uint8_t* in, uint8_t* out, size_t samples)
{
    Copy(in, out, samples, Bytes);
}

template <int Bytes>
void Swap(const uint8_t* in, uint8_t* out, size_t samples)
{
    for (size_t i = 0; i < samples; ++i) {
        const uint8_t* from = in + Bytes * i;
        uint8_t* to = out + Bytes * i;
        if constexpr (Bytes == 2) {
            Store(to, __builtin_bswap16(Load<uint16_t>(from)));
        } else if constexpr (Bytes == 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        } else if constexpr (Bytes == 4) {
            Store(to, __builtin_bswap32(Load<uint32_t>(from)));
        } else {
            Store(to, __builtin_bswap64(Load<uint64_t>(from)));
        }
    }
}

Kernel FindCopy(int32_t bytes)
{
    switch (bytes) {
    case 1: return CopySamples<1>;
    case 2: return CopySamples<2>;
    case 3: return CopySamples<3>;
    case 4: return CopySamples<4>;
    case 8: return CopySamples<8>;
    default: return nullptr;
    }
}

Kernel FindSwap(int32_t bytes)
{
    switch (bytes) {
    case 2: return Swap<2>;
    case 3: return Swap<3>;
    case 4: return Swap<4>;
    case 8: return Swap<8>;
    default: return nullptr;
    }
}

// Signed little-endian integers whose value fills their bytes: 16, 24, 32.
bool IsFullLittleSigned(const PcmLayout& layout)
{
    return layout.coding == PcmLayout::Coding::Signed && layout.order == ByteOrder::LittleEndian && layout.bytes >= 2 &&
           layout.bits == 8 * layout.bytes;
}

bool IsLittleFloat32(const PcmLayout& layout)
{
    return layout.coding == PcmLayout::Coding::Float && layout.order == ByteOrder::LittleEndian && layout.bytes == 4;
}

template <int InBytes>
Kernel FindFromInteger(const PcmLayout& output)
{
    if (IsLittleFloat32(output))
        return IntegerToFloat<InBytes>;
    if (!IsFullLittleSigned(output))
        return nullptr;
    switch (output.bytes) {
    case 2: return IntegerToInteger<InBytes, 2>;
    case 3: return IntegerToInteger<InBytes, 3>;
    default: return IntegerToInteger<InBytes, 4>;
    }
}

Kernel FindFromFloat(const PcmLayout& output)
{
    if (!IsFullLittleSigned(output))
        return nullptr;
    switch (output.bytes) {
    case 2: return FloatToInteger<2>;
    case 3: return FloatToInteger<3>;
    default: return FloatToInteger<4>;
    }
}

} // namespace

Kernel Find(const PcmLayout& input, const PcmLayout& output)
{
    if (input.format == output.format)
        return FindCopy(input.bytes);
    // A 20-bit sample is rewritten with its low four bits cleared: the
    // general path does that.
    if (input.bits != 8 * input.bytes)
        return nullptr;
    if (input.coding == output.coding && input.bytes == output.bytes && input.bits == output.bits &&
        input.order != output.order)
        return FindSwap(input.bytes);
    // The kernels below read and write the machine's own order.
    if constexpr (std::endian::native != std::endian::little)
        return nullptr;
    if (IsFullLittleSigned(input)) {
        switch (input.bytes) {
        case 2: return FindFromInteger<2>(output);
        case 3: return FindFromInteger<3>(output);
        default: return FindFromInteger<4>(output);
        }
    }
    if (IsLittleFloat32(input))
        return FindFromFloat(output);
    return nullptr;
}

} // namespace Quorvex::Vek::PcmDirectKernels
