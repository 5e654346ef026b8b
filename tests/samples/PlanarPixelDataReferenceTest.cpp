// The planar pixel reference: planes where they were put, and refusal of
// any plane that does not lie inside its array.
#include <vek/core/CByteArray.h>
#include <vek/core/Result.h>
#include <vek/samples/CPlanarPixelDataReference.h>

#include <gtest/gtest.h>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

using Plane = CPlanarPixelDataReference::Plane;

TEST(PlanarPixelDataReference, PlanesAreWhereTheyWerePut)
{
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 100));
    const Plane planes[] = {{0, 8, 6, 8}, {70, 4, 3, 4}, {85, 4, 3, 4}};
    CPlanarPixelDataReference* made = nullptr;
    ASSERT_EQ(CPlanarPixelDataReference::Create(bytes, 6, 8, Four("I420"), planes, 3, made), RESULT_OK);
    RObject<CPlanarPixelDataReference> reference(made);
    EXPECT_TRUE(reference->IsType(CPixelDataReference::Type)) << "a pixel reference";
    EXPECT_TRUE(reference->IsType(CPlanarPixelDataReference::Type));
    EXPECT_EQ(reference->GetPlaneCount(), 3);
    for (int32_t index = 0; index < 3; ++index) {
        unsigned char* data = nullptr;
        int32_t stride = 0;
        ASSERT_EQ(reference->GetPlane(index, data, stride), RESULT_OK);
        EXPECT_EQ(data, bytes->GetData() + planes[index].offset);
        EXPECT_EQ(stride, planes[index].stride);
        EXPECT_EQ(reference->GetPlaneLayout(index).rows, planes[index].rows);
    }
    unsigned char* data = nullptr;
    int32_t stride = 0;
    EXPECT_EQ(reference->GetPlane(3, data, stride), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(data, nullptr);
    int32_t length = 0;
    ASSERT_EQ(reference->Lock(data, length), RESULT_OK);
    EXPECT_EQ(data, bytes->GetData());
    EXPECT_EQ(length, 100);
}

TEST(PlanarPixelDataReference, RefusesPlanesOutsideTheArray)
{
    struct Case {
        Plane plane;
        const char* logged;
    };
    // The array holds 64 bytes; the last row of a plane needs only its row.
    const Case cases[] = {
        {{0, 8, 8, 9}, "passes the buffer length 64"},
        {{57, 8, 8, 1}, "at offset 57"},
        {{60, 8, 4, 0x7FFFFFFF}, "at offset 60"},
        {{0, 4, 8, 1}, "stride 4, row 8 bytes"},
        {{-1, 8, 8, 1}, "offset -1"},
        {{0x7FFFFFFF, 8, 8, 1}, "at offset 2147483647"},
    };
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 64));
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        CPlanarPixelDataReference* made = nullptr;
        EXPECT_EQ(CPlanarPixelDataReference::Create(bytes, 8, 8, 0, &c.plane, 1, made), RESULT_ARGUMENT_OUT_OF_RANGE)
            << c.logged;
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
    }
    const Plane fits{56, 8, 8, 1};
    CPlanarPixelDataReference* made = nullptr;
    EXPECT_EQ(CPlanarPixelDataReference::Create(bytes, 8, 8, 0, &fits, 0, made), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(CPlanarPixelDataReference::Create(bytes, 8, 8, 0, nullptr, 1, made), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(CPlanarPixelDataReference::Create(nullptr, 8, 8, 0, &fits, 1, made), RESULT_ARGUMENT_NULL);
    ASSERT_EQ(CPlanarPixelDataReference::Create(bytes, 8, 8, 0, &fits, 1, made), RESULT_OK);
    made->Release();
}
