#include <vek/containers/readers/CAudioFrameFileReader.h>

#include <algorithm>

#include <vek/containers/readers/AudioFileTags.h>
#include <vek/core/Log.h>

namespace Quorvex::Vek {

CAudioFrameFileReader::CAudioFrameFileReader(uint32_t type, unsigned int flags)
    : CAudioFileReader(type, flags), m_scanner("")
{
}

CAudioFrameFileReader::~CAudioFrameFileReader() = default;

int CAudioFrameFileReader::FindFramedBytes(CStream* stream, int64_t length, int64_t& start, int64_t& end,
                                           const char* owner)
{
    int64_t leading = 0, trailing = 0;
    int result = AudioFileTags::MeasureLeadingTags(owner, stream, length, leading);
    if (result < 0 || (result = AudioFileTags::MeasureTrailingTags(stream, leading, length, trailing)) < 0)
        return result;
    start = leading;
    end = length - trailing;
    if (leading > 0 || trailing > 0)
        Log(LogLevel::Detail, "%s: skipping %lld bytes of leading and %lld of trailing tags\n", owner,
            static_cast<long long>(leading), static_cast<long long>(trailing));
    return RESULT_OK;
}

int CAudioFrameFileReader::CountChain(AudioFrameScanner& scanner, int64_t offset, int32_t& frames, bool& reachesEnd)
{
    const AudioFrameSyntax& syntax = GetSyntax();
    const int32_t headerBytes = syntax.GetHeaderBytes();
    frames = 0;
    reachesEnd = false;
    uint64_t family = 0;
    for (int64_t at = offset; frames < ChainFrames;) {
        if (scanner.GetEnd() - at < headerBytes) {
            reachesEnd = at == scanner.GetEnd();
            return RESULT_OK;
        }
        const uint8_t* bytes = nullptr;
        int32_t available = 0;
        int result = scanner.Peek(at, headerBytes, bytes, available);
        if (result < 0)
            return result;
        const bool starts = available >= headerBytes && syntax.LooksLikeFrame(bytes);
        const bool continues = frames > 0 && !starts && available >= headerBytes && syntax.ContinuesUnit(bytes);
        AudioFrame frame;
        if ((!starts && !continues) || syntax.ParseFrame(bytes, available, frame) < 0)
            return RESULT_OK;
        if (starts && frames > 0 && frame.family != family)
            return RESULT_OK;
        if (frames == 0)
            family = frame.family;
        if (frame.bytes > scanner.GetEnd() - at)
            return RESULT_OK;
        at += frame.bytes;
        if (starts)
            ++frames;
    }
    return RESULT_OK;
}

int CAudioFrameFileReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    const char* owner = GetIndexOwner();
    const int64_t length = stream->GetLength();
    int64_t start = 0, end = 0;
    if (length <= 0 || FindFramedBytes(stream, length, start, end, owner) < 0)
        return 0;
    AudioFrameScanner scanner(owner);
    if (scanner.Reset(stream, start, end) < 0)
        return 0;
    const int64_t limit = end - start > ProbeDistance ? start + ProbeDistance : end;
    for (int64_t offset = start; offset < limit; ++offset) {
        int32_t frames = 0;
        bool reachesEnd = false;
        if (CountChain(scanner, offset, frames, reachesEnd) < 0)
            return 0;
        const bool whole = frames >= 2 && reachesEnd && offset == start;
        if (frames >= ChainFrames || whole) {
            const int score = frames >= ChainFrames && offset == start ? MatchScore : WeakMatchScore;
            Log(LogLevel::Detail, "%s: %d %s frames chained from %lld: score %d\n", owner, int(frames),
                GetFormatName(), static_cast<long long>(offset), score);
            return score;
        }
    }
    return 0;
}

int CAudioFrameFileReader::IndexHeader()
{
    const char* owner = GetIndexOwner();
    int64_t start = 0, end = 0;
    int result = FindFramedBytes(GetStream(), GetStreamEnd(), start, end, owner);
    if (result < 0)
        return result;
    m_scanner.SetOwner(owner);
    m_scanner.SetQuiet(false);
    if ((result = m_scanner.Reset(GetStream(), start, end)) < 0)
        return result;
    AudioFrame first;
    result = m_scanner.Next(GetSyntax(), first);
    if (result == RESULT_ERROR || (result >= 0 && first.bytes == 0)) {
        Log(LogLevel::Error, "%s: no %s frame in the %lld bytes from %lld\n", owner, GetFormatName(),
            static_cast<long long>(end - start), static_cast<long long>(start));
        return RESULT_FORMAT_ERROR;
    }
    if (result < 0)
        return result;
    const uint8_t* bytes = nullptr;
    int32_t available = 0;
    bool holdsNoAudio = false;
    if ((result = m_scanner.Peek(first.offset, first.bytes, bytes, available)) < 0 ||
        (result = DescribeStream(bytes, available, first, holdsNoAudio)) < 0)
        return result;
    m_family = first.family;
    m_scanner.Lock(m_family);
    Totals totals;
    if (!holdsNoAudio) {
        totals.start = first.offset;
        totals.units = 1;
        totals.frames = first.frames;
        totals.bytes = first.bytes;
    }
    totals.end = first.offset + first.bytes;
    if ((result = IndexFrames(totals)) < 0)
        return result;
    if (totals.units == 0) {
        Log(LogLevel::Error, "%s: the %s stream holds no audio frame\n", owner, GetFormatName());
        return RESULT_FORMAT_ERROR;
    }
    if ((result = DescribeTotals(totals)) < 0)
        return result;
    Log(LogLevel::Detail, "%s: %lld %s access units of %lld frames at %d Hz in bytes %lld..%lld\n", owner,
        static_cast<long long>(totals.units), GetFormatName(), static_cast<long long>(totals.frames),
        int(GetAudio()->GetSampleRate()), static_cast<long long>(totals.start), static_cast<long long>(totals.end));
    m_totals = totals;
    if ((result = RewindForReading()) < 0)
        return result;
    SoundData data;
    data.start = totals.start;
    data.size = totals.end - totals.start;
    data.frames = totals.frames;
    return CommitTrack(data);
}

int CAudioFrameFileReader::IndexFrames(Totals& totals)
{
    for (;;) {
        AudioFrame unit;
        const int result = m_scanner.Next(GetSyntax(), unit);
        if (result == RESULT_ERROR)
            return RESULT_OK; // lost in garbage (logged): the stream ends with the last frame
        if (result < 0)
            return result;
        if (unit.bytes == 0)
            return RESULT_OK;
        if (totals.units == 0)
            totals.start = unit.offset;
        ++totals.units;
        totals.frames += unit.frames;
        totals.bytes += unit.bytes;
        totals.end = unit.offset + unit.bytes;
    }
}

int CAudioFrameFileReader::DescribeTotals(const Totals& totals)
{
    const int32_t rate = GetAudio()->GetSampleRate();
    if (totals.frames <= 0 || rate <= 0)
        return RESULT_OK;
    const double bitRate = double(totals.bytes) * 8.0 * rate / double(totals.frames);
    return GetAudio()->SetBitRate(int64_t(bitRate + 0.5));
}

int CAudioFrameFileReader::RewindForReading()
{
    m_scanner.SetOwner(GetReadOwner());
    // The index pass has logged every resynchronisation already.
    m_scanner.SetQuiet(true);
    const int result = m_scanner.Reset(GetStream(), m_totals.start, m_totals.end);
    m_scanner.Lock(m_family);
    m_unitsRead = 0;
    m_time = 0;
    return result;
}

int CAudioFrameFileReader::BuildSample(const AudioFrame& unit, RObject<CAudioSample>& made)
{
    made = RObject<CAudioSample>(CAudioSample::Create());
    RObject<CContainerDataReference> range(new (fallible) CContainerDataReference(unit.offset, unit.bytes));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    made->SetPackets(1);
    made->SetFrames(unit.frames);
    made->SetTime(m_time);
    int result = made->SetDataReference(range);
    if (result >= 0)
        result = MarkSample(made, m_unitsRead);
    return result;
}

int CAudioFrameFileReader::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    if (track != 0 || GetAudioMediaCount() == 0)
        return RESULT_INDEX_OUT_OF_RANGE;
    CAutoLock lock(this);
    if (m_unitsRead >= m_totals.units)
        return RESULT_OK;
    AudioFrame unit;
    int result = m_scanner.Next(GetSyntax(), unit);
    if (result < 0 || unit.bytes == 0) {
        // The file changed under the reader: what the index counted is gone.
        m_unitsRead = m_totals.units;
        return result;
    }
    RObject<CAudioSample> made;
    if ((result = BuildSample(unit, made)) < 0) {
        // Nothing was handed out: the next call cuts the same unit again.
        m_scanner.Seek(unit.offset);
        return result;
    }
    ++m_unitsRead;
    m_time += unit.frames;
    sample = made.Detach();
    return RESULT_OK;
}

} // namespace Quorvex::Vek
