#include <vek/containers/readers/mov/MovFragment.h>

#include <cinttypes>

#include <vek/containers/readers/mov/MovSampleTable.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>

namespace Quorvex::Vek {

namespace {

// 'tfhd' flags
constexpr uint32_t BaseDataOffsetPresent = 0x1;
constexpr uint32_t DescriptionIndexPresent = 0x2;
constexpr uint32_t DefaultDurationPresent = 0x8;
constexpr uint32_t DefaultSizePresent = 0x10;
constexpr uint32_t DefaultFlagsPresent = 0x20;
constexpr uint32_t DurationIsEmpty = 0x10000;
constexpr uint32_t DefaultBaseIsMoof = 0x20000;
// 'trun' flags
constexpr uint32_t DataOffsetPresent = 0x1;
constexpr uint32_t FirstSampleFlagsPresent = 0x4;
constexpr uint32_t SampleDurationPresent = 0x100;
constexpr uint32_t SampleSizePresent = 0x200;
constexpr uint32_t SampleFlagsPresent = 0x400;
constexpr uint32_t SampleOffsetPresent = 0x800;

struct TrackFragment {
    uint32_t trackId = 0;
    uint32_t flags = 0;
    int64_t base = 0;
    MovTrackDefaults defaults;
    bool hasDecodeTime = false;
    int64_t decodeTime = 0;
};

MovFragmentTrack* FindTrack(MovFragmentTrack* tracks, size_t count, uint32_t trackId)
{
    for (size_t i = 0; i < count; ++i) {
        if (tracks[i].trackId == trackId)
            return &tracks[i];
    }
    return nullptr;
}

int ReadHeader(const MovBox& tfhd, TrackFragment& fragment)
{
    MovFieldReader reader(tfhd);
    uint8_t version = 0;
    reader.ReadVersionAndFlags(version, fragment.flags);
    fragment.trackId = reader.Read32();
    const uint32_t flags = fragment.flags;
    uint64_t base = 0;
    if (flags & BaseDataOffsetPresent)
        base = reader.Read64();
    if (flags & DescriptionIndexPresent)
        fragment.defaults.descriptionIndex = reader.Read32();
    if (flags & DefaultDurationPresent)
        fragment.defaults.duration = reader.Read32();
    if (flags & DefaultSizePresent)
        fragment.defaults.size = reader.Read32();
    if (flags & DefaultFlagsPresent)
        fragment.defaults.flags = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovFragment: 'tfhd' of %zu bytes is too short for flags 0x%06x\n", tfhd.size, flags);
        return RESULT_FORMAT_ERROR;
    }
    if (base > uint64_t(INT64_MAX)) {
        Log(LogLevel::Error, "MovFragment: 'tfhd' base_data_offset %" PRIu64 " is too large\n", base);
        return RESULT_FORMAT_ERROR;
    }
    fragment.base = int64_t(base);
    return 0;
}

// The trex defaults, overridden by what the 'tfhd' carries.
void MergeDefaults(TrackFragment& fragment, const MovTrackDefaults& track)
{
    const uint32_t flags = fragment.flags;
    if (!(flags & DescriptionIndexPresent))
        fragment.defaults.descriptionIndex = track.descriptionIndex;
    if (!(flags & DefaultDurationPresent))
        fragment.defaults.duration = track.duration;
    if (!(flags & DefaultSizePresent))
        fragment.defaults.size = track.size;
    if (!(flags & DefaultFlagsPresent))
        fragment.defaults.flags = track.flags;
}

int ReadDecodeTime(const MovBox& traf, TrackFragment& fragment)
{
    MovBoxIterator children(traf);
    MovBox tfdt;
    const int found = children.Find(Four("tfdt"), tfdt);
    if (found != 0)
        return found < 0 ? found : 0;
    MovFieldReader reader(tfdt);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    const uint64_t time = reader.ReadVersioned(version);
    if (reader.Failed() || time > uint64_t(INT64_MAX)) {
        Log(LogLevel::Error, "MovFragment: 'tfdt' of track %u: baseMediaDecodeTime %" PRIu64 " unreadable or too large\n",
            fragment.trackId, time);
        return RESULT_FORMAT_ERROR;
    }
    fragment.hasDecodeTime = true;
    fragment.decodeTime = int64_t(time);
    return 0;
}

struct RunHeader {
    uint32_t flags = 0;
    uint32_t sampleCount = 0;
    int32_t dataOffset = 0;
    uint32_t firstFlags = 0;
    size_t recordSize = 0;
    const uint8_t* records = nullptr;
};

int ReadRunHeader(const MovBox& trun, RunHeader& run)
{
    MovFieldReader reader(trun);
    uint8_t version = 0;
    reader.ReadVersionAndFlags(version, run.flags);
    run.sampleCount = reader.Read32();
    if (run.flags & DataOffsetPresent)
        run.dataOffset = int32_t(reader.Read32());
    if (run.flags & FirstSampleFlagsPresent)
        run.firstFlags = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovFragment: 'trun' of %zu bytes is too short for flags 0x%06x\n", trun.size, run.flags);
        return RESULT_FORMAT_ERROR;
    }
    for (uint32_t field : {SampleDurationPresent, SampleSizePresent, SampleFlagsPresent, SampleOffsetPresent})
        run.recordSize += (run.flags & field) ? 4 : 0;
    if (run.sampleCount > MaxFragmentRunSamples ||
        (run.recordSize && run.sampleCount > reader.Remaining() / run.recordSize)) {
        Log(LogLevel::Error, "MovFragment: 'trun' sample_count %u exceeds the %zu bytes of the box (or %u samples)\n",
            run.sampleCount, reader.Remaining(), MaxFragmentRunSamples);
        return RESULT_FORMAT_ERROR;
    }
    run.records = reader.Take(run.sampleCount * run.recordSize);
    return 0;
}

// Reads one record's fields in the order they are stored.
struct SampleRecord {
    uint32_t duration, size, flags;
    int32_t offset;
};

SampleRecord ReadRecord(const RunHeader& run, const MovTrackDefaults& defaults, uint32_t index)
{
    SampleRecord record{defaults.duration, defaults.size, defaults.flags, 0};
    const uint8_t* p = run.records + size_t(index) * run.recordSize;
    if (run.flags & SampleDurationPresent) {
        record.duration = BigEndian::Load32(p);
        p += 4;
    }
    if (run.flags & SampleSizePresent) {
        record.size = BigEndian::Load32(p);
        p += 4;
    }
    if (run.flags & SampleFlagsPresent) {
        record.flags = BigEndian::Load32(p);
        p += 4;
    }
    if (run.flags & SampleOffsetPresent)
        record.offset = int32_t(BigEndian::Load32(p)); // signed in version 1, and in practice in version 0 too
    if (index == 0 && (run.flags & FirstSampleFlagsPresent))
        record.flags = run.firstFlags;
    return record;
}

uint64_t RunBytes(const RunHeader& run, const MovTrackDefaults& defaults)
{
    if (!(run.flags & SampleSizePresent))
        return uint64_t(run.sampleCount) * defaults.size;
    uint64_t total = 0;
    for (uint32_t i = 0; i < run.sampleCount; ++i)
        total += ReadRecord(run, defaults, i).size;
    return total;
}

int AppendRun(MovSampleTable& table, const RunHeader& run, const TrackFragment& fragment, int64_t position)
{
    int result = table.BeginRun(position, fragment.defaults.descriptionIndex);
    if (result < 0 || run.sampleCount == 0)
        return result;
    if (run.recordSize == 0) {
        // Every sample alike but maybe the first: two appends, whatever the count.
        const SampleRecord first = ReadRecord(run, fragment.defaults, 0);
        const MovTrackDefaults& d = fragment.defaults;
        result = table.AppendSamples(1, first.duration, first.size, first.flags, 0);
        if (result >= 0)
            result = table.AppendSamples(run.sampleCount - 1, d.duration, d.size, d.flags, 0);
        return result;
    }
    for (uint32_t i = 0; i < run.sampleCount && result >= 0; ++i) {
        const SampleRecord r = ReadRecord(run, fragment.defaults, i);
        result = table.AppendSamples(1, r.duration, r.size, r.flags, r.offset);
    }
    return result;
}

// Reads the runs of one traf; `table` is null for a traf of an unknown
// track, read only to find where its data ends.
int ReadRuns(const MovBox& traf, const TrackFragment& fragment, MovSampleTable* table, int64_t fileSize,
    int64_t& dataEnd)
{
    int64_t next = fragment.base;
    bool hasSamples = false;
    MovBoxIterator children(traf);
    MovBox child;
    int result;
    while ((result = children.Next(child)) == 0) {
        if (child.type != Four("trun"))
            continue;
        RunHeader run;
        if ((result = ReadRunHeader(child, run)) < 0)
            return result;
        // Samples without per-sample fields cost a run nothing however many
        // it claims: a track never holds more samples than the file bytes.
        if (table && uint64_t(table->GetSampleCount()) + run.sampleCount > uint64_t(fileSize)) {
            Log(LogLevel::Error, "MovFragment: 'trun' of track %u holds %u samples, more than the file has bytes "
                                 "(%" PRId64 ")\n",
                fragment.trackId, run.sampleCount, fileSize);
            return RESULT_FORMAT_ERROR;
        }
        int64_t position = next;
        if ((run.flags & DataOffsetPresent) &&
            (!Checked::Add(fragment.base, int64_t(run.dataOffset), &position) || position < 0)) {
            Log(LogLevel::Error, "MovFragment: 'trun' data_offset %d from base %" PRId64 " of track %u is outside the file\n",
                run.dataOffset, fragment.base, fragment.trackId);
            return RESULT_FORMAT_ERROR;
        }
        const uint64_t bytes = RunBytes(run, fragment.defaults);
        if (bytes > uint64_t(INT64_MAX) || !Checked::RangeFits(position, int64_t(bytes), fileSize)) {
            Log(LogLevel::Error,
                "MovFragment: 'trun' data of track %u at %" PRId64 " (%" PRIu64 " bytes) lies past the end of the file (%" PRId64
                " bytes)\n",
                fragment.trackId, position, bytes, fileSize);
            return RESULT_FORMAT_ERROR;
        }
        if (table && run.sampleCount && (result = AppendRun(*table, run, fragment, position)) < 0)
            return result;
        hasSamples = hasSamples || run.sampleCount;
        next = position + int64_t(bytes);
    }
    if (result < 0)
        return result;
    dataEnd = next;
    if (table && !hasSamples && (fragment.flags & DurationIsEmpty)) {
        int64_t end = 0;
        if (!Checked::Add(table->GetDuration(), int64_t(fragment.defaults.duration), &end)) {
            Log(LogLevel::Error, "MovFragment: empty duration %u of track %u overflows\n", fragment.defaults.duration,
                fragment.trackId);
            return RESULT_FORMAT_ERROR;
        }
        return table->SetEndTime(end);
    }
    return 0;
}

int ReadTrackFragment(const MovBox& traf, const MovBox& moof, MovFragmentTrack* tracks, size_t trackCount,
    int64_t fileSize, int64_t& dataEnd)
{
    MovBox tfhd;
    MovBoxIterator children(traf);
    int result = children.Find(Four("tfhd"), tfhd);
    if (result != 0) {
        if (result > 0)
            Log(LogLevel::Error, "MovFragment: 'traf' at %" PRId64 " has no 'tfhd'\n", traf.fileOffset);
        return RESULT_FORMAT_ERROR;
    }
    TrackFragment fragment;
    if ((result = ReadHeader(tfhd, fragment)) < 0)
        return result;
    MovFragmentTrack* track = FindTrack(tracks, trackCount, fragment.trackId);
    MergeDefaults(fragment, track ? track->defaults : MovTrackDefaults());
    if (!(fragment.flags & BaseDataOffsetPresent))
        fragment.base = (fragment.flags & DefaultBaseIsMoof) ? moof.fileOffset : dataEnd;
    if (!track || !track->table) {
        Log(LogLevel::Warning, "MovFragment: 'traf' of unknown track %u skipped\n", fragment.trackId);
        ReadRuns(traf, fragment, nullptr, INT64_MAX, dataEnd);
        return 0;
    }
    if (fragment.defaults.descriptionIndex == 0) {
        Log(LogLevel::Error, "MovFragment: sample_description_index 0 for track %u\n", fragment.trackId);
        return RESULT_FORMAT_ERROR;
    }
    if ((result = ReadDecodeTime(traf, fragment)) < 0)
        return result;
    MovSampleTable& table = *track->table;
    const MovSampleTable::Mark mark = table.GetMark();
    if (fragment.hasDecodeTime)
        result = table.SetEndTime(fragment.decodeTime);
    if (result >= 0)
        result = ReadRuns(traf, fragment, &table, fileSize, dataEnd);
    if (result < 0)
        table.Rollback(mark);
    return result;
}

} // namespace

int ReadMovieExtends(const MovBox& mvex, MovFragmentTrack* tracks, size_t trackCount)
{
    if (!tracks && trackCount)
        return RESULT_ARGUMENT_NULL;
    MovBoxIterator children(mvex);
    MovBox trex;
    int result;
    while ((result = children.Next(trex)) == 0) {
        if (trex.type != Four("trex"))
            continue;
        MovFieldReader reader(trex);
        uint8_t version = 0;
        uint32_t flags = 0;
        reader.ReadVersionAndFlags(version, flags);
        const uint32_t trackId = reader.Read32();
        MovTrackDefaults defaults;
        defaults.descriptionIndex = reader.Read32();
        defaults.duration = reader.Read32();
        defaults.size = reader.Read32();
        defaults.flags = reader.Read32();
        if (reader.Failed()) {
            Log(LogLevel::Error, "MovFragment: 'trex' of %zu bytes is too short\n", trex.size);
            return RESULT_FORMAT_ERROR;
        }
        if (MovFragmentTrack* track = FindTrack(tracks, trackCount, trackId))
            track->defaults = defaults;
    }
    return result < 0 ? result : 0;
}

int ReadMovieFragment(const MovBox& moof, MovFragmentTrack* tracks, size_t trackCount, int64_t fileSize)
{
    if (!tracks && trackCount)
        return RESULT_ARGUMENT_NULL;
    int64_t dataEnd = moof.fileOffset;
    MovBoxIterator children(moof);
    MovBox traf;
    int result;
    while ((result = children.Next(traf)) == 0) {
        if (traf.type != Four("traf"))
            continue;
        if ((result = ReadTrackFragment(traf, moof, tracks, trackCount, fileSize, dataEnd)) < 0)
            return result;
    }
    return result < 0 ? result : 0;
}

} // namespace Quorvex::Vek
