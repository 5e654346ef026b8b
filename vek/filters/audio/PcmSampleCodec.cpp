#include <vek/filters/audio/PcmSampleCodec.h>

#include <bit>
#include <cmath>

#include <vek/filters/audio/G711.h>
#include <vek/media/AudioFormat.h>

namespace Quorvex::Vek::PcmSampleCodec {

namespace {

constexpr ByteOrder Little = ByteOrder::LittleEndian;
constexpr ByteOrder Big = ByteOrder::BigEndian;

template <int Bytes, ByteOrder Order>
inline uint64_t LoadBits(const uint8_t* p)
{
    uint64_t value = 0;
    for (int i = 0; i < Bytes; ++i)
        value |= uint64_t(p[i]) << (Order == Big ? 8 * (Bytes - 1 - i) : 8 * i);
    return value;
}

template <int Bytes, ByteOrder Order>
inline void StoreBits(uint8_t* p, uint64_t value)
{
    for (int i = 0; i < Bytes; ++i)
        p[i] = uint8_t(value >> (Order == Big ? 8 * (Bytes - 1 - i) : 8 * i));
}

// 2^(bits-1): the magnitude of negative full scale.
constexpr double FullScale(int bits)
{
    return double(uint64_t(1) << (bits - 1));
}

template <int Bits>
inline int64_t Quantise(double fraction)
{
    constexpr double low = -FullScale(Bits);
    constexpr double high = FullScale(Bits) - 1;
    double value = fraction * FullScale(Bits);
    if (std::isnan(value))
        return 0;
    value = value < low ? low : value > high ? high : value;
    return int64_t(std::nearbyint(value));
}

// The value sits in the top `Bits` of the sample's bytes.
template <int Bytes, int Bits, ByteOrder Order>
void DecodeSigned(const uint8_t* in, double* out, size_t count)
{
    constexpr double unit = 1.0 / FullScale(Bits);
    for (size_t i = 0; i < count; ++i) {
        const uint64_t raw = LoadBits<Bytes, Order>(in + i * Bytes);
        const int64_t value = int64_t(raw << (64 - 8 * Bytes)) >> (64 - Bits);
        out[i] = double(value) * unit;
    }
}

template <int Bytes, int Bits, ByteOrder Order>
void EncodeSigned(const double* in, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        StoreBits<Bytes, Order>(out + i * Bytes, uint64_t(Quantise<Bits>(in[i])) << (8 * Bytes - Bits));
}

template <int Bytes, ByteOrder Order>
void DecodeUnsigned(const uint8_t* in, double* out, size_t count)
{
    constexpr int64_t offset = int64_t(1) << (8 * Bytes - 1);
    constexpr double unit = 1.0 / FullScale(8 * Bytes);
    for (size_t i = 0; i < count; ++i)
        out[i] = double(int64_t(LoadBits<Bytes, Order>(in + i * Bytes)) - offset) * unit;
}

template <int Bytes, ByteOrder Order>
void EncodeUnsigned(const double* in, uint8_t* out, size_t count)
{
    constexpr int64_t offset = int64_t(1) << (8 * Bytes - 1);
    for (size_t i = 0; i < count; ++i)
        StoreBits<Bytes, Order>(out + i * Bytes, uint64_t(Quantise<8 * Bytes>(in[i]) + offset));
}

template <ByteOrder Order>
void DecodeFloat32(const uint8_t* in, double* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = std::bit_cast<float>(uint32_t(LoadBits<4, Order>(in + 4 * i)));
}

template <ByteOrder Order>
void EncodeFloat32(const double* in, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        StoreBits<4, Order>(out + 4 * i, std::bit_cast<uint32_t>(float(in[i])));
}

template <ByteOrder Order>
void DecodeFloat64(const uint8_t* in, double* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = std::bit_cast<double>(LoadBits<8, Order>(in + 8 * i));
}

template <ByteOrder Order>
void EncodeFloat64(const double* in, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        StoreBits<8, Order>(out + 8 * i, std::bit_cast<uint64_t>(in[i]));
}

template <int16_t (*Decode)(uint8_t)>
void DecodeCompanded(const uint8_t* in, double* out, size_t count)
{
    constexpr double unit = 1.0 / FullScale(16);
    for (size_t i = 0; i < count; ++i)
        out[i] = double(Decode(in[i])) * unit;
}

template <uint8_t (*Encode)(int16_t)>
void EncodeCompanded(const double* in, uint8_t* out, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = Encode(int16_t(Quantise<16>(in[i])));
}

struct Codec {
    uint32_t format;
    DecodeFunction decode;
    EncodeFunction encode;
};

constexpr Codec kCodecs[] = {
    {AudioFormat::UInt8, DecodeUnsigned<1, Little>, EncodeUnsigned<1, Little>},
    {AudioFormat::Int8, DecodeSigned<1, 8, Little>, EncodeSigned<1, 8, Little>},
    {AudioFormat::Int16B, DecodeSigned<2, 16, Big>, EncodeSigned<2, 16, Big>},
    {AudioFormat::Int16L, DecodeSigned<2, 16, Little>, EncodeSigned<2, 16, Little>},
    {AudioFormat::Int20B, DecodeSigned<3, 20, Big>, EncodeSigned<3, 20, Big>},
    {AudioFormat::Int20L, DecodeSigned<3, 20, Little>, EncodeSigned<3, 20, Little>},
    {AudioFormat::Int24B, DecodeSigned<3, 24, Big>, EncodeSigned<3, 24, Big>},
    {AudioFormat::Int24L, DecodeSigned<3, 24, Little>, EncodeSigned<3, 24, Little>},
    {AudioFormat::Int32B, DecodeSigned<4, 32, Big>, EncodeSigned<4, 32, Big>},
    {AudioFormat::Int32L, DecodeSigned<4, 32, Little>, EncodeSigned<4, 32, Little>},
    {AudioFormat::UInt16B, DecodeUnsigned<2, Big>, EncodeUnsigned<2, Big>},
    {AudioFormat::UInt16L, DecodeUnsigned<2, Little>, EncodeUnsigned<2, Little>},
    {AudioFormat::UInt24B, DecodeUnsigned<3, Big>, EncodeUnsigned<3, Big>},
    {AudioFormat::UInt24L, DecodeUnsigned<3, Little>, EncodeUnsigned<3, Little>},
    {AudioFormat::UInt32B, DecodeUnsigned<4, Big>, EncodeUnsigned<4, Big>},
    {AudioFormat::UInt32L, DecodeUnsigned<4, Little>, EncodeUnsigned<4, Little>},
    {AudioFormat::Float32B, DecodeFloat32<Big>, EncodeFloat32<Big>},
    {AudioFormat::Float32L, DecodeFloat32<Little>, EncodeFloat32<Little>},
    {AudioFormat::Float64B, DecodeFloat64<Big>, EncodeFloat64<Big>},
    {AudioFormat::Float64L, DecodeFloat64<Little>, EncodeFloat64<Little>},
    {AudioFormat::aLaw, DecodeCompanded<G711::DecodeALaw>, EncodeCompanded<G711::EncodeALaw>},
    {AudioFormat::muLaw, DecodeCompanded<G711::DecodeMuLaw>, EncodeCompanded<G711::EncodeMuLaw>},
};

const Codec* FindCodec(const PcmLayout& layout)
{
    for (const Codec& codec : kCodecs)
        if (codec.format == layout.format)
            return &codec;
    return nullptr;
}

} // namespace

DecodeFunction FindDecoder(const PcmLayout& layout)
{
    const Codec* codec = FindCodec(layout);
    return codec ? codec->decode : nullptr;
}

EncodeFunction FindEncoder(const PcmLayout& layout)
{
    const Codec* codec = FindCodec(layout);
    return codec ? codec->encode : nullptr;
}

} // namespace Quorvex::Vek::PcmSampleCodec
