#include <vek/containers/readers/mov/MovSampleTable.h>

#include <algorithm>
#include <cinttypes>
#include <climits>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/io/BigEndian.h>

namespace Quorvex::Vek {

namespace {

constexpr uint32_t NonSyncFlag = 0x10000;
constexpr int64_t MaxCompositionShift = int64_t(1) << 31;

template <typename E>
bool Append(Detail::GrowBuffer<E>& buffer, E value)
{
    return buffer.Insert(buffer.Count(), std::move(value));
}

// Appends `count` copies, reserving once for a batch; single appends grow
// the buffer geometrically.
template <typename E>
bool AppendRepeated(Detail::GrowBuffer<E>& buffer, E value, uint64_t count)
{
    if (count > uint64_t(Detail::GrowBuffer<E>::MaxCount - buffer.Count()))
        return false;
    if (count > 1 && !buffer.Reserve(buffer.Count() + int32_t(count)))
        return false;
    for (uint64_t i = 0; i < count; ++i) {
        if (!Append(buffer, value))
            return false;
    }
    return true;
}

int OutOfMemory(const char* what)
{
    Log(LogLevel::Error, "MovSampleTable: no memory for %s\n", what);
    return RESULT_OUT_OF_MEMORY;
}

// Reads version, flags and the entry count of a table box and checks that
// `entrySize` bytes per entry fit in what the box holds, so nothing is ever
// allocated by the count field alone.
int ReadEntryCount(MovFieldReader& reader, const char* box, size_t entrySize, uint32_t& count)
{
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    count = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovSampleTable: '%s' is too short for its header\n", box);
        return RESULT_FORMAT_ERROR;
    }
    if (count > reader.Remaining() / entrySize) {
        Log(LogLevel::Error, "MovSampleTable: '%s' entry_count %u exceeds the %zu bytes of the box\n", box, count,
            reader.Remaining());
        return RESULT_FORMAT_ERROR;
    }
    if (count > uint32_t(INT32_MAX)) {
        Log(LogLevel::Error, "MovSampleTable: '%s' entry_count %u is too large\n", box, count);
        return RESULT_FORMAT_ERROR;
    }
    return 0;
}

} // namespace

struct MovSampleTable::Boxes {
    MovBox stts, ctts, cslg, stss, sdtp, stsc, stsz, stz2, stco, co64;
    bool hasStts = false, hasCtts = false, hasCslg = false, hasStss = false, hasSdtp = false;
    bool hasStsc = false, hasStsz = false, hasStz2 = false, hasStco = false, hasCo64 = false;

    // Keeps the first box of each type.
    void Take(const MovBox& box)
    {
        auto keep = [&](MovBox& slot, bool& has) {
            if (has) {
                Log(LogLevel::Warning, "MovSampleTable: a second '%c%c%c%c' is ignored\n", char(box.type >> 24),
                    char(box.type >> 16), char(box.type >> 8), char(box.type));
                return;
            }
            slot = box;
            has = true;
        };
        switch (box.type) {
        case Four("stts"): keep(stts, hasStts); break;
        case Four("ctts"): keep(ctts, hasCtts); break;
        case Four("cslg"): keep(cslg, hasCslg); break;
        case Four("stss"): keep(stss, hasStss); break;
        case Four("sdtp"): keep(sdtp, hasSdtp); break;
        case Four("stsc"): keep(stsc, hasStsc); break;
        case Four("stsz"): keep(stsz, hasStsz); break;
        case Four("stz2"): keep(stz2, hasStz2); break;
        case Four("stco"): keep(stco, hasStco); break;
        case Four("co64"): keep(co64, hasCo64); break;
        default: break; // stsd, stps, sgpd, sbgp, subs ... belong to others or carry nothing needed here
        }
    }
};

int MovSampleTable::Read(const MovBox& stbl, int64_t fileSize)
{
    if (fileSize < 0) {
        Log(LogLevel::Error, "MovSampleTable: file size %" PRId64 " is negative\n", fileSize);
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    }
    Boxes boxes;
    MovBoxIterator children(stbl);
    MovBox child;
    int result;
    while ((result = children.Next(child)) == 0)
        boxes.Take(child);
    if (result < 0)
        return result;

    if (boxes.hasStco || boxes.hasCo64) {
        if ((result = ReadChunkOffsets(boxes.hasCo64 ? boxes.co64 : boxes.stco)) < 0)
            return result;
    }
    uint64_t sizeCount = 0;
    if (boxes.hasStsz)
        result = ReadSampleSizes(boxes.stsz, sizeCount);
    else if (boxes.hasStz2)
        result = ReadCompactSampleSizes(boxes.stz2, sizeCount);
    if (result < 0)
        return result;
    uint64_t chunkedCount = 0;
    if (boxes.hasStsc && (result = ReadSampleToChunk(boxes.stsc, sizeCount, chunkedCount)) < 0)
        return result;
    uint64_t timedCount = 0;
    if (boxes.hasStts && (result = ReadTimeToSample(boxes.stts, timedCount)) < 0)
        return result;

    const uint64_t count = std::min({sizeCount, chunkedCount, timedCount});
    if (sizeCount != chunkedCount || sizeCount != timedCount) {
        Log(LogLevel::Warning,
            "MovSampleTable: sample counts disagree: 'stsz' %" PRIu64 ", 'stsc' with chunk offsets %" PRIu64
            ", 'stts' %" PRIu64 "; keeping %" PRIu64 "\n",
            sizeCount, chunkedCount, timedCount, count);
    }
    m_count = uint32_t(count); // sizeCount, from a 32-bit field, bounds it
    if (boxes.hasCtts && (result = ReadCompositionOffsets(boxes.ctts)) < 0)
        return result;
    if (boxes.hasCslg)
        ReadCompositionShift(boxes.cslg);
    if (boxes.hasStss && (result = ReadSyncSamples(boxes.stss)) < 0)
        return result;
    if (boxes.hasSdtp && (result = ReadDependencies(boxes.sdtp)) < 0)
        return result;
    if ((result = KeepSamples(m_count)) < 0)
        return result;
    if ((result = KeepSamplesInsideFile(fileSize)) < 0)
        return result;
    return ComputeEndTime();
}

int MovSampleTable::ReadChunkOffsets(const MovBox& box)
{
    const bool wide = box.type == Four("co64");
    const char* name = wide ? "co64" : "stco";
    const size_t entrySize = wide ? 8 : 4;
    MovFieldReader reader(box);
    uint32_t count = 0;
    int result = ReadEntryCount(reader, name, entrySize, count);
    if (result < 0)
        return result;
    if (!m_chunks.Reserve(int32_t(count)))
        return OutOfMemory("chunk offsets");
    const uint8_t* entries = reader.Take(size_t(count) * entrySize);
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* entry = entries + size_t(i) * entrySize;
        const uint64_t offset = wide ? BigEndian::Load64(entry) : BigEndian::Load32(entry);
        if (offset > uint64_t(INT64_MAX)) {
            Log(LogLevel::Error, "MovSampleTable: '%s' chunk_offset %" PRIu64 " of chunk %u is too large\n", name,
                offset, i + 1);
            return RESULT_FORMAT_ERROR;
        }
        Append(m_chunks, MovChunk{int64_t(offset), 0, 0, 1});
    }
    return 0;
}

int MovSampleTable::ReadSampleToChunk(const MovBox& box, uint64_t sizeCount, uint64_t& chunkedCount)
{
    MovFieldReader reader(box);
    uint32_t count = 0;
    int result = ReadEntryCount(reader, "stsc", 12, count);
    if (result < 0)
        return result;
    const uint8_t* entries = reader.Take(size_t(count) * 12);
    const uint32_t chunkCount = uint32_t(m_chunks.Count());
    uint64_t assigned = 0;
    uint32_t previousFirst = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* entry = entries + size_t(i) * 12;
        const uint32_t firstChunk = BigEndian::Load32(entry);
        const uint32_t perChunk = BigEndian::Load32(entry + 4);
        const uint32_t description = BigEndian::Load32(entry + 8);
        if (firstChunk == 0 || firstChunk <= previousFirst) {
            Log(LogLevel::Error, "MovSampleTable: 'stsc' first_chunk %u of entry %u does not follow %u\n", firstChunk,
                i + 1, previousFirst);
            return RESULT_FORMAT_ERROR;
        }
        if (description == 0) {
            Log(LogLevel::Error, "MovSampleTable: 'stsc' sample_description_index 0 in entry %u\n", i + 1);
            return RESULT_FORMAT_ERROR;
        }
        if (i == 0 && firstChunk != 1)
            Log(LogLevel::Warning, "MovSampleTable: 'stsc' first_chunk %u of the first entry: earlier chunks are empty\n",
                firstChunk);
        previousFirst = firstChunk;
        if (firstChunk > chunkCount)
            continue; // describes chunks that have no offset
        const uint32_t endChunk = i + 1 < count ? std::min(BigEndian::Load32(entry + 12) - 1, chunkCount) : chunkCount;
        for (uint32_t chunk = firstChunk - 1; chunk < endChunk; ++chunk) {
            if (perChunk == 0 && assigned < sizeCount) {
                Log(LogLevel::Error,
                    "MovSampleTable: 'stsc' samples_per_chunk 0 for chunk %u with %" PRIu64 " samples left\n",
                    chunk + 1, sizeCount - assigned);
                return RESULT_FORMAT_ERROR;
            }
            MovChunk& target = m_chunks[int32_t(chunk)];
            target.firstSample = uint32_t(std::min<uint64_t>(assigned, UINT32_MAX));
            target.sampleCount = perChunk;
            target.descriptionIndex = description;
            assigned += perChunk;
        }
    }
    chunkedCount = assigned;
    return 0;
}

int MovSampleTable::ReadSampleSizes(const MovBox& box, uint64_t& sizeCount)
{
    MovFieldReader reader(box);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    const uint32_t constantSize = reader.Read32();
    const uint32_t count = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovSampleTable: 'stsz' is too short for its header\n");
        return RESULT_FORMAT_ERROR;
    }
    sizeCount = count;
    if (constantSize != 0) {
        m_constantSize = constantSize;
        return 0;
    }
    if (count > reader.Remaining() / 4 || count > uint32_t(INT32_MAX)) {
        Log(LogLevel::Error, "MovSampleTable: 'stsz' sample_count %u exceeds the %zu bytes of the box\n", count,
            reader.Remaining());
        return RESULT_FORMAT_ERROR;
    }
    const uint8_t* entries = reader.Take(size_t(count) * 4);
    // Sizes written out one by one yet all equal (some PCM writers) stay one constant.
    const uint32_t first = count ? BigEndian::Load32(entries) : 0;
    uint32_t i = 1;
    while (i < count && BigEndian::Load32(entries + size_t(i) * 4) == first)
        ++i;
    if (i >= count) {
        m_constantSize = first;
        return 0;
    }
    if (!m_sizes.Reserve(int32_t(count)))
        return OutOfMemory("sample sizes");
    for (i = 0; i < count; ++i)
        Append(m_sizes, BigEndian::Load32(entries + size_t(i) * 4));
    m_sizesVary = true;
    return 0;
}

int MovSampleTable::ReadCompactSampleSizes(const MovBox& box, uint64_t& sizeCount)
{
    MovFieldReader reader(box);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    const uint32_t fieldSize = reader.Read32() & 0xFF;
    const uint32_t count = reader.Read32();
    if (reader.Failed()) {
        Log(LogLevel::Error, "MovSampleTable: 'stz2' is too short for its header\n");
        return RESULT_FORMAT_ERROR;
    }
    if (fieldSize != 4 && fieldSize != 8 && fieldSize != 16) {
        Log(LogLevel::Error, "MovSampleTable: 'stz2' field_size %u is not 4, 8 or 16\n", fieldSize);
        return RESULT_FORMAT_ERROR;
    }
    const uint64_t bytes = (uint64_t(count) * fieldSize + 7) / 8;
    if (bytes > reader.Remaining() || count > uint32_t(INT32_MAX)) {
        Log(LogLevel::Error, "MovSampleTable: 'stz2' sample_count %u exceeds the %zu bytes of the box\n", count,
            reader.Remaining());
        return RESULT_FORMAT_ERROR;
    }
    sizeCount = count;
    const uint8_t* entries = reader.Take(size_t(bytes));
    if (!m_sizes.Reserve(int32_t(count)))
        return OutOfMemory("sample sizes");
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t size;
        if (fieldSize == 4)
            size = (i & 1) ? entries[i / 2] & 0x0F : entries[i / 2] >> 4;
        else if (fieldSize == 8)
            size = entries[i];
        else
            size = BigEndian::Load16(entries + size_t(i) * 2);
        Append(m_sizes, size);
    }
    m_sizesVary = true;
    return 0;
}

int MovSampleTable::ReadTimeToSample(const MovBox& box, uint64_t& timedCount)
{
    MovFieldReader reader(box);
    uint32_t count = 0;
    int result = ReadEntryCount(reader, "stts", 8, count);
    if (result < 0)
        return result;
    if (!m_timeRuns.Reserve(int32_t(count)))
        return OutOfMemory("'stts' runs");
    const uint8_t* entries = reader.Take(size_t(count) * 8);
    uint64_t total = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t samples = BigEndian::Load32(entries + size_t(i) * 8);
        const uint32_t duration = BigEndian::Load32(entries + size_t(i) * 8 + 4);
        if (samples == 0)
            continue;
        total += samples;
        const int32_t last = m_timeRuns.Count() - 1;
        if (last >= 0 && m_timeRuns[last].duration == duration && m_timeRuns[last].count <= UINT32_MAX - samples)
            m_timeRuns[last].count += samples;
        else
            Append(m_timeRuns, TimeRun{samples, duration});
    }
    timedCount = total;
    return 0;
}

int MovSampleTable::ReadCompositionOffsets(const MovBox& box)
{
    MovFieldReader reader(box);
    uint32_t count = 0;
    int result = ReadEntryCount(reader, "ctts", 8, count);
    if (result < 0)
        return result;
    if (!m_offsetRuns.Reserve(int32_t(count)))
        return OutOfMemory("'ctts' runs");
    const uint8_t* entries = reader.Take(size_t(count) * 8);
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t samples = BigEndian::Load32(entries + size_t(i) * 8);
        // Version 0 says unsigned, but QuickTime writers store negative
        // offsets there too; no real offset needs the 32nd bit.
        const int32_t offset = int32_t(BigEndian::Load32(entries + size_t(i) * 8 + 4));
        if (samples == 0)
            continue;
        const int32_t last = m_offsetRuns.Count() - 1;
        if (last >= 0 && m_offsetRuns[last].offset == offset && m_offsetRuns[last].count <= UINT32_MAX - samples)
            m_offsetRuns[last].count += samples;
        else
            Append(m_offsetRuns, OffsetRun{samples, offset});
    }
    return 0;
}

void MovSampleTable::ReadCompositionShift(const MovBox& box)
{
    MovFieldReader reader(box);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    const int64_t shift = version == 0 ? int64_t(int32_t(reader.Read32())) : int64_t(reader.Read64());
    if (reader.Failed()) {
        Log(LogLevel::Warning, "MovSampleTable: 'cslg' of %zu bytes is too short; ignored\n", box.size);
        return;
    }
    if (shift < 0 || shift > MaxCompositionShift)
        Log(LogLevel::Warning, "MovSampleTable: 'cslg' compositionToDTSShift %" PRId64 " is out of range; bounded\n",
            shift);
    m_hasShiftBox = true;
    m_shiftFromBox = std::clamp<int64_t>(shift, 0, MaxCompositionShift);
}

int MovSampleTable::ReadSyncSamples(const MovBox& box)
{
    MovFieldReader reader(box);
    uint32_t count = 0;
    int result = ReadEntryCount(reader, "stss", 4, count);
    if (result < 0)
        return result;
    if (count == 0) {
        Log(LogLevel::Warning, "MovSampleTable: 'stss' is empty; every sample is taken as a sync sample\n");
        return 0;
    }
    m_hasSyncTable = true;
    const uint8_t* entries = reader.Take(size_t(count) * 4);
    uint32_t previous = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t number = BigEndian::Load32(entries + size_t(i) * 4);
        if (number <= previous) {
            Log(LogLevel::Warning, "MovSampleTable: 'stss' sample_number %u of entry %u does not follow %u; ignored\n",
                number, i + 1, previous);
            continue;
        }
        previous = number;
        const uint32_t index = number - 1;
        if (index >= m_count)
            break;
        const int32_t last = m_syncRuns.Count() - 1;
        if (last >= 0 && m_syncRuns[last].first + m_syncRuns[last].count == index)
            ++m_syncRuns[last].count;
        else if (!Append(m_syncRuns, SyncRun{index, 1}))
            return OutOfMemory("'stss' runs");
    }
    return 0;
}

int MovSampleTable::ReadDependencies(const MovBox& box)
{
    MovFieldReader reader(box);
    uint8_t version = 0;
    uint32_t flags = 0;
    reader.ReadVersionAndFlags(version, flags);
    if (reader.Failed()) {
        Log(LogLevel::Warning, "MovSampleTable: 'sdtp' of %zu bytes is too short; ignored\n", box.size);
        return 0;
    }
    const size_t available = reader.Remaining();
    if (available == 0 || m_count == 0)
        return 0;
    const uint8_t* bytes = reader.Take(available);
    if (available < m_count)
        Log(LogLevel::Warning, "MovSampleTable: 'sdtp' holds %zu of %u samples; the rest read as 0\n", available,
            m_count);
    const uint32_t kept = uint32_t(std::min<uint64_t>(available, m_count));
    if (!m_dependencies.Reserve(int32_t(std::min<uint32_t>(kept, INT32_MAX))))
        return OutOfMemory("'sdtp' bytes");
    for (uint32_t i = 0; i < kept; ++i)
        Append(m_dependencies, bytes[i]);
    return 0;
}

// Cuts every array to the first `count` samples; a shorter 'ctts' is padded
// with offset 0 so that the runs always cover every sample.
int MovSampleTable::KeepSamples(uint32_t count)
{
    int32_t kept = 0;
    for (int32_t i = 0; i < m_chunks.Count(); ++i) {
        MovChunk chunk = m_chunks[i];
        if (chunk.sampleCount == 0 || chunk.firstSample >= count)
            continue;
        chunk.sampleCount = std::min(chunk.sampleCount, count - chunk.firstSample);
        m_chunks[kept++] = chunk;
    }
    m_chunks.Truncate(kept);

    auto cutRuns = [count](auto& runs) {
        uint64_t start = 0;
        int32_t i = 0;
        for (; i < runs.Count() && start < count; ++i) {
            runs[i].count = uint32_t(std::min<uint64_t>(runs[i].count, count - start));
            start += runs[i].count;
        }
        runs.Truncate(i);
        return start;
    };
    cutRuns(m_timeRuns);
    const uint64_t covered = cutRuns(m_offsetRuns);
    if (m_offsetRuns.Count() > 0 && covered < count) {
        Log(LogLevel::Warning, "MovSampleTable: 'ctts' covers %" PRIu64 " of %u samples; the rest get offset 0\n",
            covered, count);
        if (!Append(m_offsetRuns, OffsetRun{uint32_t(count - covered), 0}))
            return OutOfMemory("'ctts' runs");
    }
    // The shift covers the samples kept, not entries past them.
    m_minOffset = 0;
    for (int32_t i = 0; i < m_offsetRuns.Count(); ++i)
        m_minOffset = std::min(m_minOffset, m_offsetRuns[i].offset);

    int32_t syncRuns = 0;
    while (syncRuns < m_syncRuns.Count() && m_syncRuns[syncRuns].first < count) {
        SyncRun& run = m_syncRuns[syncRuns++];
        run.count = std::min(run.count, count - run.first);
    }
    m_syncRuns.Truncate(syncRuns);
    if (m_sizesVary)
        m_sizes.Truncate(int32_t(std::min<uint32_t>(count, uint32_t(m_sizes.Count()))));
    m_dependencies.Truncate(int32_t(std::min<uint32_t>(count, uint32_t(m_dependencies.Count()))));
    m_count = count;
    return 0;
}

int MovSampleTable::KeepSamplesInsideFile(int64_t fileSize)
{
    uint32_t first = m_count;
    const int result = FindFirstSampleOutside(fileSize, first);
    if (result < 0 || first >= m_count)
        return result;
    Log(LogLevel::Warning,
        "MovSampleTable: sample %u lies past the end of the file (%" PRId64 " bytes); keeping %u of %u samples\n",
        first + 1, fileSize, first, m_count);
    return KeepSamples(first);
}

int MovSampleTable::FindFirstSampleOutside(int64_t fileSize, uint32_t& first) const
{
    for (int32_t c = 0; c < m_chunks.Count(); ++c) {
        const MovChunk& chunk = m_chunks[c];
        int64_t position = chunk.position;
        if (!m_sizesVary) {
            int64_t bytes = 0;
            if (Checked::Multiply(int64_t(chunk.sampleCount), int64_t(m_constantSize), &bytes) &&
                Checked::RangeFits(position, bytes, fileSize))
                continue;
            if (!Checked::Multiply(int64_t(chunk.sampleCount), int64_t(m_constantSize), &bytes) ||
                bytes > INT64_MAX - position) {
                Log(LogLevel::Error,
                    "MovSampleTable: chunk %d at %" PRId64 " with %u samples of %u bytes overflows 64-bit offsets\n",
                    c + 1, position, chunk.sampleCount, m_constantSize);
                return RESULT_FORMAT_ERROR;
            }
            const int64_t room = position > fileSize ? 0 : fileSize - position;
            const uint64_t fit = m_constantSize == 0 ? (position > fileSize ? 0 : chunk.sampleCount)
                                                     : uint64_t(room) / m_constantSize;
            first = chunk.firstSample + uint32_t(std::min<uint64_t>(fit, chunk.sampleCount));
            return 0;
        }
        for (uint32_t i = 0; i < chunk.sampleCount; ++i) {
            const uint32_t size = m_sizes[int32_t(chunk.firstSample + i)];
            if (!Checked::RangeFits(position, size, fileSize)) {
                if (size > INT64_MAX - position) {
                    Log(LogLevel::Error,
                        "MovSampleTable: sample %u at %" PRId64 " of %u bytes overflows 64-bit offsets\n",
                        chunk.firstSample + i + 1, position, size);
                    return RESULT_FORMAT_ERROR;
                }
                first = chunk.firstSample + i;
                return 0;
            }
            position += size;
        }
    }
    return 0;
}

int MovSampleTable::ComputeEndTime()
{
    int64_t total = 0;
    for (int32_t i = 0; i < m_timeRuns.Count(); ++i) {
        int64_t run = 0;
        if (!Checked::Multiply(int64_t(m_timeRuns[i].count), int64_t(m_timeRuns[i].duration), &run) ||
            !Checked::Add(total, run, &total)) {
            Log(LogLevel::Error, "MovSampleTable: 'stts' total duration overflows at entry %d (%u x %u)\n", i + 1,
                m_timeRuns[i].count, m_timeRuns[i].duration);
            return RESULT_FORMAT_ERROR;
        }
    }
    m_endTime = total;
    return 0;
}

int MovSampleTable::GetChunk(uint32_t index, MovChunk& chunk) const
{
    if (index >= uint32_t(m_chunks.Count()))
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    chunk = m_chunks[int32_t(index)];
    return 0;
}

int64_t MovSampleTable::GetCompositionToDecodeShift() const
{
    return m_hasShiftBox ? m_shiftFromBox : -int64_t(m_minOffset);
}

// Fragments ----------------------------------------------------------------

MovSampleTable::Mark MovSampleTable::GetMark() const
{
    auto lastCount = [](const auto& runs) { return runs.Count() ? runs[runs.Count() - 1].count : 0u; };
    return Mark{m_count,
        m_endTime,
        m_chunks.Count(),
        m_timeRuns.Count(),
        m_offsetRuns.Count(),
        m_syncRuns.Count(),
        m_anchors.Count(),
        m_sizes.Count(),
        m_dependencies.Count(),
        lastCount(m_timeRuns),
        lastCount(m_offsetRuns),
        lastCount(m_syncRuns),
        m_constantSize,
        m_sizesVary,
        m_hasSyncTable,
        m_minOffset,
        m_anchors.Count() ? m_anchors[m_anchors.Count() - 1].decodeTime : 0};
}

void MovSampleTable::Rollback(const Mark& mark)
{
    auto restore = [](auto& runs, int32_t count, uint32_t lastCount) {
        runs.Truncate(count);
        if (count > 0)
            runs[count - 1].count = lastCount;
    };
    m_chunks.Truncate(mark.chunks);
    restore(m_timeRuns, mark.timeRuns, mark.lastTimeRunCount);
    restore(m_offsetRuns, mark.offsetRuns, mark.lastOffsetRunCount);
    restore(m_syncRuns, mark.syncRuns, mark.lastSyncRunCount);
    m_anchors.Truncate(mark.anchors);
    if (mark.anchors > 0)
        m_anchors[mark.anchors - 1].decodeTime = mark.lastAnchorTime;
    m_sizes.Truncate(mark.sizes);
    m_dependencies.Truncate(mark.dependencies);
    m_count = mark.count;
    m_endTime = mark.endTime;
    m_constantSize = mark.constantSize;
    m_sizesVary = mark.sizesVary;
    m_hasSyncTable = mark.hasSyncTable;
    m_minOffset = mark.minOffset;
}

int MovSampleTable::BeginRun(int64_t position, uint32_t descriptionIndex)
{
    if (position < 0 || descriptionIndex == 0) {
        Log(LogLevel::Error, "MovSampleTable: run at %" PRId64 " with description %u refused\n", position,
            descriptionIndex);
        return RESULT_FORMAT_ERROR;
    }
    if (!Append(m_chunks, MovChunk{position, m_count, 0, descriptionIndex}))
        return OutOfMemory("fragment runs");
    return 0;
}

int MovSampleTable::SetEndTime(int64_t time)
{
    if (time < 0) {
        Log(LogLevel::Error, "MovSampleTable: decode time %" PRId64 " is negative\n", time);
        return RESULT_FORMAT_ERROR;
    }
    if (time == m_endTime)
        return 0;
    const int32_t last = m_anchors.Count() - 1;
    if (last >= 0 && m_anchors[last].firstSample == m_count)
        m_anchors[last].decodeTime = time;
    else if (!Append(m_anchors, Anchor{m_count, time}))
        return OutOfMemory("fragment times");
    m_endTime = time;
    return 0;
}

int MovSampleTable::AppendSamples(uint32_t count, uint32_t duration, uint32_t size, uint32_t flags,
    int32_t compositionOffset)
{
    if (count == 0)
        return 0;
    const int32_t chunk = m_chunks.Count() - 1;
    int64_t duration64 = 0;
    if (chunk < 0 || m_chunks[chunk].firstSample + m_chunks[chunk].sampleCount != m_count) {
        Log(LogLevel::Error, "MovSampleTable: samples appended outside a run\n");
        return RESULT_UNEXPECTED;
    }
    if (count > UINT32_MAX - m_count || count > uint32_t(INT32_MAX) - std::min(m_count, uint32_t(INT32_MAX))) {
        Log(LogLevel::Error, "MovSampleTable: %u more samples exceed the %u a table can hold\n", count, m_count);
        return RESULT_FORMAT_ERROR;
    }
    if (!Checked::Multiply(int64_t(count), int64_t(duration), &duration64) ||
        !Checked::Add(m_endTime, duration64, &duration64)) {
        Log(LogLevel::Error, "MovSampleTable: %u samples of duration %u overflow the decode time %" PRId64 "\n", count,
            duration, m_endTime);
        return RESULT_FORMAT_ERROR;
    }
    int result;
    if ((result = AppendSizes(count, size)) < 0 || (result = AppendTimes(count, duration)) < 0 ||
        (result = AppendOffsets(count, compositionOffset)) < 0 ||
        (result = AppendSyncs(count, !(flags & NonSyncFlag))) < 0 ||
        (result = AppendDependencies(count, uint8_t(flags >> 20))) < 0)
        return result;
    m_chunks[chunk].sampleCount += count;
    m_count += count;
    m_endTime = duration64;
    return 0;
}

int MovSampleTable::AppendSizes(uint32_t count, uint32_t size)
{
    if (!m_sizesVary) {
        if (m_count == 0)
            m_constantSize = size;
        if (size == m_constantSize)
            return 0;
        // The first size that differs: every earlier sample gets its own entry.
        if (!AppendRepeated(m_sizes, m_constantSize, m_count))
            return OutOfMemory("sample sizes");
        m_sizesVary = true;
    }
    return AppendRepeated(m_sizes, size, count) ? 0 : OutOfMemory("sample sizes");
}

int MovSampleTable::AppendTimes(uint32_t count, uint32_t duration)
{
    const int32_t last = m_timeRuns.Count() - 1;
    if (last >= 0 && m_timeRuns[last].duration == duration && m_timeRuns[last].count <= UINT32_MAX - count) {
        m_timeRuns[last].count += count;
        return 0;
    }
    return Append(m_timeRuns, TimeRun{count, duration}) ? 0 : OutOfMemory("fragment durations");
}

int MovSampleTable::AppendOffsets(uint32_t count, int32_t offset)
{
    if (m_offsetRuns.Count() == 0) {
        if (offset == 0)
            return 0;
        // Earlier samples had offset 0; runs always cover every sample.
        if (m_count > 0 && !Append(m_offsetRuns, OffsetRun{m_count, 0}))
            return OutOfMemory("composition offsets");
    }
    m_minOffset = std::min(m_minOffset, offset);
    const int32_t last = m_offsetRuns.Count() - 1;
    if (last >= 0 && m_offsetRuns[last].offset == offset && m_offsetRuns[last].count <= UINT32_MAX - count) {
        m_offsetRuns[last].count += count;
        return 0;
    }
    return Append(m_offsetRuns, OffsetRun{count, offset}) ? 0 : OutOfMemory("composition offsets");
}

int MovSampleTable::AppendSyncs(uint32_t count, bool sync)
{
    if (!m_hasSyncTable) {
        if (sync)
            return 0;
        // The first non-sync sample: every earlier one was sync.
        if (m_count > 0 && !Append(m_syncRuns, SyncRun{0, m_count}))
            return OutOfMemory("sync samples");
        m_hasSyncTable = true;
    }
    if (!sync)
        return 0;
    const int32_t last = m_syncRuns.Count() - 1;
    if (last >= 0 && m_syncRuns[last].first + m_syncRuns[last].count == m_count) {
        m_syncRuns[last].count += count;
        return 0;
    }
    return Append(m_syncRuns, SyncRun{m_count, count}) ? 0 : OutOfMemory("sync samples");
}

// Samples past the end of the array read as 0, so zeros are stored only
// when a later sample has a dependency byte.
int MovSampleTable::AppendDependencies(uint32_t count, uint8_t dependency)
{
    if (dependency == 0)
        return 0;
    if (!AppendRepeated(m_dependencies, uint8_t(0), m_count - uint32_t(m_dependencies.Count())) ||
        !AppendRepeated(m_dependencies, dependency, count))
        return OutOfMemory("dependency bytes");
    return 0;
}

// Cursor -------------------------------------------------------------------

MovSampleTable::Cursor::Cursor(const MovSampleTable& table) : m_table(&table)
{
    Seek(0);
}

void MovSampleTable::Cursor::EnterNextChunk()
{
    const MovChunk& chunk = m_table->m_chunks[++m_chunk];
    m_position = chunk.position;
    m_chunkLeft = chunk.sampleCount;
    m_descriptionIndex = chunk.descriptionIndex;
}

int MovSampleTable::Cursor::Next(MovSample& sample)
{
    const MovSampleTable& table = *m_table;
    if (m_index >= table.m_count)
        return 1;
    while (m_chunkLeft == 0) {
        if (m_chunk + 1 >= table.m_chunks.Count())
            return 1;
        EnterNextChunk();
    }
    const uint32_t size = table.m_sizesVary ? table.m_sizes[int32_t(m_index)] : table.m_constantSize;
    sample.position = m_position;
    sample.size = size;
    sample.descriptionIndex = m_descriptionIndex;
    m_position += size;
    --m_chunkLeft;

    const auto& times = table.m_timeRuns;
    while (m_timeRun < times.Count() - 1 && m_index - m_timeRunStart >= times[m_timeRun].count) {
        m_timeRunStart += times[m_timeRun].count;
        ++m_timeRun;
    }
    if (m_anchor < table.m_anchors.Count() && table.m_anchors[m_anchor].firstSample == m_index)
        m_decodeTime = table.m_anchors[m_anchor++].decodeTime;
    const uint32_t duration = times.Count() ? times[m_timeRun].duration : 0;
    sample.decodeTime = m_decodeTime;
    sample.duration = duration;
    m_decodeTime += duration;

    const auto& offsets = table.m_offsetRuns;
    while (m_offsetRun < offsets.Count() - 1 && m_index - m_offsetRunStart >= offsets[m_offsetRun].count) {
        m_offsetRunStart += offsets[m_offsetRun].count;
        ++m_offsetRun;
    }
    sample.compositionOffset = offsets.Count() ? offsets[m_offsetRun].offset : 0;

    const auto& syncs = table.m_syncRuns;
    while (m_syncRun < syncs.Count() && m_index >= syncs[m_syncRun].first + syncs[m_syncRun].count)
        ++m_syncRun;
    sample.sync = !table.m_hasSyncTable || (m_syncRun < syncs.Count() && m_index >= syncs[m_syncRun].first);
    sample.dependency = m_index < uint32_t(table.m_dependencies.Count()) ? table.m_dependencies[int32_t(m_index)] : 0;
    ++m_index;
    return 0;
}

bool MovSampleTable::Cursor::LocateChunk(uint32_t index)
{
    const auto& chunks = m_table->m_chunks;
    // The last chunk starting at or before `index`.
    int32_t low = 0, high = chunks.Count();
    while (low < high) {
        const int32_t middle = low + (high - low) / 2;
        if (chunks[middle].firstSample <= index)
            low = middle + 1;
        else
            high = middle;
    }
    m_chunk = low - 1;
    if (m_chunk < 0 || index >= m_table->m_count) {
        m_chunk = chunks.Count() - 1;
        m_chunkLeft = 0;
        return true;
    }
    const MovChunk& chunk = chunks[m_chunk];
    const uint32_t skipped = index - chunk.firstSample;
    if (skipped >= chunk.sampleCount)
        return false;
    int64_t position = chunk.position;
    if (m_table->m_sizesVary) {
        for (uint32_t i = chunk.firstSample; i < index; ++i)
            position += m_table->m_sizes[int32_t(i)];
    } else {
        position += int64_t(skipped) * m_table->m_constantSize;
    }
    m_position = position;
    m_chunkLeft = chunk.sampleCount - skipped;
    m_descriptionIndex = chunk.descriptionIndex;
    return true;
}

int MovSampleTable::Cursor::Seek(uint32_t index)
{
    const MovSampleTable& table = *m_table;
    if (index > table.m_count)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (!LocateChunk(index))
        return RESULT_ARGUMENT_OUT_OF_RANGE;

    // Decode time: from the last anchor at or before `index` (or 0 from the
    // first sample), adding the durations in between.
    const auto& anchors = table.m_anchors;
    int32_t anchor = 0;
    while (anchor < anchors.Count() && anchors[anchor].firstSample <= index)
        ++anchor;
    m_anchor = anchor;
    const uint32_t base = anchor > 0 ? anchors[anchor - 1].firstSample : 0;
    int64_t time = anchor > 0 ? anchors[anchor - 1].decodeTime : 0;
    const auto& times = table.m_timeRuns;
    uint32_t start = 0;
    int32_t run = 0;
    for (; run < times.Count(); ++run) {
        const uint32_t end = start + times[run].count;
        if (end > base && start < index)
            time += int64_t(std::min(end, index) - std::max(start, base)) * times[run].duration;
        if (end > index || run + 1 == times.Count())
            break;
        start = end;
    }
    m_timeRun = std::min(run, std::max(times.Count() - 1, 0));
    m_timeRunStart = start;
    m_decodeTime = time;

    const auto& offsets = table.m_offsetRuns;
    start = 0;
    run = 0;
    while (run + 1 < offsets.Count() && start + offsets[run].count <= index)
        start += offsets[run++].count;
    m_offsetRun = run;
    m_offsetRunStart = start;

    const auto& syncs = table.m_syncRuns;
    int32_t low = 0, high = syncs.Count();
    while (low < high) { // the first run that does not end at or before `index`
        const int32_t middle = low + (high - low) / 2;
        if (syncs[middle].first + syncs[middle].count <= index)
            low = middle + 1;
        else
            high = middle;
    }
    m_syncRun = low;
    m_index = index;
    return 0;
}

} // namespace Quorvex::Vek
