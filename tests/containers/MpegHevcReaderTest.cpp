// The raw HEVC stream reader against libx265 streams, with ffprobe as the
// oracle for the stream's facts, its packets and the decoder's output order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include <vek/Vek.h>

#include "elementary/ExternalStreams.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

namespace Quorvex::Vek {
namespace {

constexpr int EndOfSequence = 36;
using VekTest::JsonValue;
using VekTest::JsonValues;

struct ReadSample {
    int64_t position;
    int32_t length;
    int64_t presentation;
    int32_t type;
    int32_t structure;
    int64_t duration;
    bool key;
    bool exclude;
};

struct ReadStream {
    int begin = 0; // BeginIndex
    int last = 0; // the read that ended the walk
    RObject<CVideoProperties> video;
    std::vector<ReadSample> samples;
};

ReadStream ReadAll(const std::string& file)
{
    ReadStream out;
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), VekTest::DataOf(file)));
    RObject<CString> name(CString::Create("memory.hevc"));
    RObject<CContainerStreamContext> context(stream && name ? CContainerStreamContext::Create(stream, name) : nullptr);
    RObject<CMpegHevcContainerReader> reader(new CMpegHevcContainerReader());
    if (!context || !reader || stream->GetLength() != int64_t(file.size())) {
        out.begin = RESULT_OUT_OF_MEMORY;
        return out;
    }
    if ((out.begin = reader->SetContext(context)) >= 0)
        out.begin = reader->BeginIndex();
    if (out.begin < 0)
        return out;
    out.video = RObject<CVideoProperties>::FromObject(reader->GetVideoProperties(0));
    for (;;) {
        CVideoSample* raw = nullptr;
        out.last = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (out.last < 0 || !sample)
            break;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        if (!range->IsType(CMpegHevcDataReference::Type)) {
            out.last = RESULT_ERROR;
            break;
        }
        out.samples.push_back({range->GetPosition(), range->GetLength(),
                               sample->GetTime() + sample->GetCompositionOffset(), sample->GetPictureType(),
                               sample->GetPictureStructure(), sample->GetDuration(),
                               (sample->GetHint() & CMediaSample::KeyFrameAligned) != 0, sample->IsExcluded()});
        const int data = reader->ReadVideoData(0, sample.Get());
        if (data < 0) {
            out.last = data;
            break;
        }
    }
    return out;
}

int64_t Number(CVideoProperties* video, const char* key)
{
    CByteArray* bytes = video->GetProperty(key);
    if (!bytes || bytes->GetLength() != 4)
        return -1;
    const unsigned char* b = bytes->GetData();
    return int32_t(uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24);
}

std::string Text(CVideoProperties* video, const char* key)
{
    CByteArray* bytes = video->GetProperty(key);
    return bytes && bytes->GetLength() > 0 ? std::string(reinterpret_cast<const char*>(bytes->GetData())) : "";
}

struct Unit {
    size_t start; // of the prefix
    size_t header; // the NAL unit header
    int type;
};

// A stream's units by the slow search.
std::vector<Unit> Units(const std::string& file)
{
    std::vector<Unit> units;
    for (size_t i = 2; i + 1 < file.size(); ++i)
        if (file[i] == 1 && file[i - 1] == 0 && file[i - 2] == 0)
            units.push_back({i >= 3 && file[i - 3] == 0 ? i - 3 : i - 2, i + 1, uint8_t(file[i + 1]) >> 1 & 63});
    return units;
}

// ffprobe cuts a raw stream at each access unit's 00 00 01; the zero byte
// in front of a four-byte start code belongs to the access unit (it is
// what makes the start code four bytes long), so it moves back by one.
// ffprobe also cuts in front of an end of sequence unit, which belongs to
// the access unit before it: such a cut moves past it.
int64_t AccessUnitStart(const std::string& file, int64_t ffprobePosition)
{
    const size_t start = ffprobePosition > 0 && file[size_t(ffprobePosition - 1)] == 0 ? ffprobePosition - 1
                                                                                         : ffprobePosition;
    const size_t header = file.find(std::string("\0\0\1", 3), start) + 3;
    if (header < file.size() && (uint8_t(file[header]) >> 1) == EndOfSequence)
        return int64_t(header + 2);
    return int64_t(start);
}

// The stream with an access unit delimiter in front of every access unit, a
// suffix SEI after every picture and an end of sequence after the picture
// before the second random access point.
std::string WithDelimitersAndEndOfSequence(const std::string& file)
{
    const std::string prefix("\0\0\0\1", 4);
    const std::string delimiter = prefix + std::string("\x46\x01\x50", 3);
    // User data: a 16-byte id and one byte.
    const std::string suffixSei = prefix + std::string("\x50\x01\x05\x11", 4) + std::string(16, '\x42') + "\x07\x80";
    const std::string endOfSequence = prefix + std::string("\x48\x01", 2);
    const std::vector<Unit> units = Units(file);
    std::string out;
    int keys = 0;
    for (size_t i = 0; i < units.size(); ++i) {
        const Unit& unit = units[i];
        const bool firstSlice = unit.type < 32 && (file[unit.header + 2] & 0x80) != 0;
        const bool afterPicture = i > 0 && units[i - 1].type < 32;
        if (unit.type == 32 || (firstSlice && afterPicture)) {
            if (i > 0)
                out += suffixSei;
            if (unit.type == 32 && ++keys == 2)
                out += endOfSequence;
            out += delimiter;
        }
        const size_t end = i + 1 < units.size() ? units[i + 1].start : file.size();
        out += file.substr(unit.start, end - unit.start);
    }
    return out + suffixSei;
}

// `fields`: every picture is a field, which ffprobe counts as a frame.
void ExpectFactsAsFfprobe(const ReadStream& read, const std::string& path, bool fields)
{
    const std::string probe = VekTest::Probe(path, "-show_streams -select_streams v");
    CVideoProperties* video = read.video.Get();
    EXPECT_EQ(std::to_string(video->GetWidth()), JsonValue(probe, "width"));
    EXPECT_EQ(std::to_string(video->GetHeight()), JsonValue(probe, "height"));
    EXPECT_EQ(std::to_string(Number(video, VideoStreamFacts::CodedWidthKey)), JsonValue(probe, "coded_width"));
    EXPECT_EQ(std::to_string(Number(video, VideoStreamFacts::CodedHeightKey)), JsonValue(probe, "coded_height"));
    EXPECT_EQ(Text(video, VideoStreamFacts::ProfileKey), JsonValue(probe, "profile"));
    EXPECT_DOUBLE_EQ(std::atof(Text(video, VideoStreamFacts::LevelKey).c_str()) * 30,
                     std::atof(JsonValue(probe, "level").c_str()));
    EXPECT_EQ(std::to_string(Number(video, VideoStreamFacts::ReorderDepthKey)), JsonValue(probe, "has_b_frames"));
    int64_t numerator = 0, denominator = 0;
    video->GetFrameRate(numerator, denominator);
    EXPECT_DOUBLE_EQ(double(numerator) / double(denominator) * (fields ? 2 : 1),
                     VekTest::Ratio(JsonValue(probe, "r_frame_rate")));
    video->GetPixelAspectRatio(numerator, denominator);
    const std::string sar = JsonValue(probe, "sample_aspect_ratio");
    if (!sar.empty() && sar != "0:1") {
        EXPECT_EQ(std::to_string(numerator) + ":" + std::to_string(denominator), sar);
    }
    // pix_fmt: yuv420p, yuv422p10le ... (chroma format and bit depth).
    const std::string format = JsonValue(probe, "pix_fmt");
    const int64_t chroma = Number(video, VideoStreamFacts::ChromaFormatKey);
    EXPECT_EQ(format.compare(0, 6, chroma == 1 ? "yuv420" : chroma == 2 ? "yuv422" : "yuv444"), 0) << format;
    const size_t depthAt = format.find('p') + 1;
    const int64_t depth = depthAt < format.size() ? std::atoi(format.c_str() + depthAt) : 8;
    EXPECT_EQ(Number(video, VideoStreamFacts::BitDepthKey), depth) << format;
    EXPECT_EQ(Number(video, VideoStreamFacts::ChromaBitDepthKey), depth) << format;
    CByteArray* range = video->GetProperty(VideoStreamFacts::FullRangeKey);
    ASSERT_TRUE(range);
    EXPECT_EQ(range->GetData()[0] != 0, JsonValue(probe, "color_range") == "pc");
    // BT.709 is code 1 in both; ffprobe names the others.
    const bool matrix709 = JsonValue(probe, "color_space") == "bt709";
    const bool transfer709 = JsonValue(probe, "color_transfer") == "bt709";
    EXPECT_EQ(Number(video, VideoStreamFacts::MatrixKey) == 1, matrix709);
    EXPECT_EQ(Number(video, VideoStreamFacts::TransferKey) == 1, transfer709);
    // The decoder configuration record describes the same stream.
    CByteArray* record = video->GetProperty(VideoStreamFacts::DecoderConfigurationKey);
    ASSERT_TRUE(record);
    HevcDecoderConfiguration configuration;
    ASSERT_EQ(HevcDecoderConfiguration::Parse(record->GetData(), size_t(record->GetLength()), configuration), 0);
    EXPECT_EQ(int64_t(configuration.chromaFormatIdc), chroma);
    EXPECT_EQ(int64_t(configuration.bitDepthLuma), depth);
    EXPECT_EQ(configuration.unitCount, 3u);
}

// Every access unit's position, size and key flag as ffprobe's packets.
void ExpectPacketsAsFfprobe(const ReadStream& read, const std::string& file, const std::string& path)
{
    const std::string probe = VekTest::Probe(path, "-select_streams v -show_entries packet=pos,size,flags");
    const std::vector<std::string> positions = JsonValues(probe, "pos");
    const std::vector<std::string> flags = JsonValues(probe, "flags");
    ASSERT_EQ(read.samples.size(), positions.size());
    for (size_t i = 0; i < positions.size(); ++i) {
        SCOPED_TRACE("access unit " + std::to_string(i));
        const int64_t start = AccessUnitStart(file, std::atoll(positions[i].c_str()));
        const int64_t end = i + 1 < positions.size() ? AccessUnitStart(file, std::atoll(positions[i + 1].c_str()))
                                                     : int64_t(file.size());
        EXPECT_EQ(read.samples[i].position, start);
        EXPECT_EQ(read.samples[i].length, end - start);
        EXPECT_EQ(read.samples[i].key, flags[i][0] == 'K');
    }
}

// The pictures a decoder outputs, in its output order, with their types
// and, for fields, their parity.
void ExpectOutputAsFfprobe(const ReadStream& read, const std::string& file, const std::string& path, bool fields)
{
    const std::string probe = VekTest::Probe(path, "-show_entries frame=pkt_pos,pict_type,top_field_first");
    const std::vector<std::string> positions = JsonValues(probe, "pkt_pos");
    const std::vector<std::string> types = JsonValues(probe, "pict_type");
    const std::vector<std::string> topFirst = JsonValues(probe, "top_field_first");
    std::vector<ReadSample> shown;
    for (const ReadSample& sample : read.samples)
        if (!sample.exclude)
            shown.push_back(sample);
    std::stable_sort(shown.begin(), shown.end(),
                     [](const ReadSample& a, const ReadSample& b) { return a.presentation < b.presentation; });
    ASSERT_EQ(shown.size(), positions.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        SCOPED_TRACE("output picture " + std::to_string(i));
        EXPECT_EQ(shown[i].position, AccessUnitStart(file, std::atoll(positions[i].c_str())));
        EXPECT_EQ(std::string(1, "IPB"[shown[i].type]), types[i]);
        const int32_t structure = !fields ? CVideoSample::Frame
                                  : topFirst[i] == "1" ? CVideoSample::UpperField
                                                       : CVideoSample::LowerField;
        EXPECT_EQ(shown[i].structure, structure);
        if (i > 0) {
            EXPECT_LT(shown[i - 1].presentation, shown[i].presentation);
        }
    }
}

struct StreamCase {
    const char* name;
    const char* source;
    const char* options;
    // Cut the stream at its n-th key access unit (0: keep it whole).
    int startAtKey;
    std::string (*edit)(const std::string&);
    bool expectExcluded;
    bool fields = false;
};

const StreamCase StreamCases[] = {
    {"8-bit 4:2:0, open GOP with CRA and RASL, B-pyramid, two slices", "testsrc2=s=320x240:r=25:d=2",
     "-pix_fmt yuv420p -x265-params log-level=error:keyint=12:open-gop=1:bframes=3:b-pyramid=1:slices=2", 0, nullptr, false},
    {"delimiters, suffix SEI, an end of sequence before a CRA: its RASL pictures are dropped",
     "testsrc2=s=320x240:r=25:d=1.5",
     "-pix_fmt yuv420p -x265-params log-level=error:keyint=12:open-gop=1:bframes=3:b-pyramid=1", 0,
     WithDelimitersAndEndOfSequence, true},
    {"starting at a CRA: its RASL pictures are dropped", "testsrc2=s=320x240:r=25:d=2",
     "-pix_fmt yuv420p -x265-params log-level=error:keyint=12:open-gop=1:bframes=3:b-pyramid=1", 1, nullptr, true},
    {"10-bit 4:2:2 cropped 1080p, four slices, wavefronts, full range, BT.709, SAR 16:11",
     "testsrc2=s=1920x1080:r=25:d=0.4",
     "-preset ultrafast -pix_fmt yuv422p10le -x265-params "
     "log-level=error:keyint=5:bframes=2:slices=4:wpp=1:sar=4:colorprim=bt709:transfer=bt709:"
     "colormatrix=bt709:range=full",
     0, nullptr, false},
    {"10-bit 4:2:0 closed GOP at 30000/1001", "testsrc2=s=352x288:r=30000/1001:d=1.5",
     "-pix_fmt yuv420p10le -x265-params log-level=error:keyint=15:open-gop=0:bframes=4:b-adapt=2", 0, nullptr, false},
    {"no B pictures, 4:4:4", "testsrc2=s=256x144:r=50:d=0.6",
     "-pix_fmt yuv444p -x265-params log-level=error:keyint=8:bframes=0", 0, nullptr, false},
    {"fields, top first, with picture timing", "testsrc2=s=320x240:r=25:d=0.6",
     "-pix_fmt yuv420p -x265-params log-level=error:interlace=tff:keyint=6:bframes=2", 0, nullptr, false, true},
};

TEST(MpegHevcContainerReader, ReadsLibx265StreamsAsFfprobeDoes)
{
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx265"))
        GTEST_SKIP() << "ffmpeg with libx265 is not available";
    VekTest::TempDir dir;
    for (const StreamCase& c : StreamCases) {
        SCOPED_TRACE(c.name);
        std::string file = VekTest::Encode(dir, c.source, std::string("-c:v libx265 ") + c.options, "whole.hevc");
        ASSERT_FALSE(file.empty());
        std::string path = dir.File("whole.hevc");
        if (c.startAtKey > 0) {
            const std::string packets = VekTest::Probe(path, "-show_entries packet=pos,flags");
            const std::vector<std::string> positions = JsonValues(packets, "pos");
            const std::vector<std::string> flags = JsonValues(packets, "flags");
            int keys = -1;
            size_t at = 0;
            for (; at < flags.size() && keys < c.startAtKey; ++at)
                keys += flags[at][0] == 'K';
            ASSERT_EQ(keys, c.startAtKey);
            file = file.substr(size_t(AccessUnitStart(file, std::atoll(positions[at - 1].c_str()))));
            path = dir.File("cut.hevc");
            ASSERT_TRUE(VekTest::WriteFile(path, file));
        }
        if (c.edit) {
            file = c.edit(file);
            path = dir.File("edited.hevc");
            ASSERT_TRUE(VekTest::WriteFile(path, file));
        }
        const ReadStream read = ReadAll(file);
        ASSERT_EQ(read.begin, RESULT_OK);
        EXPECT_EQ(read.last, RESULT_OK);
        ExpectFactsAsFfprobe(read, path, c.fields);
        ExpectPacketsAsFfprobe(read, file, path);
        ExpectOutputAsFfprobe(read, file, path, c.fields);
        const bool excluded = std::any_of(read.samples.begin(), read.samples.end(),
                                          [](const ReadSample& s) { return s.exclude; });
        EXPECT_EQ(excluded, c.expectExcluded);
        int64_t numerator = 0, denominator = 0;
        read.video->GetFrameRate(numerator, denominator);
        for (const ReadSample& sample : read.samples)
            EXPECT_EQ(sample.duration * numerator * (c.fields ? 2 : 1), read.video->GetTimeScale() * denominator);
    }
}

TEST(MpegHevcContainerReader, ScoresStreamsByWhereTheirHeadersStart)
{
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx265"))
        GTEST_SKIP() << "ffmpeg with libx265 is not available";
    VekTest::TempDir dir;
    const std::string stream = VekTest::Encode(dir, "testsrc2=s=64x64:r=25:d=0.2",
                                               "-c:v libx265 -x265-params log-level=error", "s.hevc");
    ASSERT_FALSE(stream.empty());
    std::string garbage(1000, '\x5a');
    const std::string wave = VekTest::Encode(dir, "sine=d=0.1", "-c:a pcm_s16le", "s.wav");
    struct Case {
        const char* name;
        std::string bytes;
        int score;
    } cases[] = {
        {"stream", stream, CMpegHevcContainerReader::MatchScore},
        {"after other bytes", garbage + stream, CMpegHevcContainerReader::MatchScoreAfterGarbage},
        {"after zero bytes", std::string(7, '\0') + stream, CMpegHevcContainerReader::MatchScore},
        {"after a unit that cannot be read", std::string("\0\0\1\x80\1", 5) + garbage + stream,
         CMpegHevcContainerReader::MatchScoreAfterGarbage},
        {"parameter sets past the probe window", std::string(CMpegHevcContainerReader::ProbeBytes, 'x') + stream, 0},
        {"a WAV file", wave, 0},
        {"empty", "", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RObject<CMemoryStream> memory(new CMemoryStream(int32_t(c.bytes.size()), VekTest::DataOf(c.bytes)));
        RObject<CMpegHevcContainerReader> reader(new CMpegHevcContainerReader());
        EXPECT_EQ(reader->Validate(memory), c.score);
    }
}

TEST(MpegHevcContainerReader, EndsHostileStreamsWithACodeAndALogLine)
{
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx265"))
        GTEST_SKIP() << "ffmpeg with libx265 is not available";
    VekTest::TempDir dir;
    const std::string stream = VekTest::Encode(dir, "testsrc2=s=128x96:r=25:d=0.4",
                                               "-c:v libx265 -x265-params log-level=error:bframes=2", "s.hevc");
    ASSERT_FALSE(stream.empty());
    const size_t whole = ReadAll(stream).samples.size();
    ASSERT_GT(whole, 4u);
    const std::vector<Unit> units = Units(stream);
    ASSERT_GE(units.size(), 5u);
    ASSERT_EQ(units[1].type, 33); // the sequence parameter set
    const size_t sps = units[1].header;
    const size_t firstSlice = std::find_if(units.begin(), units.end(), [](const Unit& u) { return u.type < 32; })->start;
    // The sequence set's id and chroma format follow 15 bytes of header,
    // sub-layer and profile fields (escapes not counted): "1" (id 0), then
    // chroma format 7.
    size_t idByte = sps;
    for (size_t payload = 0, zeros = 0; payload < 15; ++idByte) {
        const bool escape = zeros >= 2 && stream[idByte] == 3;
        zeros = escape ? 0 : stream[idByte] == 0 ? zeros + 1 : 0;
        payload += escape ? 0 : 1;
    }
    std::string lyingSps = stream;
    lyingSps[idByte] = char(0x88);
    std::mt19937 random(5);
    std::string noPrefixes(100000, 0);
    for (char& c : noPrefixes)
        c = char(1 + random() % 255);

    struct Case {
        const char* name;
        std::string bytes;
        int begin;
        int last;
        size_t samples;
        const char* log;
        size_t tail = 0; // bytes after the last sample
        size_t head = 0; // bytes before the first
    } cases[] = {
        {"cut inside the sequence set", stream.substr(0, sps + 12), RESULT_FORMAT_ERROR, 0, 0, "ends inside it"},
        {"lying chroma format", lyingSps, RESULT_FORMAT_ERROR, 0, 0, "chroma_format_idc 7"},
        {"only parameter sets", stream.substr(0, firstSlice), RESULT_FORMAT_ERROR, 0, 0, "no video, sequence"},
        {"no video parameter set", stream.substr(units[1].start), RESULT_FORMAT_ERROR, 0, 0, "no video, sequence"},
        {"endless zero bytes", std::string(3 << 20, '\0'), RESULT_FORMAT_ERROR, 0, 0, "no video, sequence"},
        {"zero bytes after the stream", stream + std::string(70000, '\0'), 0, 0, whole, nullptr},
        {"bytes without start codes after the stream", stream + noPrefixes, 0, 0, whole, nullptr},
        {"a unit with the forbidden bit after the stream", stream + std::string("\0\0\1\x80\1\2", 6), 0,
         RESULT_FORMAT_ERROR, whole, "NAL unit header 32769", 6},
        {"cut inside the last picture", stream.substr(0, stream.size() - 20), 0, 0, whole, nullptr},
        {"a unit with the forbidden bit before the stream", std::string("\0\0\1\x80\1\2", 6) + stream, 0, 0, whole,
         "NAL unit header 32769", 0, 6},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VekTest::LogCapture log(LogLevel::Warning);
        const ReadStream read = ReadAll(c.bytes);
        EXPECT_EQ(read.begin, c.begin);
        EXPECT_EQ(read.last, c.last);
        EXPECT_EQ(read.samples.size(), c.samples);
        if (!read.samples.empty()) {
            EXPECT_EQ(read.samples.front().position, int64_t(c.head));
            EXPECT_EQ(read.samples.back().position + read.samples.back().length, int64_t(c.bytes.size() - c.tail));
        }
        if (c.log) {
            EXPECT_GE(log.Count(c.log), 1u) << log.Text();
        }
    }
}

TEST(MpegHevcContainerReader, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx265"))
        GTEST_SKIP() << "ffmpeg with libx265 is not available";
#if VEK_FAULT_INJECTION
    VekTest::TempDir dir;
    const std::string stream = VekTest::Encode(dir, "testsrc2=s=64x64:r=25:d=0.3",
                                               "-c:v libx265 -x265-params log-level=error:bframes=2", "s.hevc");
    ASSERT_FALSE(stream.empty());
    const size_t whole = ReadAll(stream).samples.size();
    const int steps = VekTest::WalkAllocationFailures("open, index and read", [&] {
        const ReadStream read = ReadAll(stream);
        if (read.begin < 0)
            return read.begin == RESULT_OUT_OF_MEMORY;
        return read.last == RESULT_OUT_OF_MEMORY || (read.last == 0 && read.samples.size() == whole);
    });
    // A sample, its range and its fetched bytes: the walk reached the samples.
    EXPECT_GT(steps, int(3 * whole));
#endif
}

} // namespace
} // namespace Quorvex::Vek
