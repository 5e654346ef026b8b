#include <vek/containers/readers/hevc/CMpegHevcContainerReader.h>

#include <algorithm>

#include <vek/containers/readers/elementary/SequenceFacts.h>
#include <vek/core/Log.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/io/CMemoryStream.h>
#include <vek/media/VideoFormat.h>
#include <vek/samples/CMpegHevcDataReference.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {

// What the search for the first picture found: where the stream starts,
// and the parameter sets before the first picture, for the 'hvcC' record.
struct CMpegHevcContainerReader::Found {
    enum : int32_t { MaxSets = 16, SetBytes = 16384 };
    struct Set {
        int32_t offset; // into bytes
        int32_t size;
        uint8_t type;
    };

    bool picture = false;
    int64_t firstPicture = 0; // where its access unit begins
    int failure = RESULT_OK; // the last unit that could not be read before it
    uint32_t sequenceSetId = 0;
    RObject<CByteArray> bytes;
    int32_t used = 0;
    Set sets[MaxSets] = {};
    int32_t setCount = 0;
    bool setsLeftOut = false;
};

namespace {

// The first ProbeBytes of a stream (from its current position) as a memory
// stream, so that the search for the headers never reads further.
int ReadWindow(CStream* stream, RObject<CByteArray>& bytes, RObject<CMemoryStream>& window)
{
    const int64_t length = stream->GetLength();
    const int32_t capacity = length >= 0 && length < CMpegHevcContainerReader::ProbeBytes
                                 ? int32_t(length)
                                 : int32_t(CMpegHevcContainerReader::ProbeBytes);
    bytes = RObject<CByteArray>(CByteArray::Create(nullptr, capacity));
    if (!bytes || (capacity > 0 && !bytes->GetData()))
        return RESULT_OUT_OF_MEMORY;
    int32_t filled = 0;
    while (filled < capacity) {
        const int read = stream->Read(bytes->GetData() + filled, capacity - filled);
        if (read < 0)
            return read;
        if (read == 0)
            break;
        filled += read;
    }
    window = RObject<CMemoryStream>(new (fallible) CMemoryStream(bytes, 0, filled));
    return window ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

// Bytes of a unit without the zero bytes that may trail it before the next
// prefix (they belong to the byte stream, not to the unit).
int32_t WithoutTrailingZeros(const uint8_t* head, int32_t size)
{
    while (size > 0 && head[size - 1] == 0)
        --size;
    return size;
}

} // namespace

CMpegHevcContainerReader::CMpegHevcContainerReader() : CMpegHevcContainerReader(0) {}

CMpegHevcContainerReader::CMpegHevcContainerReader(unsigned int flags) : CVideoStreamReader(Type, flags) {}

CMpegHevcContainerReader::~CMpegHevcContainerReader() = default;

CContainerDataReference* CMpegHevcContainerReader::MakeRange(int64_t position, int32_t size)
{
    return new (fallible) CMpegHevcDataReference(position, size, CMpegHevcDataReference::AnnexB);
}

int CMpegHevcContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    RObject<CByteArray> bytes;
    RObject<CMemoryStream> window;
    Found found;
    if (ReadWindow(stream, bytes, window) < 0 || FindFirstPicture(window, found) < 0 || !found.picture)
        return 0;
    // Zero bytes may pad a stream's start; other bytes are not the stream's.
    const uint8_t* start = bytes->GetData();
    const bool padded = std::all_of(start, start + found.firstPicture, [](uint8_t byte) { return byte == 0; });
    Log(LogLevel::Detail, "CMpegHevcContainerReader::Validate: parameter sets and a first picture at %lld\n",
        static_cast<long long>(found.firstPicture));
    return padded ? MatchScore : MatchScoreAfterGarbage;
}

// Keeps a copy of a parameter set unit for the decoder configuration; sets
// beyond the room are left out of it (logged once the search ends).
int CMpegHevcContainerReader::KeepParameterSet(const StartCodeUnitReader::Unit& unit, Found& found)
{
    if (!found.bytes) {
        found.bytes = RObject<CByteArray>(CByteArray::Create(nullptr, Found::SetBytes));
        if (!found.bytes || !found.bytes->GetData())
            return RESULT_OUT_OF_MEMORY;
    }
    const int32_t size = WithoutTrailingZeros(unit.head, unit.headSize);
    if (unit.headSize < unit.PayloadSize() || found.setCount == Found::MaxSets || size > Found::SetBytes - found.used) {
        found.setsLeftOut = true;
        return RESULT_OK;
    }
    std::copy(unit.head, unit.head + size, found.bytes->GetData() + found.used);
    found.sets[found.setCount++] = {found.used, size, uint8_t(unit.head[0] >> 1 & 63)};
    found.used += size;
    return RESULT_OK;
}

// Walks `stream` (a window on the file's start) to the first slice segment
// of the first picture that can be read with the parameter sets before it.
// A unit that cannot be read before that point is taken for garbage: the
// search starts over after it (found.failure keeps its code). 0 with
// found.picture set when a picture was found, 0 without it when the window
// holds none, or the failure of the walk itself.
int CMpegHevcContainerReader::FindFirstPicture(CStream* stream, Found& found)
{
    m_splitter.Reset();
    // The picture walk's unit reader serves the search too: it keeps its
    // block, and StartPictures starts it over.
    int result = m_units.Reset(stream, 0, HeadBytes);
    StartCodeUnitReader::Unit unit;
    HevcAccessUnitSplitter::AccessUnit completed;
    while (result >= 0 && (result = m_units.Next(unit)) == 0) {
        const uint8_t type = unit.headSize > 0 ? uint8_t(unit.head[0] >> 1 & 63) : 0;
        const int fed = m_splitter.Feed(unit.start, unit.head, size_t(unit.headSize), completed);
        if (fed < 0) {
            found.failure = fed;
            found.used = 0;
            found.setCount = 0;
            m_splitter.Reset();
            continue;
        }
        if (type >= HevcNalHeader::VideoParameterSet && type <= HevcNalHeader::PictureParameterSet &&
            (result = KeepParameterSet(unit, found)) < 0)
            break;
        if (const HevcAccessUnitSplitter::AccessUnit* picture = m_splitter.GetOpenPicture()) {
            // A slice header cannot be read without its picture and
            // sequence sets; the video set must have been seen too.
            const HevcSequenceParameterSet* sps = m_splitter.GetSequenceSet(picture->sequenceSetId);
            found.picture = sps && m_splitter.GetVideoSet(sps->videoSetId);
            found.sequenceSetId = picture->sequenceSetId;
            found.firstPicture = picture->position;
            return RESULT_OK;
        }
    }
    return result < 0 ? result : RESULT_OK;
}

int CMpegHevcContainerReader::ReadStreamHeader(VideoStreamFacts& facts)
{
    RObject<CByteArray> bytes;
    RObject<CMemoryStream> window;
    Found found;
    int result = ReadWindow(GetStream(), bytes, window);
    if (result >= 0)
        result = FindFirstPicture(window, found);
    if (result < 0) {
        Log(LogLevel::Error, "CMpegHevcContainerReader::BeginIndex: reading the stream's start failed with %s\n",
            GetResultName(result));
        return result;
    }
    const HevcSequenceParameterSet* sps = m_splitter.GetSequenceSet(found.sequenceSetId);
    if (!found.picture || !sps) {
        Log(LogLevel::Error, "CMpegHevcContainerReader::BeginIndex: no video, sequence and picture parameter set "
            "with a slice segment in the first %d bytes (last unit refused: %s)\n", int32_t(ProbeBytes),
            GetResultName(found.failure));
        return RESULT_FORMAT_ERROR;
    }
    if (found.firstPicture > 0)
        Log(LogLevel::Warning, "CMpegHevcContainerReader::BeginIndex: %lld bytes before the first access unit are "
            "not read\n", static_cast<long long>(found.firstPicture));
    m_firstPicture = found.firstPicture;
    Log(LogLevel::Detail, "CMpegHevcContainerReader::BeginIndex: first picture at %lld, sequence set %u: %ux%u, "
        "profile %u, level %u, %zu-bit, chroma format %u\n", static_cast<long long>(found.firstPicture),
        found.sequenceSetId, sps->width, sps->height, sps->profileTierLevel.profileIdc,
        sps->profileTierLevel.levelIdc, size_t(sps->bitDepthLuma), sps->chromaFormatIdc);
    DescribeSequence(*sps, facts);
    return MakeDecoderConfiguration(*sps, found, facts);
}

void CMpegHevcContainerReader::DescribeSequence(const HevcSequenceParameterSet& sps, VideoStreamFacts& facts)
{
    SequenceFacts::DescribeHevc("CMpegHevcContainerReader::BeginIndex", sps, facts);
}

int CMpegHevcContainerReader::MakeDecoderConfiguration(const HevcSequenceParameterSet& sps, const Found& found,
                                                       VideoStreamFacts& facts)
{
    if (found.setsLeftOut)
        Log(LogLevel::Warning, "CMpegHevcContainerReader::BeginIndex: parameter sets beyond %d units or %d bytes "
            "(or longer than %d) are left out of the decoder configuration\n", int32_t(Found::MaxSets),
            int32_t(Found::SetBytes), int32_t(HeadBytes));
    HevcDecoderConfiguration record;
    record.profileTierLevel = sps.profileTierLevel;
    record.minSpatialSegmentationIdc = uint16_t(sps.vui.minSpatialSegmentationIdc & 0xFFF);
    record.chromaFormatIdc = uint8_t(sps.chromaFormatIdc);
    record.bitDepthLuma = uint8_t(sps.bitDepthLuma);
    record.bitDepthChroma = uint8_t(sps.bitDepthChroma);
    record.numTemporalLayers = sps.maxSubLayers;
    record.temporalIdNested = sps.temporalIdNesting;
    record.lengthBytes = 4;
    // Units of one type form one array: video, sequence, then picture sets.
    for (uint8_t type = HevcNalHeader::VideoParameterSet; type <= HevcNalHeader::PictureParameterSet; ++type)
        for (int32_t i = 0; i < found.setCount; ++i)
            if (found.sets[i].type == type)
                record.units[record.unitCount++] = {found.bytes->GetData() + found.sets[i].offset,
                                                    uint16_t(found.sets[i].size), type, true};
    const size_t size = record.WrittenSize();
    if (size == 0 || size > size_t(INT32_MAX)) {
        Log(LogLevel::Warning, "CMpegHevcContainerReader::BeginIndex: the parameter sets make no decoder "
            "configuration record\n");
        return RESULT_OK;
    }
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, int32_t(size)));
    if (!bytes || !bytes->GetData())
        return RESULT_OUT_OF_MEMORY;
    size_t written = 0;
    const int result = record.Write(bytes->GetData(), size, written);
    if (result < 0)
        return result;
    facts.decoderConfiguration = bytes;
    return RESULT_OK;
}

int CMpegHevcContainerReader::StartPictures()
{
    m_splitter.Reset();
    m_streamEnd = 0;
    m_unitsEnded = false;
    m_walkDone = false;
    m_walkFailure = RESULT_OK;
    m_output.Reset();
    m_waitingFirst = 0;
    CStream* stream = GetStream();
    int result = stream->Seek(m_firstPicture, CStream::Begin);
    if (result >= 0)
        result = m_units.Reset(stream, m_firstPicture, HeadBytes);
    return result < 0 ? result : RESULT_OK;
}

// The next access unit from the walk: 0 and the unit, 1 at the end (also
// after a unit that could not be read: its failure is kept for the end),
// or the stream's failure.
int CMpegHevcContainerReader::NextAccessUnit(HevcAccessUnitSplitter::AccessUnit& completed)
{
    StartCodeUnitReader::Unit unit;
    while (!m_unitsEnded) {
        int result = m_units.Next(unit);
        if (result < 0)
            return result;
        if (result > 0) {
            m_unitsEnded = true;
            break;
        }
        m_streamEnd = unit.end;
        result = m_splitter.Feed(unit.start, unit.head, size_t(unit.headSize), completed);
        if (result > 0)
            return RESULT_OK;
        if (result < 0) {
            // The picture before the unreadable unit is whole: it is handed
            // out, then the failure.
            m_walkFailure = result;
            m_unitsEnded = true;
            m_streamEnd = unit.start;
            break;
        }
    }
    const int result = m_splitter.Finish(m_streamEnd, completed);
    return result < 0 ? result : result == 1 ? RESULT_OK : 1;
}

// Pictures wait in decode order until the output process has decided
// whether a decoder outputs them.
int CMpegHevcContainerReader::ReadNextPicture(CodedPicture& picture)
{
    for (;;) {
        bool output = false;
        if (m_output.TakeDecided(output)) {
            picture = m_waiting[m_waitingFirst];
            m_waitingFirst = (m_waitingFirst + 1) % HevcPictureOutput::Capacity;
            picture.exclude = picture.exclude || !output;
            return RESULT_OK;
        }
        if (m_walkDone) {
            if (m_output.GetCount() == 0)
                return m_walkFailure < 0 ? m_walkFailure : 1;
            m_output.Finish();
            continue;
        }
        HevcAccessUnitSplitter::AccessUnit unit;
        int result = NextAccessUnit(unit);
        if (result < 0)
            return result;
        if (result > 0) {
            m_walkDone = true;
            continue;
        }
        CodedPicture& described = m_waiting[(m_waitingFirst + m_output.GetCount()) % HevcPictureOutput::Capacity];
        if ((result = DescribePicture(unit, described)) < 0)
            return result;
        const HevcSequenceParameterSet* sps = m_splitter.GetSequenceSet(unit.sequenceSetId);
        HevcPictureOutput::Picture decoded;
        decoded.picOrderCount = unit.picOrderCount;
        decoded.output = !described.exclude;
        decoded.startsSequence = unit.newSequence;
        decoded.dropsWaiting = unit.dropsWaiting;
        decoded.maxReorder = sps ? sps->maxNumReorderPics[sps->maxSubLayers - 1] : 0;
        m_output.Decode(decoded);
    }
}

int CMpegHevcContainerReader::DescribePicture(const HevcAccessUnitSplitter::AccessUnit& unit, CodedPicture& picture)
{
    if (unit.size > INT32_MAX) {
        Log(LogLevel::Error, "CMpegHevcContainerReader::ReadVideoSample: access unit at %lld of %lld bytes is "
            "too large\n", static_cast<long long>(unit.position), static_cast<long long>(unit.size));
        return RESULT_FORMAT_ERROR;
    }
    picture = CodedPicture();
    picture.position = unit.position;
    picture.size = int32_t(unit.size);
    picture.pictureType = unit.pictureType == HevcSliceHeader::B   ? CVideoSample::B
                          : unit.pictureType == HevcSliceHeader::P ? CVideoSample::P
                                                                    : CVideoSample::I;
    picture.key = unit.key;
    picture.exclude = unit.skipped || !unit.picOutput;
    picture.startsPeriod = unit.newSequence;
    picture.displayKey = unit.picOrderCount;
    const int32_t frame = GetFrameDuration();
    const int32_t field = frame / 2;
    picture.structure = CVideoSample::Frame;
    picture.duration = frame;
    switch (unit.picStruct) {
    case 1:
    case 9:
    case 11: picture.structure = CVideoSample::UpperField; picture.duration = field; break;
    case 2:
    case 10:
    case 12: picture.structure = CVideoSample::LowerField; picture.duration = field; break;
    case 5:
    case 6: picture.duration = frame + field; break;
    case 7: picture.duration = 2 * frame; break;
    case 8: picture.duration = 3 * frame; break;
    case -1: {
        const HevcSequenceParameterSet* sps = m_splitter.GetSequenceSet(unit.sequenceSetId);
        if (sps && sps->vuiPresent && sps->vui.fieldSeq) {
            picture.structure = (unit.picOrderCount & 1) == 0 ? CVideoSample::UpperField : CVideoSample::LowerField;
            picture.duration = field;
        }
        break;
    }
    default: break;
    }
    return RESULT_OK;
}

} // namespace Quorvex::Vek
