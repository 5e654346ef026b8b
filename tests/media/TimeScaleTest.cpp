#include <vek/media/CTimeScale.h>
#include <vek/media/Rational.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace Quorvex::Vek;

namespace {
constexpr int64_t Max = std::numeric_limits<int64_t>::max();
constexpr int64_t Min = std::numeric_limits<int64_t>::min();
} // namespace

TEST(TimeScale, Construction)
{
    EXPECT_EQ(CTimeScale().GetTimeScale(), 10000000);
    EXPECT_EQ(CTimeScale(int64_t{48000}).GetTimeScale(), 48000);
    EXPECT_EQ(CTimeScale(90000).GetTimeScale(), 90000);

    struct Case {
        double rate;
        int64_t scale;
    };
    const Case rates[] = {
        {29.97, 2997}, {25.0, 2500}, {23.976, 2398}, {59.94, 5994}, {0.001, 1},
        {std::nan(""), 0}, {1e300, Max}, {-1e300, Min},
    };
    for (const Case& c : rates)
        EXPECT_EQ(CTimeScale(c.rate).GetTimeScale(), c.scale) << c.rate;
}

// Every conversion shares the rounding rule: up only when the fraction is
// strictly above one half, so exact halves go down and negatives truncate.
TEST(TimeScale, ConversionsRoundHalfDown)
{
    struct Case {
        const char* what;
        int64_t scale;
        std::function<int64_t(const CTimeScale&)> convert;
        int64_t expected;
    };
    const CTimeScale one(1);
    const Case cases[] = {
        {"ToTime 1 of 2 in 1", 2, [](auto& s) { return s.ToTime(1, 1); }, 0},
        {"ToTime 3 of 2 in 1", 2, [](auto& s) { return s.ToTime(3, 1); }, 1},
        {"ToTime 5 of 2 in 1", 2, [](auto& s) { return s.ToTime(5, 1); }, 2},
        {"ToTime 2 of 3 in 1", 3, [](auto& s) { return s.ToTime(2, 1); }, 1},
        {"ToTime 1 of 3 in 1", 3, [](auto& s) { return s.ToTime(1, 1); }, 0},
        {"ToTime -3 of 2 in 1", 2, [](auto& s) { return s.ToTime(-3, 1); }, -1},
        {"ToTime -2 of 3 in 1", 3, [](auto& s) { return s.ToTime(-2, 1); }, 0},
        {"ToTime ticks to 48k", 10000000, [](auto& s) { return s.ToTime(10000000, 48000); }, 48000},
        {"ToTime 1 of 48k in ticks", 48000, [](auto& s) { return s.ToTime(1, 10000000); }, 208},
        {"ToTime 0", 7, [](auto& s) { return s.ToTime(0, 1); }, 0},
        {"ToTime zero scale", 0, [](auto& s) { return s.ToTime(5, 1); }, 0},
        {"ToTime saturates", 1, [](auto& s) { return s.ToTime(Max, Max); }, Max},
        {"ToTime saturates low", 1, [](auto& s) { return s.ToTime(Min, Max); }, Min},
        {"ToTime by object", 2, [&](auto& s) { return s.ToTime(1, &one); }, 0},
        {"ToTime by object 3", 2, [&](auto& s) { return s.ToTime(3, &one); }, 1},
        {"ToTime null object", 2, [](auto& s) { return s.ToTime(3, nullptr); }, 0},
        // 1 s at 48 kHz in ticks, quantised to 40 ms steps.
        {"ToTime step exact", 48000, [](auto& s) { return s.ToTime(48000, 10000000, 400000); }, 10000000},
        {"ToTime step above half", 48000, [](auto& s) { return s.ToTime(1000, 10000000, 400000); }, 400000},
        {"ToTime step half", 48000, [](auto& s) { return s.ToTime(960, 10000000, 400000); }, 0},
        {"ToTime step 0", 48000, [](auto& s) { return s.ToTime(960, 10000000, 0); }, 0},
        {"ToTime step of 0", 48000, [](auto& s) { return s.ToTime(0, 10000000, 400000); }, 0},
        {"FromTime half", 2, [](auto& s) { return s.FromTime(1, 4); }, 0},
        {"FromTime 1.5", 2, [](auto& s) { return s.FromTime(3, 4); }, 1},
        {"FromTime 2.5", 2, [](auto& s) { return s.FromTime(5, 4); }, 2},
        {"FromTime 2.75", 2, [](auto& s) { return s.FromTime(11, 8); }, 3},
        {"FromTime by object", 30000, [](auto& s) {
             const CTimeScale ticks;
             return s.FromTime(10000000, &ticks);
         }, 30000},
        {"FromTime zero scale", 2, [](auto& s) { return s.FromTime(5, int64_t{0}); }, 0},
        {"FromSeconds 0.25", 2, [](auto& s) { return s.FromSeconds(0.25); }, 0},
        {"FromSeconds 0.75", 2, [](auto& s) { return s.FromSeconds(0.75); }, 1},
        {"FromSeconds 0.875", 2, [](auto& s) { return s.FromSeconds(0.875); }, 2},
        {"FromSeconds -0.875", 2, [](auto& s) { return s.FromSeconds(-0.875); }, -1},
        {"FromSeconds nan", 2, [](auto& s) { return s.FromSeconds(std::nan("")); }, 0},
        {"FromSeconds inf", 2, [](auto& s) { return s.FromSeconds(HUGE_VAL); }, Max},
        {"FromSeconds -inf", 2, [](auto& s) { return s.FromSeconds(-HUGE_VAL); }, Min},
        {"ToMilliseconds half", 2000, [](auto& s) { return s.ToMilliseconds(1); }, 0},
        {"ToMilliseconds 1.5", 2000, [](auto& s) { return s.ToMilliseconds(3); }, 1},
        {"ToMilliseconds 48k", 48000, [](auto& s) { return s.ToMilliseconds(25); }, 1},
        {"FromMilliseconds half", 500, [](auto& s) { return s.FromMilliseconds(1); }, 0},
        {"FromMilliseconds 2.5", 500, [](auto& s) { return s.FromMilliseconds(5); }, 2},
        {"FromMilliseconds 48k", 48000, [](auto& s) { return s.FromMilliseconds(1000); }, 48000},
        {"ToTicks half", 20000000, [](auto& s) { return s.ToTicks(1); }, 0},
        {"ToTicks third", 3, [](auto& s) { return s.ToTicks(1); }, 3333333},
        {"ToTicks two thirds", 3, [](auto& s) { return s.ToTicks(2); }, 6666667},
        {"FromTicks half", 1, [](auto& s) { return s.FromTicks(5000000); }, 0},
        {"FromTicks 1.5", 1, [](auto& s) { return s.FromTicks(15000000); }, 1},
        {"FromTicks above 1.5", 1, [](auto& s) { return s.FromTicks(15000001); }, 2},
        {"FromTicks saturates", Max, [](auto& s) { return s.FromTicks(Max); }, Max},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.convert(CTimeScale(c.scale)), c.expected) << c.what;
}

TEST(TimeScale, SecondsAreUnrounded)
{
    EXPECT_DOUBLE_EQ(CTimeScale(2).ToSeconds(3), 1.5);
    EXPECT_DOUBLE_EQ(CTimeScale(30000).ToSeconds(1001), 1001.0 / 30000.0);
    EXPECT_DOUBLE_EQ(CTimeScale(0).ToSeconds(3), 0.0);
}

TEST(TimeScale, RationalToDouble)
{
    EXPECT_DOUBLE_EQ(Rational<int64_t>(30000, 1001).ToDouble(), 30000.0 / 1001.0);
    EXPECT_DOUBLE_EQ(Rational<int64_t>(25, 0).ToDouble(), 0.0);
    EXPECT_EQ(Rational<int64_t>(1, 2), Rational<int64_t>(1, 2));
}
