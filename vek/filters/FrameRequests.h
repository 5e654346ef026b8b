#pragma once

// Requests a host makes of a video codec filter about the coming pictures:
// code or decode the next one as a key frame (a compressor starts a new
// group of pictures; a decompressor restarts decoding there, as after a
// seek), and whether the pictures are the second of a pair (the second
// field of a frame coded as fields, the second view of a stereo pair).
namespace Quorvex::Vek {

class FrameRequests {
public:
    void ForceKeyFrame() { m_forceKeyFrame = true; }
    // True once after ForceKeyFrame.
    bool TakeForceKeyFrame()
    {
        const bool forced = m_forceKeyFrame;
        m_forceKeyFrame = false;
        return forced;
    }
    void SetSecondFrameInPair(bool second) { m_secondFrameInPair = second; }
    bool IsSecondFrameInPair() const { return m_secondFrameInPair; }
    void Reset() { *this = FrameRequests(); }

private:
    bool m_forceKeyFrame = false;
    bool m_secondFrameInPair = false;
};

} // namespace Quorvex::Vek
