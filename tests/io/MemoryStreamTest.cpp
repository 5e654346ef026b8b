#include <vek/core/CByteArray.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/io/CMemoryStream.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace Quorvex::Vek;

namespace {

std::vector<unsigned char> Iota(int count, unsigned char first = 0)
{
    std::vector<unsigned char> bytes(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        bytes[size_t(i)] = uint8_t(first + i);
    return bytes;
}

} // namespace

TEST(MemoryStream, GrowsToTwiceTheNeededSizeOneByteAtATime)
{
    RObject<CMemoryStream> stream(new CMemoryStream());
    EXPECT_TRUE(stream->IsType(CMemoryStream::Type));
    EXPECT_EQ(stream->GetCapacity(), 32);
    struct Step {
        int byteNumber;
        int capacityAfter;
    };
    const Step steps[] = {{32, 32}, {33, 66}, {66, 66}, {67, 134}, {134, 134}, {135, 270}};
    int written = 0;
    for (const Step& step : steps) {
        while (written < step.byteNumber)
            ASSERT_EQ(stream->WriteByte(uint8_t(written++)), 1);
        EXPECT_EQ(stream->GetCapacity(), step.capacityAfter) << "after byte " << step.byteNumber;
    }
    // The bytes survive every reallocation.
    ASSERT_EQ(stream->GetLength(), 135);
    for (int i = 0; i < 135; ++i)
        ASSERT_EQ(stream->GetData()[i], uint8_t(i));
}

TEST(MemoryStream, FixedStreamRefusesToOverflow)
{
    RObject<CMemoryStream> stream(new CMemoryStream(10));
    const std::vector<unsigned char> eleven = Iota(11);
    EXPECT_EQ(stream->Write(eleven.data(), 11), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->GetPosition(), 0);
    EXPECT_EQ(stream->GetLength(), 0);
    EXPECT_EQ(stream->Write(eleven.data(), 10), 10);
    EXPECT_EQ(stream->WriteByte(11), RESULT_END_OF_STREAM);
    EXPECT_EQ(stream->Write(uint8_t(7), 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->Write(eleven.data(), -1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->GetPosition(), 10);
    EXPECT_EQ(stream->GetLength(), 10);
    EXPECT_EQ(stream->GetCapacity(), 10);
}

TEST(MemoryStream, SetLengthStaysWithinCapacity)
{
    struct Case {
        int64_t length;
        int result;
    };
    const Case cases[] = {{33, RESULT_ARGUMENT_OUT_OF_RANGE}, {-1, RESULT_ARGUMENT_OUT_OF_RANGE},
                          {32, 0}, {5, 0}, {0, 0}};
    RObject<CMemoryStream> stream(new CMemoryStream());
    stream->Seek(3, CStream::Begin);
    for (const Case& c : cases) {
        const int64_t before = stream->GetLength();
        EXPECT_EQ(stream->SetLength(c.length), c.result) << c.length;
        EXPECT_EQ(stream->GetLength(), c.result == 0 ? c.length : before);
        EXPECT_EQ(stream->GetCapacity(), 32) << "SetLength never enlarges";
        EXPECT_EQ(stream->GetPosition(), 3);
    }
}

TEST(MemoryStream, SeekTargetsAndOrigins)
{
    struct Case {
        int64_t start;
        int64_t offset;
        int origin;
        int result;
        int64_t position;
    };
    const Case cases[] = {
        {4, -1, CStream::Begin, RESULT_ARGUMENT_OUT_OF_RANGE, 4},
        {4, 100, CStream::Begin, 0, 100},
        {4, 3, CStream::Current, 0, 7},
        {4, -5, CStream::Current, RESULT_ARGUMENT_OUT_OF_RANGE, 4},
        {4, -2, CStream::End, 0, 8},
        {4, 0x7FFFFFFF, CStream::Begin, 0, 0x7FFFFFFF},
        {4, 0x80000000LL, CStream::Begin, RESULT_ARGUMENT_OUT_OF_RANGE, 4},
        {4, INT64_MAX, CStream::Current, RESULT_ARGUMENT_OUT_OF_RANGE, 4},
        {4, 9, 7, 0, 4}, // unknown origin: reports the position only
    };
    for (const Case& c : cases) {
        const std::vector<unsigned char> bytes = Iota(10);
        RObject<CMemoryStream> stream(new CMemoryStream(10, bytes.data()));
        ASSERT_EQ(stream->Seek(c.start, CStream::Begin), 0);
        int64_t reported = -42;
        EXPECT_EQ(stream->Seek(c.offset, CStream::SeekOrigin(c.origin), &reported), c.result)
            << c.offset << " from " << c.origin;
        EXPECT_EQ(stream->GetPosition(), c.position);
        EXPECT_EQ(reported, c.result == 0 ? c.position : -42);
    }
}

TEST(MemoryStream, ReadsPastTheEndReturnZero)
{
    const std::vector<unsigned char> bytes = Iota(10, 1);
    RObject<CMemoryStream> stream(new CMemoryStream(10, bytes.data()));
    unsigned char out[16] = {};
    EXPECT_EQ(stream->Read(out, 4), 4);
    EXPECT_EQ(std::memcmp(out, bytes.data(), 4), 0);
    EXPECT_EQ(stream->ReadByte(), 5);
    EXPECT_EQ(stream->Read(out, 16), 5);
    EXPECT_EQ(out[4], 10);
    EXPECT_EQ(stream->Read(out, 16), 0);
    EXPECT_EQ(stream->ReadByte(), -1);
    ASSERT_EQ(stream->Seek(100, CStream::Begin), 0);
    EXPECT_EQ(stream->Read(out, 16), 0);
    EXPECT_EQ(stream->ReadByte(), -1);
    EXPECT_EQ(stream->GetPosition(), 100);
}

TEST(MemoryStream, WriteAfterSeekingBeyondTheEndExtends)
{
    RObject<CMemoryStream> stream(new CMemoryStream());
    ASSERT_EQ(stream->Seek(40, CStream::Begin), 0);
    EXPECT_EQ(stream->Write(uint8_t(0xAB), 3), 3);
    EXPECT_EQ(stream->GetLength(), 43);
    EXPECT_EQ(stream->GetCapacity(), 86);
    EXPECT_EQ(stream->GetData()[42], 0xAB);
    EXPECT_EQ(stream->GetData()[39], 0);
}

TEST(MemoryStream, ViewsClampTheirWindow)
{
    struct Case {
        int32_t offset;
        int32_t count;
        int64_t length;
        int firstByte; // -1 when empty
    };
    const Case cases[] = {
        {20, 5, 0, -1}, {-3, 5, 0, -1}, {2, 5, 5, 2}, {6, 50, 4, 6}, {3, -1, 0, -1}, {0, 10, 10, 0},
    };
    for (const Case& c : cases) {
        const std::vector<unsigned char> bytes = Iota(10);
        RObject<CByteArray> array(new CByteArray(bytes.data(), 10));
        RObject<CMemoryStream> view(new CMemoryStream(array, c.offset, c.count));
        EXPECT_EQ(view->GetLength(), c.length) << c.offset << "," << c.count;
        EXPECT_EQ(view->ReadByte(), c.firstByte) << c.offset << "," << c.count;
        EXPECT_FALSE(view->IsGrowable());
    }
}

TEST(MemoryStream, ViewWritesStayInsideTheArray)
{
    const std::vector<unsigned char> bytes = Iota(10);
    RObject<CByteArray> array(new CByteArray(bytes.data(), 10));
    RObject<CMemoryStream> view(new CMemoryStream(array, 6, 2));
    const unsigned char four[4] = {9, 9, 9, 9};
    const unsigned char five[5] = {};
    EXPECT_EQ(view->Write(five, 5), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(view->Write(four, 4), 4);
    EXPECT_EQ(array->GetData()[5], 5);
    EXPECT_EQ(array->GetData()[9], 9);
    EXPECT_EQ(view->GetLength(), 4);
}

TEST(MemoryStream, ByteArrayForms)
{
    RObject<CMemoryStream> stream(new CMemoryStream());
    EXPECT_EQ(stream->Write(static_cast<CByteArray*>(nullptr)), 0);
    EXPECT_EQ(stream->Read(static_cast<CByteArray*>(nullptr)), RESULT_ARGUMENT_NULL);
    const std::vector<unsigned char> bytes = Iota(6, 10);
    RObject<CByteArray> source(new CByteArray(bytes.data(), 6));
    EXPECT_EQ(stream->Write(source.Get(), 2, 3), 3);
    EXPECT_EQ(stream->Write(source.Get(), 4, 3), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->Write(source.Get(), 1, 0x7FFFFFFF), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->Write(source.Get(), -1, 1), RESULT_ARGUMENT_OUT_OF_RANGE);
    EXPECT_EQ(stream->GetLength(), 3);

    RObject<CByteArray> copy(stream->ToByteArray());
    ASSERT_EQ(copy->GetLength(), 3);
    EXPECT_EQ(copy->GetData()[0], 12);
    EXPECT_NE(copy->GetData(), stream->GetData());

    RObject<CByteArray> into(new CByteArray(8));
    stream->Seek(1, CStream::Begin);
    EXPECT_EQ(stream->Read(into.Get()), 2);
    EXPECT_EQ(into->GetData()[0], 13);

    RObject<CByteArray> buffer(stream->GetBuffer());
    EXPECT_EQ(buffer->GetReferenceCount(), 2);
}

// At the last 32-bit position a growable stream cannot grow any more: the
// write is refused without trying to allocate, and nothing changes.
TEST(MemoryStream, WritesAtTheLastPositionAreRefused)
{
    struct Case {
        int64_t position;
        int32_t count;
        int result;
    };
    const Case cases[] = {
        {0x7FFFFFFF, 1, RESULT_ARGUMENT_OUT_OF_RANGE},
        {0x7FFFFFFF - 1, 2, RESULT_ARGUMENT_OUT_OF_RANGE},
        {0x7FFFFFFF, 0x7FFFFFFF, RESULT_ARGUMENT_OUT_OF_RANGE},
        {1, 0x7FFFFFFF, RESULT_ARGUMENT_OUT_OF_RANGE},
    };
    for (const Case& c : cases) {
        RObject<CMemoryStream> stream(new CMemoryStream());
        ASSERT_EQ(stream->Seek(c.position, CStream::Begin), 0);
        std::vector<unsigned char> one(1, 0x5A);
        EXPECT_EQ(stream->Write(uint8_t(0x5A), c.count), c.result) << c.position << "+" << c.count;
        if (c.count == 1) {
            EXPECT_EQ(stream->Write(one.data(), 1), c.result);
            EXPECT_EQ(stream->WriteByte(0x5A), RESULT_END_OF_STREAM);
        }
        EXPECT_EQ(stream->GetCapacity(), 32) << c.position << "+" << c.count;
        EXPECT_EQ(stream->GetLength(), 0);
        EXPECT_EQ(stream->GetPosition(), c.position);
    }
}

// Appending a stream's own bytes to itself grows the array mid-write: the
// copy must read from the old array before it is let go.
TEST(MemoryStream, WriteFromItsOwnBufferWhileGrowing)
{
    RObject<CMemoryStream> stream(new CMemoryStream());
    const std::vector<unsigned char> seed = Iota(32, 1);
    ASSERT_EQ(stream->Write(seed.data(), 32), 32);
    ASSERT_EQ(stream->GetCapacity(), 32);
    ASSERT_EQ(stream->Write(stream->GetData(), 32), 32);
    ASSERT_GT(stream->GetCapacity(), 32);
    ASSERT_EQ(stream->GetLength(), 64);
    EXPECT_EQ(std::memcmp(stream->GetData(), seed.data(), 32), 0);
    EXPECT_EQ(std::memcmp(stream->GetData() + 32, seed.data(), 32), 0);
}
