#include <vek/elementary/MpegVideoAccessUnitSplitter.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include <vek/core/Log.h>
#include <vek/core/Result.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Owner = "MpegVideoAccessUnitSplitter";

bool IsSlice(uint8_t code)
{
    return code >= MpegVideoStartCode::FirstSlice && code <= MpegVideoStartCode::LastSlice;
}

bool IsField(MpegPictureStructure structure)
{
    return structure != MpegPictureStructure::Frame;
}

} // namespace

void MpegVideoAccessUnitSplitter::Reset()
{
    m_sequence = MpegVideoSequence();
    m_firstCoding = MpegVideoPictureCodingExtension();
    m_open = MpegVideoAccessUnit();
    m_completed = MpegVideoAccessUnit();
    m_phase = Phase::Headers;
    m_building = MpegVideoSequence();
    m_haveSequence = false;
    m_buildingSequence = false;
    m_sawSequenceHeader = false;
    m_haveFirstCoding = false;
    m_afterSequenceHeader = false;
    m_afterPicture = false;
    m_haveOpen = false;
    m_candidateField = false;
    m_candidatePosition = 0;
    m_completedCount = 0;
    m_referencesSeen = 0;
    m_closedGop = false;
    m_temporalBase = 0;
    m_highestTemporal = -1;
    m_lastLoneField = -1;
    m_deferredFailure = RESULT_OK;
}

void MpegVideoAccessUnitSplitter::Open(int64_t position)
{
    if (m_haveOpen)
        return;
    m_open = MpegVideoAccessUnit();
    m_open.position = position;
    m_haveOpen = true;
    m_phase = Phase::Headers;
}

int MpegVideoAccessUnitSplitter::Complete(int64_t position)
{
    m_phase = Phase::Headers;
    m_candidateField = false;
    // Headers without a picture go with the next picture.
    if (!m_haveOpen || m_open.pictureCount == 0)
        return 0;
    if (position < m_open.position || position - m_open.position > INT32_MAX) {
        Log(LogLevel::Error, "%s: the access unit at %lld ends at %lld: more than 2 GiB\n", Owner,
            static_cast<long long>(m_open.position), static_cast<long long>(position));
        return RESULT_FORMAT_ERROR;
    }
    m_open.size = position - m_open.position;
    Describe(m_open);
    m_completed = m_open;
    m_haveOpen = false;
    ++m_completedCount;
    return 1;
}

int MpegVideoAccessUnitSplitter::Finish(int64_t end)
{
    if (m_deferredFailure < 0)
        return m_deferredFailure;
    CommitSequence();
    return Complete(end);
}

int MpegVideoAccessUnitSplitter::Feed(int64_t position, const uint8_t* bytes, size_t size)
{
    if (!bytes)
        return RESULT_NULL_POINTER;
    if (m_deferredFailure < 0)
        return m_deferredFailure;
    if (size == 0)
        return 0; // a prefix at the very end of the stream
    const uint8_t code = bytes[0];
    const uint8_t* payload = bytes + 1;
    size_t payloadSize = size - 1;
    if (!IsSlice(code)) {
        // A header whose last byte is zero runs into a 00 00 00 01 prefix
        // that the unit walk takes as the next unit's: the byte after a
        // unit is always a zero (the stream's, or the prefix's), so the
        // header is read with one zero after it.
        payloadSize = std::min<size_t>(payloadSize, sizeof m_header - 1);
        std::memcpy(m_header, payload, payloadSize);
        m_header[payloadSize++] = 0;
        payload = m_header;
    }
    if (!m_sawSequenceHeader && code != MpegVideoStartCode::SequenceHeader)
        return 0;
    if (code != MpegVideoStartCode::Extension)
        CommitSequence();

    int completed = 0;
    if (m_phase == Phase::Ended) {
        completed = Complete(position);
    } else if (m_phase == Phase::Slices && !IsSlice(code)) {
        if (m_open.pictureCount == 1 && IsField(m_open.structure))
            m_phase = Phase::AwaitField;
        else if (code != MpegVideoStartCode::SequenceEnd)
            completed = Complete(position);
    }
    if (completed < 0)
        return completed;
    if (m_phase == Phase::AwaitField) {
        bool consumed = false;
        completed = FeedAwaitingField(position, code, payload, payloadSize, consumed);
        if (completed < 0 || consumed)
            return completed;
    }
    Open(position);
    const int result = FeedHeader(code, payload, payloadSize);
    if (result < 0 && completed > 0) {
        // The completed access unit is whole: hand it out, fail next time.
        m_deferredFailure = result;
        return completed;
    }
    return result < 0 ? result : completed;
}

// A lone field's slices are done: a picture header may bring its partner,
// whose coding extension decides.
int MpegVideoAccessUnitSplitter::FeedAwaitingField(int64_t position, uint8_t code, const uint8_t* payload,
                                                   size_t size, bool& consumed)
{
    consumed = true;
    if (m_candidateField)
        return ResolveCandidate(code, payload, size);
    switch (code) {
    case MpegVideoStartCode::Picture: {
        const int parsed = MpegVideoPictureHeader::Parse(payload, size, m_candidate);
        if (parsed < 0)
            return parsed;
        m_candidateField = true;
        m_candidatePosition = position;
        return 0;
    }
    case MpegVideoStartCode::SequenceHeader:
        // A new sequence never holds the second field of the last one.
        consumed = false;
        return Complete(position);
    case MpegVideoStartCode::SequenceEnd:
        m_open.sequenceEnd = true;
        m_phase = Phase::Ended;
        return 0;
    default: return 0; // joins the pair
    }
}

// The coding extension after the picture header that followed a lone field:
// the opposite field completes the pair, anything else starts a new
// access unit at that picture header.
int MpegVideoAccessUnitSplitter::ResolveCandidate(uint8_t code, const uint8_t* payload, size_t size)
{
    const bool coding = code == MpegVideoStartCode::Extension && size > 0 &&
                        MpegVideoExtensionId(payload, size) == MpegVideoExtension::PictureCoding;
    MpegVideoPictureCodingExtension extension;
    if (coding) {
        const int parsed = MpegVideoPictureCodingExtension::Parse(payload, size, extension);
        if (parsed < 0)
            return parsed;
    }
    if (coding && IsField(extension.structure) && extension.structure != m_open.structure) {
        m_open.pictureCount = 2;
        m_candidateField = false;
        m_afterPicture = false;
        m_phase = Phase::Headers;
        return 0;
    }
    Log(LogLevel::Warning, "%s: the field at %lld has no partner; the picture at %lld starts a new access unit\n",
        Owner, static_cast<long long>(m_open.position), static_cast<long long>(m_candidatePosition));
    const int64_t at = m_candidatePosition;
    const MpegVideoPictureHeader picture = m_candidate;
    const int completed = Complete(at);
    if (completed < 0)
        return completed;
    Open(at);
    TakePicture(picture);
    const int fed = FeedHeader(code, payload, size);
    return fed < 0 ? fed : completed;
}

void MpegVideoAccessUnitSplitter::TakePicture(const MpegVideoPictureHeader& picture)
{
    m_open.type = picture.type;
    m_open.temporalReference = picture.temporalReference;
    m_open.structure = MpegPictureStructure::Frame;
    m_open.pictureCount = 1;
    m_afterPicture = true;
}

int MpegVideoAccessUnitSplitter::FeedHeader(uint8_t code, const uint8_t* payload, size_t size)
{
    if (code != MpegVideoStartCode::Extension) {
        m_afterSequenceHeader = false;
        if (code != MpegVideoStartCode::Picture)
            m_afterPicture = false;
    }
    if (IsSlice(code)) {
        // Slices without a picture header in front are passed over.
        if (m_open.pictureCount > 0)
            m_phase = Phase::Slices;
        return 0;
    }
    switch (code) {
    case MpegVideoStartCode::SequenceHeader: return FeedSequenceHeader(payload, size);
    case MpegVideoStartCode::Extension: return FeedExtension(payload, size);
    case MpegVideoStartCode::GroupOfPictures: return FeedGop(payload, size);
    case MpegVideoStartCode::Picture: return FeedPicture(payload, size);
    case MpegVideoStartCode::SequenceEnd:
        m_open.sequenceEnd = true;
        m_phase = Phase::Ended;
        return 0;
    default: return 0; // user data, sequence error, and what no decoder reads
    }
}

// The sequence a header and its extensions describe takes effect at the
// first unit after them: until then the access unit before it is still
// described by the sequence before.
void MpegVideoAccessUnitSplitter::CommitSequence()
{
    if (!m_buildingSequence)
        return;
    m_sequence = m_building;
    m_buildingSequence = false;
    m_haveSequence = true;
}

int MpegVideoAccessUnitSplitter::FeedSequenceHeader(const uint8_t* payload, size_t size)
{
    MpegVideoSequenceHeader header;
    const int result = MpegVideoSequenceHeader::Parse(payload, size, header);
    if (result < 0)
        return result;
    m_building = MpegVideoSequence();
    m_building.header = header;
    m_buildingSequence = true;
    m_sawSequenceHeader = true;
    m_afterSequenceHeader = true;
    m_open.sequenceHeader = true;
    return RESULT_OK;
}

int MpegVideoAccessUnitSplitter::FeedExtension(const uint8_t* payload, size_t size)
{
    const int id = MpegVideoExtensionId(payload, size);
    if (id < 0)
        return id;
    if (m_afterSequenceHeader && id == MpegVideoExtension::Sequence) {
        const int result = MpegVideoSequenceExtension::Parse(payload, size, m_building.extension);
        m_building.mpeg2 = result >= 0;
        return result;
    }
    if (m_afterSequenceHeader && id == MpegVideoExtension::SequenceDisplay) {
        const int result = MpegVideoSequenceDisplayExtension::Parse(payload, size, m_building.display);
        m_building.hasDisplayExtension = result >= 0;
        return result;
    }
    if (!m_afterPicture || id != MpegVideoExtension::PictureCoding)
        return RESULT_OK;
    MpegVideoPictureCodingExtension extension;
    const int result = MpegVideoPictureCodingExtension::Parse(payload, size, extension);
    if (result < 0)
        return result;
    m_open.structure = extension.structure;
    m_open.topFieldFirst = extension.topFieldFirst;
    m_open.repeatFirstField = extension.repeatFirstField;
    m_open.progressiveFrame = extension.progressiveFrame;
    if (!m_haveFirstCoding) {
        m_firstCoding = extension;
        m_haveFirstCoding = true;
    }
    m_afterPicture = false;
    return RESULT_OK;
}

int MpegVideoAccessUnitSplitter::FeedGop(const uint8_t* payload, size_t size)
{
    MpegVideoGopHeader gop;
    m_open.gopHeader = true;
    // A time code out of range harms no decoder: keep the group, open.
    if (MpegVideoGopHeader::Parse(payload, size, gop) < 0) {
        Log(LogLevel::Warning, "%s: a GOP header that does not parse is taken as an open group\n", Owner);
        m_open.closedGop = false;
        m_open.brokenLink = false;
        return RESULT_OK;
    }
    m_open.closedGop = gop.closedGop;
    m_open.brokenLink = gop.brokenLink;
    return RESULT_OK;
}

int MpegVideoAccessUnitSplitter::FeedPicture(const uint8_t* payload, size_t size)
{
    MpegVideoPictureHeader picture;
    const int result = MpegVideoPictureHeader::Parse(payload, size, picture);
    if (result < 0)
        return result;
    // A second picture header before any slice: the first one counts.
    if (m_open.pictureCount == 0)
        TakePicture(picture);
    return RESULT_OK;
}

int64_t MpegVideoAccessUnitSplitter::UnwrapTemporalReference(uint16_t temporalReference)
{
    int64_t value = m_temporalBase + temporalReference;
    // Ten bits count 1024 pictures: a GOP longer than that wraps around.
    if (m_highestTemporal >= 0 && value + 512 < m_highestTemporal) {
        m_temporalBase += 1024;
        value += 1024;
    }
    m_highestTemporal = std::max(m_highestTemporal, value);
    return value;
}

int32_t MpegVideoAccessUnitSplitter::DisplayedFields(const MpegVideoAccessUnit& unit) const
{
    if (unit.pictureCount == 2)
        return 2;
    if (IsField(unit.structure))
        return 1;
    if (!m_sequence.mpeg2 || !unit.repeatFirstField)
        return 2;
    if (m_sequence.extension.progressiveSequence)
        return unit.topFieldFirst ? 6 : 4;
    return 3;
}

void MpegVideoAccessUnitSplitter::Describe(MpegVideoAccessUnit& unit)
{
    unit.startsPeriod = unit.gopHeader || (unit.sequenceHeader && unit.type == MpegPictureType::I);
    unit.key = unit.type == MpegPictureType::I && (unit.sequenceHeader || unit.gopHeader);
    if (unit.startsPeriod) {
        m_temporalBase = 0;
        m_highestTemporal = -1;
    }
    if (unit.gopHeader) {
        m_closedGop = unit.closedGop;
        // After an edit the first B pictures refer to a picture that is gone.
        if (unit.brokenLink)
            m_referencesSeen = 0;
    }
    unit.undecodable = unit.type == MpegPictureType::B && m_referencesSeen < 2 && !m_closedGop;
    if (unit.type == MpegPictureType::I || unit.type == MpegPictureType::P)
        m_referencesSeen = std::min(m_referencesSeen + 1, 2);
    const int64_t temporal = UnwrapTemporalReference(unit.temporalReference);
    unit.displayKey = temporal * 2;
    // Two lone fields of one frame share a temporal reference.
    if (unit.pictureCount == 1 && IsField(unit.structure)) {
        if (m_lastLoneField == temporal)
            ++unit.displayKey;
        m_lastLoneField = temporal;
    } else {
        m_lastLoneField = -1;
    }
    unit.displayedFields = DisplayedFields(unit);
}

} // namespace Quorvex::Vek
