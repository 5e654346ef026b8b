#pragma once

// What a video filter remembers of each input picture until the output
// picture made from it leaves: a keyed index of per-frame records and a
// first-in first-out ring of metadata parts.
//
// Each input's metadata is split in two (CMetadata::Split): the part with
// only frame-bound elements stays in the frame's record, the part that also
// holds the ordered elements (captions, ancillary packets) goes to the ring.
// The record follows its frame through any reordering; the ring hands its
// parts out strictly in arrival order, one per output picture, so ordered
// metadata leaves in the order it came even when pictures do not.
//
// Every member takes the queue's monitor, so one thread may enqueue while
// another dequeues.
#include <vek/core/CQueue.h>
#include <vek/core/RObject.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {

class VEK_API VideoMetadataQueue : public CObject {
public:
    enum : uint32_t { Type = Four("vmdq") };
    static constexpr int32_t DefaultRingCapacity = 64;

    // A new queue whose ring holds at most `ringCapacity` parts (at least
    // 1); null without memory.
    static VideoMetadataQueue* Create(int32_t ringCapacity = DefaultRingCapacity);

    // Records `sample` (a copy of its metadata, an empty one when it has
    // none) under the next key, returned in `key`. A full ring drops the
    // sample's ring part without an error. -19004 for null, -19002.
    int Enqueue(CVideoSample* sample, int32_t& key);
    // Takes the record of `key` and the oldest ring part (merged into the
    // record's metadata) and writes them onto `output`: original, metadata,
    // frame number, picture type and structure, hint, trim, time, duration,
    // composition offset. -19004 for null, -19015 for a key with no record.
    int DequeueAndMerge(CVideoSample* output, int32_t key);
    // Forgets every record and part; keys start again from 1.
    void Clear();

    int32_t GetRecordCount();
    int32_t GetRingCount();

protected:
    VideoMetadataQueue();
    ~VideoMetadataQueue() override;

private:
    struct Record {
        int32_t key = 0;
        RObject<CMetadata> metadata;
        RObject<const CMediaSample> original;
        int64_t time = 0;
        int32_t duration = 0;
        int32_t hint = 0;
        int32_t trim = 0;
        int32_t compositionOffset = 0;
        int32_t frameNumber = 0;
        int32_t pictureType = 0;
        int32_t pictureStructure = 0;
    };

    static Record Capture(CVideoSample* sample);
    static void Apply(const Record& record, CVideoSample* output);
    int32_t FindRecord(int32_t key) const;
    int MergeRingPart(Record& record);

    Detail::GrowBuffer<Record> m_records;
    RObject<CQueue<CMetadata>> m_ring;
    int32_t m_lastKey = 0;
};

} // namespace Quorvex::Vek
