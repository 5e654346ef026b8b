#include <vek/io/CBinaryWriter.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <cmath>
#include <cstring>
#include <utility>

namespace Quorvex::Vek {

namespace {

void Spread(uint64_t value, int count, ByteOrder order, unsigned char* bytes)
{
    for (int i = 0; i < count; ++i) {
        const int index = order == ByteOrder::BigEndian ? count - 1 - i : i;
        bytes[index] = uint8_t(value >> (8 * i));
    }
}

} // namespace

CBinaryWriter::CBinaryWriter(CStream* stream, ByteOrder order)
    : m_stream(RObject<CStream>::FromObject(stream)), m_order(order)
{
}

int CBinaryWriter::WriteBytes(const unsigned char* buffer, int32_t count)
{
    if (!m_stream)
        return RESULT_NULL_POINTER;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (count == 0)
        return 0;
    if (!buffer)
        return RESULT_ARGUMENT_NULL;
    const int put = m_stream->Write(buffer, count);
    if (put < 0)
        return put;
    if (put != count) {
        Log(LogLevel::Error, "CBinaryWriter::WriteBytes: stream took %d of %d bytes\n", put, count);
        return RESULT_IO_ERROR;
    }
    return 0;
}

int CBinaryWriter::WriteUInt(int byteCount, uint64_t value)
{
    if (byteCount < 1 || byteCount > 8)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    unsigned char bytes[8];
    Spread(value, byteCount, m_order, bytes);
    return WriteBytes(bytes, byteCount);
}

int CBinaryWriter::WriteFourCC(uint32_t value)
{
    unsigned char bytes[4];
    Spread(value, 4, ByteOrder::BigEndian, bytes);
    return WriteBytes(bytes, 4);
}

int CBinaryWriter::WriteGuid(const _Guid& value, GuidByteOrder layout)
{
    uint8_t bytes[16];
    value.ToBytes(bytes, layout);
    return WriteBytes(bytes, 16);
}

int CBinaryWriter::WriteFloat(float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return WriteUInt32(bits);
}

int CBinaryWriter::WriteDouble(double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return WriteUInt64(bits);
}

int CBinaryWriter::WriteExtended(double value)
{
    unsigned char bytes[10] = {};
    uint16_t signAndExponent = std::signbit(value) ? 0x8000 : 0;
    uint64_t mantissa = 0;
    const double magnitude = std::fabs(value);
    if (std::isnan(value)) {
        signAndExponent |= 0x7FFF;
        mantissa = 0xC000000000000000ull;
    } else if (std::isinf(value)) {
        signAndExponent |= 0x7FFF;
        mantissa = 0x8000000000000000ull;
    } else if (magnitude != 0.0) {
        int exponent = 0;
        const double fraction = std::frexp(magnitude, &exponent); // [0.5, 1)
        // Every double fits: its exponent range lies well inside 15 bits.
        signAndExponent |= uint16_t(exponent - 1 + 16383);
        mantissa = uint64_t(std::ldexp(fraction, 64));
    }
    Spread(signAndExponent, 2, ByteOrder::BigEndian, bytes);
    Spread(mantissa, 8, ByteOrder::BigEndian, bytes + 2);
    if (m_order == ByteOrder::LittleEndian)
        for (int i = 0; i < 5; ++i)
            std::swap(bytes[i], bytes[9 - i]);
    return WriteBytes(bytes, 10);
}

} // namespace Quorvex::Vek
