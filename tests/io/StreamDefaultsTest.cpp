#include <vek/core/CByteArray.h>
#include <vek/core/RObject.h>
#include <vek/core/Result.h>
#include <vek/io/BufferedStream.h>
#include <vek/io/CMemoryStream.h>
#include <vek/io/CStream.h>
#include <vek/io/ExternalStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

using namespace Quorvex::Vek;

namespace {

// A forward-only stream that only implements the two abstract operations,
// so every other call exercises the defaults of CStream. It hands out at
// most `piece` bytes per read and can be told to fail after some bytes.
class CForwardStream : public CStream {
public:
    CForwardStream(int64_t size, int32_t piece) : m_size(size), m_piece(piece) {}

    using CStream::Read;
    using CStream::Write;

    int Read(unsigned char* buffer, int32_t count) override
    {
        ++reads;
        if (failAt >= 0 && m_position >= failAt)
            return RESULT_IO_ERROR;
        const int64_t n = std::min<int64_t>({count, m_piece, m_size - m_position});
        for (int64_t i = 0; i < n; ++i)
            buffer[i] = uint8_t(m_position + i);
        m_position += n;
        return int(n);
    }
    int Write(const unsigned char* buffer, int32_t count) override
    {
        written.insert(written.end(), buffer, buffer + count);
        return count;
    }
    int64_t GetPosition() override { return m_position; }

    int reads = 0;
    int64_t failAt = -1;
    std::vector<unsigned char> written;

private:
    int64_t m_size;
    int64_t m_position = 0;
    int32_t m_piece;
};

} // namespace

TEST(StreamDefaults, AnswersOfTheBase)
{
    RObject<CForwardStream> stream(new CForwardStream(10, 10));
    EXPECT_EQ(stream->Control(Four("srto"), 4, nullptr), RESULT_NOT_SUPPORTED);
    EXPECT_FALSE(stream->CanRead());
    EXPECT_FALSE(stream->CanSeek());
    EXPECT_FALSE(stream->CanWrite());
    EXPECT_EQ(stream->GetLength(), -1);
    EXPECT_EQ(stream->GetAvailableLength(), -1);
    EXPECT_EQ(stream->SetLength(5), RESULT_NOT_IMPLEMENTED);
    EXPECT_EQ(stream->Flush(), 0);
    EXPECT_EQ(stream->Read(static_cast<CByteArray*>(nullptr)), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(stream->Write(static_cast<CByteArray*>(nullptr)), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(stream->Write(static_cast<CByteArray*>(nullptr), 0, 0), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(stream->ReadByte(), 0);
    EXPECT_EQ(stream->ReadByte(), 1);
    EXPECT_EQ(stream->WriteByte(0x5A), 1);
    ASSERT_EQ(stream->written.size(), 1u);
    EXPECT_EQ(stream->written[0], 0x5A);
}

TEST(StreamDefaults, SkipSeekServesOnlyForwardFromCurrent)
{
    struct Case {
        int64_t size;
        int32_t piece;
        int64_t offset;
        int origin;
        int64_t failAt;
        int result;
        int64_t position;
        int reads;
    };
    const Case cases[] = {
        {1000, 1000, 10, CStream::Begin, -1, RESULT_NOT_IMPLEMENTED, 0, 0},
        {1000, 1000, 10, CStream::End, -1, RESULT_NOT_IMPLEMENTED, 0, 0},
        {1000, 1000, 0, CStream::Current, -1, 0, 0, 0},
        {1000, 1000, -5, CStream::Current, -1, 0, 0, 0},
        {1000, 1000, 300, CStream::Current, -1, 300, 300, 1},
        // Either side of the size a skip can do without a heap buffer.
        {5000, 5000, 4096, CStream::Current, -1, 4096, 4096, 1},
        {5000, 5000, 4097, CStream::Current, -1, 4097, 4097, 1},
        // Pieces of at most 65,536 bytes; the result is the last piece's count.
        {200000, 1 << 20, 150000, CStream::Current, -1, 150000 - 131072, 150000, 3},
        // The source hands out less than asked: keep reading.
        {1000, 64, 200, CStream::Current, -1, 8, 200, 4},
        // End of data ends the skip.
        {100, 1000, 500, CStream::Current, -1, 0, 100, 2},
        {200000, 1 << 20, 150000, CStream::Current, 65536, RESULT_IO_ERROR, 65536, 2},
    };
    for (const Case& c : cases) {
        RObject<CForwardStream> stream(new CForwardStream(c.size, c.piece));
        stream->failAt = c.failAt;
        int64_t reported = -42;
        EXPECT_EQ(stream->Seek(c.offset, CStream::SeekOrigin(c.origin), &reported), c.result)
            << c.offset;
        EXPECT_EQ(stream->GetPosition(), c.position) << c.offset;
        EXPECT_EQ(stream->reads, c.reads) << c.offset;
        EXPECT_EQ(reported, c.result >= 0 ? c.position : -42) << c.offset;
    }
}

namespace {

// A host stream over a vector, with knobs to misbehave.
class HostStream : public ExternalStream {
public:
    int Read(unsigned char* buffer, int32_t count) override
    {
        const int64_t n = std::min<int64_t>(count, int64_t(bytes.size()) - position);
        if (n <= 0)
            return 0;
        std::memcpy(buffer, bytes.data() + position, size_t(n));
        position += n;
        return int(n) + overReport;
    }
    int Write(const unsigned char* buffer, int32_t count) override
    {
        if (size_t(position) + size_t(count) > bytes.size())
            bytes.resize(size_t(position) + size_t(count));
        std::memcpy(bytes.data() + position, buffer, size_t(count));
        position += count;
        return count;
    }
    int Seek(int64_t offset, int32_t origin, int64_t* newPosition) override
    {
        const int64_t base = origin == 0 ? 0 : origin == 1 ? position : int64_t(bytes.size());
        if (base + offset < 0)
            return RESULT_ARGUMENT_OUT_OF_RANGE;
        position = base + offset;
        if (newPosition)
            *newPosition = position;
        return 0;
    }
    int64_t GetPosition() override { return position; }
    int64_t GetLength() override { return lengthAnswer ? lengthAnswer : int64_t(bytes.size()); }
    bool CanRead() override { return true; }
    bool CanWrite() override { return true; }
    bool CanSeek() override { return seekable; }
    int Flush() override { return ++flushes; }

    std::vector<unsigned char> bytes;
    int64_t position = 0;
    int overReport = 0;
    int64_t lengthAnswer = 0;
    bool seekable = true;
    int flushes = 0;
};

} // namespace

TEST(ExternalStream, AdapterForwardsEveryOperation)
{
    HostStream host;
    {
        Stream stream = host.AsStream();
        ASSERT_FALSE(stream.IsNull());
        const unsigned char data[5] = {1, 2, 3, 4, 5};
        EXPECT_EQ(stream.Write(data, 5), 5);
        EXPECT_EQ(stream.GetLength(), 5);
        int64_t position = -1;
        EXPECT_EQ(stream.Seek(1, CStream::Begin, &position), 0);
        EXPECT_EQ(position, 1);
        unsigned char out[8] = {};
        EXPECT_EQ(stream.Read(out, 8), 4);
        EXPECT_EQ(out[0], 2);
        EXPECT_EQ(stream.GetPosition(), 5);
        EXPECT_EQ(stream.Seek(-9, CStream::End), RESULT_ARGUMENT_OUT_OF_RANGE);
        EXPECT_EQ(stream.Flush(), 1);
        EXPECT_TRUE(stream.CanRead() && stream.CanWrite() && stream.CanSeek());
    }
    EXPECT_EQ(host.bytes.size(), 5u) << "the host object outlives its streams";
}

TEST(ExternalStream, UntrustedAnswersAreChecked)
{
    HostStream host;
    host.bytes.assign(100, 7);
    Stream stream = host.AsStream();
    unsigned char out[10];
    host.overReport = 5;
    EXPECT_EQ(stream.Read(out, 10), RESULT_UNEXPECTED);
    host.overReport = 0;
    host.lengthAnswer = -7;
    EXPECT_EQ(stream.GetLength(), -1);
    // A host that cannot seek still skips forward by reading.
    host.seekable = false;
    host.position = 0;
    EXPECT_EQ(stream.Seek(30, CStream::Current), 30);
    EXPECT_EQ(host.position, 30);
    EXPECT_EQ(stream.Seek(0, CStream::Begin), RESULT_NOT_IMPLEMENTED);
}

TEST(ExternalStream, ServesAsTheInnerStreamOfACache)
{
    HostStream host;
    for (int i = 0; i < 100; ++i)
        host.bytes.push_back(uint8_t(i));
    {
        BufferedStream cache = BufferedStream::Create(host.AsStream(), 16, 2);
        unsigned char out[10] = {};
        ASSERT_EQ(cache.Seek(45, CStream::Begin), 0);
        ASSERT_EQ(cache.Read(out, 10), 10);
        EXPECT_EQ(out[0], 45);
        const unsigned char patch[3] = {0xF0, 0xF1, 0xF2};
        ASSERT_EQ(cache.Seek(98, CStream::Begin), 0);
        ASSERT_EQ(cache.Write(patch, 3), 3);
        EXPECT_EQ(host.bytes.size(), 100u) << "still in the cache";
        EXPECT_EQ(cache.Flush(), 1) << "the host's own Flush answer";
    }
    ASSERT_EQ(host.bytes.size(), 101u);
    EXPECT_EQ(host.bytes[97], 97);
    EXPECT_EQ(host.bytes[100], 0xF2);
}

TEST(ExternalStream, DetachedStreamsAnswerAsClosed)
{
    auto host = std::make_unique<HostStream>();
    host->bytes.assign(10, 1);
    Stream stream = host->AsStream();
    EXPECT_EQ(host->AsStream().ToObject(), stream.ToObject()) << "one adapter per host";
    host->Detach();
    unsigned char byte = 0;
    EXPECT_EQ(stream.Read(&byte, 1), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(stream.Write(&byte, 1), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(stream.Seek(0, CStream::Begin), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(stream.Flush(), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(stream.GetLength(), -1);
    EXPECT_EQ(stream.GetPosition(), -1);
    EXPECT_FALSE(stream.CanRead() || stream.CanWrite() || stream.CanSeek());
    // A new stream after the detach reaches the host again.
    Stream again = host->AsStream();
    EXPECT_NE(again.ToObject(), stream.ToObject());
    EXPECT_EQ(again.Read(&byte, 1), 1);
    // Destroying the host detaches what is left.
    host.reset();
    EXPECT_EQ(again.Read(&byte, 1), RESULT_BAD_ORDER_ERROR);
}

TEST(ExternalStream, CacheOverAGoneHostFailsCleanly)
{
    auto host = std::make_unique<HostStream>();
    for (int i = 0; i < 100; ++i)
        host->bytes.push_back(uint8_t(i));
    BufferedStream cache = BufferedStream::Create(host->AsStream(), 16, 2);
    unsigned char out[10] = {};
    ASSERT_EQ(cache.Read(out, 10), 10);
    const unsigned char patch[2] = {0xAA, 0xBB};
    ASSERT_EQ(cache.Seek(4, CStream::Begin), 0);
    ASSERT_EQ(cache.Write(patch, 2), 2); // dirty, still in the cache
    host.reset(); // the cache still holds the adapter

    // Every path that would reach the host gives a code, never a call into
    // freed memory (the sanitizer builds stop on one).
    ASSERT_EQ(cache.Seek(50, CStream::Begin), 0);
    EXPECT_LT(cache.Read(out, 10), 0);
    EXPECT_FALSE(cache.CanRead());
    // The dirty block has nowhere to go: the cache asks the gone host
    // whether it can write, hears no and drops it.
    cache.Flush();
    cache.Close();
}

TEST(ExternalStream, DetachWaitsForACallUnderWay)
{
    // The host blocks inside Read until released; a Detach made meanwhile
    // must not return before the host is left.
    class BlockingHost : public HostStream {
    public:
        int Read(unsigned char* buffer, int32_t count) override
        {
            entered = true;
            while (!released)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return HostStream::Read(buffer, count);
        }
        std::atomic<bool> entered{false};
        std::atomic<bool> released{false};
    };
    BlockingHost host;
    host.bytes.assign(4, 9);
    Stream stream = host.AsStream();
    std::atomic<bool> detached{false};
    int got = 0;
    std::thread reader([&] {
        unsigned char out[4];
        got = stream.Read(out, 4);
    });
    while (!host.entered)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::thread detacher([&] {
        host.Detach();
        detached = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(detached) << "Detach returned while the host was still in use";
    host.released = true;
    reader.join();
    detacher.join();
    EXPECT_TRUE(detached);
    EXPECT_EQ(got, 4);
}

TEST(StreamWrapper, NullHandleAnswersWithoutTouchingAnything)
{
    Stream stream;
    unsigned char byte = 0;
    EXPECT_EQ(stream.Read(&byte, 1), RESULT_NULL_POINTER);
    EXPECT_EQ(stream.Write(&byte, 1), RESULT_NULL_POINTER);
    EXPECT_EQ(stream.Seek(0, CStream::Begin), RESULT_NULL_POINTER);
    EXPECT_EQ(stream.GetLength(), -1);
    EXPECT_EQ(stream.ReadByte(), -1);
    EXPECT_FALSE(stream.CanRead());
    stream.Close();
}
