#include <vek/io/CBinaryReader.h>

#include <vek/core/Result.h>

#include <cmath>
#include <cstring>
#include <utility>

namespace Quorvex::Vek {

namespace {

uint64_t Assemble(const unsigned char* bytes, int count, ByteOrder order)
{
    uint64_t value = 0;
    for (int i = 0; i < count; ++i) {
        const int index = order == ByteOrder::BigEndian ? i : count - 1 - i;
        value = (value << 8) | bytes[index];
    }
    return value;
}

int64_t SignExtend(uint64_t value, int byteCount)
{
    const int shift = 64 - 8 * byteCount;
    return int64_t(value << shift) >> shift;
}

} // namespace

CBinaryReader::CBinaryReader(CStream* stream, ByteOrder order)
    : m_stream(RObject<CStream>::FromObject(stream)), m_order(order)
{
}

int CBinaryReader::ReadExact(unsigned char* buffer, int32_t count)
{
    if (!m_stream)
        return RESULT_NULL_POINTER;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    int32_t got = 0;
    int result = 0;
    while (got < count) {
        result = m_stream->Read(buffer + got, count - got);
        if (result <= 0)
            break;
        got += result;
    }
    if (got == count)
        return 0;
    if (got > 0 && m_stream->CanSeek())
        m_stream->Seek(-int64_t(got), CStream::Current, nullptr);
    return result < 0 ? result : RESULT_END_OF_STREAM;
}

int CBinaryReader::ReadUInt(int byteCount, uint64_t& value)
{
    if (byteCount < 1 || byteCount > 8)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    unsigned char bytes[8];
    const int result = ReadExact(bytes, byteCount);
    if (result < 0)
        return result;
    value = Assemble(bytes, byteCount, m_order);
    return 0;
}

int CBinaryReader::ReadInt(int byteCount, int64_t& value)
{
    uint64_t raw = 0;
    const int result = ReadUInt(byteCount, raw);
    if (result < 0)
        return result;
    value = SignExtend(raw, byteCount);
    return 0;
}

namespace {

// `raw` is a reference: it is read only after the call that fills it.
template <typename T, typename Source>
int Narrow(int result, const Source& raw, T& value)
{
    if (result >= 0)
        value = T(raw);
    return result;
}

} // namespace

int CBinaryReader::ReadUInt8(uint8_t& value)
{
    uint64_t raw = 0;
    return Narrow(ReadUInt(1, raw), raw, value);
}

int CBinaryReader::ReadInt8(int8_t& value)
{
    int64_t raw = 0;
    return Narrow(ReadInt(1, raw), raw, value);
}

int CBinaryReader::ReadUInt16(uint16_t& value)
{
    uint64_t raw = 0;
    return Narrow(ReadUInt(2, raw), raw, value);
}

int CBinaryReader::ReadInt16(int16_t& value)
{
    int64_t raw = 0;
    return Narrow(ReadInt(2, raw), raw, value);
}

int CBinaryReader::ReadUInt24(uint32_t& value)
{
    uint64_t raw = 0;
    return Narrow(ReadUInt(3, raw), raw, value);
}

int CBinaryReader::ReadInt24(int32_t& value)
{
    int64_t raw = 0;
    return Narrow(ReadInt(3, raw), raw, value);
}

int CBinaryReader::ReadUInt32(uint32_t& value)
{
    uint64_t raw = 0;
    return Narrow(ReadUInt(4, raw), raw, value);
}

int CBinaryReader::ReadInt32(int32_t& value)
{
    int64_t raw = 0;
    return Narrow(ReadInt(4, raw), raw, value);
}

int CBinaryReader::ReadUInt64(uint64_t& value)
{
    return ReadUInt(8, value);
}

int CBinaryReader::ReadInt64(int64_t& value)
{
    return ReadInt(8, value);
}

int CBinaryReader::ReadFourCC(uint32_t& value)
{
    unsigned char bytes[4];
    const int result = ReadExact(bytes, 4);
    if (result < 0)
        return result;
    value = uint32_t(Assemble(bytes, 4, ByteOrder::BigEndian));
    return 0;
}

int CBinaryReader::ReadGuid(_Guid& value, GuidByteOrder layout)
{
    uint8_t bytes[16];
    const int result = ReadExact(bytes, 16);
    if (result < 0)
        return result;
    value = _Guid::FromBytes(bytes, layout);
    return 0;
}

int CBinaryReader::ReadFloat(float& value)
{
    uint32_t bits = 0;
    const int result = ReadUInt32(bits);
    if (result < 0)
        return result;
    std::memcpy(&value, &bits, sizeof value);
    return 0;
}

int CBinaryReader::ReadDouble(double& value)
{
    uint64_t bits = 0;
    const int result = ReadUInt64(bits);
    if (result < 0)
        return result;
    std::memcpy(&value, &bits, sizeof value);
    return 0;
}

int CBinaryReader::ReadExtended(double& value)
{
    unsigned char bytes[10];
    const int result = ReadExact(bytes, 10);
    if (result < 0)
        return result;
    // Sign and 15-bit exponent, then a 64-bit mantissa with an explicit
    // integer bit; stored in the reader's byte order.
    if (m_order == ByteOrder::LittleEndian)
        for (int i = 0; i < 5; ++i)
            std::swap(bytes[i], bytes[9 - i]);
    const bool negative = (bytes[0] & 0x80) != 0;
    const int exponent = ((bytes[0] & 0x7F) << 8) | bytes[1];
    const uint64_t mantissa = Assemble(bytes + 2, 8, ByteOrder::BigEndian);
    double magnitude;
    if (exponent == 0 && mantissa == 0)
        magnitude = 0.0;
    else if (exponent == 0x7FFF)
        magnitude = (mantissa << 1) == 0 ? HUGE_VAL : std::nan("");
    else
        magnitude = std::ldexp(double(mantissa), exponent - 16383 - 63);
    value = negative ? -magnitude : magnitude;
    return 0;
}

int CBinaryReader::ReadBytes(unsigned char* buffer, int32_t count)
{
    if (!buffer && count > 0)
        return RESULT_ARGUMENT_NULL;
    return ReadExact(buffer, count);
}

int CBinaryReader::Skip(int64_t count)
{
    if (!m_stream)
        return RESULT_NULL_POINTER;
    if (count < 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    const int result = m_stream->Seek(count, CStream::Current, nullptr);
    return result < 0 ? result : 0;
}

} // namespace Quorvex::Vek
