#include <vek/elementary/HevcAccessUnitSplitter.h>

#include <vek/core/Log.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/HevcNalHeader.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "HevcAccessUnitSplitter::Feed";
constexpr uint32_t PictureTimingPayload = 1;

// An SEI payload type or size: 0xFF bytes add up until a smaller one ends it.
uint32_t ReadSeiNumber(BitReader& bits)
{
    uint32_t value = 0;
    for (uint32_t byte = 0xFF; byte == 0xFF && !bits.HasError();) {
        byte = bits.ReadBits(8);
        value += byte;
        if (value > (1u << 24))
            bits.SetError();
    }
    return value;
}

} // namespace

HevcAccessUnitSplitter::HevcAccessUnitSplitter() = default;

void HevcAccessUnitSplitter::Reset()
{
    for (auto& seen : m_videoSeen)
        seen = nullptr;
    for (auto& seen : m_sequenceSeen)
        seen = nullptr;
    for (auto& seen : m_pictureSeen)
        seen = nullptr;
    m_counter = HevcPictureOrderCounter();
    m_open = AccessUnit();
    m_haveOpen = false;
    m_boundary = -1;
    m_lastPosition = 0;
    m_completedCount = 0;
    m_pendingPicStruct = -1;
}

const HevcVideoParameterSet* HevcAccessUnitSplitter::GetVideoSet(uint32_t id) const
{
    return id < VideoSets ? m_videoSeen[id] : nullptr;
}

const HevcSequenceParameterSet* HevcAccessUnitSplitter::GetSequenceSet(uint32_t id) const
{
    return id < SequenceSets ? m_sequenceSeen[id] : nullptr;
}

const HevcPictureParameterSet* HevcAccessUnitSplitter::GetPictureSet(uint32_t id) const
{
    return id < PictureSets ? m_pictureSeen[id] : nullptr;
}

bool HevcAccessUnitSplitter::MayBeginAccessUnit(uint8_t type)
{
    return (type >= HevcNalHeader::VideoParameterSet && type <= HevcNalHeader::AccessUnitDelimiter) ||
           type == HevcNalHeader::PrefixSei || (type >= 41 && type <= 44) || (type >= 48 && type <= 55);
}

int HevcAccessUnitSplitter::Feed(int64_t position, const uint8_t* unit, size_t size, AccessUnit& completed)
{
    if (position < m_lastPosition)
        return FieldCheck::Refuse(Where, "unit position (before the previous unit)", position);
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header))
        return FieldCheck::Refuse(Where, "NAL unit header", size >= 2 && unit ? int64_t(unit[0]) << 8 | unit[1] : -1);
    m_lastPosition = position;
    if (!m_haveOpen) {
        m_open = AccessUnit();
        m_open.position = position;
        m_haveOpen = true;
    }
    if (header.layerId != 0)
        return RESULT_OK;
    const uint8_t type = header.type;
    if (HevcNalHeader::IsSlice(type)) {
        const bool firstInPicture = size > 2 && (unit[2] & 0x80) != 0;
        int result = RESULT_OK;
        if (firstInPicture && m_open.hasPicture) {
            Close(m_boundary >= 0 ? m_boundary : position, completed);
            result = 1;
        }
        const int read = ReadSlice(unit, size);
        return read < 0 ? read : result;
    }
    if (m_open.hasPicture && m_boundary < 0 && MayBeginAccessUnit(type))
        m_boundary = position;
    switch (type) {
    case HevcNalHeader::VideoParameterSet:
    case HevcNalHeader::SequenceParameterSet:
    case HevcNalHeader::PictureParameterSet: return ReadParameterSet(type, unit, size);
    case HevcNalHeader::PrefixSei: ReadPictureTiming(unit, size); return RESULT_OK;
    case HevcNalHeader::EndOfSequence: m_counter.EndOfSequence(); return RESULT_OK;
    default: return RESULT_OK;
    }
}

int HevcAccessUnitSplitter::Finish(int64_t end, AccessUnit& completed)
{
    if (!m_haveOpen || !m_open.hasPicture)
        return 0;
    if (end < m_open.position)
        return FieldCheck::Refuse("HevcAccessUnitSplitter::Finish", "stream end (before the last access unit)", end);
    m_boundary = -1;
    Close(end, completed);
    return 1;
}

void HevcAccessUnitSplitter::Close(int64_t end, AccessUnit& completed)
{
    m_open.size = end - m_open.position;
    completed = m_open;
    ++m_completedCount;
    m_open = AccessUnit();
    m_open.position = end;
    m_boundary = -1;
}

int HevcAccessUnitSplitter::ReadParameterSet(uint8_t type, const uint8_t* unit, size_t size)
{
    if (type == HevcNalHeader::VideoParameterSet) {
        HevcVideoParameterSet set;
        const int result = HevcVideoParameterSet::Parse(unit, size, set);
        if (result < 0)
            return result;
        const uint32_t id = set.id % VideoSets; // four bits: always in the table
        m_videoSets[id] = set;
        m_videoSeen[id] = &m_videoSets[id];
        return RESULT_OK;
    }
    if (type == HevcNalHeader::SequenceParameterSet) {
        // Parsed aside: a set that fails leaves the one with its id intact.
        static_assert(uint32_t(HevcSequenceParameterSet::MaxId) < uint32_t(SequenceSets), "sequence set ids fit the table");
        HevcSequenceParameterSet set;
        const int result = HevcSequenceParameterSet::Parse(unit, size, set);
        if (result < 0)
            return result;
        m_sequenceSets[set.id] = set;
        m_sequenceSeen[set.id] = &m_sequenceSets[set.id];
        return RESULT_OK;
    }
    static_assert(uint32_t(HevcPictureParameterSet::MaxId) < uint32_t(PictureSets), "picture set ids fit the table");
    HevcPictureParameterSet set;
    const int result = HevcPictureParameterSet::Parse(unit, size, set);
    if (result < 0)
        return result;
    m_pictureSets[set.id] = set;
    m_pictureSeen[set.id] = &m_pictureSets[set.id];
    return RESULT_OK;
}

int HevcAccessUnitSplitter::ReadSlice(const uint8_t* unit, size_t size)
{
    HevcSliceHeader slice;
    const int result = HevcSliceHeader::Parse(unit, size, m_pictureSeen, m_sequenceSeen, slice);
    if (result < 0)
        return result;
    if (slice.firstSliceSegmentInPic) {
        const HevcSequenceParameterSet& sps = *m_sequenceSeen[m_pictureSeen[slice.pictureSetId]->sequenceSetId];
        StartPicture(slice, sps);
        return RESULT_OK;
    }
    if (!m_open.hasPicture) {
        // A stream cut inside a picture: its remaining segments travel with
        // the next picture's access unit, undecodable but not lost.
        Log(LogLevel::Warning, "%s: slice segment at address %u without the first segment of its picture\n", Where,
            slice.segmentAddress);
        return RESULT_OK;
    }
    ++m_open.sliceSegments;
    if (slice.dependent)
        return RESULT_OK;
    if (slice.sliceType == HevcSliceHeader::B)
        m_open.pictureType = HevcSliceHeader::B;
    else if (slice.sliceType == HevcSliceHeader::P && m_open.pictureType == HevcSliceHeader::I)
        m_open.pictureType = HevcSliceHeader::P;
    return RESULT_OK;
}

void HevcAccessUnitSplitter::StartPicture(const HevcSliceHeader& slice, const HevcSequenceParameterSet& sps)
{
    const uint8_t type = slice.nalType;
    m_open.hasPicture = true;
    m_open.sliceSegments = 1;
    m_open.nalType = type;
    m_open.temporalId = slice.temporalId;
    m_open.pictureType = slice.sliceType;
    m_open.picOrderCount = m_counter.Next(sps, slice);
    m_open.key = HevcNalHeader::IsIrap(type);
    m_open.newSequence = m_open.key && m_counter.SkipsLeadingPictures();
    m_open.skipped = HevcNalHeader::IsRasl(type) && m_counter.SkipsLeadingPictures();
    m_open.dropsWaiting = m_open.newSequence && (type == HevcNalHeader::Cra || slice.noOutputOfPriorPics);
    m_open.picOutput = slice.picOutput && !m_open.skipped;
    m_open.sequenceSetId = m_pictureSeen[slice.pictureSetId]->sequenceSetId;
    m_open.picStruct = sps.vuiPresent && sps.vui.frameFieldInfoPresent ? m_pendingPicStruct : -1;
    m_pendingPicStruct = -1;
}

// Keeps pic_struct of a picture timing message for the next picture. Its
// first four bits are pic_struct whenever the sequence sends them, which is
// only known once the picture's sequence set is: StartPicture decides. A
// message that cannot be read is passed over: it times, it does not decode.
void HevcAccessUnitSplitter::ReadPictureTiming(const uint8_t* unit, size_t size)
{
    BitReader bits(unit + 2, size - 2);
    while (!bits.HasError() && bits.MoreRbspData()) {
        const uint32_t payloadType = ReadSeiNumber(bits);
        const uint32_t payloadSize = ReadSeiNumber(bits);
        if (bits.HasError())
            break;
        if (payloadType == PictureTimingPayload) {
            const uint32_t picStruct = bits.ReadBits(4);
            if (!bits.HasError() && payloadSize > 0)
                m_pendingPicStruct = int32_t(picStruct);
            return;
        }
        bits.SkipBits(uint64_t(payloadSize) * 8);
    }
    if (bits.HasError())
        Log(LogLevel::Detail, "%s: an SEI unit ends inside a message; its timing is not used\n", Where);
}

} // namespace Quorvex::Vek
