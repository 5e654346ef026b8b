#pragma once

// Which input channel feeds each output channel of a conversion. Nothing is
// mixed: every output channel is one input channel or silence.
//
// When both sides give a speaker position for every channel, an output
// channel takes the first input channel at its position, and is silent when
// the input has no channel there. Otherwise channels pair by index: output
// channel i takes input channel i for i below both counts, extra input
// channels are dropped and extra output channels are silent.
//
// The map is held inline (no allocation), so building one cannot fail for
// lack of memory.
#include <vek/core/Types.h>
#include <vek/media/CAudioProperties.h>

namespace Quorvex::Vek {

class VEK_API AudioChannelMap {
public:
    static constexpr int16_t Silent = -1;

    // Pairs by position or by index as described above. -19004 for a null
    // argument, -19003 (with a log line) for a channel count outside
    // 1..CAudioProperties::MaxChannels; the map is unchanged on failure.
    int Build(const CAudioProperties* input, const CAudioProperties* output);
    // Pairs by index.
    int BuildByIndex(int32_t inputChannels, int32_t outputChannels);

    int32_t GetInputChannels() const { return m_inputChannels; }
    int32_t GetOutputChannels() const { return m_outputChannels; }
    // The input channel of each output channel, or Silent.
    const int16_t* GetSources() const { return m_sources; }
    // Same count on both sides and channel i from channel i.
    bool IsIdentity() const;

private:
    static int CheckCount(const char* side, int32_t channels);
    static bool HasEveryPosition(const CAudioProperties* properties);
    void PairByPosition(const CAudioProperties* input, const CAudioProperties* output);

    int32_t m_inputChannels = 0;
    int32_t m_outputChannels = 0;
    int16_t m_sources[CAudioProperties::MaxChannels] = {};
};

} // namespace Quorvex::Vek
