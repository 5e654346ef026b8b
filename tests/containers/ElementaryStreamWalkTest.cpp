// The start-code unit walk and the presentation order that every raw video
// stream reader stands on.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include <vek/containers/readers/elementary/PresentationOrder.h>
#include <vek/containers/readers/elementary/StartCodeUnitReader.h>
#include <vek/io/CMemoryStream.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {
namespace {

struct ExpectedUnit {
    int64_t start, payload, end;
};

// The units of `bytes` found the slow way.
std::vector<ExpectedUnit> NaiveUnits(const std::vector<uint8_t>& bytes)
{
    std::vector<ExpectedUnit> units;
    for (size_t i = 2; i < bytes.size(); ++i) {
        if (bytes[i] != 1 || bytes[i - 1] != 0 || bytes[i - 2] != 0)
            continue;
        const int64_t start = int64_t(i) - (i >= 3 && bytes[i - 3] == 0 ? 3 : 2);
        if (!units.empty())
            units.back().end = start;
        units.push_back({start, int64_t(i) + 1, int64_t(bytes.size())});
    }
    return units;
}

std::vector<uint8_t> StreamWithPrefixes(size_t size, const std::vector<size_t>& prefixAt, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(size);
    for (auto& byte : bytes)
        byte = uint8_t(2 + random() % 254); // no zeros: only the planted prefixes
    for (size_t at : prefixAt) {
        bytes[at] = 0;
        bytes[at + 1] = 0;
        bytes[at + 2] = 0;
        bytes[at + 3] = 1;
    }
    return bytes;
}

TEST(StartCodeUnitReader, FindsEveryUnitWithItsHeadAcrossBlocks)
{
    const size_t block = StartCodeUnitReader::BlockSize;
    struct Case {
        const char* name;
        size_t size;
        std::vector<size_t> prefixes;
        int32_t head;
    } cases[] = {
        {"leading garbage", 5000, {100, 200, 4000}, 64},
        {"prefix at zero, unit to the end", 3000, {0, 10, 11 + 3}, 4096},
        {"prefix split over a block edge", block * 2 + 77, {0, block - 2, block + 500, 2 * block - 1}, 4096},
        {"head longer than a block's rest", block + 9000, {block - 100, block + 8000}, 8192},
        {"no prefix", 2000, {}, 16},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::vector<uint8_t> bytes = StreamWithPrefixes(c.size, c.prefixes, 7);
        RObject<CMemoryStream> stream(new CMemoryStream(int32_t(bytes.size()), bytes.data()));
        StartCodeUnitReader reader;
        ASSERT_EQ(reader.Reset(stream, 0, c.head), 0);
        const std::vector<ExpectedUnit> expected = NaiveUnits(bytes);
        StartCodeUnitReader::Unit unit;
        size_t found = 0;
        int result = 0;
        while ((result = reader.Next(unit)) == 0) {
            ASSERT_LT(found, expected.size());
            const ExpectedUnit& want = expected[found++];
            EXPECT_EQ(unit.start, want.start);
            EXPECT_EQ(unit.payload, want.payload);
            EXPECT_EQ(unit.end, want.end);
            const int64_t headSize = std::min<int64_t>(c.head, want.end - want.payload);
            ASSERT_EQ(unit.headSize, headSize);
            EXPECT_TRUE(std::equal(unit.head, unit.head + headSize, bytes.begin() + want.payload));
        }
        EXPECT_EQ(result, 1);
        EXPECT_EQ(found, expected.size());
        EXPECT_EQ(reader.GetLeadingBytes(), expected.empty() ? int64_t(c.size) : expected.front().start);
    }
}

TEST(StartCodeUnitReader, RefusesBadArguments)
{
    StartCodeUnitReader reader;
    RObject<CMemoryStream> stream(new CMemoryStream(16));
    EXPECT_EQ(reader.Reset(nullptr), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(reader.Reset(stream, 0, 0), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(reader.Reset(stream, -1, 16), RESULT_ARGUMENT_OUT_OF_RANGE);
}

struct Coded {
    int64_t key;
    bool startsPeriod;
    int32_t duration;
};

// Pushes pictures, pops them all; the pictures in decode order with times.
std::vector<CodedPicture> Place(const std::vector<Coded>& stream, int64_t declaredDelay = 0)
{
    PresentationOrder order;
    order.Reset(declaredDelay);
    std::vector<CodedPicture> out;
    CodedPicture picture;
    for (const Coded& coded : stream) {
        CodedPicture in;
        in.displayKey = coded.key;
        in.startsPeriod = coded.startsPeriod;
        in.duration = coded.duration;
        EXPECT_TRUE(order.Push(in));
        while (order.Pop(picture))
            out.push_back(picture);
    }
    order.Finish();
    while (order.Pop(picture))
        out.push_back(picture);
    return out;
}

// Repeats a GOP of display keys `count` times, each GOP a new period.
std::vector<Coded> Gops(const std::vector<int64_t>& keys, int count, int32_t duration = 2)
{
    std::vector<Coded> stream;
    for (int gop = 0; gop < count; ++gop)
        for (size_t i = 0; i < keys.size(); ++i)
            stream.push_back({keys[i], i == 0, duration});
    return stream;
}

TEST(PresentationOrder, ShowsPicturesInDisplayOrderFromTheSmallestSafeDelay)
{
    struct Case {
        const char* name;
        std::vector<Coded> stream;
        int64_t expectedDelay;
    } cases[] = {
        {"intra only", Gops({0}, 5), 0},
        {"I P B B", Gops({0, 6, 2, 4, 12, 8, 10}, 8), 2},
        {"B pyramid", Gops({0, 16, 8, 4, 2, 6, 12, 10, 14}, 70), 6},
        {"one long period", Gops({0, 6, 2, 4, 12, 8, 10, 18, 14, 16}, 1), 2},
        {"open GOP leading pictures", {{0, true, 2}, {6, false, 2}, {2, false, 2}, {4, false, 2}, {12, true, 2},
                                       {8, false, 2}, {10, false, 2}}, 2},
        {"fields", {{0, true, 1}, {1, false, 1}, {6, false, 1}, {7, false, 1}, {2, false, 1}, {3, false, 1},
                    {4, false, 1}, {5, false, 1}}, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::vector<CodedPicture> placed = Place(c.stream);
        ASSERT_EQ(placed.size(), c.stream.size());
        std::vector<CodedPicture> shown = placed;
        std::stable_sort(shown.begin(), shown.end(), [](const CodedPicture& a, const CodedPicture& b) {
            return a.presentationTime < b.presentationTime;
        });
        int64_t clock = c.expectedDelay;
        int64_t decodeClock = 0;
        for (size_t i = 0; i < placed.size(); ++i) {
            EXPECT_EQ(placed[i].decodeIndex, int64_t(i));
            EXPECT_EQ(placed[i].decodeTime, decodeClock);
            EXPECT_GE(placed[i].presentationTime, placed[i].decodeTime);
            decodeClock += placed[i].duration;
        }
        for (size_t i = 0; i < shown.size(); ++i) {
            EXPECT_EQ(shown[i].presentationTime, clock) << "shown " << i;
            clock += shown[i].duration;
            if (i > 0) {
                EXPECT_TRUE(shown[i - 1].period < shown[i].period ||
                            (shown[i - 1].period == shown[i].period && shown[i - 1].displayKey < shown[i].displayKey));
            }
        }
    }
}

TEST(PresentationOrder, KeepsADeclaredDelayAndNeverStalls)
{
    const std::vector<CodedPicture> delayed = Place(Gops({0, 2, 4}, 3), 6);
    ASSERT_FALSE(delayed.empty());
    EXPECT_EQ(delayed.front().presentationTime, 6);

    // A stream reordering further than any decoder can still comes out whole.
    std::vector<Coded> wild;
    wild.push_back({1000, true, 2});
    for (int i = 0; i < 200; ++i)
        wild.push_back({i, false, 2});
    EXPECT_EQ(Place(wild).size(), wild.size());
}

} // namespace
} // namespace Quorvex::Vek
