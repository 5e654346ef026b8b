#include <vek/filters/audio/AudioChannelMap.h>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

int AudioChannelMap::CheckCount(const char* side, int32_t channels)
{
    if (channels >= 1 && channels <= CAudioProperties::MaxChannels)
        return RESULT_OK;
    Log(LogLevel::Error, "AudioChannelMap::Build: %s channels %d is outside 1..%d\n", side, int(channels),
        int(CAudioProperties::MaxChannels));
    return RESULT_ARGUMENT_OUT_OF_RANGE;
}

int AudioChannelMap::BuildByIndex(int32_t inputChannels, int32_t outputChannels)
{
    int result;
    if ((result = CheckCount("input", inputChannels)) < 0 || (result = CheckCount("output", outputChannels)) < 0)
        return result;
    m_inputChannels = inputChannels;
    m_outputChannels = outputChannels;
    for (int32_t channel = 0; channel < outputChannels; ++channel)
        m_sources[channel] = channel < inputChannels ? int16_t(channel) : Silent;
    return RESULT_OK;
}

int AudioChannelMap::Build(const CAudioProperties* input, const CAudioProperties* output)
{
    if (!input || !output)
        return RESULT_ARGUMENT_NULL;
    const int result = BuildByIndex(input->GetChannels(), output->GetChannels());
    if (result < 0)
        return result;
    if (HasEveryPosition(input) && HasEveryPosition(output))
        PairByPosition(input, output);
    return RESULT_OK;
}

bool AudioChannelMap::HasEveryPosition(const CAudioProperties* properties)
{
    for (int32_t channel = 0; channel < properties->GetChannels(); ++channel) {
        uint32_t position = CAudioProperties::SpeakerUnknown;
        if (properties->GetSpeakerPosition(channel, position) < 0 || position == CAudioProperties::SpeakerUnknown)
            return false;
    }
    return true;
}

void AudioChannelMap::PairByPosition(const CAudioProperties* input, const CAudioProperties* output)
{
    for (int32_t out = 0; out < m_outputChannels; ++out) {
        uint32_t wanted = CAudioProperties::SpeakerUnknown;
        output->GetSpeakerPosition(out, wanted);
        m_sources[out] = Silent;
        for (int32_t in = 0; in < m_inputChannels; ++in) {
            uint32_t position = CAudioProperties::SpeakerUnknown;
            input->GetSpeakerPosition(in, position);
            if (position == wanted) {
                m_sources[out] = int16_t(in);
                break;
            }
        }
    }
}

bool AudioChannelMap::IsIdentity() const
{
    if (m_inputChannels != m_outputChannels)
        return false;
    for (int32_t channel = 0; channel < m_outputChannels; ++channel)
        if (m_sources[channel] != channel)
            return false;
    return true;
}

} // namespace Quorvex::Vek
