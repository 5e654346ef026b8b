#pragma once

// The kind of every video compressor (encoder): uncompressed video in,
// a coded stream out, registered in its own inventory under its
// FilterType code (lower case). A concrete compressor provides the core
// sample operations and its format lists.
#include <vek/components/CComponentInventory.h>
#include <vek/filters/CVideoFilter.h>
#include <vek/filters/FrameRequests.h>

namespace Quorvex::Vek {

class VEK_API CVideoCompressor : public CVideoFilter {
public:
    enum : uint32_t { Type = Four("vcmp") };
    using ComponentKind = CVideoCompressor;

    // Writes `input` (null: end of input) and reads one coded sample:
    // 0 with one in `output`, 1 without, or the failure.
    virtual int Compress(CVideoSample* input, CVideoSample*& output);

    // Makes the next written picture a key frame (one that needs no other
    // to decode). Concrete compressors consume it with TakeForceKeyFrame.
    virtual int ForceKeyFrame();
    // Marks the next pictures as the second of a pair (the second field of
    // a frame coded as fields, the second view of a stereo pair) or not.
    virtual int SecondFrameInPair(bool second);
    bool IsSecondFrameInPair() const { return m_requests.IsSecondFrameInPair(); }

protected:
    explicit CVideoCompressor(uint32_t type);
    ~CVideoCompressor() override;

    // True once after ForceKeyFrame: the compressor codes a key frame.
    bool TakeForceKeyFrame() { return m_requests.TakeForceKeyFrame(); }

private:
    FrameRequests m_requests;
};

} // namespace Quorvex::Vek

VEK_DECLARE_COMPONENT_INVENTORY(VEK_API, ::Quorvex::Vek::CVideoCompressor);
