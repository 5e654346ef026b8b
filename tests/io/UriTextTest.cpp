// The escaping the library does itself: data strings, labels, extra info
// and the character classes behind them.
#include <gtest/gtest.h>

#include <vek/core/CString.h>
#include <vek/io/CUri.h>

#include <string>

using namespace Quorvex::Vek;

namespace {

RObject<CString> Text(const char* text)
{
    return RObject<CString>(new CString(text));
}

std::string Str(CString* text)
{
    return text ? std::string(text->GetChars()) : std::string("(null)");
}

} // namespace

TEST(UriTextTest, EscapeDataStringEscapesReservedBytes)
{
    struct {
        const char* input;
        unsigned int flags;
        const char* output;
    } cases[] = {
        {"a b/c", 0, "a%20b%2Fc"},
        {"a b/c", CUri::EscapeKeepSlash, "a%20b/c"},
        {"50%", 0, "50%"},
        {"~*'()!#%", 0, "~*'()!#%"},
        {";/?:@&=+$,^`{}|[]\"<>\\", 0,
         "%3B%2F%3F%3A%40%26%3D%2B%24%2C%5E%60%7B%7D%7C%5B%5D%22%3C%3E%5C"},
        {"\xC3\xA9\x7F\t", 0, "%C3%A9%7F%09"},
        {"", 0, ""},
    };
    for (const auto& c : cases) {
        RObject<CString> input(Text(c.input));
        RObject<CString> output(CUri::EscapeDataString(input, c.flags));
        EXPECT_EQ(Str(output), c.output) << c.input;
        // Nothing to escape: the same string comes back, shared.
        if (std::string(c.input) == c.output) {
            EXPECT_EQ(output.Get(), input.Get()) << c.input;
        }
    }
    RObject<CString> fromNull(CUri::EscapeDataString(nullptr, 0));
    ASSERT_TRUE(fromNull);
    EXPECT_EQ(fromNull->GetLength(), 0);
}

TEST(UriTextTest, UnescapeDataStringRefusesMalformedEscapes)
{
    const char* null = nullptr;
    struct {
        const char* input;
        const char* output;
    } cases[] = {
        {"%41%62", "Ab"}, {"%2541", "%41"}, {"a%2fb", "a/b"}, {"%C3%A9", "\xC3\xA9"},
        {"%4", null},     {"%zz", null},    {"%", null},      {"a%2", null},
        {"ok%41%g1", null}, {"plain", "plain"}, {"", ""},
    };
    for (const auto& c : cases) {
        RObject<CString> input(Text(c.input));
        RObject<CString> output(CUri::UnescapeDataString(input));
        if (!c.output) {
            EXPECT_FALSE(output) << c.input;
            continue;
        }
        EXPECT_EQ(Str(output), c.output) << c.input;
        if (std::string(c.input).find('%') == std::string::npos) {
            EXPECT_EQ(output.Get(), input.Get()) << c.input;
        }
    }
    RObject<CString> fromNull(CUri::UnescapeDataString(nullptr));
    ASSERT_TRUE(fromNull);
    EXPECT_EQ(fromNull->GetLength(), 0);
}

TEST(UriTextTest, LabelUnescapeIsForgiving)
{
    struct {
        const char* input;
        const char* output;
    } cases[] = {{"a+b%20c", "a b c"}, {"100%", "100%"}, {"%4", "%4"}, {"%zz%41", "%zzA"}, {"", ""}};
    for (const auto& c : cases) {
        RObject<CString> output(CUri::UniformResourceLabelUnEscape(Text(c.input)));
        EXPECT_EQ(Str(output), c.output) << c.input;
    }
    EXPECT_EQ(CUri::UniformResourceLabelUnEscape(nullptr), nullptr);
}

TEST(UriTextTest, DecodedBytesStayBytes)
{
    // An escaped byte that is not UTF-8 (a Latin-1 letter, 0xFF) is the
    // byte itself in the result, not a replacement character.
    struct {
        const char* input;
        const char* strict; // UnescapeDataString
        const char* label;  // UniformResourceLabelUnEscape
    } cases[] = {
        {"%FF", "\xFF", "\xFF"},
        {"caf%E9", "caf\xE9", "caf\xE9"},
        {"%ff%Fe+", "\xFF\xFE+", "\xFF\xFE "},
        {"%C3%A9", "\xC3\xA9", "\xC3\xA9"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Str(RObject<CString>(CUri::UnescapeDataString(Text(c.input)))), c.strict) << c.input;
        EXPECT_EQ(Str(RObject<CString>(CUri::UniformResourceLabelUnEscape(Text(c.input)))), c.label) << c.input;
    }
}

TEST(UriTextTest, CrackExtraInfoSplitsQueryAndFragment)
{
    struct {
        const char* extra;
        const char* query;
        const char* fragment;
    } cases[] = {
        {"?x=1#f", "x=1", "f"}, {"#f?x", "", "f?x"}, {"?x=1", "x=1", ""}, {"?", "", ""},
        {"#", "", ""},          {"?a#", "a", ""},     {"", "", ""},        {"x=1#f", "", ""},
    };
    for (const auto& c : cases) {
        CString* query = nullptr;
        CString* fragment = nullptr;
        CUri::CrackExtraInfo(Text(c.extra), query, fragment);
        RObject<CString> q(query), f(fragment);
        EXPECT_EQ(Str(q), c.query) << c.extra;
        EXPECT_EQ(Str(f), c.fragment) << c.extra;
    }
    CString* query = nullptr;
    CString* fragment = nullptr;
    CUri::CrackExtraInfo(nullptr, query, fragment);
    RObject<CString> q(query), f(fragment);
    EXPECT_EQ(Str(q), "");
    EXPECT_EQ(Str(f), "");
}

TEST(UriTextTest, CharacterClasses)
{
    int reserved = 0;
    for (int c = 0x21; c <= 0x7E; ++c)
        reserved += CUri::IsReserved(char(c)) ? 1 : 0;
    EXPECT_EQ(reserved, 21);
    for (char c : std::string("%#!~*'()"))
        EXPECT_FALSE(CUri::IsReserved(c)) << c;
    EXPECT_TRUE(CUri::IsReserved(' '));
    EXPECT_TRUE(CUri::IsReserved('\x7F'));
    EXPECT_TRUE(CUri::IsReserved('\x80'));
    EXPECT_TRUE(CUri::IsReserved('\0'));

    EXPECT_EQ(CUri::FromHexDigit('0'), 0);
    EXPECT_EQ(CUri::FromHexDigit('a'), 10);
    EXPECT_EQ(CUri::FromHexDigit('F'), 15);
    EXPECT_EQ(CUri::FromHexDigit('g'), -1);
    EXPECT_FALSE(CUri::IsHexDigit('G'));
    EXPECT_EQ(CUri::ToHexDigit(0), '0');
    EXPECT_EQ(CUri::ToHexDigit(11), 'B');
    EXPECT_EQ(CUri::ToHexDigit(16), 0);
    EXPECT_EQ(CUri::ToHexDigit(-1), 0);
}
