#include <vek/core/CArray.h>
#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

using namespace Quorvex::Vek;

namespace {

using Str = RObject<CString>;

Str Make(const char* text)
{
    return Str(new CString(text));
}

// The UTF-8 form of a result, or "<null>" for no string.
std::string Text(CString* s)
{
    return s ? std::string(s->GetChars()) : std::string("<null>");
}

std::string Take(CString* s)
{
    Str held(s);
    return Text(held);
}

const WChar kSpaceSet[] = {u' ', u'*', 0};

} // namespace

TEST(CString, SubstringRanges)
{
    struct Case {
        int32_t start, count;
        const char* expected;
    };
    const Case cases[] = {
        {0, 5, "hello"}, {1, 3, "ell"}, {5, 0, ""},         {5, 1, "<null>"},       {6, 0, "<null>"},
        {-1, 1, "<null>"}, {0, -1, "<null>"}, {2, 4, "<null>"}, {4, INT32_MAX, "<null>"}, {0, 0, ""},
    };
    Str s = Make("hello");
    for (const Case& c : cases)
        EXPECT_EQ(Take(s->Substring(c.start, c.count)), c.expected) << c.start << "," << c.count;
    EXPECT_EQ(Take(s->Substring(5)), "");
    EXPECT_EQ(Take(s->Substring(2)), "llo");
    EXPECT_EQ(Take(s->Substring(6)), "<null>");
    EXPECT_EQ(Take(s->Substring(-1)), "<null>");
}

TEST(CString, CompareIsCaseInsensitiveAndNullAware)
{
    struct Case {
        const char* a;
        const char* b;
        int sign;
    };
    const Case cases[] = {
        {"ABC", "abd", -1}, {"abc", "ABC", 0},  {"", "", 0},
        {"b", "A", 1},      {"\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89", 0}, // Latin-1 letters fold
        {"[", "a", -1},     {"Z", "[", 1}, // lowered z sorts after [
    };
    for (const Case& c : cases) {
        const int32_t r = CString::Compare(Make(c.a), Make(c.b));
        EXPECT_EQ((r > 0) - (r < 0), c.sign) << c.a << " vs " << c.b;
    }
    // The result is the difference itself; a unit past the end reads as 0.
    struct Exact {
        const char* a;
        const char* b;
        int32_t result;
    };
    const Exact exact[] = {
        {"abc", "ABD", 'c' - 'd'}, {"abc", "ab", 'c'}, {"ab", "abc", -'c'}, {"A", "", 'a'}, {"", "Z", -'z'},
    };
    for (const Exact& c : exact)
        EXPECT_EQ(CString::Compare(Make(c.a), Make(c.b)), c.result) << c.a << " vs " << c.b;
    EXPECT_EQ(CString::Compare(Make("a"), nullptr), 1);
    EXPECT_LT(CString::Compare(nullptr, Make("a")), 0);
    EXPECT_EQ(CString::Compare(nullptr, nullptr), 0);
}

TEST(CString, EqualityForms)
{
    Str abc = Make("ABC");
    EXPECT_FALSE(abc->Equals("abc"));
    EXPECT_TRUE(abc->Equals("ABC"));
    EXPECT_TRUE(abc->Equals(VEK_W("ABC")));
    EXPECT_FALSE(abc->Equals(VEK_W("ABCD")));
    EXPECT_FALSE(abc->Equals(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(abc->EqualsIgnoreCase("abc"));
    EXPECT_TRUE(abc->EqualsIgnoreCase(Make("aBc")));
    EXPECT_FALSE(abc->EqualsIgnoreCase(Make("aBcd")));
    EXPECT_TRUE(CString::Equals(nullptr, nullptr));
    EXPECT_FALSE(CString::Equals(abc, nullptr));
    EXPECT_FALSE(CString::Equals(nullptr, abc));
    EXPECT_TRUE(CString::Equals(abc, Make("ABC")));
    // Embedded NUL units take part in exact comparison.
    const WChar withNul[] = {u'a', 0, u'b'};
    Str nul(new CString(withNul, 3));
    EXPECT_EQ(nul->GetLength(), 3);
    EXPECT_FALSE(nul->Equals(Make("a")));
    EXPECT_TRUE(nul->Equals(Str(new CString(withNul, 3))));
}

TEST(CString, EqualityWithMeasuredText)
{
    Str key = Make("key");
    struct Case {
        const char* text;
        const WChar* wide;
        int32_t length;
        bool equal;
    };
    const Case cases[] = {
        {"key", VEK_W("key"), 3, true},
        {"keys", VEK_W("keys"), 3, true}, // only `length` units take part
        {"keys", VEK_W("keys"), 4, false},
        {"key", VEK_W("key"), 2, false},
        {"kex", VEK_W("kex"), 3, false},
        {"key", VEK_W("key"), -1, false},
        {nullptr, nullptr, 0, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(key->Equals(c.text, c.length), c.equal) << (c.text ? c.text : "null") << " " << c.length;
        EXPECT_EQ(key->Equals(c.wide, c.length), c.equal) << (c.text ? c.text : "null") << " " << c.length;
    }
    Str empty(new CString());
    EXPECT_TRUE(empty->Equals("", 0));
    EXPECT_TRUE(empty->Equals(VEK_W("x"), 0));
}

TEST(CString, StartsAndEndsWith)
{
    Str s = Make("Hello World");
    struct Case {
        const char* affix;
        bool caseSensitive;
        bool starts, ends;
    };
    const Case cases[] = {
        {"", true, true, true},           {"Hello", true, true, false},  {"hello", true, false, false},
        {"hello", false, true, false},    {"WORLD", false, false, true}, {"World", true, false, true},
        {"Hello World!", true, false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(s->StartsWith(c.affix, c.caseSensitive), c.starts) << c.affix;
        EXPECT_EQ(s->EndsWith(c.affix, c.caseSensitive), c.ends) << c.affix;
    }
    EXPECT_FALSE(s->StartsWith(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(s->StartsWith(static_cast<const WChar*>(nullptr)));
    EXPECT_FALSE(s->EndsWith(static_cast<const char*>(nullptr)));
    EXPECT_TRUE(s->StartsWith(VEK_W("HELLO"), false));
    EXPECT_TRUE(Make("")->StartsWith(""));
}

TEST(CString, Searching)
{
    Str s = Make("abcabcABC");
    EXPECT_EQ(s->IndexOf('b'), 1);
    EXPECT_EQ(s->IndexOf('b', 2), 4);
    EXPECT_EQ(s->IndexOf(WChar(u'C')), 8);
    EXPECT_EQ(s->IndexOf('z'), -1);
    EXPECT_EQ(s->IndexOf("cab"), 2);
    EXPECT_EQ(s->IndexOf("abc", 1), 3);
    EXPECT_EQ(s->IndexOf("abc", 4), -1);
    EXPECT_EQ(s->IndexOf("", 9), 9);
    EXPECT_EQ(s->IndexOf("", 10), -1);
    EXPECT_EQ(s->IndexOf("a", -1), -1);
    EXPECT_EQ(s->IndexOf(static_cast<const char*>(nullptr)), -1);
    EXPECT_EQ(s->IndexOf(Make("cA")), 5);
    EXPECT_EQ(s->IndexOf(static_cast<CString*>(nullptr)), -1);
    EXPECT_EQ(s->IndexOfIgnoreCase("CAB"), 2);
    EXPECT_EQ(s->IndexOfIgnoreCase(VEK_W("cabc"), 3), 5);
    const WChar set[] = {u'x', u'C', 0};
    EXPECT_EQ(s->IndexOfAny(set), 8);
    EXPECT_EQ(s->IndexOfAny(nullptr), -1);
    EXPECT_EQ(s->LastIndexOf('a'), 3);
    EXPECT_EQ(s->LastIndexOf("bc"), 4);
    EXPECT_EQ(s->LastIndexOf(VEK_W("abc")), 3);
    EXPECT_EQ(s->LastIndexOf(""), 9);
    EXPECT_EQ(s->LastIndexOf("abcabcABCx"), -1);
    EXPECT_TRUE(s->Contains("cAB"));
    EXPECT_FALSE(s->Contains("cab "));
    EXPECT_TRUE(s->ContainsIgnoreCase("CABCA"));
    // Positions count UTF-16 units: the non-BMP character takes two.
    Str wide = Make("\xF0\x9F\x8E\xB5x");
    EXPECT_EQ(wide->IndexOf('x'), 2);
}

TEST(CString, TrimAndWhiteSpace)
{
    struct Case {
        const WChar* text;
        const char* trim;
        const char* left;
        const char* right;
    };
    const Case cases[] = {
        {VEK_W("  a b \t\r\n"), "a b", "a b \t\r\n", "  a b"},
        {VEK_W("\u00A0\u3000x\u2028"), "x", "x\u2028", "\u00A0\u3000x"},
        {VEK_W("   "), "", "", ""},
        {VEK_W(""), "", "", ""},
        {VEK_W("\u200Bx"), "\u200Bx", "\u200Bx", "\u200Bx"}, // zero-width space is not white space
    };
    for (const Case& c : cases) {
        Str s(new CString(c.text));
        EXPECT_EQ(Take(s->Trim()), c.trim);
        EXPECT_EQ(Take(s->TrimLeft()), c.left);
        EXPECT_EQ(Take(s->TrimRight()), c.right);
    }
    EXPECT_EQ(Take(Make("** a *")->Trim(kSpaceSet)), "a");
    EXPECT_EQ(Take(Make(" a ")->Trim(static_cast<const WChar*>(nullptr))), " a ");
    EXPECT_TRUE(CString::IsNullOrWhiteSpace(nullptr));
    EXPECT_TRUE(CString::IsNullOrWhiteSpace(Make(" \t\u2003")));
    EXPECT_FALSE(CString::IsNullOrWhiteSpace(Make(" x")));
    EXPECT_TRUE(CString::IsNullOrEmpty(nullptr));
    EXPECT_TRUE(CString::IsNullOrEmpty(Make("")));
    EXPECT_FALSE(CString::IsNullOrEmpty(Make(" ")));
    Str mixed = Make("a1 ");
    EXPECT_TRUE(mixed->IsDigit(1));
    EXPECT_FALSE(mixed->IsDigit(0));
    EXPECT_FALSE(mixed->IsDigit(7));
    EXPECT_TRUE(mixed->IsWhiteSpace(2));
    EXPECT_FALSE(mixed->IsWhiteSpace(-1));
}

TEST(CString, AppendConcatReplaceLeaveSourceUnchanged)
{
    Str s = Make("ab");
    EXPECT_EQ(Take(s->Append('c')), "abc");
    EXPECT_EQ(Take(s->Append(WChar(u'\u00E9'))), "ab\xC3\xA9");
    EXPECT_EQ(Take(s->Append("cd")), "abcd");
    EXPECT_EQ(Take(s->Append(VEK_W("\U0001F3B5"))), "ab\xF0\x9F\x8E\xB5");
    EXPECT_EQ(Take(s->Append(static_cast<CString*>(nullptr))), "ab");
    EXPECT_EQ(Take(s->Append(static_cast<const char*>(nullptr))), "ab");
    EXPECT_EQ(Take(CString::Concat(s, Make("x"))), "abx");
    EXPECT_EQ(Take(CString::Concat(nullptr, "x")), "x");
    EXPECT_EQ(Take(CString::Concat(nullptr, static_cast<CString*>(nullptr))), "");
    EXPECT_EQ(Text(s), "ab");

    Str r = Make("a-b--c");
    EXPECT_EQ(Take(r->Replace('-', '+')), "a+b++c");
    EXPECT_EQ(Take(r->Replace("--", "=")), "a-b=c");
    EXPECT_EQ(Take(r->Replace("-", "")), "abc");
    EXPECT_EQ(Take(r->Replace("-", nullptr)), "abc");
    EXPECT_EQ(Take(r->Replace("", "x")), "a-b--c");
    EXPECT_EQ(Take(r->Replace(VEK_W("-"), VEK_W("<->"))), "a<->b<-><->c");
    EXPECT_EQ(Take(Make("aaa")->Replace("aa", "b")), "ba");
    EXPECT_EQ(Text(r), "a-b--c");

    EXPECT_EQ(Text(Str(new CString("ab", "cd"))), "abcd");
    EXPECT_EQ(Text(Str(new CString(VEK_W("ab"), nullptr))), "ab");
    // A sequence split over the two parts is joined before decoding.
    EXPECT_EQ(Str(new CString("\xC3", "\xA9"))->GetLength(), 1);
}

TEST(CString, SplitAndJoin)
{
    struct Case {
        const char* text;
        int32_t parts;
    };
    const Case cases[] = {{"a,b,c", 3}, {"a,,b", 3}, {"", 1}, {",", 2}, {"abc", 1}};
    const WChar comma[] = {u',', 0};
    for (const Case& c : cases) {
        RObject<CArray<CString>> parts(Make(c.text)->Split(u','));
        ASSERT_TRUE(parts);
        EXPECT_EQ(parts->GetCount(), c.parts) << c.text;
        EXPECT_EQ(Take(CString::Join(comma, parts)), c.text);
    }
    RObject<CArray<CString>> parts(Make("x,,yz")->Split(u','));
    EXPECT_EQ(Text(parts->Get(1)), "");
    EXPECT_EQ(Text(parts->Get(2)), "yz");
    EXPECT_EQ(parts->Get(3), nullptr);
    EXPECT_EQ(parts->Get(2)->GetReferenceCount(), 1);
    const WChar dash[] = {u' ', u'-', u' ', 0};
    EXPECT_EQ(Take(CString::Join(dash, parts)), "x -  - yz");
    EXPECT_EQ(Take(CString::Join(nullptr, parts)), "xyz");
    EXPECT_EQ(Take(CString::Join(comma, nullptr)), "");
}

TEST(CString, Numbers)
{
    struct IntCase {
        const char* text;
        int base;
        int64_t as32, as64;
    };
    const IntCase cases[] = {
        {"42", 10, 42, 42},
        {"  -17xyz", 10, -17, -17},
        {"+8", 10, 8, 8},
        {"\xE3\x80\x80" "5", 10, 5, 5}, // ideographic space is white space
        {"ff", 16, 255, 255},
        {"0x1F", 16, 31, 31},
        {"0x", 16, 0, 0},
        {"0x1F", 0, 31, 31},
        {"017", 0, 15, 15},
        {"z", 36, 35, 35},
        {"12", 1, 0, 0},
        {"abc", 10, 0, 0},
        {"2147483648", 10, INT32_MAX, 2147483648LL},
        {"-2147483649", 10, INT32_MIN, -2147483649LL},
        {"99999999999999999999", 10, INT32_MAX, INT64_MAX},
        {"-9223372036854775808", 10, INT32_MIN, INT64_MIN},
        {"\xEF\xBC\x91", 10, 0, 0}, // full-width digit one is not a digit
    };
    for (const IntCase& c : cases) {
        Str s = Make(c.text);
        EXPECT_EQ(s->ToInt(c.base), c.as32) << c.text;
        EXPECT_EQ(s->ToInt64(c.base), c.as64) << c.text;
    }
    EXPECT_EQ(Make("123")->ToInt(), 123);
    EXPECT_EQ(Make("-5")->ToInt64(), -5);

    struct DoubleCase {
        const char* text;
        double expected;
    };
    const DoubleCase doubles[] = {
        {"1.5", 1.5}, {" -2.25e2x", -225.0}, {"+.5", 0.5}, {"1,5", 1.0}, {"abc", 0.0}, {"1e400", HUGE_VAL},
        {"-inf", -HUGE_VAL}, {"1e-400", 0.0},
    };
    for (const DoubleCase& c : doubles)
        EXPECT_EQ(Make(c.text)->ToDouble(), c.expected) << c.text;
    EXPECT_TRUE(std::isnan(Make("NaN")->ToDouble()));
}

TEST(CString, ToFour)
{
    struct Case {
        const char* text;
        uint32_t code;
    };
    const Case cases[] = {
        {"vide", 0x76696465},  {"%41b", 0x41620000}, {"cdr ", 0x63647220},
        {"ab", 0x61620000},    {"", 0},              {"%7A%7a", 0x7A7A0000}, {"%zz1", 0x00310000},
        {"%4", 0x40000000},    {"%", 0},             {"videos", 0x76696465}, {"a%20b", 0x61206200},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Make(c.text)->ToFour(), c.code) << c.text;
    EXPECT_EQ(CString::ToFour(nullptr), 0u);
}

TEST(CString, ToBytesAndFromBytes)
{
    struct Case {
        const char* text;
        int32_t count;
        const char* hex; // FromBytes of the result, or null for no array
    };
    const Case cases[] = {
        {"0A1b", 2, "0A1B"}, {"abc", 2, "0ABC"}, {"1", 3, "000001"}, {"", 2, "0000"},  {"", 0, ""},
        {"12345", 2, nullptr}, {"1", -1, nullptr}, {"zz", 1, "00"},  {"DEADBEEF", 4, "DEADBEEF"},
    };
    for (const Case& c : cases) {
        RObject<CByteArray> bytes(Make(c.text)->ToBytes(c.count));
        if (!c.hex) {
            EXPECT_FALSE(bytes) << c.text;
            continue;
        }
        ASSERT_TRUE(bytes) << c.text;
        EXPECT_EQ(bytes->GetLength(), c.count);
        EXPECT_EQ(Take(CString::FromBytes(bytes)), c.hex);
    }
    EXPECT_EQ(CString::FromBytes(nullptr), nullptr);
}

TEST(CString, WithFormat)
{
    EXPECT_EQ(Take(CString::WithFormat("%s-%d-%04X", "a", -3, 0xBEEFu)), "a--3-BEEF");
    EXPECT_EQ(Take(CString::WithFormat("%lld", (long long)INT64_MIN)), "-9223372036854775808");
    std::string big(5000, 'q');
    EXPECT_EQ(Take(CString::WithFormat("%s", big.c_str())), big);
}

TEST(CString, DefaultAndNullInputsAreEmpty)
{
    Str d(new CString());
    EXPECT_EQ(d->GetLength(), 0);
    EXPECT_STREQ(d->GetChars(), "");
    EXPECT_EQ(d->GetWChars()[0], 0);
    Str n(new CString(static_cast<const char*>(nullptr)));
    EXPECT_EQ(n->GetLength(), 0);
    EXPECT_EQ(d->GetChar(0), 0);
    EXPECT_EQ(Str(new CString("abc", -1))->GetLength(), 3);
    EXPECT_EQ(Str(new CString("abc", 2))->GetLength(), 2);
    EXPECT_EQ(CString::GetLength(static_cast<const char*>(nullptr)), 0);
    EXPECT_EQ(CString::GetLength(VEK_W("\U0001F3B5")), 2);
    EXPECT_EQ(CString::GetChars(static_cast<const WChar*>(nullptr)), nullptr);
}

// The UTF-16 form is converted strictly (ill-formed parts become U+FFFD);
// text made from UTF-8 keeps its exact bytes as its UTF-8 form, clones too.
TEST(CString, Utf8Utf16Conversion)
{
    struct Case {
        const char* name;
        std::string utf8;
        std::u16string utf16;
        std::string back; // UTF-8 form after the round trip
    };
    const std::string fffd = "\xEF\xBF\xBD";
    const Case cases[] = {
        {"ascii", "abc", u"abc", "abc"},
        {"two byte", "\xC3\xA9", u"\u00E9", "\xC3\xA9"},
        {"three byte", "\xE2\x82\xAC", u"\u20AC", "\xE2\x82\xAC"},
        {"non-BMP", "\xF0\x9F\x8E\xB5", u"\U0001F3B5", "\xF0\x9F\x8E\xB5"},
        {"max", "\xF4\x8F\xBF\xBF", u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
        {"U+FFFD itself", fffd, u"\uFFFD", fffd},
        {"lone continuation", "a\x80z", u"a\uFFFDz", "a" + fffd + "z"},
        {"bad lead", "\xFF", u"\uFFFD", fffd},
        {"overlong", "\xC0\xAF", u"\uFFFD\uFFFD", fffd + fffd},
        {"overlong three", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD", fffd + fffd + fffd},
        {"encoded surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", fffd + fffd + fffd},
        {"above max", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD", fffd + fffd + fffd + fffd},
        {"truncated", "\xF0\x9F\x8E", u"\uFFFD", fffd},
        {"truncated then ascii", "\xE2\x82z", u"\uFFFDz", fffd + "z"},
    };
    for (const Case& c : cases) {
        Str s(new CString(c.utf8.data(), int32_t(c.utf8.size())));
        const std::u16string wide(reinterpret_cast<const char16_t*>(s->GetWChars()), size_t(s->GetLength()));
        EXPECT_EQ(wide, c.utf16) << c.name;
        EXPECT_EQ(std::string(s->GetChars()), c.utf8) << c.name;
        EXPECT_EQ(std::string(Str(s->Clone())->GetChars()), c.utf8) << c.name;
        Str fromWide(new CString(reinterpret_cast<const WChar*>(c.utf16.data()), int32_t(c.utf16.size())));
        EXPECT_EQ(std::string(fromWide->GetChars()), c.back) << c.name;
        EXPECT_EQ(s->GetChar(0), c.utf8[0]) << c.name;
    }
}

TEST(CString, UnpairedSurrogatesBecomeReplacementInUtf8)
{
    struct Case {
        std::u16string units;
        const char* utf8;
    };
    const Case cases[] = {
        {std::u16string(1, char16_t(0xD800)), "\xEF\xBF\xBD"},
        {std::u16string(1, char16_t(0xDC00)) + u"a", "\xEF\xBF\xBD" "a"},
        {std::u16string(1, char16_t(0xD83C)) + u"x", "\xEF\xBF\xBDx"},
        {std::u16string{char16_t(0xDC00), char16_t(0xD800)}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const Case& c : cases) {
        Str s(new CString(reinterpret_cast<const WChar*>(c.units.data()), int32_t(c.units.size())));
        EXPECT_STREQ(s->GetChars(), c.utf8);
        EXPECT_EQ(s->GetLength(), int32_t(c.units.size())); // the UTF-16 units stay exact
        char* copy = CString::GetChars(s->GetWChars());
        EXPECT_STREQ(copy, c.utf8);
        delete[] copy;
    }
    WChar* wide = CString::GetWChars("\xF0\x9F\x8E\xB5");
    EXPECT_EQ(uint16_t(wide[0]), 0xD83C);
    EXPECT_EQ(uint16_t(wide[1]), 0xDFB5);
    EXPECT_EQ(wide[2], 0);
    delete[] wide;
}

// The first demand for a form may come from several threads at once; all
// must see one cached copy.
TEST(CString, ConcurrentFirstConversionSharesOneCopy)
{
    for (int round = 0; round < 20; ++round) {
        Str s = Make("caf\xC3\xA9 \xF0\x9F\x8E\xB5");
        const WChar* seen[4] = {};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] { seen[t] = s->GetWChars(); });
        for (std::thread& t : threads)
            t.join();
        for (const WChar* p : seen)
            EXPECT_EQ(p, seen[0]);
        EXPECT_EQ(s->GetLength(), 7);
    }
}
