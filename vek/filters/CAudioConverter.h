#pragma once

// The kind of every audio converter: one audio layout in, another out,
// registered in its own inventory under its FilterType code.
//
// A converter provides the protected Convert(input, output): one step that
// takes an input sample (null: nothing more is coming) and hands back an
// output sample or none. WriteSample runs one step and queues what it made;
// the drain runs steps with no input until one makes nothing. The public
// Convert is the same step for hosts that drive the converter without the
// queue. A derived class that overrides the protected form adds
// `using CAudioConverter::Convert;` to keep the public one visible.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CAudioFilter.h>

namespace Quorvex::Vek {

class VEK_API CAudioConverter : public CAudioFilter {
public:
    enum : uint32_t { Type = Four("acnv") };
    using ComponentKind = CAudioConverter;
    // Set in `flags` when output is still waiting to be read.
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;

    // One step: `output` gets a new reference or null; `flags` gets
    // MoreOutputSamplesReady when finished samples are still queued.
    virtual int Convert(CAudioSample* input, CAudioSample*& output, uint32_t& flags);

protected:
    explicit CAudioConverter(uint32_t type);
    ~CAudioConverter() override;

    // The concrete conversion; -19005 here.
    virtual int Convert(CAudioSample* input, CAudioSample*& output);
    // One step; its output queued. 1 when the input made no output.
    int CoreWriteSample(CAudioSample* sample) override;
    // Steps without input, queueing each output, until one makes none.
    void Drain() override;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CAudioConverter);
