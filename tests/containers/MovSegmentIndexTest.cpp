// Segment indexes and fragment random access tables: both versions of each
// box, and counts that claim more entries than the box holds.
#include <gtest/gtest.h>

#include "MovTableBoxes.h"

#include <vek/containers/readers/mov/MovSegmentIndex.h>
#include <vek/core/Result.h>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

TEST(MovSegmentIndex, ReadsBothVersions)
{
    for (uint8_t version : {0, 1}) {
        SCOPED_TRACE(int(version));
        const int wide = version ? 8 : 4;
        ByteWriter w(true);
        w.U32(1).U32(90000).Int(version ? (uint64_t(1) << 33) : 1234, wide).Int(100, wide).U16(0).U16(2);
        w.U32(0x80000000u | 5000).U32(3000).U32(0x90000000u | 17);
        w.U32(7000).U32(3003).U32(0x20000000u);
        HeldBox sidx(FullBox("sidx", version, 0, w.Get()), 400);
        MovSegmentIndex index;
        ASSERT_EQ(ReadSegmentIndex(sidx.box, index), 0);
        EXPECT_EQ(index.referenceId, 1u);
        EXPECT_EQ(index.timescale, 90000u);
        EXPECT_EQ(index.earliestPresentationTime, version ? int64_t(1) << 33 : 1234);
        EXPECT_EQ(index.firstOffset, 400 + int64_t(sidx.bytes.size()) + 100);
        ASSERT_EQ(index.references.Count(), 2);
        const MovSegmentReference& a = index.references[0];
        EXPECT_TRUE(a.referencesIndex);
        EXPECT_EQ(a.size, 5000u);
        EXPECT_EQ(a.duration, 3000u);
        EXPECT_TRUE(a.startsWithSap);
        EXPECT_EQ(a.sapType, 1);
        EXPECT_EQ(a.sapDeltaTime, 17u);
        const MovSegmentReference& b = index.references[1];
        EXPECT_FALSE(b.referencesIndex);
        EXPECT_FALSE(b.startsWithSap);
        EXPECT_EQ(b.sapType, 2);
    }
}

TEST(MovSegmentIndex, ReadsRandomAccessEntriesOfEveryFieldLength)
{
    for (uint8_t version : {0, 1}) {
        for (uint32_t lengths : {0x00u, 0x15u, 0x3Fu, 0x24u}) {
            SCOPED_TRACE(testing::Message() << "version " << int(version) << " lengths " << lengths);
            const int traf = (lengths >> 4 & 3) + 1, trun = (lengths >> 2 & 3) + 1, sample = (lengths & 3) + 1;
            const int wide = version ? 8 : 4;
            ByteWriter w(true);
            w.U32(7).U32(lengths).U32(3);
            for (uint32_t i = 0; i < 3; ++i)
                w.Int(1000 * i + 1, wide).Int(50000 + i, wide).Int(i + 1, traf).Int(i + 2, trun).Int(200 + i, sample);
            HeldBox tfra(FullBox("tfra", version, 0, w.Get()));
            MovTrackRandomAccess access;
            ASSERT_EQ(ReadTrackFragmentRandomAccess(tfra.box, access), 0);
            EXPECT_EQ(access.trackId, 7u);
            ASSERT_EQ(access.entries.Count(), 3);
            for (int32_t i = 0; i < 3; ++i) {
                const MovRandomAccessEntry& e = access.entries[i];
                EXPECT_EQ(e.time, 1000 * i + 1);
                EXPECT_EQ(e.moofOffset, 50000 + i);
                EXPECT_EQ(e.trafNumber, uint32_t(i + 1));
                EXPECT_EQ(e.trunNumber, uint32_t(i + 2));
                // A one-byte field keeps only the low byte.
                EXPECT_EQ(e.sampleNumber, sample == 1 ? uint32_t(200 + i) & 0xFF : uint32_t(200 + i));
            }
        }
    }
}

TEST(MovSegmentIndex, CountsPastTheBoxAreRefused)
{
    ByteWriter sidx(true), tfra(true), mfro(true);
    sidx.U32(1).U32(1000).U32(0).U32(0).U16(0).U16(3).U32(1).U32(1).U32(1);
    tfra.U32(1).U32(0).U32(2).U32(0).U32(0).Zeros(2); // one entry and a half
    mfro.U32(8);
    MovSegmentIndex index;
    EXPECT_EQ(ReadSegmentIndex(HeldBox(FullBox("sidx", 0, 0, sidx.Get())).box, index), RESULT_FORMAT_ERROR);
    EXPECT_EQ(index.references.Count(), 0);
    MovTrackRandomAccess access;
    EXPECT_EQ(ReadTrackFragmentRandomAccess(HeldBox(FullBox("tfra", 0, 0, tfra.Get())).box, access), RESULT_FORMAT_ERROR);
    uint32_t size = 0;
    EXPECT_EQ(ReadMovieFragmentRandomAccessOffset(HeldBox(FullBox("mfro", 0, 0, mfro.Get())).box, size),
        RESULT_FORMAT_ERROR);
    ByteWriter good(true);
    good.U32(64);
    EXPECT_EQ(ReadMovieFragmentRandomAccessOffset(HeldBox(FullBox("mfro", 0, 0, good.Get())).box, size), 0);
    EXPECT_EQ(size, 64u);
}

} // namespace
