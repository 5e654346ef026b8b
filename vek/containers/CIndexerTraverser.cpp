#include <vek/containers/CIndexerTraverser.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Quorvex::Vek {

CIndexerTraverser::CIndexerTraverser(CIndexer* indexer)
    : CObject(Type), m_indexer(RObject<CIndexer>::FromObject(indexer))
{
}

CIndexerTraverser::~CIndexerTraverser() = default;

CIndexerTraverser* CIndexerTraverser::Create(CIndexer* indexer)
{
    return new (fallible) CIndexerTraverser(indexer);
}

namespace {

// Seconds to units, rounding down; the small tolerance keeps 0.3 s at ten
// units per second at unit 3, where the product is 2.9999999999999996.
int64_t ToUnits(double seconds, int64_t timeScale)
{
    const double units = std::floor(seconds * double(timeScale) + 1e-6);
    return units >= 9.2e18 ? INT64_MAX : int64_t(units);
}

} // namespace

int CIndexerTraverser::Locate(CMediaIndexer* indexer, double seconds, int32_t& position, int32_t& beyondEnd)
{
    if (!indexer)
        return RESULT_ERROR;
    const int64_t time = ToUnits(seconds, indexer->GetTimeScale());
    CMediaSample* found = nullptr;
    int32_t index = -1;
    const int result = indexer->GetSampleAtTime(time, index, found);
    RObject<CMediaSample> sample(found);
    if (result >= 0) {
        position = index;
        return RESULT_OK;
    }
    if (result != RESULT_BEYOND_END_OF_SAMPLES)
        return result;
    if (time < indexer->GetDuration()) {
        position = indexer->GetIndexAfterTime(time);
    } else {
        position = indexer->GetSampleCount();
        ++beyondEnd;
    }
    return RESULT_OK;
}

int CIndexerTraverser::Seek(double seconds, int32_t flags)
{
    if (!m_indexer)
        return RESULT_ERROR;
    if (!(seconds >= 0.0))
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    int32_t video[CContainer::MaxVideoMedia];
    int32_t audio[CContainer::MaxAudioMedia];
    int32_t subtitle[CContainer::MaxSubtitleMedia];
    std::copy(std::begin(m_video), std::end(m_video), video);
    std::copy(std::begin(m_audio), std::end(m_audio), audio);
    std::copy(std::begin(m_subtitle), std::end(m_subtitle), subtitle);
    int32_t selected = 0;
    int32_t beyondEnd = 0;
    int result = RESULT_OK;
    if (flags & Video) {
        for (int32_t track = 0; track < m_indexer->GetVideoMediaCount() && result >= 0; ++track, ++selected) {
            CVideoIndexer* indexer = m_indexer->GetVideoIndexer(track);
            result = Locate(indexer, seconds, video[track], beyondEnd);
            if (result >= 0 && (flags & VideoReference) && video[track] < indexer->GetSampleCount())
                result = indexer->GetGroupStart(video[track], video[track]);
        }
    }
    if (flags & Audio) {
        for (int32_t track = 0; track < m_indexer->GetAudioMediaCount() && result >= 0; ++track, ++selected) {
            CAudioIndexer* indexer = m_indexer->GetAudioIndexer(track);
            result = Locate(indexer, seconds, audio[track], beyondEnd);
            if (result >= 0 && (flags & AudioPrecharge) && audio[track] > 0 &&
                audio[track] < indexer->GetSampleCount())
                --audio[track];
        }
    }
    if (flags & Subtitle) {
        for (int32_t track = 0; track < m_indexer->GetSubtitleMediaCount() && result >= 0; ++track, ++selected)
            result = Locate(m_indexer->GetSubtitleIndexer(track), seconds, subtitle[track], beyondEnd);
    }
    if (result < 0)
        return result;
    if (selected > 0 && beyondEnd == selected)
        return RESULT_BEYOND_END_OF_SAMPLES;
    std::copy(std::begin(video), std::end(video), m_video);
    std::copy(std::begin(audio), std::end(audio), m_audio);
    std::copy(std::begin(subtitle), std::end(subtitle), m_subtitle);
    return RESULT_OK;
}

// Completion is read before the sample: a track found complete cannot grow,
// so an end seen then is the real end.
int CIndexerTraverser::ReadNext(CMediaIndexer* indexer, int32_t& position, CMediaSample*& sample)
{
    const bool complete = indexer->IsComplete();
    const int result = indexer->GetSample(position, sample);
    if (result >= 0) {
        ++position;
        return RESULT_OK;
    }
    sample = nullptr;
    return complete ? RESULT_OK : RESULT_BEYOND_INDEXER_PROGRESS;
}

int CIndexerTraverser::ReadVideoSample(int32_t track, CVideoSample*& sample)
{
    sample = nullptr;
    if (!m_indexer)
        return RESULT_ERROR;
    CVideoIndexer* indexer = m_indexer->GetVideoIndexer(track);
    if (!indexer)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    CMediaSample* read = nullptr;
    const int result = ReadNext(indexer, m_video[track], read);
    sample = static_cast<CVideoSample*>(read);
    return result;
}

int CIndexerTraverser::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    if (!m_indexer)
        return RESULT_ERROR;
    CAudioIndexer* indexer = m_indexer->GetAudioIndexer(track);
    if (!indexer)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    CMediaSample* read = nullptr;
    const int result = ReadNext(indexer, m_audio[track], read);
    sample = static_cast<CAudioSample*>(read);
    return result;
}

int CIndexerTraverser::ReadSubtitleSample(int32_t track, CSubtitleSample*& sample)
{
    sample = nullptr;
    if (!m_indexer)
        return RESULT_ERROR;
    CSubtitleIndexer* indexer = m_indexer->GetSubtitleIndexer(track);
    if (!indexer)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    CMediaSample* read = nullptr;
    const int result = ReadNext(indexer, m_subtitle[track], read);
    sample = static_cast<CSubtitleSample*>(read);
    return result;
}

int CIndexerTraverser::GetLongGop(int32_t track, bool& longGop)
{
    longGop = false;
    if (!m_indexer)
        return RESULT_ERROR;
    CVideoIndexer* indexer = m_indexer->GetVideoIndexer(track);
    if (!indexer)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    longGop = indexer->HasPredictiveSamples();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
