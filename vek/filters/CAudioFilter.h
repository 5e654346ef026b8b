#pragma once

// The base of every filter with audio input and output. Beyond the life
// cycle of CFilter it owns the output queue of finished samples, served
// oldest first by its CoreReadSample, and the metadata queue that carries
// time, hint, trim and metadata from input buffers to the output made from
// them (AudioMetadataQueue: one output spanning several inputs gets the
// time of the first and the metadata of all).
//
// Both queues take their own monitor around every push and pop.
#include <vek/core/CPoolBase.h>
#include <vek/filters/AudioMetadataQueue.h>
#include <vek/filters/CFilter.h>
#include <vek/filters/LazilyMadeObject.h>
#include <vek/filters/OutputSampleQueue.h>
#include <vek/media/CAudioProperties.h>
#include <vek/samples/CLinearDataReference.h>

namespace Quorvex::Vek {

using CAudioFilterContext = CFilterContext<CAudioSample, CAudioProperties>;

class VEK_API CAudioFilter : public CFilter<CAudioFilterContext, CAudioFilterContext> {
public:
    // 0 for null; AcceptScore when the format, else its canonical, else its
    // categorical format is among the inputs.
    int Evaluate(const CAudioProperties* properties) override;
    // Clears the draining flag and both queues.
    int Flush() override;

    // A new sample (one reference) from the filter's own pool with a linear
    // buffer of `packets` x `bytesPerPacket` bytes and `framesPerPacket`
    // frames in each packet; the second form has one frame per packet (PCM).
    // -19003 for negative dimensions or more than 2^31 - 1 bytes, -19002.
    virtual int GetOutputSample(int32_t packets, int32_t framesPerPacket, int32_t bytesPerPacket,
                                CAudioSample*& sample);
    virtual int GetOutputSample(int32_t frames, int32_t bytesPerFrame, CAudioSample*& sample);
    // Remembers an input buffer's time, hint, trim and metadata. -19004.
    virtual int EnqueueSampleMetadata(CAudioSample* sample);
    // Gives `output` what was remembered since the last call (see
    // AudioMetadataQueue::Dequeue): 1 when nothing was, -19001 for null.
    virtual int DequeueSampleMetadata(CAudioSample* output);
    // Original, metadata (a copy), hint, trim, time and the property bag.
    // -19004 for null.
    virtual int CopySampleMetadata(CAudioSample* to, CAudioSample* from);

    // A sample from `pool` (the shared audio pool when null) with a linear
    // buffer, as GetOutputSample.
    static int GetAudioSampleFromPool(CPool<CAudioSample>* pool, int32_t packets, int32_t framesPerPacket,
                                      int32_t bytesPerPacket, CAudioSample*& sample);
    static int GetAudioSampleFromPool(CPool<CAudioSample>* pool, int32_t frames, int32_t bytesPerFrame,
                                      CAudioSample*& sample);
    // `frames` frames of silence in the PCM layout of `properties` (zero for
    // signed and float layouts, the mid value for unsigned ones, the
    // companded zero for A-law and mu-law). -19004 for null properties,
    // -19017 for a layout without a known silence, -19003, -19002.
    static int GetSilentSampleFromPool(CPool<CAudioSample>* pool, const CAudioProperties* properties, int32_t frames,
                                       CAudioSample*& sample);

protected:
    explicit CAudioFilter(uint32_t type);
    ~CAudioFilter() override;

    int CoreReadSample(CAudioSample*& sample) override;
    // Queues a finished sample (shared). -19004, -19011 past the capacity,
    // -19002.
    int EnqueueOutputSample(CAudioSample* sample);
    int32_t GetPendingOutputSamples();
    // The output queue's bound (0: unbounded), set before the first sample.
    void SetOutputQueueCapacity(int32_t capacity) { m_outputQueue.SetCapacity(capacity); }

private:

    OutputSampleQueue<CAudioSample> m_outputQueue;
    LazilyMadeObject<AudioMetadataQueue> m_metadataQueue;
    RObject<CPool<CAudioSample>> m_samplePool;
};

} // namespace Quorvex::Vek
