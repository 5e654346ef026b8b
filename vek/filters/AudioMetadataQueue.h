#pragma once

// What an audio filter remembers of its input buffers until output is made
// from them: time, hint, trim and metadata of each, in arrival order.
//
// Audio filters regroup frames freely, so one output sample may span
// several input buffers: Dequeue hands it the time, hint and trim of the
// oldest buffer and the metadata of all of them merged in arrival order.
//
// Every member takes the queue's monitor.
#include <vek/core/CQueue.h>
#include <vek/core/RObject.h>
#include <vek/samples/CAudioSample.h>

namespace Quorvex::Vek {

class VEK_API AudioMetadataQueue : public CObject {
public:
    enum : uint32_t { Type = Four("amdq") };

    // Null without memory.
    static AudioMetadataQueue* Create();

    // Records `sample`'s time, hint, trim and metadata (shared: it is copied
    // before anything is merged into it). -19004 for null, -19002.
    int Enqueue(CAudioSample* sample);
    // 1 when nothing is queued. Otherwise takes every record and sets on
    // `output` the trim, time and hint of the oldest and the metadata of all
    // (the first non-empty one copied, each later one merged into the copy).
    // -19001 for null, -19002 without memory for the copy.
    int Dequeue(CAudioSample* output);
    void Clear();
    int32_t GetCount();

protected:
    AudioMetadataQueue();
    ~AudioMetadataQueue() override;

private:
    struct Record {
        int64_t time = 0;
        int32_t hint = 0;
        int32_t trim = 0;
        RObject<CMetadata> metadata;
    };

    int MergeInto(RObject<CMetadata>& merged, CMetadata* next);

    RObject<CQueue<Record>> m_records;
};

} // namespace Quorvex::Vek
