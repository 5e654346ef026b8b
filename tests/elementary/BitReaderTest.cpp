#include <gtest/gtest.h>

#include <vek/elementary/BitReader.h>

#include "BitWriter.h"

#include <random>
#include <vector>

using namespace Quorvex::Vek;

namespace {

using VekTest::BitWriter;

TEST(BitReader, ExpGolombRoundTripsThroughEscapes)
{
    std::mt19937 random(7);
    const uint32_t edges[] = {0, 1, 2, 3, 6, 7, 254, 255, 256, 65535, 0x7FFFFFFE, 0x7FFFFFFF, 0xFFFFFFFEu};
    std::vector<uint32_t> values(std::begin(edges), std::end(edges));
    for (int i = 0; i < 2000; ++i)
        values.push_back(random() >> (random() % 32));
    BitWriter w;
    std::vector<int> zeroRuns;
    for (uint32_t v : values) {
        w.UE(v);
        zeroRuns.push_back(int(random() % 20)); // zero runs, so escapes are needed
        w.Bits(0, zeroRuns.back());
    }
    w.Bit(1);
    const std::vector<uint8_t> escaped = w.Escaped();
    ASSERT_GT(escaped.size(), w.bytes.size()) << "the data should need escapes";

    BitReader reader(escaped.data(), escaped.size());
    for (size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(reader.ReadUE(), values[i]) << i;
        reader.SkipBits(zeroRuns[i]);
    }
    EXPECT_TRUE(reader.ReadFlag());
    EXPECT_FALSE(reader.HasError());
    EXPECT_EQ(reader.ReadBits(1), 0u); // the padding of the last byte
}

TEST(BitReader, SignedCodesAlternate)
{
    // Code k maps to (-1)^(k+1) * ceil(k / 2).
    for (uint32_t k : {0u, 1u, 2u, 3u, 4u, 100u, 0xFFFFFFFDu, 0xFFFFFFFEu}) {
        BitWriter w;
        w.UE(k);
        BitReader bits(w.bytes.data(), w.bytes.size(), BitReader::Escapes::Keep);
        const int64_t magnitude = (int64_t(k) + 1) / 2;
        EXPECT_EQ(bits.ReadSE(), k % 2 ? magnitude : -magnitude) << k;
        EXPECT_FALSE(bits.HasError());
    }
}

struct HostileCase {
    const char* name;
    std::vector<uint8_t> bytes;
    int reads; // ReadUE calls before the error is expected
};

TEST(BitReader, RefusesAndStaysFailed)
{
    const HostileCase cases[] = {
        // 32 leading zeros: the value would need 33 bits.
        {"32 zeros then 1", {0, 0, 0, 0, 0x80, 0, 0, 0, 0}, 0},
        {"endless zeros", std::vector<uint8_t>(4096, 0), 0},
        {"code cut by the end", {0x00, 0x01}, 0}, // 15 zeros, 1, then only 0 bits of suffix
        {"empty", {}, 0},
        {"one good code then nothing", {0x80}, 1},
    };
    for (const auto& c : cases) {
        BitReader bits(c.bytes.data(), c.bytes.size());
        for (int i = 0; i < c.reads; ++i)
            bits.ReadUE();
        EXPECT_FALSE(bits.HasError()) << c.name;
        EXPECT_EQ(bits.ReadUE(), 0u) << c.name;
        EXPECT_TRUE(bits.HasError()) << c.name;
        EXPECT_EQ(bits.ReadBits(1), 0u) << c.name;
        EXPECT_TRUE(bits.HasError()) << c.name;
    }
}

TEST(BitReader, ThirtyOneZerosIsTheLongestCode)
{
    BitWriter w;
    w.UE(0xFFFFFFFEu); // 31 zeros, 32 more bits
    EXPECT_EQ(w.bytes.size(), 8u);
    BitReader bits(w.bytes.data(), w.bytes.size());
    EXPECT_EQ(bits.ReadUE(), 0xFFFFFFFEu);
    EXPECT_FALSE(bits.HasError());
}

TEST(BitReader, EscapesAreDroppedOnlyAfterTwoZeros)
{
    struct Case {
        std::vector<uint8_t> raw;
        std::vector<uint8_t> payload;
    };
    const Case cases[] = {
        {{0x00, 0x00, 0x03, 0x01}, {0x00, 0x00, 0x01}},
        {{0x00, 0x03, 0x00}, {0x00, 0x03, 0x00}},
        {{0x00, 0x00, 0x03, 0x00, 0x00, 0x03}, {0x00, 0x00, 0x00, 0x00}}, // escape as the very last byte
        {{0x00, 0x00, 0x03, 0x03}, {0x00, 0x00, 0x03}},
        {{0x00, 0x00, 0x00, 0x03}, {0x00, 0x00, 0x00}},
    };
    for (const auto& c : cases) {
        BitReader bits(c.raw.data(), c.raw.size());
        for (uint8_t expected : c.payload)
            EXPECT_EQ(bits.ReadBits(8), expected);
        EXPECT_FALSE(bits.HasError());
        bits.ReadBits(1);
        EXPECT_TRUE(bits.HasError()) << "read past the payload";
        BitReader kept(c.raw.data(), c.raw.size(), BitReader::Escapes::Keep);
        kept.SkipBits(8 * c.raw.size());
        EXPECT_FALSE(kept.HasError());
    }
}

TEST(BitReader, MoreRbspDataStopsAtTheStopBit)
{
    struct Case {
        std::vector<uint8_t> raw;
        int bitsBeforeStop;
    };
    const Case cases[] = {
        {{0x80}, 0},
        {{0xA0}, 2},
        {{0xFF, 0x80, 0x00, 0x00}, 8}, // trailing zero bytes
        {{0x01, 0x00, 0x00, 0x03, 0x00}, 7}, // a trailing escape is no payload bit
        {{0x00, 0x00}, -1}, // no stop bit at all
    };
    for (const auto& c : cases) {
        BitReader bits(c.raw.data(), c.raw.size());
        int read = 0;
        while (bits.MoreRbspData()) {
            bits.ReadFlag();
            ++read;
        }
        EXPECT_EQ(read, c.bitsBeforeStop < 0 ? 0 : c.bitsBeforeStop);
    }
}

TEST(BitReader, ByteAlignment)
{
    const uint8_t data[] = {0xFF, 0x5A};
    BitReader bits(data, 2);
    EXPECT_TRUE(bits.IsByteAligned());
    bits.ReadBits(3);
    EXPECT_FALSE(bits.IsByteAligned());
    bits.SkipToByteBoundary();
    EXPECT_TRUE(bits.IsByteAligned());
    EXPECT_EQ(bits.ReadBits(8), 0x5Au);
    bits.SkipToByteBoundary();
    EXPECT_FALSE(bits.HasError());
}

} // namespace
