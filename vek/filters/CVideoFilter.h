#pragma once

// The base of every filter with video input and output. Beyond the life
// cycle of CFilter it owns:
//
// - the output queue of finished pictures, which its CoreReadSample serves
//   oldest first (a concrete filter fills it with EnqueueOutputSample);
// - the metadata queue that carries each input picture's timing, hints and
//   metadata to the output picture made from it, through reordering
//   (SplitAndEnqueueSampleMetadata, DequeueAndMergeSampleMetadata; see
//   VideoMetadataQueue), or directly for one-to-one filters
//   (CopySampleMetadata);
// - optionally a static configuration table: when GetConfigurationTable
//   returns one, the format lists and Evaluate come from it. The input
//   list holds the input format of every entry whose output half matches
//   the current output description, the output list the output format of
//   every entry whose input half matches the input description (zero
//   formats skipped, each format once, table order kept); so each list
//   narrows once the other side is chosen. A side not yet described reads
//   as all zero, which no entry with a format matches.
//
// Both queues take their own monitor around every push and pop, so a
// sample may be queued by one thread while another reads.
#include <vek/core/CPoolBase.h>
#include <vek/filters/CFilter.h>
#include <vek/filters/LazilyMadeObject.h>
#include <vek/filters/OutputSampleQueue.h>
#include <vek/filters/VideoConfiguration.h>
#include <vek/filters/VideoMetadataQueue.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CPixelDataReference.h>

namespace Quorvex::Vek {

using CVideoFilterContext = CFilterContext<CVideoSample, CVideoProperties>;

class VEK_API CVideoFilter : public CFilter<CVideoFilterContext, CVideoFilterContext> {
public:
    using ConfigurationHalf = VideoConfigurationHalf;
    using ConfigurationMap = VideoConfigurationMap;

    FormatList* GetInputFormats() override;
    FormatList* GetOutputFormats() override;
    // 0 for null. With a configuration table: AcceptScore when an entry's
    // input half matches. Without: AcceptScore when the format, else its
    // canonical, else its categorical format is among the inputs.
    int Evaluate(const CVideoProperties* properties) override;
    // Clears the draining flag, the output queue and the metadata queue.
    int Flush() override;

    // A new picture (one reference) sized for the output description, from
    // the filter's own pool. `index` chooses the output of filters with
    // several; 0 is the only one here (-19007 otherwise).
    virtual int GetOutputSample(int32_t index, CVideoSample*& sample);
    virtual int GetOutputSample(CVideoSample*& sample);
    // Remembers the input picture's facts under a new key (in *key).
    virtual int SplitAndEnqueueSampleMetadata(CVideoSample* sample, int32_t* key);
    // Writes the facts kept under `key` onto `output`. -19004 for null,
    // -19015 for an unknown key.
    virtual int DequeueAndMergeSampleMetadata(CVideoSample* output, int32_t key);
    // For one-output-per-input filters: original, metadata (a copy), frame
    // number, picture type and structure, hint, trim, time, duration,
    // composition offset and the property bag. -19004 for null.
    virtual int CopySampleMetadata(CVideoSample* to, CVideoSample* from);
    // The filter's static table, ending with an entry of two zero formats;
    // null (the default) when the filter has none.
    virtual const ConfigurationMap* GetConfigurationTable();

    // A picture from `pool` (or the shared video pool when null) with a
    // linear buffer of `size` bytes, or of one frame of `properties`.
    // -19004 for null properties, -19017/-19003 as GetVideoFrameLayout,
    // -19002.
    static int GetVideoSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties,
                                      CVideoSample*& sample);
    static int GetVideoSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties, int32_t size,
                                      CVideoSample*& sample);
    // The same, the picture painted black.
    static int GetBlackSampleFromPool(CPool<CVideoSample>* pool, const CVideoProperties* properties,
                                      CVideoSample*& sample);
    // A pixel reference over a new zeroed buffer holding one frame of
    // `properties` with tight rows, its planes one after the other in
    // stored order (CPlanarPixelDataReference), or a linear reference of
    // `size` bytes.
    static int CreateDataReference(const CVideoProperties* properties, CPixelDataReference*& reference);
    static int CreateDataReference(const CVideoProperties* properties, int32_t size, CLinearDataReference*& reference);
    // A scratch array for one frame of `properties`.
    static int CreateIntermediateBuffer(const CVideoProperties* properties, CByteArray*& buffer);
    // Splits a contiguous planar buffer: plane 0 at `data` with stride
    // `rowBytes`; the second stored plane after height x rowBytes, the third
    // after a further chroma stride x chroma height. Plane 1 is always U
    // (Cb) and plane 2 V (Cr): for V-first formats the two are exchanged.
    // Chroma stride and height per format: I420, YV12: rowBytes/2, height/2;
    // I422, YV16: rowBytes/2, height; I444, YV24: rowBytes, height; I411,
    // Y41B: rowBytes/4, height; I410, YVU9: rowBytes/4, height/4; NV12, NV21:
    // rowBytes, height/2 (plane 1 holds the interleaved chroma, plane 2 is
    // computed alike and unused). YV12, YV16, YV24, Y41B and YVU9 are V
    // first. Divisions are arithmetic shifts. -19017, logged, for other
    // formats; -19004 for null data.
    static int GetSamplePlanes(unsigned char* data, uint32_t format, int32_t rowBytes, int32_t height,
                               unsigned char* planes[3], int32_t strides[3]);

protected:
    explicit CVideoFilter(uint32_t type);
    ~CVideoFilter() override;

    int CoreReadSample(CVideoSample*& sample) override;
    // Queues a finished picture (shared). -19004 for null, -19011 past the
    // capacity, -19002.
    int EnqueueOutputSample(CVideoSample* sample);
    int32_t GetPendingOutputSamples();
    // Bounds for the concrete filter, before its first sample: the output
    // queue (0: unbounded) and the metadata ring (see VideoMetadataQueue).
    void SetOutputQueueCapacity(int32_t capacity) { m_outputQueue.SetCapacity(capacity); }
    void SetMetadataRingCapacity(int32_t capacity) { m_metadataRingCapacity = capacity; }

private:
    FormatList* FormatsFromTable(bool inputs);

    OutputSampleQueue<CVideoSample> m_outputQueue;
    LazilyMadeObject<VideoMetadataQueue> m_metadataQueue;
    RObject<CPool<CVideoSample>> m_samplePool;
    int32_t m_metadataRingCapacity = VideoMetadataQueue::DefaultRingCapacity;
};

} // namespace Quorvex::Vek
