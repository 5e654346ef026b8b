// The H.264 access-unit range: the framings it accepts, and that it is
// still found and read as a container range.
#include <vek/core/Result.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CMpeg4AvcDataReference.h>

#include <gtest/gtest.h>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

TEST(Mpeg4AvcDataReference, AcceptsTheFourFramings)
{
    struct Case {
        int64_t position;
        int32_t length;
        int32_t lengthSize;
        bool made;
    } cases[] = {
        {0, 100, CMpeg4AvcDataReference::StartCodes, true},
        {1 << 20, 7, 1, true},
        {5, 0, 2, true},
        {int64_t(1) << 40, 9, 4, true},
        {0, 100, 3, false},
        {0, 100, -1, false},
        {-1, 100, 4, false},
        {0, -5, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.position) + " " + std::to_string(c.length) + " " + std::to_string(c.lengthSize));
        VekTest::LogCapture log(2);
        RObject<CMpeg4AvcDataReference> range(CMpeg4AvcDataReference::Create(c.position, c.length, c.lengthSize));
        ASSERT_EQ(range != nullptr, c.made);
        if (!c.made) {
            EXPECT_NE(log.Text().find("CMpeg4AvcDataReference::Create"), std::string::npos);
            continue;
        }
        EXPECT_EQ(range->GetPosition(), c.position);
        EXPECT_EQ(range->GetLength(), c.length);
        EXPECT_EQ(range->GetNalLengthSize(), c.lengthSize);
        EXPECT_EQ(range->GetType(), uint32_t(CMpeg4AvcDataReference::Type));
        EXPECT_TRUE(range->IsType(CMpeg4AvcDataReference::Type));
        EXPECT_TRUE(range->IsType(CContainerDataReference::Type));
        EXPECT_FALSE(range->IsType(CLinearDataReference::Type));
        unsigned char* data = nullptr;
        int32_t length = 0;
        EXPECT_LT(range->Lock(data, length), 0) << "a range of the file holds no bytes to lock";
    }
}

} // namespace
