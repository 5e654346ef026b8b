// The library's one %hh decoder, at the edges of its input.
#include <gtest/gtest.h>

#include <vek/core/PercentCoding.h>

#include <string>

using namespace Quorvex::Vek;
using PercentCoding::Malformed;

TEST(PercentCodingTest, DecodesEscapesAndHandlesMalformedOnesAsAsked)
{
    const char* fail = nullptr; // the Fail mode refuses the text
    struct {
        std::string input;
        size_t length; // npos: all of the input
        bool plusIsSpace;
        const char* strict; // Malformed::Fail
        const char* lenient; // Malformed::Keep
    } cases[] = {
        {"%41%62", std::string::npos, false, "Ab", "Ab"},
        {"%4a%4A", std::string::npos, false, "JJ", "JJ"},
        {"%", std::string::npos, false, fail, "%"},
        {"%4", std::string::npos, false, fail, "%4"},
        {"%%41", std::string::npos, false, fail, "%A"},
        {"%g1%41", std::string::npos, false, fail, "%g1A"},
        {"a+b", std::string::npos, false, "a+b", "a+b"},
        {"a+b%2B", std::string::npos, true, "a b+", "a b+"},
        // The length bounds the escape: the digits after it are not read.
        {"x%41", 3, false, fail, "x%4"},
        {"x%41", 2, false, fail, "x%"},
        {"", 0, false, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input + " / " + std::to_string(c.length));
        const size_t length = c.length == std::string::npos ? c.input.size() : c.length;
        for (const Malformed mode : {Malformed::Fail, Malformed::Keep}) {
            const char* want = mode == Malformed::Fail ? c.strict : c.lenient;
            std::string out(length, '\x7E');
            const int64_t n = PercentCoding::Decode(c.input.data(), length, out.data(), mode, c.plusIsSpace);
            if (!want) {
                EXPECT_EQ(n, -1);
                continue;
            }
            ASSERT_GE(n, 0);
            EXPECT_EQ(out.substr(0, size_t(n)), want);
        }
    }
}

TEST(PercentCodingTest, EveryByteValueSurvivesAsAByte)
{
    static const char digits[] = "0123456789abcdef";
    for (int value = 0; value < 256; ++value) {
        const char text[3] = {'%', digits[value >> 4], digits[value & 15]};
        char out[3] = {};
        ASSERT_EQ(PercentCoding::Decode(text, 3, out, Malformed::Fail), 1) << value;
        EXPECT_EQ(uint8_t(out[0]), value);
        EXPECT_TRUE(PercentCoding::IsEscapeAt(text, 3, 0));
        EXPECT_FALSE(PercentCoding::IsEscapeAt(text, 2, 0));
    }
    EXPECT_FALSE(PercentCoding::IsEscapeAt("%41", 3, 5)) << "a start past the end";
    EXPECT_FALSE(PercentCoding::IsEscapeAt(nullptr, 3, 0));
}
