#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace Quorvex::Vek;

namespace {

using Bytes = RObject<CByteArray>;

Bytes FromText(const char* text)
{
    return Bytes(new CByteArray(reinterpret_cast<const unsigned char*>(text), int32_t(std::strlen(text))));
}

std::string Hex(CByteArray* bytes)
{
    RObject<CString> text(CString::FromBytes(bytes));
    return text ? text->GetChars() : "<null>";
}

} // namespace

TEST(CByteArray, ConstructionAndLazyMemory)
{
    Bytes lazy(new CByteArray(8));
    EXPECT_EQ(lazy->GetLength(), 8);
    EXPECT_EQ(lazy->GetData(3), 0); // allocated zeroed on first need
    ASSERT_NE(lazy->GetData(), nullptr);
    EXPECT_EQ(lazy->GetData(8), 0);
    EXPECT_EQ(lazy->GetData(-1), 0);

    Bytes negative(new CByteArray(-5));
    EXPECT_EQ(negative->GetLength(), 0);
    EXPECT_EQ(negative->GetData(), nullptr);

    Bytes copy = FromText("abc");
    EXPECT_EQ(copy->GetData(1), 'b');
    Bytes nullSource(new CByteArray(static_cast<const unsigned char*>(nullptr), 4));
    EXPECT_EQ(nullSource->GetLength(), 4);
    EXPECT_TRUE(nullSource->Equals(reinterpret_cast<const unsigned char*>("\0\0\0\0"), 4));
}

TEST(CByteArray, ViewsOutliveTheirSource)
{
    CByteArray* source = new CByteArray(reinterpret_cast<const unsigned char*>("0123456789"), 10);
    CByteArray* view = nullptr;
    ASSERT_EQ(source->GetData(2, 5, &view), 0);
    EXPECT_EQ(source->GetReferenceCount(), 2);
    source->Release(); // the view keeps the memory alive
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->GetLength(), 5);
    EXPECT_TRUE(view->Equals(reinterpret_cast<const unsigned char*>("23456"), 5));

    // A view of a view keeps the whole chain alive.
    CByteArray* inner = nullptr;
    ASSERT_EQ(view->GetData(1, 2, &inner), 0);
    view->Release();
    EXPECT_EQ(inner->GetData(0), '3');
    EXPECT_EQ(inner->GetData(1), '4');
    inner->Release();
}

TEST(CByteArray, ViewRangeChecks)
{
    Bytes source(new CByteArray(10));
    struct Case {
        int32_t offset, length;
        int result;
    };
    const Case cases[] = {
        {0, 10, 0}, {10, 0, 0}, {9, 1, 0}, {-1, 1, -19007}, {0, -1, -19007}, {9, 2, -19007}, {11, 0, -19007},
        {1, INT32_MAX, -19007},
    };
    for (const Case& c : cases) {
        CByteArray* out = reinterpret_cast<CByteArray*>(1);
        EXPECT_EQ(source->GetData(c.offset, c.length, &out), c.result) << c.offset << "+" << c.length;
        if (c.result == 0) {
            ASSERT_NE(out, nullptr);
            EXPECT_EQ(out->GetLength(), c.length);
            out->Release();
        } else {
            EXPECT_EQ(out, nullptr);
        }
    }
    EXPECT_EQ(source->GetData(0, 1, nullptr), RESULT_ARGUMENT_NULL);
}

TEST(CByteArray, SetDataMakesAViewOfItsOwnLength)
{
    Bytes source = FromText("abcdef");
    Bytes window(new CByteArray(2));
    EXPECT_EQ(window->SetData(source, 3), 0);
    EXPECT_TRUE(window->Equals(reinterpret_cast<const unsigned char*>("de"), 2));
    EXPECT_EQ(source->GetReferenceCount(), 2);
    // Writes through the view land in the source.
    window->GetData()[0] = 'X';
    EXPECT_EQ(source->GetData(3), 'X');
    EXPECT_EQ(window->SetData(source, 5), -19007);
    EXPECT_EQ(window->SetData(source, -1), -19007);
    EXPECT_EQ(window->SetData(nullptr, 0), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(window->SetData(window, 0), 0);

    // A source without memory yet is allocated first.
    Bytes lazy(new CByteArray(4));
    Bytes part(new CByteArray(2));
    EXPECT_EQ(part->SetData(lazy, 2), 0);
    EXPECT_NE(part->GetData(), nullptr);
    EXPECT_EQ(part->GetData(), lazy->GetData() + 2);
}

TEST(CByteArray, RepointingKeepsEarlierViewsValid)
{
    CByteArray* first = new CByteArray(reinterpret_cast<const unsigned char*>("0123456789"), 10);
    CByteArray* window = nullptr;
    ASSERT_EQ(first->GetData(2, 4, &window), 0);
    CByteArray* view = nullptr;
    ASSERT_EQ(window->GetData(1, 2, &view), 0);
    first->Release(); // only the window keeps it now
    Bytes second = FromText("abcdef");
    ASSERT_EQ(window->SetData(second, 1), 0);
    EXPECT_TRUE(window->Equals(reinterpret_cast<const unsigned char*>("bcde"), 4));
    // The earlier view still reads the first array's bytes.
    EXPECT_TRUE(view->Equals(reinterpret_cast<const unsigned char*>("34"), 2));
    view->Release();
    window->Release();

    // Without views, a window moved from source to source keeps nothing
    // extra alive, however many hold the window itself.
    Bytes lone(new CByteArray(2));
    Bytes alsoHeld = lone;
    Bytes a = FromText("ab"), b = FromText("cd");
    ASSERT_EQ(lone->SetData(a, 0), 0);
    {
        CByteArray* shortLived = nullptr;
        ASSERT_EQ(lone->GetData(0, 1, &shortLived), 0);
        shortLived->Release();
    }
    ASSERT_EQ(lone->SetData(b, 0), 0);
    EXPECT_EQ(a->GetReferenceCount(), 1);
    EXPECT_EQ(b->GetReferenceCount(), 2);
}

TEST(CByteArray, SetDataRefusesItsOwnViews)
{
    Bytes source = FromText("abcdef");
    CByteArray* view = nullptr;
    ASSERT_EQ(source->GetData(0, 6, &view), 0);
    CByteArray* inner = nullptr;
    ASSERT_EQ(view->GetData(0, 6, &inner), 0);
    EXPECT_EQ(source->SetData(view, 0), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(source->SetData(inner, 0), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(view->GetReferenceCount(), 2);
    EXPECT_EQ(inner->GetReferenceCount(), 1);
    inner->Release();
    view->Release();
    EXPECT_EQ(source->GetReferenceCount(), 1);
}

TEST(CByteArray, ClearRanges)
{
    Bytes bytes = FromText("abcdef");
    EXPECT_EQ(bytes->Clear(1, 2), 0);
    EXPECT_TRUE(bytes->Equals(reinterpret_cast<const unsigned char*>("a\0\0def"), 6));
    EXPECT_EQ(bytes->Clear(5, 2), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(bytes->Clear(-1, 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(bytes->Clear(6, 0), 0);
    bytes->Clear();
    EXPECT_TRUE(bytes->Equals(reinterpret_cast<const unsigned char*>("\0\0\0\0\0\0"), 6));
    Bytes empty(new CByteArray(0));
    EXPECT_EQ(empty->Clear(0, 0), RESULT_ERROR);
    // A view of null memory has no data: it neither clears nor grows a
    // buffer of its own.
    Bytes nullView(new CByteArray(8, nullptr, nullptr));
    EXPECT_EQ(nullView->Clear(0, 4), RESULT_ERROR);
    EXPECT_EQ(nullView->GetData(), nullptr);
    EXPECT_EQ(nullView->GetHashCode(), 0);
}

TEST(CByteArray, Comparisons)
{
    Bytes abc = FromText("abc");
    EXPECT_TRUE(abc->Equals(FromText("abc")));
    EXPECT_FALSE(abc->Equals(FromText("abd")));
    EXPECT_FALSE(abc->Equals(FromText("ab")));
    EXPECT_FALSE(abc->Equals(static_cast<CByteArray*>(nullptr)));
    EXPECT_TRUE(abc->StartsWith(reinterpret_cast<const unsigned char*>("ab"), 2));
    EXPECT_TRUE(abc->StartsWith(nullptr, 0));
    EXPECT_FALSE(abc->StartsWith(reinterpret_cast<const unsigned char*>("abcd"), 4));
    EXPECT_FALSE(abc->StartsWith(nullptr, 2));
    EXPECT_TRUE(Bytes(new CByteArray(0))->Equals(Bytes(new CByteArray(0))));
}

TEST(CByteArray, HashIsFnv1a)
{
    struct Case {
        const char* text;
        uint32_t hash;
    };
    // Reference values of 32-bit FNV-1a.
    const Case cases[] = {{"", 0x811c9dc5u}, {"a", 0xe40c292cu}, {"foobar", 0xbf9cf968u}};
    for (const Case& c : cases)
        EXPECT_EQ(uint32_t(FromText(c.text)->GetHashCode()), c.hash) << c.text;
    // A lazy array without memory has no data to hash.
    EXPECT_EQ(Bytes(new CByteArray(4))->GetHashCode(), 0);
}

TEST(CByteArray, FromHexString)
{
    struct Case {
        const char* text;
        int result;
        const char* hex;
    };
    const Case cases[] = {
        {"00ff10", 0, "00FF10"}, {"ABCdef", 0, "ABCDEF"},    {"abc", 0, "0ABC"}, {"1", 0, "01"},
        {"", 0, ""},             {"0x1F", 0, "1F"},          {"0X", 0, ""},      {"12 34", RESULT_FORMAT_ERROR, nullptr},
        {"zz", RESULT_FORMAT_ERROR, nullptr}, {"0x0x", RESULT_FORMAT_ERROR, nullptr},
        {"\xC3\xA9", RESULT_FORMAT_ERROR, nullptr},
    };
    for (const Case& c : cases) {
        CByteArray* out = reinterpret_cast<CByteArray*>(1);
        EXPECT_EQ(CByteArray::FromHexString(c.text, out), c.result) << c.text;
        if (!c.hex) {
            EXPECT_EQ(out, nullptr);
            continue;
        }
        Bytes held(out);
        EXPECT_EQ(Hex(held), c.hex) << c.text;
    }
    CByteArray* out = nullptr;
    EXPECT_EQ(CByteArray::FromHexString(nullptr, out), RESULT_ARGUMENT_NULL);
}
