#include <vek/containers/readers/ac3/CAc3ContainerReader.h>

#include <bit>

#include <vek/containers/readers/AudioTrackFacts.h>
#include <vek/core/Log.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>

namespace Quorvex::Vek {

namespace {

// The frames of one unit the description looks at: one independent
// substream with its fifteen dependent ones, as 'dec3' can describe them.
constexpr size_t MaxDescribedFrames = 16;
// The longest 'dec3' payload: 2 bytes of header, 3 per independent
// substream plus its channel locations.
constexpr size_t MaxDecoderConfigBytes = 2 + 8 * 4;

} // namespace

CAc3ContainerReader::CAc3ContainerReader() : CAc3ContainerReader(0) {}

CAc3ContainerReader::CAc3ContainerReader(unsigned int flags) : CAudioFrameFileReader(Type, flags) {}

CAc3ContainerReader::~CAc3ContainerReader() = default;

int CAc3ContainerReader::SplitUnit(const uint8_t* bytes, int32_t available, Ac3SyncFrame* frames, size_t capacity,
                                   size_t& count)
{
    count = 0;
    for (int32_t at = 0; count < capacity && available - at >= Ac3SyncFrame::MinHeaderBytes;) {
        Ac3SyncFrame& frame = frames[count];
        const int result = Ac3SyncFrame::Parse(bytes + at, size_t(available - at), frame);
        if (result < 0)
            return count > 0 ? RESULT_OK : RESULT_FORMAT_ERROR;
        // Only substream 0 and its dependents describe the programme.
        if (count > 0 && frame.streamType != Ac3SyncFrame::Dependent)
            return RESULT_OK;
        ++count;
        if (frame.frameBytes > available - at)
            return RESULT_OK;
        at += frame.frameBytes;
    }
    return RESULT_OK;
}

int CAc3ContainerReader::DescribeChannels(const Ac3SyncFrame* frames, size_t count)
{
    uint32_t mask = frames[0].ChannelMask();
    int32_t channels = frames[0].Channels();
    for (size_t i = 1; i < count; ++i) {
        mask |= frames[i].ChannelMask();
        channels += frames[i].Channels();
    }
    // Dependent substreams may replace channels of the independent one
    // rather than add to them: the mask then counts the speakers.
    if (count > 1 && mask != 0)
        channels = std::popcount(mask);
    return AudioTrackFacts::SetChannels(GetAudio(), channels, mask);
}

int CAc3ContainerReader::SetDecoderConfiguration(const Ac3SyncFrame* frames, size_t count)
{
    uint8_t payload[MaxDecoderConfigBytes];
    size_t length = 0;
    const int result = frames[0].enhanced ? WriteEac3DecoderConfig(frames, count, payload, sizeof payload, length)
                                          : frames[0].WriteDac3(payload, sizeof payload, length);
    if (result < 0) {
        // The frames still decode; only an MP4 writer misses the payload.
        Log(LogLevel::Warning, "CAc3ContainerReader::BeginIndex: the first unit's %d frames give no decoder "
            "configuration (%s)\n", int(count), GetResultName(result));
        return RESULT_OK;
    }
    return GetAudio()->SetProperty(AudioProperty::DecoderConfiguration, int32_t(length), payload);
}

int CAc3ContainerReader::DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                                        bool& holdsNoAudio)
{
    holdsNoAudio = false;
    Ac3SyncFrame frames[MaxDescribedFrames];
    size_t count = 0;
    int result = SplitUnit(bytes, available, frames, MaxDescribedFrames, count);
    if (result < 0)
        return result;
    const Ac3SyncFrame& head = frames[0];
    CAudioProperties* audio = GetAudio();
    audio->SetFormat(head.enhanced ? AudioFormat::EC3 : AudioFormat::AC3);
    if ((result = AudioTrackFacts::SetCodedGeometry(audio, head.sampleRate, first.frames)) < 0 ||
        (result = DescribeChannels(frames, count)) < 0 || (result = SetDecoderConfiguration(frames, count)) < 0)
        return result;
    Log(LogLevel::Detail, "CAc3ContainerReader::BeginIndex: %s bsid %u, %d Hz, acmod %u%s, %d substream frames a unit\n",
        head.enhanced ? "E-AC-3" : "AC-3", unsigned(head.bsid), int(head.sampleRate), unsigned(head.acmod),
        head.lfeOn ? " with LFE" : "", int(count));
    return RESULT_OK;
}

} // namespace Quorvex::Vek
