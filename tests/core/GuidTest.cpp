#include <vek/core/CString.h>
#include <vek/core/Guid.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace Quorvex::Vek;

namespace {

// The WAVE_FORMAT_EXTENSIBLE PCM subtype, a GUID with a well-known layout.
constexpr const char* kPcmText = "{00000001-0000-0010-8000-00AA00389B71}";
constexpr uint8_t kPcmWindows[16] = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                     0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
constexpr uint8_t kPcmBigEndian[16] = {0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x10,
                                       0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

std::string Formatted(const _Guid& g, bool braces = true)
{
    char text[_Guid::TextLength + 1];
    g.Format(text, braces);
    return text;
}

} // namespace

TEST(Guid, ParseForms)
{
    struct Case {
        const char* text;
        int result;
    };
    const Case cases[] = {
        {"{00000001-0000-0010-8000-00AA00389B71}", 0},
        {"00000001-0000-0010-8000-00aa00389b71", 0},
        {"{00000001-0000-0010-8000-00AA00389B71", RESULT_FORMAT_ERROR},
        {"00000001-0000-0010-8000-00AA00389B71}", RESULT_FORMAT_ERROR},
        {"(00000001-0000-0010-8000-00AA00389B71)", RESULT_FORMAT_ERROR},
        {"{00000001-0000-0010-8000-00AA00389B71} ", RESULT_FORMAT_ERROR},
        {" 00000001-0000-0010-8000-00AA00389B71", RESULT_FORMAT_ERROR},
        {"00000001+0000-0010-8000-00AA00389B71", RESULT_FORMAT_ERROR},
        {"0000000100000010800000AA00389B71", RESULT_FORMAT_ERROR},
        {"0000000G-0000-0010-8000-00AA00389B71", RESULT_FORMAT_ERROR},
        {"00000001-0000-0010-8000-00AA00389B7", RESULT_FORMAT_ERROR},
        {"00000001-0000-0010-8000-00AA00389B711", RESULT_FORMAT_ERROR},
        {"", RESULT_FORMAT_ERROR},
    };
    const _Guid pcm = _Guid::FromBytes(kPcmWindows, GuidByteOrder::Windows);
    for (const Case& c : cases) {
        _Guid g;
        g.Data1 = 0xDEADBEEF;
        EXPECT_EQ(_Guid::Parse(c.text, g), c.result) << c.text;
        if (c.result == 0)
            EXPECT_EQ(g, pcm) << c.text;
        else
            EXPECT_EQ(g.Data1, 0xDEADBEEFu) << c.text; // untouched on failure

        // The wide and CString forms agree with the narrow one.
        RObject<CString> s(new CString(c.text));
        _Guid wide, fromString;
        EXPECT_EQ(_Guid::Parse(s->GetWChars(), wide), c.result) << c.text;
        EXPECT_EQ(_Guid::Parse(s.Get(), fromString), c.result) << c.text;
        EXPECT_EQ(wide, fromString);
    }
    _Guid g;
    EXPECT_EQ(_Guid::Parse(static_cast<const char*>(nullptr), g), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(_Guid::Parse(static_cast<CString*>(nullptr), g), RESULT_ARGUMENT_NULL);
    // A non-ASCII unit that truncates to a hexadecimal digit is still rejected.
    const WChar tricky[] = {WChar(0x0130), 0};
    RObject<CString> s(CString::Concat(RObject<CString>(new CString(tricky)), "0000001-0000-0010-8000-00AA00389B71"));
    EXPECT_EQ(_Guid::Parse(s.Get(), g), RESULT_FORMAT_ERROR);
}

TEST(Guid, ByteOrders)
{
    const _Guid fromWindows = _Guid::FromBytes(kPcmWindows, GuidByteOrder::Windows);
    const _Guid fromBig = _Guid::FromBytes(kPcmBigEndian, GuidByteOrder::BigEndian);
    EXPECT_EQ(fromWindows, fromBig);
    EXPECT_EQ(fromWindows.Data1, 1u);
    EXPECT_EQ(fromWindows.Data3, 0x10u);
    uint8_t bytes[16];
    fromWindows.ToBytes(bytes, GuidByteOrder::Windows);
    EXPECT_EQ(std::memcmp(bytes, kPcmWindows, 16), 0);
    fromWindows.ToBytes(bytes, GuidByteOrder::BigEndian);
    EXPECT_EQ(std::memcmp(bytes, kPcmBigEndian, 16), 0);
    EXPECT_EQ(Formatted(fromWindows), kPcmText);
    EXPECT_EQ(Formatted(fromWindows, false), std::string(kPcmText).substr(1, 36));
}

TEST(Guid, TextRoundTripAndEquality)
{
    uint8_t bytes[16];
    for (int i = 0; i < 16; ++i)
        bytes[i] = uint8_t(0x11 * i + 3);
    const _Guid g = _Guid::FromBytes(bytes, GuidByteOrder::BigEndian);
    RObject<CString> text(g.ToString());
    EXPECT_STREQ(text->GetChars(), "{03142536-4758-697A-8B9C-ADBECFE0F102}");
    _Guid back;
    ASSERT_EQ(_Guid::Parse(text.Get(), back), 0);
    EXPECT_EQ(back, g);
    back.Data4[7] ^= 1;
    EXPECT_NE(back, g);
    EXPECT_TRUE(_Guid{}.IsNull());
    EXPECT_FALSE(g.IsNull());
    EXPECT_STREQ(Formatted(_Guid{}).c_str(), "{00000000-0000-0000-0000-000000000000}");
}
