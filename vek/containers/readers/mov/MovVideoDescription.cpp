// Video sample entries: the visual fields every entry has, the codec's
// configuration atom, and the atoms that refine what the codec says
// (pixel aspect, fields, colour, bit rate).
#include <vek/containers/readers/mov/MovSampleDescription.h>

#include <vek/containers/readers/elementary/SequenceFacts.h>
#include <vek/containers/readers/mov/MovElementaryStreamDescriptor.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/media/VideoFormat.h>
#include <vek/media/VideoProperty.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Owner = "MovVideoDescription";

// Reserved, data reference index, then the visual fields up to the first
// child atom.
enum : size_t { VisualFieldsBytes = 78 };

enum class Coding { Avc, Hevc, MpegElementary, Mpeg2Camera, ProRes, Dnx, Jpeg, Uncompressed };

struct CodingRow {
    uint32_t type;
    Coding coding;
    uint32_t format;
};

// Entry codes that are pure aliases ('avc3', 'hev1', '2vuy', 'm2v1') are
// described by the code of the bitstream they carry.
constexpr CodingRow Codings[] = {
    {Four("avc1"), Coding::Avc, VideoFormat::AVC},
    {Four("avc3"), Coding::Avc, VideoFormat::AVC},
    {Four("hvc1"), Coding::Hevc, VideoFormat::HEVC},
    {Four("hev1"), Coding::Hevc, VideoFormat::HEVC},
    {Four("mp4v"), Coding::MpegElementary, VideoFormat::MPEG4},
    {Four("m2v1"), Coding::Mpeg2Camera, VideoFormat::MPEG2},
    {Four("apco"), Coding::ProRes, VideoFormat::ProRes422_Proxy},
    {Four("apcs"), Coding::ProRes, VideoFormat::ProRes422_LT},
    {Four("apcn"), Coding::ProRes, VideoFormat::ProRes422_SQ},
    {Four("apch"), Coding::ProRes, VideoFormat::ProRes422_HQ},
    {Four("ap4h"), Coding::ProRes, VideoFormat::ProRes4444},
    {Four("ap4x"), Coding::ProRes, VideoFormat::ProRes4444_XQ},
    {Four("AVdn"), Coding::Dnx, VideoFormat::DNxHD},
    {Four("AVdh"), Coding::Dnx, Four("AVdh")},
    {Four("jpeg"), Coding::Jpeg, VideoFormat::JPEG},
    {Four("mjpa"), Coding::Jpeg, VideoFormat::MJPEGA},
    {Four("mjpb"), Coding::Jpeg, VideoFormat::MJPEGB},
    {Four("2vuy"), Coding::Uncompressed, VideoFormat::Packed422UYVY},
    {Four("v210"), Coding::Uncompressed, VideoFormat::Packed422UYVY_10},
    {Four("raw "), Coding::Uncompressed, Four("raw ")},
};

// The MPEG-2 camera codes (XDCAM, HDV, IMX) the format table knows.
bool IsMpeg2CameraCode(uint32_t type)
{
    const uint32_t family = type >> 8;
    const bool prefix = family == (Four("xd5 ") >> 8) || family == (Four("xdv ") >> 8) ||
                        family == (Four("hdv ") >> 8) || family == (Four("mx3 ") >> 8) ||
                        family == (Four("mx4 ") >> 8) || family == (Four("mx5 ") >> 8);
    return prefix && VideoFormat::GetName(type) != nullptr;
}

bool FindCoding(uint32_t type, CodingRow& row)
{
    for (const CodingRow& candidate : Codings)
        if (candidate.type == type) {
            row = candidate;
            return true;
        }
    if (!IsMpeg2CameraCode(type))
        return false;
    row = {type, Coding::Mpeg2Camera, type};
    return true;
}

int Refuse(uint32_t type, const char* what, long long value)
{
    Log(LogLevel::Error, "%s: '%s' entry: %s %lld\n", Owner, FourCCText(type).c_str(), what, value);
    return RESULT_FORMAT_ERROR;
}

int CopyRecord(const uint8_t* data, size_t size, VideoStreamFacts& facts)
{
    if (size == 0 || size > size_t(INT32_MAX))
        return RESULT_OK;
    facts.decoderConfiguration = RObject<CByteArray>(CByteArray::Create(data, int32_t(size)));
    return facts.decoderConfiguration && facts.decoderConfiguration->GetData() ? RESULT_OK : RESULT_OUT_OF_MEMORY;
}

int FindChild(const MovBox& children, uint32_t type, MovBox& child)
{
    MovBoxIterator atoms(children);
    return atoms.Find(type, child);
}

int DescribeAvc(const MovBox& entry, const MovBox& children, VideoStreamFacts& facts)
{
    MovBox avcC;
    int result = FindChild(children, Four("avcC"), avcC);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'avcC'; atoms of", int64_t(children.size));
    AvcDecoderConfiguration configuration;
    if (AvcDecoderConfiguration::Parse(avcC.payload, avcC.size, configuration) < 0)
        return Refuse(entry.type, "'avcC' cannot be read; its size is", int64_t(avcC.size));
    AvcSequenceParameterSet sps;
    if (configuration.sequenceSetCount == 0)
        return Refuse(entry.type, "'avcC' holds sequence parameter sets:", 0);
    const AvcDecoderConfiguration::Unit& first = configuration.sequenceSets[0];
    if (AvcSequenceParameterSet::Parse(first.data, first.size, sps) < 0)
        return Refuse(entry.type, "the first sequence parameter set of 'avcC' cannot be read; its size is",
                      first.size);
    SequenceFacts::DescribeAvc(sps, facts);
    return CopyRecord(avcC.payload, avcC.size, facts);
}

int DescribeHevc(const MovBox& entry, const MovBox& children, VideoStreamFacts& facts)
{
    MovBox hvcC;
    int result = FindChild(children, Four("hvcC"), hvcC);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'hvcC'; atoms of", int64_t(children.size));
    HevcDecoderConfiguration configuration;
    if (HevcDecoderConfiguration::Parse(hvcC.payload, hvcC.size, configuration) < 0)
        return Refuse(entry.type, "'hvcC' cannot be read; its size is", int64_t(hvcC.size));
    for (uint32_t i = 0; i < configuration.unitCount; ++i) {
        const HevcDecoderConfiguration::Unit& unit = configuration.units[i];
        if (unit.type != HevcNalHeader::SequenceParameterSet)
            continue;
        HevcSequenceParameterSet sps;
        if (HevcSequenceParameterSet::Parse(unit.data, unit.size, sps) < 0)
            return Refuse(entry.type, "the sequence parameter set of 'hvcC' cannot be read; its size is", unit.size);
        SequenceFacts::DescribeHevc(Owner, sps, facts);
        return CopyRecord(hvcC.payload, hvcC.size, facts);
    }
    return Refuse(entry.type, "'hvcC' holds sequence parameter sets:", 0);
}

// The next start code (00 00 01 xx) at or after `at`: its xx, with `at`
// moved past it; -1 when none is left.
int NextStartCode(const uint8_t* data, size_t size, size_t& at)
{
    for (; at < size && size - at >= 4; ++at)
        if (data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1) {
            const int code = data[at + 3];
            at += 4;
            return code;
        }
    at = size;
    return -1;
}

// The bytes of the unit that starts at `at`: up to the next start code.
size_t UnitLength(const uint8_t* data, size_t size, size_t at)
{
    size_t end = at;
    while (size - end >= 3 && !(data[end] == 0 && data[end + 1] == 0 && data[end + 2] == 1))
        ++end;
    return size - end >= 3 ? end - at : size - at;
}

int DescribeMpeg4Visual(uint32_t type, const MovElementaryStreamDescriptor& esds, VideoStreamFacts& facts,
                        uint8_t& profileAndLevel, bool& hasProfile)
{
    Mpeg4VisualObject object;
    bool hasObject = false;
    const uint8_t* data = esds.specificInfo;
    const size_t size = esds.specificInfoSize;
    size_t at = 0;
    int code;
    while ((code = NextStartCode(data, size, at)) >= 0) {
        const size_t length = UnitLength(data, size, at);
        if (code == Mpeg4VideoStartCode::VisualObjectSequence) {
            Mpeg4VisualObjectSequence sequence;
            hasProfile = Mpeg4VisualObjectSequence::Parse(data + at, length, sequence) >= 0;
            profileAndLevel = sequence.profileAndLevel;
        } else if (code == Mpeg4VideoStartCode::VisualObject) {
            hasObject = Mpeg4VisualObject::Parse(data + at, length, object) >= 0;
        } else if (code >= Mpeg4VideoStartCode::FirstVideoObjectLayer && code <= Mpeg4VideoStartCode::LastVideoObjectLayer) {
            Mpeg4VideoObjectLayer layer;
            if (Mpeg4VideoObjectLayer::Parse(data + at, length, layer, object.verid) < 0)
                return Refuse(type, "the video object layer of 'esds' cannot be read; its size is", int64_t(length));
            SequenceFacts::DescribeMpeg4Video(layer, hasObject ? &object : nullptr, facts);
            return CopyRecord(data, size, facts);
        }
    }
    Log(LogLevel::Warning, "%s: '%s' entry: 'esds' holds no video object layer (%zu bytes)\n", Owner,
        FourCCText(type).c_str(), size);
    facts.format = VideoFormat::MPEG4;
    return RESULT_OK;
}

int DescribeMpegVideo(uint32_t type, const MovElementaryStreamDescriptor& esds, bool mpeg1, VideoStreamFacts& facts)
{
    facts.format = mpeg1 ? VideoFormat::MPEG1 : VideoFormat::MPEG2;
    MpegVideoSequence sequence;
    bool hasHeader = false;
    const uint8_t* data = esds.specificInfo;
    const size_t size = esds.specificInfoSize;
    size_t at = 0;
    int code;
    while ((code = NextStartCode(data, size, at)) >= 0) {
        const size_t length = UnitLength(data, size, at);
        if (code == 0xB3) {
            hasHeader = MpegVideoSequenceHeader::Parse(data + at, length, sequence.header) >= 0;
        } else if (code == 0xB5 && hasHeader) {
            const int id = MpegVideoExtensionId(data + at, length);
            if (id == MpegVideoExtension::Sequence)
                sequence.mpeg2 = MpegVideoSequenceExtension::Parse(data + at, length, sequence.extension) >= 0;
            else if (id == MpegVideoExtension::SequenceDisplay)
                sequence.hasDisplayExtension =
                    MpegVideoSequenceDisplayExtension::Parse(data + at, length, sequence.display) >= 0;
        }
    }
    if (!hasHeader)
        return RESULT_OK;
    const int result = SequenceFacts::DescribeMpegVideo(Owner, sequence, facts);
    if (result < 0)
        return Refuse(type, "the sequence header of 'esds' has frame_rate_code", sequence.header.frameRateCode);
    return CopyRecord(data, size, facts);
}

int DescribeElementary(const MovBox& entry, const MovBox& children, VideoStreamFacts& facts, CVideoProperties* video)
{
    MovBox atom;
    int result = FindChild(children, Four("esds"), atom);
    if (result != RESULT_OK)
        return result < 0 ? result : Refuse(entry.type, "has no 'esds'; atoms of", int64_t(children.size));
    MovElementaryStreamDescriptor esds;
    if ((result = MovElementaryStreamDescriptor::Read(atom, esds)) < 0)
        return result;
    facts.bitRate = esds.averageBitRate;
    const uint8_t objectType = esds.objectType;
    if (objectType == 0x20) {
        uint8_t profileAndLevel = 0;
        bool hasProfile = false;
        if ((result = DescribeMpeg4Visual(entry.type, esds, facts, profileAndLevel, hasProfile)) < 0)
            return result;
        return hasProfile ? video->SetProperty(VideoProperty::Mpeg4ProfileAndLevel, 1, &profileAndLevel) : RESULT_OK;
    }
    if ((objectType >= 0x60 && objectType <= 0x65) || objectType == 0x6A)
        return DescribeMpegVideo(entry.type, esds, objectType == 0x6A, facts);
    Log(LogLevel::Info, "%s: '%s' entry of object type 0x%02X is not described\n", Owner,
        FourCCText(entry.type).c_str(), unsigned(objectType));
    return 1;
}

void DescribeProRes(uint32_t type, VideoStreamFacts& facts)
{
    const bool full = type == Four("ap4h") || type == Four("ap4x");
    facts.chromaFormat = full ? 3 : 2;
    facts.bitDepth = full ? 12 : 10;
    facts.chromaBitDepth = facts.bitDepth;
    switch (type) {
    case Four("apco"): facts.profile = "Proxy"; break;
    case Four("apcs"): facts.profile = "LT"; break;
    case Four("apcn"): facts.profile = "Standard"; break;
    case Four("apch"): facts.profile = "HQ"; break;
    case Four("ap4h"): facts.profile = "4444"; break;
    default: facts.profile = "XQ"; break;
    }
}

void DescribeUncompressed(uint32_t type, uint16_t depth, VideoStreamFacts& facts)
{
    if (type == Four("raw ")) {
        // QuickTime's raw RGB: the depth names the layout.
        facts.format = depth == 24 ? VideoFormat::PackedRGB : depth == 32 ? VideoFormat::PackedARGB
                       : depth == 16 ? 0x10 : depth <= 8 && depth > 0 ? depth : Four("raw ");
        facts.chromaFormat = 3;
        facts.matrix = 0;
        return;
    }
    facts.format = type == Four("v210") ? VideoFormat::Packed422UYVY_10 : VideoFormat::Packed422UYVY;
    facts.chromaFormat = 2;
    facts.bitDepth = type == Four("v210") ? 10 : 8;
    facts.chromaBitDepth = facts.bitDepth;
}

int DescribeCoding(const CodingRow& row, const MovBox& entry, const MovBox& children, uint16_t depth,
                   VideoStreamFacts& facts, CVideoProperties* video)
{
    int result = RESULT_OK;
    switch (row.coding) {
    case Coding::Avc: result = DescribeAvc(entry, children, facts); break;
    case Coding::Hevc: result = DescribeHevc(entry, children, facts); break;
    case Coding::MpegElementary: return DescribeElementary(entry, children, facts, video);
    case Coding::ProRes: DescribeProRes(row.type, facts); break;
    case Coding::Uncompressed: DescribeUncompressed(row.type, depth, facts); return RESULT_OK;
    default: break;
    }
    if (result == RESULT_OK)
        facts.format = row.format;
    return result;
}

// 'pasp': the pixel aspect ratio, which wins over the codec's.
int ApplyPixelAspect(const MovBox& pasp, VideoStreamFacts& facts)
{
    MovFieldReader fields(pasp);
    const uint32_t horizontal = fields.Read32();
    const uint32_t vertical = fields.Read32();
    if (fields.Failed())
        return Refuse(Four("pasp"), "atom is too short:", int64_t(pasp.size));
    if (horizontal == 0 || vertical == 0) {
        Log(LogLevel::Warning, "%s: 'pasp' %u:%u ignored\n", Owner, horizontal, vertical);
        return RESULT_OK;
    }
    facts.aspectNumerator = horizontal;
    facts.aspectDenominator = vertical;
    return RESULT_OK;
}

// 'fiel': one field is progressive; two fields come with the order they
// are displayed in (1 and 14: top first, 6 and 9: bottom first).
int ApplyFields(const MovBox& fiel, VideoStreamFacts& facts)
{
    MovFieldReader fields(fiel);
    const uint8_t count = fields.Read8();
    const uint8_t detail = fields.Read8();
    if (fields.Failed())
        return Refuse(Four("fiel"), "atom is too short:", int64_t(fiel.size));
    if (count == 1)
        facts.fieldOrder = CVideoProperties::FieldOrderProgressive;
    else if (count == 2 && (detail == 1 || detail == 14))
        facts.fieldOrder = CVideoProperties::FieldOrderTopFirst;
    else if (count == 2 && (detail == 6 || detail == 9))
        facts.fieldOrder = CVideoProperties::FieldOrderBottomFirst;
    else
        Log(LogLevel::Warning, "%s: 'fiel' %u fields, detail %u ignored\n", Owner, count, detail);
    return RESULT_OK;
}

// 'colr': 'nclx' (ISO, with the range flag) and 'nclc' (QuickTime) give
// H.273 codes; ICC profiles are not read.
int ApplyColour(const MovBox& colr, VideoStreamFacts& facts)
{
    MovFieldReader fields(colr);
    const uint32_t kind = fields.Read32();
    if (kind != Four("nclx") && kind != Four("nclc"))
        return RESULT_OK;
    const uint16_t primaries = fields.Read16();
    const uint16_t transfer = fields.Read16();
    const uint16_t matrix = fields.Read16();
    const uint8_t range = kind == Four("nclx") ? fields.Read8() : 0;
    if (fields.Failed())
        return Refuse(Four("colr"), "atom is too short:", int64_t(colr.size));
    facts.colourPrimaries = primaries;
    facts.transfer = transfer;
    facts.matrix = matrix;
    if (kind == Four("nclx"))
        facts.fullRange = (range & 0x80) != 0;
    return RESULT_OK;
}

// 'btrt': the average bit rate, when the codec states none.
int ApplyBitRate(const MovBox& btrt, VideoStreamFacts& facts)
{
    MovFieldReader fields(btrt);
    fields.Skip(8); // buffer size, maximum rate
    const uint32_t average = fields.Read32();
    if (fields.Failed())
        return Refuse(Four("btrt"), "atom is too short:", int64_t(btrt.size));
    if (facts.bitRate == 0)
        facts.bitRate = average;
    return RESULT_OK;
}

int ApplyRefinements(const MovBox& children, VideoStreamFacts& facts)
{
    MovBoxIterator atoms(children);
    MovBox atom;
    int result;
    while ((result = atoms.Next(atom)) == RESULT_OK) {
        switch (atom.type) {
        case Four("pasp"): result = ApplyPixelAspect(atom, facts); break;
        case Four("fiel"): result = ApplyFields(atom, facts); break;
        case Four("colr"): result = ApplyColour(atom, facts); break;
        case Four("btrt"): result = ApplyBitRate(atom, facts); break;
        case Four("clap"):
            // The properties have no clean aperture: the coded size stands.
            Log(LogLevel::Detail, "%s: 'clap' of %zu bytes is not applied\n", Owner, atom.size);
            break;
        default: break;
        }
        if (result < 0)
            return result;
    }
    return result < 0 ? result : RESULT_OK;
}

} // namespace

int ReadVideoDescription(const MovBox& entry, bool quickTime, CVideoProperties* video)
{
    if (!video)
        return RESULT_ARGUMENT_NULL;
    CodingRow row;
    if (!FindCoding(entry.type, row)) {
        Log(LogLevel::Info, "%s: video format '%s' is not described\n", Owner, FourCCText(entry.type).c_str());
        return 1;
    }
    MovFieldReader fields(entry);
    fields.Skip(24); // reserved, data reference, version, revision, vendor, qualities
    const uint16_t width = fields.Read16();
    const uint16_t height = fields.Read16();
    fields.Skip(46); // resolutions, data size, frame count, compressor name
    const uint16_t depth = fields.Read16();
    if (fields.Failed() || entry.size < VisualFieldsBytes)
        return Refuse(entry.type, "has fewer bytes than its visual fields:", int64_t(entry.size));
    MovBox children = entry;
    children.payload = entry.payload + VisualFieldsBytes;
    children.size = entry.size - VisualFieldsBytes;
    children.fileOffset = entry.PayloadOffset() + VisualFieldsBytes - 8;
    children.headerSize = 8;
    VideoStreamFacts facts;
    facts.width = width;
    facts.height = height;
    int result = DescribeCoding(row, entry, children, depth, facts, video);
    if (result != RESULT_OK)
        return result;
    if (facts.width == 0 || facts.height == 0) {
        facts.width = width;
        facts.height = height;
    }
    if ((result = ApplyRefinements(children, facts)) < 0)
        return result;
    (void)quickTime; // no video atom differs between the two families yet
    result = facts.Apply(video);
    if (result == RESULT_ARGUMENT_OUT_OF_RANGE) {
        // The codec's headers parse but state an impossible size, aspect or rate.
        Log(LogLevel::Error, "%s: '%s' entry: %dx%d, pixel aspect %lld:%lld, rate %lld/%lld cannot be a description\n",
            Owner, FourCCText(entry.type).c_str(), facts.width, facts.height,
            static_cast<long long>(facts.aspectNumerator), static_cast<long long>(facts.aspectDenominator),
            static_cast<long long>(facts.frameRateNumerator), static_cast<long long>(facts.frameRateDenominator));
        return RESULT_FORMAT_ERROR;
    }
    return result;
}

} // namespace Quorvex::Vek
