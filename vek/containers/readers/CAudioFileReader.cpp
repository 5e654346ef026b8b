#include <vek/containers/readers/CAudioFileReader.h>

#include <algorithm>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

CAudioFileReader::CAudioFileReader(uint32_t type, unsigned int flags) : CContainerReader(type, flags) {}

CAudioFileReader::~CAudioFileReader() = default;

CValueList<unsigned int>* CAudioFileReader::GetAudioFormats()
{
    return ListFormats<CAudioProperties>(GetAudioMediaCount(), [this](int32_t track) {
        return GetAudioProperties(track);
    });
}

int32_t CAudioFileReader::GetAudioMediaCount()
{
    return m_hasTrack ? 1 : 0;
}

CAudioProperties* CAudioFileReader::GetAudioProperties(int32_t track)
{
    return m_hasTrack && track == 0 ? m_audio.Get() : nullptr;
}

bool CAudioFileReader::IsAudioReady(int32_t)
{
    return true;
}

bool CAudioFileReader::WaitForMedia(int32_t)
{
    return true;
}

int CAudioFileReader::EndIndex()
{
    return RESULT_OK;
}

int CAudioFileReader::ReadAudioData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data)
{
    data = nullptr;
    if (track != 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    return ReadData(m_stream, range, data);
}

int CAudioFileReader::BeginIndex()
{
    int result = OpenTrack();
    if (result >= 0) {
        CAutoLock lock(m_stream);
        result = IndexHeader();
    }
    if (result < 0) {
        ForgetHeaderFacts();
        DropTrack();
    }
    return result;
}

int CAudioFileReader::OpenTrack()
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
    m_audio = RObject<CAudioProperties>(new (fallible) CAudioProperties());
    return m_audio ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

int CAudioFileReader::CommitTrack(const SoundData& data)
{
    const int result = m_audio->SetDuration(data.frames);
    if (result < 0)
        return result;
    m_data = data;
    m_position = 0;
    m_hasTrack = true;
    return RESULT_OK;
}

void CAudioFileReader::DropTrack()
{
    m_hasTrack = false;
    m_audio = RObject<CAudioProperties>();
    m_data = SoundData();
    m_position = 0;
}

int64_t CAudioFileReader::GetStreamEnd() const
{
    const int64_t length = m_stream ? m_stream->GetLength() : -1;
    return length >= 0 ? length : INT64_MAX;
}

int64_t CAudioFileReader::GetWholeFramesToEnd(int64_t start, int32_t frameBytes) const
{
    const int64_t end = GetStreamEnd();
    const int64_t available = start <= end ? end - start : 0;
    return frameBytes > 0 ? available - available % frameBytes : available;
}

int64_t CAudioFileReader::FitSoundData(const char* owner, const char* chunk, int64_t declared, int64_t start,
                                       int32_t frameBytes) const
{
    const int64_t end = GetStreamEnd();
    const int64_t available = start <= end ? end - start : 0;
    if (declared <= available)
        return declared;
    const int64_t whole = GetWholeFramesToEnd(start, frameBytes);
    Log(LogLevel::Warning, "%s: '%s' chunk declares %lld bytes but the file holds %lld after its header; reading %lld\n",
        owner, chunk, static_cast<long long>(declared), static_cast<long long>(available),
        static_cast<long long>(whole));
    return whole;
}

int CAudioFileReader::CutPcmSample(CAudioSample*& sample, Advance order)
{
    sample = nullptr;
    if (!m_hasTrack)
        return RESULT_INDEX_OUT_OF_RANGE;
    const int64_t count = std::min(m_audio->GetTimeScale(), m_data.frames - m_position);
    if (count <= 0)
        return RESULT_OK;
    // BeginIndex bounded a second of bytes to INT32_MAX and the frames to
    // what the data holds, so neither product below can overflow.
    const int64_t packetBytes = m_audio->GetBytesPerPacket();
    const int64_t position = m_data.start + packetBytes * m_position;
    const int32_t length = int32_t(packetBytes * count);
    const int64_t first = m_position;
    if (order == Advance::BeforeBuilding)
        m_position += count;
    RObject<CAudioSample> made(CAudioSample::Create());
    RObject<CContainerDataReference> range(new (fallible) CContainerDataReference(position, length));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    made->SetPackets(int32_t(count));
    made->SetFrames(1);
    made->SetTime(first);
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    if (order == Advance::AfterBuilding)
        m_position += count;
    sample = made.Detach();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
