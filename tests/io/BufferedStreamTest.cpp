#include <vek/core/Result.h>
#include <vek/io/BufferedStream.h>
#include <vek/io/CBufferedStream.h>
#include <vek/io/CFileDescriptorStream.h>
#include <vek/io/CMemoryStream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/TestSupport.h"

using namespace Quorvex::Vek;

namespace {

// A memory stream that records what the cache asks of it and can be told
// to fail writes or to refuse reading.
class CRecordingStream : public CMemoryStream {
public:
    using CMemoryStream::Read;
    using CMemoryStream::Write;

    int Read(unsigned char* buffer, int32_t count) override
    {
        ++reads;
        readsAt.push_back({GetPosition(), count});
        return CMemoryStream::Read(buffer, piece > 0 && count > piece ? piece : count);
    }
    int Seek(int64_t offset, SeekOrigin origin, int64_t* newPosition = nullptr) override
    {
        ++seeks;
        return CMemoryStream::Seek(offset, origin, newPosition);
    }
    int64_t GetAvailableLength() override
    {
        return lengthKnown ? CMemoryStream::GetAvailableLength() : -1;
    }
    int Write(const unsigned char* buffer, int32_t count) override
    {
        if (failWrites)
            return RESULT_IO_ERROR;
        events.push_back("write@" + std::to_string(GetPosition()) + "+" + std::to_string(count));
        return CMemoryStream::Write(buffer, count);
    }
    bool CanRead() override { return readable; }
    int Flush() override
    {
        events.push_back("flush");
        return 0;
    }
    void Close() override { events.push_back("close"); }

    std::vector<std::string> events;
    std::vector<std::pair<int64_t, int32_t>> readsAt; // position and count asked
    int reads = 0;
    int seeks = 0;
    bool failWrites = false;
    bool readable = true;
    int32_t piece = 0; // most bytes one read hands out; 0: no limit
    bool lengthKnown = true;
};

std::vector<unsigned char> Content(CMemoryStream* stream)
{
    return std::vector<unsigned char>(stream->GetData(), stream->GetData() + stream->GetLength());
}

} // namespace

// The cache must be invisible: the same random script run against a plain
// memory stream and against a cache over another memory stream gives the
// same answers and, after Flush, the same bytes.
TEST(BufferedStream, BehavesLikeAnUnbufferedTwin)
{
    struct Shape {
        int32_t blockSize;
        int32_t blockCount;
    };
    const Shape shapes[] = {{1, 1}, {3, 2}, {16, 1}, {16, 4}, {64, 3}, {4096, 2}, {0, 0}, {7, 0}};
    std::mt19937 random(20261122);
    for (const Shape& shape : shapes) {
        for (int script = 0; script < 20; ++script) {
            std::vector<unsigned char> initial(random() % 300);
            for (unsigned char& byte : initial)
                byte = uint8_t(random());
            RObject<CMemoryStream> twin(new CMemoryStream());
            twin->Write(initial.data(), int32_t(initial.size()));
            twin->Seek(0, CStream::Begin);
            RObject<CMemoryStream> inner(new CMemoryStream());
            inner->Write(initial.data(), int32_t(initial.size()));
            RObject<CBufferedStream> cache(
                new CBufferedStream(inner, shape.blockSize, shape.blockCount));

            for (int step = 0; step < 200; ++step) {
                const std::string where = "shape " + std::to_string(shape.blockSize) + "x" +
                                          std::to_string(shape.blockCount) + " script " +
                                          std::to_string(script) + " step " + std::to_string(step);
                const int32_t size = int32_t(1 + random() % (random() % 4 == 0 ? 700 : 40));
                switch (random() % 5) {
                case 0:
                case 1: {
                    std::vector<unsigned char> a(size_t(size), 0xEE), b(size_t(size), 0xEE);
                    ASSERT_EQ(cache->Read(a.data(), size), twin->Read(b.data(), size)) << where;
                    ASSERT_EQ(a, b) << where;
                    break;
                }
                case 2: {
                    std::vector<unsigned char> data(static_cast<size_t>(size));
                    for (unsigned char& byte : data)
                        byte = uint8_t(random());
                    ASSERT_EQ(cache->Write(data.data(), size), twin->Write(data.data(), size))
                        << where;
                    break;
                }
                case 3: {
                    const int origin = int(random() % 3);
                    const int64_t offset = int64_t(random() % 500) - (origin == 0 ? 20 : 250);
                    int64_t p1 = -1, p2 = -1;
                    ASSERT_EQ(cache->Seek(offset, CStream::SeekOrigin(origin), &p1),
                              twin->Seek(offset, CStream::SeekOrigin(origin), &p2))
                        << where;
                    ASSERT_EQ(p1, p2) << where;
                    break;
                }
                case 4:
                    ASSERT_EQ(cache->Flush(), 0) << where;
                    break;
                }
                ASSERT_EQ(cache->GetPosition(), twin->GetPosition()) << where;
                ASSERT_EQ(cache->GetLength(), twin->GetLength()) << where;
            }
            ASSERT_EQ(cache->Flush(), 0);
            EXPECT_EQ(Content(inner), Content(twin));
        }
    }
}

TEST(BufferedStream, FlushWritesBackFromLastBlockToFirst)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 8, 3));
    std::vector<unsigned char> data(24, 1);
    ASSERT_EQ(cache->Write(data.data(), 24), 24);
    EXPECT_TRUE(inner->events.empty()) << "nothing reaches the inner stream before Flush";
    ASSERT_EQ(cache->Flush(), 0);
    const std::vector<std::string> expected = {"write@16+8", "write@8+8", "write@0+8", "flush"};
    EXPECT_EQ(inner->events, expected);
    inner->events.clear();
    ASSERT_EQ(cache->Flush(), 0);
    EXPECT_EQ(inner->events, std::vector<std::string>{"flush"}) << "clean blocks are skipped";
}

TEST(BufferedStream, CloseFlushesThenClosesThenLetsGo)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 8, 2));
    const unsigned char byte = 9;
    ASSERT_EQ(cache->Write(&byte, 1), 1);
    cache->Close();
    const std::vector<std::string> expected = {"write@0+1", "flush", "close"};
    EXPECT_EQ(inner->events, expected);
    EXPECT_EQ(inner->GetReferenceCount(), 1) << "the inner stream is released";
    EXPECT_EQ(cache->Read(const_cast<unsigned char*>(&byte), 1), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(cache->Flush(), RESULT_BAD_ORDER_ERROR);
}

TEST(BufferedStream, DirtyVictimIsWrittenBackBeforeReuse)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 4, 2));
    const unsigned char bytes[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    ASSERT_EQ(cache->Write(bytes, 8), 8);
    EXPECT_TRUE(inner->events.empty());
    // A third block evicts the least recently used one, block 0.
    ASSERT_EQ(cache->Write(bytes + 8, 4), 4);
    EXPECT_EQ(inner->events, std::vector<std::string>{"write@0+4"});

    // A victim that cannot be written back keeps its data; the write fails
    // and moves nothing.
    inner->failWrites = true;
    ASSERT_EQ(cache->Seek(0, CStream::Begin), 0);
    unsigned char out[2] = {};
    EXPECT_EQ(cache->Read(out, 2), RESULT_IO_ERROR);
    EXPECT_EQ(cache->GetPosition(), 0);
    inner->failWrites = false;
    EXPECT_EQ(cache->Flush(), 0);
    EXPECT_EQ(Content(inner), std::vector<unsigned char>(bytes, bytes + 12));
}

TEST(BufferedStream, LargeReadsSeeDirtyBlocks)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    std::vector<unsigned char> zeros(4096, 0);
    inner->Write(zeros.data(), 4096);
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 256, 4));
    const unsigned char marks[3] = {0xA1, 0xB2, 0xC3};
    ASSERT_EQ(cache->Seek(1000, CStream::Begin), 0);
    ASSERT_EQ(cache->Write(marks, 3), 3);
    ASSERT_EQ(cache->Seek(0, CStream::Begin), 0);
    std::vector<unsigned char> out(4096);
    const int readsBefore = inner->reads;
    const size_t eventsBefore = inner->events.size();
    ASSERT_EQ(cache->Read(out.data(), 4096), 4096);
    EXPECT_EQ(inner->reads - readsBefore, 2) << "the runs either side of the cached block, each whole";
    EXPECT_EQ(inner->events.size(), eventsBefore) << "the dirty block is read from the cache, not written back";
    EXPECT_EQ(out[1000], 0xA1);
    EXPECT_EQ(out[1002], 0xC3);
    EXPECT_EQ(out[999], 0);
}

// The inner stream only ever sees whole aligned blocks, whatever the
// caller's offsets, and a byte the cache holds is never read again.
TEST(BufferedStream, InnerReadsAreWholeAlignedBlocks)
{
    struct Step {
        int64_t position;
        int32_t count;
        bool innerReads; // whether this step reaches the inner stream at all
    };
    const Step steps[] = {
        {10, 5, true},     // loads block 0
        {3, 100, true},    // block 0 from the cache, a direct run, the last block loaded
        {20, 290, true},   // a loaded head block, a direct run, a loaded tail block
        {304, 8, false},   // inside the tail block just loaded
        {0, 16, false},    // block 0 still cached
        {1000, 64, true},  // past the end of 1024 bytes: the last block
    };
    RObject<CRecordingStream> inner(new CRecordingStream());
    std::vector<unsigned char> bytes(1024);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = uint8_t(i * 13);
    inner->Write(bytes.data(), int32_t(bytes.size()));
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 16, 4));
    for (const Step& step : steps) {
        const size_t before = inner->readsAt.size();
        ASSERT_EQ(cache->Seek(step.position, CStream::Begin), 0);
        std::vector<unsigned char> out(size_t(step.count));
        const int64_t expected = std::min<int64_t>(step.count, 1024 - step.position);
        ASSERT_EQ(cache->Read(out.data(), step.count), expected) << step.position;
        EXPECT_EQ(0, std::memcmp(out.data(), bytes.data() + step.position, size_t(expected))) << step.position;
        for (size_t i = before; i < inner->readsAt.size(); ++i) {
            EXPECT_EQ(inner->readsAt[i].first % 16, 0) << "read at " << inner->readsAt[i].first;
            EXPECT_EQ(inner->readsAt[i].second % 16, 0) << "read of " << inner->readsAt[i].second;
        }
        EXPECT_EQ(inner->readsAt.size() > before, step.innerReads) << step.position;
    }
}

// Reading on from where the last read ended moves the inner stream no
// further: one seek for the whole pass, not one per inner read.
TEST(BufferedStream, SequentialReadsSeekOnce)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    std::vector<unsigned char> bytes(4000, 7);
    inner->Write(bytes.data(), int32_t(bytes.size()));
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 64, 4));
    const int seeksBefore = inner->seeks;
    std::vector<unsigned char> out(300);
    int64_t total = 0;
    for (int got = 1; total < 4000 && got > 0;)
        total += got = cache->Read(out.data(), 300);
    EXPECT_EQ(total, 4000);
    EXPECT_GT(inner->reads, 4000 / 300);
    EXPECT_EQ(inner->seeks - seeksBefore, 1);
}

TEST(BufferedStream, WriteBeyondTheEndLeavesAZeroGap)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    const unsigned char head[5] = {1, 2, 3, 4, 5};
    inner->CMemoryStream::Write(head, 5);
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 8, 8));
    unsigned char out[40] = {};
    ASSERT_EQ(cache->Read(out, 2), 2);
    ASSERT_EQ(cache->Seek(30, CStream::Begin), 0);
    ASSERT_EQ(cache->Write(head, 5), 5);
    EXPECT_EQ(cache->GetLength(), 35);
    ASSERT_EQ(cache->Seek(0, CStream::Begin), 0);
    // Small reads come from the cache, before anything is written back.
    int32_t got = 0;
    for (int result; (result = cache->Read(out + got, 4)) > 0;)
        got += result;
    EXPECT_EQ(got, 35);
    EXPECT_TRUE(inner->events.empty());
    EXPECT_EQ(out[4], 5);
    EXPECT_EQ(out[5], 0);
    EXPECT_EQ(out[29], 0);
    EXPECT_EQ(out[34], 5);
    // One large read sees the same bytes, the dirty ones from the cache.
    unsigned char again[40] = {};
    ASSERT_EQ(cache->Seek(0, CStream::Begin), 0);
    ASSERT_EQ(cache->Read(again, 40), 35);
    EXPECT_TRUE(inner->events.empty());
    EXPECT_EQ(std::memcmp(out, again, 40), 0);
}

TEST(BufferedStream, RefusalsAndLengthRules)
{
    RObject<CRecordingStream> inner(new CRecordingStream());
    const unsigned char bytes[4] = {1, 2, 3, 4};
    inner->Write(bytes, 4);
    RObject<CBufferedStream> cache(new CBufferedStream(inner, 16, 2));
    EXPECT_TRUE(cache->IsType(CBufferedStream::Type));
    EXPECT_EQ(cache->GetLength(), 4);
    unsigned char out[4];
    EXPECT_EQ(cache->Seek(-1, CStream::Begin), RESULT_ARGUMENT_OUT_OF_RANGE);
    ASSERT_EQ(cache->Seek(10, CStream::Begin), 0);
    EXPECT_EQ(cache->Read(out, 4), 0);
    EXPECT_EQ(cache->GetLength(), 4);
    EXPECT_EQ(cache->Read(out, 0), 0);
    EXPECT_EQ(cache->GetLength(), 10) << "a count of 0 raises the length to the position";
    inner->readable = false;
    EXPECT_EQ(cache->Read(out, 1), RESULT_BAD_ORDER_ERROR);

    RObject<CBufferedStream> orphan(new CBufferedStream(nullptr, 16, 2));
    EXPECT_EQ(orphan->GetLength(), 0);
    EXPECT_EQ(orphan->Read(out, 1), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(orphan->Write(bytes, 1), RESULT_BAD_ORDER_ERROR);
    EXPECT_EQ(orphan->Flush(), RESULT_BAD_ORDER_ERROR);
}

TEST(BufferedStream, PublicCreateSharesTheInnerStream)
{
    Stream inner(new CMemoryStream());
    {
        BufferedStream cache = BufferedStream::Create(inner, 64, 16);
        ASSERT_FALSE(cache.IsNull());
        EXPECT_EQ(cache.ToBufferedStream()->GetBlockCount(), 16);
        EXPECT_EQ(inner.ToObject()->GetReferenceCount(), 2);
        const unsigned char byte = 3;
        EXPECT_EQ(cache.Write(&byte, 1), 1);
    }
    EXPECT_EQ(inner.ToObject()->GetReferenceCount(), 1);
    EXPECT_EQ(inner.GetLength(), 1) << "dirty blocks are written back when the cache goes away";
}

// Positions are 64-bit and any of them may be sought; reads and writes near
// the largest one must fail cleanly instead of overflowing the arithmetic.
TEST(BufferedStream, PositionsNearTheLargestOffset)
{
    struct Case {
        int64_t position;
        int32_t count;
        bool write;
        int result;
    };
    const int64_t top = INT64_MAX;
    const Case cases[] = {
        {top - 5, 64, false, RESULT_ARGUMENT_OUT_OF_RANGE}, // the inner memory stream refuses
        {top, 64, false, 0},
        {top - 1, 4096, false, RESULT_ARGUMENT_OUT_OF_RANGE},
        {top - 5, 64, true, RESULT_ARGUMENT_OUT_OF_RANGE},
        {top - 15, 16, true, RESULT_ARGUMENT_OUT_OF_RANGE},
        {top, 1, true, RESULT_ARGUMENT_OUT_OF_RANGE},
    };
    for (const Case& c : cases) {
        RObject<CMemoryStream> inner(new CMemoryStream());
        RObject<CBufferedStream> cache(new CBufferedStream(inner, 16, 2));
        ASSERT_EQ(cache->Seek(c.position, CStream::Begin), 0);
        std::vector<unsigned char> bytes(size_t(c.count), 7);
        const int result =
            c.write ? cache->Write(bytes.data(), c.count) : cache->Read(bytes.data(), c.count);
        EXPECT_EQ(result, c.result) << c.position << (c.write ? " write " : " read ") << c.count;
        EXPECT_EQ(cache->GetPosition(), c.position);
        EXPECT_EQ(cache->GetLength(), 0);
    }
}

// A file stream told to wait for growth waits once at the end of the file
// and then answers short; the cache must take that as the end rather than
// ask again and wait a second time.
TEST(BufferedStream, WaitsOnceAtTheEndOfAFileStream)
{
    VekTest::TempDir dir;
    const std::string path = dir.File("still");
    ASSERT_TRUE(VekTest::WriteFile(path, "0123456789"));
    RObject<CFileDescriptorStream> file(new CFileDescriptorStream(FileStream::FileMode::Read));
    ASSERT_EQ(file->Open(path.c_str()), 0);
    ASSERT_EQ(file->SetReadWaitTime(400), 0);
    struct Case {
        int32_t blockSize;
        int32_t count;
    };
    const Case cases[] = {{64, 20}, {4, 20}, {64, 200}};
    for (const Case& c : cases) {
        RObject<CBufferedStream> cache(new CBufferedStream(file, c.blockSize, 4));
        std::vector<unsigned char> out(size_t(c.count));
        // The file stream logs each wait: a count, unlike a clock on a busy
        // machine, tells one wait from two.
        VekTest::LogCapture log(3);
        const auto started = std::chrono::steady_clock::now();
        EXPECT_EQ(cache->Read(out.data(), c.count), 10) << c.blockSize << " " << c.count;
        const auto waited = std::chrono::steady_clock::now() - started;
        EXPECT_GE(waited, std::chrono::milliseconds(400)) << c.blockSize << " " << c.count;
        EXPECT_EQ(log.Count("CFileDescriptorStream::Read: waiting for "), 1u) << c.blockSize << " " << c.count;
        EXPECT_EQ(std::memcmp(out.data(), "0123456789", 10), 0);
    }
}

// An inner stream may hand out fewer bytes than asked in the middle of its
// data (a host's pipe, say): the cache keeps asking while the stream holds
// more or cannot tell, and stops only at the real end.
TEST(BufferedStream, ShortPiecesInTheMiddleAreNotTheEnd)
{
    struct Case {
        bool lengthKnown;
        int32_t count;
    };
    const Case cases[] = {{true, 10}, {false, 10}, {true, 40}, {false, 40}, {true, 100}, {false, 100}};
    for (const Case& c : cases) {
        RObject<CRecordingStream> inner(new CRecordingStream());
        std::vector<unsigned char> bytes(50);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = uint8_t(i + 1);
        inner->Write(bytes.data(), 50);
        inner->piece = 3;
        inner->lengthKnown = c.lengthKnown;
        RObject<CBufferedStream> cache(new CBufferedStream(inner, 16, 2));
        ASSERT_EQ(cache->Seek(5, CStream::Begin), 0);
        std::vector<unsigned char> out(size_t(c.count));
        const int32_t expected = std::min(c.count, 45);
        EXPECT_EQ(cache->Read(out.data(), c.count), expected) << c.lengthKnown << " " << c.count;
        EXPECT_EQ(std::memcmp(out.data(), bytes.data() + 5, size_t(expected)), 0);
    }
}
