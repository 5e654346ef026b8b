#include <gtest/gtest.h>

#include <vector>

#include <support/LogCapture.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/AudioChannelMap.h>

using namespace Quorvex::Vek;

namespace {

using P = CAudioProperties;
constexpr int16_t Silent = AudioChannelMap::Silent;

// A side of a map: its speaker positions, or only a count when none are
// given (positions 0 mark a channel without one).
struct Side {
    int32_t channels;
    std::vector<uint32_t> positions;
};

RObject<CAudioProperties> Make(const Side& side)
{
    RObject<CAudioProperties> properties(new CAudioProperties());
    EXPECT_EQ(properties->SetChannels(side.channels), RESULT_OK);
    for (size_t i = 0; i < side.positions.size(); ++i)
        EXPECT_EQ(properties->SetSpeakerPosition(int32_t(i), side.positions[i]), RESULT_OK);
    return properties;
}

struct MapCase {
    const char* name;
    Side input;
    Side output;
    std::vector<int16_t> sources;
};

const std::vector<uint32_t> Stereo = {P::SpeakerFrontLeft, P::SpeakerFrontRight};
const std::vector<uint32_t> FiveOne = {P::SpeakerFrontLeft,    P::SpeakerFrontRight, P::SpeakerFrontCenter,
                                       P::SpeakerLowFrequency, P::SpeakerBackLeft,   P::SpeakerBackRight};

const MapCase Cases[] = {
    {"same count by index", {2, {}}, {2, {}}, {0, 1}},
    {"fewer outputs drop the extra inputs", {6, {}}, {2, {}}, {0, 1}},
    {"more outputs are silent", {1, {}}, {3, {}}, {0, Silent, Silent}},
    {"5.1 to stereo by position", {6, FiveOne}, {2, Stereo}, {0, 1}},
    {"stereo to 5.1: positions the input lacks are silent",
     {2, Stereo},
     {6, FiveOne},
     {0, 1, Silent, Silent, Silent, Silent}},
    {"reordered positions",
     {3, {P::SpeakerFrontCenter, P::SpeakerFrontRight, P::SpeakerFrontLeft}},
     {3, {P::SpeakerFrontLeft, P::SpeakerFrontCenter, P::SpeakerFrontRight}},
     {2, 0, 1}},
    {"a repeated input position gives its first channel",
     {3, {P::SpeakerFrontLeft, P::SpeakerFrontLeft, P::SpeakerFrontRight}},
     {2, Stereo},
     {0, 2}},
    {"an input channel without a position pairs by index", {2, {P::SpeakerFrontRight, 0}}, {2, Stereo}, {0, 1}},
    {"an output channel without a position pairs by index",
     {2, {P::SpeakerFrontRight, P::SpeakerFrontLeft}},
     {2, {P::SpeakerFrontLeft, 0}},
     {0, 1}},
};

TEST(AudioChannelMap, PairsByPositionWhenEveryChannelHasOneAndByIndexOtherwise)
{
    for (const MapCase& c : Cases) {
        AudioChannelMap map;
        ASSERT_EQ(map.Build(Make(c.input), Make(c.output)), RESULT_OK) << c.name;
        ASSERT_EQ(map.GetInputChannels(), c.input.channels) << c.name;
        ASSERT_EQ(map.GetOutputChannels(), int32_t(c.sources.size())) << c.name;
        EXPECT_EQ(std::vector<int16_t>(map.GetSources(), map.GetSources() + c.sources.size()), c.sources) << c.name;
        const bool identity = c.input.channels == c.output.channels && c.sources == std::vector<int16_t>{0, 1};
        EXPECT_EQ(map.IsIdentity(), identity) << c.name;
    }
}

TEST(AudioChannelMap, RefusesChannelCountsOutsideTheBoundsAndKeepsTheMap)
{
    struct Counts {
        int32_t input, output;
        const char* logged;
    };
    const Counts refused[] = {
        {0, 2, "input channels 0"},
        {2, 0, "output channels 0"},
        {P::MaxChannels + 1, 2, "input channels 1025"},
        {2, -1, "output channels -1"},
    };
    AudioChannelMap map;
    ASSERT_EQ(map.BuildByIndex(2, 1), RESULT_OK);
    for (const Counts& c : refused) {
        VekTest::LogCapture log(1);
        EXPECT_EQ(map.BuildByIndex(c.input, c.output), RESULT_ARGUMENT_OUT_OF_RANGE) << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        EXPECT_EQ(std::pair(map.GetInputChannels(), map.GetOutputChannels()), std::pair(2, 1)) << "the map is kept";
    }
    EXPECT_EQ(map.Build(nullptr, nullptr), RESULT_ARGUMENT_NULL);
    ASSERT_EQ(map.BuildByIndex(P::MaxChannels, P::MaxChannels), RESULT_OK);
    EXPECT_TRUE(map.IsIdentity());
}

} // namespace
