// The raw MPEG-1 and MPEG-2 video readers against streams of ffmpeg's
// encoders, with ffprobe as the oracle for every track fact, every access
// unit (position, size, key flag) and the output order; hostile streams
// built header by header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <sstream>

#include <vek/Vek.h>

#include "elementary/ExternalStreams.h"
#include "elementary/MpegVideoStreamBuilder.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using FileBytes = std::vector<uint8_t>;

template <typename Reader>
struct Opened {
    RObject<Reader> reader;
    int result = 0;
};

// The reader over a file held in memory, as a host opens one: a stream
// context, then BeginIndex.
template <typename Reader>
Opened<Reader> OpenReader(const FileBytes& file)
{
    Opened<Reader> opened;
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    RObject<CString> name(CString::Create("memory"));
    RObject<CContainerStreamContext> context(stream && name ? CContainerStreamContext::Create(stream, name) : nullptr);
    opened.reader = RObject<Reader>(new Reader());
    if (!context || !opened.reader || stream->GetLength() != int64_t(file.size())) {
        opened.result = RESULT_OUT_OF_MEMORY;
        return opened;
    }
    opened.result = opened.reader->SetContext(context);
    if (opened.result >= 0)
        opened.result = opened.reader->BeginIndex();
    return opened;
}

// A RIFF WAVE file of 16-bit mono whose data chunk holds `data`.
FileBytes WaveWith(const FileBytes& data)
{
    const auto le = [](FileBytes& out, uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            out.push_back(uint8_t(value >> (8 * i)));
    };
    FileBytes file = {'R', 'I', 'F', 'F'};
    le(file, uint32_t(4 + 24 + 8 + data.size()), 4);
    file.insert(file.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
    le(file, 16, 4);
    le(file, 1, 2);
    le(file, 1, 2);
    le(file, 8000, 4);
    le(file, 16000, 4);
    le(file, 2, 2);
    le(file, 16, 2);
    file.insert(file.end(), {'d', 'a', 't', 'a'});
    le(file, uint32_t(data.size()), 4);
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

struct Sample {
    int64_t position;
    int32_t size;
    bool key, exclude;
    int32_t type, structure;
    int64_t decode, presentation, duration;
};

// Every sample to the end, checking each one's bytes against the file.
std::vector<Sample> ReadAllPictures(CContainerReader* reader, const FileBytes& file, int* last = nullptr)
{
    std::vector<Sample> samples;
    for (;;) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (last)
            *last = result;
        if (result < 0 || !sample)
            break;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        const int32_t hint = sample->GetHint();
        samples.push_back({range->GetPosition(), int32_t(range->GetLength()), (hint & CMediaSample::KeyFrameAligned) != 0,
                           (hint & CMediaSample::Exclude) != 0, sample->GetPictureType(),
                           sample->GetPictureStructure(), sample->GetTime(), sample->GetCompositionTime(),
                           sample->GetDuration()});
        EXPECT_EQ(reader->ReadVideoData(0, sample.Get()), RESULT_OK);
        auto* memory = static_cast<CMemoryDataReference*>(sample->GetDataReference());
        const Sample& s = samples.back();
        if (uint64_t(s.position) + uint64_t(s.size) > file.size() || memory->GetBuffer()->GetLength() != s.size) {
            ADD_FAILURE() << "sample at " << s.position << " of " << s.size << " bytes";
            break;
        }
        EXPECT_EQ(std::memcmp(memory->GetBuffer()->GetData(), file.data() + s.position, size_t(s.size)), 0);
    }
    return samples;
}

template <typename Reader>
int ValidateBytes(const FileBytes& file)
{
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    RObject<Reader> reader(new Reader());
    return reader->Validate(stream);
}

using Row = std::map<std::string, std::string>;

// ffprobe's `entries` of the video stream's packets or frames, a row each.
std::vector<Row> ProbeRows(const std::string& path, const std::string& section, const std::string& entries)
{
    const std::string text = RunCommand("ffprobe -v error -select_streams v -show_" + section + " -show_entries " +
                                        section.substr(0, section.size() - 1) + "=" + entries +
                                        " -of compact=p=0 '" + path + "'")
                                 .value_or("");
    std::vector<Row> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("side_data", 0) == 0 || line.find('=') == std::string::npos)
            continue;
        Row row;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '|');) {
            const size_t equals = cell.find('=');
            if (equals != std::string::npos)
                row[cell.substr(0, equals)] = cell.substr(equals + 1);
        }
        rows.push_back(row);
    }
    return rows;
}

// The highest slice start code in the stream: the coded picture height in
// macroblock rows, found without the library.
int32_t HighestSliceRow(const FileBytes& file)
{
    int32_t highest = 0;
    for (size_t i = 0; i + 3 < file.size(); ++i)
        if (file[i] == 0 && file[i + 1] == 0 && file[i + 2] == 1 && file[i + 3] >= 1 && file[i + 3] <= 0xAF)
            highest = std::max<int32_t>(highest, file[i + 3]);
    return highest;
}

// Sets repeat_first_field (and progressive_frame, which an interlaced
// sequence needs for it) in the coding extension of every `period`-th
// picture, and top_field_first as given: the pulldown flags no encoder at
// hand writes. Decoding does not depend on them.
void SetRepeatedFields(FileBytes& file, int period, bool topFieldFirst)
{
    int picture = 0;
    for (size_t i = 0; i + 8 < file.size(); ++i) {
        if (file[i] != 0 || file[i + 1] != 0 || file[i + 2] != 1 || file[i + 3] != 0xB5 || (file[i + 4] >> 4) != 8)
            continue;
        uint8_t* extension = file.data() + i + 4;
        if (picture++ % period != 0)
            continue;
        extension[3] = uint8_t((extension[3] & ~0x80) | (topFieldFirst ? 0x80 : 0) | 0x02);
        extension[4] |= 0x80;
    }
}

std::string Property(CVideoProperties* video, const char* key)
{
    char text[64] = {};
    const int length = video->GetProperty(key, int32_t(sizeof text - 1), reinterpret_cast<unsigned char*>(text));
    return length > 0 ? std::string(text) : std::string();
}

int32_t PropertyNumber(CVideoProperties* video, const char* key)
{
    unsigned char bytes[4] = {};
    if (video->GetProperty(key, 4, bytes) != 4)
        return -1;
    return int32_t(bytes[0] | bytes[1] << 8 | bytes[2] << 16 | uint32_t(bytes[3]) << 24);
}

std::string FieldOrderName(uint32_t order)
{
    switch (order) {
    case CVideoProperties::FieldOrderProgressive: return "progressive";
    case CVideoProperties::FieldOrderTopFirst: return "tt";
    case CVideoProperties::FieldOrderBottomFirst: return "bb";
    default: return "unknown";
    }
}

// ffprobe's level numbers against the short names the reader writes.
std::string LevelName(const std::string& profile, const std::string& level)
{
    if (profile == "4:2:2")
        return level == "2" ? "HL" : level == "5" ? "ML" : "?";
    static const std::map<std::string, std::string> names = {{"4", "HL"}, {"6", "H-14"}, {"8", "ML"}, {"10", "LL"}};
    const auto found = names.find(level);
    return found == names.end() ? "?" : found->second;
}

void ExpectFactsOfFfprobe(CVideoProperties* video, const std::string& path, const FileBytes& file, bool mpeg2,
                          bool pulldown)
{
    const std::string json = Probe(path, "-show_streams -select_streams v");
    EXPECT_EQ(video->GetWidth(), std::stoi(JsonValue(json, "width")));
    EXPECT_EQ(video->GetHeight(), std::stoi(JsonValue(json, "height")));
    int64_t n = 0, d = 0;
    video->GetPixelAspectRatio(n, d);
    // ffmpeg approximates the MPEG-1 pel shapes with terms up to 255.
    if (mpeg2)
        EXPECT_EQ(std::to_string(n) + ":" + std::to_string(d), JsonValue(json, "sample_aspect_ratio"));
    else
        EXPECT_NEAR(double(n) / double(d), Ratio(JsonValue(json, "sample_aspect_ratio")), 2e-3);
    if (!pulldown) {
        video->GetFrameRate(n, d);
        EXPECT_EQ(std::to_string(n) + "/" + std::to_string(d), JsonValue(json, "r_frame_rate"));
    }
    int32_t horizontal = 0, vertical = 0;
    video->GetSubsampling(horizontal, vertical);
    const std::string pixelFormat = JsonValue(json, "pix_fmt");
    EXPECT_EQ(pixelFormat, horizontal == 2 && vertical == 2   ? "yuv420p"
                           : horizontal == 2 && vertical == 1 ? "yuv422p"
                                                              : "other");
    const int32_t location = PropertyNumber(video, VideoStreamFacts::ChromaLocationKey) - 1;
    EXPECT_EQ(JsonValue(json, "chroma_location"), location == 0 ? "left" : location == 1 ? "center" : "topleft");
    // ffprobe cannot tell the field order of MPEG-1, which has no fields.
    if (mpeg2)
        EXPECT_EQ(FieldOrderName(video->GetFieldOrder()), JsonValue(json, "field_order"));
    else
        EXPECT_EQ(video->GetFieldOrder(), uint32_t(CVideoProperties::FieldOrderProgressive));
    if (mpeg2) {
        const std::string profile = JsonValue(json, "profile");
        EXPECT_EQ(Property(video, VideoStreamFacts::ProfileKey), profile);
        EXPECT_EQ(Property(video, VideoStreamFacts::LevelKey), LevelName(profile, JsonValue(json, "level")));
    }
    // Every macroblock row of an MPEG-2 picture starts a slice; MPEG-1
    // slices may run over several rows.
    if (mpeg2) {
        EXPECT_EQ(PropertyNumber(video, VideoStreamFacts::CodedHeightKey), HighestSliceRow(file) * 16);
    }
}

// Every access unit against ffprobe's packets, and the pictures a decoder
// shows, in order of presentation, against ffprobe's frames.
void ExpectPicturesOfFfprobe(const std::vector<Sample>& samples, const std::string& path, int64_t frameDuration)
{
    const auto packets = ProbeRows(path, "packets", "pos,size,flags");
    ASSERT_EQ(samples.size(), packets.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        Row packet = packets[i];
        EXPECT_EQ(std::to_string(samples[i].position), packet["pos"]) << "access unit " << i;
        EXPECT_EQ(std::to_string(samples[i].size), packet["size"]) << "access unit " << i;
        EXPECT_EQ(samples[i].key, packet["flags"].find('K') == 0) << "access unit " << i;
    }
    std::vector<Sample> shown;
    for (const Sample& s : samples)
        if (!s.exclude)
            shown.push_back(s);
    std::stable_sort(shown.begin(), shown.end(),
                     [](const Sample& a, const Sample& b) { return a.presentation < b.presentation; });
    const auto frames = ProbeRows(path, "frames", "pkt_pos,repeat_pict");
    ASSERT_EQ(shown.size(), frames.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        Row frame = frames[i];
        EXPECT_EQ(std::to_string(shown[i].position), frame["pkt_pos"]) << "frame " << i;
        EXPECT_EQ(shown[i].duration, frameDuration * (2 + std::atoi(frame["repeat_pict"].c_str())) / 2)
            << "frame " << i;
        if (i > 0) {
            EXPECT_EQ(shown[i].presentation, shown[i - 1].presentation + shown[i - 1].duration) << "frame " << i;
        }
    }
}

struct EncodedCase {
    const char* name;
    const char* source;
    const char* options;
    bool mpeg2;
    // Repeated fields set afterwards: every n-th picture (0 none), top first.
    int pulldownPeriod;
    bool pulldownTopFirst;
    // FileBytes of the stream cut off in front, up to its second sequence header.
    bool startAtSecondSequence;
};

template <typename Reader, typename Other>
void CheckEncodedStream(const EncodedCase& c, const TempDir& dir)
{
    SCOPED_TRACE(c.name);
    const std::string name = std::string("in.") + (c.mpeg2 ? "m2v" : "m1v");
    FileBytes file;
    {
        const std::string encoded = Encode(dir, c.source, c.options, name);
        ASSERT_FALSE(encoded.empty()) << "ffmpeg failed: " << c.options;
        file.assign(encoded.begin(), encoded.end());
    }
    if (c.pulldownPeriod > 0)
        SetRepeatedFields(file, c.pulldownPeriod, c.pulldownTopFirst);
    if (c.startAtSecondSequence) {
        const uint8_t sequence[] = {0, 0, 1, 0xB3};
        const auto second = std::search(file.begin() + 4, file.end(), std::begin(sequence), std::end(sequence));
        ASSERT_NE(second, file.end());
        file.erase(file.begin(), second);
    }
    const std::string path = dir.File("case." + name.substr(3));
    ASSERT_TRUE(WriteFile(path, std::string(file.begin(), file.end())));
    EXPECT_EQ(ValidateBytes<Reader>(file), CMpegVideoStreamReader::ExactScore);
    EXPECT_EQ(ValidateBytes<Other>(file), 0);
    auto opened = OpenReader<Reader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    CVideoProperties* video = opened.reader->GetVideoProperties(0);
    ASSERT_NE(video, nullptr);
    EXPECT_EQ(video->GetFormat(), c.mpeg2 ? VideoFormat::MPEG2 : VideoFormat::MPEG1);
    ExpectFactsOfFfprobe(video, path, file, c.mpeg2, c.pulldownPeriod > 0);
    int last = 0;
    const std::vector<Sample> samples = ReadAllPictures(opened.reader, file, &last);
    EXPECT_EQ(last, RESULT_OK);
    int64_t n = 0, d = 0;
    video->GetFrameRate(n, d);
    ASSERT_EQ(video->GetTimeScale(), 2 * n);
    ExpectPicturesOfFfprobe(samples, path, 2 * d);
    const bool anyB = std::any_of(samples.begin(), samples.end(),
                                  [](const Sample& s) { return s.type == CVideoSample::B; });
    EXPECT_EQ(PropertyNumber(video, VideoStreamFacts::ReorderDepthKey), anyB ? 1 : 0);
}

const char* const Small = "testsrc=s=352x288:r=25:d=1.2";

TEST(MpegVideoReader, Mpeg2StreamsMatchFfprobe)
{
    if (!HasFfmpeg() || !HasEncoder("mpeg2video"))
        GTEST_SKIP() << "ffmpeg with mpeg2video is not available";
    const EncodedCase cases[] = {
        {"progressive, B pictures, open GOPs", Small, "-c:v mpeg2video -bf 2 -g 12", true, 0, false, false},
        {"closed GOPs", Small, "-c:v mpeg2video -bf 2 -g 9 -flags +cgop -sc_threshold 1000000000", true, 0, false, false},
        {"no B pictures", Small, "-c:v mpeg2video -bf 0 -g 10", true, 0, false, false},
        {"intra only", Small, "-c:v mpeg2video -g 1", true, 0, false, false},
        {"interlaced, top field first", Small, "-c:v mpeg2video -flags +ilme+ildct -top 1 -bf 2 -g 12", true, 0,
         false, false},
        {"interlaced, bottom field first", Small, "-c:v mpeg2video -flags +ilme+ildct -top 0 -bf 1 -g 8", true, 0,
         false, false},
        {"4:2:2 profile", Small, "-c:v mpeg2video -pix_fmt yuv422p -bf 2 -g 12", true, 0, false, false},
        {"non-square samples", Small, "-vf setsar=16/15 -c:v mpeg2video -bf 2 -g 12", true, 0, false, false},
        {"1080i, coded 1088 lines", "testsrc=s=1920x1080:r=30000/1001:d=0.25",
         "-c:v mpeg2video -flags +ilme+ildct -top 1 -bf 2 -g 6 -q:v 20", true, 0, false, false},
        {"constant bit rate with stuffing", Small,
         "-c:v mpeg2video -b:v 3M -minrate 3M -maxrate 3M -bufsize 1M -bf 2", true, 0, false, false},
        {"repeated fields in an interlaced sequence", "testsrc=s=352x240:r=30000/1001:d=1",
         "-c:v mpeg2video -flags +ilme+ildct -bf 2 -g 12", true, 2, true, false},
        {"repeated frames in a progressive sequence", "testsrc=s=352x240:r=24000/1001:d=1",
         "-c:v mpeg2video -bf 2 -g 12", true, 3, true, false},
        {"repeated frame, bottom first", "testsrc=s=352x240:r=24000/1001:d=1", "-c:v mpeg2video -bf 0 -g 12", true,
         2, false, false},
        {"starting at an open GOP", Small, "-c:v mpeg2video -bf 2 -g 6", true, 0, false, true},
    };
    TempDir dir;
    for (const EncodedCase& c : cases)
        CheckEncodedStream<CMpeg2VideoContainerReader, CMpeg1VideoContainerReader>(c, dir);
}

TEST(MpegVideoReader, Mpeg1StreamsMatchFfprobe)
{
    if (!HasFfmpeg() || !HasEncoder("mpeg1video"))
        GTEST_SKIP() << "ffmpeg with mpeg1video is not available";
    const EncodedCase cases[] = {
        {"B pictures", Small, "-c:v mpeg1video -bf 2 -g 12", false, 0, false, false},
        {"no B pictures", Small, "-c:v mpeg1video -bf 0 -g 5", false, 0, false, false},
        {"non-square samples", "testsrc=s=352x240:r=30000/1001:d=1",
         "-vf setsar=10000/11575 -c:v mpeg1video -bf 1", false, 0, false, false},
    };
    TempDir dir;
    for (const EncodedCase& c : cases)
        CheckEncodedStream<CMpeg1VideoContainerReader, CMpeg2VideoContainerReader>(c, dir);
}

// Field pictures, written header by header (no encoder at hand writes
// them): ffprobe's parser takes each pair as one packet too.
TEST(MpegVideoReader, FieldPicturePairsMatchFfprobePackets)
{
    MpegVideoStreamBuilder b;
    b.SequenceHeader(720, 576, false);
    for (int gop = 0; gop < 3; ++gop) {
        b.Gop(gop > 0);
        b.Picture(MpegVideoStreamBuilder::I, 2, MpegVideoStreamBuilder::TopField);
        b.Picture(MpegVideoStreamBuilder::P, 2, MpegVideoStreamBuilder::BottomField);
        b.Picture(MpegVideoStreamBuilder::B, 0, MpegVideoStreamBuilder::TopField);
        b.Picture(MpegVideoStreamBuilder::B, 0, MpegVideoStreamBuilder::BottomField);
        b.Picture(MpegVideoStreamBuilder::B, 1, MpegVideoStreamBuilder::TopField);
        b.Picture(MpegVideoStreamBuilder::B, 1, MpegVideoStreamBuilder::BottomField);
        b.Picture(MpegVideoStreamBuilder::P, 3, MpegVideoStreamBuilder::TopField);
        b.Picture(MpegVideoStreamBuilder::P, 3, MpegVideoStreamBuilder::BottomField);
    }
    b.SequenceEnd();
    const FileBytes& file = b.bytes;
    auto opened = OpenReader<CMpeg2VideoContainerReader>(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    EXPECT_EQ(opened.reader->GetVideoProperties(0)->GetFieldOrder(), uint32_t(CVideoProperties::FieldOrderTopFirst));
    const std::vector<Sample> samples = ReadAllPictures(opened.reader, file);
    ASSERT_EQ(samples.size(), 12u);
    // Shown: B B I P per group, every picture a whole frame.
    const int32_t frame = 2;
    for (size_t i = 0; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i].structure, CVideoSample::Frame);
        EXPECT_EQ(samples[i].duration, frame);
        EXPECT_EQ(samples[i].exclude, i == 1 || i == 2) << i; // the first group is open
    }
    EXPECT_LT(samples[1].presentation, samples[0].presentation);
    EXPECT_LT(samples[0].presentation, samples[3].presentation);
    if (!HasFfmpeg())
        GTEST_SKIP() << "ffprobe is not available";
    TempDir dir;
    const std::string path = dir.File("fields.m2v");
    ASSERT_TRUE(WriteFile(path, std::string(file.begin(), file.end())));
    const auto packets = ProbeRows(path, "packets", "pos,size,flags");
    ASSERT_EQ(packets.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        Row packet = packets[i];
        EXPECT_EQ(std::to_string(samples[i].position), packet["pos"]) << i;
        EXPECT_EQ(std::to_string(samples[i].size), packet["size"]) << i;
        EXPECT_EQ(samples[i].key, packet["flags"].find('K') == 0) << i;
    }
}

FileBytes SmallMpeg2Stream(int pictures)
{
    MpegVideoStreamBuilder b;
    b.SequenceHeader(352, 288);
    b.Gop(true);
    for (int i = 0; i < pictures; ++i)
        b.Picture(i == 0 ? MpegVideoStreamBuilder::I : MpegVideoStreamBuilder::P, uint32_t(i));
    return b.bytes;
}

TEST(MpegVideoReader, ValidateScoresWhereTheSequenceStarts)
{
    const FileBytes stream = SmallMpeg2Stream(3);
    FileBytes zeros(5, 0);
    zeros.insert(zeros.end(), stream.begin(), stream.end());
    FileBytes garbage = {'J', 'U', 'N', 'K', 0x41};
    garbage.insert(garbage.end(), stream.begin(), stream.end());
    MpegVideoStreamBuilder mpeg1;
    mpeg1.mpeg2 = false;
    mpeg1.SequenceHeader(352, 288);
    mpeg1.Picture(MpegVideoStreamBuilder::I, 0);
    const struct {
        const char* name;
        FileBytes file;
        int mpeg1, mpeg2;
    } cases[] = {
        {"MPEG-2 at the start", stream, 0, CMpegVideoStreamReader::ExactScore},
        {"after zero bytes", zeros, 0, CMpegVideoStreamReader::ExactScore},
        {"after garbage", garbage, 0, CMpegVideoStreamReader::GarbageScore},
        {"MPEG-1", mpeg1.bytes, CMpegVideoStreamReader::ExactScore, 0},
        {"sequence header only", FileBytes(stream.begin(), stream.begin() + 22), 0, 0},
        {"empty", FileBytes(), 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ValidateBytes<CMpeg1VideoContainerReader>(c.file), c.mpeg1) << c.name;
        EXPECT_EQ(ValidateBytes<CMpeg2VideoContainerReader>(c.file), c.mpeg2) << c.name;
    }
    auto opened = OpenReader<CMpeg2VideoContainerReader>(garbage);
    ASSERT_EQ(opened.result, RESULT_OK);
    const std::vector<Sample> samples = ReadAllPictures(opened.reader, garbage);
    ASSERT_EQ(samples.size(), 3u);
    EXPECT_EQ(samples[0].position, 5);
}

TEST(MpegVideoReader, ProbingPrefersAContainerSignatureToAStrayStartCode)
{
    static const bool registered = [] {
        return ContainerReaderInventory::AddMpeg1VideoContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddMpeg2VideoContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddWavContainerReader("tests") == RESULT_OK;
    }();
    ASSERT_TRUE(registered);
    const FileBytes stream = SmallMpeg2Stream(2);
    const FileBytes wave = WaveWith(stream);
    const std::pair<FileBytes, uint32_t> cases[] = {{stream, CMpeg2VideoContainerReader::Type},
                                                {wave, CWavContainerReader::Type}};
    for (const auto& [file, type] : cases) {
        RObject<CMemoryStream> memory(new CMemoryStream(int32_t(file.size()), file.data()));
        RObject<CContainerReader> reader(CContainerReaderInventory::Create(memory));
        EXPECT_EQ(reader ? reader->GetType() : 0u, type);
    }
}

// Hostile streams: refused at BeginIndex, or handed out up to the damage,
// with a log line naming the field.
TEST(MpegVideoReader, HostileStreamsEndInACodeWithALogLine)
{
    const FileBytes valid = SmallMpeg2Stream(4);
    FileBytes badFrameRate = valid;
    badFrameRate[7] = uint8_t(badFrameRate[7] & 0xF0); // frame_rate_code 0
    FileBytes onlySequences;
    for (int i = 0; i < 50; ++i)
        onlySequences.insert(onlySequences.end(), valid.begin(), valid.begin() + 22);
    MpegVideoStreamBuilder mpeg1;
    mpeg1.mpeg2 = false;
    mpeg1.SequenceHeader(352, 288);
    mpeg1.Picture(MpegVideoStreamBuilder::I, 0);
    FileBytes trailingGarbage = valid;
    for (int i = 0; i < 3000; ++i)
        trailingGarbage.push_back(uint8_t(1 + i % 250));
    FileBytes badPicture = valid;
    badPicture.insert(badPicture.end(), {0, 0, 1, 0, 0x00, 0x3F, 0xFF, 0xF8}); // picture_coding_type 7
    const struct {
        const char* name;
        FileBytes file;
        int opened, last;
        size_t pictures;
        const char* logged;
    } cases[] = {
        {"cut sequence header", FileBytes(valid.begin(), valid.begin() + 9), RESULT_FORMAT_ERROR, 0, 0,
         "end inside the header"},
        {"frame_rate_code 0", badFrameRate, RESULT_FORMAT_ERROR, 0, 0, "frame_rate_code 0"},
        {"endless zero bytes", FileBytes(3 << 20, 0), RESULT_FORMAT_ERROR, 0, 0, "no sequence header"},
        {"sequence headers only", onlySequences, RESULT_FORMAT_ERROR, 0, 0, "no picture header"},
        {"MPEG-1 given to the MPEG-2 reader", mpeg1.bytes, RESULT_ERROR, 0, 0, "lacks a sequence extension"},
        {"garbage after the last picture", trailingGarbage, RESULT_OK, RESULT_OK, 4, nullptr},
        {"a picture header that does not parse", badPicture, RESULT_OK, RESULT_FORMAT_ERROR, 4,
         "picture_coding_type 7"},
        {"cut inside a slice", FileBytes(valid.begin(), valid.end() - 3), RESULT_OK, RESULT_OK, 4, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log(1);
        auto opened = OpenReader<CMpeg2VideoContainerReader>(c.file);
        ASSERT_EQ(opened.result, c.opened);
        EXPECT_EQ(opened.reader->GetVideoMediaCount(), c.opened < 0 ? 0 : 1);
        if (c.opened == RESULT_OK) {
            int last = 0;
            const std::vector<Sample> samples = ReadAllPictures(opened.reader, c.file, &last);
            EXPECT_EQ(last, c.last);
            ASSERT_EQ(samples.size(), c.pictures);
            const int64_t damaged = c.last < 0 ? 8 : 0;
            EXPECT_EQ(samples.back().position + samples.back().size, int64_t(c.file.size()) - damaged);
        }
        if (c.logged) {
            EXPECT_GE(log.Count(c.logged), 1u) << log.Text();
        }
    }
}

#if VEK_FAULT_INJECTION
TEST(MpegVideoReader, AllocationFailuresEndInOutOfMemory)
{
    MpegVideoStreamBuilder b;
    b.SequenceHeader(720, 576, false);
    b.Gop(false);
    b.Picture(MpegVideoStreamBuilder::I, 1, MpegVideoStreamBuilder::TopField);
    b.Picture(MpegVideoStreamBuilder::I, 1, MpegVideoStreamBuilder::BottomField);
    b.Picture(MpegVideoStreamBuilder::B, 0);
    b.Picture(MpegVideoStreamBuilder::P, 2);
    const FileBytes file = b.bytes;
    WalkAllocationFailures("CMpeg2VideoContainerReader", [&] {
        auto opened = OpenReader<CMpeg2VideoContainerReader>(file);
        if (opened.result < 0)
            return opened.result == RESULT_OUT_OF_MEMORY &&
                   (!opened.reader || opened.reader->GetVideoMediaCount() == 0);
        for (;;) {
            CVideoSample* raw = nullptr;
            int result = opened.reader->ReadVideoSample(0, raw);
            RObject<CVideoSample> sample(raw);
            if (result >= 0 && sample)
                result = opened.reader->ReadVideoData(0, sample.Get());
            if (result < 0 || !sample)
                return result == RESULT_OK || result == RESULT_OUT_OF_MEMORY;
        }
    });
}
#endif

} // namespace
