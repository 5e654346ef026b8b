#include <gtest/gtest.h>

#include <vek/core/Result.h>
#include <vek/elementary/NalUnitIterator.h>
#include <vek/elementary/StartCodeScanner.h>

#include <random>
#include <vector>

using namespace Quorvex::Vek;

namespace {

using Hit = StartCodeScanner::Hit;

// Every prefix found byte by byte: the reference the scanner must match.
std::vector<Hit> NaiveHits(const std::vector<uint8_t>& data)
{
    std::vector<Hit> hits;
    for (size_t i = 2; i < data.size(); ++i) {
        if (data[i] == 1 && data[i - 1] == 0 && data[i - 2] == 0) {
            Hit h;
            h.prefixBytes = i >= 3 && data[i - 3] == 0 ? 4 : 3;
            h.payloadOffset = int64_t(i) + 1;
            h.prefixOffset = h.payloadOffset - h.prefixBytes;
            hits.push_back(h);
        }
    }
    return hits;
}

std::vector<Hit> ScanInChunks(const std::vector<uint8_t>& data, size_t chunk)
{
    StartCodeScanner scanner;
    std::vector<Hit> hits;
    for (size_t at = 0; at < data.size(); at += chunk) {
        scanner.Feed(data.data() + at, std::min(chunk, data.size() - at));
        Hit h;
        while (scanner.Next(h))
            hits.push_back(h);
    }
    return hits;
}

void ExpectSameHits(const std::vector<Hit>& expected, const std::vector<Hit>& actual, const std::string& what)
{
    ASSERT_EQ(expected.size(), actual.size()) << what;
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i].payloadOffset, actual[i].payloadOffset) << what << " hit " << i;
        EXPECT_EQ(expected[i].prefixBytes, actual[i].prefixBytes) << what << " hit " << i;
        EXPECT_EQ(expected[i].prefixOffset, actual[i].prefixOffset) << what << " hit " << i;
    }
}

// Random bytes biased towards 0 and 1, so prefixes, near misses and runs of
// zeros are frequent, at every alignment.
std::vector<uint8_t> Biased(size_t size, uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<uint8_t> data(size);
    for (auto& b : data) {
        const uint32_t r = random() % 8;
        b = r < 3 ? 0 : r == 3 ? 1 : uint8_t(random());
    }
    return data;
}

TEST(StartCodeScanner, MatchesBytewiseSearchInEveryChunking)
{
    const struct {
        const char* name;
        std::vector<uint8_t> data;
    } cases[] = {
        {"biased random", Biased(3000, 1)},
        {"sparse", [] { auto d = std::vector<uint8_t>(4000, 0x55); d[1000] = d[1001] = 0; d[1002] = 1; d[2999] = 0; d[3000] = 0; d[3001] = 0; d[3002] = 1; return d; }()},
        {"prefix at the very start", {0, 0, 1, 0x65, 0, 0, 0, 1, 0x41}},
        {"only zeros", std::vector<uint8_t>(100, 0)},
        {"zeros then one", [] { auto d = std::vector<uint8_t>(50, 0); d.push_back(1); return d; }()},
        {"no prefix", {0, 1, 0, 1, 0, 0, 2, 1}},
    };
    for (const auto& c : cases) {
        const auto expected = NaiveHits(c.data);
        for (size_t chunk : {size_t(1), size_t(2), size_t(3), size_t(5), size_t(16), size_t(17), size_t(63), size_t(4096)})
            ExpectSameHits(expected, ScanInChunks(c.data, chunk), std::string(c.name) + ", chunk " + std::to_string(chunk));
    }
}

TEST(StartCodeScanner, FindsAtEveryOffsetOfAVectorBlock)
{
    for (size_t at = 2; at < 70; ++at) {
        std::vector<uint8_t> data(80, 0xFF);
        data[at - 2] = data[at - 1] = 0;
        data[at] = 1;
        const uint8_t* found = StartCodeScanner::FindPrefixEnd(data.data() + 2, data.data() + data.size());
        EXPECT_EQ(found - data.data(), ptrdiff_t(at)) << at;
    }
}

TEST(StartCodeScanner, EmptyChunksChangeNothing)
{
    const std::vector<uint8_t> a = {0x55, 0}, b = {0}, c = {1, 0x67};
    StartCodeScanner scanner;
    Hit h;
    scanner.Feed(a.data(), a.size());
    EXPECT_FALSE(scanner.Next(h));
    scanner.Feed(nullptr, 0);
    EXPECT_FALSE(scanner.Next(h));
    scanner.Feed(b.data(), b.size());
    EXPECT_FALSE(scanner.Next(h));
    scanner.Feed(c.data(), c.size());
    ASSERT_TRUE(scanner.Next(h));
    EXPECT_EQ(h.payloadOffset, 4);
    EXPECT_EQ(h.prefixBytes, 3);
}

struct LengthCase {
    const char* name;
    std::vector<uint8_t> data;
    int lengthBytes;
    std::vector<size_t> sizes; // units before the end
    int last; // the result after them
};

TEST(NalUnitIterator, ChecksEveryLength)
{
    const LengthCase cases[] = {
        {"4-byte lengths", {0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 1, 0x06}, 4, {2, 1}, 1},
        {"2-byte lengths", {0, 3, 0x41, 1, 2, 0, 1, 0x09}, 2, {3, 1}, 1},
        {"1-byte lengths", {1, 0x67, 2, 0x68, 0xCE}, 1, {1, 2}, 1},
        {"length past the end", {0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 9, 0x06}, 4, {2}, RESULT_FORMAT_ERROR},
        {"huge length", {0xFF, 0xFF, 0xFF, 0xFF, 0x65}, 4, {}, RESULT_FORMAT_ERROR},
        {"zero length", {0, 0, 0, 2, 0x65, 0x88, 0, 0}, 2, {}, RESULT_FORMAT_ERROR},
        {"cut inside a length", {0, 1, 0x65, 0}, 2, {1}, RESULT_FORMAT_ERROR},
        {"3-byte lengths", {0, 0, 1, 0x65}, 3, {}, RESULT_ARGUMENT_OUT_OF_RANGE},
        {"empty", {}, 4, {}, 1},
    };
    for (const auto& c : cases) {
        NalUnitIterator units(c.data.data(), c.data.size(), c.lengthBytes);
        const uint8_t* unit = nullptr;
        size_t size = 0;
        for (size_t expected : c.sizes) {
            ASSERT_EQ(units.Next(unit, size), 0) << c.name;
            EXPECT_EQ(size, expected) << c.name;
            EXPECT_LE(unit + size, c.data.data() + c.data.size()) << c.name;
        }
        EXPECT_EQ(units.Next(unit, size), c.last) << c.name;
        if (c.last == RESULT_FORMAT_ERROR) {
            EXPECT_EQ(units.Next(unit, size), 1) << c.name << ": the walk stays at its end";
        }
    }
}

} // namespace
