#include <vek/core/CString.h>
#include <vek/core/RObject.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Quorvex::Vek;

// Text handed over with a length need not be terminated: every check of
// the codec must stay inside the bytes given. Each input sits in a heap
// block of exactly its size so that the address sanitizer sees a read past
// it. A U+FFFD written out (EF BF BD) is well-formed and kept; a sequence
// cut short becomes one U+FFFD.
TEST(TextCodec, TruncatedSequencesAtTheEndStayInBounds)
{
    struct Case {
        std::string bytes;
        std::string utf8;
        int32_t units;
    };
    const Case cases[] = {
        {"\xEF", "\xEF\xBF\xBD", 1},
        {"\xEF\xBF", "\xEF\xBF\xBD", 1},
        {"\xEF\xBF\xBD", "\xEF\xBF\xBD", 1},
        {"a\xEF\xBF", "a\xEF\xBF\xBD", 2},
        {"\xF0\x9F", "\xEF\xBF\xBD", 1},
        {"\xE2\x82", "\xEF\xBF\xBD", 1},
    };
    for (const Case& c : cases) {
        std::unique_ptr<char[]> exact(new char[c.bytes.size()]);
        c.bytes.copy(exact.get(), c.bytes.size());
        RObject<CString> text(new CString(exact.get(), int32_t(c.bytes.size())));
        EXPECT_EQ(text->GetLength(), c.units) << c.bytes.size();
        // The UTF-8 form keeps the bytes; the UTF-16 form, converted, gives
        // the substituted text back.
        EXPECT_EQ(std::string(text->GetChars()), c.bytes) << c.bytes.size();
        RObject<CString> converted(new CString(text->GetWChars()));
        EXPECT_EQ(std::string(converted->GetChars()), c.utf8) << c.bytes.size();
    }
}
