#include <vek/containers/CIndexer.h>

#include <algorithm>
#include <chrono>
#include <cstring>

#include <vek/containers/CIndexerTraverser.h>
#include <vek/core/Log.h>
#include <vek/media/IndexerProperty.h>

namespace Quorvex::Vek {

CIndexer::CIndexer(CContainerReader* reader)
    : CObject(Type), m_reader(RObject<CContainerReader>::FromObject(reader))
{
}

CIndexer::~CIndexer()
{
    End();
}

CIndexer* CIndexer::Create(CContainerReader* reader)
{
    return new (fallible) CIndexer(reader);
}

int CIndexer::Begin(bool background)
{
    if (!m_reader)
        return RESULT_NULL_POINTER;
    {
        CAutoLock lock(this);
        if (m_begun || m_stop.load() || GetState() != Idle)
            return RESULT_BAD_ORDER_ERROR;
        m_begun = true;
    }
    int result = m_reader->BeginIndex();
    if (result >= 0) {
        m_readerIndexing.store(true);
        result = CreateMediaIndexers();
    }
    if (result < 0) {
        Log(LogLevel::Error, "CIndexer::Begin: failed with %d (%s)\n", result, GetResultName(result));
        ReleaseMediaIndexers();
        EndReaderIndex();
        SetState(Failed);
        return result;
    }
    return background ? StartIndexThread() : RESULT_OK;
}

int CIndexer::StartIndexThread()
{
    {
        CAutoLock lock(this);
        m_passStarted = true;
    }
    SetState(Active);
    m_threadRunning.store(true);
    if (Platform::ThreadStart(m_thread, IndexThread, this, "CIndexer::IndexThread"))
        return RESULT_OK;
    m_threadRunning.store(false);
    Log(LogLevel::Error, "CIndexer::Begin: the index thread could not be started\n");
    CompleteTracks();
    EndReaderIndex();
    SetState(Failed);
    return RESULT_ERROR;
}

// One index per described track, in track order, up to `limit` tracks.
template <typename Indexer, typename Properties>
int CIndexer::CreateTracks(int32_t available, int32_t limit, Properties* (CContainer::*describe)(int32_t),
                           RObject<Indexer>* indexers, int32_t& count)
{
    const int32_t tracks = std::min(available, limit);
    for (int32_t track = 0; track < tracks; ++track) {
        Properties* properties = (m_reader.Get()->*describe)(track);
        if (!properties)
            return RESULT_ERROR;
        indexers[track] = Indexer::Create(properties);
        if (!indexers[track])
            return RESULT_OUT_OF_MEMORY;
        count = track + 1;
    }
    return RESULT_OK;
}

int CIndexer::CreateMediaIndexers()
{
    int result = CreateTracks(m_reader->GetVideoMediaCount(), int32_t(CContainer::MaxVideoMedia),
                              &CContainer::GetVideoProperties, m_video, m_videoCount);
    if (result >= 0)
        result = CreateTracks(m_reader->GetAudioMediaCount(), int32_t(CContainer::MaxAudioMedia),
                              &CContainer::GetAudioProperties, m_audio, m_audioCount);
    if (result >= 0)
        result = CreateTracks(m_reader->GetSubtitleMediaCount(), int32_t(CContainer::MaxSubtitleMedia),
                              &CContainer::GetSubtitleProperties, m_subtitle, m_subtitleCount);
    return result;
}

void CIndexer::ReleaseMediaIndexers()
{
    for (auto& indexer : m_video)
        indexer.SafeRelease();
    for (auto& indexer : m_audio)
        indexer.SafeRelease();
    for (auto& indexer : m_subtitle)
        indexer.SafeRelease();
    m_videoCount = m_audioCount = m_subtitleCount = 0;
}

int CIndexer::RunIndexPass()
{
    {
        CAutoLock lock(this);
        if (!m_begun || m_passStarted || m_stop.load() || GetState() != Idle)
            return RESULT_BAD_ORDER_ERROR;
        m_passStarted = true;
    }
    SetState(Active);
    return ReadIndex();
}

int CIndexer::IndexThread(void* context)
{
    Log(LogLevel::Info, "CIndexer::IndexThread: thread started\n");
    const int result = static_cast<CIndexer*>(context)->ReadIndex();
    Log(LogLevel::Info, "CIndexer::IndexThread: thread exiting with result: %d\n", result);
    return result;
}

int CIndexer::End()
{
    m_stop.store(true);
    if (m_threadRunning.exchange(false))
        Platform::ThreadJoin(m_thread);
    bool passStarted = false;
    {
        CAutoLock lock(this);
        passStarted = m_passStarted;
    }
    // A pass that started ends the reader's index itself, when it stops:
    // a foreground pass may still be reading on its host's thread.
    if (!passStarted)
        EndReaderIndex();
    return RESULT_OK;
}

void CIndexer::EndReaderIndex()
{
    if (m_readerIndexing.exchange(false))
        m_reader->EndIndex();
}

int CIndexer::ReadIndex()
{
    int result = ReadRounds();
    const int completed = CompleteTracks();
    if (result >= 0)
        result = completed;
    if (result < 0)
        Log(LogLevel::Error, "CIndexer::ReadIndex: the pass ended with %d (%s)\n", result, GetResultName(result));
    EndReaderIndex();
    double longest = 0.0;
    for (int32_t slot = 0; slot < TrackCount(); ++slot)
        longest = std::max(longest, MediaIndexerAt(slot)->GetDurationInSeconds());
    SetDuration(longest);
    // The last report comes before the waiters wake: a host that frees the
    // callback's context once WaitForIndex returns must not be called after.
    const uint32_t state = result < 0 ? Failed : Complete;
    ReportProgress(state);
    SetState(state);
    return result;
}

// One sample of every track still running per round, until all have ended.
int CIndexer::ReadRounds()
{
    bool ended[CContainer::MaxVideoMedia + CContainer::MaxAudioMedia + CContainer::MaxSubtitleMedia] = {};
    int32_t running = TrackCount();
    while (running > 0) {
        for (int32_t slot = 0; slot < TrackCount(); ++slot) {
            if (ended[slot])
                continue;
            if (m_stop.load(std::memory_order_relaxed)) {
                Log(LogLevel::Warning, "CIndexer::ReadIndex: stopped by End\n");
                return RESULT_ERROR;
            }
            const int result = IndexNextSample(slot, ended[slot]);
            if (result < 0)
                return result;
            if (ended[slot])
                --running;
        }
        if (ReportProgress(Active) != 0) {
            Log(LogLevel::Warning, "CIndexer::ReadIndex: stopped by the progress callback\n");
            return RESULT_ERROR;
        }
    }
    return RESULT_OK;
}

int CIndexer::IndexNextSample(int32_t slot, bool& ended)
{
    if (slot < m_videoCount)
        return IndexVideoSample(slot, ended);
    slot -= m_videoCount;
    if (slot < m_audioCount)
        return IndexAudioSample(slot, ended);
    return IndexSubtitleSample(slot - m_audioCount, ended);
}

int CIndexer::IndexVideoSample(int32_t track, bool& ended)
{
    CVideoSample* read = nullptr;
    int result = m_reader->ReadVideoSample(track, read);
    RObject<CVideoSample> sample(read);
    if (result < 0)
        return result;
    ended = !sample;
    if (ended)
        return RESULT_OK;
    if (m_readVideoData.load(std::memory_order_relaxed)) {
        result = m_reader->ReadVideoData(track, sample.Get());
        if (result < 0)
            return result;
    }
    if (m_readVideoMetadata.load(std::memory_order_relaxed)) {
        // A format without metadata is not a failure of the pass.
        result = m_reader->ReadVideoMetadata(track, sample.Get());
        if (result < 0 && result != RESULT_NOT_IMPLEMENTED)
            return result;
    }
    return m_video[track]->AddSample(sample);
}

int CIndexer::IndexAudioSample(int32_t track, bool& ended)
{
    CAudioSample* read = nullptr;
    const int result = m_reader->ReadAudioSample(track, read);
    RObject<CAudioSample> sample(read);
    if (result < 0)
        return result;
    ended = !sample;
    return ended ? RESULT_OK : m_audio[track]->AddSample(sample);
}

int CIndexer::IndexSubtitleSample(int32_t track, bool& ended)
{
    CSubtitleSample* read = nullptr;
    const int result = m_reader->ReadSubtitleSample(track, read);
    RObject<CSubtitleSample> sample(read);
    if (result < 0)
        return result;
    ended = !sample;
    return ended ? RESULT_OK : m_subtitle[track]->AddSample(sample);
}

CMediaIndexer* CIndexer::MediaIndexerAt(int32_t slot) const
{
    if (slot < m_videoCount)
        return m_video[slot];
    slot -= m_videoCount;
    if (slot < m_audioCount)
        return m_audio[slot];
    return m_subtitle[slot - m_audioCount];
}

// The mean over the tracks of the share of each track's declared duration
// indexed so far; a finished track counts whole, one that declares no
// duration counts nothing until it finishes.
double CIndexer::Progress() const
{
    const int32_t tracks = TrackCount();
    if (tracks == 0)
        return 1.0;
    double sum = 0.0;
    for (int32_t slot = 0; slot < tracks; ++slot) {
        CMediaIndexer* indexer = MediaIndexerAt(slot);
        const int64_t declared = indexer->GetMediaProperties()->GetDuration();
        if (indexer->IsComplete())
            sum += 1.0;
        else if (declared > 0)
            sum += std::min(1.0, double(indexer->GetDuration()) / double(declared));
    }
    return sum / tracks;
}

int CIndexer::ReportProgress(uint32_t state)
{
    ProgressCallback callback = nullptr;
    void* context = nullptr;
    {
        CAutoLock lock(this);
        callback = m_callback;
        context = m_callbackContext;
    }
    return callback ? callback(context, state, Progress()) : 0;
}

// Every track completes; the first failure is returned.
int CIndexer::CompleteTracks()
{
    int first = RESULT_OK;
    for (int32_t slot = 0; slot < TrackCount(); ++slot) {
        const int result = MediaIndexerAt(slot)->OnComplete();
        if (result < 0 && first >= 0)
            first = result;
    }
    return first;
}

void CIndexer::SetDuration(double seconds)
{
    CAutoLock lock(this);
    m_duration = seconds;
}

double CIndexer::GetDuration()
{
    CAutoLock lock(this);
    return m_duration;
}

void CIndexer::SetState(uint32_t state)
{
    CAutoLock lock(this);
    m_state.store(state, std::memory_order_release);
    NotifyAll();
}

bool CIndexer::WaitForIndex(int32_t milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds < 0 ? 0 : milliseconds);
    CAutoLock lock(this);
    for (;;) {
        const uint32_t state = GetState();
        if (state == Complete || state == Failed)
            return true;
        if (milliseconds < 0) {
            Wait(-1);
            continue;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            return false;
        Wait(int32_t(left));
    }
}

int CIndexer::Seek(double seconds, int32_t flags, CIndexerTraverser*& traverser)
{
    traverser = nullptr;
    RObject<CIndexerTraverser> cursor(CIndexerTraverser::Create(this));
    if (!cursor)
        return RESULT_OUT_OF_MEMORY;
    const int result = cursor->Seek(seconds, flags);
    if (result < 0)
        return result;
    traverser = cursor.Detach();
    return RESULT_OK;
}

int CIndexer::SetProgressCallback(ProgressCallback callback, void* context)
{
    CAutoLock lock(this);
    m_callback = callback;
    m_callbackContext = context;
    return RESULT_OK;
}

CVideoIndexer* CIndexer::GetVideoIndexer(int32_t track) const
{
    return track >= 0 && track < m_videoCount ? m_video[track].Get() : nullptr;
}

CAudioIndexer* CIndexer::GetAudioIndexer(int32_t track) const
{
    return track >= 0 && track < m_audioCount ? m_audio[track].Get() : nullptr;
}

CSubtitleIndexer* CIndexer::GetSubtitleIndexer(int32_t track) const
{
    return track >= 0 && track < m_subtitleCount ? m_subtitle[track].Get() : nullptr;
}

CVideoProperties* CIndexer::GetVideoProperties(int32_t track) const
{
    CVideoIndexer* indexer = GetVideoIndexer(track);
    return indexer ? indexer->GetProperties() : nullptr;
}

CAudioProperties* CIndexer::GetAudioProperties(int32_t track) const
{
    CAudioIndexer* indexer = GetAudioIndexer(track);
    return indexer ? indexer->GetProperties() : nullptr;
}

CSubtitleProperties* CIndexer::GetSubtitleProperties(int32_t track) const
{
    CSubtitleIndexer* indexer = GetSubtitleIndexer(track);
    return indexer ? indexer->GetProperties() : nullptr;
}

std::atomic<bool>* CIndexer::SwitchFor(const char* key)
{
    if (!key)
        return nullptr;
    if (std::strcmp(key, IndexerProperty::EnableVideoData) == 0)
        return &m_readVideoData;
    if (std::strcmp(key, IndexerProperty::EnableVideoMetadata) == 0)
        return &m_readVideoMetadata;
    return nullptr;
}

int CIndexer::GetProperty(const char* key, int32_t capacity, unsigned char* out)
{
    std::atomic<bool>* flag = SwitchFor(key);
    if (!flag)
        return IProperties::GetProperty(key, capacity, out);
    if (!out)
        return 1;
    if (capacity < 1)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    out[0] = flag->load() ? 1 : 0;
    return 1;
}

int CIndexer::SetProperty(const char* key, int32_t length, const unsigned char* data)
{
    std::atomic<bool>* flag = SwitchFor(key);
    if (!flag)
        return IProperties::SetProperty(key, length, data);
    if (length != 1)
        return RESULT_ERROR;
    if (!data)
        return RESULT_ARGUMENT_NULL;
    flag->store(data[0] != 0);
    return RESULT_OK;
}

} // namespace Quorvex::Vek
