// Sample tables: each case is written as boxes and as a plain list of
// samples expanded by the test, and the cursor must give the same list,
// from the start and after a seek to any sample.
#include <gtest/gtest.h>

#include "MovTableBoxes.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <vek/containers/readers/mov/MovSampleTable.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <vector>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

struct TableRun {
    uint32_t count;
    uint32_t value;
};
struct ChunkRun {
    uint32_t firstChunk, samplesPerChunk, descriptionIndex;
};

// A table as its boxes store it.
struct Table {
    std::vector<TableRun> stts;
    std::vector<TableRun> ctts; // values are int32 offsets
    uint8_t cttsVersion = 0;
    std::vector<uint32_t> sizes; // one per sample, or
    uint32_t constantSize = 0; // with sizeCount
    uint32_t sizeCount = 0;
    int stz2FieldSize = 0; // 0: 'stsz'
    std::vector<ChunkRun> stsc;
    std::vector<uint64_t> chunkOffsets;
    bool co64 = false;
    std::vector<uint32_t> stss;
    bool hasStss = false;
    Bytes sdtp;
    bool hasSdtp = false;
};

Bytes Entries(const std::vector<TableRun>& runs)
{
    ByteWriter w(true);
    w.U32(uint32_t(runs.size()));
    for (const TableRun& run : runs)
        w.U32(run.count).U32(run.value);
    return w.Get();
}

Bytes SizeBox(const Table& t)
{
    ByteWriter w(true);
    if (t.stz2FieldSize) {
        w.U32(uint32_t(t.stz2FieldSize)).U32(uint32_t(t.sizes.size()));
        for (size_t i = 0; i < t.sizes.size(); ++i) {
            if (t.stz2FieldSize == 4 && i % 2 == 0)
                w.Int((t.sizes[i] << 4) | (i + 1 < t.sizes.size() ? t.sizes[i + 1] : 0), 1);
            else if (t.stz2FieldSize != 4)
                w.Int(t.sizes[i], t.stz2FieldSize / 8);
        }
        return FullBox("stz2", 0, 0, w.Get());
    }
    if (t.sizes.empty())
        return FullBox("stsz", 0, 0, w.U32(t.constantSize).U32(t.sizeCount).Get());
    w.U32(0).U32(uint32_t(t.sizes.size()));
    for (uint32_t size : t.sizes)
        w.U32(size);
    return FullBox("stsz", 0, 0, w.Get());
}

Bytes Stbl(const Table& t)
{
    ByteWriter stsc(true), offsets(true), stss(true);
    stsc.U32(uint32_t(t.stsc.size()));
    for (const ChunkRun& run : t.stsc)
        stsc.U32(run.firstChunk).U32(run.samplesPerChunk).U32(run.descriptionIndex);
    offsets.U32(uint32_t(t.chunkOffsets.size()));
    for (uint64_t offset : t.chunkOffsets)
        offsets.Int(offset, t.co64 ? 8 : 4);
    stss.U32(uint32_t(t.stss.size()));
    for (uint32_t number : t.stss)
        stss.U32(number);
    Bytes children = Join({FullBox("stsd", 0, 0, {0, 0, 0, 0}), FullBox("stts", 0, 0, Entries(t.stts)),
        t.ctts.empty() ? Bytes() : FullBox("ctts", t.cttsVersion, 0, Entries(t.ctts)),
        t.hasStss ? FullBox("stss", 0, 0, stss.Get()) : Bytes(), t.hasSdtp ? FullBox("sdtp", 0, 0, t.sdtp) : Bytes(),
        FullBox("stsc", 0, 0, stsc.Get()), SizeBox(t), FullBox(t.co64 ? "co64" : "stco", 0, 0, offsets.Get())});
    return Box("stbl", children);
}

// The samples of a consistent table, expanded one by one the obvious way.
std::vector<MovSample> Expand(const Table& t)
{
    std::vector<MovSample> samples;
    const uint32_t count = t.sizes.empty() ? t.sizeCount : uint32_t(t.sizes.size());
    for (size_t chunk = 0; chunk < t.chunkOffsets.size(); ++chunk) {
        const ChunkRun* run = nullptr;
        for (const ChunkRun& r : t.stsc)
            if (r.firstChunk <= chunk + 1)
                run = &r;
        int64_t position = int64_t(t.chunkOffsets[chunk]);
        for (uint32_t i = 0; i < run->samplesPerChunk && samples.size() < count; ++i) {
            MovSample s;
            s.position = position;
            s.size = t.sizes.empty() ? t.constantSize : t.sizes[samples.size()];
            s.descriptionIndex = run->descriptionIndex;
            position += s.size;
            samples.push_back(s);
        }
    }
    size_t index = 0;
    int64_t time = 0;
    for (const TableRun& run : t.stts)
        for (uint32_t i = 0; i < run.count && index < samples.size(); ++i, ++index) {
            samples[index].decodeTime = time;
            samples[index].duration = run.value;
            time += run.value;
        }
    index = 0;
    for (const TableRun& run : t.ctts)
        for (uint32_t i = 0; i < run.count && index < samples.size(); ++i)
            samples[index++].compositionOffset = int32_t(run.value);
    for (size_t i = 0; i < samples.size(); ++i) {
        bool sync = !t.hasStss || t.stss.empty();
        for (uint32_t number : t.stss)
            sync = sync || number == i + 1;
        samples[i].sync = sync;
        samples[i].dependency = i < t.sdtp.size() && t.hasSdtp ? t.sdtp[i] : 0;
    }
    return samples;
}

std::string Describe(const MovSample& s)
{
    char text[200];
    std::snprintf(text, sizeof(text), "pos %lld size %u dts %lld dur %u cto %d desc %u sync %d dep %u",
        (long long)s.position, s.size, (long long)s.decodeTime, s.duration, s.compositionOffset, s.descriptionIndex,
        int(s.sync), unsigned(s.dependency));
    return text;
}

std::vector<std::string> Walk(MovSampleTable::Cursor& cursor, size_t limit = SIZE_MAX)
{
    std::vector<std::string> walked;
    MovSample sample;
    while (walked.size() < limit && cursor.Next(sample) == 0)
        walked.push_back(Describe(sample));
    return walked;
}

std::vector<std::string> Describe(const std::vector<MovSample>& samples)
{
    std::vector<std::string> described;
    for (const MovSample& s : samples)
        described.push_back(Describe(s));
    return described;
}

std::vector<uint32_t> Sizes(uint32_t count, uint32_t seed)
{
    std::vector<uint32_t> sizes;
    for (uint32_t i = 0; i < count; ++i)
        sizes.push_back(1 + (i * 7 + seed) % 13);
    return sizes;
}

// Chunks of 'stsc' runs, with gaps between chunks.
std::vector<uint64_t> Offsets(size_t count, uint64_t start)
{
    std::vector<uint64_t> offsets;
    for (size_t i = 0; i < count; ++i)
        offsets.push_back(start + i * 1000);
    return offsets;
}

struct ValidCase {
    const char* name;
    Table table;
};

std::vector<ValidCase> ValidCases()
{
    std::vector<ValidCase> cases;
    Table base;
    base.stts = {{5, 1001}, {3, 2002}, {12, 1001}};
    base.sizes = Sizes(20, 1);
    base.stsc = {{1, 3, 1}, {3, 2, 2}, {6, 4, 1}, {8, 1, 3}};
    base.chunkOffsets = Offsets(9, 48); // 3+3+2+2+2+4+4+1+1 = 22 >= 20
    cases.push_back({"chunk and description runs", base});

    Table ctts = base;
    ctts.ctts = {{1, 2002}, {2, uint32_t(-1001)}, {4, 0}, {13, 3003}};
    cases.push_back({"negative offsets in version 0", ctts});
    ctts.cttsVersion = 1;
    ctts.ctts = {{3, uint32_t(-2002)}, {17, 1001}};
    cases.push_back({"signed offsets in version 1", ctts});

    for (int field : {4, 8, 16}) {
        Table compact = base;
        compact.stz2FieldSize = field;
        compact.sizes = Sizes(19, 5); // odd count: half a byte of padding at 4 bits
        compact.stts = {{19, 512}};
        cases.push_back({field == 4 ? "stz2 4-bit" : field == 8 ? "stz2 8-bit" : "stz2 16-bit", compact});
    }

    Table wide = base;
    wide.co64 = true;
    wide.chunkOffsets = Offsets(9, (uint64_t(1) << 33) + 5);
    cases.push_back({"co64 past 4 GiB", wide});

    Table sync = base;
    sync.hasStss = true;
    sync.stss = {1, 5, 6, 7, 12, 20};
    cases.push_back({"sync table", sync});
    Table emptySync = base;
    emptySync.hasStss = true;
    cases.push_back({"empty sync table", emptySync});

    Table dependencies = base;
    dependencies.hasSdtp = true;
    for (int i = 0; i < 20; ++i)
        dependencies.sdtp.push_back(uint8_t(i % 3 == 0 ? 0x20 : 0x10 | i));
    cases.push_back({"sample dependencies", dependencies});

    Table pcm;
    pcm.stts = {{4410, 1}};
    pcm.constantSize = 4;
    pcm.sizeCount = 4410;
    pcm.stsc = {{1, 1024, 1}, {5, 314, 1}};
    pcm.chunkOffsets = Offsets(5, 40);
    cases.push_back({"constant size", pcm});
    return cases;
}

TEST(MovSampleTable, CursorGivesTheExpandedSamples)
{
    for (const ValidCase& c : ValidCases()) {
        SCOPED_TRACE(c.name);
        MovSampleTable table;
        ASSERT_EQ(table.Read(HeldBox(Stbl(c.table)).box, INT64_MAX), 0);
        const std::vector<std::string> expected = Describe(Expand(c.table));
        EXPECT_EQ(table.GetSampleCount(), expected.size());
        MovSampleTable::Cursor cursor(table);
        EXPECT_EQ(Walk(cursor), expected);
        MovSample after;
        EXPECT_EQ(cursor.Next(after), 1);
        EXPECT_EQ(cursor.Index(), expected.size());
        int64_t duration = 0;
        for (const MovSample& s : Expand(c.table))
            duration += s.duration;
        EXPECT_EQ(table.GetDuration(), duration);
        EXPECT_EQ(table.HasSyncTable(), c.table.hasStss && !c.table.stss.empty());
    }
}

TEST(MovSampleTable, SeekThenNextMatchesTheWalk)
{
    for (const ValidCase& c : ValidCases()) {
        SCOPED_TRACE(c.name);
        MovSampleTable table;
        HeldBox held(Stbl(c.table));
        ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
        const std::vector<std::string> expected = Describe(Expand(c.table));
        MovSampleTable::Cursor cursor(table);
        // Backwards, so every seek moves against the walk's direction.
        for (size_t i = expected.size(); i-- > 0;) {
            ASSERT_EQ(cursor.Seek(uint32_t(i)), 0);
            EXPECT_EQ(cursor.Index(), i);
            const std::vector<std::string> next = Walk(cursor, 2);
            ASSERT_FALSE(next.empty());
            EXPECT_EQ(next[0], expected[i]) << "sample " << i;
            if (i + 1 < expected.size()) {
                EXPECT_EQ(next[1], expected[i + 1]) << "sample " << i + 1;
            }
        }
        EXPECT_EQ(cursor.Seek(uint32_t(expected.size())), 0);
        MovSample sample;
        EXPECT_EQ(cursor.Next(sample), 1);
        EXPECT_EQ(cursor.Seek(uint32_t(expected.size() + 1)), RESULT_ARGUMENT_OUT_OF_RANGE);
    }
}

TEST(MovSampleTable, ChunksAndConstantSize)
{
    const Table pcm = ValidCases().back().table;
    MovSampleTable table;
    HeldBox held(Stbl(pcm));
    ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
    EXPECT_EQ(table.GetConstantSampleSize(), 4u);
    ASSERT_EQ(table.GetChunkCount(), 5u);
    const uint32_t expectedCounts[] = {1024, 1024, 1024, 1024, 314};
    uint32_t first = 0;
    for (uint32_t i = 0; i < 5; ++i) {
        MovChunk chunk{};
        ASSERT_EQ(table.GetChunk(i, chunk), 0);
        EXPECT_EQ(chunk.position, int64_t(pcm.chunkOffsets[i]));
        EXPECT_EQ(chunk.firstSample, first);
        EXPECT_EQ(chunk.sampleCount, expectedCounts[i]);
        first += chunk.sampleCount;
    }
    MovChunk chunk{};
    EXPECT_EQ(table.GetChunk(5, chunk), RESULT_ARGUMENT_OUT_OF_RANGE);

    // Sizes written one by one but all equal are still one constant.
    Table explicitSizes = pcm;
    explicitSizes.sizes.assign(4410, 4);
    MovSampleTable explicitTable;
    HeldBox explicitHeld(Stbl(explicitSizes));
    ASSERT_EQ(explicitTable.Read(explicitHeld.box, INT64_MAX), 0);
    EXPECT_EQ(explicitTable.GetConstantSampleSize(), 4u);
    EXPECT_EQ(ValidCases().front().table.sizes.size(), 20u);
    MovSampleTable varying;
    HeldBox varyingHeld(Stbl(ValidCases().front().table));
    ASSERT_EQ(varying.Read(varyingHeld.box, INT64_MAX), 0);
    EXPECT_EQ(varying.GetConstantSampleSize(), 0u);
}

TEST(MovSampleTable, MillionsOfConstantSamplesStayCompact)
{
    // 170 million one-frame samples in 1000 chunks: read and seek without
    // expanding them.
    Table pcm;
    const uint32_t perChunk = 170000;
    pcm.stts = {{perChunk * 1000, 1}};
    pcm.constantSize = 6;
    pcm.sizeCount = perChunk * 1000;
    pcm.stsc = {{1, perChunk, 1}};
    pcm.chunkOffsets = Offsets(1000, 4096);
    for (uint64_t& offset : pcm.chunkOffsets)
        offset = 4096 + (offset - 4096) / 1000 * perChunk * 6;
    MovSampleTable table;
    HeldBox held(Stbl(pcm));
    ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
    EXPECT_EQ(table.GetSampleCount(), perChunk * 1000);
    EXPECT_EQ(table.GetDuration(), int64_t(perChunk) * 1000);
    MovSampleTable::Cursor cursor(table);
    const uint32_t last = perChunk * 1000 - 1;
    ASSERT_EQ(cursor.Seek(last - 1), 0);
    MovSample sample;
    ASSERT_EQ(cursor.Next(sample), 0);
    ASSERT_EQ(cursor.Next(sample), 0);
    EXPECT_EQ(sample.position, 4096 + int64_t(last) * 6);
    EXPECT_EQ(sample.decodeTime, int64_t(last));
    EXPECT_EQ(cursor.Next(sample), 1);
}

TEST(MovSampleTable, CountsThatDisagreeKeepTheSmallest)
{
    struct Case {
        const char* name;
        uint32_t timed, sized, chunked;
    };
    const Case cases[] = {{"stts short", 10, 20, 20}, {"stsz short", 20, 12, 20}, {"chunks short", 20, 20, 9}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Table t = ValidCases().front().table;
        t.stts = {{c.timed, 100}};
        t.sizes = Sizes(c.sized, 2);
        t.stsc = {{1, 1, 1}};
        t.chunkOffsets = Offsets(c.chunked, 8);
        LogCapture log(LogLevel::Warning);
        MovSampleTable table;
        HeldBox held(Stbl(t));
        ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
        const uint32_t kept = std::min({c.timed, c.sized, c.chunked});
        EXPECT_EQ(table.GetSampleCount(), kept);
        EXPECT_EQ(table.GetDuration(), int64_t(kept) * 100);
        EXPECT_EQ(log.Count("sample counts disagree"), 1u) << log.Text();
        MovSampleTable::Cursor cursor(table);
        EXPECT_EQ(Walk(cursor).size(), kept);
    }
}

TEST(MovSampleTable, ShortCompositionTableLeavesZeroOffsets)
{
    Table t = ValidCases().front().table;
    t.ctts = {{4, 500}};
    MovSampleTable table;
    HeldBox held(Stbl(t));
    ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
    MovSampleTable::Cursor cursor(table);
    MovSample sample;
    for (uint32_t i = 0; cursor.Next(sample) == 0; ++i)
        EXPECT_EQ(sample.compositionOffset, i < 4 ? 500 : 0) << i;
}

TEST(MovSampleTable, CutFileKeepsTheSamplesBeforeTheCut)
{
    struct Case {
        const char* name;
        bool constant;
        int64_t fileSize;
    };
    for (const Case& c : {Case{"varying sizes", false, 3050}, Case{"constant size", true, 2045},
             Case{"cut before the first chunk", true, 10}, Case{"whole file", false, 1 << 20}}) {
        SCOPED_TRACE(c.name);
        Table t = c.constant ? ValidCases().back().table : ValidCases().front().table;
        std::vector<MovSample> expected = Expand(t);
        size_t inside = 0;
        while (inside < expected.size() && expected[inside].position + expected[inside].size <= c.fileSize)
            ++inside;
        LogCapture log(LogLevel::Warning);
        MovSampleTable table;
        HeldBox held(Stbl(t));
        ASSERT_EQ(table.Read(held.box, c.fileSize), 0);
        EXPECT_EQ(table.GetSampleCount(), inside);
        EXPECT_EQ(log.Count("past the end of the file"), inside < expected.size() ? 1u : 0u);
        expected.resize(inside);
        MovSampleTable::Cursor cursor(table);
        EXPECT_EQ(Walk(cursor), Describe(expected));
    }
}

TEST(MovSampleTable, CompositionShift)
{
    struct Case {
        const char* name;
        std::vector<TableRun> ctts;
        Bytes cslg;
        int64_t shift;
    };
    ByteWriter v0(true), v1(true), negative(true);
    v0.U32(700).U32(0).U32(0).U32(0).U32(0);
    v1.U64(1234).U64(0).U64(0).U64(0).U64(0);
    negative.U32(uint32_t(-5)).U32(0).U32(0).U32(0).U32(0);
    const Case cases[] = {
        {"no offsets", {}, {}, 0},
        {"positive offsets", {{20, 300}}, {}, 0},
        {"negative offsets", {{2, uint32_t(-900)}, {3, uint32_t(-40)}, {15, 10}}, {}, 900},
        {"negative offsets past the samples", {{20, 10}, {5, uint32_t(-900)}}, {}, 0},
        {"cslg version 0", {{2, uint32_t(-900)}, {18, 0}}, FullBox("cslg", 0, 0, v0.Get()), 700},
        {"cslg version 1", {{20, 0}}, FullBox("cslg", 1, 0, v1.Get()), 1234},
        {"cslg negative", {{20, 0}}, FullBox("cslg", 0, 0, negative.Get()), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Table t = ValidCases().front().table;
        t.ctts = c.ctts;
        Bytes stbl = Stbl(t);
        if (!c.cslg.empty())
            stbl = Box("stbl", Join({Bytes(stbl.begin() + 8, stbl.end()), c.cslg}));
        MovSampleTable table;
        HeldBox held(stbl);
        ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
        EXPECT_EQ(table.GetCompositionToDecodeShift(), c.shift);
    }
}

// Replaces the payload of the first child `type` of a valid table.
Bytes WithChild(const Table& t, const std::string& type, const Bytes& box)
{
    const Bytes stbl = Stbl(t);
    Bytes children;
    size_t at = 8;
    while (at < stbl.size()) {
        const size_t size = size_t(stbl[at]) << 24 | size_t(stbl[at + 1]) << 16 | size_t(stbl[at + 2]) << 8 | stbl[at + 3];
        const std::string childType(stbl.begin() + at + 4, stbl.begin() + at + 8);
        const Bytes child(stbl.begin() + at, stbl.begin() + at + size);
        if (childType == type || (type == "stsz" && childType == "stz2") || (type == "stco" && childType == "co64"))
            children = Join({children, box});
        else
            children = Join({children, child});
        at += size;
    }
    return Box("stbl", children);
}

TEST(MovSampleTable, HostileTablesAreRefused)
{
    const Table t = ValidCases().front().table;
    ByteWriter longStts(true), longStsz(true), badField(true), zeroField(true), zeroFirst(true), decreasing(true),
        zeroDescription(true), zeroPerChunk(true), hugeOffset(true), overflowing(true);
    longStts.U32(3).U32(20).U32(1);
    longStsz.U32(0).U32(20).U32(5).U32(5);
    badField.U32(12).U32(20).Zeros(30);
    zeroField.U32(0).U32(20).Zeros(30);
    zeroFirst.U32(1).U32(0).U32(20).U32(1);
    decreasing.U32(3).U32(1).U32(2).U32(1).U32(4).U32(2).U32(1).U32(3).U32(2).U32(1);
    zeroDescription.U32(1).U32(1).U32(20).U32(0);
    zeroPerChunk.U32(2).U32(1).U32(3).U32(1).U32(2).U32(0).U32(1);
    hugeOffset.U32(9).U64(uint64_t(1) << 63);
    for (int i = 0; i < 8; ++i)
        hugeOffset.U64(0);
    overflowing.U32(9).U64(uint64_t(INT64_MAX) - 5);
    for (int i = 0; i < 8; ++i)
        overflowing.U64(0);
    struct Case {
        const char* name;
        Bytes stbl;
        const char* logged;
    };
    const Case cases[] = {
        {"stts count past the box", WithChild(t, "stts", FullBox("stts", 0, 0, longStts.Get())), "'stts' entry_count 3"},
        {"stsz count past the box", WithChild(t, "stsz", FullBox("stsz", 0, 0, longStsz.Get())), "'stsz' sample_count 20"},
        {"stz2 field size 12", WithChild(t, "stsz", FullBox("stz2", 0, 0, badField.Get())), "field_size 12"},
        {"stz2 field size 0", WithChild(t, "stsz", FullBox("stz2", 0, 0, zeroField.Get())), "field_size 0"},
        {"stsc first chunk 0", WithChild(t, "stsc", FullBox("stsc", 0, 0, zeroFirst.Get())), "first_chunk 0"},
        {"stsc decreasing", WithChild(t, "stsc", FullBox("stsc", 0, 0, decreasing.Get())), "first_chunk 3 of entry 3 does not follow 4"},
        {"stsc description 0", WithChild(t, "stsc", FullBox("stsc", 0, 0, zeroDescription.Get())),
            "sample_description_index 0"},
        {"stsc zero samples per chunk", WithChild(t, "stsc", FullBox("stsc", 0, 0, zeroPerChunk.Get())),
            "samples_per_chunk 0"},
        {"co64 offset past int64", WithChild(t, "stco", FullBox("co64", 0, 0, hugeOffset.Get())), "chunk_offset"},
        {"offset plus sizes overflow", WithChild(t, "stco", FullBox("co64", 0, 0, overflowing.Get())),
            "overflows 64-bit offsets"},
        {"stsc count past the box", WithChild(t, "stsc", FullBox("stsc", 0, 0, ByteWriter(true).U32(2).U32(1).Get())),
            "'stsc' entry_count 2"},
        {"stco truncated header", WithChild(t, "stco", FullBox("stco", 0, 0, {0, 0})), "too short"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(LogLevel::Error);
        MovSampleTable table;
        HeldBox held(c.stbl);
        EXPECT_EQ(table.Read(held.box, INT64_MAX), RESULT_FORMAT_ERROR);
        EXPECT_NE(log.Text().find(c.logged), std::string::npos) << log.Text();
    }
}

TEST(MovSampleTable, DurationOverflowIsRefusedWithoutExpanding)
{
    // Four billion samples of four billion units each: the total needs 64
    // bits unsigned. Nothing per sample is ever built, so this is fast.
    Table t;
    t.stts = {{UINT32_MAX, UINT32_MAX}};
    t.constantSize = 1;
    t.sizeCount = UINT32_MAX;
    t.stsc = {{1, UINT32_MAX, 1}};
    t.chunkOffsets = {8};
    LogCapture log(LogLevel::Error);
    MovSampleTable table;
    HeldBox held(Stbl(t));
    EXPECT_EQ(table.Read(held.box, INT64_MAX), RESULT_FORMAT_ERROR);
    EXPECT_EQ(log.Count("total duration overflows"), 1u) << log.Text();
    t.stts = {{UINT32_MAX, 1}};
    MovSampleTable fits;
    HeldBox fitsHeld(Stbl(t));
    EXPECT_EQ(fits.Read(fitsHeld.box, INT64_MAX), 0);
    EXPECT_EQ(fits.GetSampleCount(), UINT32_MAX);
}

TEST(MovSampleTable, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    Table t = ValidCases()[1].table; // negative offsets
    t.hasStss = true;
    t.stss = {1, 4, 9};
    t.hasSdtp = true;
    t.sdtp.assign(20, 0x24);
    const Bytes stbl = Stbl(t);
    const std::vector<std::string> expected = Describe(Expand(t));
    WalkAllocationFailures("MovSampleTable::Read", [&] {
        MovSampleTable table;
        HeldBox held(stbl);
        const int result = table.Read(held.box, INT64_MAX);
        if (result < 0)
            return result == RESULT_OUT_OF_MEMORY;
        MovSampleTable::Cursor cursor(table);
        return Walk(cursor) == expected;
    });
#endif
}

} // namespace
