#include <vek/containers/readers/mov/MovEditList.h>

#include <algorithm>

#include <vek/core/CheckedMath.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

// `value` movie units in media units, rounded down; false on overflow.
bool ToMediaUnits(uint64_t value, uint32_t movieTimeScale, uint32_t mediaTimeScale, int64_t& out)
{
    if (movieTimeScale == 0)
        return false;
    const __int128 scaled = __int128(value) * mediaTimeScale / movieTimeScale;
    if (scaled > INT64_MAX)
        return false;
    out = int64_t(scaled);
    return true;
}

int Refuse(const char* field, unsigned long long value)
{
    Log(LogLevel::Error, "MovEditList: 'elst' %s %llu cannot be read\n", field, value);
    return RESULT_FORMAT_ERROR;
}

} // namespace

int MovEditList::Read(const MovBox& elst, uint32_t movieTimeScale, uint32_t mediaTimeScale)
{
    *this = MovEditList();
    MovFieldReader fields(elst);
    uint8_t version = 0;
    uint32_t flags = 0;
    fields.ReadVersionAndFlags(version, flags);
    const uint32_t count = fields.Read32();
    const size_t entryBytes = version == 1 ? 20 : 12;
    if (fields.Failed() || count > fields.Remaining() / entryBytes)
        return Refuse("entry count", count);
    if (movieTimeScale == 0 || mediaTimeScale == 0)
        return Refuse("time scale", 0);
    bool mediaSeen = false;
    bool logged = false;
    for (uint32_t i = 0; i < count; ++i) {
        const uint64_t segment = fields.ReadVersioned(version);
        const int64_t mediaTime = version == 1 ? int64_t(fields.Read64()) : int64_t(int32_t(fields.Read32()));
        const int16_t rate = int16_t(fields.Read16());
        fields.Skip(2); // rate fraction
        int64_t length = 0;
        if (!ToMediaUnits(segment, movieTimeScale, mediaTimeScale, length))
            return Refuse("segment duration", segment);
        if (mediaTime == -1) {
            // An empty edit: a pause before the media, or a gap we cannot
            // show once media has started.
            if (!mediaSeen && !Checked::Add(m_delay, length, &m_delay))
                return Refuse("segment duration", segment);
            continue;
        }
        if (mediaTime < 0)
            return Refuse("media time", uint64_t(mediaTime));
        if (rate != 1 && !logged) {
            Log(LogLevel::Warning, "MovEditList: 'elst' rate %d read as 1\n", rate);
            logged = true;
        }
        if (m_count == MaxEdits) {
            Log(LogLevel::Warning, "MovEditList: 'elst' edits after the first %u are ignored\n", unsigned(MaxEdits));
            break;
        }
        Edit& edit = m_edits[m_count++];
        edit.mediaStart = mediaTime;
        // A zero-length edit with media is the common way of writing
        // "everything from mediaTime on".
        edit.mediaEnd = length == 0 || INT64_MAX - mediaTime < length ? INT64_MAX : mediaTime + length;
        if (!Checked::Add(m_presented, length, &m_presented))
            return Refuse("segment duration", segment);
        mediaSeen = true;
    }
    if (m_count > 1 && m_edits[1].mediaStart != m_edits[0].mediaEnd)
        Log(LogLevel::Info, "MovEditList: %u edits splice the media; it is read in media order\n", m_count);
    return RESULT_OK;
}

MovEditList::Placement MovEditList::Place(int64_t presentationStart, int64_t duration) const
{
    Placement placement;
    if (m_count == 0)
        return placement;
    int64_t end = INT64_MAX;
    if (!Checked::Add(presentationStart, duration, &end))
        end = duration < 0 ? INT64_MIN : INT64_MAX;
    for (uint32_t i = 0; i < m_count; ++i) {
        const Edit& edit = m_edits[i];
        const bool overlaps = duration > 0 ? presentationStart < edit.mediaEnd && end > edit.mediaStart
                                           : presentationStart >= edit.mediaStart && presentationStart < edit.mediaEnd;
        if (!overlaps)
            continue;
        const int64_t leading = std::max<int64_t>(0, edit.mediaStart - presentationStart);
        const int64_t trailing = std::max<int64_t>(0, end - edit.mediaEnd);
        placement.leadingTrim = int32_t(std::min<int64_t>(leading, INT32_MAX));
        placement.trailingTrim = int32_t(std::min<int64_t>(trailing, INT32_MAX));
        return placement;
    }
    placement.excluded = true;
    return placement;
}

} // namespace Quorvex::Vek
