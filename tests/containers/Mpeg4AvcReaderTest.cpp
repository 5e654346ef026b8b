// The raw H.264 reader against streams libx264 writes at test time, with
// ffprobe as the oracle for the stream's description, every access unit's
// place, size and key flag, and the output order; and against hostile
// streams built here.
#include <gtest/gtest.h>

#include "elementary/BitWriter.h"
#include "elementary/ExternalStreams.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <vek/Vek.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <numeric>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

using Reader = CMpeg4AvcContainerReader;
using Bytes = std::vector<uint8_t>;

struct Opened {
    RObject<Reader> reader;
    int result = 0;
};

// The reader over a file in memory, behind a stream context, indexed.
Opened OpenReader(const Bytes& file)
{
    Opened opened;
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    RObject<CString> name(CString::Create("memory.h264"));
    RObject<CContainerStreamContext> context(stream && name ? CContainerStreamContext::Create(stream, name) : nullptr);
    opened.reader = RObject<Reader>(new Reader());
    // A memory stream whose buffer could not be had is empty.
    if (!context || !opened.reader || stream->GetLength() != int64_t(file.size())) {
        opened.result = RESULT_OUT_OF_MEMORY;
        return opened;
    }
    opened.result = opened.reader->SetContext(context);
    if (opened.result >= 0)
        opened.result = opened.reader->BeginIndex();
    return opened;
}

struct Picture {
    int64_t position;
    int32_t size;
    bool key;
    int32_t type;
    int32_t structure;
    int64_t time;
    int64_t shown; // presentation time
    int64_t duration;
};

// Every picture in decode order, each one's bytes checked against the file.
std::vector<Picture> ReadPictures(CContainerReader* reader, const Bytes& file, int* last = nullptr)
{
    std::vector<Picture> pictures;
    for (;;) {
        CVideoSample* raw = nullptr;
        const int result = reader->ReadVideoSample(0, raw);
        RObject<CVideoSample> sample(raw);
        if (last)
            *last = result;
        if (result < 0 || !sample)
            break;
        auto* range = static_cast<CContainerDataReference*>(sample->GetDataReference());
        EXPECT_TRUE(range->IsType(CMpeg4AvcDataReference::Type));
        EXPECT_EQ(static_cast<CMpeg4AvcDataReference*>(range)->GetNalLengthSize(), CMpeg4AvcDataReference::StartCodes);
        pictures.push_back({range->GetPosition(), range->GetLength(),
                            (sample->GetHint() & CMediaSample::KeyFrameAligned) != 0, sample->GetPictureType(),
                            sample->GetPictureStructure(), sample->GetTime(),
                            sample->GetTime() + sample->GetCompositionOffset(), sample->GetDuration()});
        const Picture& picture = pictures.back();
        EXPECT_EQ(reader->ReadVideoData(0, sample.Get()), RESULT_OK);
        CByteArray* bytes = static_cast<CMemoryDataReference*>(sample->GetDataReference())->GetBuffer();
        EXPECT_LE(uint64_t(picture.position) + uint64_t(picture.size), file.size());
        if (bytes->GetLength() == picture.size && uint64_t(picture.position) + picture.size <= file.size()) {
            EXPECT_EQ(std::memcmp(bytes->GetData(), file.data() + picture.position, size_t(picture.size)), 0);
        }
    }
    return pictures;
}

// The NAL unit types in an access unit's bytes, found byte by byte.
std::vector<int> NalTypes(const Bytes& file, const Picture& picture)
{
    std::vector<int> types;
    const size_t end = size_t(picture.position) + size_t(picture.size);
    for (size_t i = size_t(picture.position); i + 3 < end; ++i)
        if (file[i] == 0 && file[i + 1] == 0 && file[i + 2] == 1)
            types.push_back(file[i + 3] & 31);
    return types;
}

Bytes ToBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

std::string PropertyText(CVideoProperties* video, const char* key)
{
    unsigned char text[64] = {};
    const int32_t length = video->GetProperty(key, sizeof text - 1, text);
    return length > 0 ? std::string(reinterpret_cast<char*>(text)) : std::string();
}

int64_t PropertyNumber(CVideoProperties* video, const char* key)
{
    unsigned char bytes[4] = {};
    if (video->GetProperty(key, 4, bytes) != 4)
        return -1;
    return int64_t(int32_t(uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8 | uint32_t(bytes[2]) << 16 |
                           uint32_t(bytes[3]) << 24));
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

std::string PixelFormat(int64_t chroma, int64_t depth, bool fullRange)
{
    const char* layout = chroma == 1 ? "420" : chroma == 2 ? "422" : chroma == 3 ? "444" : "?";
    if (chroma == 0)
        return depth > 8 ? "gray" + std::to_string(depth) + "le" : "gray";
    return std::string("yuv") + (fullRange && depth == 8 ? "j" : "") + layout + "p" +
           (depth > 8 ? std::to_string(depth) + "le" : "");
}

std::string Reduced(int64_t numerator, int64_t denominator, const char* separator)
{
    const int64_t g = std::gcd(numerator, denominator);
    return g == 0 ? "" : std::to_string(numerator / g) + separator + std::to_string(denominator / g);
}

std::string ColourName(int64_t code)
{
    switch (code) {
    case 1: return "bt709";
    case 5: return "bt470bg";
    case 6: return "smpte170m";
    default: return "code " + std::to_string(code);
    }
}

struct StreamCase {
    const char* name;
    const char* arguments;
    // What the case must exercise, so a changed encoder default cannot
    // make it pass without covering it.
    bool interlaced;
    bool severalSlices;
    bool openGop;
    int minReorder;
};

const StreamCase StreamCases[] = {
    {"progressive 1080p cropped, delimiters", "-f lavfi -i testsrc2=size=1920x1080:rate=25 -frames:v 6 -c:v libx264 "
     "-preset ultrafast -x264-params aud=1 -color_primaries bt709 -color_trc bt709 -colorspace bt709",
     false, false, false, 0},
    {"MBAFF top field first", "-f lavfi -i testsrc2=size=720x576:rate=25 -frames:v 12 -c:v libx264 -preset veryfast "
     "-flags +ildct -x264-params interlaced=1:tff=1", true, false, false, 1},
    {"MBAFF bottom field first", "-f lavfi -i testsrc2=size=720x480:rate=30000/1001 -frames:v 12 -c:v libx264 "
     "-preset veryfast -flags +ildct -x264-params interlaced=1:bff=1", true, false, false, 1},
    {"PAL 16:11 full range, no B", "-f lavfi -i testsrc2=size=720x576:rate=25 -frames:v 10 -vf setsar=16/11 "
     "-c:v libx264 -preset veryfast -bf 0 -color_range pc -colorspace smpte170m -color_primaries smpte170m "
     "-color_trc smpte170m", false, false, false, 0},
    {"B-pyramid, closed GOP of 10", "-f lavfi -i testsrc2=size=320x240:rate=24 -frames:v 45 -c:v libx264 -preset medium "
     "-bf 3 -x264-params b-pyramid=normal:b-adapt=0:keyint=10:min-keyint=10:scenecut=0", false, false, false, 2},
    {"open GOP", "-f lavfi -i testsrc2=size=320x240:rate=25 -frames:v 40 -c:v libx264 -preset veryfast -bf 3 "
     "-x264-params open-gop=1:keyint=12:min-keyint=12:scenecut=0:b-adapt=0", false, false, true, 1},
    {"four slices baseline", "-f lavfi -i testsrc2=size=320x240:rate=25 -frames:v 12 -c:v libx264 -preset veryfast "
     "-profile:v baseline -slices 4", false, true, false, 0},
    {"High 10", "-f lavfi -i testsrc2=size=352x288:rate=50 -frames:v 10 -pix_fmt yuv420p10le -c:v libx264 "
     "-preset veryfast", false, false, false, 0},
    {"High 4:2:2 10-bit interlaced", "-f lavfi -i testsrc2=size=352x288:rate=25 -frames:v 10 -pix_fmt yuv422p10le "
     "-c:v libx264 -preset veryfast -flags +ildct -x264-params interlaced=1", true, false, false, 0},
};

void PrintTo(const StreamCase& c, std::ostream* out)
{
    *out << c.name;
}

class Mpeg4AvcStream : public ::testing::TestWithParam<StreamCase> {};

TEST_P(Mpeg4AvcStream, MatchesFfprobe)
{
    const StreamCase& c = GetParam();
    if (!VekTest::HasFfmpeg() || !VekTest::HasEncoder("libx264"))
        GTEST_SKIP() << "ffmpeg with libx264 is not available";
    VekTest::TempDir dir;
    const std::string path = dir.File("stream.h264");
    const std::string command = std::string("ffmpeg -v error -nostdin -y ") + c.arguments + " '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const Bytes file = ToBytes(VekTest::ReadFile(path));
    auto opened = OpenReader(file);
    ASSERT_EQ(opened.result, RESULT_OK);
    CVideoProperties* video = opened.reader->GetVideoProperties(0);
    ASSERT_NE(video, nullptr);

    const std::string streams = VekTest::Probe(path, "-select_streams v -show_streams");
    auto probed = [&](const char* key) { return VekTest::JsonValue(streams, key); };
    EXPECT_EQ(std::to_string(video->GetWidth()), probed("width"));
    EXPECT_EQ(std::to_string(video->GetHeight()), probed("height"));
    EXPECT_EQ(PropertyText(video, VideoStreamFacts::ProfileKey), probed("profile"));
    unsigned char levelIdc = 0;
    ASSERT_EQ(video->GetProperty(VideoProperty::H264Level, 1, &levelIdc), 1);
    EXPECT_EQ(std::to_string(levelIdc), probed("level"));
    std::string level = PropertyText(video, VideoStreamFacts::LevelKey);
    level.erase(std::remove(level.begin(), level.end(), '.'), level.end());
    EXPECT_EQ(std::to_string(std::stoi(level)), probed("level"));
    // The range is stated only by streams that describe their signal.
    unsigned char range = 0;
    const bool fullRange = video->GetProperty(VideoStreamFacts::FullRangeKey, 1, &range) == 1 && range != 0;
    EXPECT_EQ(PixelFormat(PropertyNumber(video, VideoStreamFacts::ChromaFormatKey),
                          PropertyNumber(video, VideoStreamFacts::BitDepthKey), fullRange),
              probed("pix_fmt"));
    int64_t numerator = 0, denominator = 0;
    video->GetFrameRate(numerator, denominator);
    EXPECT_EQ(Reduced(numerator, denominator, "/"), probed("r_frame_rate"));
    video->GetPixelAspectRatio(numerator, denominator);
    if (numerator != 0) {
        EXPECT_EQ(Reduced(numerator, denominator, ":"), probed("sample_aspect_ratio"));
    }
    EXPECT_EQ(FieldOrderName(video->GetFieldOrder()), probed("field_order"));
    EXPECT_EQ(c.interlaced, video->GetFieldOrder() != CVideoProperties::FieldOrderProgressive);
    if (PropertyNumber(video, VideoStreamFacts::ColourPrimariesKey) >= 0) {
        EXPECT_EQ(ColourName(PropertyNumber(video, VideoStreamFacts::ColourPrimariesKey)), probed("color_primaries"));
        EXPECT_EQ(ColourName(PropertyNumber(video, VideoStreamFacts::TransferKey)), probed("color_transfer"));
        EXPECT_EQ(ColourName(PropertyNumber(video, VideoStreamFacts::MatrixKey)), probed("color_space"));
    }
    if (fullRange || probed("color_range") == "pc") {
        EXPECT_EQ(fullRange ? "pc" : "tv", probed("color_range"));
    }
    const int64_t reorder = PropertyNumber(video, VideoStreamFacts::ReorderDepthKey);
    EXPECT_EQ(std::to_string(reorder), probed("has_b_frames"));
    EXPECT_GE(reorder, c.minReorder);
    // The decoder configuration an MP4 writer would store parses back.
    unsigned char record[1024];
    const int32_t recordSize = video->GetProperty(VideoStreamFacts::DecoderConfigurationKey, sizeof record, record);
    ASSERT_GT(recordSize, 0);
    AvcDecoderConfiguration configuration;
    ASSERT_EQ(AvcDecoderConfiguration::Parse(record, size_t(recordSize), configuration), 0);
    EXPECT_EQ(std::to_string(configuration.levelIdc), probed("level"));
    EXPECT_EQ(configuration.sequenceSetCount, 1u);

    // Access units: place, size and key flag of every packet, in decode order.
    const std::vector<Picture> pictures = ReadPictures(opened.reader.Get(), file);
    const std::string packets = VekTest::Probe(path, "-select_streams v -show_entries packet=pos,size,flags");
    const std::vector<std::string> positions = VekTest::JsonValues(packets, "pos");
    const std::vector<std::string> sizes = VekTest::JsonValues(packets, "size");
    const std::vector<std::string> flags = VekTest::JsonValues(packets, "flags");
    ASSERT_EQ(pictures.size(), positions.size());
    ASSERT_EQ(sizes.size(), positions.size());
    bool nonIdrKey = false;
    bool severalSlices = false;
    int64_t covered = 0;
    for (size_t i = 0; i < pictures.size(); ++i) {
        SCOPED_TRACE("access unit " + std::to_string(i));
        EXPECT_EQ(std::to_string(pictures[i].position), positions[i]);
        EXPECT_EQ(std::to_string(pictures[i].size), sizes[i]);
        EXPECT_EQ(pictures[i].key, flags[i].find('K') != std::string::npos);
        covered += pictures[i].size;
        const std::vector<int> types = NalTypes(file, pictures[i]);
        const auto slices = std::count(types.begin(), types.end(), 1) + std::count(types.begin(), types.end(), 5);
        EXPECT_GE(slices, 1);
        severalSlices |= slices > 1;
        nonIdrKey |= pictures[i].key && std::count(types.begin(), types.end(), 5) == 0;
    }
    EXPECT_EQ(covered, int64_t(file.size()));
    EXPECT_EQ(c.openGop, nonIdrKey);
    EXPECT_EQ(c.severalSlices, severalSlices);

    // Output order: ffprobe's frames come out as a decoder shows them.
    const std::string frames = VekTest::Probe(path, "-select_streams v -show_entries frame=pkt_pos,pict_type");
    const std::vector<std::string> shownPositions = VekTest::JsonValues(frames, "pkt_pos");
    const std::vector<std::string> shownTypes = VekTest::JsonValues(frames, "pict_type");
    std::vector<Picture> shown = pictures;
    std::stable_sort(shown.begin(), shown.end(), [](const Picture& a, const Picture& b) { return a.shown < b.shown; });
    ASSERT_EQ(shown.size(), shownPositions.size());
    for (size_t i = 0; i < shown.size(); ++i) {
        SCOPED_TRACE("output picture " + std::to_string(i));
        EXPECT_EQ(std::to_string(shown[i].position), shownPositions[i]);
        EXPECT_EQ(std::string(1, "IPB"[shown[i].type]), shownTypes[i]);
        EXPECT_GE(shown[i].shown, shown[i].time) << "shown before it is decoded";
    }
}

INSTANTIATE_TEST_SUITE_P(Libx264, Mpeg4AvcStream, ::testing::ValuesIn(StreamCases),
                         [](const ::testing::TestParamInfo<StreamCase>& info) {
                             std::string name;
                             for (const char* p = info.param.name; *p; ++p)
                                 name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
                             return name;
                         });

// Streams built unit by unit: a 32x32 baseline stream whose slice headers
// carry only what the reader reads, so each case can lie in one field.
struct SliceFields {
    int refIdc = 2;
    bool idr = false;
    int type = 0; // P 0, B 1, I 2
    int frameNum = 0;
    int pocLsb = 0;
    int pictureSet = 0;
    int operation = 0; // a memory-management operation, 0 for none
    int field = 0; // 0 frame, 1 top field, 2 bottom field
    int firstMb = 0;
};

struct Builder {
    Bytes bytes;

    Builder& Unit(const VekTest::BitWriter& writer)
    {
        const std::vector<uint8_t> escaped = writer.Escaped();
        bytes.insert(bytes.end(), {0, 0, 0, 1});
        bytes.insert(bytes.end(), escaped.begin(), escaped.end());
        return *this;
    }
    Builder& Sps(int log2MaxFrameNumMinus4 = 0, int widthMinus1 = 1, bool fields = false)
    {
        VekTest::BitWriter w;
        w.Bits(0x67, 8);
        w.Bits(66, 8); // baseline
        w.Bits(0, 8);
        w.Bits(30, 8); // level 3
        w.UE(0);
        w.UE(uint64_t(log2MaxFrameNumMinus4));
        w.UE(0); // picture order count type 0
        w.UE(0); // 4-bit count
        w.UE(1); // one reference frame
        w.Bit(0);
        w.UE(uint64_t(widthMinus1));
        w.UE(1);
        if (fields)
            w.Bits(1, 3); // field pictures allowed, no MBAFF, direct 8x8
        else
            w.Bits(3, 2); // frame macroblocks only, direct 8x8
        w.Bits(0, 2); // no cropping, no usability
        w.Trailing();
        return Unit(w);
    }
    Builder& Pps()
    {
        VekTest::BitWriter w;
        w.Bits(0x68, 8);
        w.UE(0);
        w.UE(0);
        w.Bits(0, 2);
        w.UE(0);
        w.UE(0);
        w.UE(0);
        w.Bits(0, 3);
        w.SE(0);
        w.SE(0);
        w.SE(0);
        w.Bits(0, 3);
        w.Trailing();
        return Unit(w);
    }
    Builder& Slice(const SliceFields& f)
    {
        VekTest::BitWriter w;
        w.Bits(uint64_t(f.refIdc << 5 | (f.idr ? 5 : 1)), 8);
        w.UE(uint64_t(f.firstMb));
        w.UE(uint64_t(f.type + 5));
        w.UE(uint64_t(f.pictureSet));
        w.Bits(uint64_t(f.frameNum), 4);
        if (f.field)
            w.Bits(f.field == 2 ? 3 : 2, 2); // field_pic_flag, bottom_field_flag
        if (f.idr)
            w.UE(0);
        w.Bits(uint64_t(f.pocLsb), 4);
        if (f.type == 1)
            w.Bit(1); // direct_spatial_mv_pred_flag
        if (f.type != 2)
            w.Bits(0, f.type == 1 ? 3 : 2); // no override, no list changes
        if (f.refIdc && f.idr) {
            w.Bits(0, 2);
        } else if (f.refIdc) {
            w.Bit(f.operation != 0);
            if (f.operation) {
                w.UE(uint64_t(f.operation));
                if (f.operation != 5)
                    w.UE(0);
                w.UE(0);
            }
        }
        w.SE(0); // slice_qp_delta, then some macroblock data
        w.Bits(0xA5C3, 16);
        w.Trailing();
        return Unit(w);
    }
    Builder& Fill(size_t count, uint8_t value)
    {
        bytes.resize(bytes.size() + count, value);
        return *this;
    }
    Builder& Raw(std::initializer_list<uint8_t> raw)
    {
        bytes.insert(bytes.end(), raw);
        return *this;
    }
    // An IDR picture and a P picture after it.
    Builder& TwoPictures()
    {
        SliceFields idr;
        idr.idr = true;
        idr.type = 2;
        SliceFields p;
        p.frameNum = 1;
        p.pocLsb = 2;
        return Sps().Pps().Slice(idr).Slice(p);
    }
};

std::vector<int64_t> Positions(const std::vector<Picture>& pictures)
{
    std::vector<int64_t> positions;
    for (const Picture& picture : pictures)
        positions.push_back(picture.position);
    return positions;
}

TEST(Mpeg4AvcReader, MemoryResetRestartsOutputOrder)
{
    SliceFields idr{2, true, 2, 0, 0, 0, 0};
    SliceFields p1{2, false, 0, 1, 4, 0, 0};
    SliceFields b{0, false, 1, 2, 2, 0, 0};
    SliceFields reset{2, false, 0, 2, 8, 0, 5};
    SliceFields after{2, false, 0, 1, 4, 0, 0};
    Builder builder;
    builder.Sps().Pps();
    std::vector<int64_t> starts;
    for (const SliceFields& fields : {idr, p1, b, reset, after}) {
        starts.push_back(int64_t(builder.bytes.size()));
        builder.Slice(fields);
    }
    starts[0] = 0; // the sets belong to the first access unit
    auto opened = OpenReader(builder.bytes);
    ASSERT_EQ(opened.result, RESULT_OK);
    const std::vector<Picture> pictures = ReadPictures(opened.reader.Get(), builder.bytes);
    ASSERT_EQ(Positions(pictures), starts);
    std::vector<Picture> shown = pictures;
    std::stable_sort(shown.begin(), shown.end(), [](const Picture& x, const Picture& y) { return x.shown < y.shown; });
    // Without the reset the last picture (count 4) would be shown before
    // the one that reset the memory (count 8).
    EXPECT_EQ(Positions(shown), (std::vector<int64_t>{starts[0], starts[2], starts[1], starts[3], starts[4]}));
    EXPECT_EQ(pictures[2].type, CVideoSample::B);
    EXPECT_TRUE(pictures[0].key);
    EXPECT_FALSE(pictures[3].key);
}

TEST(Mpeg4AvcReader, EachFieldIsAnAccessUnitOfItsOwn)
{
    // A second slice of the same field (first_mb 1) stays in its picture.
    SliceFields fields[] = {{2, true, 2, 0, 0, 0, 0, 1, 0}, {2, false, 0, 0, 1, 0, 0, 2, 0},
                            {2, false, 0, 0, 1, 0, 0, 2, 1}, {2, false, 0, 1, 4, 0, 0, 1, 0},
                            {0, false, 1, 2, 5, 0, 0, 2, 0}};
    Builder builder;
    builder.Sps(0, 1, true).Pps();
    std::vector<int64_t> starts;
    for (const SliceFields& f : fields) {
        if (f.firstMb == 0)
            starts.push_back(int64_t(builder.bytes.size()));
        builder.Slice(f);
    }
    starts[0] = 0;
    auto opened = OpenReader(builder.bytes);
    ASSERT_EQ(opened.result, RESULT_OK);
    CVideoProperties* video = opened.reader->GetVideoProperties(0);
    EXPECT_EQ(video->GetFieldOrder(), uint32_t(CVideoProperties::FieldOrderTopFirst));
    EXPECT_EQ(PropertyText(video, VideoStreamFacts::ScanKey), "paff");
    EXPECT_EQ(PropertyNumber(video, VideoStreamFacts::CodedHeightKey), 64);
    const std::vector<Picture> pictures = ReadPictures(opened.reader.Get(), builder.bytes);
    ASSERT_EQ(Positions(pictures), starts);
    const int32_t structures[] = {CVideoSample::UpperField, CVideoSample::LowerField, CVideoSample::UpperField,
                                  CVideoSample::LowerField};
    for (size_t i = 0; i < pictures.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(pictures[i].structure, structures[i]);
        // Timed at the fallback of 25 frames per second, in fields: one each.
        EXPECT_EQ(pictures[i].duration, 1);
        EXPECT_EQ(pictures[i].key, i == 0);
    }
    EXPECT_EQ(pictures[3].type, CVideoSample::B);
}

TEST(Mpeg4AvcReader, HostileStreamsEndInACodeAndALogLine)
{
    SliceFields idr{2, true, 2, 0, 0, 0, 0};
    SliceFields p{2, false, 0, 1, 2, 0, 0};
    SliceFields missingSet = p;
    missingSet.pictureSet = 7;
    SliceFields badOperation = p;
    badOperation.operation = 7;
    const Bytes zeros(3 << 20, 0);
    // A third picture's slice cut after its first payload byte, inside the
    // frame number.
    SliceFields third = p;
    third.frameNum = 2;
    const Bytes cut = Builder().Slice(third).bytes;
    Bytes truncated = Builder().TwoPictures().bytes;
    truncated.insert(truncated.end(), cut.begin(), cut.begin() + 6);
    Bytes garbage = Builder().TwoPictures().bytes;
    for (int i = 0; i < 3000; ++i)
        garbage.push_back(uint8_t(0x40 + i % 0x40)); // no zero bytes: no start code

    struct Case {
        const char* name;
        Bytes stream;
        int indexResult;
        size_t pictures; // handed out before the end
        int lastResult; // of the read after them
        const char* logged;
    } cases[] = {
        {"only parameter sets", Builder().Sps().Pps().bytes, RESULT_ERROR, 0, 0, "no H.264 picture"},
        {"endless zero bytes", zeros, RESULT_ERROR, 0, 0, "no H.264 picture"},
        // A set that lies is no set: its pictures cannot be decoded.
        {"frame number of 2^17", Builder().Sps(13).Pps().Slice(idr).bytes, RESULT_ERROR, 0, 0,
         "log2_max_frame_num_minus4 13"},
        {"picture 80000 pixels across", Builder().Sps(0, 4999).Pps().Slice(idr).bytes, RESULT_ERROR, 0, 0,
         "pic_width_in_mbs_minus1 4999"},
        {"lying set replaced mid-stream", Builder().TwoPictures().Sps(0, 4999).Slice(p).bytes, RESULT_OK, 2,
         RESULT_FORMAT_ERROR, "pic_width_in_mbs_minus1 4999"},
        {"slice of an unseen picture set", Builder().TwoPictures().Slice(missingSet).bytes, RESULT_OK, 2,
         RESULT_FORMAT_ERROR, "picture parameter set 7 has not been seen"},
        {"slice header cut short", truncated, RESULT_OK, 2, RESULT_FORMAT_ERROR, "ends inside it"},
        {"unknown memory operation", Builder().TwoPictures().Slice(badOperation).bytes, RESULT_OK, 2,
         RESULT_FORMAT_ERROR, "memory_management_control_operation 7"},
        {"forbidden bit after a valid start", Builder().TwoPictures().Raw({0, 0, 1, 0xE5, 0x12}).bytes, RESULT_OK, 2,
         RESULT_FORMAT_ERROR, "forbidden_zero_bit"},
        {"garbage after a valid start", garbage, RESULT_OK, 2, RESULT_OK, ""},
        {"slices before the sets", Builder().Slice(p).TwoPictures().bytes, RESULT_OK, 2, RESULT_OK,
         "passing over slices"},
        {"stray start codes in leading garbage", Builder().Raw({'x', 0, 0, 1, 0xFF, 0, 0, 1, 0x67, 0xFF}).TwoPictures().bytes,
         RESULT_OK, 2, RESULT_OK, "passing over the unit at 1 before the first picture"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VekTest::LogCapture log(LogLevel::Detail);
        auto opened = OpenReader(c.stream);
        ASSERT_EQ(opened.result, c.indexResult);
        if (c.indexResult < 0) {
            EXPECT_EQ(opened.reader->GetVideoMediaCount(), 0);
        } else {
            int last = 0;
            const std::vector<Picture> pictures = ReadPictures(opened.reader.Get(), c.stream, &last);
            EXPECT_EQ(pictures.size(), c.pictures);
            EXPECT_EQ(last, c.lastResult);
            if (c.lastResult == RESULT_OK && !pictures.empty()) {
                EXPECT_EQ(pictures.back().position + pictures.back().size, int64_t(c.stream.size()));
            }
        }
        EXPECT_NE(log.Text().find(c.logged), std::string::npos) << log.Text();
    }
}

TEST(Mpeg4AvcReader, ScoresByWhatPrecedesTheFirstStartCode)
{
    const Bytes valid = Builder().TwoPictures().bytes;
    const Bytes zerosFirst = Builder().Fill(1000, 0).TwoPictures().bytes;
    const Bytes textFirst = Builder().Raw({'j', 'u', 'n', 'k', '!', 0x7F}).TwoPictures().bytes;
    const Bytes far = Builder().Fill(Reader::ProbeLimit + 100, 0x55).TwoPictures().bytes;
    struct Case {
        const char* name;
        Bytes bytes;
        int score;
    } cases[] = {
        {"start code first", valid, Reader::StartScore},
        {"leading zero bytes", zerosFirst, Reader::StartScore},
        {"leading garbage", textFirst, Reader::DisplacedScore},
        {"stray start codes before the stream", Builder().Raw({1, 0, 0, 1, 0x80, 0, 0, 1, 0x67, 0x42, 0xFF}).TwoPictures().bytes,
         Reader::DisplacedScore},
        {"picture past the probe limit", far, 0},
        {"no picture", Builder().Sps().Pps().bytes, 0},
        {"RIFF WAVE header", {'R', 'I', 'F', 'F', 4, 0, 0, 0, 'W', 'A', 'V', 'E'}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RObject<CMemoryStream> stream(new CMemoryStream(int32_t(c.bytes.size()), c.bytes.data()));
        RObject<Reader> reader(new Reader());
        EXPECT_EQ(reader->Validate(stream), c.score);
        EXPECT_LT(c.score, CAudioFileReader::MatchScore);
    }
}

TEST(Mpeg4AvcReader, AllocationFailuresEndInOutOfMemory)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    const Bytes file = Builder().TwoPictures().TwoPictures().bytes;
    VekTest::WalkAllocationFailures("H.264 open, index, read", [&] {
        auto opened = OpenReader(file);
        if (opened.result < 0)
            return opened.result == RESULT_OUT_OF_MEMORY && (!opened.reader || opened.reader->GetVideoMediaCount() == 0);
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
#endif
}

} // namespace
