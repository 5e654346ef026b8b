#pragma once

// The kind of every audio compressor (encoder): uncompressed audio in,
// a coded stream out, registered in its own inventory under its
// FilterType code (lower case). A concrete compressor provides the core
// sample operations and its format lists.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CAudioFilter.h>

namespace Quorvex::Vek {

class VEK_API CAudioCompressor : public CAudioFilter {
public:
    enum : uint32_t { Type = Four("acmp") };
    using ComponentKind = CAudioCompressor;

    // Writes `input` (null: end of input) and reads one coded sample:
    // 0 with one in `output`, 1 without, or the failure.
    virtual int Compress(CAudioSample* input, CAudioSample*& output);

protected:
    explicit CAudioCompressor(uint32_t type);
    ~CAudioCompressor() override;

};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CAudioCompressor);
