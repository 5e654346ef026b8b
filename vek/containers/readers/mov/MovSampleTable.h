#pragma once

// One track's samples as the sample table boxes describe them, kept in the
// file's compact form and expanded one sample at a time by a cursor.
//
// Storage, per kind of fact:
// - decode times: runs of (count, duration), as 'stts' stores them, plus
//   anchors where a fragment's 'tfdt' restarts the clock;
// - composition offsets: runs of (count, offset), as 'ctts' stores them;
// - sizes: one constant, or one uint32 per sample when they vary;
// - positions and description indices: one record per chunk (a fragment's
//   run is a chunk), samples of a chunk lying back to back;
// - sync samples: runs of consecutive sync samples (none kept when every
//   sample is one);
// - dependency bytes ('sdtp', or a fragment's flags): one byte per sample,
//   only when some sample has one.
// So an indexed sample costs about four bytes when sizes vary and next to
// nothing for constant-size audio, whatever the count.
//
// Counts that disagree: 'stts', 'stsz' and 'stsc' with the chunk offsets
// each imply a sample count. The table keeps the smallest of the three
// (logged when they differ), as players do: every kept sample then has a
// time, a size and a position. A shorter 'ctts' leaves the remaining
// samples at offset 0, a shorter 'sdtp' leaves their dependency byte at 0,
// and 'stss' entries past the count are ignored. An empty 'stss' is taken
// as absent (every sample is sync), as writers of all-intra streams emit.
// Zero-size samples are kept: edited files carry empty samples.
#include <cstddef>
#include <cstdint>

#include <vek/containers/readers/mov/MovBox.h>
#include <vek/core/CollectionStorage.h>
#include <vek/core/Types.h>

namespace Quorvex::Vek {

struct MovSample {
    int64_t position = 0; // file offset of the sample's first byte
    uint32_t size = 0; // bytes
    int64_t decodeTime = 0; // media time-scale units from the track's start
    uint32_t duration = 0; // media units
    int32_t compositionOffset = 0; // presentation time = decodeTime + compositionOffset
    uint32_t descriptionIndex = 1; // 1-based entry of 'stsd'
    bool sync = false; // 'stss' (all samples when there is no 'stss'), or the fragment's flags
    uint8_t dependency = 0; // the 'sdtp' byte, 0 without one
};

struct MovChunk {
    int64_t position;
    uint32_t firstSample;
    uint32_t sampleCount;
    uint32_t descriptionIndex;
};

class VEK_API MovSampleTable {
public:
    MovSampleTable() = default;
    MovSampleTable(const MovSampleTable&) = delete;
    MovSampleTable& operator=(const MovSampleTable&) = delete;

    // Reads the children of 'stbl' into an empty table. `fileSize` bounds
    // the data (INT64_MAX when unknown): samples from the first one that
    // does not lie wholly inside the file are dropped, with one log line, so
    // a cut recording keeps everything before the cut.
    // 0, RESULT_FORMAT_ERROR (logged, naming the box, the field and the
    // value) or RESULT_OUT_OF_MEMORY.
    int Read(const MovBox& stbl, int64_t fileSize);

    uint32_t GetSampleCount() const { return m_count; }
    // The decode time after the last sample, media units: the sum of the
    // durations, plus the gaps a fragment's 'tfdt' or an empty fragment
    // left.
    int64_t GetDuration() const { return m_endTime; }
    uint32_t GetChunkCount() const { return uint32_t(m_chunks.Count()); }
    // 0, or RESULT_ARGUMENT_OUT_OF_RANGE past the last chunk.
    int GetChunk(uint32_t index, MovChunk& chunk) const;
    // The size every sample has, 0 when sizes vary.
    uint32_t GetConstantSampleSize() const { return m_sizesVary ? 0 : m_constantSize; }
    // False: every sample is a sync sample.
    bool HasSyncTable() const { return m_hasSyncTable; }
    // From 'cslg' when present (bounded to [0, 2^31]), else the negation of
    // the most negative composition offset, 0 when none is negative.
    int64_t GetCompositionToDecodeShift() const;

    class VEK_API Cursor {
    public:
        explicit Cursor(const MovSampleTable& table);
        // 0 with the next sample, 1 at the end. Samples a fragment appends
        // after the end was reached come next.
        int Next(MovSample& sample);
        // 0-based index of the sample Next returns next.
        uint32_t Index() const { return m_index; }
        // Positions on sample `index` (0-based) in O(log chunks + runs):
        // 0, or RESULT_ARGUMENT_OUT_OF_RANGE past the last sample. Seeking
        // to the sample count is allowed and gives the end.
        int Seek(uint32_t index);

    private:
        void EnterNextChunk();
        bool LocateChunk(uint32_t index);

        const MovSampleTable* m_table;
        uint32_t m_index = 0;
        int32_t m_chunk = -1;
        uint32_t m_chunkLeft = 0;
        int64_t m_position = 0;
        uint32_t m_descriptionIndex = 1;
        int32_t m_timeRun = 0;
        uint32_t m_timeRunStart = 0;
        int64_t m_decodeTime = 0;
        int32_t m_offsetRun = 0;
        uint32_t m_offsetRunStart = 0;
        int32_t m_syncRun = 0;
        int32_t m_anchor = 0;
    };

    // Fragments. A traf's samples are appended through SetEndTime, BeginRun
    // and AppendSamples; Rollback undoes everything appended since a mark,
    // so a refused traf leaves the table as it was. Cursors stay valid
    // across appends; one positioned past a mark must Seek after Rollback.
    struct Mark {
        uint32_t count;
        int64_t endTime;
        int32_t chunks, timeRuns, offsetRuns, syncRuns, anchors, sizes, dependencies;
        uint32_t lastTimeRunCount, lastOffsetRunCount, lastSyncRunCount;
        uint32_t constantSize;
        bool sizesVary, hasSyncTable;
        int32_t minOffset;
        int64_t lastAnchorTime;
    };
    Mark GetMark() const;
    void Rollback(const Mark& mark);
    // Starts a run of samples stored back to back from `position`.
    // 0, or a code (logged).
    int BeginRun(int64_t position, uint32_t descriptionIndex);
    // Appends `count` samples alike to the current run (one call for a run
    // without per-sample fields, whatever its length). `flags` is the
    // fragment's sample flags word (non-sync bit 0x10000, dependency byte in
    // bits 20-27). 0, or a code (logged).
    int AppendSamples(uint32_t count, uint32_t duration, uint32_t size, uint32_t flags, int32_t compositionOffset);
    // The next sample appended decodes at `time` (a fragment's 'tfdt', or
    // the end of an empty fragment); GetDuration follows. 0, or a code.
    int SetEndTime(int64_t time);

private:
    struct TimeRun {
        uint32_t count;
        uint32_t duration;
    };
    struct OffsetRun {
        uint32_t count;
        int32_t offset;
    };
    struct SyncRun {
        uint32_t first;
        uint32_t count;
    };
    struct Anchor {
        uint32_t firstSample;
        int64_t decodeTime;
    };

    struct Boxes;
    int ReadChunkOffsets(const MovBox& box);
    int ReadSampleToChunk(const MovBox& box, uint64_t sizeCount, uint64_t& chunkedCount);
    int ReadSampleSizes(const MovBox& box, uint64_t& sizeCount);
    int ReadCompactSampleSizes(const MovBox& box, uint64_t& sizeCount);
    int ReadTimeToSample(const MovBox& box, uint64_t& timedCount);
    int ReadCompositionOffsets(const MovBox& box);
    void ReadCompositionShift(const MovBox& box);
    int ReadSyncSamples(const MovBox& box);
    int ReadDependencies(const MovBox& box);
    int KeepSamples(uint32_t count);
    int KeepSamplesInsideFile(int64_t fileSize);
    int FindFirstSampleOutside(int64_t fileSize, uint32_t& first) const;
    int ComputeEndTime();
    int AppendTimes(uint32_t count, uint32_t duration);
    int AppendOffsets(uint32_t count, int32_t offset);
    int AppendSyncs(uint32_t count, bool sync);
    int AppendDependencies(uint32_t count, uint8_t dependency);
    int AppendSizes(uint32_t count, uint32_t size);

    uint32_t m_count = 0;
    int64_t m_endTime = 0;
    Detail::GrowBuffer<MovChunk> m_chunks;
    Detail::GrowBuffer<TimeRun> m_timeRuns;
    Detail::GrowBuffer<OffsetRun> m_offsetRuns;
    Detail::GrowBuffer<SyncRun> m_syncRuns;
    Detail::GrowBuffer<Anchor> m_anchors;
    Detail::GrowBuffer<uint32_t> m_sizes;
    Detail::GrowBuffer<uint8_t> m_dependencies;
    uint32_t m_constantSize = 0;
    bool m_sizesVary = false;
    bool m_hasSyncTable = false;
    bool m_hasShiftBox = false;
    int64_t m_shiftFromBox = 0;
    int32_t m_minOffset = 0;
};

} // namespace Quorvex::Vek
