// Which pictures a decoder outputs when a new coded video sequence starts:
// the pictures still waiting then are output, or dropped when the new
// sequence's first picture says so.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vek/elementary/HevcPictureOutput.h>

namespace Quorvex::Vek {
namespace {

struct Fed {
    int64_t poc;
    bool output;
    bool startsSequence;
    bool dropsWaiting;
};

// The fates in decode order: 'o' output, 'x' not.
std::string Fates(const std::vector<Fed>& pictures, uint32_t maxReorder)
{
    HevcPictureOutput process;
    process.Reset();
    std::string fates;
    bool output = false;
    for (const Fed& fed : pictures) {
        HevcPictureOutput::Picture picture;
        picture.picOrderCount = fed.poc;
        picture.output = fed.output;
        picture.startsSequence = fed.startsSequence;
        picture.dropsWaiting = fed.dropsWaiting;
        picture.maxReorder = maxReorder;
        while (!process.HasRoom() && process.TakeDecided(output))
            fates += output ? 'o' : 'x';
        EXPECT_TRUE(process.Decode(picture));
        while (process.TakeDecided(output))
            fates += output ? 'o' : 'x';
    }
    process.Finish();
    while (process.TakeDecided(output))
        fates += output ? 'o' : 'x';
    return fates;
}

TEST(HevcPictureOutput, DropsOnlyWhatStillWaitsWhenASequenceStartsWithoutPriorOutput)
{
    // A GOP I0 P4 B2 b1 b3 (decode order) with a reorder depth of 2, then a
    // new sequence's first picture.
    const std::vector<Fed> gop = {{0, true, true, false}, {4, true, false, false}, {2, true, false, false},
                                  {1, true, false, false}, {3, true, false, false}};
    struct Case {
        const char* name;
        std::vector<Fed> pictures;
        uint32_t maxReorder;
        const char* fates;
    } cases[] = {
        // With P5 after b3, 4 and 5 still wait when the new sequence starts.
        {"dropping start", {}, 2, "oxoooxo"},
        {"outputting start", {}, 2, "oooooo"},
        // Depth 0: each picture is output once decoded; none waits.
        {"dropping start, no reordering", {}, 0, "oooooo"},
        {"a picture not output is never waiting", {{0, false, true, false}, {1, true, false, false}}, 1, "xo"},
    };
    cases[0].pictures = gop;
    cases[0].pictures.push_back({0, true, true, true});
    cases[0].pictures.insert(cases[0].pictures.begin() + 5, {5, true, false, false});
    cases[1].pictures = gop;
    cases[1].pictures.push_back({0, true, true, false});
    cases[2].pictures = gop;
    cases[2].pictures.push_back({0, true, true, true});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Fates(c.pictures, c.maxReorder), c.fates);
    }
}

TEST(HevcPictureOutput, AFullQueueTakesItsEarliestPictureAsOutput)
{
    // One picture of high order count waits behind ever lower ones with no
    // reordering room to bump it: the queue must not grow without bound.
    std::vector<Fed> pictures = {{1000, true, false, false}};
    for (int i = 0; i < 3 * HevcPictureOutput::Capacity; ++i)
        pictures.push_back({i, false, false, false});
    pictures.push_back({0, true, true, true});
    const std::string fates = Fates(pictures, 4);
    ASSERT_EQ(fates.size(), pictures.size());
    EXPECT_EQ(fates.front(), 'o');
}

} // namespace
} // namespace Quorvex::Vek
