#pragma once

// The kind of every audio decompressor (decoder): a coded stream in,
// uncompressed audio out, registered in its own inventory under its
// FilterType code (upper case). A decoder may hold several outputs for one
// input (reordering, or frames made of several packets); Decompress says
// so with MoreOutputSamplesReady.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CAudioFilter.h>

namespace Quorvex::Vek {

class VEK_API CAudioDecompressor : public CAudioFilter {
public:
    enum : uint32_t { Type = Four("adec") };
    using ComponentKind = CAudioDecompressor;
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;

    // Writes `input` (null: end of input) and reads one decoded sample:
    // 0 with one in `output`, 1 without, or the failure. `flags` gets
    // MoreOutputSamplesReady when more decoded samples wait; read them with
    // Decompress(null, ...) only at the end of input, else with ReadSample.
    virtual int Decompress(CAudioSample* input, CAudioSample*& output, uint32_t& flags);

protected:
    explicit CAudioDecompressor(uint32_t type);
    ~CAudioDecompressor() override;

};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CAudioDecompressor);
