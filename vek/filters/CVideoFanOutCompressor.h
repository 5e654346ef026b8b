#pragma once

// The kind of every fan-out compressor: one picture stream in, one coded
// stream per added variant out (an adaptive-streaming ladder coded in one
// pass), registered in its own inventory under its FilterType code.
//
// Begin hands every variant the compressor's input description and begins
// it; End ends them. A concrete compressor codes each written picture for
// every variant and delivers the results with DeliverToVariant; the host
// reads them per variant with GetVariantSample.
#include <vek/components/CComponentInventory.h>
#include <vek/core/CList.h>
#include <vek/filters/CCompressorVariant.h>

namespace Quorvex::Vek {

class VEK_API CVideoFanOutCompressor : public CVideoFilter {
public:
    enum : uint32_t { Type = Four("vfoc") };
    using ComponentKind = CVideoFanOutCompressor;

    // Adds a rendition (shared). -19004 for null, -19002.
    virtual int AddVariant(CCompressorVariant* variant);
    int32_t GetVariantCount();
    // Borrowed; null outside 0..count-1.
    CCompressorVariant* GetVariant(int32_t index);
    // The oldest coded picture of variant `index` (a new reference): 0 with
    // one, 1 without, -19007 for a bad index.
    virtual int GetVariantSample(int32_t index, CVideoSample*& sample);
    // Coded pictures waiting in variant `index`; -19007 for a bad index.
    virtual int32_t GetVariantSampleCount(int32_t index);

protected:
    explicit CVideoFanOutCompressor(uint32_t type);
    ~CVideoFanOutCompressor() override;

    int CoreBegin() override;
    int CoreEnd() override;
    // Queues a coded picture on variant `index`. -19007 for a bad index.
    int DeliverToVariant(int32_t index, CVideoSample* sample);

private:
    RObject<CList<CCompressorVariant>> m_variants;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CVideoFanOutCompressor);
