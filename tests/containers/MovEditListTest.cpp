// Edit lists: the delay, the shift and what each edit shows of a sample.
#include <gtest/gtest.h>

#include "support/LogCapture.h"

#include <vek/Vek.h>

#include <vector>

using namespace Quorvex::Vek;
using VekTest::LogCapture;

namespace {

using Bytes = std::vector<uint8_t>;

struct Edit {
    uint64_t segment; // movie units
    int64_t mediaTime; // media units, -1 for an empty edit
};

void Put(Bytes& out, uint64_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out.push_back(uint8_t(value >> shift));
}

Bytes ElstPayload(const std::vector<Edit>& edits, int version, uint32_t declaredCount = UINT32_MAX)
{
    Bytes out;
    Put(out, uint32_t(version) << 24, 4);
    Put(out, declaredCount == UINT32_MAX ? edits.size() : declaredCount, 4);
    for (const Edit& edit : edits) {
        Put(out, edit.segment, version == 1 ? 8 : 4);
        Put(out, uint64_t(edit.mediaTime), version == 1 ? 8 : 4);
        Put(out, 0x00010000, 4);
    }
    return out;
}

MovBox BoxOver(const Bytes& payload)
{
    MovBox box;
    box.type = Four("elst");
    box.payload = payload.data();
    box.size = payload.size();
    box.headerSize = 8;
    return box;
}

TEST(MovEditList, MapsSamplesOntoThePresentation)
{
    struct Placed {
        int64_t start, duration;
        bool excluded;
        int32_t leading, trailing;
    };
    struct Case {
        const char* name;
        std::vector<Edit> edits;
        int version;
        int64_t delay, mediaStart, presented;
        std::vector<Placed> samples;
    };
    // Movie time scale 1000, media time scale 48000.
    const Case cases[] = {
        {"AAC priming and padding", {{1000, 1024}}, 0, 0, 1024, 48000,
         {{0, 1024, true, 0, 0}, {1024, 1024, false, 0, 0}, {512, 1024, false, 512, 0}, {48640, 1024, false, 0, 640}}},
        {"delayed by an empty edit", {{500, -1}, {2000, 0}}, 1, 24000, 0, 96000,
         {{0, 1024, false, 0, 0}, {95999, 2, false, 0, 1}, {96000, 10, true, 0, 0}}},
        {"two edits with a cut between", {{10, 0}, {10, 960}}, 0, 0, 0, 960,
         {{0, 480, false, 0, 0}, {480, 480, true, 0, 0}, {900, 120, false, 60, 0}}},
        {"zero-length edit shows all media from its start", {{0, 2000}}, 0, 0, 2000, 0,
         {{1999, 1, true, 0, 0}, {1000000, 1024, false, 0, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes payload = ElstPayload(c.edits, c.version);
        MovEditList list;
        ASSERT_EQ(list.Read(BoxOver(payload), 1000, 48000), RESULT_OK);
        EXPECT_EQ(list.GetDelay(), c.delay);
        EXPECT_EQ(list.GetMediaStart(), c.mediaStart);
        EXPECT_EQ(list.GetPresentedDuration(), c.presented);
        for (const Placed& sample : c.samples) {
            SCOPED_TRACE(sample.start);
            const MovEditList::Placement placement = list.Place(sample.start, sample.duration);
            EXPECT_EQ(placement.excluded, sample.excluded);
            EXPECT_EQ(placement.leadingTrim, sample.leading);
            EXPECT_EQ(placement.trailingTrim, sample.trailing);
        }
    }
}

TEST(MovEditList, RefusesListsThatCannotBeRead)
{
    struct Case {
        const char* name;
        Bytes payload;
        uint32_t movieTimeScale;
    };
    const Case cases[] = {
        {"count past the box", ElstPayload({{10, 0}}, 0, 2), 1000},
        {"huge count", ElstPayload({{10, 0}}, 1, 0x7FFFFFFF), 1000},
        {"negative media time", ElstPayload({{10, -5}}, 0), 1000},
        {"movie time scale 0", ElstPayload({{10, 0}}, 0), 0},
        {"duration overflows", ElstPayload({{UINT64_MAX / 2, 0}}, 1), 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(LogLevel::Error);
        MovEditList list;
        EXPECT_EQ(list.Read(BoxOver(c.payload), c.movieTimeScale, 48000), RESULT_FORMAT_ERROR);
        EXPECT_EQ(log.Count("'elst'"), 1u);
    }
}

} // namespace
