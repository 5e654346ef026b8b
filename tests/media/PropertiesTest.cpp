// Property bags: the byte-exact contract of IProperties, the typed widths of
// Properties, and the media descriptions built on them.
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/media/AudioProperties.h>
#include <vek/media/AudioProperty.h>
#include <vek/media/CodeBookProperty.h>
#include <vek/media/MediaProperties.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/Properties.h>
#include <vek/media/SubtitleProperties.h>
#include <vek/media/VideoProperties.h>
#include <vek/media/VideoProperty.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

// A bag with one accessor per formatter, to test the text forms.
class TestBag : public CObject, public IProperties {
public:
    TestBag() : CObject(Four("tbag")) {}

    static const Accessor Table[];
    // The formatters, reachable for their exact result codes.
    using IProperties::GetBool;
    using IProperties::GetByte;
    using IProperties::GetString;
    using IProperties::GetUInt16;
    using IProperties::GetUInt32;

protected:
    ~TestBag() override = default;
    const Accessor* GetPropertyAccessors() const override { return Table; }
};

const IProperties::Accessor TestBag::Table[] = {
    {"flag", "A flag", &IProperties::GetBool, IProperties::TXT},
    {"byte", "A byte", &IProperties::GetByte, IProperties::TXT},
    {"short", "A short", &IProperties::GetUInt16, IProperties::TXT},
    {"long", "A long", &IProperties::GetUInt32, IProperties::TXT},
    {"name", "A name", &IProperties::GetString, IProperties::TXT},
    {"link", "A link", &IProperties::GetString, IProperties::URL},
    {nullptr, nullptr, nullptr, 0},
};

std::vector<unsigned char> Bytes(std::initializer_list<int> values)
{
    std::vector<unsigned char> bytes;
    for (int v : values)
        bytes.push_back(static_cast<unsigned char>(v));
    return bytes;
}

int Put(IProperties& bag, const char* key, const std::vector<unsigned char>& bytes)
{
    return bag.SetProperty(key, static_cast<int32_t>(bytes.size()), bytes.data());
}

std::vector<unsigned char> Stored(IProperties& bag, const char* key)
{
    const int length = bag.GetProperty(key, 0, nullptr);
    std::vector<unsigned char> bytes(static_cast<size_t>(length > 0 ? length : 0));
    if (length > 0) {
        EXPECT_EQ(bag.GetProperty(key, length, bytes.data()), length);
    }
    return bytes;
}

std::string Text(CString* text)
{
    RObject<CString> held(text);
    return held ? std::string(held->GetChars()) : std::string("<null string>");
}

std::string Names(IProperties& bag)
{
    std::string names;
    for (int32_t i = 0; i < bag.GetPropertyCount(); ++i)
        names += std::string(bag.GetPropertyName(i)->GetChars()) + ";";
    return names;
}

struct BagTest : ::testing::Test {
    RObject<TestBag> holder{new TestBag()};
    TestBag& bag = *holder;
};

} // namespace

TEST_F(BagTest, NewBagIsEmptyUntilFirstWrite)
{
    EXPECT_EQ(bag.GetPropertyCount(), 0);
    EXPECT_EQ(bag.GetProperties(), nullptr);
    EXPECT_EQ(bag.GetProperty("a", 0, nullptr), 0);
    EXPECT_EQ(bag.GetProperty("a"), nullptr);
    EXPECT_EQ(bag.GetPropertyName(0), nullptr);
    EXPECT_EQ(bag.RemoveProperty("a"), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(bag.GetProperties(), nullptr) << "reads and removals must not make the dictionary";

    ASSERT_EQ(Put(bag, "a", Bytes({1})), 0);
    EXPECT_NE(bag.GetProperties(), nullptr);
    EXPECT_EQ(bag.GetPropertyCount(), 1);
}

TEST_F(BagTest, RejectedWritesLeaveTheBagAlone)
{
    const unsigned char byte = 7;
    EXPECT_EQ(bag.SetProperty(static_cast<const char*>(nullptr), 1, &byte), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(bag.SetProperty("a", -1, &byte), RESULT_ARGUMENT_OUT_OF_RANGE);
    // Keys are UTF-8 text: a lone lead byte or an overlong form is refused.
    EXPECT_EQ(bag.SetProperty("bad\xd1", 1, &byte), RESULT_FORMAT_ERROR);
    EXPECT_EQ(bag.SetProperty("\xc0\xaf", 1, &byte), RESULT_FORMAT_ERROR);
    RObject<CByteArray> array(new CByteArray(&byte, 1));
    EXPECT_EQ(bag.SetProperty("\xff", array.Get()), RESULT_FORMAT_ERROR);
    EXPECT_EQ(bag.SetProperty("a", static_cast<CByteArray*>(nullptr)), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(bag.SetProperty(static_cast<CString*>(nullptr), static_cast<CByteArray*>(nullptr)),
              RESULT_ARGUMENT_NULL);
    EXPECT_EQ(bag.GetPropertyCount(), 0);
    EXPECT_EQ(bag.GetProperties(), nullptr);
}

TEST_F(BagTest, NullDataStoresZeros)
{
    ASSERT_EQ(bag.SetProperty("z", 3, nullptr), 0);
    EXPECT_EQ(Stored(bag, "z"), Bytes({0, 0, 0}));
}

TEST_F(BagTest, SecondWriteReplacesAndKeepsPosition)
{
    Put(bag, "a", Bytes({1, 2, 3, 4}));
    Put(bag, "b", Bytes({5}));
    Put(bag, "c", Bytes({6}));
    ASSERT_EQ(Put(bag, "a", Bytes({9, 8})), 0);
    EXPECT_EQ(bag.GetPropertyCount(), 3);
    EXPECT_EQ(Stored(bag, "a"), Bytes({9, 8}));
    EXPECT_EQ(Names(bag), "a;b;c;");

    EXPECT_EQ(bag.RemoveProperty("b"), 0);
    EXPECT_EQ(bag.RemoveProperty("b"), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(Names(bag), "a;c;");
    Put(bag, "b", Bytes({5}));
    EXPECT_EQ(Names(bag), "a;c;b;");
    EXPECT_EQ(bag.GetPropertyName(3), nullptr);
    EXPECT_EQ(bag.GetPropertyName(-1), nullptr);
}

TEST_F(BagTest, KeysAreExactText)
{
    Put(bag, "Key", Bytes({1}));
    Put(bag, "cl\xc3\xa9", Bytes({1, 2})); // UTF-8 beyond ASCII
    EXPECT_EQ(bag.GetProperty("key", 0, nullptr), 0);
    EXPECT_EQ(bag.GetProperty("Key", 0, nullptr), 1);
    EXPECT_EQ(bag.GetProperty("cl\xc3\xa9", 0, nullptr), 2);
    EXPECT_EQ(bag.GetProperty("cle", 0, nullptr), 0);
}

TEST_F(BagTest, ReadResultsByCapacity)
{
    Put(bag, "v", Bytes({0x11, 0x22, 0x33, 0x44}));
    struct Case {
        const char* key;
        int32_t capacity;
        bool withBuffer;
        int result;
        std::vector<unsigned char> buffer; // after the call, starting from 0xEE fill
    };
    const Case cases[] = {
        {"v", 0, false, 4, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
        {"v", 100, false, 4, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
        {"v", 4, true, 4, Bytes({0x11, 0x22, 0x33, 0x44, 0xEE, 0xEE})},
        {"v", 6, true, 4, Bytes({0x11, 0x22, 0x33, 0x44, 0xEE, 0xEE})},
        {"v", 3, true, RESULT_ARGUMENT_OUT_OF_RANGE, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
        {"v", -1, true, RESULT_ARGUMENT_OUT_OF_RANGE, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
        {"absent", 6, true, 0, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
        {nullptr, 6, true, 0, Bytes({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.key ? c.key : "(null)") + " capacity " + std::to_string(c.capacity));
        std::vector<unsigned char> buffer(6, 0xEE);
        EXPECT_EQ(bag.GetProperty(c.key, c.capacity, c.withBuffer ? buffer.data() : nullptr), c.result);
        EXPECT_EQ(buffer, c.buffer);
    }
}

TEST_F(BagTest, EmptyValueIsStoredButReadsAsZeroLength)
{
    ASSERT_EQ(bag.SetProperty("e", 0, nullptr), 0);
    EXPECT_EQ(bag.GetPropertyCount(), 1);
    ASSERT_NE(bag.GetProperty("e"), nullptr);
    EXPECT_EQ(bag.GetProperty("e")->GetLength(), 0);
    unsigned char byte = 0xEE;
    EXPECT_EQ(bag.GetProperty("e", 1, &byte), 0);
    EXPECT_EQ(byte, 0xEE);
}

TEST_F(BagTest, ArraysAreStoredShared)
{
    RObject<CByteArray> array(new CByteArray(Bytes({1, 2}).data(), 2));
    RObject<CString> key(new CString("k2"));
    ASSERT_EQ(bag.SetProperty("k1", array.Get()), 0);
    ASSERT_EQ(bag.SetProperty(key.Get(), array.Get()), 0);
    EXPECT_EQ(bag.GetProperty("k1"), array.Get());
    EXPECT_EQ(bag.GetProperty(key.Get()), array.Get());
    EXPECT_EQ(bag.GetProperty(static_cast<CString*>(nullptr)), nullptr);
    EXPECT_EQ(array->GetReferenceCount(), 3);
    bag.ClearProperties();
    EXPECT_EQ(array->GetReferenceCount(), 1);
}

TEST_F(BagTest, FourCharacterCodes)
{
    ASSERT_EQ(bag.SetFourProperty("fmt", Four("vide")), 0);
    EXPECT_EQ(Stored(bag, "fmt"), Bytes({'v', 'i', 'd', 'e'}));
    unsigned int code = 0;
    EXPECT_EQ(bag.GetFourProperty("fmt", code), 4);
    EXPECT_EQ(code, 0x76696465u);

    // Absent keys and other widths leave the variable alone.
    code = 0x12345678;
    EXPECT_EQ(bag.GetFourProperty("absent", code), 0);
    Put(bag, "short", Bytes({'a', 'b'}));
    EXPECT_EQ(bag.GetFourProperty("short", code), RESULT_ARGUMENT_OUT_OF_RANGE);
    Put(bag, "long", Bytes({'a', 'b', 'c', 'd', 'e'}));
    EXPECT_EQ(bag.GetFourProperty("long", code), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(code, 0x12345678u);
}

TEST_F(BagTest, ClearReturnsToTheNewState)
{
    Put(bag, "a", Bytes({1}));
    Put(bag, "b", Bytes({2}));
    bag.ClearProperties();
    EXPECT_EQ(bag.GetPropertyCount(), 0);
    EXPECT_EQ(bag.GetProperties(), nullptr);
    EXPECT_EQ(bag.GetProperty("a", 0, nullptr), 0);
    bag.ClearProperties();
    EXPECT_EQ(Put(bag, "c", Bytes({3})), 0);
    EXPECT_EQ(Names(bag), "c;");
}

TEST_F(BagTest, SetPropertiesCopiesBytes)
{
    RObject<TestBag> other(new TestBag());
    Put(*other, "x", Bytes({1, 2}));
    Put(*other, "y", Bytes({3}));
    Put(bag, "y", Bytes({7, 7, 7}));
    Put(bag, "w", Bytes({0}));

    ASSERT_EQ(bag.SetProperties(other.Get()), 0);
    EXPECT_EQ(Names(bag), "y;w;x;");
    EXPECT_EQ(Stored(bag, "y"), Bytes({3}));
    EXPECT_EQ(Stored(bag, "x"), Bytes({1, 2}));

    // The bags do not share memory.
    other->GetProperty("x")->GetData()[0] = 99;
    EXPECT_EQ(Stored(bag, "x"), Bytes({1, 2}));

    EXPECT_EQ(bag.SetProperties(&bag), 0);
    EXPECT_EQ(bag.SetProperties(nullptr), 0);
    EXPECT_EQ(bag.GetPropertyCount(), 3);
}

TEST_F(BagTest, ValueTexts)
{
    Put(bag, "flag", Bytes({1}));
    Put(bag, "byte", Bytes({200}));
    Put(bag, "short", Bytes({0x34, 0x12}));
    Put(bag, "long", Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
    Put(bag, "name", Bytes({'a', 'b', 'c', 0, 'd'}));
    Put(bag, "link", Bytes({}));
    Put(bag, "plain", Bytes({1, 2, 3}));
    struct Case {
        const char* key;
        const char* text;
    };
    const Case cases[] = {
        {"flag", "true"}, {"byte", "200"},    {"short", "4660"}, {"long", "4294967295"},
        {"name", "abc"},  {"link", ""},       {"plain", "(null)"}, {"absent", "(null)"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Text(bag.GetPropertyValue(c.key)), c.text) << c.key;

    // The text stops at the first zero byte; nothing after it is kept.
    RObject<CString> name(bag.GetPropertyValue("name"));
    ASSERT_TRUE(name);
    EXPECT_EQ(name->GetLength(), 3);

    Put(bag, "flag", Bytes({0}));
    EXPECT_EQ(Text(bag.GetPropertyValue("flag")), "false");
    Put(bag, "long", Bytes({0x04, 0x03, 0x02, 0x01}));
    EXPECT_EQ(Text(bag.GetPropertyValue("long")), "16909060");
}

TEST_F(BagTest, FormatterFailuresReadAsError)
{
    // Described keys whose value is missing or of the wrong width.
    Put(bag, "flag", Bytes({0, 0, 0, 1}));
    Put(bag, "short", Bytes({1}));
    Put(bag, "long", Bytes({1, 2}));
    Put(bag, "byte", Bytes({}));
    for (const char* key : {"flag", "short", "long", "byte", "name"})
        EXPECT_EQ(Text(bag.GetPropertyValue(key)), "(error)") << key;
}

TEST_F(BagTest, FormatterResultCodes)
{
    Put(bag, "none", Bytes({}));
    Put(bag, "one", Bytes({7}));
    Put(bag, "two", Bytes({1, 2}));
    Put(bag, "four", Bytes({1, 2, 3, 4}));
    Put(bag, "eight", Bytes({1, 2, 3, 4, 5, 6, 7, 8}));
    using Formatter = IProperties::Formatter;
    struct Case {
        const char* name;
        Formatter formatter;
        const char* key;
        int result;
    };
    const Case cases[] = {
        {"bool", &TestBag::GetBool, "one", RESULT_OK},
        {"bool", &TestBag::GetBool, "two", RESULT_TYPE_MISMATCH},
        {"bool", &TestBag::GetBool, "none", RESULT_TYPE_MISMATCH},
        {"bool", &TestBag::GetBool, "absent", RESULT_INDEX_OUT_OF_RANGE},
        {"byte", &TestBag::GetByte, "four", RESULT_TYPE_MISMATCH},
        {"uint16", &TestBag::GetUInt16, "two", RESULT_OK},
        {"uint16", &TestBag::GetUInt16, "one", RESULT_TYPE_MISMATCH},
        {"uint32", &TestBag::GetUInt32, "four", RESULT_OK},
        {"uint32", &TestBag::GetUInt32, "eight", RESULT_TYPE_MISMATCH},
        {"uint32", &TestBag::GetUInt32, "absent", RESULT_INDEX_OUT_OF_RANGE},
        {"string", &TestBag::GetString, "none", RESULT_OK},
        {"string", &TestBag::GetString, "absent", RESULT_INDEX_OUT_OF_RANGE},
    };
    for (const Case& c : cases) {
        CString* text = nullptr;
        EXPECT_EQ(c.formatter(&bag, c.key, &text), c.result) << c.name << " " << c.key;
        EXPECT_EQ(text != nullptr, c.result == RESULT_OK) << c.name << " " << c.key;
        RObject<CString> held(text);
    }
}

TEST_F(BagTest, DescriptionsAndTypes)
{
    EXPECT_STREQ(bag.GetPropertyDescription("short"), "A short");
    EXPECT_EQ(bag.GetPropertyType("name"), IProperties::TXT);
    EXPECT_EQ(bag.GetPropertyType("link"), IProperties::URL);
    EXPECT_EQ(bag.GetPropertyDescription("plain"), nullptr);
    EXPECT_EQ(bag.GetPropertyType("plain"), 0u);
    EXPECT_EQ(bag.GetPropertyDescription(nullptr), nullptr);
}

TEST_F(BagTest, TypedWidthsAndByteOrder)
{
    Properties p(&bag);
    ASSERT_EQ(p.SetProperty("i", 0x01020304), 0);
    ASSERT_EQ(p.SetProperty("u", 0xF1F2F3F4u), 0);
    ASSERT_EQ(p.SetProperty("l", int64_t{-2}), 0);
    ASSERT_EQ(p.SetProperty("b", true), 0);
    ASSERT_EQ(p.SetProperty("r", 3, Bytes({9, 8, 7}).data()), 0);
    EXPECT_EQ(Stored(bag, "i"), Bytes({4, 3, 2, 1}));
    EXPECT_EQ(Stored(bag, "u"), Bytes({0xF4, 0xF3, 0xF2, 0xF1}));
    EXPECT_EQ(Stored(bag, "l"), Bytes({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Stored(bag, "b"), Bytes({1}));
    EXPECT_EQ(Stored(bag, "r"), Bytes({9, 8, 7}));

    int i = 0;
    unsigned int u = 0;
    int64_t l = 0;
    bool b = false;
    EXPECT_EQ(p.GetProperty("i", i), 4);
    EXPECT_EQ(p.GetProperty("u", u), 4);
    EXPECT_EQ(p.GetProperty("l", l), 8);
    EXPECT_EQ(p.GetProperty("b", b), 1);
    EXPECT_EQ(i, 0x01020304);
    EXPECT_EQ(u, 0xF1F2F3F4u);
    EXPECT_EQ(l, -2);
    EXPECT_TRUE(b);
}

TEST_F(BagTest, OtherIntegerTypesUseTheirWidth)
{
    // long long is not int64_t on every platform; short and char have no
    // overload of their own.
    Properties p(&bag);
    ASSERT_EQ(p.SetProperty("ll", -3LL), 0);
    ASSERT_EQ(p.SetProperty("ull", 0x0102030405060708ULL), 0);
    ASSERT_EQ(p.SetProperty("s", short(-2)), 0);
    ASSERT_EQ(p.SetProperty("c", static_cast<unsigned char>(200)), 0);
    EXPECT_EQ(Stored(bag, "ll"), Bytes({0xFD, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Stored(bag, "ull"), Bytes({8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(Stored(bag, "s"), Bytes({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Stored(bag, "c"), Bytes({200, 0, 0, 0}));

    long long ll = 0;
    unsigned long long absent = 77;
    EXPECT_EQ(p.GetProperty("ll", ll), 8);
    EXPECT_EQ(ll, -3);
    EXPECT_EQ(p.GetProperty("missing", absent), 0);
    EXPECT_EQ(absent, 77u);
}

TEST_F(BagTest, TypedReadsNeverPassTheStoredBytes)
{
    Properties p(&bag);
    Put(bag, "one", Bytes({0x05}));
    Put(bag, "two", Bytes({0x02}));
    Put(bag, "four", Bytes({1, 0, 0, 0}));
    Put(bag, "eight", Bytes({1, 0, 0, 0, 0, 0, 0, 0}));

    // A shorter stored value fills only the first bytes.
    int i = 0x7F7F7F7F;
    EXPECT_EQ(p.GetProperty("one", i), 1);
    EXPECT_EQ(i, 0x7F7F7F05);
    int64_t l = -1;
    EXPECT_EQ(p.GetProperty("four", l), 4);
    EXPECT_EQ(l, int64_t(0xFFFFFFFF00000001ull));

    // A longer one is refused and nothing moves; so is an absent key.
    bool b = false;
    EXPECT_EQ(p.GetProperty("four", b), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_FALSE(b);
    i = 42;
    EXPECT_EQ(p.GetProperty("eight", i), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(p.GetProperty("absent", i), 0);
    EXPECT_EQ(i, 42);
    b = true;
    EXPECT_EQ(p.GetProperty("absent", b), 0);
    EXPECT_TRUE(b);

    // Any non-zero byte is true.
    b = false;
    EXPECT_EQ(p.GetProperty("two", b), 1);
    EXPECT_TRUE(b);
}

TEST_F(BagTest, WrapperArraysNamesAndValues)
{
    Properties p(&bag);
    ByteArray array(new CByteArray(Bytes({1, 2, 3}).data(), 3));
    ASSERT_EQ(p.SetProperty("arr", array), 0);
    ByteArray out;
    EXPECT_EQ(p.GetProperty("arr", out), 3);
    EXPECT_EQ(out.ToObject(), array.ToObject());
    ByteArray untouched(new CByteArray(1));
    CByteArray* before = untouched.ToObject();
    EXPECT_EQ(p.GetProperty("absent", untouched), 0);
    EXPECT_EQ(untouched.ToObject(), before);

    p.SetProperty("byte", 7u);
    EXPECT_STREQ(p.GetPropertyName(0).GetChars(), "arr");
    EXPECT_TRUE(p.GetPropertyName(5).IsNull());
    EXPECT_STREQ(p.GetPropertyValue("arr").GetChars(), "(null)");
    EXPECT_STREQ(p.GetPropertyValue("byte").GetChars(), "(error)"); // 4 bytes, not 1
    EXPECT_STREQ(p.GetPropertyDescription("byte"), "A byte");

    unsigned int code = 0;
    EXPECT_EQ(p.SetFourProperty("c", Four("abcd")), 0);
    EXPECT_EQ(p.GetFourProperty("c", code), 4);
    EXPECT_EQ(code, Four("abcd"));
    EXPECT_EQ(p.RemoveProperty("c"), 0);
    EXPECT_EQ(p.GetPropertyCount(), 2);
    EXPECT_EQ(p.ClearProperties(), 0);
    EXPECT_EQ(p.GetPropertyCount(), 0);
}

TEST(Properties, NullWrapper)
{
    Properties p;
    int i = 5;
    bool b = true;
    unsigned int u = 6;
    ByteArray array;
    EXPECT_TRUE(p.IsNull());
    EXPECT_EQ(p.SetProperty("k", 1), RESULT_NULL_POINTER);
    EXPECT_EQ(p.SetProperty("k", true), RESULT_NULL_POINTER);
    EXPECT_EQ(p.SetProperty("k", array), RESULT_NULL_POINTER);
    EXPECT_EQ(p.GetProperty("k", i), RESULT_NULL_POINTER);
    EXPECT_EQ(p.GetProperty("k", b), RESULT_NULL_POINTER);
    EXPECT_EQ(p.GetFourProperty("k", u), RESULT_NULL_POINTER);
    EXPECT_EQ(p.GetProperty("k", array), RESULT_NULL_POINTER);
    EXPECT_EQ(p.RemoveProperty("k"), RESULT_NULL_POINTER);
    EXPECT_EQ(p.ClearProperties(), RESULT_NULL_POINTER);
    EXPECT_EQ(i, 5);
    EXPECT_EQ(p.GetPropertyCount(), 0);
    EXPECT_TRUE(p.GetPropertyName(0).IsNull());
    EXPECT_TRUE(p.GetPropertyValue("k").IsNull());
    EXPECT_EQ(p.GetPropertyType("k"), 0u);
}

TEST(Properties, KeepsTheOwningObjectAlive)
{
    CVideoProperties* video = new CVideoProperties();
    Properties p(video);
    EXPECT_EQ(video->GetReferenceCount(), 2);
    {
        Properties copy = p;
        Properties assigned;
        assigned = copy;
        EXPECT_EQ(video->GetReferenceCount(), 4);
    }
    video->Release();
    // Only the wrapper holds the description now (ASan would catch a use
    // after free here).
    EXPECT_EQ(p.SetProperty(VideoProperty::AlphaChannel, true), 0);
    EXPECT_EQ(Text(p.GetInterface()->GetPropertyValue(VideoProperty::AlphaChannel)), "true");
}

TEST(MediaDescriptions, TypesAndDefaults)
{
    RObject<CMediaProperties> media(new CMediaProperties());
    RObject<CVideoProperties> video(new CVideoProperties());
    RObject<CAudioProperties> audio(new CAudioProperties());
    RObject<CSubtitleProperties> subtitle(new CSubtitleProperties());
    EXPECT_TRUE(video->IsType(CVideoProperties::Type));
    EXPECT_FALSE(video->IsType(CMediaProperties::Type));

    for (CMediaProperties* m : {media.Get(), static_cast<CMediaProperties*>(video.Get()),
                                static_cast<CMediaProperties*>(audio.Get()),
                                static_cast<CMediaProperties*>(subtitle.Get())}) {
        EXPECT_EQ(m->GetFormat(), 0u);
        EXPECT_EQ(m->GetTimeScale(), 10000000);
        EXPECT_EQ(m->GetDuration(), 0);
        EXPECT_EQ(m->GetPropertyCount(), 0);
        EXPECT_EQ(m->SetTimeScale(0), RESULT_ARGUMENT_OUT_OF_RANGE);
        EXPECT_EQ(m->SetDuration(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
        EXPECT_EQ(m->GetTimeScale(), 10000000);
        EXPECT_STREQ(m->GetPropertyDescription(MediaProperty::Mpeg2FormatIdentifier), "MPEG-2 Format Identifier");
    }
}

TEST(MediaDescriptions, AccessorTables)
{
    RObject<CVideoProperties> video(new CVideoProperties());
    RObject<CAudioProperties> audio(new CAudioProperties());
    RObject<CSubtitleProperties> subtitle(new CSubtitleProperties());

    Properties(video.Get()).SetProperty(MediaProperty::Mpeg2FormatIdentifier, Four("HDMV"));
    video->SetProperty(VideoProperty::Mpeg4CompressorName, 5, reinterpret_cast<const unsigned char*>("Codec"));
    const unsigned char pid[2] = {0x11, 0x01};
    video->SetProperty(MediaProperty::Mpeg2TransportStreamPid, 2, pid);
    EXPECT_EQ(Text(video->GetPropertyValue(VideoProperty::Mpeg4CompressorName)), "Codec");
    EXPECT_EQ(Text(video->GetPropertyValue(MediaProperty::Mpeg2TransportStreamPid)), "273");
    // Stored as a number (0x48444D56), shown in decimal.
    EXPECT_EQ(Text(video->GetPropertyValue(MediaProperty::Mpeg2FormatIdentifier)), "1212435798");
    EXPECT_EQ(Text(video->GetPropertyValue(VideoProperty::ForceKeyFrame)), "(null)");

    const unsigned char layer = 3;
    audio->SetProperty(AudioProperty::MpegLayer, 1, &layer);
    EXPECT_EQ(Text(audio->GetPropertyValue(AudioProperty::MpegLayer)), "3");
    EXPECT_STREQ(audio->GetPropertyDescription(AudioProperty::MpegLayer), "MPEG Audio Layer");
    EXPECT_EQ(audio->GetPropertyDescription(VideoProperty::AlphaChannel), nullptr);

    EXPECT_NE(subtitle->GetPropertyDescription(CodeBookProperty::SubtitleCaptionChannel), nullptr);
    EXPECT_EQ(subtitle->GetPropertyDescription(VideoProperty::AlphaChannel), nullptr);

    // Every table ends with a null key and describes each key once.
    for (const IProperties::Accessor* table :
         {CMediaProperties::Accessors, CVideoProperties::Accessors, CAudioProperties::Accessors,
          CSubtitleProperties::Accessors}) {
        int count = 0;
        for (const IProperties::Accessor* a = table; a->key; ++a, ++count) {
            EXPECT_NE(a->description, nullptr) << a->key;
            EXPECT_NE(a->formatter, nullptr) << a->key;
            for (const IProperties::Accessor* b = a + 1; b->key; ++b)
                EXPECT_STRNE(a->key, b->key);
        }
        EXPECT_GE(count, 2);
    }
}

TEST(MediaDescriptions, VideoFacts)
{
    RObject<CVideoProperties> video(new CVideoProperties());
    EXPECT_EQ(video->SetSize(1920, 1080), 0);
    EXPECT_EQ(video->SetSize(-1, 5), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(video->GetWidth(), 1920);
    EXPECT_EQ(video->GetHeight(), 1080);

    struct Fraction {
        int64_t numerator, denominator;
        int result;
        int64_t storedNumerator, storedDenominator;
    };
    const Fraction fractions[] = {
        {30000, 1001, 0, 30000, 1001}, {60, 2, 0, 30, 1},  {50, 1, 0, 50, 1}, {0, 0, 0, 0, 0},
        {0, 5, 0, 0, 1},               {1, 0, RESULT_ARGUMENT_OUT_OF_RANGE, 0, 1},
        {-25, 1, RESULT_ARGUMENT_OUT_OF_RANGE, 0, 1},
        {25, -1, RESULT_ARGUMENT_OUT_OF_RANGE, 0, 1},
    };
    for (const Fraction& f : fractions) {
        SCOPED_TRACE(std::to_string(f.numerator) + "/" + std::to_string(f.denominator));
        int64_t n = -9, d = -9;
        EXPECT_EQ(video->SetFrameRate(f.numerator, f.denominator), f.result);
        video->GetFrameRate(n, d);
        EXPECT_EQ(n, f.storedNumerator);
        EXPECT_EQ(d, f.storedDenominator);
        EXPECT_EQ(video->SetPixelAspectRatio(f.numerator, f.denominator), f.result);
        video->GetPixelAspectRatio(n, d);
        EXPECT_EQ(n, f.storedNumerator);
        EXPECT_EQ(d, f.storedDenominator);
    }

    int32_t h = 0, v = 0;
    EXPECT_EQ(video->SetSubsampling(2, 2), 0);
    EXPECT_EQ(video->SetSubsampling(17, 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(video->SetSubsampling(1, -1), RESULT_ARGUMENT_OUT_OF_RANGE);
    video->GetSubsampling(h, v);
    EXPECT_EQ(h, 2);
    EXPECT_EQ(v, 2);

    EXPECT_EQ(video->SetFieldOrder(CVideoProperties::FieldOrderTopFirst), 0);
    EXPECT_EQ(video->SetFieldOrder(4), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(video->GetFieldOrder(), CVideoProperties::FieldOrderTopFirst);
    EXPECT_EQ(video->SetBitRate(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(video->SetBitRate(int64_t(50) * 1000 * 1000 * 1000), 0);
    EXPECT_EQ(video->GetBitRate(), int64_t(50) * 1000 * 1000 * 1000);
}

TEST(MediaDescriptions, AudioChannelLayout)
{
    RObject<CAudioProperties> audio(new CAudioProperties());
    uint32_t position = 99;
    EXPECT_EQ(audio->GetSpeakerPosition(0, position), RESULT_INDEX_OUT_OF_RANGE);

    ASSERT_EQ(audio->SetChannels(2), 0);
    audio->SetSpeakerPosition(0, CAudioProperties::SpeakerFrontLeft);
    audio->SetSpeakerPosition(1, CAudioProperties::SpeakerFrontRight);
    ASSERT_EQ(audio->SetChannels(4), 0);
    std::vector<uint32_t> positions;
    for (int32_t c = 0; c < audio->GetChannels(); ++c) {
        EXPECT_EQ(audio->GetSpeakerPosition(c, position), 0);
        positions.push_back(position);
    }
    EXPECT_EQ(positions, (std::vector<uint32_t>{1, 2, 0, 0}));
    EXPECT_EQ(audio->SetSpeakerPosition(4, 1), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(audio->SetSpeakerPosition(-1, 1), RESULT_INDEX_OUT_OF_RANGE);

    EXPECT_EQ(audio->SetChannels(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(audio->SetChannels(CAudioProperties::MaxChannels + 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(audio->GetChannels(), 4);

    struct MaskCase {
        uint32_t mask;
        std::vector<uint32_t> positions;
    };
    const MaskCase masks[] = {
        {0x3F, {1, 2, 3, 4, 5, 6}},       // 5.1 with back speakers
        {0x60F, {1, 2, 3, 4, 10, 11}},    // 5.1 with side speakers
        {0x4, {3}},                       // mono centre
        {0x80000000u, {32}},              // the highest bit still maps
        {0, {}},
    };
    for (const MaskCase& m : masks) {
        SCOPED_TRACE(m.mask);
        ASSERT_EQ(audio->SetSpeakerPositionsFromMask(m.mask), 0);
        ASSERT_EQ(audio->GetChannels(), static_cast<int32_t>(m.positions.size()));
        for (size_t c = 0; c < m.positions.size(); ++c) {
            audio->GetSpeakerPosition(static_cast<int32_t>(c), position);
            EXPECT_EQ(position, m.positions[c]);
        }
    }
}

TEST(MediaDescriptions, AudioGeometry)
{
    RObject<CAudioProperties> audio(new CAudioProperties());
    struct Setter {
        int (CAudioProperties::*set)(int32_t);
        int32_t (CAudioProperties::*get)() const;
    };
    const Setter setters[] = {
        {&CAudioProperties::SetSampleRate, &CAudioProperties::GetSampleRate},
        {&CAudioProperties::SetBitsPerSample, &CAudioProperties::GetBitsPerSample},
        {&CAudioProperties::SetBytesPerFrame, &CAudioProperties::GetBytesPerFrame},
        {&CAudioProperties::SetFramesPerPacket, &CAudioProperties::GetFramesPerPacket},
        {&CAudioProperties::SetBytesPerPacket, &CAudioProperties::GetBytesPerPacket},
    };
    int32_t value = 11;
    for (const Setter& s : setters) {
        EXPECT_EQ(((*audio).*s.set)(value), 0);
        EXPECT_EQ(((*audio).*s.set)(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
        EXPECT_EQ(((*audio).*s.get)(), value);
        ++value;
    }
    EXPECT_EQ(audio->SetBitRate(1411200), 0);
    EXPECT_EQ(audio->GetBitRate(), 1411200);
}

TEST(MediaDescriptions, ClonesAreDeepAndOfTheSameClass)
{
    RObject<CAudioProperties> audio(new CAudioProperties());
    audio->SetFormat(Four("sowt"));
    audio->SetTimeScale(48000);
    audio->SetDuration(96000);
    audio->SetSampleRate(48000);
    audio->SetSpeakerPositionsFromMask(0x3);
    audio->SetBitRate(1536000);
    audio->SetFourProperty("k", Four("abcd"));

    RObject<CMediaProperties> copy(audio->Clone());
    ASSERT_TRUE(copy);
    ASSERT_TRUE(copy->IsType(CAudioProperties::Type));
    auto* clone = static_cast<CAudioProperties*>(copy.Get());
    EXPECT_EQ(clone->GetFormat(), Four("sowt"));
    EXPECT_EQ(clone->GetTimeScale(), 48000);
    EXPECT_EQ(clone->GetDuration(), 96000);
    EXPECT_EQ(clone->GetSampleRate(), 48000);
    EXPECT_EQ(clone->GetBitRate(), 1536000);
    ASSERT_EQ(clone->GetChannels(), 2);
    uint32_t position = 0;
    clone->GetSpeakerPosition(1, position);
    EXPECT_EQ(position, CAudioProperties::SpeakerFrontRight);

    clone->SetFourProperty("k", Four("wxyz"));
    clone->SetSpeakerPosition(1, CAudioProperties::SpeakerSideRight);
    unsigned int code = 0;
    audio->GetFourProperty("k", code);
    EXPECT_EQ(code, Four("abcd"));
    audio->GetSpeakerPosition(1, position);
    EXPECT_EQ(position, CAudioProperties::SpeakerFrontRight);

    RObject<CVideoProperties> video(new CVideoProperties());
    video->SetSize(720, 576);
    video->SetFrameRate(25, 1);
    RObject<CMediaProperties> videoCopy(video->Clone());
    ASSERT_TRUE(videoCopy && videoCopy->IsType(CVideoProperties::Type));
    EXPECT_EQ(static_cast<CVideoProperties*>(videoCopy.Get())->GetWidth(), 720);
    RObject<CSubtitleProperties> subtitle(new CSubtitleProperties());
    RObject<CMediaProperties> subtitleCopy(subtitle->Clone());
    ASSERT_TRUE(subtitleCopy && subtitleCopy->IsType(CSubtitleProperties::Type));
}

TEST(MediaDescriptions, PublicWrappers)
{
    VideoProperties video = VideoProperties::Create();
    ASSERT_FALSE(video.IsNull());
    EXPECT_EQ(video.SetSize(1280, 720), 0);
    EXPECT_EQ(video.SetFrameRate(60000, 1001), 0);
    EXPECT_EQ(video.SetColorSpace(CVideoProperties::ColorSpaceRec709), 0);
    int64_t n = 0, d = 0;
    EXPECT_EQ(video.GetFrameRate(n, d), 0);
    EXPECT_EQ(n, 60000);
    EXPECT_EQ(d, 1001);
    EXPECT_EQ(video->GetWidth(), 1280);
    EXPECT_EQ(video.GetColorSpace(), CVideoProperties::ColorSpaceRec709);

    MediaProperties media = video.AsMedia();
    EXPECT_EQ(media.ToObject(), static_cast<CMediaProperties*>(video.ToObject()));
    EXPECT_EQ(video->GetReferenceCount(), 2);
    EXPECT_EQ(media.SetDuration(100), 0);
    EXPECT_EQ(video.GetDuration(), 100);

    // The wrapper's bag is the object's bag.
    EXPECT_EQ(video.GetProperties().SetProperty(VideoProperty::H264Level, 41), 0);
    EXPECT_EQ(video->GetProperty(VideoProperty::H264Level, 0, nullptr), 4);

    AudioProperties audio = AudioProperties::Create();
    EXPECT_EQ(audio.SetSpeakerPositionsFromMask(0x7), 0);
    EXPECT_EQ(audio.GetChannels(), 3);
    uint32_t position = 0;
    EXPECT_EQ(audio.GetSpeakerPosition(2, position), 0);
    EXPECT_EQ(position, CAudioProperties::SpeakerFrontCenter);
    AudioProperties shared = AudioProperties::FromObject(audio.ToObject());
    EXPECT_EQ(audio->GetReferenceCount(), 2);

    SubtitleProperties subtitle = SubtitleProperties::Create();
    EXPECT_EQ(subtitle.SetFormat(Four("c608")), 0);
    EXPECT_EQ(subtitle.GetFormat(), Four("c608"));

    VideoProperties none;
    AudioProperties noAudio;
    EXPECT_EQ(none.SetSize(1, 1), RESULT_NULL_POINTER);
    EXPECT_EQ(none.GetWidth(), 0);
    EXPECT_EQ(none.GetFrameRate(n, d), RESULT_NULL_POINTER);
    EXPECT_EQ(noAudio.SetChannels(2), RESULT_NULL_POINTER);
    EXPECT_EQ(noAudio.GetSpeakerPosition(0, position), RESULT_NULL_POINTER);
    EXPECT_TRUE(none.GetProperties().IsNull());
    EXPECT_TRUE(none.AsMedia().IsNull());
}
