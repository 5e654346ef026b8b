#pragma once

// Description of an audio medium: sample rate, channel count and layout,
// sample and packet geometry and bit rate, on top of the common media facts.
// Zero means "not known" for every fact.
//
// A frame holds one sample of every channel; a packet holds one or more
// frames (one for PCM, a codec's frame count otherwise).
#include <vek/media/CMediaProperties.h>

namespace Quorvex::Vek {

class VEK_API CAudioProperties : public CMediaProperties {
public:
    enum : uint32_t { Type = Four("soun") };
    // More channels than any known layout; a bound on what a file may ask for.
    static constexpr int32_t MaxChannels = 1024;

    // Speaker positions: the bit numbers of the WAVE channel mask plus one,
    // so that 0 stays "unknown".
    enum SpeakerPosition : uint32_t {
        SpeakerUnknown = 0,
        SpeakerFrontLeft = 1,
        SpeakerFrontRight = 2,
        SpeakerFrontCenter = 3,
        SpeakerLowFrequency = 4,
        SpeakerBackLeft = 5,
        SpeakerBackRight = 6,
        SpeakerFrontLeftOfCenter = 7,
        SpeakerFrontRightOfCenter = 8,
        SpeakerBackCenter = 9,
        SpeakerSideLeft = 10,
        SpeakerSideRight = 11,
        SpeakerTopCenter = 12,
        SpeakerTopFrontLeft = 13,
        SpeakerTopFrontCenter = 14,
        SpeakerTopFrontRight = 15,
        SpeakerTopBackLeft = 16,
        SpeakerTopBackCenter = 17,
        SpeakerTopBackRight = 18,
    };

    // The described audio keys, common media keys included; ends with a null key.
    static const Accessor Accessors[];

    CAudioProperties();
    CMediaProperties* Clone() const override;

    // Frames per second; -19003 when negative.
    int32_t GetSampleRate() const { return m_sampleRate; }
    int SetSampleRate(int32_t framesPerSecond);

    // Changing the count keeps the positions of the channels that remain and
    // gives new channels SpeakerUnknown. -19003 outside 0..MaxChannels,
    // -19002 without memory; nothing changes on failure.
    int32_t GetChannels() const { return m_channels; }
    int SetChannels(int32_t channels);

    // -19007 for a channel outside 0..channels-1.
    int GetSpeakerPosition(int32_t channel, uint32_t& position) const;
    int SetSpeakerPosition(int32_t channel, uint32_t position);
    // Sets the channel count to the number of bits in a WAVE channel mask
    // and gives the channels the masked positions in ascending bit order.
    int SetSpeakerPositionsFromMask(uint32_t channelMask);

    // The geometry setters take any value from 0 up; -19003 when negative.
    int32_t GetBitsPerSample() const { return m_bitsPerSample; }
    int SetBitsPerSample(int32_t bits);
    int32_t GetBytesPerFrame() const { return m_bytesPerFrame; }
    int SetBytesPerFrame(int32_t bytes);
    int32_t GetFramesPerPacket() const { return m_framesPerPacket; }
    int SetFramesPerPacket(int32_t frames);
    int32_t GetBytesPerPacket() const { return m_bytesPerPacket; }
    int SetBytesPerPacket(int32_t bytes);
    int64_t GetBitRate() const { return m_bitRate; }
    int SetBitRate(int64_t bitsPerSecond);

protected:
    CAudioProperties(const CAudioProperties& other);
    ~CAudioProperties() override;

    const Accessor* GetPropertyAccessors() const override;

private:
    int32_t m_sampleRate = 0;
    int32_t m_channels = 0;
    uint32_t* m_speakers = nullptr; // one position per channel
    int32_t m_bitsPerSample = 0;
    int32_t m_bytesPerFrame = 0;
    int32_t m_framesPerPacket = 0;
    int32_t m_bytesPerPacket = 0;
    int64_t m_bitRate = 0;
};

} // namespace Quorvex::Vek
