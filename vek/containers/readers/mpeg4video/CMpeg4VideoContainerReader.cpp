#include <vek/containers/readers/mpeg4video/CMpeg4VideoContainerReader.h>

#include <algorithm>

#include <vek/containers/readers/elementary/SequenceFacts.h>
#include <vek/core/Log.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek {

namespace {

namespace Code = Mpeg4VideoStartCode;

bool IsLayer(int code)
{
    return code >= Code::FirstVideoObjectLayer && code <= Code::LastVideoObjectLayer;
}

int CodeOf(const StartCodeUnitReader::Unit& unit)
{
    return unit.headSize > 0 ? unit.head[0] : -1;
}

// The unit's payload after its start-code byte.
const uint8_t* Body(const StartCodeUnitReader::Unit& unit)
{
    return unit.head + 1;
}

size_t BodySize(const StartCodeUnitReader::Unit& unit)
{
    return unit.headSize > 0 ? size_t(unit.headSize - 1) : 0;
}

} // namespace

CMpeg4VideoContainerReader::CMpeg4VideoContainerReader() : CMpeg4VideoContainerReader(0) {}

CMpeg4VideoContainerReader::CMpeg4VideoContainerReader(unsigned int flags) : CVideoStreamReader(Type, flags) {}

CMpeg4VideoContainerReader::~CMpeg4VideoContainerReader() = default;

int CMpeg4VideoContainerReader::ReadHeaders(StartCodeUnitReader& units, Headers& headers)
{
    StartCodeUnitReader::Unit unit;
    int result = RESULT_OK;
    while ((result = units.Next(unit)) == 0 && unit.start < ProbeBytes) {
        const int code = CodeOf(unit);
        if (code == Code::VisualObjectSequence)
            headers.hasSequence = Mpeg4VisualObjectSequence::Parse(Body(unit), BodySize(unit), headers.sequence) >= 0;
        else if (code == Code::VisualObject)
            headers.hasObject = Mpeg4VisualObject::Parse(Body(unit), BodySize(unit), headers.object) >= 0;
        else if (IsLayer(code))
            headers.hasLayer =
                Mpeg4VideoObjectLayer::Parse(Body(unit), BodySize(unit), headers.layer, headers.object.verid) >= 0;
        else if (code == Code::GroupOfVop && headers.configurationEnd < 0)
            headers.configurationEnd = unit.start;
        else if (code == Code::Vop && headers.hasLayer) {
            Mpeg4VopHeader vop;
            if (Mpeg4VopHeader::Parse(Body(unit), BodySize(unit), headers.layer, vop) < 0)
                return RESULT_FORMAT_ERROR;
            headers.hasVop = true;
            headers.firstVop = unit.start;
            if (headers.configurationEnd < 0)
                headers.configurationEnd = unit.start;
            headers.leadingBytes = units.GetLeadingBytes();
            return RESULT_OK;
        }
    }
    if (result < 0)
        return result;
    Log(LogLevel::Detail, "CMpeg4VideoContainerReader: no video object layer followed by a VOP in the first %d bytes\n",
        int(ProbeBytes));
    return RESULT_FORMAT_ERROR;
}

int CMpeg4VideoContainerReader::Validate(CStream* stream)
{
    if (!stream)
        return 0;
    StartCodeUnitReader units;
    Headers headers;
    if (units.Reset(stream, 0, 256) < 0 || ReadHeaders(units, headers) < 0)
        return 0;
    Log(LogLevel::Detail, "CMpeg4VideoContainerReader: layer %ux%u and a VOP at offset %lld\n",
        unsigned(headers.layer.width), unsigned(headers.layer.height), static_cast<long long>(headers.firstVop));
    return headers.leadingBytes == 0 ? MatchScore : LateMatchScore;
}

void CMpeg4VideoContainerReader::DescribeStream(const Headers& headers, VideoStreamFacts& facts)
{
    SequenceFacts::DescribeMpeg4Video(headers.layer, headers.hasObject ? &headers.object : nullptr, facts);
}

// The headers in front of the first group of VOPs or VOP, as an MP4 sample
// description carries them.
int CMpeg4VideoContainerReader::KeepDecoderConfiguration(const Headers& headers, VideoStreamFacts& facts)
{
    const int64_t length = headers.configurationEnd - headers.leadingBytes;
    if (length <= 0)
        return RESULT_OK;
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, int32_t(length)));
    if (!bytes || !bytes->GetData())
        return RESULT_OUT_OF_MEMORY;
    const int result = ReadData(GetStream(), headers.leadingBytes, bytes);
    if (result < 0)
        return result;
    facts.decoderConfiguration = bytes;
    return RESULT_OK;
}

// A layer without a fixed VOP rate still steps its VOP times by one frame
// period: the smallest step between the display times of its first VOPs.
void CMpeg4VideoContainerReader::MeasureFrameRate(const Headers& headers, VideoStreamFacts& facts)
{
    const uint32_t resolution = headers.layer.timeIncrementResolution;
    if (facts.frameRateNumerator > 0 || resolution == 0 || m_units.Reset(GetStream(), 0, 256) < 0)
        return;
    int64_t times[MeasuredVops];
    int32_t count = 0;
    Mpeg4VopClock clock;
    Mpeg4VideoObjectLayer layer = headers.layer;
    StartCodeUnitReader::Unit unit;
    while (count < MeasuredVops && m_units.Next(unit) == 0 && unit.start < ProbeBytes * 16) {
        const int code = CodeOf(unit);
        Mpeg4VopHeader vop;
        if (code == Code::GroupOfVop)
            clock.SetGroupOfVop(Body(unit), BodySize(unit));
        else if (code == Code::Vop && Mpeg4VopHeader::Parse(Body(unit), BodySize(unit), layer, vop) >= 0)
            times[count++] = clock.Next(vop, resolution);
    }
    std::sort(times, times + count);
    int64_t step = 0;
    for (int32_t i = 1; i < count; ++i)
        if (times[i] > times[i - 1] && (step == 0 || times[i] - times[i - 1] < step))
            step = times[i] - times[i - 1];
    if (step > 0 && step <= INT32_MAX) {
        facts.frameRateNumerator = resolution;
        facts.frameRateDenominator = step;
    }
}

int CMpeg4VideoContainerReader::ReadStreamHeader(VideoStreamFacts& facts)
{
    Headers headers;
    int result = m_units.Reset(GetStream(), 0, 256);
    if (result < 0 || (result = ReadHeaders(m_units, headers)) < 0) {
        Log(LogLevel::Error, "CMpeg4VideoContainerReader::BeginIndex: no readable video object layer and VOP (%s)\n",
            GetResultName(result));
        return result == RESULT_FORMAT_ERROR ? RESULT_ERROR : result;
    }
    DescribeStream(headers, facts);
    MeasureFrameRate(headers, facts);
    if ((result = KeepDecoderConfiguration(headers, facts)) < 0)
        return result;
    if (headers.hasSequence) {
        const unsigned char profileAndLevel = headers.sequence.profileAndLevel;
        if ((result = GetVideo()->SetProperty(VideoProperty::Mpeg4ProfileAndLevel, 1, &profileAndLevel)) < 0)
            return result;
    }
    m_objectVerid = headers.object.verid;
    m_layer = headers.layer;
    return RESULT_OK;
}

int CMpeg4VideoContainerReader::StartPictures()
{
    m_clock.Reset();
    m_lastReferenceTime = INT64_MIN;
    m_pictureStart = -1;
    m_hasHeld = false;
    m_ended = false;
    return m_units.Reset(GetStream(), 0, 256);
}

int CMpeg4VideoContainerReader::TakeHeaderUnit(const StartCodeUnitReader::Unit& unit)
{
    const int code = CodeOf(unit);
    if (code == Code::VisualObject) {
        Mpeg4VisualObject object;
        if (Mpeg4VisualObject::Parse(Body(unit), BodySize(unit), object) >= 0)
            m_objectVerid = object.verid;
    } else if (IsLayer(code)) {
        Mpeg4VideoObjectLayer layer;
        const int result = Mpeg4VideoObjectLayer::Parse(Body(unit), BodySize(unit), layer, m_objectVerid);
        if (result < 0) {
            Log(LogLevel::Error, "CMpeg4VideoContainerReader: video object layer at offset %lld does not parse\n",
                static_cast<long long>(unit.start));
            return result;
        }
        m_layer = layer;
    } else if (code == Code::GroupOfVop) {
        return m_clock.SetGroupOfVop(Body(unit), BodySize(unit));
    }
    return RESULT_OK;
}

int CMpeg4VideoContainerReader::FinishPicture(const StartCodeUnitReader::Unit& vop, CodedPicture& picture)
{
    Mpeg4VopHeader header;
    int result = Mpeg4VopHeader::Parse(Body(vop), BodySize(vop), m_layer, header);
    if (result < 0) {
        Log(LogLevel::Error, "CMpeg4VideoContainerReader: VOP at offset %lld does not parse\n",
            static_cast<long long>(vop.start));
        return result;
    }
    const int64_t time = m_clock.Next(header, m_layer.timeIncrementResolution);
    const bool reference = header.type != Mpeg4VopType::B;
    picture.startsPeriod = header.type == Mpeg4VopType::I && m_lastReferenceTime != INT64_MIN &&
                           time < m_lastReferenceTime;
    if (reference)
        m_lastReferenceTime = time;
    picture.displayKey = time;
    picture.pictureType = header.type == Mpeg4VopType::I   ? CVideoSample::I
                          : header.type == Mpeg4VopType::B ? CVideoSample::B
                                                           : CVideoSample::P;
    picture.key = header.type == Mpeg4VopType::I;
    // A VOP that is not coded (Xvid's placeholder after packed B-VOPs)
    // shows nothing new: decoders output no picture for it.
    picture.exclude = !header.coded;
    picture.structure = CVideoSample::Frame;
    picture.duration = GetFrameDuration();
    picture.position = m_pictureStart;
    int64_t end = vop.end;
    StartCodeUnitReader::Unit next;
    if ((result = m_units.Next(next)) < 0)
        return result;
    if (result > 0)
        m_ended = true;
    else if (CodeOf(next) == Code::VisualObjectSequenceEnd)
        end = next.end; // the end code stays with the last picture
    else {
        end = next.start;
        m_held = next;
        m_hasHeld = true;
    }
    if (end - m_pictureStart > INT32_MAX) {
        Log(LogLevel::Error, "CMpeg4VideoContainerReader: access unit at offset %lld runs %lld bytes\n",
            static_cast<long long>(m_pictureStart), static_cast<long long>(end - m_pictureStart));
        return RESULT_FORMAT_ERROR;
    }
    picture.size = int32_t(end - m_pictureStart);
    m_pictureStart = -1;
    return RESULT_OK;
}

int CMpeg4VideoContainerReader::ReadNextPicture(CodedPicture& picture)
{
    while (!m_ended) {
        StartCodeUnitReader::Unit unit;
        if (m_hasHeld) {
            unit = m_held;
            m_hasHeld = false;
        } else {
            const int result = m_units.Next(unit);
            if (result < 0)
                return result;
            if (result > 0)
                break;
        }
        if (m_pictureStart < 0)
            m_pictureStart = unit.start;
        if (CodeOf(unit) == Code::Vop)
            return FinishPicture(unit, picture);
        const int result = TakeHeaderUnit(unit);
        if (result < 0)
            return result;
    }
    m_ended = true;
    if (m_pictureStart >= 0)
        Log(LogLevel::Detail, "CMpeg4VideoContainerReader: headers without a VOP at the end (offset %lld) dropped\n",
            static_cast<long long>(m_pictureStart));
    return 1;
}

} // namespace Quorvex::Vek
