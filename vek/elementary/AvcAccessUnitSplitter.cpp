#include <vek/elementary/AvcAccessUnitSplitter.h>

#include <vek/core/Log.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcAccessUnitSplitter::Feed";

// Units that begin an access unit when they follow the last slice of a
// picture: delimiter, parameter sets, SEI, and types 14 to 18.
bool BeginsAccessUnit(uint8_t type)
{
    return type == AvcNalHeader::Sei || type == AvcNalHeader::SequenceParameterSet ||
           type == AvcNalHeader::PictureParameterSet || type == AvcNalHeader::AccessUnitDelimiter ||
           (type >= AvcNalHeader::Prefix && type <= 18);
}

AvcAccessUnitSplitter::PictureType TypeOfSlice(uint8_t sliceType)
{
    switch (sliceType) {
    case AvcSliceHeader::B: return AvcAccessUnitSplitter::BidirectionalPicture;
    case AvcSliceHeader::P:
    case AvcSliceHeader::SP: return AvcAccessUnitSplitter::PredictedPicture;
    default: return AvcAccessUnitSplitter::IntraPicture;
    }
}

// The picture set id of a slice, read without its sets: the third code.
bool PeekPictureSetId(const uint8_t* unit, size_t size, uint32_t& id)
{
    BitReader bits(unit + 1, size - 1);
    bits.ReadUE();
    bits.ReadUE();
    id = bits.ReadUE();
    return !bits.HasError() && id <= AvcPictureParameterSet::MaxId;
}

// Fields a picture is shown for: the pic_struct when it fits the picture's
// structure, else one field or two.
int32_t FieldsShown(const AvcAccessUnitSplitter::AccessUnit& unit, const AvcSeiMessages& messages)
{
    const bool field = unit.structure != AvcAccessUnitSplitter::FramePicture;
    if (messages.hasPicStruct) {
        const bool fieldStruct = messages.picStruct == 1 || messages.picStruct == 2;
        if (fieldStruct == field)
            return AvcSeiMessages::FieldsOf(messages.picStruct);
    }
    return field ? 1 : 2;
}

} // namespace

AvcAccessUnitSplitter::AvcAccessUnitSplitter()
{
    Reset();
}

void AvcAccessUnitSplitter::Reset()
{
    for (auto& entry : m_sequenceTable)
        entry = nullptr;
    for (auto& entry : m_pictureTable)
        entry = nullptr;
    m_activeSequenceSet = nullptr;
    m_counter.Reset();
    m_messages = AvcSeiMessages();
    m_lastSlice = AvcSliceHeader();
    m_open = AccessUnit();
    m_unitOpen = false;
    m_hasPicture = false;
    m_seenPicture = false;
    m_orphanSlices = 0;
}

const AvcSequenceParameterSet* AvcAccessUnitSplitter::GetSequenceSet(uint32_t id) const
{
    return id <= AvcSequenceParameterSet::MaxId ? m_sequenceTable[id] : nullptr;
}

const AvcPictureParameterSet* AvcAccessUnitSplitter::GetPictureSet(uint32_t id) const
{
    return id <= AvcPictureParameterSet::MaxId ? m_pictureTable[id] : nullptr;
}

void AvcAccessUnitSplitter::Open(int64_t position)
{
    m_open = AccessUnit();
    m_open.position = position;
    m_messages = AvcSeiMessages();
    m_unitOpen = true;
    m_hasPicture = false;
}

bool AvcAccessUnitSplitter::Close(int64_t end, AccessUnit& completed)
{
    const bool hadPicture = m_hasPicture;
    if (hadPicture) {
        m_open.end = end;
        m_open.fields = FieldsShown(m_open, m_messages);
        m_open.hasPicStruct = m_messages.hasPicStruct;
        m_open.picStruct = m_messages.picStruct;
        const bool recovers = m_messages.hasRecoveryPoint && m_messages.recoveryFrameCount == 0;
        m_open.key = m_open.idr || (recovers && m_open.pictureType == IntraPicture);
        completed = m_open;
    }
    m_unitOpen = false;
    m_hasPicture = false;
    return hadPicture;
}

int AvcAccessUnitSplitter::Feed(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed)
{
    const int result = FeedUnit(position, unit, size, completed);
    if (result >= 0 || m_seenPicture)
        return result;
    // Before the first picture a unit that does not parse is leading
    // garbage that happened to hold a start code.
    Log(LogLevel::Warning, "%s: passing over the unit at %lld before the first picture\n", Where,
        static_cast<long long>(position));
    return 0;
}

int AvcAccessUnitSplitter::FeedUnit(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed)
{
    if (!unit || size == 0) {
        // An empty unit (a stray prefix) carries nothing; it stays with
        // the access unit it is in.
        if (!m_unitOpen)
            Open(position);
        return 0;
    }
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header))
        return FieldCheck::Refuse(Where, "forbidden_zero_bit", 1);
    if (header.IsSlice()) {
        return FeedSlice(position, unit, size, completed);
    }
    int result = 0;
    if (BeginsAccessUnit(header.type)) {
        // Parse before closing so that a refused unit leaves the state alone.
        if (header.type == AvcNalHeader::SequenceParameterSet || header.type == AvcNalHeader::PictureParameterSet) {
            const int parsed = FeedParameterSet(unit, size, header.type);
            if (parsed < 0)
                return parsed;
        }
        if (m_hasPicture)
            result = Close(position, completed) ? 1 : 0;
        if (!m_unitOpen)
            Open(position);
        if (header.type == AvcNalHeader::Sei)
            FeedSei(unit, size);
        return result;
    }
    if (!m_unitOpen)
        Open(position);
    return 0;
}

int AvcAccessUnitSplitter::FeedParameterSet(const uint8_t* unit, size_t size, uint8_t type)
{
    if (type == AvcNalHeader::SequenceParameterSet) {
        AvcSequenceParameterSet parsed;
        const int result = AvcSequenceParameterSet::Parse(unit, size, parsed);
        if (result < 0)
            return result;
        m_sequenceSets[parsed.id] = parsed;
        m_sequenceTable[parsed.id] = &m_sequenceSets[parsed.id];
        if (!m_seenPicture)
            m_activeSequenceSet = m_sequenceTable[parsed.id];
        return 0;
    }
    AvcPictureParameterSet parsed;
    const int result = AvcPictureParameterSet::Parse(unit, size, m_sequenceTable, parsed);
    if (result < 0)
        return result;
    m_pictureSets[parsed.id] = parsed;
    m_pictureTable[parsed.id] = &m_pictureSets[parsed.id];
    return 0;
}

int AvcAccessUnitSplitter::FeedSei(const uint8_t* unit, size_t size)
{
    AvcSeiMessages parsed = m_messages;
    const int result = AvcSeiMessages::Parse(unit, size, m_activeSequenceSet, parsed);
    if (result < 0)
        Log(LogLevel::Warning, "%s: an SEI unit of %zu bytes does not parse; the messages before the fault are kept\n",
            Where, size);
    m_messages = parsed;
    return result;
}

bool AvcAccessUnitSplitter::StartsNewPicture(const AvcSliceHeader& slice) const
{
    const AvcSliceHeader& last = m_lastSlice;
    if (slice.frameNum != last.frameNum || slice.pictureSetId != last.pictureSetId ||
        slice.fieldPic != last.fieldPic || slice.bottomField != last.bottomField ||
        (slice.nalRefIdc == 0) != (last.nalRefIdc == 0) || slice.IsIdr() != last.IsIdr() ||
        (slice.IsIdr() && slice.idrPicId != last.idrPicId))
        return true;
    const AvcSequenceParameterSet& sps = *m_sequenceTable[m_pictureTable[slice.pictureSetId]->sequenceSetId];
    if (sps.picOrderCntType == 0)
        return slice.picOrderCntLsb != last.picOrderCntLsb ||
               slice.deltaPicOrderCntBottom != last.deltaPicOrderCntBottom;
    if (sps.picOrderCntType == 1)
        return slice.deltaPicOrderCnt[0] != last.deltaPicOrderCnt[0] ||
               slice.deltaPicOrderCnt[1] != last.deltaPicOrderCnt[1];
    return false;
}

int AvcAccessUnitSplitter::FeedSlice(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed)
{
    uint32_t pictureSetId = 0;
    if (!m_seenPicture && PeekPictureSetId(unit, size, pictureSetId) && !m_pictureTable[pictureSetId]) {
        // Slices before the sets of a stream cut mid-way cannot be decoded.
        if (m_orphanSlices++ == 0)
            Log(LogLevel::Warning, "%s: passing over slices at %lld and on: picture set %u not seen yet\n", Where,
                static_cast<long long>(position), pictureSetId);
        return 0;
    }
    AvcSliceHeader slice;
    int result = AvcSliceHeader::Parse(unit, size, m_pictureTable, m_sequenceTable, slice);
    if (result < 0)
        return result;
    if (slice.redundantPicCnt > 0) {
        // A redundant copy of a picture already held: part of its access unit.
        if (!m_unitOpen)
            Open(position);
        return 0;
    }
    if (!m_hasPicture || !StartsNewPicture(slice)) {
        if (!m_unitOpen)
            Open(position);
        if (!m_hasPicture)
            return BeginPicture(slice);
        AddSlice(slice);
        return 0;
    }
    // Closing first would lose the open picture if counting failed.
    const AccessUnit closing = m_open;
    const AvcSeiMessages closingMessages = m_messages;
    Close(position, completed);
    Open(position);
    if ((result = BeginPicture(slice)) < 0) {
        m_open = closing;
        m_messages = closingMessages;
        m_unitOpen = m_hasPicture = true;
        return result;
    }
    return 1;
}

int AvcAccessUnitSplitter::BeginPicture(const AvcSliceHeader& slice)
{
    const AvcPictureParameterSet& pps = *m_pictureTable[slice.pictureSetId];
    const AvcSequenceParameterSet& sps = *m_sequenceTable[pps.sequenceSetId];
    AvcPictureOrderCounter::Counts counts;
    const int result = m_counter.Next(sps, slice, slice.memoryManagementReset, counts);
    if (result < 0)
        return result;
    m_open.pictureType = TypeOfSlice(slice.sliceType);
    m_open.structure = !slice.fieldPic ? FramePicture : slice.bottomField ? BottomField : TopField;
    m_open.idr = slice.IsIdr();
    m_open.memoryManagementReset = slice.memoryManagementReset;
    m_open.startsPeriod = m_open.idr || m_open.memoryManagementReset;
    // After a reset the picture's own count is 0 (its fields keep their
    // distance, which does not change its place among the next ones).
    m_open.pictureOrderCount = m_open.memoryManagementReset ? 0 : counts.picture;
    m_open.bottomFieldFirst = slice.fieldPic ? slice.bottomField : counts.bottom < counts.top;
    m_open.sequenceSetId = pps.sequenceSetId;
    m_open.pictureSetId = pps.id;
    m_open.sliceCount = 1;
    m_activeSequenceSet = &sps;
    m_lastSlice = slice;
    m_hasPicture = true;
    m_seenPicture = true;
    return 0;
}

void AvcAccessUnitSplitter::AddSlice(const AvcSliceHeader& slice)
{
    const PictureType type = TypeOfSlice(slice.sliceType);
    if (type == BidirectionalPicture || (type == PredictedPicture && m_open.pictureType == IntraPicture))
        m_open.pictureType = type;
    ++m_open.sliceCount;
    m_lastSlice = slice;
}

int AvcAccessUnitSplitter::Finish(int64_t end, AccessUnit& completed)
{
    return Close(end, completed) ? 1 : 0;
}

} // namespace Quorvex::Vek
