#include <vek/containers/readers/elementary/CVideoStreamReader.h>

#include <vek/core/Log.h>

namespace Quorvex::Vek {

CVideoStreamReader::CVideoStreamReader(uint32_t type, unsigned int flags) : CContainerReader(type, flags) {}

CVideoStreamReader::~CVideoStreamReader() = default;

CValueList<unsigned int>* CVideoStreamReader::GetVideoFormats()
{
    return ListFormats<CVideoProperties>(GetVideoMediaCount(), [this](int32_t track) {
        return GetVideoProperties(track);
    });
}

int32_t CVideoStreamReader::GetVideoMediaCount()
{
    return m_hasTrack ? 1 : 0;
}

CVideoProperties* CVideoStreamReader::GetVideoProperties(int32_t track)
{
    return m_hasTrack && track == 0 ? m_video.Get() : nullptr;
}

bool CVideoStreamReader::IsVideoReady(int32_t)
{
    return true;
}

bool CVideoStreamReader::WaitForMedia(int32_t)
{
    return true;
}

int CVideoStreamReader::EndIndex()
{
    return RESULT_OK;
}

CContainerDataReference* CVideoStreamReader::MakeRange(int64_t position, int32_t size)
{
    return new (fallible) CContainerDataReference(position, size);
}

int CVideoStreamReader::ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data)
{
    data = nullptr;
    if (track != 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    return ReadData(m_stream, range, data);
}

void CVideoStreamReader::GetFallbackFrameRate(int64_t& numerator, int64_t& denominator)
{
    numerator = 25;
    denominator = 1;
    unsigned char bytes[8];
    if (GetProperty(VideoStreamFacts::FrameRateSettingKey, 8, bytes) != 8)
        return;
    const auto little = [&bytes](int at) {
        return int32_t(uint32_t(bytes[at]) | uint32_t(bytes[at + 1]) << 8 | uint32_t(bytes[at + 2]) << 16 |
                       uint32_t(bytes[at + 3]) << 24);
    };
    const int32_t setNumerator = little(0);
    const int32_t setDenominator = little(4);
    if (setNumerator <= 0 || setDenominator <= 0) {
        Log(LogLevel::Warning, "%s: frame rate setting %d/%d ignored; using 25\n", GetFormatName(), setNumerator,
            setDenominator);
        return;
    }
    numerator = setNumerator;
    denominator = setDenominator;
}

void CVideoStreamReader::SetTiming(int64_t timeScale, int32_t frameDuration, int64_t declaredDelay)
{
    m_video->SetTimeScale(timeScale);
    m_frameDuration = frameDuration;
    m_declaredDelay = declaredDelay;
}

int CVideoStreamReader::DeriveTiming(VideoStreamFacts& facts)
{
    if (facts.frameRateNumerator <= 0 || facts.frameRateDenominator <= 0) {
        GetFallbackFrameRate(facts.frameRateNumerator, facts.frameRateDenominator);
        Log(LogLevel::Info, "%s: the stream states no frame rate; timing it at %lld/%lld\n", GetFormatName(),
            static_cast<long long>(facts.frameRateNumerator), static_cast<long long>(facts.frameRateDenominator));
    }
    // Twice the frame rate gives fields (and repeated fields) whole units.
    if (facts.frameRateNumerator > INT64_MAX / 2 || facts.frameRateDenominator > INT32_MAX / 2) {
        Log(LogLevel::Error, "%s: frame rate %lld/%lld cannot be timed\n", GetFormatName(),
            static_cast<long long>(facts.frameRateNumerator), static_cast<long long>(facts.frameRateDenominator));
        return RESULT_FORMAT_ERROR;
    }
    const int32_t frame = int32_t(facts.frameRateDenominator * 2);
    const int64_t delay = facts.reorderDepth > 0 ? int64_t(facts.reorderDepth) * frame : 0;
    const int result = m_video->SetTimeScale(facts.frameRateNumerator * 2);
    if (result < 0)
        return result;
    m_frameDuration = frame;
    m_declaredDelay = delay;
    return RESULT_OK;
}

int CVideoStreamReader::OpenTrack()
{
    DropTrack();
    CStream* opened = nullptr;
    int result = OpenStream(opened);
    m_stream = RObject<CStream>(opened);
    if (result < 0) {
        Log(LogLevel::Error, "%s: opening the file of the context failed with %s\n", GetFormatName(),
            GetResultName(result));
        return result;
    }
    if ((result = m_stream->Seek(0, CStream::Begin)) < 0) {
        Log(LogLevel::Error, "%s: rewinding the file failed with %s\n", GetFormatName(), GetResultName(result));
        return result;
    }
    m_video = RObject<CVideoProperties>(new (fallible) CVideoProperties());
    return m_video ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

void CVideoStreamReader::DropTrack()
{
    m_hasTrack = false;
    m_video = RObject<CVideoProperties>();
    m_walkEnded = false;
    m_walkFailure = RESULT_OK;
    m_frameDuration = 0;
    m_declaredDelay = 0;
}

int CVideoStreamReader::BeginIndex()
{
    CAutoLock lock(this);
    int result = OpenTrack();
    VideoStreamFacts facts;
    if (result >= 0) {
        CAutoLock streamLock(m_stream);
        result = ReadStreamHeader(facts);
    }
    // The subclass may have set its own timing; derive it only otherwise.
    if (result >= 0 && m_frameDuration == 0)
        result = DeriveTiming(facts);
    if (result >= 0)
        result = facts.Apply(m_video);
    if (result >= 0)
        result = StartPictures();
    if (result < 0) {
        DropTrack();
        return result;
    }
    m_order.Reset(m_declaredDelay);
    m_hasTrack = true;
    return RESULT_OK;
}

// The next picture with both times, pulling from the walk as the
// presentation order needs; `ended` once the walk has nothing more (with
// the walk's failure, if it failed).
int CVideoStreamReader::NextPlacedPicture(CodedPicture& picture, bool& ended)
{
    ended = false;
    while (!m_order.Pop(picture)) {
        if (m_walkEnded) {
            ended = m_order.GetCount() == 0;
            if (ended)
                return m_walkFailure;
            m_order.Finish();
            continue;
        }
        CodedPicture next;
        const int result = ReadNextPicture(next);
        if (result < 0) {
            Log(LogLevel::Error, "%s: the walk stopped at picture %lld with %s\n", GetFormatName(),
                static_cast<long long>(m_order.GetDecodeClock()), GetResultName(result));
            // What was found before the failure is still handed out.
            m_walkFailure = result;
            m_walkEnded = true;
            continue;
        }
        if (result > 0) {
            m_walkEnded = true;
            continue;
        }
        m_order.Push(next);
    }
    return RESULT_OK;
}

int CVideoStreamReader::MakeSample(const CodedPicture& picture, CVideoSample*& sample)
{
    RObject<CVideoSample> made(CVideoSample::Create());
    RObject<CContainerDataReference> range(MakeRange(picture.position, picture.size));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    const int64_t offset = picture.presentationTime - picture.decodeTime;
    made->SetTime(picture.decodeTime);
    made->SetDuration(picture.duration);
    made->SetCompositionOffset(int32_t(offset < INT32_MIN ? INT32_MIN : offset > INT32_MAX ? INT32_MAX : offset));
    made->SetPictureType(picture.pictureType);
    made->SetPictureStructure(picture.structure);
    made->SetFrameNumber(int32_t(picture.decodeIndex));
    int32_t hint = picture.key ? CMediaSample::KeyFrameAligned : 0;
    if (picture.exclude)
        hint |= CMediaSample::Exclude;
    made->SetHint(hint);
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    sample = made.Detach();
    return RESULT_OK;
}

int CVideoStreamReader::ReadVideoSample(int32_t track, CVideoSample*& sample)
{
    sample = nullptr;
    CAutoLock lock(this);
    if (!m_hasTrack || track != 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    CodedPicture picture;
    bool ended = false;
    const int result = NextPlacedPicture(picture, ended);
    if (result < 0 || ended)
        return result;
    return MakeSample(picture, sample);
}

} // namespace Quorvex::Vek
