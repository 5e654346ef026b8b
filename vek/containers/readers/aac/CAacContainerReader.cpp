#include <vek/containers/readers/aac/CAacContainerReader.h>

#include <vek/containers/readers/AudioTrackFacts.h>
#include <vek/core/Log.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>

namespace Quorvex::Vek {

CAacContainerReader::CAacContainerReader() : CAacContainerReader(0) {}

CAacContainerReader::CAacContainerReader(unsigned int flags) : CAudioFrameFileReader(Type, flags) {}

CAacContainerReader::~CAacContainerReader() = default;

int CAacContainerReader::SetDecoderConfiguration(const AacAudioSpecificConfig& config)
{
    uint8_t written[AacAudioSpecificConfig::MaxWrittenBytes];
    size_t length = 0;
    const int result = config.Write(written, sizeof written, length);
    if (result < 0) {
        // The frames still decode; only an MP4 writer misses the configuration.
        Log(LogLevel::Warning, "CAacContainerReader::BeginIndex: object type %u gives no AudioSpecificConfig (%s)\n",
            unsigned(config.objectType), GetResultName(result));
        return RESULT_OK;
    }
    return GetAudio()->SetProperty(AudioProperty::DecoderConfiguration, int32_t(length), written);
}

int CAacContainerReader::DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                                        bool& holdsNoAudio)
{
    holdsNoAudio = false;
    AdtsHeader header;
    int result = AdtsHeader::Parse(bytes, size_t(available), header);
    if (result < 0)
        return result;
    const AacAudioSpecificConfig config = header.ToAudioSpecificConfig();
    CAudioProperties* audio = GetAudio();
    audio->SetFormat(AudioFormat::ADTS);
    const uint8_t objectType = config.objectType;
    if ((result = AudioTrackFacts::SetCodedGeometry(audio, header.samplingFrequency, first.frames)) < 0 ||
        (result = AudioTrackFacts::SetChannels(audio, config.Channels(), config.ChannelMask())) < 0 ||
        (result = audio->SetProperty(AudioProperty::Mpeg4ObjectType, 1, &objectType)) < 0 ||
        (result = SetDecoderConfiguration(config)) < 0)
        return result;
    Log(LogLevel::Detail, "CAacContainerReader::BeginIndex: ADTS object type %u, %d Hz, channel configuration %u\n",
        unsigned(objectType), int(header.samplingFrequency), unsigned(header.channelConfiguration));
    return RESULT_OK;
}

} // namespace Quorvex::Vek
