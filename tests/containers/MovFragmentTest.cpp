// Movie fragments: every combination of the optional fields of 'tfhd' and
// 'trun' is written, read into a table and compared with the samples the
// test expands by hand from the same fields.
#include <gtest/gtest.h>

#include "MovTableBoxes.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <vek/containers/readers/mov/MovFragment.h>
#include <vek/containers/readers/mov/MovSampleTable.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

#include <climits>
#include <vector>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

constexpr int64_t MoofOffset = 1000;
constexpr MovTrackDefaults TrexDefaults{2, 10, 7, 0x10000};

struct HeaderFields {
    uint32_t flags = 0;
    uint32_t trackId = 1;
    uint64_t base = 50000;
    uint32_t descriptionIndex = 3, duration = 20, size = 9, sampleFlags = 0x02000000;
};

struct RunFields {
    uint32_t flags = 0;
    uint8_t version = 0;
    uint32_t count = 3;
    int32_t dataOffset = 300;
    uint32_t firstFlags = 0x01000000;
    uint32_t seed = 0; // varies the per-sample fields
};

uint32_t RecordDuration(const RunFields& r, uint32_t i) { return 30 + i + r.seed; }
uint32_t RecordSize(const RunFields& r, uint32_t i) { return 11 + (i + r.seed) % 5; }
uint32_t RecordFlags(const RunFields& r, uint32_t i) { return ((i + r.seed) % 2 ? 0x10000 : 0) | ((i + r.seed) % 4) << 24; }
int32_t RecordOffset(const RunFields& r, uint32_t i) { return r.version ? int32_t(i) - 2 : int32_t(i * 3); }

Bytes Tfhd(const HeaderFields& h)
{
    ByteWriter w(true);
    w.U32(h.trackId);
    if (h.flags & 0x1)
        w.U64(h.base);
    if (h.flags & 0x2)
        w.U32(h.descriptionIndex);
    if (h.flags & 0x8)
        w.U32(h.duration);
    if (h.flags & 0x10)
        w.U32(h.size);
    if (h.flags & 0x20)
        w.U32(h.sampleFlags);
    return FullBox("tfhd", 0, h.flags, w.Get());
}

Bytes Trun(const RunFields& r)
{
    ByteWriter w(true);
    w.U32(r.count);
    if (r.flags & 0x1)
        w.U32(uint32_t(r.dataOffset));
    if (r.flags & 0x4)
        w.U32(r.firstFlags);
    for (uint32_t i = 0; i < r.count; ++i) {
        if (r.flags & 0x100)
            w.U32(RecordDuration(r, i));
        if (r.flags & 0x200)
            w.U32(RecordSize(r, i));
        if (r.flags & 0x400)
            w.U32(RecordFlags(r, i));
        if (r.flags & 0x800)
            w.U32(uint32_t(RecordOffset(r, i)));
    }
    return FullBox("trun", r.version, r.flags, w.Get());
}

Bytes Tfdt(uint64_t time, uint8_t version = 1)
{
    ByteWriter w(true);
    w.Int(time, version ? 8 : 4);
    return FullBox("tfdt", version, 0, w.Get());
}

struct Traf {
    HeaderFields header;
    std::vector<RunFields> runs;
    bool hasTime = false;
    uint64_t time = 0;
};

Bytes Moof(const std::vector<Traf>& trafs)
{
    Bytes children = Box("mfhd", {0, 0, 0, 0, 0, 0, 0, 1});
    for (const Traf& traf : trafs) {
        Bytes body = Tfhd(traf.header);
        if (traf.hasTime)
            body = Join({body, Tfdt(traf.time)});
        for (const RunFields& run : traf.runs)
            body = Join({body, Trun(run)});
        children = Join({children, Box("traf", body)});
    }
    return Box("moof", children);
}

struct Expected {
    int64_t position, decodeTime;
    uint32_t size, duration, descriptionIndex;
    int32_t offset;
    bool sync;
    uint8_t dependency;
    bool operator==(const Expected&) const = default;
};

// The samples of trafs all of track 1, expanded the plain way.
std::vector<Expected> ExpandFragment(const std::vector<Traf>& trafs, int64_t startTime = 0)
{
    std::vector<Expected> samples;
    int64_t previousEnd = MoofOffset;
    int64_t time = startTime;
    for (const Traf& traf : trafs) {
        const HeaderFields& h = traf.header;
        const int64_t base = (h.flags & 0x1) ? int64_t(h.base) : (h.flags & 0x20000) ? MoofOffset : previousEnd;
        if (traf.hasTime)
            time = int64_t(traf.time);
        int64_t position = base;
        for (const RunFields& r : traf.runs) {
            if (r.flags & 0x1)
                position = base + r.dataOffset;
            for (uint32_t i = 0; i < r.count; ++i) {
                Expected s{};
                s.position = position;
                s.decodeTime = time;
                s.duration = (r.flags & 0x100) ? RecordDuration(r, i) : (h.flags & 0x8) ? h.duration : TrexDefaults.duration;
                s.size = (r.flags & 0x200) ? RecordSize(r, i) : (h.flags & 0x10) ? h.size : TrexDefaults.size;
                s.descriptionIndex = (h.flags & 0x2) ? h.descriptionIndex : TrexDefaults.descriptionIndex;
                uint32_t flags = (h.flags & 0x20) ? h.sampleFlags : TrexDefaults.flags;
                if (r.flags & 0x400)
                    flags = RecordFlags(r, i);
                if (i == 0 && (r.flags & 0x4))
                    flags = r.firstFlags;
                s.sync = !(flags & 0x10000);
                s.dependency = uint8_t(flags >> 20);
                s.offset = (r.flags & 0x800) ? RecordOffset(r, i) : 0;
                position += s.size;
                time += s.duration;
                samples.push_back(s);
            }
        }
        previousEnd = position;
    }
    return samples;
}

std::vector<Expected> WalkTable(const MovSampleTable& table)
{
    std::vector<Expected> walked;
    MovSampleTable::Cursor cursor(table);
    MovSample s;
    while (cursor.Next(s) == 0)
        walked.push_back({s.position, s.decodeTime, s.size, s.duration, s.descriptionIndex, s.compositionOffset, s.sync,
            s.dependency});
    return walked;
}

int ReadFragment(const Bytes& moof, MovSampleTable& table, int64_t fileSize = INT64_MAX, uint32_t trackId = 1)
{
    HeldBox held(moof, MoofOffset);
    MovFragmentTrack track{trackId, TrexDefaults, &table};
    return ReadMovieFragment(held.box, &track, 1, fileSize);
}

const uint32_t HeaderFlags[] = {0x1, 0x2, 0x8, 0x10, 0x20, 0x20000};
const uint32_t RunFlags[] = {0x1, 0x4, 0x100, 0x200, 0x400, 0x800};

uint32_t MaskOf(const uint32_t (&bits)[6], unsigned combination)
{
    uint32_t mask = 0;
    for (unsigned bit = 0; bit < 6; ++bit)
        if (combination & (1u << bit))
            mask |= bits[bit];
    return mask;
}

TEST(MovFragment, EveryHeaderAndRunFlagCombination)
{
    for (unsigned h = 0; h < 64; ++h) {
        for (unsigned r = 0; r < 64; ++r) {
            Traf first, second;
            first.header.flags = second.header.flags = MaskOf(HeaderFlags, h);
            RunFields run;
            run.flags = MaskOf(RunFlags, r);
            run.version = (r ^ h) & 1;
            RunFields continued = run; // no data offset: continues after the run before
            continued.flags &= ~0x1u;
            continued.count = 2;
            continued.seed = 5;
            first.runs = {run, continued};
            first.hasTime = true;
            first.time = 90000;
            second.runs = {continued};
            const std::vector<Traf> trafs = {first, second};
            MovSampleTable table;
            ASSERT_EQ(ReadFragment(Moof(trafs), table), 0) << "tfhd 0x" << std::hex << first.header.flags << " trun 0x"
                                                           << run.flags;
            const std::vector<Expected> expected = ExpandFragment(trafs);
            ASSERT_EQ(WalkTable(table), expected) << "tfhd 0x" << std::hex << first.header.flags << " trun 0x" << run.flags;
            EXPECT_EQ(table.GetDuration(), expected.back().decodeTime + expected.back().duration);
        }
    }
}

TEST(MovFragment, FragmentsFollowEachOtherAndSeekAcrossDecodeTimes)
{
    struct Step {
        bool hasTime;
        uint64_t time;
        uint32_t count;
    };
    const Step steps[] = {{true, 0, 3}, {false, 0, 2}, {true, 5000, 4}, {false, 0, 1}, {true, 100, 2}};
    MovSampleTable table;
    std::vector<Expected> expected;
    int64_t time = 0;
    for (const Step& step : steps) {
        Traf traf;
        traf.header.flags = 0x20000;
        traf.hasTime = step.hasTime;
        traf.time = step.time;
        RunFields run;
        run.flags = 0x1 | 0x100 | 0x200;
        run.count = step.count;
        run.seed = uint32_t(expected.size());
        traf.runs = {run};
        ASSERT_EQ(ReadFragment(Moof({traf}), table), 0);
        const std::vector<Expected> part = ExpandFragment({traf}, time);
        expected.insert(expected.end(), part.begin(), part.end());
        time = part.back().decodeTime + part.back().duration;
    }
    ASSERT_EQ(WalkTable(table), expected);
    EXPECT_EQ(table.GetDuration(), time);
    MovSampleTable::Cursor cursor(table);
    for (size_t i = expected.size(); i-- > 0;) {
        ASSERT_EQ(cursor.Seek(uint32_t(i)), 0);
        MovSample s;
        ASSERT_EQ(cursor.Next(s), 0);
        EXPECT_EQ(s.decodeTime, expected[i].decodeTime) << i;
        EXPECT_EQ(s.position, expected[i].position) << i;
    }
}

TEST(MovFragment, CursorAtTheEndContinuesWithAppendedSamples)
{
    MovSampleTable table;
    Traf traf;
    traf.header.flags = 0x20000;
    RunFields run;
    run.flags = 0x1;
    traf.runs = {run};
    ASSERT_EQ(ReadFragment(Moof({traf}), table), 0);
    MovSampleTable::Cursor cursor(table);
    MovSample s;
    int walked = 0;
    while (cursor.Next(s) == 0)
        ++walked;
    EXPECT_EQ(walked, 3);
    ASSERT_EQ(ReadFragment(Moof({traf}), table), 0); // same durations: the time run grows in place
    while (cursor.Next(s) == 0)
        ++walked;
    EXPECT_EQ(walked, 6);
    EXPECT_EQ(s.decodeTime, 5 * int64_t(TrexDefaults.duration));
}

TEST(MovFragment, EmptyDurationMovesTheNextFragment)
{
    MovSampleTable table;
    Traf samples;
    samples.header.flags = 0x20000;
    samples.runs = {RunFields{}};
    Traf empty;
    empty.header.flags = 0x10000 | 0x8;
    empty.header.duration = 700;
    ASSERT_EQ(ReadFragment(Moof({samples}), table), 0);
    ASSERT_EQ(ReadFragment(Moof({empty}), table), 0);
    EXPECT_EQ(table.GetDuration(), 3 * 10 + 700);
    ASSERT_EQ(ReadFragment(Moof({samples}), table), 0);
    const std::vector<Expected> walked = WalkTable(table);
    ASSERT_EQ(walked.size(), 6u);
    EXPECT_EQ(walked[3].decodeTime, 3 * 10 + 700);
}

TEST(MovFragment, LaterTrafsStartAfterTheDataOfTheOneBefore)
{
    // Track 9 is unknown: its traf is skipped but still moves the base of
    // the next one; with default-base-is-moof the base is the moof again.
    struct Case {
        const char* name;
        uint32_t secondFlags;
        int64_t firstPosition;
    };
    for (const Case& c : {Case{"implicit base", 0, MoofOffset + 300 + 3 * 9}, Case{"base is moof", 0x20000, MoofOffset}}) {
        SCOPED_TRACE(c.name);
        Traf unknown, known;
        unknown.header.trackId = 9;
        unknown.header.flags = 0x10; // size 9 from the tfhd: an unknown track has no trex
        unknown.runs = {RunFields{0x1}};
        known.header.flags = c.secondFlags;
        RunFields run;
        run.flags = 0;
        known.runs = {run};
        LogCapture log(LogLevel::Warning);
        MovSampleTable table;
        ASSERT_EQ(ReadFragment(Moof({unknown, known}), table), 0);
        EXPECT_EQ(log.Count("unknown track 9"), 1u) << log.Text();
        const std::vector<Expected> walked = WalkTable(table);
        ASSERT_EQ(walked.size(), 3u);
        EXPECT_EQ(walked[0].position, c.firstPosition);
    }
}

TEST(MovFragment, DataPastTheEndRefusesTheWholeTraf)
{
    Traf good, bad;
    good.header.flags = bad.header.flags = 0x20000;
    RunFields inside;
    inside.flags = 0x1;
    RunFields outside = inside;
    outside.dataOffset = 5000;
    good.runs = {inside};
    bad.runs = {inside, outside}; // the first run fits, the second does not
    const int64_t fileSize = MoofOffset + 2000;
    LogCapture log(LogLevel::Error);
    MovSampleTable table;
    EXPECT_EQ(ReadFragment(Moof({good, bad}), table, fileSize), RESULT_FORMAT_ERROR);
    EXPECT_EQ(log.Count("lies past the end of the file"), 1u) << log.Text();
    EXPECT_EQ(table.GetSampleCount(), 3u);
    EXPECT_EQ(WalkTable(table), ExpandFragment({good}));
    EXPECT_EQ(table.GetDuration(), 30);
}

TEST(MovFragment, AppendsToATableReadFromTheMovie)
{
    // A movie table of constant-size sync samples, then a fragment with
    // other sizes, a non-sync sample and offsets: the earlier samples keep
    // their facts.
    ByteWriter stts(true), stsc(true), stsz(true), stco(true);
    stts.U32(1).U32(4).U32(10);
    stsc.U32(1).U32(1).U32(4).U32(1);
    stsz.U32(7).U32(4);
    stco.U32(1).U32(200);
    const Bytes stbl = Box("stbl", Join({FullBox("stts", 0, 0, stts.Get()), FullBox("stsc", 0, 0, stsc.Get()),
                                          FullBox("stsz", 0, 0, stsz.Get()), FullBox("stco", 0, 0, stco.Get())}));
    MovSampleTable table;
    HeldBox held(stbl);
    ASSERT_EQ(table.Read(held.box, INT64_MAX), 0);
    EXPECT_FALSE(table.HasSyncTable());
    Traf traf;
    traf.header.flags = 0x20000;
    RunFields run;
    run.flags = 0x1 | 0x200 | 0x400 | 0x800;
    traf.runs = {run};
    ASSERT_EQ(ReadFragment(Moof({traf}), table), 0);
    EXPECT_TRUE(table.HasSyncTable());
    EXPECT_EQ(table.GetConstantSampleSize(), 0u);
    std::vector<Expected> expected;
    for (int i = 0; i < 4; ++i)
        expected.push_back({200 + 7 * i, 10 * i, 7, 10, 1, 0, true, 0});
    for (Expected e : ExpandFragment({traf}, 40))
        expected.push_back(e);
    EXPECT_EQ(WalkTable(table), expected);
}

TEST(MovFragment, HostileFragmentsAreRefused)
{
    auto withTrun = [](const Bytes& trun) { return Box("moof", Box("traf", Join({Tfhd(HeaderFields{}), trun}))); };
    ByteWriter longRun(true), manySamples(true), shortHeader(true);
    longRun.U32(50).U32(1).U32(2);
    manySamples.U32(MaxFragmentRunSamples + 1);
    shortHeader.U32(1);
    HeaderFields zeroDescription;
    zeroDescription.flags = 0x2;
    zeroDescription.descriptionIndex = 0;
    struct Case {
        const char* name;
        Bytes moof;
        const char* logged;
    };
    const Case cases[] = {
        {"trun count past the box", withTrun(FullBox("trun", 0, 0x100, longRun.Get())), "sample_count 50"},
        {"too many samples in a run", withTrun(FullBox("trun", 0, 0, manySamples.Get())), "sample_count 16777217"},
        {"trun too short", withTrun(FullBox("trun", 0, 0x5, ByteWriter(true).U32(1).Get())), "'trun' of"},
        {"tfhd too short", Box("moof", Box("traf", FullBox("tfhd", 0, 0x1, shortHeader.Get()))), "'tfhd' of"},
        {"no tfhd", Box("moof", Box("traf", Trun(RunFields{}))), "has no 'tfhd'"},
        {"description 0", Box("moof", Box("traf", Join({Tfhd(zeroDescription), Trun(RunFields{})}))),
            "sample_description_index 0"},
        {"negative data position", withTrun(Trun(RunFields{0x1, 0, 3, -5000})), "data_offset -5000"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(LogLevel::Error);
        MovSampleTable table;
        EXPECT_EQ(ReadFragment(c.moof, table), RESULT_FORMAT_ERROR);
        EXPECT_NE(log.Text().find(c.logged), std::string::npos) << log.Text();
        EXPECT_EQ(table.GetSampleCount(), 0u);
    }
}

TEST(MovFragment, LongRunsWithoutRecordsAreAppendedAtOnce)
{
    // Sixteen million samples from a 20-byte 'trun': kept as runs.
    ByteWriter w(true);
    w.U32(MaxFragmentRunSamples).U32(0x01000000);
    MovSampleTable table;
    ASSERT_EQ(ReadFragment(Box("moof", Box("traf", Join({Tfhd(HeaderFields{}), FullBox("trun", 0, 0x4, w.Get())}))),
                  table),
        0);
    EXPECT_EQ(table.GetSampleCount(), MaxFragmentRunSamples);
    EXPECT_EQ(table.GetConstantSampleSize(), TrexDefaults.size);
    MovSampleTable::Cursor cursor(table);
    MovSample s;
    ASSERT_EQ(cursor.Next(s), 0);
    EXPECT_TRUE(s.sync);
    ASSERT_EQ(cursor.Seek(MaxFragmentRunSamples - 1), 0);
    ASSERT_EQ(cursor.Next(s), 0);
    EXPECT_FALSE(s.sync);
    EXPECT_EQ(s.position, MoofOffset + int64_t(MaxFragmentRunSamples - 1) * TrexDefaults.size);
}

TEST(MovFragment, MovieExtendsSetTheDefaults)
{
    ByteWriter one(true), two(true);
    one.U32(1).U32(4).U32(100).U32(200).U32(0x10000);
    two.U32(2).U32(5).U32(101).U32(201).U32(0);
    HeldBox mvex(Box("mvex", Join({FullBox("mehd", 0, 0, {0, 0, 0, 0}), FullBox("trex", 0, 0, one.Get()),
                                   FullBox("trex", 0, 0, two.Get())})));
    MovFragmentTrack tracks[2] = {{2, {}, nullptr}, {3, {}, nullptr}};
    ASSERT_EQ(ReadMovieExtends(mvex.box, tracks, 2), 0);
    EXPECT_EQ(tracks[0].defaults.descriptionIndex, 5u);
    EXPECT_EQ(tracks[0].defaults.duration, 101u);
    EXPECT_EQ(tracks[0].defaults.size, 201u);
    EXPECT_EQ(tracks[1].defaults.descriptionIndex, 1u); // no trex: unchanged
    HeldBox shortTrex(Box("mvex", FullBox("trex", 0, 0, {0, 0, 0, 1})));
    EXPECT_EQ(ReadMovieExtends(shortTrex.box, tracks, 2), RESULT_FORMAT_ERROR);
}

TEST(MovFragment, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    Traf first, second;
    first.header.flags = 0x20000;
    RunFields run;
    run.flags = 0x1 | 0x4 | 0x100 | 0x200 | 0x400 | 0x800;
    run.count = 40;
    first.runs = {run};
    first.hasTime = true;
    first.time = 1000;
    second.runs = {run};
    const Bytes moof = Moof({first, second});
    const std::vector<Expected> expected = ExpandFragment({first, second});
    WalkAllocationFailures("ReadMovieFragment", [&] {
        MovSampleTable table;
        const int result = ReadFragment(moof, table);
        if (result < 0) {
            // A refused traf leaves the table as the trafs before left it.
            const std::vector<Expected> walked = WalkTable(table);
            return result == RESULT_OUT_OF_MEMORY && (walked.empty() || walked.size() == 40);
        }
        return WalkTable(table) == expected;
    });
#endif
}

} // namespace
