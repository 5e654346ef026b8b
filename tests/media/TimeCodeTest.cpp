#include <vek/core/CString.h>
#include <vek/core/RObject.h>
#include <vek/media/CTimeCode.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

using namespace Quorvex::Vek;

namespace {

std::string Text(CTimeCode& tc, char separator = ';')
{
    char buffer[CTimeCode::LabelCapacity];
    return tc.ToString(buffer, separator);
}

int32_t FramesOf(double rate, bool drop, const char* label)
{
    CTimeCode tc(rate, drop);
    tc.FromString(label, true);
    return tc.GetTotalFrames();
}

// A label as one number that orders like the label.
uint32_t Key(const CTimeCode::TimeCodeTime& t)
{
    return uint32_t(t.hours) << 24 | uint32_t(t.minutes) << 16 | uint32_t(t.seconds) << 8 | t.frames;
}

} // namespace

TEST(TimeCode, RateFromDouble)
{
    struct Case {
        double rate;
        int64_t scale;
        int64_t duration;
        int32_t modulus;
    };
    const Case cases[] = {
        {29.97, 30000, 1001, 30}, {23.976, 24000, 1001, 24}, {59.94, 60000, 1001, 60},
        {47.952, 48000, 1001, 48}, {119.88, 120000, 1001, 120}, {25.0, 25, 1, 25}, {60.0, 60, 1, 60},
        {0.0, 0, 1, 0}, {-25.0, 0, 1, 0}, {std::nan(""), 0, 1, 0}, {HUGE_VAL, 0, 1, 0},
    };
    for (const Case& c : cases) {
        for (bool drop : {false, true}) {
            CTimeCode tc(c.rate, drop);
            EXPECT_EQ(tc.GetTimeScale(), c.scale) << c.rate;
            EXPECT_EQ(tc.GetDuration(), c.duration) << c.rate;
            EXPECT_EQ(tc.GetModulus(), c.modulus) << c.rate;
            EXPECT_EQ(tc.IsDropFrame(), drop) << c.rate;
            EXPECT_EQ(tc.GetTotalFrames(), 0);
        }
    }
    EXPECT_NEAR(CTimeCode(29.97, true).GetFrameRate(), 29.97003, 1e-5);
}

TEST(TimeCode, DefaultsAndReinitialisation)
{
    CTimeCode tc;
    EXPECT_EQ(tc.GetModulus(), 30);
    EXPECT_FALSE(tc.IsDropFrame());
    EXPECT_DOUBLE_EQ(tc.GetFrameRate(), 30.0);
    EXPECT_EQ(Text(tc), "00:00:00:00");

    CTimeCode at(1800);
    EXPECT_EQ(Text(at), "00:01:00:00");
    at.Initialize(30000, 1001, 30, true);
    EXPECT_EQ(at.GetTotalFrames(), 0);
    EXPECT_TRUE(at.IsDropFrame());
    EXPECT_EQ(Text(at), "00:00:00;00");
}

// Label to frames and back, for drop and non-drop rates. Labels that exist
// print back as read; a non-existent drop label reads as the first label of
// its minute.
TEST(TimeCode, LabelsAndFrames)
{
    struct Case {
        double rate;
        bool drop;
        const char* label;
        int32_t frames;
        const char* printed;
    };
    const Case cases[] = {
        {29.97, true, "00:00:00;00", 0, "00:00:00;00"},
        {29.97, true, "00:00:59;29", 1799, "00:00:59;29"},
        {29.97, true, "00:01:00;02", 1800, "00:01:00;02"},
        {29.97, true, "00:01:00;00", 1800, "00:01:00;02"},
        {29.97, true, "00:01:59;29", 3597, "00:01:59;29"},
        {29.97, true, "00:09:59;29", 17981, "00:09:59;29"},
        {29.97, true, "00:10:00;00", 17982, "00:10:00;00"},
        {29.97, true, "00:10:00;01", 17983, "00:10:00;01"},
        {29.97, true, "01:00:00;00", 107892, "01:00:00;00"},
        {29.97, true, "23:59:59;29", 2589407, "23:59:59;29"},
        {29.97, true, "24:00:00;00", 0, "00:00:00;00"},
        {59.94, true, "00:01:00;04", 3600, "00:01:00;04"},
        {59.94, true, "00:01:00;00", 3600, "00:01:00;04"},
        {59.94, true, "00:10:00;00", 35964, "00:10:00;00"},
        {59.94, true, "01:00:00;00", 215784, "01:00:00;00"},
        {29.97, false, "01:00:00:00", 108000, "01:00:00:00"},
        {25.0, false, "23:59:59:24", 2159999, "23:59:59:24"},
        {23.976, false, "00:00:01:00", 24, "00:00:01:00"},
        // Below 30 frames a drop flag drops nothing.
        {23.976, true, "00:01:00;00", 1440, "00:01:00;00"},
    };
    for (const Case& c : cases) {
        CTimeCode tc(c.rate, c.drop);
        tc.FromString(c.label);
        EXPECT_EQ(tc.IsDropFrame(), c.drop) << c.label;
        EXPECT_EQ(tc.GetTotalFrames(), c.frames) << c.label << " at " << c.rate;

        CTimeCode back(c.rate, c.drop);
        back.FromFrames(c.frames);
        EXPECT_EQ(Text(back), c.printed) << c.frames << " at " << c.rate;
    }
}

TEST(TimeCode, FramesPerDay)
{
    struct Case {
        double rate;
        bool drop;
        int64_t frames;
    };
    const Case cases[] = {
        {29.97, true, 2589408}, {29.97, false, 2592000}, {25.0, false, 2160000},
        {59.94, true, 5178816}, {23.976, true, 2073600}, {0.0, true, 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CTimeCode(c.rate, c.drop).GetMidnightValue(), c.frames) << c.rate << c.drop;
}

// Totals are wrapped into one day once, whichever way they leave it.
TEST(TimeCode, WrapsOnceIntoADay)
{
    struct Case {
        int32_t total;
        int32_t wrapped;
        const char* label;
    };
    const int32_t day = 2589408;
    const Case cases[] = {
        {day, 0, "00:00:00;00"},
        {-1, day - 1, "23:59:59;29"},
        {-day, 0, "00:00:00;00"},
        {2 * day, day, "24:00:00;00"},
        {-day - 1, -1, nullptr},
    };
    for (const Case& c : cases) {
        CTimeCode tc(29.97, true);
        tc.FromFrames(c.total);
        EXPECT_EQ(tc.GetTotalFrames(), c.total) << "not normalised until the label is derived";
        const std::string text = Text(tc);
        EXPECT_EQ(tc.GetTotalFrames(), c.wrapped) << c.total;
        if (c.label) {
            EXPECT_EQ(text, c.label) << c.total;
        }
    }
}

TEST(TimeCode, SeparatorOnlyWhenDropFrame)
{
    struct Case {
        bool drop;
        char separator;
        const char* text;
    };
    const Case cases[] = {
        {false, ';', "00:00:59:29"}, {true, ';', "00:00:59;29"},
        {true, '.', "00:00:59.29"}, {false, '.', "00:00:59:29"},
    };
    for (const Case& c : cases) {
        CTimeCode tc(29.97, c.drop);
        tc.FromFrames(1799);
        char buffer[CTimeCode::LabelCapacity];
        EXPECT_STREQ(tc.ToString(buffer, c.separator), c.text);
        EXPECT_STREQ(tc.ToString(nullptr, c.separator), c.text);
    }
}

// FromString reads like scanf("%2hhd%*c%2hhd%*c%2hhd%c%2hhd"): fields the
// text does not reach keep the current label, the separator defaults to ':'.
TEST(TimeCode, ParsingIsLenientLikeScanf)
{
    struct Case {
        const char* text;
        bool keep;
        const char* label; // printed with ';' as the drop separator
        bool drop;
    };
    // Start every case at 00:05:06;07 drop-frame.
    const Case cases[] = {
        {"01:00:00:00", true, "01:00:00;00", true},
        {"01:00:00:00", false, "01:00:00:00", false},
        {"01:00:00;00", false, "01:00:00;00", true},
        {"12", false, "12:05:06:07", false},
        {"12", true, "12:05:06;07", true},
        {"", false, "00:05:06:07", false},
        {nullptr, true, "00:05:06;07", true},
        {"01:02:03", false, "01:02:03:07", false},
        {"01:02:03;", false, "01:02:03;07", true},
        {" 1: 2: 3; 4", false, "01:02:03;04", true},
        {"+1:+2:+3;+4", false, "01:02:03;04", true},
        {"01.02.03;04", false, "01:02:03;04", true},
        {"0102030405", false, "01:20:04:05", false},
        {"123:00:00:00", false, "12:05:06:07", false},
        {"ab:cd:ef;gh", false, "00:05:06:07", false},
        {"01:02:03;xx", false, "01:02:03;07", true},
    };
    for (const Case& c : cases) {
        CTimeCode tc(29.97, true);
        tc.FromString("00:05:06;07");
        tc.FromString(c.text, c.keep);
        EXPECT_EQ(tc.IsDropFrame(), c.drop) << (c.text ? c.text : "(null)");
        EXPECT_EQ(Text(tc), c.label) << (c.text ? c.text : "(null)");
    }
}

TEST(TimeCode, StringObjects)
{
    struct Case {
        bool drop;
        const char* text;
        int32_t frames;
        const char* printed;
    };
    const Case cases[] = {
        {true, "00:01:00;00", 1800, "00:01:00;02"},
        {true, nullptr, 0, "00:00:00:00"},
    };
    for (const Case& c : cases) {
        CTimeCode tc(29.97, c.drop);
        RObject<CString> text(c.text ? new CString(c.text) : nullptr);
        tc.FromString(static_cast<CString*>(text));
        EXPECT_EQ(tc.GetTotalFrames(), c.frames) << (c.text ? c.text : "(null)");
        RObject<CString> printed(tc.ToString(';'));
        ASSERT_NE(static_cast<CString*>(printed), nullptr);
        EXPECT_EQ(printed->GetReferenceCount(), 1);
        EXPECT_STREQ(printed->GetChars(), c.printed);
    }
}

// A sign reads into a signed byte, as "%hhd" does: -1 hours is 255 hours,
// far beyond a day, and the text printed for it is cut to a label's size in
// a caller's buffer.
TEST(TimeCode, OutOfRangeLabelsPrintSafely)
{
    CTimeCode tc(25.0, false);
    tc.FromString("-1:00:00:00");
    EXPECT_EQ(tc.GetTotalFrames(), 255 * 90000 - 2160000);
    // Every derivation of the label moves such a total by one more day.
    EXPECT_STREQ(tc.ToString(nullptr, ':'), "207:00:00:00");
    char buffer[CTimeCode::LabelCapacity + 4];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_STREQ(tc.ToString(buffer, ':'), "183:00:00:0");
    EXPECT_EQ(buffer[CTimeCode::LabelCapacity], 'x');
}

// Every frame of a day: frames -> label -> frames is the identity, labels
// strictly increase, and no label uses a dropped frame number. One test per
// rate so that the sanitizer builds can run them side by side.
struct DayCase {
    double rate;
    bool drop;
    int dropped; // frame numbers skipped at minutes not divisible by ten
    int stride;
};

void PrintTo(const DayCase& c, std::ostream* out)
{
    *out << c.rate << (c.drop ? " drop-frame" : " non-drop");
}

class EveryFrameOfADay : public testing::TestWithParam<DayCase> {};

TEST_P(EveryFrameOfADay, RoundTrips)
{
    const DayCase c = GetParam();
    CTimeCode tc(c.rate, c.drop);
    const int32_t day = static_cast<int32_t>(tc.GetMidnightValue());
    CTimeCode::TimeCodeTime previous{};
    int failures = 0;
    for (int32_t frame = 0; frame < day && failures < 5; frame += c.stride) {
        tc.FromFrames(frame);
        const CTimeCode::TimeCodeTime label = tc.ToTime();
        bool ok = label.hours < 24 && label.minutes < 60 && label.seconds < 60 &&
                  label.frames < tc.GetModulus();
        ok = ok && (frame == 0 || Key(previous) < Key(label));
        ok = ok && !(label.seconds == 0 && label.frames < c.dropped && label.minutes % 10 != 0);
        tc.FromTime(label);
        ok = ok && tc.GetTotalFrames() == frame;
        if (!ok) {
            ++failures;
            ADD_FAILURE() << "frame " << frame << ": " << int(label.hours) << ":" << int(label.minutes) << ":"
                          << int(label.seconds) << ";" << int(label.frames) << " reads back as "
                          << tc.GetTotalFrames();
        }
        previous = label;
    }
    tc.FromFrames(day - 1);
    const CTimeCode::TimeCodeTime last = tc.ToTime();
    EXPECT_EQ(Key(last), Key({23, 59, 59, uint8_t(tc.GetModulus() - 1)}));
}

INSTANTIATE_TEST_SUITE_P(Rates, EveryFrameOfADay,
                         testing::Values(DayCase{29.97, true, 2, 1}, DayCase{59.94, true, 4, 1},
                                         DayCase{25.0, false, 0, 7}, DayCase{23.976, false, 0, 7}));

TEST(TimeCode, TextRoundTripsAcrossTheDay)
{
    for (double rate : {29.97, 59.94}) {
        CTimeCode tc(rate, true);
        CTimeCode parsed(rate, false);
        const int32_t day = static_cast<int32_t>(tc.GetMidnightValue());
        for (int32_t frame = 0; frame < day; frame += 101) {
            tc.FromFrames(frame);
            parsed.FromString(tc.ToString(nullptr, ';'));
            ASSERT_TRUE(parsed.IsDropFrame());
            ASSERT_EQ(parsed.GetTotalFrames(), frame) << tc.ToString(nullptr, ';');
        }
    }
}

// AddSeconds corrects for the minutes dropped in an interval of n seconds
// counted from midnight, wherever the timecode stands.
TEST(TimeCode, AddSecondsUsesMidnightCorrection)
{
    struct Case {
        double rate;
        bool drop;
        const char* start;
        int32_t seconds;
        const char* result;
    };
    const Case cases[] = {
        {29.97, true, "00:00:00;00", 60, "00:00:59;28"},
        {29.97, true, "00:00:00;00", 600, "00:10:00;00"},
        {29.97, true, "00:00:30;00", 60, "00:01:30;00"},
        {29.97, true, "00:09:30;00", 60, "00:10:29;28"},
        {29.97, true, "00:10:30;00", -60, "00:09:30;02"},
        {29.97, true, "23:59:59;29", 1, "00:00:00;29"},
        {59.94, true, "00:00:00;00", 600, "00:10:00;00"},
        {25.0, false, "00:00:00:00", 86401, "00:00:01:00"},
        {25.0, false, "00:00:00:00", -1, "23:59:59:00"},
    };
    for (const Case& c : cases) {
        CTimeCode tc(c.rate, c.drop);
        tc.FromString(c.start, true);
        tc.AddSeconds(c.seconds);
        EXPECT_EQ(Text(tc), c.result) << c.start << " + " << c.seconds << " s";
    }
}

TEST(TimeCode, FrameArithmeticWrapsTheDay)
{
    CTimeCode last(29.97, true);
    last.FromString("23:59:59;29");
    CTimeCode midnight(29.97, true);

    CTimeCode next = last + 1;
    EXPECT_EQ(Text(next), "00:00:00;00");
    CTimeCode before = midnight - 1;
    EXPECT_EQ(Text(before), "23:59:59;29");

    CTimeCode a(29.97, true), b(29.97, true);
    a.FromString("00:10:00;00");
    b.FromString("00:00:59;29");
    CTimeCode sum = a + b;
    EXPECT_EQ(sum.GetTotalFrames(), 17982 + 1799);
    CTimeCode difference = a - b;
    EXPECT_EQ(Text(difference), "00:08:59;29");
    CTimeCode negative = b - a;
    EXPECT_EQ(negative.GetTotalFrames(), 2589408 - (17982 - 1799));

    CTimeCode tc(29.97, true);
    tc.FromString("00:00:59;29");
    CTimeCode old = tc++;
    EXPECT_EQ(Text(old), "00:00:59;29");
    EXPECT_EQ(Text(tc), "00:01:00;02");
    EXPECT_EQ(Text(--tc), "00:00:59;29");
    old = tc--;
    EXPECT_EQ(old.GetTotalFrames(), 1799);
    EXPECT_EQ(tc.GetTotalFrames(), 1798);
    tc += 1802;
    EXPECT_EQ(Text(tc), "00:02:00;04");
    tc -= 3601;
    EXPECT_EQ(Text(tc), "23:59:59;29");
    tc = 17982;
    EXPECT_EQ(Text(tc), "00:10:00;00");
}

TEST(TimeCode, ComparisonsUseTotals)
{
    CTimeCode a(25.0, false), b(25.0, false);
    a = 10;
    b = 20;
    EXPECT_TRUE(a < b && a <= b && b > a && b >= a && a != b && !(a == b));
    EXPECT_TRUE(a == 10 && a != 11 && a < 11 && a <= 10 && a > 9 && a >= 10);
    b = 10;
    EXPECT_TRUE(a == b && a <= b && a >= b && !(a < b) && !(a > b));
}

TEST(TimeCode, TimeInScales)
{
    struct Case {
        int64_t scale;
        int64_t duration;
        int32_t total;
        int64_t timeScale;
        int64_t expected;
    };
    const Case cases[] = {
        {30000, 1001, 30, 1000, 1001},
        {30000, 1001, 1, 90000, 3003},
        {25, 1, 1, 48000, 1920},
        {2, 1, 1, 1, 0}, // exact half rounds down
        {2, 1, 3, 1, 1},
        {2, 1, 0, 1, 0},
        {2, 0, 7, 1, 0},
        {0, 1, 7, 1, 0},
    };
    for (const Case& c : cases) {
        CTimeCode tc(c.scale, c.duration, 30);
        tc.FromFrames(c.total);
        EXPECT_EQ(tc.GetTime(c.timeScale), c.expected) << c.scale << "/" << c.duration << " x " << c.total;
    }
    CTimeCode tc(29.97, true);
    tc.FromFrames(30);
    EXPECT_EQ(tc.GetTime(), 30030);
}

TEST(TimeCode, DecimalCoding)
{
    struct Case {
        unsigned char binary;
        unsigned char decimal;
    };
    const Case pairs[] = {{0, 0x00}, {9, 0x09}, {10, 0x10}, {23, 0x23}, {59, 0x59}, {99, 0x99}};
    for (const Case& c : pairs) {
        EXPECT_EQ(CTimeCode::BinaryToDecimal(c.binary), c.decimal) << int(c.binary);
        EXPECT_EQ(CTimeCode::DecimalToBinary(c.decimal), c.binary) << int(c.decimal);
    }
    EXPECT_EQ(CTimeCode::BinaryToDecimal(100), 0x00);
    EXPECT_EQ(CTimeCode::BinaryToDecimal(255), 0x55);
    EXPECT_EQ(CTimeCode::DecimalToBinary(0x0A), 10);
    EXPECT_EQ(CTimeCode::DecimalToBinary(0xFF), 165);

    CTimeCode tc(29.97, true);
    tc.FromString("01:23:45;12");
    const CTimeCode::TimeCodeTime bcd = tc.ToDecimal();
    EXPECT_EQ(bcd.hours, 0x01);
    EXPECT_EQ(bcd.minutes, 0x23);
    EXPECT_EQ(bcd.seconds, 0x45);
    EXPECT_EQ(bcd.frames, 0x12);
    CTimeCode copy(29.97, true);
    copy.FromDecimal(bcd);
    EXPECT_EQ(copy.GetTotalFrames(), tc.GetTotalFrames());
    EXPECT_EQ(FramesOf(29.97, true, "01:23:45;12"), tc.GetTotalFrames());
}

// A rate that was never set leaves the label alone; absurd rates and totals
// must neither crash nor overflow (the sanitizer builds check the latter).
TEST(TimeCode, DegenerateRatesStayDefined)
{
    CTimeCode unset(0, 1, 0, true);
    unset.FromString("01:02:03;04");
    EXPECT_EQ(unset.GetTotalFrames(), 4);
    EXPECT_EQ(Text(unset), "01:02:03;04");
    unset.FromFrames(123);
    EXPECT_EQ(Text(unset), "01:02:03;04");

    constexpr int32_t i32max = std::numeric_limits<int32_t>::max();
    constexpr int32_t i32min = std::numeric_limits<int32_t>::min();
    constexpr int64_t i64max = std::numeric_limits<int64_t>::max();
    const int32_t moduli[] = {1, 29, -30, -60, 30000, i32max, i32min};
    for (int32_t modulus : moduli) {
        for (bool drop : {false, true}) {
            CTimeCode tc(i64max, i64max, modulus, drop);
            for (int32_t total : {0, 1, -1, i32max, i32min}) {
                tc.FromFrames(total);
                EXPECT_LE(std::strlen(tc.ToString(nullptr, ';')), size_t(CTimeCode::TextCapacity - 1));
                tc.AddSeconds(i32max);
                tc.AddSeconds(i32min);
                tc += i32max;
                tc -= i32min;
                (void)tc.GetTime();
                (void)tc.GetTime(i64max);
                tc.FromString("99:99:99;99");
                (void)tc.ToDecimal();
            }
        }
    }
}
