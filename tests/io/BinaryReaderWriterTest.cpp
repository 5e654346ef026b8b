#include <vek/core/Result.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>
#include <vek/io/CMemoryStream.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace Quorvex::Vek;

namespace {

RObject<CMemoryStream> StreamOf(std::vector<unsigned char> bytes)
{
    return RObject<CMemoryStream>(new CMemoryStream(int32_t(bytes.size()), bytes.data()));
}

} // namespace

TEST(BinaryReader, IntegersInBothByteOrders)
{
    const std::vector<unsigned char> bytes = {0x81, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0xF8};
    struct Case {
        ByteOrder order;
        int width;
        uint64_t unsignedValue;
        int64_t signedValue;
    };
    const Case cases[] = {
        {ByteOrder::LittleEndian, 1, 0x81, -127},
        {ByteOrder::BigEndian, 1, 0x81, -127},
        {ByteOrder::LittleEndian, 2, 0x0281, 0x0281},
        {ByteOrder::BigEndian, 2, 0x8102, int16_t(0x8102)},
        {ByteOrder::LittleEndian, 3, 0x030281, 0x030281},
        {ByteOrder::BigEndian, 3, 0x810203, 0x810203 - 0x1000000},
        {ByteOrder::LittleEndian, 4, 0x04030281, 0x04030281},
        {ByteOrder::BigEndian, 4, 0x81020304, int32_t(0x81020304u)},
        {ByteOrder::LittleEndian, 5, 0x0504030281, 0x0504030281},
        {ByteOrder::LittleEndian, 8, 0xF807060504030281, int64_t(0xF807060504030281)},
        {ByteOrder::BigEndian, 8, 0x81020304050607F8, int64_t(0x81020304050607F8)},
    };
    for (const Case& c : cases) {
        RObject<CMemoryStream> stream(StreamOf(bytes));
        CBinaryReader reader(stream, c.order);
        uint64_t u = 0;
        ASSERT_EQ(reader.ReadUInt(c.width, u), 0);
        EXPECT_EQ(u, c.unsignedValue) << c.width;
        stream->Seek(0, CStream::Begin);
        int64_t s = 0;
        ASSERT_EQ(reader.ReadInt(c.width, s), 0);
        EXPECT_EQ(s, c.signedValue) << c.width;
        EXPECT_EQ(stream->GetPosition(), c.width);
    }
    RObject<CMemoryStream> stream(StreamOf(bytes));
    CBinaryReader reader(stream);
    uint64_t u = 7;
    EXPECT_EQ(reader.ReadUInt(0, u), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(reader.ReadUInt(9, u), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(u, 7u);
}

TEST(BinaryReader, ShortReadsFailWithoutTouchingAnything)
{
    RObject<CMemoryStream> stream = StreamOf({1, 2, 3});
    CBinaryReader reader(stream, ByteOrder::BigEndian);
    ASSERT_EQ(stream->Seek(1, CStream::Begin), 0);
    uint32_t u32 = 0xDEADBEEF;
    EXPECT_EQ(reader.ReadUInt32(u32), RESULT_END_OF_STREAM);
    EXPECT_EQ(u32, 0xDEADBEEFu);
    EXPECT_EQ(stream->GetPosition(), 1) << "a failed read puts the stream back";
    uint32_t four = 1;
    EXPECT_EQ(reader.ReadFourCC(four), RESULT_END_OF_STREAM);
    EXPECT_EQ(four, 1u);
    _Guid guid{};
    guid.Data1 = 0x55;
    EXPECT_EQ(reader.ReadGuid(guid), RESULT_END_OF_STREAM);
    EXPECT_EQ(guid.Data1, 0x55u);
    double d = 2.5;
    EXPECT_EQ(reader.ReadDouble(d), RESULT_END_OF_STREAM);
    EXPECT_EQ(d, 2.5);
    uint16_t u16 = 0;
    EXPECT_EQ(reader.ReadUInt16(u16), 0);
    EXPECT_EQ(u16, 0x0203);
    uint8_t u8 = 9;
    EXPECT_EQ(reader.ReadUInt8(u8), RESULT_END_OF_STREAM);
    EXPECT_EQ(u8, 9);
}

TEST(BinaryReader, StreamErrorsPassThrough)
{
    RObject<CMemoryStream> stream(new CMemoryStream(0));
    CBinaryReader reader(stream);
    int32_t value = 4;
    EXPECT_EQ(reader.ReadInt32(value), RESULT_BAD_ORDER_ERROR) << "no buffer behind the stream";
    EXPECT_EQ(value, 4);
    CBinaryReader orphan(nullptr);
    EXPECT_EQ(orphan.ReadInt32(value), RESULT_NULL_POINTER);
}

TEST(BinaryReaderWriter, RoundTripEveryType)
{
    for (ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian}) {
        RObject<CMemoryStream> stream(new CMemoryStream());
        CBinaryWriter writer(stream, order);
        _Guid guid{};
        ASSERT_EQ(_Guid::Parse("{66666972-912E-11CF-A5D6-28DB04C10000}", guid), 0);
        const double extendedValues[] = {44100.0, 48000.0, 0.0, -1.5, 1e-300, 3.75e300};
        ASSERT_EQ(writer.WriteUInt8(0xFE), 0);
        ASSERT_EQ(writer.WriteInt8(-2), 0);
        ASSERT_EQ(writer.WriteUInt16(0xBEEF), 0);
        ASSERT_EQ(writer.WriteInt16(-12345), 0);
        ASSERT_EQ(writer.WriteUInt24(0xABCDEF), 0);
        ASSERT_EQ(writer.WriteInt24(-8388608), 0);
        ASSERT_EQ(writer.WriteUInt32(0xCAFEBABE), 0);
        ASSERT_EQ(writer.WriteInt32(std::numeric_limits<int32_t>::min()), 0);
        ASSERT_EQ(writer.WriteUInt64(0x0123456789ABCDEFull), 0);
        ASSERT_EQ(writer.WriteInt64(-2), 0);
        ASSERT_EQ(writer.WriteFourCC(Four("RIFF")), 0);
        ASSERT_EQ(writer.WriteGuid(guid), 0);
        ASSERT_EQ(writer.WriteFloat(-0.15625f), 0);
        ASSERT_EQ(writer.WriteDouble(6.02214076e23), 0);
        for (double value : extendedValues)
            ASSERT_EQ(writer.WriteExtended(value), 0);
        // The four-character code lies big-endian whatever the order.
        EXPECT_EQ(std::memcmp(stream->GetData() + 1 + 1 + 2 + 2 + 3 + 3 + 4 + 4 + 8 + 8, "RIFF", 4),
                  0);

        stream->Seek(0, CStream::Begin);
        CBinaryReader reader(stream, order);
        uint8_t u8; int8_t i8; uint16_t u16; int16_t i16; uint32_t u24; int32_t i24;
        uint32_t u32; int32_t i32; uint64_t u64; int64_t i64; uint32_t four; _Guid g{};
        float f; double d;
        ASSERT_EQ(reader.ReadUInt8(u8), 0);
        ASSERT_EQ(reader.ReadInt8(i8), 0);
        ASSERT_EQ(reader.ReadUInt16(u16), 0);
        ASSERT_EQ(reader.ReadInt16(i16), 0);
        ASSERT_EQ(reader.ReadUInt24(u24), 0);
        ASSERT_EQ(reader.ReadInt24(i24), 0);
        ASSERT_EQ(reader.ReadUInt32(u32), 0);
        ASSERT_EQ(reader.ReadInt32(i32), 0);
        ASSERT_EQ(reader.ReadUInt64(u64), 0);
        ASSERT_EQ(reader.ReadInt64(i64), 0);
        ASSERT_EQ(reader.ReadFourCC(four), 0);
        ASSERT_EQ(reader.ReadGuid(g), 0);
        ASSERT_EQ(reader.ReadFloat(f), 0);
        ASSERT_EQ(reader.ReadDouble(d), 0);
        EXPECT_EQ(u8, 0xFE);
        EXPECT_EQ(i8, -2);
        EXPECT_EQ(u16, 0xBEEF);
        EXPECT_EQ(i16, -12345);
        EXPECT_EQ(u24, 0xABCDEFu);
        EXPECT_EQ(i24, -8388608);
        EXPECT_EQ(u32, 0xCAFEBABEu);
        EXPECT_EQ(i32, std::numeric_limits<int32_t>::min());
        EXPECT_EQ(u64, 0x0123456789ABCDEFull);
        EXPECT_EQ(i64, -2);
        EXPECT_EQ(four, Four("RIFF"));
        EXPECT_TRUE(g == guid);
        EXPECT_EQ(f, -0.15625f);
        EXPECT_EQ(d, 6.02214076e23);
        for (double value : extendedValues) {
            double back = -7;
            ASSERT_EQ(reader.ReadExtended(back), 0);
            EXPECT_EQ(back, value);
        }
        uint8_t end = 0;
        EXPECT_EQ(reader.ReadUInt8(end), RESULT_END_OF_STREAM);
    }
}

TEST(BinaryReader, GuidLayouts)
{
    // The Wave64 RIFF identifier as it lies in a file.
    const std::vector<unsigned char> bytes = {0x72, 0x69, 0x66, 0x66, 0x2E, 0x91, 0xCF, 0x11,
                                              0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00};
    _Guid riff{};
    ASSERT_EQ(_Guid::Parse("{66666972-912E-11CF-A5D6-28DB04C10000}", riff), 0);
    RObject<CMemoryStream> stream(StreamOf(bytes));
    CBinaryReader reader(stream, ByteOrder::BigEndian);
    _Guid read{};
    ASSERT_EQ(reader.ReadGuid(read), 0);
    EXPECT_TRUE(read == riff);
    stream->Seek(0, CStream::Begin);
    ASSERT_EQ(reader.ReadGuid(read, GuidByteOrder::BigEndian), 0);
    EXPECT_EQ(read.Data1, 0x72696666u);
}

TEST(BinaryReader, ExtendedMatchesTheAiffEncoding)
{
    // 44,100 Hz as an AIFF COMM chunk stores it.
    RObject<CMemoryStream> stream =
        StreamOf({0x40, 0x0E, 0xAC, 0x44, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
    CBinaryReader reader(stream, ByteOrder::BigEndian);
    double rate = 0;
    ASSERT_EQ(reader.ReadExtended(rate), 0);
    EXPECT_EQ(rate, 44100.0);
}

TEST(BinaryWriter, ShortAndFailedWritesAreFailures)
{
    RObject<CMemoryStream> full(new CMemoryStream(3));
    CBinaryWriter writer(full, ByteOrder::BigEndian);
    EXPECT_EQ(writer.WriteUInt32(1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(full->GetLength(), 0);
    EXPECT_EQ(writer.WriteUInt16(0x0102), 0);
    EXPECT_EQ(writer.WriteUInt(9, 0), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(full->GetData()[0], 1);
}
