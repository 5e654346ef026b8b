#include <vek/core/CharClass.h>

#include <gtest/gtest.h>

using namespace Quorvex::Vek;

// The fixed rules that replace the locale-dependent C functions; the
// boundaries are where the C libraries of the two builds disagree.
TEST(CharClass, ToLowerBoundaries)
{
    struct Case {
        uint16_t in, out;
    };
    const Case cases[] = {
        {'A', 'a'},     {'Z', 'z'},     {'@', '@'},     {'[', '['},     {'a', 'a'},
        {0xC0, 0xE0},   {0xD6, 0xF6},   {0xD7, 0xD7},   {0xD8, 0xF8},   {0xDE, 0xFE},
        {0xDF, 0xDF},   {0xBF, 0xBF},   {0x100, 0x100}, {0x391, 0x391}, {0xD800, 0xD800},
    };
    for (const Case& c : cases)
        EXPECT_EQ(uint16_t(CharClass::ToLower(WChar(c.in))), c.out) << std::hex << c.in;
}

TEST(CharClass, WhiteSpaceIsTheUnicodeSet)
{
    const uint16_t spaces[] = {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x20,   0x85,   0xA0,   0x1680, 0x2000,
                               0x2005, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
    const uint16_t others[] = {0x00, 0x08, 0x0E, 0x1C, 0x1F, 0x21, 0x84, 0x180E, 0x200B, 0x2060, 0xFEFF, 0xFFFD};
    for (uint16_t c : spaces)
        EXPECT_TRUE(CharClass::IsSpace(WChar(c))) << std::hex << c;
    for (uint16_t c : others)
        EXPECT_FALSE(CharClass::IsSpace(WChar(c))) << std::hex << c;
}

TEST(CharClass, DigitsAndWidening)
{
    EXPECT_TRUE(CharClass::IsDigit(WChar('0')));
    EXPECT_TRUE(CharClass::IsDigit(WChar('9')));
    EXPECT_FALSE(CharClass::IsDigit(WChar(0x0660))); // Arabic-Indic zero
    EXPECT_FALSE(CharClass::IsDigit(WChar(0xFF10))); // full-width zero
    EXPECT_EQ(CharClass::DigitValue(WChar('z')), 35);
    EXPECT_EQ(CharClass::DigitValue(WChar('Z')), 35);
    EXPECT_EQ(CharClass::DigitValue(WChar('/')), -1);
    EXPECT_EQ(uint16_t(CharClass::Widen('A')), 0x41);
    EXPECT_EQ(uint16_t(CharClass::Widen(char(0xE9))), 0xE9);
    const WChar text[] = {WChar('1'), WChar('2'), WChar('3')};
    // The length bounds the parse: the text needs no terminator.
    EXPECT_EQ(CharClass::ParseInteger(text, 2, 10, INT32_MIN, INT32_MAX), 12);
    EXPECT_EQ(CharClass::ParseDouble(text, 1), 1.0);
}
