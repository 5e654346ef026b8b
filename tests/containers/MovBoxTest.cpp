// The box walk every QuickTime/MP4 parser goes through: header forms, and
// sizes that lie about their parent.
#include <gtest/gtest.h>

#include "support/LogCapture.h"

#include <vek/Vek.h>

#include <string>
#include <vector>

using namespace Quorvex::Vek;
using VekTest::LogCapture;

namespace {

using Bytes = std::vector<uint8_t>;

void Put32(Bytes& out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(uint8_t(value >> shift));
}

void PutType(Bytes& out, const char* type)
{
    out.insert(out.end(), type, type + 4);
}

struct Walked {
    std::vector<std::string> types;
    std::vector<size_t> sizes;
    int end = 0;
};

Walked Walk(const Bytes& bytes)
{
    Walked walked;
    MovBoxIterator children(bytes.data(), bytes.size(), 100, Four("moov"));
    MovBox box;
    while ((walked.end = children.Next(box)) == RESULT_OK) {
        walked.types.push_back(std::string(reinterpret_cast<const char*>(bytes.data()) + (box.fileOffset - 100) + 4, 4));
        walked.sizes.push_back(box.size);
        EXPECT_EQ(box.payload, bytes.data() + (box.fileOffset - 100) + box.headerSize);
    }
    return walked;
}

TEST(MovBoxIterator, ReadsEveryHeaderForm)
{
    Bytes bytes;
    Put32(bytes, 12); // compact
    PutType(bytes, "free");
    Put32(bytes, 0xAABBCCDD);
    Put32(bytes, 1); // 64-bit size
    PutType(bytes, "mdat");
    Put32(bytes, 0);
    Put32(bytes, 18);
    bytes.push_back(1);
    bytes.push_back(2);
    Put32(bytes, 26); // user type
    PutType(bytes, "uuid");
    for (int i = 0; i < 16; ++i)
        bytes.push_back(uint8_t(i));
    bytes.push_back(9);
    bytes.push_back(9);
    Put32(bytes, 0); // to the end
    PutType(bytes, "skip");
    bytes.push_back(7);

    const Walked walked = Walk(bytes);
    EXPECT_EQ(walked.end, 1);
    EXPECT_EQ(walked.types, (std::vector<std::string>{"free", "mdat", "uuid", "skip"}));
    EXPECT_EQ(walked.sizes, (std::vector<size_t>{4, 2, 2, 1}));
}

TEST(MovBoxIterator, EndsQuietlyAtQuickTimeTerminator)
{
    Bytes bytes;
    Put32(bytes, 8);
    PutType(bytes, "free");
    Put32(bytes, 0);
    const Walked walked = Walk(bytes);
    EXPECT_EQ(walked.end, 1);
    EXPECT_EQ(walked.types.size(), 1u);
}

TEST(MovBoxIterator, RefusesSizesThatDoNotFitTheParent)
{
    struct Case {
        const char* name;
        Bytes bytes;
    };
    Bytes past, small, cutLarge, hugeLarge, cutUuid, stray;
    Put32(past, 20);
    PutType(past, "trak");
    Put32(past, 0);
    Put32(small, 7);
    PutType(small, "trak");
    Put32(cutLarge, 1);
    PutType(cutLarge, "mdat");
    Put32(cutLarge, 0);
    Put32(hugeLarge, 1);
    PutType(hugeLarge, "mdat");
    Put32(hugeLarge, 0xFFFFFFFF);
    Put32(hugeLarge, 0xFFFFFFF0);
    Put32(cutUuid, 12);
    PutType(cutUuid, "uuid");
    Put32(cutUuid, 0);
    stray = {1, 2, 3};
    const Case cases[] = {{"past the parent", past},     {"below its header", small},
                          {"cut 64-bit size", cutLarge}, {"64-bit size past the parent", hugeLarge},
                          {"cut user type", cutUuid},    {"stray bytes", stray}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(LogLevel::Error);
        EXPECT_EQ(Walk(c.bytes).end, RESULT_FORMAT_ERROR);
        EXPECT_GE(log.Count("in 'moov'"), 1u);
    }
}

TEST(MovFieldReader, FailsStickyPastTheEnd)
{
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7};
    MovFieldReader fields(bytes, sizeof bytes);
    EXPECT_EQ(fields.Read16(), 0x0102);
    EXPECT_EQ(fields.Read24(), 0x030405u);
    EXPECT_EQ(fields.Read32(), 0u);
    EXPECT_TRUE(fields.Failed());
    EXPECT_EQ(fields.Read8(), 0);
    EXPECT_EQ(fields.Remaining(), 0u);
}

} // namespace
