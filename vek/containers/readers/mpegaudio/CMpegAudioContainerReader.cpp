#include <vek/containers/readers/mpegaudio/CMpegAudioContainerReader.h>

#include <algorithm>

#include <vek/containers/readers/AudioTrackFacts.h>
#include <vek/core/Log.h>
#include <vek/elementary/AudioChannelMask.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/AudioProperty.h>

namespace Quorvex::Vek {

namespace {

constexpr uint8_t MonoMode = 3;

uint32_t ChannelMaskOf(const MpegAudioFrameHeader& header)
{
    return header.channelMode == MonoMode ? uint32_t(ChannelMask::FrontCenter) : uint32_t(ChannelMask::Stereo);
}

const char* TagName(MpegAudioInfoTag::Kind kind)
{
    switch (kind) {
    case MpegAudioInfoTag::Xing:
        return "Xing";
    case MpegAudioInfoTag::Info:
        return "Info";
    default:
        return "VBRI";
    }
}

} // namespace

CMpegAudioContainerReader::CMpegAudioContainerReader() : CMpegAudioContainerReader(0) {}

CMpegAudioContainerReader::CMpegAudioContainerReader(unsigned int flags) : CAudioFrameFileReader(Type, flags) {}

CMpegAudioContainerReader::~CMpegAudioContainerReader() = default;

bool CMpegAudioContainerReader::ReadInfoTag(const uint8_t* bytes, int32_t available)
{
    m_tag = MpegAudioInfoTag();
    const int result = MpegAudioInfoTag::Parse(bytes, size_t(available), m_tag);
    if (result < 0) {
        // A damaged tag: the frame is read as the audio frame it also is.
        Log(LogLevel::Warning, "CMpegAudioContainerReader::BeginIndex: the first frame's tag is refused; read as audio\n");
        return false;
    }
    if (result > 0)
        return false;
    Log(LogLevel::Detail,
        "CMpegAudioContainerReader::BeginIndex: %s tag: %u frames, %u bytes%s, encoder delay %u, padding %u\n",
        TagName(m_tag.kind), unsigned(m_tag.frames), unsigned(m_tag.bytes), m_tag.hasLame ? ", LAME extension" : "",
        unsigned(m_tag.encoderDelay), unsigned(m_tag.encoderPadding));
    return true;
}

int CMpegAudioContainerReader::DescribeStream(const uint8_t* bytes, int32_t available, const AudioFrame& first,
                                              bool& holdsNoAudio)
{
    MpegAudioFrameHeader header;
    if (available < MpegAudioFrameHeader::Size || !MpegAudioFrameHeader::Parse(bytes, header))
        return RESULT_FORMAT_ERROR;
    m_hasTag = ReadInfoTag(bytes, available);
    m_gapless = false;
    holdsNoAudio = m_hasTag;
    CAudioProperties* audio = GetAudio();
    audio->SetFormat(header.layer == 3 ? AudioFormat::MP3 : AudioFormat::MPEG);
    const uint8_t layer = header.layer;
    int result;
    if ((result = AudioTrackFacts::SetCodedGeometry(audio, header.sampleRate, first.frames)) < 0 ||
        (result = AudioTrackFacts::SetChannels(audio, header.channels, ChannelMaskOf(header))) < 0 ||
        (result = audio->SetProperty(AudioProperty::MpegLayer, 1, &layer)) < 0)
        return result;
    Log(LogLevel::Detail, "CMpegAudioContainerReader::BeginIndex: MPEG-%s layer %u, %d Hz, %d channels\n",
        header.version == MpegAudioFrameHeader::Mpeg1 ? "1" : header.version == MpegAudioFrameHeader::Mpeg2 ? "2" : "2.5",
        unsigned(header.layer), int(header.sampleRate), int(header.channels));
    return RESULT_OK;
}

int CMpegAudioContainerReader::DescribeTotals(const Totals& totals)
{
    int result = CAudioFrameFileReader::DescribeTotals(totals);
    if (result < 0)
        return result;
    const int32_t rate = GetAudio()->GetSampleRate();
    const int32_t frameLength = m_tag.frame.samplesPerFrame;
    if (m_hasTag && m_tag.kind != MpegAudioInfoTag::Info && m_tag.hasFrames && m_tag.hasBytes && m_tag.frames > 0 &&
        frameLength > 0) {
        const double bitRate = double(m_tag.bytes) * 8.0 * rate / (double(m_tag.frames) * frameLength);
        if ((result = GetAudio()->SetBitRate(int64_t(bitRate + 0.5))) < 0)
            return result;
    }
    if (m_hasTag && m_tag.hasLame) {
        m_gapless = true;
        m_keepFrom = int64_t(m_tag.encoderDelay) + DecoderDelay;
        m_keepTo = std::min(totals.frames, totals.frames - m_tag.encoderPadding + DecoderDelay);
        Log(LogLevel::Detail, "CMpegAudioContainerReader::BeginIndex: presenting output frames %lld..%lld of %lld\n",
            static_cast<long long>(m_keepFrom), static_cast<long long>(m_keepTo),
            static_cast<long long>(totals.frames));
    }
    return RESULT_OK;
}

int CMpegAudioContainerReader::MarkSample(CAudioSample* sample, int64_t)
{
    if (!m_gapless)
        return RESULT_OK;
    const int64_t from = sample->GetTime();
    const int64_t to = from + sample->GetDuration();
    if (to <= m_keepFrom || from >= m_keepTo)
        return sample->SetHint(sample->GetHint() | CMediaSample::Exclude);
    const int64_t leading = std::max<int64_t>(0, m_keepFrom - from);
    const int64_t trailing = leading > 0 ? 0 : std::max<int64_t>(0, to - m_keepTo);
    return sample->SetCompositionTrim(int32_t(leading), int32_t(trailing));
}

} // namespace Quorvex::Vek
