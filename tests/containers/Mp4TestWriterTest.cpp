// The test writer of QuickTime and ISO files against ffprobe, so that the
// reader tests built on it start from files an independent reader accepts.
#include "elementary/ExternalStreams.h"
#include "support/Mp4TestWriter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <set>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

using namespace VekTest;

namespace {

Mp4Track Video(uint32_t gops, uint32_t gopFrames, uint32_t bFrames, uint32_t perChunk, const std::string& format = "avc1")
{
    Mp4Track track;
    track.timescale = 15360;
    track.width = 1920;
    track.height = 1080;
    track.samplesPerChunk = perChunk;
    track.sampleEntries = {Mp4Avc1080pSampleEntry()};
    if (format != "avc1")
        std::copy(format.begin(), format.end(), track.sampleEntries[0].begin() + 4);
    const uint32_t frame = 256; // 60 frames a second
    for (uint32_t g = 0; g < gops; ++g)
        for (const Mp4GopPicture& picture : Mp4Gop(gopFrames, bFrames)) {
            const uint32_t size = picture.kind == Mp4Picture::Sync ? 900 : picture.kind == Mp4Picture::Anchor ? 300 : 120;
            track.Add(size + uint32_t(track.SampleCount() % 7), frame, picture.compositionFrames * int32_t(frame),
                      picture.kind == Mp4Picture::Sync);
        }
    return track;
}

Mp4Track Aac(uint32_t samples, uint32_t perChunk)
{
    Mp4Track track;
    track.handler = "soun";
    track.timescale = 48000;
    track.samplesPerChunk = perChunk;
    track.sampleEntries = {Mp4AacSampleEntry(2, 48000)};
    for (uint32_t i = 0; i < samples; ++i)
        track.Add(200 + i * 37 % 90, 1024);
    return track;
}

// With `format` "avc1" ffprobe's H.264 parser sets the key flags from the
// payload; a format it does not know keeps those of the sync table.
Mp4Movie TwoTracks(const std::string& format = "avc1")
{
    Mp4Movie movie;
    movie.tracks = {Video(2, 30, 2, 8, format), Aac(45, 7)};
    return movie;
}

bool SameBytes(const Bytes& expected, const std::string& file, size_t at)
{
    return file.size() - at >= expected.size() &&
           std::equal(expected.begin(), expected.end(), DataOf(file) + at);
}

// The samples of a track, one entry per sample.
std::vector<Mp4SampleRun> Expand(const Mp4Track& track)
{
    std::vector<Mp4SampleRun> samples;
    for (const Mp4SampleRun& run : track.samples)
        samples.insert(samples.end(), run.count, Mp4SampleRun{1, run.size, run.duration, run.compositionOffset, run.sync});
    return samples;
}

struct Packet {
    int64_t pos = 0;
    int64_t size = 0;
    int64_t dts = 0;
    int64_t pts = 0;
    bool key = false;
};

// ffprobe's packets of each stream, in its order.
std::vector<std::vector<Packet>> ProbePackets(const std::string& path)
{
    const std::string json =
        RunCommand("ffprobe -v quiet -show_entries packet=stream_index,pos,size,dts,pts,flags -of json '" + path + "'")
            .value_or("");
    const auto streams = JsonValues(json, "stream_index");
    const auto pos = JsonValues(json, "pos");
    const auto size = JsonValues(json, "size");
    const auto dts = JsonValues(json, "dts");
    const auto pts = JsonValues(json, "pts");
    const auto flags = JsonValues(json, "flags");
    std::vector<std::vector<Packet>> packets;
    if (pos.size() != streams.size() || size.size() != streams.size() || dts.size() != streams.size() ||
        pts.size() != streams.size() || flags.size() != streams.size())
        return packets;
    for (size_t i = 0; i < streams.size(); ++i) {
        const size_t stream = size_t(std::stoul(streams[i]));
        packets.resize(std::max(packets.size(), stream + 1));
        packets[stream].push_back({std::stoll(pos[i]), std::stoll(size[i]), std::stoll(dts[i]), std::stoll(pts[i]),
                                   flags[i].find('K') != std::string::npos});
    }
    return packets;
}

// When the track's first picture is shown, in its time scale: the least
// presentation time of its media, moved by a leading empty edit and the
// media time of the edit after it.
int64_t FirstShown(const Mp4Movie& movie, const Mp4Track& track)
{
    int64_t decode = 0;
    int64_t first = INT64_MAX;
    for (const Mp4SampleRun& sample : Expand(track)) {
        first = std::min(first, decode + sample.compositionOffset);
        decode += sample.duration;
    }
    if (track.edits.size() == 2 && track.edits[0].mediaTime == -1)
        first += track.edits[0].duration * track.timescale / movie.timescale - track.edits[1].mediaTime;
    return first;
}

struct ProbeCase {
    const char* name;
    std::function<void(Mp4Movie&)> change;
};

TEST(Mp4TestWriter, FfprobeReadsEverySampleWhereTheTablesPutIt)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "no ffprobe";
    const ProbeCase cases[] = {
        {"iso, moov first", [](Mp4Movie&) {}},
        {"iso, moov last", [](Mp4Movie& m) { m.moovFirst = false; }},
        {"quicktime without ftyp",
         [](Mp4Movie& m) {
             m.brand.reset();
             m.quickTime = true;
             m.moovFirst = false;
         }},
        {"quicktime brand", [](Mp4Movie& m) {
             m.brand = "qt  ";
             m.compatibleBrands = {"qt  "};
             m.quickTime = true;
         }},
        {"64-bit offsets and mdat size",
         [](Mp4Movie& m) {
             m.mdatSize = BoxSize::Large;
             for (Mp4Track& track : m.tracks)
                 track.co64 = true;
         }},
        {"mdat to the end", [](Mp4Movie& m) { m.mdatSize = BoxSize::ToEnd; }},
        {"version 1 times and free boxes",
         [](Mp4Movie& m) {
             m.version1 = true;
             m.extraTopLevel = {Mp4Box("free", Bytes(13, 0))};
             m.extraMoov = {Mp4Container("udta", {Mp4Box("free", {})})};
             for (Mp4Track& track : m.tracks)
                 track.version1 = true;
         }},
        {"one chunk per sample",
         [](Mp4Movie& m) {
             for (Mp4Track& track : m.tracks)
                 track.samplesPerChunk = 1;
         }},
        {"empty edit before the media",
         [](Mp4Movie& m) {
             // Half a second of nothing, then each track from its first
             // picture shown.
             for (Mp4Track& track : m.tracks) {
                 const int64_t media = int64_t(track.MediaDuration()) * m.timescale / track.timescale;
                 track.edits = {{m.timescale / 2, -1}, {media, track.samples[0].compositionOffset}};
             }
         }},
        {"negative composition offsets",
         [](Mp4Movie& m) {
             for (Mp4SampleRun& run : m.tracks[0].samples)
                 run.compositionOffset -= 256;
         }},
        {"fragments of 16 samples", [](Mp4Movie& m) { m.fragmentSamples = 16; }},
        {"fragments with negative offsets",
         [](Mp4Movie& m) {
             m.fragmentSamples = 16;
             for (Mp4SampleRun& run : m.tracks[0].samples)
                 run.compositionOffset -= 256;
         }},
        {"fragments of 1 sample", [](Mp4Movie& m) { m.fragmentSamples = 1; }},
    };
    for (const ProbeCase& c : cases) {
        SCOPED_TRACE(c.name);
        Mp4Movie movie = TwoTracks("vek0");
        c.change(movie);
        TempDir dir;
        const std::string path = dir.File("movie.mp4");
        ASSERT_TRUE(movie.WriteFile(path));
        const std::string file = ReadFile(path);
        const auto packets = ProbePackets(path);
        ASSERT_EQ(packets.size(), movie.tracks.size());
        for (size_t t = 0; t < movie.tracks.size(); ++t) {
            SCOPED_TRACE("track " + std::to_string(t + 1));
            const std::vector<Mp4SampleRun> samples = Expand(movie.tracks[t]);
            ASSERT_EQ(packets[t].size(), samples.size());
            // ffprobe makes no picture shown before it is decoded: it moves
            // decode times back by the most negative offset, or in fragments
            // (whose decode times it keeps) presentation times forward.
            int64_t shift = 0;
            for (const Mp4SampleRun& sample : samples)
                shift = std::max<int64_t>(shift, -sample.compositionOffset);
            int64_t decodeTime = packets[t][0].dts;
            for (size_t i = 0; i < samples.size(); ++i) {
                const Packet& packet = packets[t][i];
                EXPECT_EQ(packet.size, samples[i].size) << "sample " << i;
                EXPECT_EQ(packet.key, samples[i].sync) << "sample " << i;
                EXPECT_EQ(packet.dts, decodeTime) << "sample " << i;
                EXPECT_EQ(packet.pts - packet.dts, samples[i].compositionOffset + shift) << "sample " << i;
                decodeTime += samples[i].duration;
                ASSERT_LE(uint64_t(packet.pos), file.size());
                EXPECT_TRUE(SameBytes(Mp4SamplePattern(uint32_t(t + 1), i, samples[i].size), file, size_t(packet.pos)))
                    << "sample " << i << " at " << packet.pos;
            }
            int64_t firstShown = INT64_MAX;
            for (const Packet& packet : packets[t])
                firstShown = std::min(firstShown, packet.pts);
            EXPECT_EQ(firstShown, FirstShown(movie, movie.tracks[t]) + (movie.fragmentSamples ? shift : 0));
        }
    }
}

// ffprobe's stream durations, frame counts and codec facts come from the
// headers and sample entries.
TEST(Mp4TestWriter, FfprobeReadsTheHeadersAndSampleEntries)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "no ffprobe";
    const struct {
        uint16_t channels;
        uint32_t rate;
    } cases[] = {{2, 48000}, {1, 44100}, {6, 96000}, {2, 8000}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.channels) + " channels at " + std::to_string(c.rate));
        Mp4Movie movie = TwoTracks();
        Mp4Track& audio = movie.tracks[1];
        audio.timescale = c.rate;
        audio.sampleEntries = {Mp4AacSampleEntry(c.channels, c.rate)};
        TempDir dir;
        const std::string path = dir.File("movie.mp4");
        ASSERT_TRUE(movie.WriteFile(path));
        const std::string json = RunCommand("ffprobe -v quiet -show_streams -of json '" + path + "'").value_or("");
        const auto durations = JsonValues(json, "duration_ts");
        const auto frames = JsonValues(json, "nb_frames");
        ASSERT_EQ(durations.size(), 2u);
        ASSERT_EQ(frames.size(), 2u);
        for (size_t t = 0; t < 2; ++t) {
            EXPECT_EQ(std::stoull(durations[t]), movie.tracks[t].MediaDuration());
            EXPECT_EQ(std::stoull(frames[t]), movie.tracks[t].SampleCount());
        }
        // Without decoding: a decoder fed the pattern payload would
        // overwrite the facts of the sample entries.
        const std::string facts =
            RunCommand("ffprobe -v quiet -analyzeduration 0 -probesize 32 -show_streams -of json '" + path + "'")
                .value_or("");
        EXPECT_EQ(JsonValue(facts, "width"), "1920");
        EXPECT_EQ(JsonValues(facts, "codec_name"), (std::vector<std::string>{"h264", "aac"}));
        EXPECT_EQ(JsonValue(facts, "sample_rate"), std::to_string(c.rate));
        EXPECT_EQ(JsonValue(facts, "channels"), std::to_string(c.channels));
    }
}

TEST(Mp4TestWriter, GroupsOfPicturesShowEveryFrameOnce)
{
    const struct {
        uint32_t frames;
        uint32_t bFrames;
    } cases[] = {{1, 0}, {1, 2}, {2, 2}, {5, 0}, {12, 2}, {60, 2}, {61, 3}, {16, 15}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.frames) + " frames, " + std::to_string(c.bFrames) + " B");
        const std::vector<Mp4GopPicture> gop = Mp4Gop(c.frames, c.bFrames);
        ASSERT_EQ(gop.size(), c.frames);
        EXPECT_EQ(gop[0].kind, Mp4Picture::Sync);
        std::set<int32_t> shown;
        int32_t run = 0;
        for (size_t i = 0; i < gop.size(); ++i) {
            EXPECT_GE(gop[i].compositionFrames, 0);
            shown.insert(int32_t(i) + gop[i].compositionFrames);
            run = gop[i].kind == Mp4Picture::B ? run + 1 : 0;
            EXPECT_LE(run, int32_t(c.bFrames));
            EXPECT_EQ(gop[i].kind == Mp4Picture::Sync, i == 0);
        }
        // Every display slot once, all one frame late when B pictures wait.
        const int32_t delay = c.bFrames > 0 ? 1 : 0;
        EXPECT_EQ(shown.size(), c.frames);
        EXPECT_EQ(*shown.begin(), delay);
        EXPECT_EQ(*shown.rbegin(), int32_t(c.frames) - 1 + delay);
    }
}

TEST(Mp4TestWriter, WritesTheFileItBuildsAndLeavesSparsePayloadAHole)
{
    const struct {
        const char* name;
        Mp4Payload payload;
        bool fragmented;
    } cases[] = {
        {"pattern", Mp4Payload::Pattern, false},
        {"sparse", Mp4Payload::Sparse, false},
        {"sparse fragments", Mp4Payload::Sparse, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Mp4Movie movie = TwoTracks();
        movie.payload = c.payload;
        movie.moovFirst = true;
        movie.fragmentSamples = c.fragmented ? 10 : 0;
        TempDir dir;
        const std::string path = dir.File("movie.mp4");
        ASSERT_TRUE(movie.WriteFile(path));
        const Bytes built = movie.Build();
        const std::string written = ReadFile(path);
        ASSERT_EQ(written.size(), built.size());
        EXPECT_TRUE(SameBytes(built, written, 0));
        EXPECT_LT(movie.HeaderBytes(), built.size());
    }
#if !defined(_WIN32)
    // Three billion samples in three chunks: tables of one entry, and six
    // gigabytes of payload that take no disk.
    Mp4Movie big;
    big.payload = Mp4Payload::Sparse;
    Mp4Track track = Aac(0, 1u << 30);
    track.Add(Mp4SampleRun{3000000000ull, 2, 1024});
    big.tracks = {track};
    TempDir dir;
    const std::string path = dir.File("big.mp4");
    ASSERT_TRUE(big.WriteFile(path));
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(uint64_t(status.st_size), big.HeaderBytes() + 6000000000ull);
    EXPECT_LT(int64_t(status.st_blocks) * 512, int64_t(1) << 20);
    Bytes tables(size_t(big.HeaderBytes()));
    std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(tables.data()), std::streamsize(tables.size()));
    const auto stts = FindMp4Box(tables, "moov/trak/mdia/minf/stbl/stts");
    const auto stsz = FindMp4Box(tables, "moov/trak/mdia/minf/stbl/stsz");
    const auto chunks = FindMp4Box(tables, "moov/trak/mdia/minf/stbl/co64");
    ASSERT_TRUE(stts && stsz && chunks);
    EXPECT_EQ(stts->size, 24u);
    EXPECT_EQ(stsz->size, 20u);
    EXPECT_EQ(chunks->size, 16u + 3 * 8);
#endif
}

// A sample size table of one size for all when it can, of every size
// otherwise; one size of 0 would announce a table that is not there.
TEST(Mp4TestWriter, WritesOneSampleSizeOnlyWhenItIsNotZero)
{
    const struct {
        const char* name;
        std::vector<uint32_t> sizes;
        bool table;
    } cases[] = {
        {"no samples", {}, false},
        {"all of 7 bytes", {7, 7, 7}, false},
        {"all empty", {0, 0, 0}, true},
        {"mixed", {7, 7, 8}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Mp4Movie movie;
        movie.tracks = {Aac(0, 2)};
        for (uint32_t size : c.sizes)
            movie.tracks[0].Add(size, 1024);
        const Bytes file = movie.Build();
        const auto stsz = FindMp4Box(file, "moov/trak/mdia/minf/stbl/stsz");
        ASSERT_TRUE(stsz);
        EXPECT_EQ(stsz->size, 20u + (c.table ? 4 * c.sizes.size() : 0));
    }
}

TEST(Mp4TestWriter, FindsBoxesByPathThroughEverySizeForm)
{
    Mp4Movie movie = TwoTracks();
    movie.tracks[1].co64 = true;
    movie.tracks[1].mediaHeader = Mp4Container("gmhd", {Mp4FullBox("gmin", 0, 0, Bytes(12, 0))});
    movie.mdatSize = BoxSize::Large;
    Bytes file = movie.Build();
    const struct {
        std::string path;
        size_t headerSize;
    } cases[] = {
        {"moov/trak[0]/mdia/mdhd", 8},
        {"moov/trak[1]/mdia/minf/stbl/co64", 8},
        {"moov/trak[1]/mdia/minf/stbl/stsd/mp4a", 8},
        {"moov/trak/mdia/minf/dinf/dref/url ", 8},
        {"moov/trak[0]/mdia/minf/vmhd", 8},
        {"moov/trak[1]/mdia/minf/gmhd/gmin", 8},
        {"mdat", 16},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const auto box = FindMp4Box(file, c.path);
        ASSERT_TRUE(box);
        EXPECT_EQ(box->headerSize, c.headerSize);
        EXPECT_EQ(std::string(file.begin() + long(box->offset) + 4, file.begin() + long(box->offset) + 8),
                  c.path.substr(c.path.rfind('/') + 1));
    }
    EXPECT_FALSE(FindMp4Box(file, "moov/trak[2]"));
    EXPECT_FALSE(FindMp4Box(file, "moov/trak[1]/mdia/minf/smhd"));
    EXPECT_FALSE(FindMp4Box(file, "moov/mdia"));

    // Each track's media header carries its time scale.
    for (size_t t = 0; t < movie.tracks.size(); ++t) {
        const auto mdhd = FindMp4Box(file, "moov/trak[" + std::to_string(t) + "]/mdia/mdhd");
        ASSERT_TRUE(mdhd);
        const size_t at = mdhd->PayloadOffset() + 4 + 8;
        EXPECT_EQ(uint32_t(file[at]) << 24 | uint32_t(file[at + 1]) << 16 | uint32_t(file[at + 2]) << 8 | file[at + 3],
                  movie.tracks[t].timescale);
    }

    // A size that runs past the parent ends the walk there.
    const auto trak = FindMp4Box(file, "moov/trak[0]");
    ASSERT_TRUE(trak);
    SetMp4BoxSize(file, *trak, trak->size + (1u << 20));
    EXPECT_FALSE(FindMp4Box(file, "moov/trak[1]"));
    EXPECT_TRUE(FindMp4Box(file, "moov/mvhd"));
}

} // namespace
