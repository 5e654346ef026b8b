#include <vek/containers/readers/mov/MovSegmentIndex.h>

#include <cinttypes>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

int OutOfMemory(const char* box)
{
    Log(LogLevel::Error, "MovSegmentIndex: no memory for the entries of '%s'\n", box);
    return RESULT_OUT_OF_MEMORY;
}

// Reads an unsigned field of `bytes` (1 to 8) bytes.
uint64_t ReadField(MovFieldReader& reader, size_t bytes)
{
    uint64_t value = 0;
    for (size_t i = 0; i < bytes; ++i)
        value = value << 8 | reader.Read8();
    return value;
}

} // namespace

int ReadSegmentIndex(const MovBox& sidx, MovSegmentIndex& index)
{
    MovFieldReader reader(sidx);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    index.referenceId = reader.Read32();
    index.timescale = reader.Read32();
    const size_t wide = version == 0 ? 4 : 8;
    const uint64_t earliest = ReadField(reader, wide);
    const uint64_t firstOffset = ReadField(reader, wide);
    reader.Skip(2); // reserved
    const uint32_t count = reader.Read16();
    if (reader.Failed() || earliest > uint64_t(INT64_MAX)) {
        Log(LogLevel::Error, "MovSegmentIndex: 'sidx' of %zu bytes is unreadable (earliest_presentation_time %" PRIu64 ")\n",
            sidx.size, earliest);
        return RESULT_FORMAT_ERROR;
    }
    int64_t anchor = 0;
    if (firstOffset > uint64_t(INT64_MAX) || !Checked::Add(sidx.fileOffset, sidx.TotalSize(), &anchor) ||
        !Checked::Add(anchor, int64_t(firstOffset), &anchor)) {
        Log(LogLevel::Error, "MovSegmentIndex: 'sidx' first_offset %" PRIu64 " is too large\n", firstOffset);
        return RESULT_FORMAT_ERROR;
    }
    if (count > reader.Remaining() / 12) {
        Log(LogLevel::Error, "MovSegmentIndex: 'sidx' reference_count %u exceeds the %zu bytes of the box\n", count,
            reader.Remaining());
        return RESULT_FORMAT_ERROR;
    }
    index.earliestPresentationTime = int64_t(earliest);
    index.firstOffset = anchor;
    if (!index.references.Reserve(count))
        return OutOfMemory("sidx");
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t typeAndSize = reader.Read32();
        MovSegmentReference reference;
        reference.referencesIndex = typeAndSize >> 31;
        reference.size = typeAndSize & 0x7FFFFFFF;
        reference.duration = reader.Read32();
        const uint32_t sap = reader.Read32();
        reference.startsWithSap = sap >> 31;
        reference.sapType = uint8_t(sap >> 28 & 7);
        reference.sapDeltaTime = sap & 0x0FFFFFFF;
        index.references.Insert(index.references.Count(), std::move(reference));
    }
    return 0;
}

int ReadTrackFragmentRandomAccess(const MovBox& tfra, MovTrackRandomAccess& access)
{
    MovFieldReader reader(tfra);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    access.trackId = reader.Read32();
    const uint32_t lengths = reader.Read32();
    const uint32_t count = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovSegmentIndex: 'tfra' of %zu bytes is too short\n", tfra.size);
        return RESULT_FORMAT_ERROR;
    }
    const size_t trafBytes = (lengths >> 4 & 3) + 1;
    const size_t trunBytes = (lengths >> 2 & 3) + 1;
    const size_t sampleBytes = (lengths & 3) + 1;
    const size_t wide = version == 1 ? 8 : 4;
    const size_t entryBytes = 2 * wide + trafBytes + trunBytes + sampleBytes;
    if (count > reader.Remaining() / entryBytes) {
        Log(LogLevel::Error, "MovSegmentIndex: 'tfra' number_of_entry %u exceeds the %zu bytes of the box\n", count,
            reader.Remaining());
        return RESULT_FORMAT_ERROR;
    }
    if (!access.entries.Reserve(int32_t(count)))
        return OutOfMemory("tfra");
    for (uint32_t i = 0; i < count; ++i) {
        const uint64_t time = ReadField(reader, wide);
        const uint64_t offset = ReadField(reader, wide);
        if (time > uint64_t(INT64_MAX) || offset > uint64_t(INT64_MAX)) {
            Log(LogLevel::Error, "MovSegmentIndex: 'tfra' entry %u: time %" PRIu64 " or moof_offset %" PRIu64
                " is too large\n", i + 1, time, offset);
            return RESULT_FORMAT_ERROR;
        }
        MovRandomAccessEntry entry;
        entry.time = int64_t(time);
        entry.moofOffset = int64_t(offset);
        entry.trafNumber = uint32_t(ReadField(reader, trafBytes));
        entry.trunNumber = uint32_t(ReadField(reader, trunBytes));
        entry.sampleNumber = uint32_t(ReadField(reader, sampleBytes));
        access.entries.Insert(access.entries.Count(), std::move(entry));
    }
    return 0;
}

int ReadMovieFragmentRandomAccessOffset(const MovBox& mfro, uint32_t& mfraSize)
{
    MovFieldReader reader(mfro);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    const uint32_t size = reader.Read32();
    if (reader.Failed() || size < 16) {
        Log(LogLevel::Error, "MovSegmentIndex: 'mfro' size %u unreadable or smaller than a box\n", size);
        return RESULT_FORMAT_ERROR;
    }
    mfraSize = size;
    return 0;
}

} // namespace Quorvex::Vek
