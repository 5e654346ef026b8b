// Data references: what each kind lets a locked guard reach, the lengths
// they accept, and the guard's lock/unlock pairing.
#include <vek/core/Result.h>
#include <vek/samples/CAccessUnitDataReference.h>
#include <vek/samples/CBufferDataReference.h>
#include <vek/samples/CContainerDataReference.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CMemoryDataReference.h>
#include <vek/samples/CPixelBufferDataReference.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include <set>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

// Counts lock and unlock calls, to see the guard pair them.
class CountingReference : public CMediaSampleDataReference {
public:
    CountingReference() : CMediaSampleDataReference(Four("test")) {}
    int Lock(unsigned char*& data, int32_t& length) override
    {
        ++locks;
        data = bytes;
        length = fail ? 0 : 4;
        return fail ? RESULT_ERROR : RESULT_OK;
    }
    int Unlock() override
    {
        ++unlocks;
        return RESULT_OK;
    }
    int locks = 0;
    int unlocks = 0;
    bool fail = false;
    unsigned char bytes[4] = {1, 2, 3, 4};
};

RObject<CByteArray> Bytes(int32_t length)
{
    return RObject<CByteArray>(CByteArray::Create(nullptr, length));
}

} // namespace

TEST(DataReference, EveryKindHasItsOwnTag)
{
    RObject<CByteArray> bytes(Bytes(16));
    RObject<CLinearDataReference> linear(CLinearDataReference::Create(4));
    CPixelBufferDataReference* pixels = nullptr;
    ASSERT_EQ(CPixelBufferDataReference::Create(bytes, 2, 2, 8, 4, Four("BGRA"), pixels), RESULT_OK);
    RObject<CPixelBufferDataReference> pixelBuffer(pixels);
    RObject<CMediaSampleDataReference> references[] = {
        RObject<CMediaSampleDataReference>(new CContainerDataReference(0, 1)),
        RObject<CMediaSampleDataReference>(new CMemoryDataReference(nullptr, bytes)),
        RObject<CMediaSampleDataReference>(new CBufferDataReference(bytes)),
        RObject<CMediaSampleDataReference>::FromObject(linear),
        RObject<CMediaSampleDataReference>(new CPixelDataReference(2, 2, 0)),
        RObject<CMediaSampleDataReference>::FromObject(pixelBuffer),
        RObject<CMediaSampleDataReference>(new CAccessUnitDataReference(bytes)),
    };
    // Callers downcast after a type test, so no two kinds may share a tag.
    std::set<uint32_t> tags;
    for (const auto& reference : references)
        EXPECT_TRUE(tags.insert(reference->GetType()).second) << std::hex << reference->GetType();
}

TEST(DataReference, GuardPairsLockAndUnlock)
{
    RObject<CountingReference> reference(new CountingReference());
    {
        RObject<CLockedDataReference> guard(CLockedDataReference::Create(reference));
        ASSERT_TRUE(guard);
        EXPECT_EQ(reference->GetReferenceCount(), 2) << "the guard holds the reference";
        EXPECT_EQ(reference->locks, 1);
        EXPECT_EQ(guard->GetLength(), 4);
        EXPECT_EQ(guard->GetData()[3], 4);
    }
    EXPECT_EQ(reference->unlocks, 1);
    EXPECT_EQ(reference->GetReferenceCount(), 1);

    // A failed lock gives a guard without data that unlocks nothing.
    reference->fail = true;
    {
        RObject<CLockedDataReference> guard(CLockedDataReference::Create(reference));
        EXPECT_EQ(guard->GetLockResult(), RESULT_ERROR);
        EXPECT_EQ(guard->GetData(), nullptr);
        EXPECT_EQ(guard->SetLength(1), RESULT_BAD_ORDER_ERROR);
    }
    EXPECT_EQ(reference->unlocks, 1);
    EXPECT_EQ(CLockedDataReference::Create(nullptr), nullptr);
}

TEST(DataReference, SampleGuardReachesTheBytes)
{
    RObject<CVideoSample> sample(CVideoSample::Create());
    RObject<CLinearDataReference> linear(CLinearDataReference::Create(8));
    sample->SetDataReference(linear);
    RObject<CLockedDataReference> guard(sample->GetLockedDataReference());
    ASSERT_TRUE(guard);
    EXPECT_EQ(guard->GetData(), linear->GetData());
    EXPECT_EQ(guard->SetLength(3), RESULT_OK);
    EXPECT_EQ(guard->GetLength(), 3);
    EXPECT_EQ(linear->GetLength(), 3);
    EXPECT_EQ(guard->SetLength(9), RESULT_ARGUMENT_OUT_OF_RANGE) << "past the capacity";
    EXPECT_EQ(guard->GetLength(), 3);
}

TEST(DataReference, LengthBounds)
{
    RObject<CByteArray> bytes(Bytes(10));
    RObject<CBufferDataReference> buffer(new CBufferDataReference(bytes, 6));
    RObject<CLinearDataReference> linear(CLinearDataReference::Create(10));
    RObject<CContainerDataReference> container(new CContainerDataReference(100, 10));
    VekTest::LogCapture log(1);
    struct Case {
        CMediaSampleDataReference* reference;
        int32_t length;
        int result;
    };
    const Case cases[] = {
        {buffer, 10, RESULT_OK},         {buffer, 11, RESULT_ARGUMENT_OUT_OF_RANGE},
        {buffer, -1, RESULT_ARGUMENT_OUT_OF_RANGE},
        {linear, 0, RESULT_OK},          {linear, 11, RESULT_ARGUMENT_OUT_OF_RANGE},
        {container, 1 << 30, RESULT_OK}, {container, -5, RESULT_ARGUMENT_OUT_OF_RANGE},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.reference->SetLength(c.length), c.result) << c.reference->GetType() << " " << c.length;
    EXPECT_EQ(log.Count("CBufferDataReference::SetLength: length 11 outside 0..10"), 1u);

    // Lengths given to the constructor are cut to the array.
    RObject<CBufferDataReference> tooLong(new CBufferDataReference(bytes, 50));
    EXPECT_EQ(tooLong->GetAvailableLength(), 10);
    RObject<CBufferDataReference> negative(new CBufferDataReference(bytes, -3));
    EXPECT_EQ(negative->GetAvailableLength(), 0);
    RObject<CBufferDataReference> whole(new CBufferDataReference(bytes));
    EXPECT_EQ(whole->GetAvailableLength(), 10);
    EXPECT_EQ(whole->GetData(), bytes->GetData());
    EXPECT_EQ(CLinearDataReference::Create(-1), nullptr);
}

TEST(DataReference, ContainerRangeCannotBeLocked)
{
    RObject<CContainerDataReference> container(new CContainerDataReference(int64_t(1) << 40, 512));
    EXPECT_EQ(container->GetPosition(), int64_t(1) << 40);
    EXPECT_EQ(container->GetLength(), 512);
    VekTest::LogCapture log(1);
    RObject<CLockedDataReference> guard(CLockedDataReference::Create(container));
    EXPECT_EQ(guard->GetLockResult(), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(guard->GetData(), nullptr);
    EXPECT_EQ(container->SetPosition(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(container->GetPosition(), int64_t(1) << 40);
}

TEST(DataReference, PixelBufferGeometry)
{
    RObject<CByteArray> bytes(Bytes(100));
    struct Case {
        CByteArray* buffer;
        int32_t width, height, stride, bytesPerPixel;
        int result;
    };
    const Case cases[] = {
        {bytes, 4, 10, 10, 2, RESULT_OK},                       // 100 bytes exactly
        {bytes, 4, 11, 10, 2, RESULT_ARGUMENT_OUT_OF_RANGE},    // one row past the end
        {bytes, 6, 10, 10, 2, RESULT_ARGUMENT_OUT_OF_RANGE},    // row wider than the stride
        {bytes, 4, 2, -10, 2, RESULT_ARGUMENT_OUT_OF_RANGE},
        {bytes, INT32_MAX, 1, 10, 4, RESULT_ARGUMENT_OUT_OF_RANGE},
        {bytes, 1, INT32_MAX, INT32_MAX, 1, RESULT_ARGUMENT_OUT_OF_RANGE},
        {nullptr, 1, 1, 1, 1, RESULT_ARGUMENT_NULL},
    };
    VekTest::LogCapture log(1);
    for (const Case& c : cases) {
        CPixelBufferDataReference* out = reinterpret_cast<CPixelBufferDataReference*>(1);
        EXPECT_EQ(CPixelBufferDataReference::Create(c.buffer, c.width, c.height, c.stride, c.bytesPerPixel, 0, out),
                  c.result)
            << c.width << "x" << c.height << " stride " << c.stride;
        RObject<CPixelBufferDataReference> made(out);
        EXPECT_EQ(made.Get() != nullptr, c.result == RESULT_OK);
    }
    CPixelBufferDataReference* out = nullptr;
    ASSERT_EQ(CPixelBufferDataReference::Create(bytes, 4, 5, 12, 2, Four("yuy2"), out), RESULT_OK);
    RObject<CPixelBufferDataReference> pixels(out);
    unsigned char* plane = nullptr;
    int32_t stride = 0;
    EXPECT_EQ(pixels->GetPlane(0, plane, stride), RESULT_OK);
    EXPECT_EQ(plane, bytes->GetData());
    EXPECT_EQ(stride, 12);
    EXPECT_EQ(pixels->GetPlane(1, plane, stride), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(plane, nullptr);
    RObject<CLockedDataReference> guard(CLockedDataReference::Create(pixels));
    EXPECT_EQ(guard->GetLength(), 60);
}

TEST(DataReference, AccessUnitServesOneLock)
{
    RObject<CByteArray> unit(Bytes(5));
    RObject<CAccessUnitDataReference> reference(new CAccessUnitDataReference(unit));
    {
        RObject<CLockedDataReference> guard(CLockedDataReference::Create(reference));
        EXPECT_EQ(guard->GetLength(), 5);
        EXPECT_EQ(unit->GetReferenceCount(), 2);
    }
    EXPECT_FALSE(reference->HasUnit());
    EXPECT_EQ(unit->GetReferenceCount(), 1) << "Unlock released the unit";
    VekTest::LogCapture log(1);
    RObject<CLockedDataReference> again(CLockedDataReference::Create(reference));
    EXPECT_EQ(again->GetLockResult(), RESULT_BAD_ORDER_ERROR);
}
