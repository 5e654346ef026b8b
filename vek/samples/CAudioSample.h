#pragma once

// A run of audio: `packets` packets of `frames` audio frames each. The
// duration, in frames, is their product.
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

class VEK_API CAudioSample : public CMediaSample {
public:
    enum : uint32_t { Type = Four("asmp") };

    // A sample from the shared audio pool (one reference); null without memory.
    static CAudioSample* Create();
    // Outside any pool until a pool hands it out.
    CAudioSample();
    CAudioSample(int32_t packets, int32_t frames);

    int SetPackets(int32_t packets)
    {
        m_packets = packets;
        return RESULT_OK;
    }
    int32_t GetPackets() const { return m_packets; }
    int SetFrames(int32_t frames)
    {
        m_frames = frames;
        return RESULT_OK;
    }
    int32_t GetFrames() const { return m_frames; }
    // packets x frames, exact in 64 bits.
    int64_t GetDuration() const override { return int64_t(m_packets) * m_frames; }

protected:
    ~CAudioSample() override;
    void ReclaimCleanUp() override;

private:
    int32_t m_packets = 0;
    int32_t m_frames = 0;
};

} // namespace Quorvex::Vek
