#pragma once

// One subtitle event: a media sample that is shown for its duration.
#include <vek/samples/CMediaSample.h>

namespace Quorvex::Vek {

class VEK_API CSubtitleSample : public CMediaSample {
public:
    enum : uint32_t { Type = Four("ssmp") };

    // A sample from the shared subtitle pool (one reference); null without memory.
    static CSubtitleSample* Create();
    // Outside any pool until a pool hands it out.
    CSubtitleSample();

    int SetDuration(int32_t duration)
    {
        m_duration = duration;
        return RESULT_OK;
    }
    int64_t GetDuration() const override { return m_duration; }

protected:
    ~CSubtitleSample() override;
    void ReclaimCleanUp() override;

private:
    int32_t m_duration = 0;
};

} // namespace Quorvex::Vek
