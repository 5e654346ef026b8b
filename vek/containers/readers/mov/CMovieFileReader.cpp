#include <vek/containers/readers/mov/CMovieFileReader.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include <vek/containers/readers/elementary/VideoStreamFacts.h>
#include <vek/containers/readers/mov/MovFragment.h>
#include <vek/containers/readers/mov/MovMetadata.h>
#include <vek/containers/readers/mov/MovTimeCode.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/MpegAudioFrameHeader.h>
#include <vek/media/AudioFormat.h>
#include <vek/io/BigEndian.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/ContainerReaderProperty.h>
#include <vek/media/VideoFormat.h>
#include <vek/samples/CAudioSample.h>
#include <vek/samples/CMpeg4AvcDataReference.h>
#include <vek/samples/CMpegHevcDataReference.h>
#include <vek/samples/CSubtitleSample.h>
#include <vek/samples/CVideoSample.h>

namespace Quorvex::Vek {

namespace {

enum : int32_t { LargeHeader = 16, TimeCodeSampleBytes = 16 };

bool IsSubtitleHandler(uint32_t handler)
{
    return handler == Four("sbtl") || handler == Four("subt") || handler == Four("text") ||
           handler == Four("clcp");
}

MovTrack::Kind KindOfHandler(uint32_t handler)
{
    if (handler == Four("vide"))
        return MovTrack::Kind::Video;
    if (handler == Four("soun"))
        return MovTrack::Kind::Audio;
    if (handler == Four("tmcd"))
        return MovTrack::Kind::TimeCode;
    if (IsSubtitleHandler(handler))
        return MovTrack::Kind::Subtitle;
    return MovTrack::Kind::Other;
}

int64_t GreatestCommonDivisor(int64_t a, int64_t b)
{
    while (b != 0) {
        const int64_t r = a % b;
        a = b;
        b = r;
    }
    return a;
}

} // namespace

CMovieFileReader::CMovieFileReader(uint32_t type, unsigned int flags, MovFamily family)
    : CContainerReader(type, flags), m_family(family)
{
}

CMovieFileReader::~CMovieFileReader()
{
    DropTracks();
}

int CMovieFileReader::Validate(CStream* stream)
{
    const MovFamily family = MovFileProbe::Probe(stream);
    if (family == MovFamily::None)
        return 0;
    return family == m_family ? MatchScore : SiblingScore;
}

// ---- Track lists -----------------------------------------------------------

MovTrack* CMovieFileReader::FindTrack(MovTrack::Kind kind, int32_t index) const
{
    switch (kind) {
    case MovTrack::Kind::Video:
        return index == 0 ? m_video : nullptr;
    case MovTrack::Kind::Audio:
        return index >= 0 && index < m_audioCount ? m_audio[index] : nullptr;
    case MovTrack::Kind::Subtitle:
        return index >= 0 && index < m_subtitleCount ? m_subtitles[index] : nullptr;
    default:
        return nullptr;
    }
}

CValueList<unsigned int>* CMovieFileReader::GetVideoFormats()
{
    return ListFormats<CVideoProperties>(GetVideoMediaCount(), [this](int32_t track) {
        return GetVideoProperties(track);
    });
}

int32_t CMovieFileReader::GetVideoMediaCount()
{
    return m_video ? 1 : 0;
}

CVideoProperties* CMovieFileReader::GetVideoProperties(int32_t track)
{
    MovTrack* found = FindTrack(MovTrack::Kind::Video, track);
    return found ? found->video.Get() : nullptr;
}

CValueList<unsigned int>* CMovieFileReader::GetAudioFormats()
{
    return ListFormats<CAudioProperties>(GetAudioMediaCount(), [this](int32_t track) {
        return GetAudioProperties(track);
    });
}

int32_t CMovieFileReader::GetAudioMediaCount()
{
    return m_audioCount;
}

CAudioProperties* CMovieFileReader::GetAudioProperties(int32_t track)
{
    MovTrack* found = FindTrack(MovTrack::Kind::Audio, track);
    return found ? found->audio.Get() : nullptr;
}

CValueList<unsigned int>* CMovieFileReader::GetSubtitleFormats()
{
    return ListFormats<CSubtitleProperties>(GetSubtitleMediaCount(), [this](int32_t track) {
        return GetSubtitleProperties(track);
    });
}

int32_t CMovieFileReader::GetSubtitleMediaCount()
{
    return m_subtitleCount;
}

CSubtitleProperties* CMovieFileReader::GetSubtitleProperties(int32_t track)
{
    MovTrack* found = FindTrack(MovTrack::Kind::Subtitle, track);
    return found ? found->subtitle.Get() : nullptr;
}

bool CMovieFileReader::IsVideoReady(int32_t)
{
    return true;
}

bool CMovieFileReader::IsAudioReady(int32_t)
{
    return true;
}

bool CMovieFileReader::IsSubtitleReady(int32_t)
{
    return true;
}

bool CMovieFileReader::WaitForMedia(int32_t)
{
    return true;
}

int CMovieFileReader::EndIndex()
{
    return RESULT_OK;
}

void CMovieFileReader::DropTracks()
{
    for (int32_t i = 0; i < m_trackCount; ++i)
        delete m_tracks[i];
    m_trackCount = 0;
    m_video = nullptr;
    m_audioCount = 0;
    m_subtitleCount = 0;
    m_movieSeen = false;
    m_timeCodeSeen = false;
    m_movieTimeScale = 0;
    m_movie = RObject<CByteArray>();
}

// ---- Index pass --------------------------------------------------------------

int CMovieFileReader::BeginIndex()
{
    CAutoLock lock(this);
    int result = OpenFile();
    if (result >= 0) {
        CAutoLock streamLock(m_stream);
        result = WalkFile();
        if (result >= 0)
            result = FinishTracks();
    }
    if (result < 0)
        DropTracks();
    return result;
}

int CMovieFileReader::OpenFile()
{
    DropTracks();
    CStream* opened = nullptr;
    const int result = OpenStream(opened);
    m_stream = RObject<CStream>(opened);
    if (result < 0) {
        Log(LogLevel::Error, "%s: opening the file of the context failed with %s\n", GetFormatName(),
            GetResultName(result));
        return result;
    }
    m_fileSize = m_stream->GetLength();
    if (m_fileSize < 0)
        m_fileSize = INT64_MAX;
    // Descriptions are read by the file's own family, whichever reader was chosen.
    m_fileFamily = MovFileProbe::Probe(m_stream);
    if (m_fileFamily == MovFamily::None)
        m_fileFamily = m_family;
    return RESULT_OK;
}

// Reads the header of the top-level box at `position`. `cut` when the box
// runs past the end of the file (a recording that stopped).
int CMovieFileReader::ReadBoxAt(int64_t position, MovBox& box, int64_t& nextPosition, bool& cut)
{
    unsigned char header[LargeHeader];
    const int64_t remaining = m_fileSize - position;
    const int32_t wanted = remaining < LargeHeader ? int32_t(remaining) : LargeHeader;
    int result = m_stream->Seek(position, CStream::Begin);
    if (result >= 0)
        result = m_stream->Read(header, wanted);
    if (result < 0)
        return result;
    if (result < 8) {
        Log(LogLevel::Warning, "%s: %d stray bytes at the end of the file (%lld) are ignored\n", GetFormatName(),
            int(result), static_cast<long long>(position));
        return 1;
    }
    uint64_t size = BigEndian::Load32(header);
    box = MovBox();
    box.type = BigEndian::Load32(header + 4);
    box.fileOffset = position;
    box.headerSize = 8;
    if (size == 1) {
        if (result < LargeHeader)
            return 1;
        size = BigEndian::Load64(header + 8);
        box.headerSize = LargeHeader;
    } else if (size == 0) {
        size = uint64_t(remaining);
    }
    if (size < box.headerSize) {
        Log(LogLevel::Error, "%s: box '%s' at %lld has size %llu\n", GetFormatName(), FourCCText(box.type).c_str(),
            static_cast<long long>(position), static_cast<unsigned long long>(size));
        return RESULT_FORMAT_ERROR;
    }
    cut = size > uint64_t(remaining);
    const uint64_t kept = cut ? uint64_t(remaining) : size;
    box.size = size_t(kept - box.headerSize);
    nextPosition = position + int64_t(kept);
    return RESULT_OK;
}

// Reads a top-level box's payload into memory; `box` then points into it.
int CMovieFileReader::ReadPayload(const MovBox& header, RObject<CByteArray>& bytes, MovBox& box)
{
    if (header.size > MaxMovieBytes) {
        Log(LogLevel::Error, "%s: '%s' at %lld holds %llu bytes, more than the %u this reader reads\n",
            GetFormatName(), FourCCText(header.type).c_str(), static_cast<long long>(header.fileOffset),
            static_cast<unsigned long long>(header.size), unsigned(MaxMovieBytes));
        return RESULT_FORMAT_ERROR;
    }
    bytes = RObject<CByteArray>(CByteArray::Create(nullptr, int32_t(header.size)));
    if (!bytes || (header.size > 0 && !bytes->GetData()))
        return RESULT_OUT_OF_MEMORY;
    const int result = ReadData(m_stream, header.PayloadOffset(), bytes);
    if (result < 0) {
        Log(LogLevel::Error, "%s: reading '%s' at %lld failed with %s\n", GetFormatName(),
            FourCCText(header.type).c_str(), static_cast<long long>(header.fileOffset), GetResultName(result));
        return result;
    }
    box = header;
    box.payload = bytes->GetData();
    return RESULT_OK;
}

int CMovieFileReader::WalkFile()
{
    int64_t position = 0;
    while (position < m_fileSize) {
        MovBox header;
        int64_t next = 0;
        bool cut = false;
        int result = ReadBoxAt(position, header, next, cut);
        if (result < 0)
            return result;
        if (result > 0)
            break;
        const bool wanted = header.type == Four("moov") || (header.type == Four("moof") && m_movieSeen);
        if (wanted && cut) {
            Log(header.type == Four("moov") ? LogLevel::Error : LogLevel::Warning,
                "%s: '%s' at %lld runs past the end of the file\n", GetFormatName(), FourCCText(header.type).c_str(),
                static_cast<long long>(position));
            if (header.type == Four("moov"))
                return RESULT_FORMAT_ERROR;
            break;
        }
        if (header.type == Four("moov") && m_movieSeen) {
            Log(LogLevel::Warning, "%s: a second 'moov' at %lld is ignored\n", GetFormatName(),
                static_cast<long long>(position));
        } else if (wanted) {
            RObject<CByteArray> bytes;
            MovBox box;
            if ((result = ReadPayload(header, bytes, box)) < 0)
                return result;
            if (header.type == Four("moov")) {
                m_movie = bytes;
                result = ReadMovie(box);
            } else {
                result = ReadFragment(box);
            }
            if (result < 0)
                return result;
        }
        position = next;
    }
    if (!m_movieSeen) {
        Log(LogLevel::Error, "%s: the file has no 'moov'\n", GetFormatName());
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

int CMovieFileReader::ReadMovie(const MovBox& moov)
{
    m_movieSeen = true;
    MovBoxIterator children(moov);
    MovBox box;
    MovBox mvex;
    bool hasExtends = false;
    int result;
    while ((result = children.Next(box)) == RESULT_OK) {
        switch (box.type) {
        case Four("mvhd"):
            result = ReadMovieHeader(box);
            break;
        case Four("trak"):
            result = ReadTrack(box);
            break;
        case Four("udta"):
            ReadUserData(box, this); // broken metadata is logged and never stops the file
            break;
        case Four("meta"):
            ReadMetadata(box, this);
            break;
        case Four("mvex"):
            mvex = box;
            hasExtends = true;
            break;
        default:
            break;
        }
        if (result < 0)
            return result;
    }
    if (result < 0)
        return result;
    return hasExtends ? ReadExtends(mvex) : RESULT_OK;
}

int CMovieFileReader::ReadMovieHeader(const MovBox& mvhd)
{
    MovFieldReader fields(mvhd);
    uint8_t version = 0;
    uint32_t flags = 0;
    fields.ReadVersionAndFlags(version, flags);
    fields.Skip(version == 1 ? 16 : 8); // creation and modification times
    m_movieTimeScale = fields.Read32();
    if (fields.Failed()) {
        Log(LogLevel::Error, "%s: 'mvhd' of %zu bytes is too short\n", GetFormatName(), mvhd.size);
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

int CMovieFileReader::ReadTrack(const MovBox& trak)
{
    MovTrack* track = new (fallible) MovTrack();
    if (!track)
        return RESULT_OUT_OF_MEMORY;
    MovBoxIterator children(trak);
    MovBox box, mdia, elst;
    bool hasMedia = false, hasEdits = false;
    int result;
    while ((result = children.Next(box)) == RESULT_OK) {
        if (box.type == Four("tkhd")) {
            MovFieldReader fields(box);
            uint8_t version = 0;
            uint32_t flags = 0;
            fields.ReadVersionAndFlags(version, flags);
            fields.Skip(version == 1 ? 16 : 8);
            track->trackId = fields.Read32();
            // QuickTime writers leave the flags 0 on tracks they still play.
            track->enabled = (flags & 1) != 0 || flags == 0;
        } else if (box.type == Four("mdia")) {
            mdia = box;
            hasMedia = true;
        } else if (box.type == Four("edts")) {
            MovBoxIterator edits(box);
            hasEdits = edits.Find(Four("elst"), elst) == RESULT_OK;
        } else if (box.type == Four("tref")) {
            MovBoxIterator references(box);
            MovBox chap;
            if (references.Find(Four("chap"), chap) == RESULT_OK && chap.size >= 4)
                track->chapterTrackId = BigEndian::Load32(chap.payload);
        }
    }
    if (result >= 0 && hasMedia)
        result = ReadMedia(mdia, *track, hasEdits ? &elst : nullptr);
    if (result < 0 || !hasMedia) {
        if (!hasMedia)
            Log(LogLevel::Warning, "%s: track %u has no 'mdia'; skipped\n", GetFormatName(), track->trackId);
        delete track;
        return result < 0 ? result : RESULT_OK;
    }
    return AdoptTrack(track);
}

int CMovieFileReader::ReadMedia(const MovBox& mdia, MovTrack& track, const MovBox* elst)
{
    MovBox mdhd, hdlr, minf, stbl, stsd;
    MovBoxIterator header(mdia), handler(mdia), information(mdia);
    if (header.Find(Four("mdhd"), mdhd) != RESULT_OK || handler.Find(Four("hdlr"), hdlr) != RESULT_OK ||
        information.Find(Four("minf"), minf) != RESULT_OK) {
        Log(LogLevel::Error, "%s: track %u lacks 'mdhd', 'hdlr' or 'minf'\n", GetFormatName(), track.trackId);
        return RESULT_FORMAT_ERROR;
    }
    int result = ReadMediaHeader(mdhd, track);
    if (result >= 0)
        result = ReadHandler(hdlr, track);
    if (result < 0 || track.kind == MovTrack::Kind::Other)
        return result;
    MovBoxIterator tables(minf);
    if (tables.Find(Four("stbl"), stbl) != RESULT_OK) {
        Log(LogLevel::Error, "%s: track %u has no 'stbl'\n", GetFormatName(), track.trackId);
        return RESULT_FORMAT_ERROR;
    }
    MovBoxIterator descriptions(stbl);
    if (descriptions.Find(Four("stsd"), stsd) != RESULT_OK) {
        Log(LogLevel::Error, "%s: track %u has no 'stsd'\n", GetFormatName(), track.trackId);
        return RESULT_FORMAT_ERROR;
    }
    if ((result = track.table.Read(stbl, m_fileSize)) < 0)
        return result;
    if (elst && (result = track.edits.Read(*elst, m_movieTimeScale, track.mediaTimeScale)) < 0) {
        // A broken edit list costs the presentation mapping, not the media.
        Log(LogLevel::Warning, "%s: track %u is read without its edit list\n", GetFormatName(), track.trackId);
        track.edits = MovEditList();
    }
    if (!track.edits.IsEmpty() && track.edits.GetMediaStart() >= track.table.GetDuration() &&
        track.table.GetSampleCount() > 0) {
        Log(LogLevel::Warning, "%s: track %u 'elst' starts at media time %lld, past the media's %lld; ignored\n",
            GetFormatName(), track.trackId, static_cast<long long>(track.edits.GetMediaStart()),
            static_cast<long long>(track.table.GetDuration()));
        track.edits = MovEditList();
    }
    return ReadSampleDescriptions(stsd, track);
}

int CMovieFileReader::ReadMediaHeader(const MovBox& mdhd, MovTrack& track)
{
    MovFieldReader fields(mdhd);
    uint8_t version = 0;
    uint32_t flags = 0;
    fields.ReadVersionAndFlags(version, flags);
    fields.Skip(version == 1 ? 16 : 8);
    track.mediaTimeScale = fields.Read32();
    if (fields.Failed() || track.mediaTimeScale == 0) {
        Log(LogLevel::Error, "%s: track %u 'mdhd' time scale %u\n", GetFormatName(), track.trackId,
            track.mediaTimeScale);
        return RESULT_FORMAT_ERROR;
    }
    return RESULT_OK;
}

int CMovieFileReader::ReadHandler(const MovBox& hdlr, MovTrack& track)
{
    MovFieldReader fields(hdlr);
    fields.Skip(8); // version, flags, QuickTime's component type
    track.handler = fields.Read32();
    if (fields.Failed()) {
        Log(LogLevel::Error, "%s: track %u 'hdlr' of %zu bytes is too short\n", GetFormatName(), track.trackId,
            hdlr.size);
        return RESULT_FORMAT_ERROR;
    }
    track.kind = KindOfHandler(track.handler);
    if (track.kind == MovTrack::Kind::Other)
        Log(LogLevel::Info, "%s: track %u of handler '%s' is not media this reader hands out\n", GetFormatName(),
            track.trackId, FourCCText(track.handler).c_str());
    return RESULT_OK;
}

uint32_t CMovieFileReader::GetChosenVideoDescription()
{
    unsigned char bytes[4];
    if (GetProperty(ContainerReaderProperty::MovVideoSampleDescriptionIndex, 4, bytes) != 4)
        return 1;
    const uint32_t index = bytes[0] | bytes[1] << 8 | bytes[2] << 16 | uint32_t(bytes[3]) << 24;
    return index == 0 ? 1 : index;
}

int CMovieFileReader::ReadSampleDescriptions(const MovBox& stsd, MovTrack& track)
{
    MovFieldReader fields(stsd);
    fields.Skip(4);
    const uint32_t count = fields.Read32();
    if (fields.Failed() || count == 0) {
        Log(LogLevel::Error, "%s: track %u 'stsd' holds no entry\n", GetFormatName(), track.trackId);
        return RESULT_FORMAT_ERROR;
    }
    const uint32_t wanted = track.kind == MovTrack::Kind::Video ? GetChosenVideoDescription() : 1;
    if (wanted > count)
        Log(LogLevel::Warning, "%s: track %u has %u sample descriptions; \"%s\" %u is read as 1\n", GetFormatName(),
            track.trackId, count, ContainerReaderProperty::MovVideoSampleDescriptionIndex, wanted);
    const uint32_t chosen = wanted > count ? 1 : wanted;
    MovBoxIterator entries(stsd.payload + 8, stsd.size - 8, stsd.PayloadOffset() + 8, stsd.type);
    MovBox entry;
    for (uint32_t index = 1; index <= chosen; ++index) {
        const int result = entries.Next(entry);
        if (result != RESULT_OK) {
            Log(LogLevel::Error, "%s: track %u 'stsd' ends before entry %u\n", GetFormatName(), track.trackId, index);
            return RESULT_FORMAT_ERROR;
        }
    }
    track.sampleEntryType = entry.type;
    return DescribeEntry(entry, track);
}

int CMovieFileReader::DescribeEntry(const MovBox& entry, MovTrack& track)
{
    const bool quickTime = m_fileFamily == MovFamily::QuickTime;
    int result = RESULT_OK;
    switch (track.kind) {
    case MovTrack::Kind::Video:
        track.video = RObject<CVideoProperties>(new (fallible) CVideoProperties());
        if (!track.video)
            return RESULT_OUT_OF_MEMORY;
        result = ReadVideoDescription(entry, quickTime, track.video);
        break;
    case MovTrack::Kind::Audio:
        track.audio = RObject<CAudioProperties>(new (fallible) CAudioProperties());
        if (!track.audio)
            return RESULT_OUT_OF_MEMORY;
        result = ReadAudioDescription(entry, quickTime, track.audio, track.audioLayout);
        break;
    case MovTrack::Kind::Subtitle:
        track.subtitle = RObject<CSubtitleProperties>(new (fallible) CSubtitleProperties());
        if (!track.subtitle)
            return RESULT_OUT_OF_MEMORY;
        result = ReadSubtitleDescription(entry, track.subtitle);
        break;
    case MovTrack::Kind::TimeCode:
        result = ReadTimeCodeDescription(entry, track.timeCode);
        break;
    default:
        break;
    }
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    if (result != RESULT_OK) {
        // An entry we cannot describe costs its track, not the file.
        Log(LogLevel::Warning, "%s: track %u of format '%s' is skipped\n", GetFormatName(), track.trackId,
            FourCCText(entry.type).c_str());
        track.kind = MovTrack::Kind::Other;
    }
    return RESULT_OK;
}

int CMovieFileReader::AdoptTrack(MovTrack*& track)
{
    if (m_trackCount == MaxTracks) {
        Log(LogLevel::Warning, "%s: tracks after the first %d are ignored\n", GetFormatName(), int(MaxTracks));
        delete track;
        track = nullptr;
        return RESULT_OK;
    }
    m_tracks[m_trackCount++] = track;
    return RESULT_OK;
}

int CMovieFileReader::ReadExtends(const MovBox& mvex)
{
    MovFragmentTrack fragments[MaxTracks];
    for (int32_t i = 0; i < m_trackCount; ++i)
        fragments[i] = MovFragmentTrack{m_tracks[i]->trackId, MovTrackDefaults(), &m_tracks[i]->table};
    const int result = ReadMovieExtends(mvex, fragments, size_t(m_trackCount));
    for (int32_t i = 0; i < m_trackCount; ++i)
        m_tracks[i]->fragmentDefaults = fragments[i].defaults;
    return result;
}

int CMovieFileReader::ReadFragment(const MovBox& moof)
{
    MovFragmentTrack fragments[MaxTracks];
    for (int32_t i = 0; i < m_trackCount; ++i)
        fragments[i] = MovFragmentTrack{m_tracks[i]->trackId, m_tracks[i]->fragmentDefaults, &m_tracks[i]->table};
    const int result = ReadMovieFragment(moof, fragments, size_t(m_trackCount), m_fileSize);
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    if (result < 0)
        Log(LogLevel::Warning, "%s: 'moof' at %lld is skipped\n", GetFormatName(),
            static_cast<long long>(moof.fileOffset));
    return RESULT_OK;
}

// ---- Publishing the tracks ------------------------------------------------

int CMovieFileReader::FinishTracks()
{
    for (int32_t i = 0; i < m_trackCount; ++i) {
        MovTrack& track = *m_tracks[i];
        track.cursor.Seek(0);
        bool isChapters = false;
        for (int32_t j = 0; j < m_trackCount; ++j)
            isChapters = isChapters || (m_tracks[j]->chapterTrackId != 0 && m_tracks[j]->chapterTrackId == track.trackId);
        int result = RESULT_OK;
        switch (track.kind) {
        case MovTrack::Kind::Video:
            result = PublishVideo(track);
            break;
        case MovTrack::Kind::Audio:
            result = PublishAudio(track);
            break;
        case MovTrack::Kind::Subtitle:
            result = isChapters ? ReportChapters(track) : PublishSubtitle(track);
            break;
        case MovTrack::Kind::TimeCode:
            result = m_timeCodeSeen ? RESULT_OK : ApplyTimeCode(track);
            break;
        default:
            break;
        }
        if (result < 0)
            return result;
    }
    if (!m_video && m_audioCount == 0 && m_subtitleCount == 0)
        Log(LogLevel::Warning, "%s: the movie has no track this reader can hand out\n", GetFormatName());
    return RESULT_OK;
}

int64_t CMovieFileReader::GetTrackDuration(const MovTrack& track)
{
    const int64_t presented = track.edits.GetPresentedDuration();
    if (!track.edits.IsEmpty() && presented > 0) {
        const int64_t media = track.table.GetDuration() - track.edits.GetMediaStart();
        // An edit that runs past the media shows only the media there is.
        return presented < media || media <= 0 ? presented : media;
    }
    return track.table.GetDuration();
}

int CMovieFileReader::PublishVideo(MovTrack& track)
{
    if (m_video || !track.enabled) {
        Log(LogLevel::Warning, "%s: video track %u is not handed out (%s)\n", GetFormatName(), track.trackId,
            m_video ? "one video track per container" : "disabled");
        return RESULT_OK;
    }
    CVideoProperties* video = track.video;
    int result = video->SetTimeScale(track.mediaTimeScale);
    if (result >= 0)
        result = video->SetDuration(GetTrackDuration(track));
    if (result < 0)
        return result;
    const int64_t count = track.table.GetSampleCount();
    const int64_t duration = track.table.GetDuration();
    if (count > 0 && duration > 0) {
        int64_t numerator = 0;
        if (Checked::Multiply(count, int64_t(track.mediaTimeScale), &numerator)) {
            const int64_t divisor = GreatestCommonDivisor(numerator, duration);
            video->SetFrameRate(numerator / divisor, duration / divisor);
        }
    }
    track.nalLengthSize = FindNalLengthSize(track);
    // Fixed once: fragments read later must not move earlier samples.
    track.decodeLead = track.table.GetCompositionToDecodeShift();
    m_video = &track;
    return RESULT_OK;
}

int CMovieFileReader::PublishAudio(MovTrack& track)
{
    if (m_audioCount == MaxAudioMedia) {
        Log(LogLevel::Warning, "%s: audio track %u is not handed out (%d audio tracks at most)\n", GetFormatName(),
            track.trackId, int(MaxAudioMedia));
        return RESULT_OK;
    }
    int result = track.audio->SetTimeScale(track.mediaTimeScale);
    if (result >= 0)
        result = track.audio->SetDuration(GetTrackDuration(track));
    if (result < 0)
        return result;
    if ((result = ReadMpegAudioLayout(track)) < 0)
        return result;
    if (track.audioLayout.pcm && track.audioLayout.bytesPerFrame == 0) {
        Log(LogLevel::Warning, "%s: PCM track %u states no frame size; skipped\n", GetFormatName(), track.trackId);
        return RESULT_OK;
    }
    m_audio[m_audioCount++] = &track;
    return RESULT_OK;
}

// MP3 in MP4: writers put any channel count in the sample entry (ffmpeg
// writes 2); the first frame's header tells the truth.
int CMovieFileReader::ReadMpegAudioLayout(MovTrack& track)
{
    const uint32_t format = track.audio->GetFormat();
    if (format != AudioFormat::MP3 && format != AudioFormat::MPEG)
        return RESULT_OK;
    MovSample first;
    const int found = track.cursor.Next(first);
    track.cursor.Seek(0);
    if (found != RESULT_OK || first.size < 4)
        return RESULT_OK;
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, 4));
    if (!bytes || !bytes->GetData())
        return RESULT_OUT_OF_MEMORY;
    MpegAudioFrameHeader header;
    if (ReadData(m_stream, first.position, bytes) < 0 || !MpegAudioFrameHeader::Parse(bytes->GetData(), header))
        return RESULT_OK;
    if (header.channels != track.audio->GetChannels()) {
        Log(LogLevel::Info, "%s: track %u states %d channels, its MPEG audio frames %d\n", GetFormatName(),
            track.trackId, track.audio->GetChannels(), header.channels);
        const int result = track.audio->SetChannels(header.channels);
        if (result < 0)
            return result;
    }
    return RESULT_OK;
}

int CMovieFileReader::PublishSubtitle(MovTrack& track)
{
    if (m_subtitleCount == MaxSubtitleMedia) {
        Log(LogLevel::Warning, "%s: subtitle track %u is not handed out (%d subtitle tracks at most)\n",
            GetFormatName(), track.trackId, int(MaxSubtitleMedia));
        return RESULT_OK;
    }
    int result = track.subtitle->SetTimeScale(track.mediaTimeScale);
    if (result >= 0)
        result = track.subtitle->SetDuration(GetTrackDuration(track));
    const bool caption = track.sampleEntryType == Four("c608") || track.sampleEntryType == Four("c708");
    if (result >= 0 && caption && !GetProperty(ContainerProperty::MovCaptionType))
        result = SetFourProperty(ContainerProperty::MovCaptionType, track.sampleEntryType);
    if (result < 0)
        return result;
    m_subtitles[m_subtitleCount++] = &track;
    return RESULT_OK;
}

const char* const CMovieFileReader::ChaptersKey = "mov.chapters";

// A chapter track's samples are QuickTime text samples: a 16-bit length and
// the title. They become one container property, a line per chapter.
int CMovieFileReader::ReportChapters(MovTrack& track)
{
    CString* text = CString::Create("");
    RObject<CString> lines(text);
    if (!lines)
        return RESULT_OUT_OF_MEMORY;
    std::string chapters;
    MovSample sample;
    uint32_t count = 0;
    while (count < MaxChapters && track.cursor.Next(sample) == RESULT_OK) {
        char title[MaxChapterTitle + 1] = {};
        const int result = ReadChapterTitle(sample, title);
        if (result == RESULT_OUT_OF_MEMORY)
            return result;
        if (result < 0)
            continue;
        const int64_t start = sample.decodeTime + track.GetShift();
        const int64_t millis = start * 1000 / track.mediaTimeScale;
        char line[64 + MaxChapterTitle];
        std::snprintf(line, sizeof line, "%s%02lld:%02lld:%02lld.%03lld %s", count ? "\n" : "",
                      static_cast<long long>(millis / 3600000), static_cast<long long>(millis / 60000 % 60),
                      static_cast<long long>(millis / 1000 % 60), static_cast<long long>(millis % 1000), title);
        chapters += line;
        ++count;
    }
    track.cursor.Seek(0);
    Log(LogLevel::Info, "%s: track %u holds %u chapter titles; kept as \"%s\"\n", GetFormatName(), track.trackId,
        count, ChaptersKey);
    if (count == 0)
        return RESULT_OK;
    return SetProperty(ChaptersKey, int32_t(chapters.size()), reinterpret_cast<const unsigned char*>(chapters.data()));
}

// The title of one text sample, cut at MaxChapterTitle bytes; -19017 for a
// sample that holds none.
int CMovieFileReader::ReadChapterTitle(const MovSample& sample, char (&title)[MaxChapterTitle + 1])
{
    if (sample.size < 2)
        return RESULT_FORMAT_ERROR;
    const uint32_t size = sample.size < MaxChapterTitle + 2 ? sample.size : MaxChapterTitle + 2;
    RObject<CByteArray> bytes(CByteArray::Create(nullptr, int32_t(size)));
    if (!bytes || !bytes->GetData())
        return RESULT_OUT_OF_MEMORY;
    if (ReadData(m_stream, sample.position, bytes) < 0)
        return RESULT_FORMAT_ERROR;
    const unsigned char* data = bytes->GetData();
    const uint32_t length = std::min<uint32_t>(BigEndian::Load16(data), size - 2);
    uint32_t kept = 0;
    for (uint32_t i = 0; i < length; ++i)
        if (data[2 + i] >= 0x20)
            title[kept++] = char(data[2 + i]);
    title[kept] = '\0';
    return RESULT_OK;
}

int CMovieFileReader::ApplyTimeCode(MovTrack& track)
{
    MovSample first;
    if (track.cursor.Next(first) != RESULT_OK)
        return RESULT_OK;
    track.cursor.Seek(0);
    unsigned char bytes[TimeCodeSampleBytes];
    const uint32_t size = first.size < TimeCodeSampleBytes ? first.size : TimeCodeSampleBytes;
    RObject<CByteArray> sample(CByteArray::Create(nullptr, int32_t(size)));
    if (!sample || (size > 0 && !sample->GetData()))
        return RESULT_OUT_OF_MEMORY;
    int result = ReadData(m_stream, first.position, sample);
    if (result < 0) {
        Log(LogLevel::Warning, "%s: the timecode sample of track %u could not be read (%s)\n", GetFormatName(),
            track.trackId, GetResultName(result));
        return RESULT_OK;
    }
    for (uint32_t i = 0; i < size; ++i)
        bytes[i] = sample->GetData()[i];
    result = ApplyStartTimeCode(track.timeCode, bytes, size, this);
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    m_timeCodeSeen = result >= 0;
    return RESULT_OK;
}

int32_t CMovieFileReader::FindNalLengthSize(const MovTrack& track) const
{
    CByteArray* record = track.video->GetProperty(VideoStreamFacts::DecoderConfigurationKey);
    if (!record || record->GetLength() == 0)
        return 0;
    const uint32_t format = track.video->GetFormat();
    if (format == VideoFormat::AVC || format == VideoFormat::H264) {
        AvcDecoderConfiguration configuration;
        if (AvcDecoderConfiguration::Parse(record->GetData(), size_t(record->GetLength()), configuration) >= 0)
            return configuration.lengthBytes;
    } else if (format == VideoFormat::HEVC || format == VideoFormat::H265) {
        HevcDecoderConfiguration configuration;
        if (HevcDecoderConfiguration::Parse(record->GetData(), size_t(record->GetLength()), configuration) >= 0)
            return configuration.lengthBytes;
    }
    return 0;
}

// ---- Samples ---------------------------------------------------------------

CContainerDataReference* CMovieFileReader::MakeRange(const MovTrack& track, int64_t position, uint32_t size) const
{
    if (track.nalLengthSize > 0) {
        const uint32_t format = track.video->GetFormat();
        if (format == VideoFormat::HEVC || format == VideoFormat::H265)
            return new (fallible) CMpegHevcDataReference(position, int32_t(size), track.nalLengthSize);
        return CMpeg4AvcDataReference::Create(position, int32_t(size), track.nalLengthSize);
    }
    return new (fallible) CContainerDataReference(position, int32_t(size));
}

// The edit list's verdict on a sample presented over [start, start + duration)
// in media time: the Exclude hint, or a trim at the end an edit cuts.
int32_t CMovieFileReader::Place(const MovTrack& track, int64_t start, int64_t duration, CMediaSample* sample) const
{
    const MovEditList::Placement placement = track.edits.Place(start, duration);
    if (placement.excluded)
        return CMediaSample::Exclude;
    if (placement.leadingTrim > 0)
        sample->SetCompositionTrim(placement.leadingTrim, 0);
    else if (placement.trailingTrim > 0)
        sample->SetCompositionTrim(0, placement.trailingTrim);
    return 0;
}

int CMovieFileReader::MakeVideoSample(MovTrack& track, const MovSample& found, CVideoSample*& sample)
{
    RObject<CVideoSample> made(CVideoSample::Create());
    RObject<CContainerDataReference> range(MakeRange(track, found.position, found.size));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    const int64_t presentation = found.decodeTime + found.compositionOffset;
    int32_t type = CVideoSample::P;
    if (found.sync)
        type = CVideoSample::I;
    else if (presentation < track.highestPresentation)
        type = CVideoSample::B;
    if (presentation > track.highestPresentation)
        track.highestPresentation = presentation;
    // Negative offsets ('ctts' version 1) move decoding earlier instead,
    // so that no picture is presented before it is decoded.
    const int64_t lead = track.decodeLead;
    made->SetTime(found.decodeTime - lead + track.GetShift());
    made->SetDuration(int32_t(found.duration > INT32_MAX ? INT32_MAX : found.duration));
    made->SetCompositionOffset(int32_t(found.compositionOffset + lead));
    made->SetPictureType(type);
    int32_t hint = found.sync ? CMediaSample::KeyFrameAligned : 0;
    hint |= Place(track, presentation, found.duration, made);
    made->SetHint(hint);
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    sample = made.Detach();
    return RESULT_OK;
}

int CMovieFileReader::ReadVideoSample(int32_t track, CVideoSample*& sample)
{
    sample = nullptr;
    CAutoLock lock(this);
    MovTrack* found = FindTrack(MovTrack::Kind::Video, track);
    if (!found)
        return RESULT_INDEX_OUT_OF_RANGE;
    MovSample next;
    if (found->cursor.Next(next) != RESULT_OK)
        return RESULT_OK;
    return MakeVideoSample(*found, next, sample);
}

int CMovieFileReader::MakeAudioSample(MovTrack& track, const MovSample& found, CAudioSample*& sample)
{
    RObject<CAudioSample> made(CAudioSample::Create());
    RObject<CContainerDataReference> range(MakeRange(track, found.position, found.size));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    made->SetPackets(1);
    made->SetFrames(int32_t(found.duration > INT32_MAX ? INT32_MAX : found.duration));
    made->SetTime(found.decodeTime + track.GetShift());
    made->SetHint(CMediaSample::KeyFrameAligned |
                  Place(track, found.decodeTime + found.compositionOffset, found.duration, made));
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    sample = made.Detach();
    return RESULT_OK;
}

// Up to one second of PCM from the chunk being cut: a chunk's frames lie
// together in the file, different chunks need not.
int CMovieFileReader::CutPcmSample(MovTrack& track, CAudioSample*& sample)
{
    MovChunk chunk = {};
    while (true) {
        if (track.pcmChunk >= track.table.GetChunkCount() || track.table.GetChunk(track.pcmChunk, chunk) < 0)
            return RESULT_OK;
        if (track.pcmTaken < chunk.sampleCount)
            break;
        ++track.pcmChunk;
        track.pcmTaken = 0;
    }
    const uint32_t bytesPerFrame = track.audioLayout.bytesPerFrame;
    int64_t count = chunk.sampleCount - track.pcmTaken;
    const int64_t second = track.audio->GetSampleRate() > 0 ? track.audio->GetSampleRate() : track.mediaTimeScale;
    count = count < second ? count : second;
    if (count > INT32_MAX / int64_t(bytesPerFrame))
        count = INT32_MAX / int64_t(bytesPerFrame);
    int64_t position = 0;
    if (!Checked::Multiply(int64_t(track.pcmTaken), int64_t(bytesPerFrame), &position) ||
        !Checked::Add(position, chunk.position, &position))
        return RESULT_FORMAT_ERROR;
    // The table cannot know PCM frame sizes; a chunk cut short by the end
    // of the file gives the whole frames that are there.
    const int64_t inFile = position < m_fileSize ? (m_fileSize - position) / bytesPerFrame : 0;
    if (inFile < count) {
        Log(LogLevel::Warning, "%s: PCM chunk %u of track %u ends past the end of the file\n", GetFormatName(),
            track.pcmChunk, track.trackId);
        if (inFile == 0) {
            track.pcmChunk = track.table.GetChunkCount();
            return RESULT_OK;
        }
        count = inFile;
    }
    MovSample first;
    if (track.cursor.Seek(chunk.firstSample + track.pcmTaken) < 0 || track.cursor.Next(first) != RESULT_OK)
        return RESULT_OK;
    RObject<CAudioSample> made(CAudioSample::Create());
    RObject<CContainerDataReference> range(MakeRange(track, position, uint32_t(count * bytesPerFrame)));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    made->SetPackets(int32_t(count));
    made->SetFrames(int32_t(first.duration > INT32_MAX ? INT32_MAX : first.duration));
    made->SetTime(first.decodeTime + track.GetShift());
    made->SetHint(CMediaSample::KeyFrameAligned | Place(track, first.decodeTime, count * first.duration, made));
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    track.pcmTaken += uint32_t(count);
    sample = made.Detach();
    return RESULT_OK;
}

int CMovieFileReader::ReadAudioSample(int32_t track, CAudioSample*& sample)
{
    sample = nullptr;
    CAutoLock lock(this);
    MovTrack* found = FindTrack(MovTrack::Kind::Audio, track);
    if (!found)
        return RESULT_INDEX_OUT_OF_RANGE;
    if (found->audioLayout.pcm)
        return CutPcmSample(*found, sample);
    MovSample next;
    if (found->cursor.Next(next) != RESULT_OK)
        return RESULT_OK;
    return MakeAudioSample(*found, next, sample);
}

int CMovieFileReader::ReadSubtitleSample(int32_t track, CSubtitleSample*& sample)
{
    sample = nullptr;
    CAutoLock lock(this);
    MovTrack* found = FindTrack(MovTrack::Kind::Subtitle, track);
    if (!found)
        return RESULT_INDEX_OUT_OF_RANGE;
    MovSample next;
    if (found->cursor.Next(next) != RESULT_OK)
        return RESULT_OK;
    RObject<CSubtitleSample> made(CSubtitleSample::Create());
    RObject<CContainerDataReference> range(MakeRange(*found, next.position, next.size));
    if (!made || !range)
        return RESULT_OUT_OF_MEMORY;
    made->SetTime(next.decodeTime + found->GetShift());
    made->SetDuration(int32_t(next.duration > INT32_MAX ? INT32_MAX : next.duration));
    made->SetHint(CMediaSample::KeyFrameAligned | Place(*found, next.decodeTime, next.duration, made));
    const int result = made->SetDataReference(range);
    if (result < 0)
        return result;
    sample = made.Detach();
    return RESULT_OK;
}

int CMovieFileReader::ReadVideoData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data)
{
    data = nullptr;
    if (!FindTrack(MovTrack::Kind::Video, track))
        return RESULT_INDEX_OUT_OF_RANGE;
    return ReadData(m_stream, range, data);
}

int CMovieFileReader::ReadAudioData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data)
{
    data = nullptr;
    if (!FindTrack(MovTrack::Kind::Audio, track))
        return RESULT_INDEX_OUT_OF_RANGE;
    return ReadData(m_stream, range, data);
}

int CMovieFileReader::ReadSubtitleData(int32_t track, CContainerDataReference* range, CMemoryDataReference*& data)
{
    data = nullptr;
    if (!FindTrack(MovTrack::Kind::Subtitle, track))
        return RESULT_INDEX_OUT_OF_RANGE;
    return ReadData(m_stream, range, data);
}

} // namespace Quorvex::Vek
