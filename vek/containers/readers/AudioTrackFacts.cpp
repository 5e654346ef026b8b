#include <vek/containers/readers/AudioTrackFacts.h>

#include <bit>

namespace Quorvex::Vek::AudioTrackFacts {

int SetCodedGeometry(CAudioProperties* audio, int32_t sampleRate, int32_t framesPerPacket)
{
    if (!audio)
        return RESULT_ARGUMENT_NULL;
    if (sampleRate <= 0 || framesPerPacket <= 0)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    int result;
    if ((result = audio->SetSampleRate(sampleRate)) < 0 || (result = audio->SetTimeScale(sampleRate)) < 0 ||
        (result = audio->SetFramesPerPacket(framesPerPacket)) < 0 || (result = audio->SetBitsPerSample(0)) < 0 ||
        (result = audio->SetBytesPerFrame(0)) < 0 || (result = audio->SetBytesPerPacket(0)) < 0)
        return result;
    return RESULT_OK;
}

int SetChannels(CAudioProperties* audio, int32_t channels, uint32_t mask)
{
    if (!audio)
        return RESULT_ARGUMENT_NULL;
    if (mask != 0 && std::popcount(mask) == channels)
        return audio->SetSpeakerPositionsFromMask(mask);
    return audio->SetChannels(channels);
}

} // namespace Quorvex::Vek::AudioTrackFacts
