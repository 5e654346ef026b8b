#include <vek/containers/readers/mov/CMovieFileReader.h>

#include <algorithm>
#include <memory>
#include <cstdio>
#include <string>

#include <vek/containers/readers/elementary/VideoStreamFacts.h>
#include <vek/containers/readers/mov/MovFragment.h>
#include <vek/containers/readers/mov/MovMetadata.h>
#include <vek/containers/readers/mov/MovSegmentIndex.h>
#include <vek/containers/readers/mov/MovTimeCode.h>
#include <vek/core/CheckedMath.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Log.h>
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/MpegAudioFrameHeader.h>
#include <vek/media/AudioFormat.h>
#include <vek/io/BigEndian.h>
#include <vek/io/CFileStream.h>
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

enum : int32_t { TimeCodeSampleBytes = 16 };

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
    if (result >= 0)
        result = WalkToMovie();
    if (result >= 0 && m_fragmented.load())
        result = ReadRandomAccess();
    // The first fragment: its samples are there as soon as BeginIndex returns.
    while (result >= 0 && m_fragmented.load() && m_fragmentsRead == 0 && !m_walk.IsFinished())
        result = WalkStep();
    if (result >= 0)
        result = FinishTracks();
    if (result < 0)
        DropTracks();
    PublishWalkProgress();
    return result;
}

int CMovieFileReader::OpenFile()
{
    DropTracks();
    m_fragmentsRead = 0;
    m_fragmented.store(false);
    m_randomAccessSeen.store(false);
    CStream* opened = nullptr;
    int result = OpenStream(opened);
    m_stream = RObject<CStream>(opened);
    if (result >= 0)
        result = OpenWalk();
    if (result < 0) {
        Log(LogLevel::Error, "%s: opening the file of the context failed with %s\n", GetFormatName(),
            GetResultName(result));
        return result;
    }
    // Descriptions are read by the file's own family, whichever reader was chosen.
    m_fileFamily = MovFileProbe::Probe(m_stream);
    if (m_fileFamily == MovFamily::None)
        m_fileFamily = m_family;
    return RESULT_OK;
}

// The walk reads through a stream of its own, opened with the reader's
// read timeout, so that following a growing file never blocks sample reads.
int CMovieFileReader::OpenWalk()
{
    CStream* opened = nullptr;
    const int result = OpenStream(opened);
    RObject<CStream> walkStream(opened);
    if (result < 0)
        return result;
    m_walk.Start(walkStream, GetFormatName());
    if (m_walk.IsFollowing() && walkStream.Get() != m_stream.Get()) {
        // Samples lie in fragments already whole: their reads never wait.
        int32_t noWait = 0;
        m_stream->Control(CFileStream::SetReadTimeout, int32_t(sizeof noWait),
                          reinterpret_cast<unsigned char*>(&noWait));
    }
    return RESULT_OK;
}

int CMovieFileReader::WalkToMovie()
{
    while (!m_movieSeen && !m_walk.IsFinished()) {
        const int result = WalkStep();
        if (result < 0)
            return result;
    }
    if (!m_movieSeen) {
        Log(LogLevel::Error, "%s: the file has no 'moov'\n", GetFormatName());
        return RESULT_FORMAT_ERROR;
    }
    // A movie without fragments is whole: nothing after it is wanted.
    if (!m_fragmented.load())
        m_walk.Finish();
    return RESULT_OK;
}

// One top-level box: 0 when walked, 1 at the end of the walk, or a code.
int CMovieFileReader::WalkStep()
{
    MovBox header;
    bool cut = false;
    int result = m_walk.Next(header, cut);
    if (result == RESULT_OK) {
        if (cut && (header.type == Four("moov") || header.type == Four("moof"))) {
            const bool movie = header.type == Four("moov");
            Log(movie && !m_movieSeen ? LogLevel::Error : LogLevel::Warning,
                "%s: '%s' at %lld runs past the end of the file (%lld)\n", GetFormatName(),
                FourCCText(header.type).c_str(), static_cast<long long>(header.fileOffset),
                static_cast<long long>(FileSize()));
            result = movie && !m_movieSeen ? RESULT_FORMAT_ERROR : 1;
        } else {
            result = ReadTopLevelBox(header);
        }
    }
    PublishWalkProgress();
    return result;
}

int CMovieFileReader::ReadTopLevelBox(const MovBox& header)
{
    const bool movie = header.type == Four("moov");
    if (movie && m_movieSeen) {
        Log(LogLevel::Warning, "%s: a second 'moov' at %lld is ignored\n", GetFormatName(),
            static_cast<long long>(header.fileOffset));
        return RESULT_OK;
    }
    if (header.type == Four("mfra")) {
        m_walk.Finish(); // the index a writer appends last: no fragment follows
        return RESULT_OK;
    }
    const bool fragment = header.type == Four("moof") && m_movieSeen && m_fragmented.load();
    const bool segments = header.type == Four("sidx") && m_movieSeen && m_fragmentsRead == 0;
    if (!movie && !fragment && !segments)
        return RESULT_OK;
    RObject<CByteArray> bytes;
    MovBox box;
    int result = m_walk.ReadPayload(header, bytes, box);
    if (result != RESULT_OK)
        return result > 0 && movie ? RESULT_FORMAT_ERROR : result;
    if (movie) {
        m_movie = bytes;
        result = ReadMovie(box);
        m_walk.AllowResume();
        return result;
    }
    if (segments)
        return ReadDeclaredSegments(box);
    result = ReadFragment(box);
    ++m_fragmentsRead;
    NotifyAll();
    return result;
}

// The next sample of a track, walking on through the fragments when the
// parsed ones are used up: 0 with it, 1 at the end, or a code.
int CMovieFileReader::NextSample(MovTrack& track, MovSample& sample)
{
    while (track.cursor.Next(sample) != RESULT_OK) {
        if (m_walk.IsFinished())
            return 1;
        const int result = WalkStep();
        if (result < 0)
            return result;
    }
    return RESULT_OK;
}

void CMovieFileReader::PublishWalkProgress()
{
    m_walkedBytes.store(m_walk.GetPosition());
    m_walkLength.store(m_walk.GetLength());
    m_walkRead.store(m_walk.GetBytesRead());
    m_walkFinished.store(m_walk.IsFinished());
    m_walkFollowing.store(m_walk.IsFollowing());
}

CMovieFileReader::WalkProgress CMovieFileReader::GetWalkProgress() const
{
    return {m_walkedBytes.load(), m_walkLength.load(), m_walkRead.load(), m_walkFollowing.load(),
            m_walkFinished.load()};
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
    m_fragmented.store(hasExtends);
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
    if ((result = track.table.Read(stbl, FileSize())) < 0)
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
    MovBoxIterator children(mvex);
    MovBox mehd;
    if (result >= 0 && children.Find(Four("mehd"), mehd) == RESULT_OK)
        return ReadExtendsHeader(mehd);
    return result;
}

// 'mehd': the whole fragmented movie's duration, in the movie time scale.
int CMovieFileReader::ReadExtendsHeader(const MovBox& mehd)
{
    MovFieldReader fields(mehd);
    uint8_t version = 0;
    uint32_t flags = 0;
    fields.ReadVersionAndFlags(version, flags);
    const uint64_t duration = fields.ReadVersioned(version);
    if (fields.Failed() || duration > uint64_t(INT64_MAX)) {
        Log(LogLevel::Warning, "%s: 'mehd' of %zu bytes (version %u) is ignored\n", GetFormatName(), mehd.size,
            unsigned(version));
        return RESULT_OK;
    }
    for (int32_t i = 0; i < m_trackCount; ++i)
        DeclareDuration(*m_tracks[i], int64_t(duration), m_movieTimeScale);
    return RESULT_OK;
}

// Raises a track's announced duration to `duration` units of `timeScale`.
void CMovieFileReader::DeclareDuration(MovTrack& track, int64_t duration, uint32_t timeScale)
{
    if (timeScale == 0 || duration <= 0 || track.mediaTimeScale == 0)
        return;
    const double media = double(duration) * double(track.mediaTimeScale) / double(timeScale);
    if (media >= 9.2e18)
        return;
    const int64_t converted = int64_t(media + 0.5);
    if (converted > track.declaredDuration)
        track.declaredDuration = converted;
}

// A 'sidx' before the first fragment announces its track's duration: the
// earliest presentation time plus the durations it references.
int CMovieFileReader::ReadDeclaredSegments(const MovBox& sidx)
{
    MovSegmentIndex index;
    const int result = ReadSegmentIndex(sidx, index);
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    if (result < 0)
        return RESULT_OK; // logged; the index is a hint
    int64_t total = index.earliestPresentationTime;
    for (int32_t i = 0; i < index.references.Count() && total >= 0; ++i)
        total = total > INT64_MAX - index.references[i].duration ? -1 : total + index.references[i].duration;
    for (int32_t i = 0; i < m_trackCount && total > 0; ++i)
        if (m_tracks[i]->trackId == index.referenceId)
            DeclareDuration(*m_tracks[i], total, index.timescale);
    return RESULT_OK;
}

// Reads the whole box of `type` at `offset` through the sample stream, when
// one of at most `maxBytes` lies there wholly inside the file: 0 with `box`
// pointing into `bytes`, 1 when there is none, or RESULT_OUT_OF_MEMORY.
int CMovieFileReader::ReadWholeBox(int64_t offset, uint32_t type, uint32_t maxBytes, RObject<CByteArray>& bytes,
                                   MovBox& box)
{
    enum : uint32_t { Header = 8 };
    if (offset < 0 || FileSize() - offset < int64_t(Header))
        return 1;
    RObject<CByteArray> head(CByteArray::Create(nullptr, Header));
    if (!head || !head->GetData())
        return RESULT_OUT_OF_MEMORY;
    if (ReadData(m_stream, offset, head) < 0)
        return 1;
    const uint32_t size = BigEndian::Load32(head->GetData());
    if (BigEndian::Load32(head->GetData() + 4) != type || size < Header || size > maxBytes ||
        FileSize() - offset < int64_t(size))
        return 1;
    bytes = RObject<CByteArray>(CByteArray::Create(nullptr, int32_t(size - Header)));
    if (!bytes || (size > Header && !bytes->GetData()))
        return RESULT_OUT_OF_MEMORY;
    if (ReadData(m_stream, offset + Header, bytes) < 0)
        return 1;
    box = MovBox();
    box.type = type;
    box.payload = bytes->GetData();
    box.size = size - Header;
    box.fileOffset = offset;
    box.headerSize = Header;
    return RESULT_OK;
}

// The 'mfra' a writer appends when it finishes: found from the 'mfro' in the
// last 16 bytes. Its 'moof' offsets let the walk resume after damage, and
// the last fragment it names tells how long each track is.
int CMovieFileReader::ReadRandomAccess()
{
    enum : uint32_t { MfroBytes = 16, MaxRandomAccessBytes = 64u << 20 };
    if (m_walk.IsFollowing() || FileSize() < int64_t(MfroBytes))
        return RESULT_OK;
    RObject<CByteArray> bytes;
    MovBox mfro;
    int result = ReadWholeBox(FileSize() - MfroBytes, Four("mfro"), MfroBytes, bytes, mfro);
    if (result != RESULT_OK)
        return result == RESULT_OUT_OF_MEMORY ? result : RESULT_OK;
    uint32_t size = 0;
    if (ReadMovieFragmentRandomAccessOffset(mfro, size) < 0 || size < MfroBytes + 8 ||
        size > MaxRandomAccessBytes || int64_t(size) > FileSize()) {
        Log(LogLevel::Warning, "%s: 'mfro' states an 'mfra' of %u bytes in a file of %lld; ignored\n",
            GetFormatName(), size, static_cast<long long>(FileSize()));
        return RESULT_OK;
    }
    const int64_t at = FileSize() - size;
    MovBox mfra;
    result = ReadWholeBox(at, Four("mfra"), size, bytes, mfra);
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    if (result != RESULT_OK || mfra.TotalSize() != int64_t(size)) {
        Log(LogLevel::Warning, "%s: 'mfro' points at %lld, where no 'mfra' of %u bytes is; ignored\n",
            GetFormatName(), static_cast<long long>(at), size);
        return RESULT_OK;
    }
    int64_t lastFragment = -1;
    result = ReadRandomAccessBoxes(mfra, lastFragment);
    m_walk.SortKnownFragments();
    if (result >= 0 && lastFragment >= 0)
        result = ReadLastFragmentDurations(lastFragment);
    return result;
}

int CMovieFileReader::ReadRandomAccessBoxes(const MovBox& mfra, int64_t& lastFragment)
{
    MovBoxIterator children(mfra);
    MovBox tfra;
    int result;
    while ((result = children.Next(tfra)) == RESULT_OK) {
        if (tfra.type != Four("tfra"))
            continue;
        MovTrackRandomAccess access;
        if ((result = ReadTrackFragmentRandomAccess(tfra, access)) == RESULT_OUT_OF_MEMORY)
            return result;
        if (result < 0)
            continue; // logged; the other tracks' entries still count
        m_randomAccessSeen.store(true);
        for (int32_t i = 0; i < access.entries.Count(); ++i) {
            const int64_t offset = access.entries[i].moofOffset;
            if (offset <= 0 || offset >= FileSize())
                continue;
            if ((result = m_walk.AddKnownFragment(offset)) < 0)
                return result;
            lastFragment = offset > lastFragment ? offset : lastFragment;
        }
    }
    return result == RESULT_OUT_OF_MEMORY ? result : RESULT_OK;
}

// Parses the last fragment 'mfra' names into scratch tables: where its
// samples end is each track's duration when it carries its decode time.
int CMovieFileReader::ReadLastFragmentDurations(int64_t offset)
{
    enum : uint32_t { MaxFragmentBytes = 16u << 20 };
    RObject<CByteArray> bytes;
    MovBox moof;
    const int read = ReadWholeBox(offset, Four("moof"), MaxFragmentBytes, bytes, moof);
    if (read == RESULT_OUT_OF_MEMORY)
        return read;
    if (read != RESULT_OK) {
        Log(LogLevel::Warning, "%s: 'mfra' names a 'moof' at %lld where none of a readable size is\n",
            GetFormatName(), static_cast<long long>(offset));
        return RESULT_OK;
    }
    std::unique_ptr<MovSampleTable[]> scratch(new (fallible) MovSampleTable[size_t(m_trackCount)]);
    if (!scratch)
        return RESULT_OUT_OF_MEMORY;
    MovFragmentTrack fragments[MaxTracks];
    for (int32_t i = 0; i < m_trackCount; ++i)
        fragments[i] = MovFragmentTrack{m_tracks[i]->trackId, m_tracks[i]->fragmentDefaults, &scratch[i]};
    const int result = ReadMovieFragment(moof, fragments, size_t(m_trackCount), FileSize());
    if (result == RESULT_OUT_OF_MEMORY)
        return result;
    for (int32_t i = 0; i < m_trackCount; ++i)
        if (scratch[i].GetSampleCount() > 0)
            DeclareDuration(*m_tracks[i], scratch[i].GetDuration(), m_tracks[i]->mediaTimeScale);
    return RESULT_OK;
}

int CMovieFileReader::ReadFragment(const MovBox& moof)
{
    MovFragmentTrack fragments[MaxTracks];
    for (int32_t i = 0; i < m_trackCount; ++i)
        fragments[i] = MovFragmentTrack{m_tracks[i]->trackId, m_tracks[i]->fragmentDefaults, &m_tracks[i]->table};
    const int result = ReadMovieFragment(moof, fragments, size_t(m_trackCount), FileSize());
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
    const int64_t indexed = track.table.GetDuration();
    const int64_t whole = track.declaredDuration > indexed ? track.declaredDuration : indexed;
    const int64_t presented = track.edits.GetPresentedDuration();
    if (!track.edits.IsEmpty() && presented > 0) {
        const int64_t media = whole - track.edits.GetMediaStart();
        // An edit that runs past the media shows only the media there is.
        return presented < media || media <= 0 ? presented : media;
    }
    return whole;
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
    const int result = NextSample(*found, next);
    return result == RESULT_OK ? MakeVideoSample(*found, next, sample) : result > 0 ? RESULT_OK : result;
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
        if (track.pcmChunk >= track.table.GetChunkCount()) {
            if (m_walk.IsFinished())
                return RESULT_OK;
            const int result = WalkStep();
            if (result < 0)
                return result;
            continue;
        }
        if (track.table.GetChunk(track.pcmChunk, chunk) < 0)
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
    const int64_t inFile = position < FileSize() ? (FileSize() - position) / bytesPerFrame : 0;
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
    const int result = NextSample(*found, next);
    return result == RESULT_OK ? MakeAudioSample(*found, next, sample) : result > 0 ? RESULT_OK : result;
}

int CMovieFileReader::ReadSubtitleSample(int32_t track, CSubtitleSample*& sample)
{
    sample = nullptr;
    CAutoLock lock(this);
    MovTrack* found = FindTrack(MovTrack::Kind::Subtitle, track);
    if (!found)
        return RESULT_INDEX_OUT_OF_RANGE;
    MovSample next;
    const int walked = NextSample(*found, next);
    if (walked != RESULT_OK)
        return walked > 0 ? RESULT_OK : walked;
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
