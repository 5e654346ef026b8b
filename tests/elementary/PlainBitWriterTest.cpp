#include <gtest/gtest.h>

#include <vek/elementary/BitReader.h>
#include <vek/elementary/PlainBitWriter.h>

using namespace Quorvex::Vek;

namespace {

struct Field {
    uint32_t value;
    int bits;
};

// Fields of every width, at every alignment, written and read back.
TEST(PlainBitWriter, PlainRecordsReadBackBitForBit)
{
    const Field fields[] = {{1, 1},          {0x5, 3},     {0xABC, 12}, {0, 0},        {0x1FFFF, 17},
                            {0xDEADBEEF, 32}, {0x3, 2},     {0x7F, 7},   {0x12345678, 32}, {0, 5}};
    uint8_t buffer[32] = {};
    PlainBitWriter writer(buffer, sizeof buffer);
    size_t bits = 0;
    for (const Field& f : fields) {
        writer.WriteBits(f.value, f.bits);
        bits += size_t(f.bits);
    }
    ASSERT_FALSE(writer.HasError());
    EXPECT_EQ(writer.BytesWritten(), (bits + 7) / 8);
    BitReader reader(buffer, writer.BytesWritten(), BitReader::Escapes::Keep);
    for (const Field& f : fields)
        EXPECT_EQ(reader.ReadBits(f.bits), f.value) << f.bits << " bits";
    EXPECT_FALSE(reader.HasError());
    EXPECT_EQ(reader.BitsConsumed(), bits);
}

TEST(BitReader, PlainRecordReadsPastTheEndGiveZeroAndAStickyError)
{
    const uint8_t bytes[2] = {0xFF, 0xFF};
    BitReader reader(bytes, sizeof bytes, BitReader::Escapes::Keep);
    EXPECT_EQ(reader.ReadBits(12), 0xFFFu);
    EXPECT_EQ(reader.BitsLeft(), 4u);
    EXPECT_EQ(reader.ReadBits(5), 0u);
    EXPECT_TRUE(reader.HasError());
    EXPECT_EQ(reader.ReadBits(1), 0u); // stays failed although a bit is left
    EXPECT_EQ(reader.BitsLeft(), 0u);

    BitReader wide(bytes, sizeof bytes, BitReader::Escapes::Keep);
    EXPECT_EQ(wide.ReadBits(33), 0u);
    EXPECT_TRUE(wide.HasError());

    BitReader skip(bytes, sizeof bytes, BitReader::Escapes::Keep);
    skip.SkipBits(3);
    skip.SkipToByteBoundary();
    EXPECT_EQ(skip.BitsConsumed(), 8u);
    skip.SkipBits(SIZE_MAX);
    EXPECT_TRUE(skip.HasError());

    BitReader none(nullptr, 100, BitReader::Escapes::Keep);
    EXPECT_EQ(none.ReadBits(1), 0u);
    EXPECT_TRUE(none.HasError());
}

TEST(PlainBitWriter, WritesPastTheBufferAreRefused)
{
    uint8_t buffer[2] = {0xAA, 0xAA};
    PlainBitWriter writer(buffer, 1);
    writer.WriteBits(0x5, 4);
    writer.WriteBits(0x1F, 5);
    EXPECT_TRUE(writer.HasError());
    EXPECT_EQ(buffer[1], 0xAA);
    EXPECT_EQ(buffer[0] >> 4, 0x5);
}

} // namespace
