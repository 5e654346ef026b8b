#include <vek/containers/readers/mpegvideo/CMpegVideoStreamReader.h>

#include <cstdio>

#include <vek/containers/readers/elementary/SequenceFacts.h>
#include <vek/core/Log.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek {

namespace {

// Zero bytes allowed in front of the first sequence header of a file that
// still counts as starting with it.
constexpr int64_t LeadingZeroAllowance = 64;
// Access units read for the reorder depth when no B picture shows earlier.
constexpr int64_t ScannedPictures = 3;

int32_t SampleType(MpegPictureType type)
{
    switch (type) {
    case MpegPictureType::P: return CVideoSample::P;
    case MpegPictureType::B: return CVideoSample::B;
    default: return CVideoSample::I; // I, and D pictures (intra, DC only)
    }
}

} // namespace

struct CMpegVideoStreamReader::HeaderScan {
    int64_t firstUnitStart = -1;
    bool firstUnitIsSequence = false;
    int64_t pictures = 0;
    bool sawB = false;
    bool firstGop = false;
    bool firstGopClosed = false;
};

CMpegVideoStreamReader::CMpegVideoStreamReader(uint32_t type, unsigned int flags, bool mpeg2)
    : CVideoStreamReader(type, flags), m_mpeg2(mpeg2)
{
}

CMpegVideoStreamReader::~CMpegVideoStreamReader() = default;

const char* CMpegVideoStreamReader::ClassName() const
{
    return m_mpeg2 ? "CMpeg2VideoContainerReader" : "CMpeg1VideoContainerReader";
}

// Feeds the first units of `stream` to the splitter: up to the end of the
// header window, the stream's end, a B picture or ScannedPictures pictures.
int CMpegVideoStreamReader::ScanHeaders(CStream* stream, HeaderScan& scan)
{
    m_splitter.Reset();
    int result = m_units.Reset(stream, 0, MpegVideoAccessUnitSplitter::HeadBytes);
    int64_t end = 0;
    bool finished = false;
    while (result >= 0 && !finished) {
        StartCodeUnitReader::Unit unit;
        result = m_units.Next(unit);
        if (result < 0)
            return result;
        finished = result > 0 || unit.start >= HeaderWindow;
        if (finished) {
            result = m_splitter.Finish(result > 0 ? end : unit.start);
        } else {
            if (scan.firstUnitStart < 0) {
                scan.firstUnitStart = unit.start;
                scan.firstUnitIsSequence = unit.headSize > 0 && unit.head[0] == MpegVideoStartCode::SequenceHeader;
            }
            end = unit.end;
            result = m_splitter.Feed(unit.payload - 3, unit.head, size_t(unit.headSize));
        }
        if (result <= 0)
            continue;
        const MpegVideoAccessUnit& picture = m_splitter.GetCompleted();
        if (scan.pictures++ == 0) {
            scan.firstGop = picture.gopHeader;
            scan.firstGopClosed = picture.closedGop;
        }
        scan.sawB = scan.sawB || picture.type == MpegPictureType::B;
        finished = finished || scan.sawB || scan.pictures >= ScannedPictures || end >= HeaderWindow;
    }
    return result < 0 ? result : RESULT_OK;
}

int CMpegVideoStreamReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    HeaderScan scan;
    const int scanned = ScanHeaders(stream, scan);
    if (scanned < 0 || !m_splitter.HasSequence() || !m_splitter.HasPicture() ||
        m_splitter.GetSequence().mpeg2 != m_mpeg2)
        return 0;
    bool clean = scan.firstUnitIsSequence && scan.firstUnitStart <= LeadingZeroAllowance;
    if (clean && scan.firstUnitStart > 0) {
        uint8_t leading[LeadingZeroAllowance];
        CObject::CAutoLock lock(stream);
        clean = stream->Seek(0, CStream::Begin) >= 0 &&
                stream->Read(leading, int32_t(scan.firstUnitStart)) == int32_t(scan.firstUnitStart);
        for (int64_t i = 0; clean && i < scan.firstUnitStart; ++i)
            clean = leading[i] == 0;
    }
    const MpegVideoSequence& sequence = m_splitter.GetSequence();
    const int score = clean ? ExactScore : GarbageScore;
    Log(LogLevel::Detail, "%s::Validate: a %dx%d sequence header at %lld and a picture header: score %d\n",
        ClassName(), sequence.Width(), sequence.Height(), static_cast<long long>(scan.firstUnitStart), score);
    return score;
}

int CMpegVideoStreamReader::ReadStreamHeader(VideoStreamFacts& facts)
{
    HeaderScan scan;
    const int result = ScanHeaders(GetStream(), scan);
    if (result < 0)
        return result;
    if (!m_splitter.HasSequence() || !m_splitter.HasPicture()) {
        Log(LogLevel::Error, "%s::BeginIndex: no %s in the first %lld bytes\n", ClassName(),
            m_splitter.HasSequence() ? "picture header after the sequence header" : "sequence header",
            static_cast<long long>(HeaderWindow));
        return RESULT_FORMAT_ERROR;
    }
    if (m_splitter.GetSequence().mpeg2 != m_mpeg2) {
        Log(LogLevel::Error, "%s::BeginIndex: the sequence header %s a sequence extension: MPEG-%d video\n",
            ClassName(), m_mpeg2 ? "lacks" : "has", m_mpeg2 ? 1 : 2);
        return RESULT_ERROR;
    }
    const int described = DescribeSequence(scan, facts);
    return described < 0 ? described : SetCodecProperties(scan);
}

int CMpegVideoStreamReader::DescribeSequence(const HeaderScan& scan, VideoStreamFacts& facts)
{
    const MpegVideoSequence& sequence = m_splitter.GetSequence();
    char owner[64];
    std::snprintf(owner, sizeof owner, "%s::BeginIndex", ClassName());
    const int result = SequenceFacts::DescribeMpegVideo(owner, sequence, facts);
    if (result < 0)
        return result;
    const bool interlacedSequence = sequence.mpeg2 && !sequence.extension.progressiveSequence;
    const MpegVideoPictureCodingExtension& first = m_splitter.GetFirstCoding();
    const bool progressive = !interlacedSequence || !m_splitter.HasFirstCoding() ||
                             (first.progressiveFrame && first.structure == MpegPictureStructure::Frame);
    if (progressive)
        facts.fieldOrder = CVideoProperties::FieldOrderProgressive;
    else if (first.structure != MpegPictureStructure::Frame)
        facts.fieldOrder = first.structure == MpegPictureStructure::TopField ? CVideoProperties::FieldOrderTopFirst
                                                                             : CVideoProperties::FieldOrderBottomFirst;
    else
        facts.fieldOrder = first.topFieldFirst ? CVideoProperties::FieldOrderTopFirst
                                               : CVideoProperties::FieldOrderBottomFirst;
    const bool lowDelay = sequence.mpeg2 && sequence.extension.lowDelay;
    facts.reorderDepth = scan.sawB && !lowDelay ? 1 : 0;
    return RESULT_OK;
}

int CMpegVideoStreamReader::SetCodecProperties(const HeaderScan& scan)
{
    const MpegVideoSequence& sequence = m_splitter.GetSequence();
    int result = RESULT_OK;
    if (sequence.mpeg2) {
        const unsigned char profileAndLevel = sequence.extension.profileAndLevel;
        result = GetVideo()->SetProperty(VideoProperty::Mpeg2ProfileAndLevel, 1, &profileAndLevel);
    }
    if (result >= 0 && scan.firstGop) {
        const unsigned char closed = scan.firstGopClosed ? 1 : 0;
        result = GetVideo()->SetProperty(VideoProperty::MpegClosedGop, 1, &closed);
    }
    return result;
}

int CMpegVideoStreamReader::StartPictures()
{
    m_splitter.Reset();
    m_streamEnd = 0;
    m_walkEnded = false;
    return m_units.Reset(GetStream(), 0, MpegVideoAccessUnitSplitter::HeadBytes);
}

void CMpegVideoStreamReader::FillPicture(const MpegVideoAccessUnit& unit, CodedPicture& picture) const
{
    picture.position = unit.position;
    picture.size = int32_t(unit.size); // the splitter refuses 2 GiB and more
    picture.pictureType = SampleType(unit.type);
    picture.structure = unit.pictureCount == 2 || unit.structure == MpegPictureStructure::Frame
                            ? CVideoSample::Frame
                            : unit.structure == MpegPictureStructure::TopField ? CVideoSample::UpperField
                                                                               : CVideoSample::LowerField;
    picture.duration = unit.displayedFields * (GetFrameDuration() / 2);
    picture.key = unit.key;
    picture.exclude = unit.undecodable;
    picture.startsPeriod = unit.startsPeriod;
    picture.displayKey = unit.displayKey;
}

int CMpegVideoStreamReader::ReadNextPicture(CodedPicture& picture)
{
    while (!m_walkEnded) {
        StartCodeUnitReader::Unit unit;
        int result = m_units.Next(unit);
        if (result < 0)
            return result;
        if (result > 0) {
            m_walkEnded = true;
            result = m_splitter.Finish(m_streamEnd);
        } else {
            m_streamEnd = unit.end;
            result = m_splitter.Feed(unit.payload - 3, unit.head, size_t(unit.headSize));
        }
        if (result < 0)
            return result;
        if (result > 0) {
            FillPicture(m_splitter.GetCompleted(), picture);
            return RESULT_OK;
        }
    }
    return 1;
}

} // namespace Quorvex::Vek
