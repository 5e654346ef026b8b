#include <vek/containers/readers/AudioFrameScanner.h>

#include <algorithm>

#include <vek/core/CObject.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

int AudioFrameScanner::Reset(CStream* stream, int64_t start, int64_t end)
{
    if (!stream)
        return RESULT_ARGUMENT_NULL;
    if (start < 0 || end < start)
        return RESULT_ARGUMENT_OUT_OF_RANGE;
    if (!m_window) {
        m_window = RObject<CByteArray>(CByteArray::Create(nullptr, WindowBytes));
        if (!m_window)
            return RESULT_OUT_OF_MEMORY;
    }
    m_stream = stream;
    m_start = start;
    m_end = end;
    m_position = start;
    m_locked = false;
    m_family = 0;
    m_windowStart = start;
    m_windowFill = 0;
    return RESULT_OK;
}

void AudioFrameScanner::Seek(int64_t position)
{
    m_position = std::clamp(position, m_start, m_end);
}

int AudioFrameScanner::Fill(int64_t offset)
{
    const int32_t wanted = int32_t(std::min<int64_t>(WindowBytes, m_end - offset));
    unsigned char* bytes = m_window->GetData();
    m_windowStart = offset;
    m_windowFill = 0;
    CObject::CAutoLock lock(m_stream);
    int result = m_stream->Seek(offset, CStream::Begin);
    while (result >= 0 && m_windowFill < wanted) {
        result = m_stream->Read(bytes + m_windowFill, wanted - m_windowFill);
        if (result == 0)
            break; // the stream is shorter than it said: its end is the range's
        if (result > 0)
            m_windowFill += result;
    }
    if (result < 0) {
        m_windowFill = 0;
        Log(LogLevel::Error, "%s: reading %d bytes at %lld failed with %s\n", m_owner, int(wanted),
            static_cast<long long>(offset), GetResultName(result));
        return result;
    }
    return RESULT_OK;
}

int AudioFrameScanner::Peek(int64_t offset, int32_t count, const uint8_t*& bytes, int32_t& available)
{
    bytes = nullptr;
    available = 0;
    if (offset < m_start || offset >= m_end || count <= 0 || !m_window)
        return RESULT_OK;
    const int64_t wanted = std::min<int64_t>({count, m_end - offset, WindowBytes});
    const bool inside = offset >= m_windowStart && offset - m_windowStart <= m_windowFill &&
                        wanted <= m_windowFill - (offset - m_windowStart);
    if (!inside) {
        const int result = Fill(offset);
        if (result < 0)
            return result;
    }
    const int64_t skip = offset - m_windowStart;
    bytes = m_window->GetData() + skip;
    available = int32_t(std::min<int64_t>(wanted, m_windowFill - skip));
    return RESULT_OK;
}

int AudioFrameScanner::TryFrame(const AudioFrameSyntax& syntax, int64_t offset, AudioFrame& frame, bool& found)
{
    found = false;
    const uint8_t* bytes = nullptr;
    int32_t available = 0;
    const int32_t headerBytes = syntax.GetHeaderBytes();
    int result = Peek(offset, headerBytes, bytes, available);
    if (result < 0 || available < headerBytes || !syntax.LooksLikeFrame(bytes))
        return result;
    if ((result = syntax.ParseFrame(bytes, available, frame)) < 0)
        return result;
    frame.offset = offset;
    found = !m_locked || frame.family == m_family;
    return RESULT_OK;
}

int AudioFrameScanner::IsChained(const AudioFrameSyntax& syntax, const AudioFrame& frame, bool& chained)
{
    chained = true;
    const int64_t next = frame.offset + frame.bytes;
    if (frame.bytes > m_end - frame.offset || m_end - next < syntax.GetHeaderBytes())
        return RESULT_OK; // the frame reaches (or passes) the end of the range
    const uint8_t* bytes = nullptr;
    int32_t available = 0;
    const int result = Peek(next, syntax.GetHeaderBytes(), bytes, available);
    chained = result >= 0 && available >= syntax.GetHeaderBytes() &&
              (syntax.LooksLikeFrame(bytes) || syntax.ContinuesUnit(bytes));
    return result;
}

int AudioFrameScanner::Resynchronise(const AudioFrameSyntax& syntax, int64_t& offset, AudioFrame& frame)
{
    const int64_t from = offset;
    const int32_t headerBytes = syntax.GetHeaderBytes();
    for (int64_t at = from + 1; m_end - at >= headerBytes && at - from < MaxResyncBytes; ++at) {
        bool found = false, chained = false;
        int result = TryFrame(syntax, at, frame, found);
        if (result >= 0 && found)
            result = IsChained(syntax, frame, chained);
        if (result < 0)
            return result;
        if (found && chained) {
            Log(m_quiet ? LogLevel::Trace : LogLevel::Warning, "%s: skipped %lld bytes without a frame header at %lld\n", m_owner,
                static_cast<long long>(at - from), static_cast<long long>(from));
            offset = at;
            return RESULT_OK;
        }
    }
    if (m_end - from < MaxResyncBytes) {
        Log(m_quiet ? LogLevel::Trace : LogLevel::Warning, "%s: %lld trailing bytes hold no frame\n", m_owner,
            static_cast<long long>(m_end - from));
        offset = m_end;
        return RESULT_OK;
    }
    Log(LogLevel::Error, "%s: no frame header in %lld bytes from %lld\n", m_owner,
        static_cast<long long>(MaxResyncBytes), static_cast<long long>(from));
    return RESULT_ERROR;
}

int AudioFrameScanner::JoinUnit(const AudioFrameSyntax& syntax, AudioFrame& frame)
{
    const int32_t headerBytes = syntax.GetHeaderBytes();
    for (int32_t joined = 1; joined < MaxUnitFrames; ++joined) {
        const int64_t next = frame.offset + frame.bytes;
        if (m_end - next < headerBytes)
            return RESULT_OK;
        const uint8_t* bytes = nullptr;
        int32_t available = 0;
        AudioFrame part;
        int result = Peek(next, headerBytes, bytes, available);
        if (result < 0)
            return result;
        if (available < headerBytes || !syntax.ContinuesUnit(bytes) ||
            syntax.ParseFrame(bytes, available, part) < 0 || part.bytes > m_end - next ||
            part.bytes > INT32_MAX - frame.bytes)
            return RESULT_OK;
        frame.bytes += part.bytes;
    }
    return RESULT_OK;
}

int AudioFrameScanner::Next(const AudioFrameSyntax& syntax, AudioFrame& frame)
{
    frame = AudioFrame();
    int64_t offset = m_position;
    const int32_t headerBytes = syntax.GetHeaderBytes();
    if (m_end - offset <= 0)
        return RESULT_OK;
    if (m_end - offset < headerBytes) {
        Log(m_quiet ? LogLevel::Trace : LogLevel::Warning, "%s: %lld trailing bytes hold no frame\n", m_owner,
            static_cast<long long>(m_end - offset));
        m_position = m_end;
        return RESULT_OK;
    }
    bool found = false;
    int result = TryFrame(syntax, offset, frame, found);
    if (result == RESULT_FORMAT_ERROR) {
        Log(LogLevel::Error, "%s: the frame header at %lld is refused\n", m_owner, static_cast<long long>(offset));
        return result;
    }
    if (result < 0)
        return result;
    if (!found) {
        const uint8_t* bytes = nullptr;
        int32_t available = 0;
        if ((result = Peek(offset, headerBytes, bytes, available)) < 0)
            return result;
        // A certain sync word whose header does not hold is a damaged
        // stream, not garbage: the parser names the field.
        AudioFrame refused;
        if (available >= headerBytes && syntax.HasSyncWord(bytes) &&
            syntax.ParseFrame(bytes, available, refused) < 0) {
            Log(LogLevel::Error, "%s: the frame header at %lld is refused\n", m_owner,
                static_cast<long long>(offset));
            return RESULT_FORMAT_ERROR;
        }
        if ((result = Resynchronise(syntax, offset, frame)) < 0)
            return result;
        if (offset >= m_end) {
            m_position = m_end;
            frame = AudioFrame();
            return RESULT_OK;
        }
    }
    if (frame.bytes > m_end - offset) {
        Log(m_quiet ? LogLevel::Trace : LogLevel::Warning, "%s: the frame at %lld needs %d bytes; the data ends after %lld; dropped\n", m_owner,
            static_cast<long long>(offset), int(frame.bytes), static_cast<long long>(m_end - offset));
        m_position = m_end;
        frame = AudioFrame();
        return RESULT_OK;
    }
    if ((result = JoinUnit(syntax, frame)) < 0)
        return result;
    m_position = offset + frame.bytes;
    return RESULT_OK;
}

} // namespace Quorvex::Vek
