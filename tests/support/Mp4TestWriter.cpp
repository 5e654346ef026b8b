#include "support/Mp4TestWriter.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace VekTest {

namespace {

constexpr uint32_t kUnity = 0x10000;

bool NeedsWide(uint64_t value)
{
    return value > UINT32_MAX;
}

void Matrix(ByteWriter& w)
{
    w.U32(kUnity).U32(0).U32(0).U32(0).U32(kUnity).U32(0).U32(0).U32(0).U32(0x40000000);
}

// A time field of a versioned box: 64 bits in version 1, else 32.
void Time(ByteWriter& w, uint64_t value, bool version1)
{
    w.Int(value, version1 ? 8 : 4);
}

// Walks run-length samples one sample at a time.
class SampleCursor {
public:
    explicit SampleCursor(const std::vector<Mp4SampleRun>& runs) : m_runs(runs) { SkipEmptyRuns(); }

    bool AtEnd() const { return m_run >= m_runs.size(); }
    const Mp4SampleRun& Sample() const { return m_runs[m_run]; }
    void Next()
    {
        ++m_inRun;
        SkipEmptyRuns();
    }

private:
    void SkipEmptyRuns()
    {
        while (m_run < m_runs.size() && m_inRun >= m_runs[m_run].count) {
            ++m_run;
            m_inRun = 0;
        }
    }

    const std::vector<Mp4SampleRun>& m_runs;
    size_t m_run = 0;
    uint64_t m_inRun = 0;
};

// Consecutive equal values of one field, as (count, value) table entries
// whose counts fit 32 bits.
template <typename Field>
std::vector<std::pair<uint32_t, int64_t>> TableRuns(const std::vector<Mp4SampleRun>& samples, Field field)
{
    std::vector<std::pair<uint64_t, int64_t>> merged;
    for (const Mp4SampleRun& run : samples) {
        if (run.count == 0)
            continue;
        if (!merged.empty() && merged.back().second == field(run))
            merged.back().first += run.count;
        else
            merged.emplace_back(run.count, field(run));
    }
    std::vector<std::pair<uint32_t, int64_t>> entries;
    for (auto [count, value] : merged)
        for (; count > 0; count -= std::min<uint64_t>(count, UINT32_MAX))
            entries.emplace_back(uint32_t(std::min<uint64_t>(count, UINT32_MAX)), value);
    return entries;
}

// One chunk of a track in the mdat.
struct Chunk {
    uint32_t track = 0;
    uint64_t firstSample = 0;
    uint64_t samples = 0;
    uint64_t bytes = 0;
    uint64_t position = 0; // from the first byte of the first chunk
};

// Whole runs at a time, so that a run of a billion samples in a few
// chunks costs a few steps.
std::vector<Chunk> TrackChunks(const Mp4Track& track, uint32_t index)
{
    std::vector<Chunk> chunks;
    const uint64_t perChunk = std::max<uint32_t>(track.samplesPerChunk, 1);
    uint64_t sample = 0;
    for (const Mp4SampleRun& run : track.samples)
        for (uint64_t left = run.count; left > 0;) {
            if (sample % perChunk == 0)
                chunks.push_back({index, sample, 0, 0, 0});
            const uint64_t take = std::min(left, perChunk - sample % perChunk);
            chunks.back().samples += take;
            chunks.back().bytes += take * run.size;
            sample += take;
            left -= take;
        }
    return chunks;
}

// Every track's chunks in the mdat, interleaved: the first chunk of each
// track, then the second of each, and so on.
std::vector<Chunk> InterleavedChunks(const std::vector<Mp4Track>& tracks)
{
    std::vector<std::vector<Chunk>> perTrack;
    size_t most = 0;
    for (size_t t = 0; t < tracks.size(); ++t) {
        perTrack.push_back(TrackChunks(tracks[t], uint32_t(t)));
        most = std::max(most, perTrack.back().size());
    }
    std::vector<Chunk> chunks;
    uint64_t position = 0;
    for (size_t c = 0; c < most; ++c)
        for (const std::vector<Chunk>& track : perTrack)
            if (c < track.size()) {
                chunks.push_back(track[c]);
                chunks.back().position = position;
                position += track[c].bytes;
            }
    return chunks;
}

uint64_t PayloadBytes(const std::vector<Chunk>& chunks)
{
    return chunks.empty() ? 0 : chunks.back().position + chunks.back().bytes;
}

// ---------------------------------------------------------------- sample tables

Bytes Stts(const Mp4Track& track)
{
    const auto entries = TableRuns(track.samples, [](const Mp4SampleRun& s) { return int64_t(s.duration); });
    ByteWriter w(true);
    w.U32(uint32_t(entries.size()));
    for (auto [count, duration] : entries)
        w.U32(count).U32(uint32_t(duration));
    return Mp4FullBox("stts", 0, 0, w.Get());
}

// Empty when every offset is zero; version 1 when one is negative.
Bytes Ctts(const Mp4Track& track)
{
    const auto entries = TableRuns(track.samples, [](const Mp4SampleRun& s) { return int64_t(s.compositionOffset); });
    const bool any = std::any_of(entries.begin(), entries.end(), [](auto& e) { return e.second != 0; });
    const bool negative = std::any_of(entries.begin(), entries.end(), [](auto& e) { return e.second < 0; });
    if (!any)
        return {};
    ByteWriter w(true);
    w.U32(uint32_t(entries.size()));
    for (auto [count, offset] : entries)
        w.U32(count).U32(uint32_t(offset));
    return Mp4FullBox("ctts", negative ? 1 : 0, 0, w.Get());
}

// Empty when every sample is a sync sample.
Bytes Stss(const Mp4Track& track)
{
    if (std::all_of(track.samples.begin(), track.samples.end(), [](auto& s) { return s.sync || s.count == 0; }))
        return {};
    ByteWriter numbers(true);
    uint32_t entries = 0;
    uint64_t number = 1;
    for (const Mp4SampleRun& run : track.samples) {
        for (uint64_t i = 0; run.sync && i < run.count; ++i, ++entries)
            numbers.U32(uint32_t(number + i));
        number += run.count;
    }
    ByteWriter w(true);
    w.U32(entries).Append(numbers.Get());
    return Mp4FullBox("stss", 0, 0, w.Get());
}

Bytes Stsz(const Mp4Track& track)
{
    const uint64_t count = track.SampleCount();
    const auto sizes = TableRuns(track.samples, [](const Mp4SampleRun& s) { return int64_t(s.size); });
    ByteWriter w(true);
    // One size for all, unless that size is 0: a size of 0 announces a
    // table of sizes.
    if (sizes.empty() || (sizes.size() == 1 && sizes[0].second != 0)) {
        w.U32(sizes.empty() ? 0 : uint32_t(sizes[0].second)).U32(uint32_t(count));
    } else {
        w.U32(0).U32(uint32_t(count));
        for (SampleCursor cursor(track.samples); !cursor.AtEnd(); cursor.Next())
            w.U32(cursor.Sample().size);
    }
    return Mp4FullBox("stsz", 0, 0, w.Get());
}

Bytes Stsc(const Mp4Track& track)
{
    const uint64_t count = track.SampleCount();
    const uint64_t perChunk = std::max<uint32_t>(track.samplesPerChunk, 1);
    ByteWriter entries(true);
    uint32_t entryCount = 0;
    if (count >= perChunk) {
        entries.U32(1).U32(uint32_t(perChunk)).U32(1);
        ++entryCount;
    }
    if (count % perChunk) {
        entries.U32(uint32_t(count / perChunk + 1)).U32(uint32_t(count % perChunk)).U32(1);
        ++entryCount;
    }
    ByteWriter w(true);
    w.U32(entryCount).Append(entries.Get());
    return Mp4FullBox("stsc", 0, 0, w.Get());
}

Bytes ChunkOffsets(const std::vector<uint64_t>& offsets, bool forceWide)
{
    const bool wide = forceWide || std::any_of(offsets.begin(), offsets.end(), NeedsWide);
    ByteWriter w(true);
    w.U32(uint32_t(offsets.size()));
    for (uint64_t offset : offsets)
        w.Int(offset, wide ? 8 : 4);
    return Mp4FullBox(wide ? "co64" : "stco", 0, 0, w.Get());
}

Bytes Stbl(const Mp4Track& track, const std::vector<uint64_t>& offsets, bool fragmented)
{
    ByteWriter stsd(true);
    stsd.U32(uint32_t(track.sampleEntries.size()));
    for (const Bytes& entry : track.sampleEntries)
        stsd.Append(entry);
    std::vector<Bytes> children = {Mp4FullBox("stsd", 0, 0, stsd.Get())};
    if (fragmented) {
        const Bytes none = ByteWriter(true).U32(0).Get();
        children.push_back(Mp4FullBox("stts", 0, 0, none));
        children.push_back(Mp4FullBox("stsc", 0, 0, none));
        children.push_back(Mp4FullBox("stsz", 0, 0, ByteWriter(true).U32(0).U32(0).Get()));
        children.push_back(ChunkOffsets({}, track.co64));
    } else {
        children.push_back(Stts(track));
        children.push_back(Ctts(track));
        children.push_back(Stss(track));
        children.push_back(Stsc(track));
        children.push_back(Stsz(track));
        children.push_back(ChunkOffsets(offsets, track.co64));
    }
    children.insert(children.end(), track.extraStbl.begin(), track.extraStbl.end());
    return Mp4Container("stbl", children);
}

// ---------------------------------------------------------------- track and movie headers

Bytes Handler(const std::string& componentType, const std::string& handler, const std::string& name, bool quickTime)
{
    ByteWriter w(true);
    w.Field(quickTime ? componentType : std::string(), 4).Text(handler).Zeros(12);
    if (quickTime)
        w.Int(name.size(), 1).Text(name); // a Pascal string
    else
        w.Text(name).Zeros(1);
    return Mp4FullBox("hdlr", 0, 0, w.Get());
}

Bytes MediaHeader(const std::string& handler)
{
    if (handler == "vide")
        return Mp4FullBox("vmhd", 0, 1, ByteWriter(true).Zeros(8).Get());
    if (handler == "soun")
        return Mp4FullBox("smhd", 0, 0, ByteWriter(true).Zeros(4).Get());
    return Mp4FullBox("nmhd", 0, 0, {});
}

Bytes Minf(const Mp4Movie& movie, const Mp4Track& track, const std::vector<uint64_t>& offsets)
{
    const Bytes url = Mp4FullBox("url ", 0, 1, {});
    const Bytes dref = Mp4FullBox("dref", 0, 0, ByteWriter(true).U32(1).Append(url).Get());
    std::vector<Bytes> children = {track.mediaHeader.value_or(MediaHeader(track.handler))};
    if (movie.quickTime)
        children.push_back(Handler("dhlr", "alis", "DataHandler", true));
    children.push_back(Mp4Container("dinf", {dref}));
    children.push_back(Stbl(track, offsets, movie.fragmentSamples > 0));
    return Mp4Container("minf", children);
}

Bytes Mdhd(const Mp4Track& track, uint64_t duration)
{
    const bool v1 = track.version1 || NeedsWide(duration);
    ByteWriter w(true);
    Time(w, 0, v1);
    Time(w, 0, v1);
    w.U32(track.timescale);
    Time(w, duration, v1);
    w.U16(0x55C4).U16(0); // language "und"
    return Mp4FullBox("mdhd", v1 ? 1 : 0, 0, w.Get());
}

// The track's length in the movie's time scale: its edits, or its media.
uint64_t PresentationDuration(const Mp4Track& track, uint32_t movieTimescale)
{
    if (!track.edits.empty()) {
        uint64_t sum = 0;
        for (const Mp4Edit& edit : track.edits)
            sum += uint64_t(edit.duration);
        return sum;
    }
    if (track.timescale == 0)
        return 0;
    // Whole track seconds and the rest apart, so that no product overflows.
    const uint64_t media = track.MediaDuration();
    const uint64_t rest = media % track.timescale * movieTimescale;
    return media / track.timescale * movieTimescale + (rest + track.timescale - 1) / track.timescale;
}

Bytes Tkhd(const Mp4Track& track, uint32_t trackId, uint64_t duration)
{
    const bool v1 = track.version1 || NeedsWide(duration);
    ByteWriter w(true);
    Time(w, 0, v1);
    Time(w, 0, v1);
    w.U32(trackId).U32(0);
    Time(w, duration, v1);
    w.Zeros(8).U16(0).U16(0).U16(track.handler == "soun" ? 0x0100 : 0).U16(0);
    Matrix(w);
    w.U32(uint32_t(track.width) << 16).U32(uint32_t(track.height) << 16);
    return Mp4FullBox("tkhd", v1 ? 1 : 0, 3, w.Get());
}

Bytes Edts(const Mp4Track& track)
{
    bool v1 = track.version1;
    for (const Mp4Edit& edit : track.edits)
        v1 = v1 || NeedsWide(uint64_t(edit.duration)) || edit.mediaTime > INT32_MAX || edit.mediaTime < INT32_MIN;
    ByteWriter w(true);
    w.U32(uint32_t(track.edits.size()));
    for (const Mp4Edit& edit : track.edits) {
        Time(w, uint64_t(edit.duration), v1);
        Time(w, uint64_t(edit.mediaTime), v1);
        w.U32(uint32_t(edit.rate));
    }
    return Mp4Container("edts", {Mp4FullBox("elst", v1 ? 1 : 0, 0, w.Get())});
}

Bytes Trak(const Mp4Movie& movie, size_t index, const std::vector<uint64_t>& offsets)
{
    const Mp4Track& track = movie.tracks[index];
    const bool fragmented = movie.fragmentSamples > 0;
    const uint64_t mediaDuration = fragmented ? 0 : track.MediaDuration();
    const uint64_t duration = fragmented ? 0 : PresentationDuration(track, movie.timescale);
    const std::string name = track.handler == "vide" ? "VideoHandler" : track.handler == "soun" ? "SoundHandler" : "Handler";
    const Bytes mdia = Mp4Container("mdia", {Mdhd(track, mediaDuration), Handler("mhlr", track.handler, name, movie.quickTime),
                                             Minf(movie, track, offsets)});
    std::vector<Bytes> children = {Tkhd(track, uint32_t(index + 1), duration)};
    if (!track.edits.empty())
        children.push_back(Edts(track));
    children.insert(children.end(), track.extraTrak.begin(), track.extraTrak.end());
    children.push_back(mdia);
    return Mp4Container("trak", children);
}

Bytes Mvhd(const Mp4Movie& movie)
{
    uint64_t duration = 0;
    if (movie.fragmentSamples == 0)
        for (const Mp4Track& track : movie.tracks)
            duration = std::max(duration, PresentationDuration(track, movie.timescale));
    const bool v1 = movie.version1 || NeedsWide(duration);
    ByteWriter w(true);
    Time(w, 0, v1);
    Time(w, 0, v1);
    w.U32(movie.timescale);
    Time(w, duration, v1);
    w.U32(kUnity).U16(0x0100).Zeros(10);
    Matrix(w);
    w.Zeros(24).U32(uint32_t(movie.tracks.size() + 1));
    return Mp4FullBox("mvhd", v1 ? 1 : 0, 0, w.Get());
}

Bytes Mvex(const Mp4Movie& movie)
{
    std::vector<Bytes> trex;
    for (size_t t = 0; t < movie.tracks.size(); ++t)
        trex.push_back(Mp4FullBox("trex", 0, 0, ByteWriter(true).U32(uint32_t(t + 1)).U32(1).U32(0).U32(0).U32(0).Get()));
    return Mp4Container("mvex", trex);
}

// `offsets[t]` are the chunk offsets of track t.
Bytes Moov(const Mp4Movie& movie, const std::vector<std::vector<uint64_t>>& offsets)
{
    std::vector<Bytes> children = {Mvhd(movie)};
    for (size_t t = 0; t < movie.tracks.size(); ++t)
        children.push_back(Trak(movie, t, offsets[t]));
    if (movie.fragmentSamples > 0)
        children.push_back(Mvex(movie));
    children.insert(children.end(), movie.extraMoov.begin(), movie.extraMoov.end());
    return Mp4Container("moov", children);
}

Bytes Ftyp(const Mp4Movie& movie)
{
    if (!movie.brand)
        return {};
    ByteWriter w(true);
    w.Field(*movie.brand, 4).U32(*movie.brand == "qt  " ? 0x20050300 : 0x200);
    for (const std::string& brand : movie.compatibleBrands)
        w.Field(brand, 4);
    return Mp4Box("ftyp", w.Get());
}

// ---------------------------------------------------------------- fragments

// The samples of one track in one fragment.
struct FragmentRun {
    uint32_t track = 0;
    uint64_t firstSample = 0;
    uint64_t baseTime = 0;
    std::vector<Mp4SampleRun> samples; // one per sample
    uint64_t PayloadBytes() const
    {
        uint64_t sum = 0;
        for (const Mp4SampleRun& s : samples)
            sum += s.size;
        return sum;
    }
};

Bytes Traf(const FragmentRun& run, int64_t dataOffset)
{
    const bool anyOffset = std::any_of(run.samples.begin(), run.samples.end(), [](auto& s) { return s.compositionOffset != 0; });
    const bool negative = std::any_of(run.samples.begin(), run.samples.end(), [](auto& s) { return s.compositionOffset < 0; });
    // data offset, and per sample: duration, size, flags (and offset).
    const uint32_t flags = 0x000001 | 0x000100 | 0x000200 | 0x000400 | (anyOffset ? 0x000800 : 0);
    ByteWriter trun(true);
    trun.U32(uint32_t(run.samples.size())).U32(uint32_t(dataOffset));
    for (const Mp4SampleRun& s : run.samples) {
        // A sync sample depends on no other; the rest are non-sync and depend.
        trun.U32(s.duration).U32(s.size).U32(s.sync ? 0x02000000 : 0x01010000);
        if (anyOffset)
            trun.U32(uint32_t(s.compositionOffset));
    }
    const Bytes tfhd = Mp4FullBox("tfhd", 0, 0x020000, ByteWriter(true).U32(run.track + 1).Get()); // base is the moof
    const Bytes tfdt = Mp4FullBox("tfdt", 1, 0, ByteWriter(true).U64(run.baseTime).Get());
    return Mp4Container("traf", {tfhd, tfdt, Mp4FullBox("trun", negative ? 1 : 0, flags, trun.Get())});
}

Bytes Moof(uint32_t sequence, const std::vector<FragmentRun>& runs, uint64_t dataStart)
{
    std::vector<Bytes> children = {Mp4FullBox("mfhd", 0, 0, ByteWriter(true).U32(sequence).Get())};
    uint64_t offset = dataStart;
    for (const FragmentRun& run : runs) {
        children.push_back(Traf(run, int64_t(offset)));
        offset += run.PayloadBytes();
    }
    return Mp4Container("moof", children);
}

// ---------------------------------------------------------------- output

class Sink {
public:
    virtual ~Sink() = default;
    virtual void Put(const Bytes& bytes) = 0;
    // Sample bytes, and samples of a sparse payload.
    virtual void Payload(const Bytes& bytes) { Put(bytes); }
    virtual void Zeros(uint64_t count) = 0;
};

void PutSample(Sink& sink, const Mp4Movie& movie, uint32_t track, uint64_t sample, uint32_t size)
{
    const std::vector<Bytes>& data = movie.tracks[track].data;
    if (movie.payload == Mp4Payload::Sparse)
        sink.Zeros(size);
    else if (sample < data.size())
        sink.Payload(data[sample]);
    else
        sink.Payload(Mp4SamplePattern(track + 1, sample, size));
}

class MemorySink : public Sink {
public:
    void Put(const Bytes& bytes) override { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }
    void Zeros(uint64_t count) override { m_bytes.insert(m_bytes.end(), size_t(count), 0); }
    Bytes Take() { return std::move(m_bytes); }

private:
    Bytes m_bytes;
};

// Writes through a stream; zeros become a seek past them, so that the file
// system leaves a hole.
class FileSink : public Sink {
public:
    explicit FileSink(const std::string& path) : m_path(path), m_out(path, std::ios::binary | std::ios::trunc) {}
    void Put(const Bytes& bytes) override
    {
        SkipHole();
        m_out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        m_position += bytes.size();
    }
    void Zeros(uint64_t count) override { m_hole += count; }
    bool Finish()
    {
        m_out.close();
        if (!m_out)
            return false;
        std::error_code error;
        if (m_hole > 0)
            std::filesystem::resize_file(m_path, m_position + m_hole, error);
        return !error;
    }

private:
    void SkipHole()
    {
        if (m_hole == 0)
            return;
        m_out.seekp(std::streamoff(m_hole), std::ios::cur);
        m_position += m_hole;
        m_hole = 0;
    }

    std::string m_path;
    std::ofstream m_out;
    uint64_t m_position = 0;
    uint64_t m_hole = 0;
};

// Counts bytes up to the first sample.
class HeaderSink : public Sink {
public:
    void Put(const Bytes& bytes) override
    {
        if (!m_payloadSeen)
            m_bytes += bytes.size();
    }
    void Payload(const Bytes&) override { m_payloadSeen = true; }
    void Zeros(uint64_t) override { m_payloadSeen = true; }
    uint64_t Total() const { return m_bytes; }

private:
    uint64_t m_bytes = 0;
    bool m_payloadSeen = false;
};

void EmitPlain(const Mp4Movie& movie, const Bytes& lead, Sink& sink)
{
    const std::vector<Chunk> chunks = InterleavedChunks(movie.tracks);
    const Bytes mdatHeader = Mp4BoxHeader("mdat", PayloadBytes(chunks), movie.mdatSize);
    const auto moovWithBase = [&](uint64_t base) {
        std::vector<std::vector<uint64_t>> offsets(movie.tracks.size());
        for (const Chunk& chunk : chunks)
            offsets[chunk.track].push_back(base + chunk.position);
        return Moov(movie, offsets);
    };
    const uint64_t base = lead.size() + mdatHeader.size();
    Bytes moov = moovWithBase(base);
    if (movie.moovFirst) {
        // The offsets move with the moov's size, which grows when an
        // offset needs 64 bits: settle in a few rounds.
        for (size_t round = 0; round < 3; ++round) {
            Bytes next = moovWithBase(base + moov.size());
            const bool settled = next.size() == moov.size();
            moov = std::move(next);
            if (settled)
                break;
        }
    }
    sink.Put(lead);
    if (movie.moovFirst)
        sink.Put(moov);
    sink.Put(mdatHeader);
    // Each track's chunks come in order: one cursor per track walks on. A
    // sparse chunk is one run of zeros, however many samples it holds.
    std::vector<SampleCursor> cursors;
    for (const Mp4Track& track : movie.tracks)
        cursors.emplace_back(track.samples);
    for (const Chunk& chunk : chunks) {
        if (movie.payload == Mp4Payload::Sparse) {
            sink.Zeros(chunk.bytes);
            continue;
        }
        SampleCursor& cursor = cursors[chunk.track];
        for (uint64_t i = 0; i < chunk.samples; ++i, cursor.Next())
            PutSample(sink, movie, chunk.track, chunk.firstSample + i, cursor.Sample().size);
    }
    if (!movie.moovFirst)
        sink.Put(moov);
}

void EmitFragmented(const Mp4Movie& movie, const Bytes& lead, Sink& sink)
{
    sink.Put(lead);
    sink.Put(Moov(movie, std::vector<std::vector<uint64_t>>(movie.tracks.size())));
    std::vector<SampleCursor> cursors;
    std::vector<uint64_t> nextSample(movie.tracks.size(), 0);
    std::vector<uint64_t> decodeTime(movie.tracks.size(), 0);
    for (const Mp4Track& track : movie.tracks)
        cursors.emplace_back(track.samples);
    for (uint32_t sequence = 1;; ++sequence) {
        std::vector<FragmentRun> runs;
        for (size_t t = 0; t < movie.tracks.size(); ++t) {
            FragmentRun run{uint32_t(t), nextSample[t], decodeTime[t], {}};
            for (; !cursors[t].AtEnd() && run.samples.size() < movie.fragmentSamples; cursors[t].Next()) {
                run.samples.push_back(cursors[t].Sample());
                run.samples.back().count = 1;
                decodeTime[t] += cursors[t].Sample().duration;
            }
            nextSample[t] += run.samples.size();
            if (!run.samples.empty())
                runs.push_back(std::move(run));
        }
        if (runs.empty())
            return;
        uint64_t payload = 0;
        for (const FragmentRun& run : runs)
            payload += run.PayloadBytes();
        const Bytes mdatHeader = Mp4BoxHeader("mdat", payload, movie.mdatSize);
        const size_t moofSize = Moof(sequence, runs, 0).size();
        sink.Put(Moof(sequence, runs, moofSize + mdatHeader.size()));
        sink.Put(mdatHeader);
        for (const FragmentRun& run : runs)
            for (size_t i = 0; i < run.samples.size(); ++i)
                PutSample(sink, movie, run.track, run.firstSample + i, run.samples[i].size);
    }
}

void Emit(const Mp4Movie& movie, Sink& sink)
{
    Bytes lead = Ftyp(movie);
    for (const Bytes& box : movie.extraTopLevel)
        lead.insert(lead.end(), box.begin(), box.end());
    if (movie.fragmentSamples > 0)
        EmitFragmented(movie, lead, sink);
    else
        EmitPlain(movie, lead, sink);
}

} // namespace

// ---------------------------------------------------------------- boxes

Bytes Mp4BoxHeader(const std::string& type, uint64_t payloadBytes, BoxSize size)
{
    ByteWriter w(true);
    if (size == BoxSize::Compact && payloadBytes > UINT32_MAX - 8)
        size = BoxSize::Large;
    switch (size) {
    case BoxSize::Compact:
        return w.U32(uint32_t(payloadBytes + 8)).Field(type, 4).Get();
    case BoxSize::Large:
        return w.U32(1).Field(type, 4).U64(payloadBytes + 16).Get();
    case BoxSize::ToEnd:
        break;
    }
    return w.U32(0).Field(type, 4).Get();
}

Bytes Mp4Box(const std::string& type, const Bytes& payload, BoxSize size)
{
    Bytes box = Mp4BoxHeader(type, payload.size(), size);
    box.insert(box.end(), payload.begin(), payload.end());
    return box;
}

Bytes Mp4FullBox(const std::string& type, uint8_t version, uint32_t flags, const Bytes& payload, BoxSize size)
{
    ByteWriter w(true);
    w.Int(version, 1).Int(flags, 3).Append(payload);
    return Mp4Box(type, w.Get(), size);
}

Bytes Mp4Container(const std::string& type, const std::vector<Bytes>& children, BoxSize size)
{
    return Mp4Box(type, Concat(children), size);
}

Bytes Concat(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

namespace {

uint64_t LoadBigEndian(const Bytes& bytes, size_t at, int width)
{
    uint64_t value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | bytes[at + size_t(i)];
    return value;
}

// The box at `at` of a parent ending at `end`; nullopt when its header or
// size does not fit.
std::optional<Mp4BoxSpan> BoxAt(const Bytes& file, size_t at, size_t end, std::string& type)
{
    if (end - at < 8)
        return std::nullopt;
    Mp4BoxSpan box{at, 8, LoadBigEndian(file, at, 4)};
    type.assign(reinterpret_cast<const char*>(&file[at + 4]), 4);
    if (box.size == 1) {
        if (end - at < 16)
            return std::nullopt;
        box.headerSize = 16;
        box.size = LoadBigEndian(file, at + 8, 8);
    } else if (box.size == 0) {
        box.size = end - at;
    }
    if (box.size < box.headerSize || box.size > end - at)
        return std::nullopt;
    return box;
}

// Bytes between a box's header and its first child.
size_t ChildrenSkip(const std::string& type)
{
    if (type == "stsd" || type == "dref")
        return 8;
    return type == "meta" ? 4 : 0;
}

} // namespace

std::optional<Mp4BoxSpan> FindMp4Box(const Bytes& file, const std::string& path)
{
    size_t begin = 0;
    size_t end = file.size();
    std::optional<Mp4BoxSpan> found;
    for (size_t from = 0; from <= path.size();) {
        const size_t slash = std::min(path.find('/', from), path.size());
        std::string wanted = path.substr(from, slash - from);
        size_t index = 0;
        if (const size_t bracket = wanted.find('['); bracket != std::string::npos) {
            index = size_t(std::stoul(wanted.substr(bracket + 1)));
            wanted.resize(bracket);
        }
        found.reset();
        std::string type;
        for (size_t at = begin; at < end;) {
            const std::optional<Mp4BoxSpan> box = BoxAt(file, at, end, type);
            if (!box)
                return std::nullopt;
            if (type == wanted && index-- == 0) {
                found = box;
                break;
            }
            at += size_t(box->size);
        }
        if (!found)
            return std::nullopt;
        begin = found->PayloadOffset() + ChildrenSkip(wanted);
        end = found->offset + size_t(found->size);
        if (begin > end)
            begin = end;
        from = slash + 1;
    }
    return found;
}

void SetMp4BoxSize(Bytes& file, const Mp4BoxSpan& box, uint64_t size)
{
    if (box.headerSize == 16)
        PutBigEndian(file, box.offset + 8, size, 8);
    else
        PutBigEndian(file, box.offset, size, 4);
}

void PutBigEndian(Bytes& file, size_t offset, uint64_t value, int width)
{
    for (int i = width - 1; i >= 0; --i, value >>= 8)
        file.at(offset + size_t(i)) = uint8_t(value);
}

// ---------------------------------------------------------------- sample entries

Bytes Mp4AvcConfiguration(const Bytes& sps, const Bytes& pps)
{
    ByteWriter w(true);
    // Version 1, profile, compatibility and level from the SPS, 4-byte
    // lengths, one SPS, one PPS.
    w.Int(1, 1).Int(sps.size() > 1 ? sps[1] : 0, 1).Int(sps.size() > 2 ? sps[2] : 0, 1).Int(sps.size() > 3 ? sps[3] : 0, 1);
    w.Int(0xFF, 1).Int(0xE1, 1).U16(uint16_t(sps.size())).Append(sps).Int(1, 1).U16(uint16_t(pps.size())).Append(pps);
    return Mp4Box("avcC", w.Get());
}

namespace {

// An MPEG-4 descriptor: tag, one-byte length (payloads here are short).
Bytes Descriptor(uint8_t tag, const Bytes& payload)
{
    return ByteWriter(true).Int(tag, 1).Int(payload.size(), 1).Append(payload).Get();
}

} // namespace

Bytes Mp4AacEsds(const Bytes& audioSpecificConfig, uint32_t averageBitrate)
{
    ByteWriter decoderConfig(true);
    // MPEG-4 audio, an audio stream, buffer size, maximum and average rate.
    decoderConfig.Int(0x40, 1).Int(0x15, 1).Int(6144, 3).U32(averageBitrate).U32(averageBitrate);
    decoderConfig.Append(Descriptor(0x05, audioSpecificConfig));
    ByteWriter es(true);
    es.U16(1).Int(0, 1).Append(Descriptor(0x04, decoderConfig.Get())).Append(Descriptor(0x06, {0x02}));
    return Mp4FullBox("esds", 0, 0, Descriptor(0x03, es.Get()));
}

Bytes Mp4VisualSampleEntry(const std::string& format, uint16_t width, uint16_t height, const std::vector<Bytes>& children)
{
    ByteWriter w(true);
    w.Zeros(6).U16(1).Zeros(16).U16(width).U16(height).U32(0x00480000).U32(0x00480000).U32(0).U16(1);
    w.Zeros(32).U16(0x18).U16(0xFFFF).Append(Concat(children));
    return Mp4Box(format, w.Get());
}

Bytes Mp4AudioSampleEntry(const std::string& format, uint16_t channels, uint16_t sampleBits, uint32_t rate,
                          const std::vector<Bytes>& children)
{
    ByteWriter w(true);
    w.Zeros(6).U16(1).Zeros(8).U16(channels).U16(sampleBits).U16(0).U16(0).U32(rate << 16).Append(Concat(children));
    return Mp4Box(format, w.Get());
}

Bytes Mp4Avc1080pSampleEntry()
{
    static const Bytes sps = {0x67, 0x64, 0x00, 0x2A, 0xAC, 0xD9, 0x40, 0x78, 0x02, 0x27, 0xE5, 0xC0, 0x44, 0x00,
                              0x00, 0x03, 0x00, 0x04, 0x00, 0x00, 0x03, 0x01, 0xE0, 0x3C, 0x60, 0xC6, 0x58};
    static const Bytes pps = {0x68, 0xEF, 0x8F, 0xCB};
    return Mp4VisualSampleEntry("avc1", 1920, 1080, {Mp4AvcConfiguration(sps, pps)});
}

Bytes Mp4AacSampleEntry(uint16_t channels, uint32_t rate)
{
    static const uint32_t rates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    const uint32_t index = uint32_t(std::find(std::begin(rates), std::end(rates), rate) - std::begin(rates));
    // AAC-LC (object type 2), the rate's index or 15 and the rate itself.
    uint64_t bits = 2;
    int count = 5;
    if (index < std::size(rates)) {
        bits = bits << 4 | index;
        count += 4;
    } else {
        bits = (bits << 4 | 15) << 24 | rate;
        count += 28;
    }
    bits = bits << 4 | channels;
    count += 4 + 3; // then three zero flag bits
    bits <<= 3;
    const int bytes = (count + 7) / 8;
    bits <<= 8 * bytes - count;
    return Mp4AudioSampleEntry("mp4a", channels, 16, rate, {Mp4AacEsds(ByteWriter(true).Int(bits, bytes).Get())});
}

// ---------------------------------------------------------------- tracks and movies

Mp4Track& Mp4Track::Add(uint32_t size, uint32_t duration, int32_t compositionOffset, bool sync)
{
    return Add(Mp4SampleRun{1, size, duration, compositionOffset, sync});
}

Mp4Track& Mp4Track::Add(const Mp4SampleRun& run)
{
    if (!samples.empty()) {
        Mp4SampleRun& last = samples.back();
        if (last.size == run.size && last.duration == run.duration && last.compositionOffset == run.compositionOffset &&
            last.sync == run.sync) {
            last.count += run.count;
            return *this;
        }
    }
    samples.push_back(run);
    return *this;
}

uint64_t Mp4Track::SampleCount() const
{
    uint64_t count = 0;
    for (const Mp4SampleRun& run : samples)
        count += run.count;
    return count;
}

uint64_t Mp4Track::MediaDuration() const
{
    uint64_t duration = 0;
    for (const Mp4SampleRun& run : samples)
        duration += run.count * run.duration;
    return duration;
}

std::vector<Mp4GopPicture> Mp4Gop(uint32_t frames, uint32_t bFrames)
{
    std::vector<Mp4GopPicture> pictures;
    if (frames == 0)
        return pictures;
    const int32_t delay = bFrames > 0 ? 1 : 0;
    const auto add = [&](Mp4Picture kind, uint32_t display) {
        pictures.push_back({kind, int32_t(display) + delay - int32_t(pictures.size())});
    };
    add(Mp4Picture::Sync, 0);
    for (uint32_t previous = 0; previous + 1 < frames;) {
        const uint32_t anchor = std::min(previous + bFrames + 1, frames - 1);
        add(Mp4Picture::Anchor, anchor);
        for (uint32_t b = previous + 1; b < anchor; ++b)
            add(Mp4Picture::B, b);
        previous = anchor;
    }
    return pictures;
}

Bytes Mp4Movie::Build() const
{
    MemorySink sink;
    Emit(*this, sink);
    return sink.Take();
}

bool Mp4Movie::WriteFile(const std::string& path) const
{
    FileSink sink(path);
    Emit(*this, sink);
    return sink.Finish();
}

uint64_t Mp4Movie::HeaderBytes() const
{
    HeaderSink sink;
    Emit(*this, sink);
    return sink.Total();
}

uint8_t Mp4PatternByte(uint32_t trackId, uint64_t sample, uint64_t at)
{
    return uint8_t(trackId * 0x9Du ^ uint32_t(sample * 0x3Bu) ^ uint32_t(at * 7u + (at >> 8)));
}

Bytes Mp4SamplePattern(uint32_t trackId, uint64_t sample, uint32_t size)
{
    Bytes bytes(size);
    for (uint32_t i = 0; i < size; ++i)
        bytes[i] = Mp4PatternByte(trackId, sample, i);
    return bytes;
}

Bytes Mp4RandomAccessIndex(const Bytes& file, uint32_t tracks)
{
    std::vector<uint64_t> fragments;
    for (size_t at = 0; at + 8 <= file.size();) {
        const uint64_t size = uint64_t(file[at]) << 24 | uint64_t(file[at + 1]) << 16 | uint64_t(file[at + 2]) << 8 |
                              file[at + 3];
        if (size < 8)
            break;
        if (std::equal(file.begin() + at + 4, file.begin() + at + 8, "moof"))
            fragments.push_back(at);
        at += size;
    }
    std::vector<Bytes> children;
    for (uint32_t track = 1; track <= tracks; ++track) {
        ByteWriter entries(true);
        entries.U32(track).U32(0).U32(uint32_t(fragments.size())); // 1-byte traf, trun and sample numbers
        for (size_t i = 0; i < fragments.size(); ++i)
            entries.U64(i).U64(fragments[i]).Int(0x010101, 3);
        children.push_back(Mp4FullBox("tfra", 1, 0, entries.Get()));
    }
    const uint64_t mfraSize = Mp4Container("mfra", children).size() + 16;
    children.push_back(Mp4FullBox("mfro", 0, 0, ByteWriter(true).U32(uint32_t(mfraSize)).Get()));
    return Mp4Container("mfra", children);
}

} // namespace VekTest
