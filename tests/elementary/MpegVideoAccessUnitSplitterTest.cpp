// Access units of MPEG-1/2 video built header by header: the structures
// no encoder at hand writes (field pairs, lone fields, long GOPs, edits).
#include <gtest/gtest.h>

#include <vector>

#include <vek/elementary/MpegVideoAccessUnitSplitter.h>

#include "elementary/MpegVideoStreamBuilder.h"
#include "support/LogCapture.h"

namespace Quorvex::Vek {
namespace {

using Builder = VekTest::MpegVideoStreamBuilder;

struct Unit {
    int64_t position;
    MpegPictureType type;
    int64_t displayKey;
    int32_t fields;
    int32_t pictures;
    bool key, startsPeriod, undecodable, sequenceEnd;
};

// Feeds every unit of `bytes`, found byte by byte; the access units.
std::vector<Unit> Split(const std::vector<uint8_t>& bytes)
{
    MpegVideoAccessUnitSplitter splitter;
    std::vector<Unit> units;
    const auto take = [&units, &splitter] {
        const MpegVideoAccessUnit& u = splitter.GetCompleted();
        units.push_back({u.position, u.type, u.displayKey, u.displayedFields, u.pictureCount, u.key, u.startsPeriod,
                         u.undecodable, u.sequenceEnd});
    };
    for (size_t i = 0; i + 3 < bytes.size(); ++i) {
        if (bytes[i] != 0 || bytes[i + 1] != 0 || bytes[i + 2] != 1)
            continue;
        const int result = splitter.Feed(int64_t(i), bytes.data() + i + 3, bytes.size() - i - 3);
        EXPECT_GE(result, 0) << "unit at " << i;
        if (result == 1)
            take();
    }
    if (splitter.Finish(int64_t(bytes.size())) == 1)
        take();
    return units;
}

TEST(MpegVideoAccessUnitSplitter, FieldPairsAreOneAccessUnitAndLoneFieldsStandAlone)
{
    Builder b;
    b.SequenceHeader(720, 576, false);
    b.Gop(true);
    const int64_t pair = 0;
    b.Picture(Builder::I, 1, Builder::TopField);
    b.Picture(Builder::P, 1, Builder::BottomField);
    const int64_t lone = int64_t(b.bytes.size());
    b.Picture(Builder::B, 0, Builder::BottomField);
    const int64_t frame = int64_t(b.bytes.size());
    b.Picture(Builder::B, 0, Builder::Frame);
    const int64_t sameParity = int64_t(b.bytes.size());
    b.Picture(Builder::P, 3, Builder::TopField);
    const int64_t sameParitySecond = int64_t(b.bytes.size());
    b.Picture(Builder::P, 3, Builder::TopField);
    b.SequenceEnd();

    VekTest::LogCapture log(2);
    const std::vector<Unit> units = Split(b.bytes);
    ASSERT_EQ(units.size(), 5u);
    const struct {
        int64_t position;
        int32_t pictures, fields;
        int64_t displayKey;
    } expected[] = {{pair, 2, 2, 2}, {lone, 1, 1, 0}, {frame, 1, 2, 0}, {sameParity, 1, 1, 6},
                    {sameParitySecond, 1, 1, 7}};
    for (size_t i = 0; i < units.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(units[i].position, expected[i].position);
        EXPECT_EQ(units[i].pictures, expected[i].pictures);
        EXPECT_EQ(units[i].fields, expected[i].fields);
        EXPECT_EQ(units[i].displayKey, expected[i].displayKey);
    }
    EXPECT_TRUE(units[0].key);
    EXPECT_TRUE(units.back().sequenceEnd);
    EXPECT_GE(log.Count("has no partner"), 2u);
}

TEST(MpegVideoAccessUnitSplitter, OutputOrderRestartsAtGroupsAndSurvivesLongGroups)
{
    struct Case {
        const char* name;
        int pictures; // I then P pictures, in one GOP
    } cases[] = {{"short", 5}, {"longer than ten bits of temporal reference", 2100}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Builder b;
        b.SequenceHeader(352, 288);
        b.Gop(true);
        for (int i = 0; i < c.pictures; ++i)
            b.Picture(i == 0 ? Builder::I : Builder::P, uint32_t(i), Builder::Frame, true, false, 1);
        b.Gop(true);
        b.Picture(Builder::I, 0);
        const std::vector<Unit> units = Split(b.bytes);
        ASSERT_EQ(units.size(), size_t(c.pictures + 1));
        for (int i = 1; i < c.pictures; ++i)
            ASSERT_EQ(units[size_t(i)].displayKey, units[size_t(i - 1)].displayKey + 2) << i;
        EXPECT_TRUE(units.back().startsPeriod);
        EXPECT_TRUE(units.back().key);
        EXPECT_EQ(units.back().displayKey, 0);
    }
}

TEST(MpegVideoAccessUnitSplitter, LeadingBPicturesOfAnOpenStartAreUndecodable)
{
    struct Case {
        const char* name;
        bool closed, brokenLink, secondGop;
        std::vector<bool> undecodable; // of I B B P B
    } cases[] = {
        {"open group at the start", false, false, false, {false, true, true, false, false}},
        {"closed group", true, false, false, {false, false, false, false, false}},
        {"broken link after an edit", false, true, true, {false, true, true, false, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Builder b;
        b.SequenceHeader(352, 288);
        if (c.secondGop) {
            b.Gop(true);
            b.Picture(Builder::I, 0);
            b.Picture(Builder::P, 1);
        }
        b.Gop(c.closed, c.brokenLink);
        b.Picture(Builder::I, 2);
        b.Picture(Builder::B, 0);
        b.Picture(Builder::B, 1);
        b.Picture(Builder::P, 5);
        b.Picture(Builder::B, 3);
        const std::vector<Unit> units = Split(b.bytes);
        const size_t skip = c.secondGop ? 2 : 0;
        ASSERT_EQ(units.size(), skip + c.undecodable.size());
        for (size_t i = 0; i < c.undecodable.size(); ++i)
            EXPECT_EQ(units[skip + i].undecodable, c.undecodable[i]) << i;
    }
}

} // namespace
} // namespace Quorvex::Vek
