#pragma once

// The kind of every video decompressor (decoder): a coded stream in,
// uncompressed video out, registered in its own inventory under its
// FilterType code (upper case). A decoder may hold several outputs for one
// input (reordering, or frames made of several packets); Decompress says
// so with MoreOutputSamplesReady.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/filters/FrameRequests.h>

namespace Quorvex::Vek {

class VEK_API CVideoDecompressor : public CVideoFilter {
public:
    enum : uint32_t { Type = Four("vdec") };
    using ComponentKind = CVideoDecompressor;
    static constexpr uint32_t MoreOutputSamplesReady = 0x80000000u;

    // Writes `input` (null: end of input) and reads one decoded sample:
    // 0 with one in `output`, 1 without, or the failure. `flags` gets
    // MoreOutputSamplesReady when more decoded samples wait; read them with
    // Decompress(null, ...) only at the end of input, else with ReadSample.
    virtual int Decompress(CVideoSample* input, CVideoSample*& output, uint32_t& flags);

    // Decodes the next written picture as a key frame even when it is not
    // marked as one (a restart after a seek).
    virtual int ForceKeyFrame();
    // Marks the next pictures as the second of a pair, or not.
    virtual int SecondFrameInPair(bool second);
    bool IsSecondFrameInPair() const { return m_requests.IsSecondFrameInPair(); }

protected:
    explicit CVideoDecompressor(uint32_t type);
    ~CVideoDecompressor() override;

    // True once after ForceKeyFrame.
    bool TakeForceKeyFrame() { return m_requests.TakeForceKeyFrame(); }

private:
    FrameRequests m_requests;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CVideoDecompressor);
