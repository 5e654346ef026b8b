#include <vek/core/ByteArray.h>
#include <vek/core/String.h>

#include <gtest/gtest.h>

#include <string>

using namespace Quorvex::Vek;

TEST(StringWrapper, NullReadsAsEmptyButDiffersInEquality)
{
    String null;
    String empty = String::Create("");
    EXPECT_TRUE(null.IsNull());
    EXPECT_STREQ(null.GetChars(), "");
    EXPECT_EQ(null.GetWChars()[0], 0);
    EXPECT_EQ(null.GetLength(), 0);
    EXPECT_TRUE(null.IsNullOrEmpty());
    EXPECT_TRUE(empty.IsNullOrEmpty());
    EXPECT_FALSE(null.Equals(empty));
    EXPECT_TRUE(null.Equals(String()));
    EXPECT_TRUE(null.Substring(0, 0).IsNull());
    EXPECT_EQ(null.ToFour(), 0u);
    EXPECT_EQ(String::Compare(empty, null), 1);
    EXPECT_STREQ(null.Append("x").GetChars(), "x");
}

TEST(StringWrapper, SharesAndForwards)
{
    String a = String::Create("Hello");
    {
        String b = a; // shares
        EXPECT_EQ(a.ToObject()->GetReferenceCount(), 2);
        String c = std::move(b);
        EXPECT_TRUE(b.IsNull());
        EXPECT_EQ(a.ToObject()->GetReferenceCount(), 2);
        c = a; // the same object: nothing changes
        EXPECT_EQ(a.ToObject()->GetReferenceCount(), 2);
    }
    EXPECT_EQ(a.ToObject()->GetReferenceCount(), 1);
    String shared = String::FromObject(a.ToObject());
    EXPECT_EQ(a.ToObject()->GetReferenceCount(), 2);
    EXPECT_TRUE(a == shared);
    EXPECT_TRUE(a.EqualsIgnoreCase(String::Create(VEK_W("HELLO"))));
    EXPECT_LT(String::Compare(a, String::Create("help")), 0);
    EXPECT_TRUE(a.StartsWith("he", false));
    EXPECT_TRUE(a.EndsWith("llo"));
    EXPECT_EQ(a.IndexOf("l"), 2);
    EXPECT_STREQ(a.Substring(1, 3).GetChars(), "ell");
    EXPECT_STREQ(String::Create("  x ").Trim().GetChars(), "x");
    EXPECT_EQ(String::Create("vide").ToFour(), 0x76696465u);
    EXPECT_EQ(String::Create("-12").ToInt(), -12);
    EXPECT_EQ(String::Create("0.25").ToDouble(), 0.25);
    EXPECT_EQ(String::Create("abc", 2).GetLength(), 2);
    EXPECT_STREQ(String::Create("ab").ToBytes(2).ToHexString().GetChars(), "00AB");
}

TEST(ByteArrayWrapper, CreateViewsAndHex)
{
    const unsigned char raw[] = {1, 2, 3, 4};
    ByteArray bytes = ByteArray::Create(raw, 4);
    EXPECT_EQ(bytes.GetLength(), 4);
    EXPECT_EQ(bytes.GetData(2), 3);
    ByteArray view;
    ASSERT_EQ(bytes.GetView(1, 2, view), 0);
    bytes = ByteArray(); // the view keeps the memory alive
    EXPECT_EQ(view.GetData(0), 2);
    EXPECT_EQ(view.GetData(1), 3);
    EXPECT_EQ(view.GetView(1, 2, bytes), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_TRUE(bytes.IsNull());
    EXPECT_EQ(ByteArray().GetView(0, 0, bytes), RESULT_NULL_POINTER);

    ByteArray parsed;
    ASSERT_EQ(ByteArray::FromHexString("0203", parsed), 0);
    EXPECT_TRUE(parsed.Equals(view));
    EXPECT_EQ(parsed.GetHashCode(), view.GetHashCode());
    EXPECT_STREQ(parsed.ToHexString().GetChars(), "0203");
    EXPECT_EQ(ByteArray::FromHexString("x", parsed), RESULT_FORMAT_ERROR);
    EXPECT_TRUE(parsed.IsNull());
    EXPECT_TRUE(ByteArray().Equals(ByteArray()));
    EXPECT_FALSE(ByteArray().Equals(view));
    EXPECT_EQ(ByteArray::Create(3).GetData(2), 0);
    EXPECT_EQ(ByteArray().GetData(), nullptr);
}
