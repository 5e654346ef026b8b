#include <vek/containers/readers/avc/CMpeg4AvcContainerReader.h>

#include <vek/containers/readers/elementary/SequenceFacts.h>
#include <vek/core/Allocation.h>
#include <vek/core/Log.h>
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/io/CMemoryStream.h>
#include <vek/media/VideoFormat.h>
#include <vek/samples/CMpeg4AvcDataReference.h>

#include <cstring>
#include <memory>

namespace Quorvex::Vek {

namespace {

constexpr const char* Name = "CMpeg4AvcContainerReader";

uint32_t FieldOrderOf(const AvcSequenceParameterSet& sps, const AvcAccessUnitSplitter::AccessUnit& first)
{
    if (sps.frameMbsOnly)
        return CVideoProperties::FieldOrderProgressive;
    if (first.hasPicStruct) {
        switch (first.picStruct) {
        case 1:
        case 3:
        case 5: return CVideoProperties::FieldOrderTopFirst;
        case 2:
        case 4:
        case 6: return CVideoProperties::FieldOrderBottomFirst;
        default: return CVideoProperties::FieldOrderProgressive;
        }
    }
    return first.bottomFieldFirst ? CVideoProperties::FieldOrderBottomFirst : CVideoProperties::FieldOrderTopFirst;
}

// The unit's bytes without the trailing zero bytes that pad it.
int32_t TrimmedSize(const uint8_t* data, int32_t size)
{
    while (size > 0 && data[size - 1] == 0)
        --size;
    return size;
}

} // namespace

CMpeg4AvcContainerReader::CMpeg4AvcContainerReader() : CMpeg4AvcContainerReader(0) {}

CMpeg4AvcContainerReader::CMpeg4AvcContainerReader(unsigned int flags) : CVideoStreamReader(Type, flags) {}

CMpeg4AvcContainerReader::~CMpeg4AvcContainerReader()
{
    delete m_splitter;
}

int CMpeg4AvcContainerReader::MakeSplitter()
{
    if (!m_splitter)
        m_splitter = new (fallible) AvcAccessUnitSplitter();
    if (!m_splitter) {
        Log(LogLevel::Error, "%s: no memory for the access unit splitter\n", Name);
        return RESULT_OUT_OF_MEMORY;
    }
    m_splitter->Reset();
    return RESULT_OK;
}

void CMpeg4AvcContainerReader::KeepSet(const StartCodeUnitReader::Unit& unit, SetBytes* sequenceSet,
                                       SetBytes* pictureSet)
{
    AvcNalHeader header;
    if (!sequenceSet || !pictureSet || !AvcNalHeader::Parse(unit.head, size_t(unit.headSize), header))
        return;
    SetBytes* kept = header.type == AvcNalHeader::SequenceParameterSet ? sequenceSet
                     : header.type == AvcNalHeader::PictureParameterSet ? pictureSet
                                                                         : nullptr;
    if (!kept)
        return;
    // A set longer than the head cannot go into the configuration.
    kept->size = unit.PayloadSize() > unit.headSize ? 0 : unit.headSize;
    std::memcpy(kept->data, unit.head, size_t(unit.headSize));
}

int CMpeg4AvcContainerReader::FindFirstPicture(CStream* stream, FirstPicture& first, SetBytes* sequenceSet,
                                               SetBytes* pictureSet)
{
    int result = MakeSplitter();
    if (result < 0 || (result = m_units.Reset(stream)) < 0)
        return result;
    StartCodeUnitReader::Unit unit;
    int64_t end = 0;
    bool found = false;
    while (!found && (result = m_units.Next(unit)) == 0) {
        if (unit.start >= ProbeLimit) {
            // A first picture that runs past the limit still counts.
            found = m_splitter->Finish(unit.start, first.unit) == 1;
            break;
        }
        end = unit.end;
        result = m_splitter->Feed(unit.start, unit.head, size_t(unit.headSize), first.unit);
        if (result < 0)
            return result;
        found = result == 1;
        if (!found)
            KeepSet(unit, sequenceSet, pictureSet);
    }
    if (result < 0)
        return result;
    if (!found && result == 1)
        found = m_splitter->Finish(end, first.unit) == 1;
    first.leadingBytes = m_units.GetLeadingBytes();
    if (!found) {
        Log(LogLevel::Detail, "%s: no picture with its parameter sets in the first %lld bytes\n", Name,
            static_cast<long long>(ProbeLimit));
        return RESULT_ERROR;
    }
    return RESULT_OK;
}

// The first ProbeLimit bytes of `stream` (from its position) as a stream
// of their own, so that probing reads no further whatever the file holds.
CMemoryStream* CMpeg4AvcContainerReader::ReadProbeWindow(CStream* stream)
{
    // A short file needs no more than its own length.
    const int64_t length = stream->GetLength();
    const int64_t position = stream->GetPosition();
    int32_t capacity = int32_t(ProbeLimit);
    if (length >= 0 && position >= 0 && position <= length && length - position < capacity)
        capacity = int32_t(length - position);
    RObject<CByteArray> window(CByteArray::Create(nullptr, capacity));
    if (!window || (capacity > 0 && !window->GetData()))
        return nullptr;
    int32_t filled = 0;
    while (filled < capacity) {
        const int read = stream->Read(window->GetData() + filled, capacity - filled);
        if (read <= 0)
            break;
        filled += read;
    }
    return new (fallible) CMemoryStream(window, 0, filled);
}

int CMpeg4AvcContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    RObject<CMemoryStream> window(ReadProbeWindow(stream));
    FirstPicture first;
    if (!window || FindFirstPicture(window, first, nullptr, nullptr) < 0)
        return 0;
    bool zeros = true;
    unsigned char byte = 0;
    window->Seek(0, CStream::Begin);
    for (int64_t i = 0; zeros && i < first.leadingBytes; ++i)
        zeros = window->Read(&byte, 1) == 1 && byte == 0;
    const int score = zeros ? StartScore : DisplacedScore;
    Log(LogLevel::Detail, "%s: a %s picture with its sets at %lld (%lld bytes before the first start code): score %d\n",
        Name, first.unit.idr ? "IDR" : "non-IDR", static_cast<long long>(first.unit.position),
        static_cast<long long>(first.leadingBytes), score);
    return score;
}

int CMpeg4AvcContainerReader::ReadStreamHeader(VideoStreamFacts& facts)
{
    std::unique_ptr<SetBytes[]> sets(new (fallible) SetBytes[2]);
    if (!sets)
        return RESULT_OUT_OF_MEMORY;
    FirstPicture first;
    int result = FindFirstPicture(GetStream(), first, &sets[0], &sets[1]);
    if (result < 0) {
        Log(LogLevel::Error, "%s: no H.264 picture with its parameter sets in the first %lld bytes (%s)\n", Name,
            static_cast<long long>(ProbeLimit), GetResultName(result));
        return result;
    }
    if ((result = DescribeStream(first, facts)) < 0)
        return result;
    const AvcSequenceParameterSet& sps = *m_splitter->GetSequenceSet(first.unit.sequenceSetId);
    return MakeDecoderConfiguration(sets[0], sets[1], sps, first.unit.pictureSetId, facts);
}

int CMpeg4AvcContainerReader::DescribeStream(const FirstPicture& first, VideoStreamFacts& facts)
{
    const AvcSequenceParameterSet& sps = *m_splitter->GetSequenceSet(first.unit.sequenceSetId);
    SequenceFacts::DescribeAvc(sps, facts);
    facts.fieldOrder = FieldOrderOf(sps, first.unit);
    Log(LogLevel::Detail, "%s: %s profile level %s, %dx%d (coded %dx%d), %s, first picture at %lld\n", Name,
        facts.profile, facts.level, facts.width, facts.height, facts.codedWidth, facts.codedHeight, facts.scan,
        static_cast<long long>(first.unit.position));
    return RESULT_OK;
}

int CMpeg4AvcContainerReader::MakeDecoderConfiguration(const SetBytes& sequenceSet, const SetBytes& pictureSet,
                                                       const AvcSequenceParameterSet& sps, uint32_t pictureSetId,
                                                       VideoStreamFacts& facts)
{
    AvcDecoderConfiguration configuration;
    configuration.profileIdc = sps.profileIdc;
    configuration.profileCompatibility = sps.constraintFlags;
    configuration.levelIdc = sps.levelIdc;
    configuration.lengthBytes = 4;
    configuration.sequenceSetCount = 1;
    configuration.sequenceSets[0].data = sequenceSet.data;
    configuration.sequenceSets[0].size = uint16_t(TrimmedSize(sequenceSet.data, sequenceSet.size));
    configuration.pictureSetCount = 1;
    configuration.pictureSets[0].data = pictureSet.data;
    configuration.pictureSets[0].size = uint16_t(TrimmedSize(pictureSet.data, pictureSet.size));
    configuration.hasHighProfileExtension = AvcDecoderConfiguration::IsHighProfile(sps.profileIdc);
    configuration.chromaFormatIdc = uint8_t(sps.chromaFormatIdc);
    configuration.bitDepthLuma = uint8_t(sps.bitDepthLuma);
    configuration.bitDepthChroma = uint8_t(sps.bitDepthChroma);
    // The sets kept are the last ones before the first picture; another
    // id than the picture's (or a set too long to keep) gives no record.
    AvcSequenceParameterSet keptSequence;
    AvcPictureParameterSet keptPicture;
    const bool usable =
        configuration.sequenceSets[0].size > 0 && configuration.pictureSets[0].size > 0 &&
        AvcSequenceParameterSet::Parse(sequenceSet.data, size_t(sequenceSet.size), keptSequence) == 0 &&
        keptSequence.id == sps.id &&
        AvcPictureParameterSet::Parse(pictureSet.data, size_t(pictureSet.size), nullptr, keptPicture) == 0 &&
        keptPicture.id == pictureSetId;
    if (!usable) {
        Log(LogLevel::Warning, "%s: the sets of the first picture (%u, %u) are not the last ones before it, or longer "
            "than %d bytes: the stream has no decoder configuration\n", Name, sps.id, pictureSetId,
            int(StartCodeUnitReader::DefaultHeadCapacity));
        return RESULT_OK;
    }
    const size_t size = configuration.WrittenSize();
    RObject<CByteArray> record(size > 0 ? CByteArray::Create(nullptr, int32_t(size)) : nullptr);
    if (!record)
        return size > 0 ? RESULT_OUT_OF_MEMORY : RESULT_OK;
    if (!record->GetData())
        return RESULT_OUT_OF_MEMORY;
    size_t written = 0;
    const int result = configuration.Write(record->GetData(), size, written);
    if (result < 0)
        return result;
    facts.decoderConfiguration = record;
    return RESULT_OK;
}

int CMpeg4AvcContainerReader::StartPictures()
{
    m_ended = false;
    m_failure = RESULT_OK;
    m_streamEnd = 0;
    const int result = MakeSplitter();
    return result < 0 ? result : m_units.Reset(GetStream());
}

int CMpeg4AvcContainerReader::ToCodedPicture(const AvcAccessUnitSplitter::AccessUnit& unit, CodedPicture& picture)
{
    if (unit.end - unit.position > INT32_MAX) {
        Log(LogLevel::Error, "%s: the access unit at %lld is %lld bytes long\n", Name,
            static_cast<long long>(unit.position), static_cast<long long>(unit.end - unit.position));
        return RESULT_FORMAT_ERROR;
    }
    picture.position = unit.position;
    picture.size = int32_t(unit.end - unit.position);
    picture.pictureType = unit.pictureType == AvcAccessUnitSplitter::BidirectionalPicture ? CVideoSample::B
                          : unit.pictureType == AvcAccessUnitSplitter::PredictedPicture   ? CVideoSample::P
                                                                                           : CVideoSample::I;
    picture.structure = unit.structure == AvcAccessUnitSplitter::TopField      ? CVideoSample::UpperField
                        : unit.structure == AvcAccessUnitSplitter::BottomField ? CVideoSample::LowerField
                                                                                : CVideoSample::Frame;
    picture.duration = unit.fields * (GetFrameDuration() / 2);
    picture.key = unit.key;
    picture.startsPeriod = unit.startsPeriod;
    picture.displayKey = unit.pictureOrderCount;
    return RESULT_OK;
}

int CMpeg4AvcContainerReader::ReadNextPicture(CodedPicture& picture)
{
    AvcAccessUnitSplitter::AccessUnit unit;
    StartCodeUnitReader::Unit next;
    if (m_failure < 0)
        return m_failure;
    while (!m_ended) {
        int result = m_units.Next(next);
        if (result < 0)
            return result;
        if (result == 1) {
            m_ended = true;
            if (m_splitter->Finish(m_streamEnd, unit) == 1)
                return ToCodedPicture(unit, picture);
            break;
        }
        m_streamEnd = next.end;
        if ((result = m_splitter->Feed(next.start, next.head, size_t(next.headSize), unit)) < 0) {
            // The picture before the refused unit is whole: hand it out first.
            m_failure = result;
            m_ended = true;
            if (m_splitter->Finish(next.start, unit) == 1)
                return ToCodedPicture(unit, picture);
            return result;
        }
        if (result == 1)
            return ToCodedPicture(unit, picture);
    }
    return 1;
}

CContainerDataReference* CMpeg4AvcContainerReader::MakeRange(int64_t position, int32_t size)
{
    return CMpeg4AvcDataReference::Create(position, size, CMpeg4AvcDataReference::StartCodes);
}

} // namespace Quorvex::Vek
