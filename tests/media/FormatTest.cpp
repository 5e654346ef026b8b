#include <vek/media/FormatTable.h>
#include <vek/media/Media.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

// Packs a code the long way, independently of Four(): first character in
// the most significant byte.
uint32_t Code(const char* text)
{
    EXPECT_EQ(std::strlen(text), 4u) << text;
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = (code << 8) | static_cast<unsigned char>(text[i]);
    return code;
}

struct Family {
    const char* label;
    const FormatConstant* constants;
    size_t count;
};

std::vector<Family> Families()
{
    return {
        {"video", VideoFormat::GetConstants(), VideoFormat::GetConstantCount()},
        {"audio", AudioFormat::GetConstants(), AudioFormat::GetConstantCount()},
        {"subtitle", SubtitleFormat::GetConstants(), SubtitleFormat::GetConstantCount()},
        {"metadata", MetadataFormat::GetConstants(), MetadataFormat::GetConstantCount()},
        {"container", ContainerFormat::GetConstants(), ContainerFormat::GetConstantCount()},
    };
}

const FormatConstant* FindConstant(const Family& family, const char* name)
{
    for (size_t i = 0; i < family.count; ++i)
        if (!std::strcmp(family.constants[i].name, name))
            return &family.constants[i];
    return nullptr;
}

size_t CountRows(const FormatDescription* rows)
{
    size_t n = 0;
    while (rows[n].code != 0)
        ++n;
    return n;
}

size_t CountRoots(const FormatDescription* rows)
{
    size_t roots = 0;
    for (size_t i = 0; rows[i].code != 0; ++i)
        roots += rows[i].parent == 0;
    return roots;
}

// The lookups written the plain way: scan from the first row to the row
// with the code, stopping at the 0 row. The library's indexed lookups must
// give the same answers.
const FormatDescription* ScanFor(const FormatDescription* rows, uint32_t code)
{
    for (; rows->code != 0; ++rows)
        if (rows->code == code)
            return rows;
    return nullptr;
}

uint32_t ScanCanonical(const FormatDescription* rows, uint32_t code)
{
    for (const FormatDescription* e = ScanFor(rows, code); e; e = ScanFor(rows, code)) {
        if (e->parent == 0)
            return code;
        code = e->parent;
    }
    return 0;
}

const char* ScanName(const FormatDescription* rows, uint32_t code)
{
    for (const FormatDescription* e = ScanFor(rows, code); e; e = ScanFor(rows, e->parent))
        if (e->name)
            return e->name;
    return nullptr;
}

bool ScanIsFormat(const FormatDescription* rows, uint32_t code, uint32_t family)
{
    if (code == family)
        return true;
    for (const FormatDescription* e = ScanFor(rows, code); e && e->parent; e = ScanFor(rows, e->parent))
        if (e->parent == family)
            return true;
    return false;
}

} // namespace

TEST(FormatConstants, FamilySizes)
{
    EXPECT_EQ(VideoFormat::GetConstantCount(), 297u);
    EXPECT_EQ(AudioFormat::GetConstantCount(), 93u);
    EXPECT_EQ(SubtitleFormat::GetConstantCount(), 12u);
    EXPECT_EQ(MetadataFormat::GetConstantCount(), 79u);
    EXPECT_EQ(ContainerFormat::GetConstantCount(), 52u);
}

TEST(FormatConstants, NamesAreUniqueAndOnlyTheMuLawPairSharesACode)
{
    for (const Family& family : Families()) {
        std::set<std::string> names;
        std::set<uint32_t> codes;
        std::vector<std::string> shared;
        for (size_t i = 0; i < family.count; ++i) {
            EXPECT_TRUE(names.insert(family.constants[i].name).second)
                << family.label << " " << family.constants[i].name;
            if (!codes.insert(family.constants[i].code).second)
                shared.push_back(family.constants[i].name);
        }
        if (!std::strcmp(family.label, "audio")) {
            EXPECT_EQ(shared, std::vector<std::string>{"uLaw"});
        } else {
            EXPECT_TRUE(shared.empty()) << family.label << " " << shared.front();
        }
    }
}

TEST(FormatConstants, ExactCodes)
{
    struct Case {
        const char* family;
        const char* name;
        uint32_t constant; // the class member; the family's list must agree
        uint32_t expected;
    };
    const Case cases[] = {
        // Codes written with fewer than four characters are padded with blanks.
        {"audio", "Monkey", AudioFormat::Monkey, Code("APE ")},
        {"audio", "UInt8", AudioFormat::UInt8, Code("raw ")},
        {"video", "AVCIntra50", VideoFormat::AVCIntra50, Code("ai5 ")},
        {"video", "ProRes", VideoFormat::ProRes, Code("ap  ")},
        {"video", "DVC25", VideoFormat::DVC25, Code("dv  ")},
        {"video", "IMX", VideoFormat::IMX, Code("mx  ")},
        {"video", "XDCAM", VideoFormat::XDCAM, Code("xd  ")},
        {"subtitle", "VTT", SubtitleFormat::VTT, Code("vtt ")},
        {"metadata", "TimeCode", MetadataFormat::TimeCode, Code("tc  ")},
        {"container", "DV", ContainerFormat::DV, Code("dif ")},
        {"container", "Image", ContainerFormat::Image, Code("img ")},
        {"container", "MPEG1", ContainerFormat::MPEG1, Code("mpg ")},

        // Codes that are not printable stand as written.
        {"video", "Unknown", VideoFormat::Unknown, 0x00000000},
        {"video", "PackedRGB", VideoFormat::PackedRGB, 0x00000018},
        {"audio", "IntelMusicCoder", AudioFormat::IntelMusicCoder, 0x01040000},
        {"audio", "TrueSpeech", AudioFormat::TrueSpeech, 0x22000000},
        {"audio", "MicrosoftADPCM", AudioFormat::MicrosoftADPCM, 0x6D730002},
        {"audio", "MicrosoftG726", AudioFormat::MicrosoftG726, 0x6D730045},
        {"metadata", "GxfC608", MetadataFormat::GxfC608, 0x73522107},

        // A spread of ordinary codes, with the case and digits that are easy to slip.
        {"audio", "AAC", AudioFormat::AAC, 0x6D703461},
        {"audio", "MP3", AudioFormat::MP3, Code(".mp3")},
        {"audio", "Int20L", AudioFormat::Int20L, Code("02ni")},
        {"audio", "Float64L", AudioFormat::Float64L, Code("46lf")},
        {"audio", "QDMC2", AudioFormat::QDMC2, Code("QDM2")},
        {"audio", "muLaw", AudioFormat::muLaw, Code("ulaw")},
        {"audio", "uLaw", AudioFormat::uLaw, Code("ulaw")},
        {"audio", "Int16L", AudioFormat::Int16L, Code("sowt")},
        {"video", "DNxHD", VideoFormat::DNxHD, Code("AVdn")},
        {"video", "Planar420YUV_10L", VideoFormat::Planar420YUV_10L, Code("I0AL")},
        {"video", "MPEG4S", VideoFormat::MPEG4S, Code("Mp4S")},
        {"video", "HEVC", VideoFormat::HEVC, Code("hvc1")},
        {"video", "H265", VideoFormat::H265, Code("h265")},
        {"video", "Packed444AYUV_32f", VideoFormat::Packed444AYUV_32f, Code("r4fl")},
        {"metadata", "AvcHd", MetadataFormat::AvcHd, Code("MDPM")},
        {"metadata", "AncillaryDarkPacket", MetadataFormat::AncillaryDarkPacket, Code("anc_")},
        {"metadata", "C608Field3", MetadataFormat::C608Field3, Code("c638")},
        {"container", "MXF_OPATOM", ContainerFormat::MXF_OPATOM, Code("atom")},
        {"container", "DirectShow", ContainerFormat::DirectShow, Code("qrtz")},
        {"container", "WAV64", ContainerFormat::WAV64, Code("wv64")},
    };
    const std::vector<Family> families = Families();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.family) + "::" + c.name);
        EXPECT_EQ(c.constant, c.expected);
        const Family* family = nullptr;
        for (const Family& f : families)
            if (!std::strcmp(f.label, c.family))
                family = &f;
        ASSERT_NE(family, nullptr);
        const FormatConstant* listed = FindConstant(*family, c.name);
        ASSERT_NE(listed, nullptr);
        EXPECT_EQ(listed->code, c.expected);
    }
}

TEST(AudioFormatTable, SizeAndRoots)
{
    const FormatDescription* rows = AudioFormat::GetDescriptions();
    EXPECT_EQ(CountRows(rows), 158u);
    // The table as written has 60 entries with parent 0.
    EXPECT_EQ(CountRoots(rows), 60u);
}

TEST(AudioFormatTable, SampledEntriesInOrder)
{
    struct Case {
        size_t row;
        uint32_t code;
        uint32_t parent;
        const char* name;
    };
    const Case cases[] = {
        {0, Code("mp4a"), 0, "AAC"},
        {1, Code("aac "), Code("mp4a"), nullptr},
        {4, 0x6D732000, Code("ac-3"), nullptr},
        {19, Code("paac"), 0, "AT&T Bell Labs Perceptual Audio Coder"},
        {79, Code(".MP3"), Code(".mp3"), nullptr},
        {83, 0x54530055, Code(".mp3"), nullptr},
        {102, Code("ulaw"), Code("lpcm"), "\xCE\xBC-law"},
        {125, 0x70020000, Code("atr1"), "Sony Adaptive Transform Acoustic Coding (ATRAC), Version 3"},
        {130, 0x22000000, 0, "TrueSpeech"},
        {157, Code("spxr"), Code("spx "), nullptr},
    };
    const FormatDescription* rows = AudioFormat::GetDescriptions();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.row);
        EXPECT_EQ(rows[c.row].code, c.code);
        EXPECT_EQ(rows[c.row].parent, c.parent);
        if (c.name) {
            EXPECT_STREQ(rows[c.row].name, c.name);
        } else {
            EXPECT_EQ(rows[c.row].name, nullptr);
        }
    }
    EXPECT_EQ(rows[158].code, 0u);
    EXPECT_EQ(rows[158].parent, 0u);
    EXPECT_EQ(rows[158].name, nullptr);
}

TEST(FormatNames, ThroughParentsAndUnknown)
{
    struct Case {
        const char* (*getName)(unsigned int);
        uint32_t code;
        const char* name;
    };
    const Case cases[] = {
        {AudioFormat::GetName, Code("mp4a"), "AAC"},
        {AudioFormat::GetName, Code("aac "), "AAC"},
        {AudioFormat::GetName, 0x6D732000, "Dolby Digital, AC-3"},
        {AudioFormat::GetName, Code("s16l"), "PCM, 16-Bit Little-Endian Signed Integer"},
        {AudioFormat::GetName, Code("mlaw"), "\xCE\xBC-law"},
        {AudioFormat::GetName, 0x54530011, "Microsoft IMA ADPCM"},
        {AudioFormat::GetName, Code("LAME"), "MPEG Audio Layer 3"},
        {AudioFormat::GetName, Code("atrc"), "Sony Adaptive Transform Acoustic Coding (ATRAC), Version 3"},
        {AudioFormat::GetName, 0, nullptr},
        {AudioFormat::GetName, Code("zzzz"), nullptr},
        {AudioFormat::GetName, AudioFormat::IntelMusicCoder, nullptr},
        {AudioFormat::GetName, Code("AAC "), nullptr},
        {VideoFormat::GetName, Code("rle "), "Apple Lossless"},
        {VideoFormat::GetName, Code("h264"), "H.264/AVC"},
        {VideoFormat::GetName, Code("YUY2"), "Packed YUV 4:2:2 (YUYV)"},
        {VideoFormat::GetName, Code("apch"), "Apple ProRes 422 HQ"},
        {VideoFormat::GetName, 0x00000018, "RGB, 24-Bit Packed"},
        {VideoFormat::GetName, Code("ARGB"), "ARGB, 32-Bit Packed"},
        {VideoFormat::GetName, 0, nullptr},
        {VideoFormat::GetName, Code("zzzz"), nullptr},
        {SubtitleFormat::GetName, Code("wvtt"), "WebVTT"},
        {SubtitleFormat::GetName, Code("c618"), "CEA-608 Closed Captions, Field 1"},
        {SubtitleFormat::GetName, Code("c638"), nullptr},
        {ContainerFormat::GetName, Code("mxf "), "Material Exchange Format (MXF)"},
        {ContainerFormat::GetName, Code("wv64"), "Sony Wave64"},
        {ContainerFormat::GetName, 0x6D786600, nullptr}, // "mxf" padded with 0, not a blank
        {ContainerFormat::GetName, 0, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.code);
        if (c.name) {
            EXPECT_STREQ(c.getName(c.code), c.name);
        } else {
            EXPECT_EQ(c.getName(c.code), nullptr);
        }
    }
}

TEST(FormatNames, EveryDescribedConstantHasAName)
{
    for (size_t i = 0; i < VideoFormat::GetConstantCount(); ++i) {
        const FormatConstant& c = VideoFormat::GetConstants()[i];
        if (c.code != 0) {
            EXPECT_NE(VideoFormat::GetName(c.code), nullptr) << c.name;
        }
    }
    for (size_t i = 0; i < AudioFormat::GetConstantCount(); ++i) {
        const FormatConstant& c = AudioFormat::GetConstants()[i];
        // The Intel Music Coder has a code but no description entry.
        if (c.code != 0 && c.code != AudioFormat::IntelMusicCoder) {
            EXPECT_NE(AudioFormat::GetName(c.code), nullptr) << c.name;
        }
    }
    for (size_t i = 0; i < SubtitleFormat::GetConstantCount(); ++i) {
        const FormatConstant& c = SubtitleFormat::GetConstants()[i];
        if (c.code != 0) {
            EXPECT_NE(SubtitleFormat::GetName(c.code), nullptr) << c.name;
        }
    }
    for (size_t i = 0; i < ContainerFormat::GetConstantCount(); ++i) {
        const FormatConstant& c = ContainerFormat::GetConstants()[i];
        EXPECT_NE(ContainerFormat::GetName(c.code), nullptr) << c.name;
    }
}

TEST(FormatRelations, CanonicalCategoricalEquivalent)
{
    struct Case {
        unsigned int (*get)(unsigned int);
        const char* what;
        uint32_t code;
        uint32_t expected;
    };
    const Case cases[] = {
        {AudioFormat::GetCanonicalFormat, "audio canonical", Code("aac "), Code("mp4a")},
        {AudioFormat::GetCanonicalFormat, "audio canonical", Code("a52 "), Code("ac-3")},
        {AudioFormat::GetCanonicalFormat, "audio canonical", Code("s16l"), Code("lpcm")},
        {AudioFormat::GetCanonicalFormat, "audio canonical", Code(".MP3"), Code("mpga")},
        {AudioFormat::GetCanonicalFormat, "audio canonical", 0x54530045, 0x6D730045},
        {AudioFormat::GetCanonicalFormat, "audio canonical", Code("zzzz"), 0},
        {AudioFormat::GetCanonicalFormat, "audio canonical", AudioFormat::IntelMusicCoder, 0},
        {AudioFormat::GetCanonicalFormat, "audio canonical", 0, 0},

        {AudioFormat::GetCategoricalFormat, "audio category", Code("ADTS"), Code("mp4a")},
        {AudioFormat::GetCategoricalFormat, "audio category", 0x54530007, Code("lpcm")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("g711"), Code("lpcm")},
        {AudioFormat::GetCategoricalFormat, "audio category", 0x54530002, Code("ima4")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("a52b"), Code("ec-3")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("aes3"), Code("aes3")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("zzzz"), 0},

        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("aac "), Code("mp4a")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("mp4a"), Code("aac ")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("sowt"), Code("s16l")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("ac-3"), Code("a52 ")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", 0x6D732000, Code("ac-3")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("alaw"), 0x6D730006},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("ulaw"), 0x6D730007},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("mlaw"), Code("ulaw")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", 0x6D730011, 0x54530011},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("lpcm"), 0},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("atrc"), 0},

        {VideoFormat::GetCanonicalFormat, "video canonical", Code("apch"), Code("ap  ")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("ai52"), Code("AVCI")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("dn8h"), Code("AVdn")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("h264"), Code("avc1")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("YUY2"), Code("YUV ")},
        {VideoFormat::GetCanonicalFormat, "video canonical", 0x00000020, Code("RGB ")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("rle "), Code("rle ")},
        {VideoFormat::GetCanonicalFormat, "video canonical", Code("zzzz"), 0},

        {VideoFormat::GetCategoricalFormat, "video category", Code("ai15"), Code("avc1")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("xd5b"), Code("mp2v")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("m1v "), Code("mp2v")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("Y800"), Code("YUV ")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("BGRA"), Code("RGB ")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("apco"), Code("ap  ")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("zzzz"), 0},

        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("h264"), Code("avc1")},
        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("YUYV"), Code("YUY2")},
        {VideoFormat::GetEquivalentFormat, "video equivalent", 0x00000020, Code("ARGB")},
        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("apch"), 0},
        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("zzzz"), 0},

        {SubtitleFormat::GetCanonicalFormat, "subtitle canonical", Code("c628"), Code("c608")},
        {SubtitleFormat::GetCanonicalFormat, "subtitle canonical", Code("dfxp"), Code("ttml")},
        {SubtitleFormat::GetCanonicalFormat, "subtitle canonical", Code("vtt "), Code("vtt ")},
        {SubtitleFormat::GetCanonicalFormat, "subtitle canonical", Code("zzzz"), 0},
        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("dfxp"), Code("ttml")},
        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("vtt "), Code("wvtt")},
        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("wvtt"), Code("vtt ")},
        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("c708"), 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.get(c.code), c.expected) << c.what << " of " << std::hex << c.code;
}

TEST(FormatRelations, IsFormat)
{
    struct Case {
        uint32_t format;
        uint32_t family;
        bool expected;
    };
    const uint32_t unknown = Code("zzzz");
    const Case cases[] = {
        {unknown, unknown, true}, // equal codes match before any lookup
        {0, 0, true},
        {unknown, VideoFormat::ProRes, false},
        {VideoFormat::ProRes, unknown, false},
        {VideoFormat::ProRes422_HQ, VideoFormat::ProRes422, true},
        {VideoFormat::ProRes422_HQ, VideoFormat::ProRes, true},
        {VideoFormat::ProRes4444, VideoFormat::ProRes422, false},
        {VideoFormat::ProRes, VideoFormat::ProRes422, false}, // a family is not its own member
        {VideoFormat::XDCAM_HD422_1080i60, VideoFormat::XDCAM, true},
        {VideoFormat::IMX50_NTSC, VideoFormat::IMX30, false},
        {VideoFormat::AvidDV100, VideoFormat::DVCPROHD, true},
        {VideoFormat::AVCIntra50_720p50, VideoFormat::AVCIntra, true},
        {VideoFormat::AVCIntra50_720p50, VideoFormat::AVCIntra100, false},
        {VideoFormat::AVCIntra50_720p50, VideoFormat::AVC, false}, // related by category only
        {VideoFormat::Planar420YVU, VideoFormat::YUV, true},
        {VideoFormat::PackedBGRA, VideoFormat::YUV, false},
        {VideoFormat::ProRes, 0, false}, // a root's parent 0 is not Unknown
    };
    for (const Case& c : cases)
        EXPECT_EQ(VideoFormat::IsFormat(c.format, c.family), c.expected)
            << std::hex << c.format << " in " << c.family;
}

// The indexed lookups agree with the plain table scan for every code in the
// table and for codes next to them that are not.
TEST(FormatRelations, IndexAgreesWithTableScan)
{
    struct Table {
        const FormatDescription* rows;
        const char* (*getName)(unsigned int);
        unsigned int (*getCanonical)(unsigned int);
    };
    const Table tables[] = {
        {AudioFormat::GetDescriptions(), AudioFormat::GetName, AudioFormat::GetCanonicalFormat},
        {VideoFormat::GetDescriptions(), VideoFormat::GetName, VideoFormat::GetCanonicalFormat},
        {SubtitleFormat::GetDescriptions(), SubtitleFormat::GetName, SubtitleFormat::GetCanonicalFormat},
        {ContainerFormat::GetDescriptions(), ContainerFormat::GetName, nullptr},
    };
    for (const Table& t : tables) {
        std::vector<uint32_t> probes = {0, 1, 0xFFFFFFFF};
        for (size_t i = 0; t.rows[i].code != 0; ++i) {
            probes.push_back(t.rows[i].code);
            probes.push_back(t.rows[i].code - 1);
            probes.push_back(t.rows[i].code + 1);
        }
        for (uint32_t code : probes) {
            SCOPED_TRACE(testing::Message() << std::hex << code);
            EXPECT_EQ(t.getName(code), ScanName(t.rows, code));
            if (t.getCanonical) {
                EXPECT_EQ(t.getCanonical(code), ScanCanonical(t.rows, code));
            }
        }
    }
    const FormatDescription* video = VideoFormat::GetDescriptions();
    const size_t count = CountRows(video);
    for (size_t i = 0; i < count; ++i)
        for (size_t j = 0; j < count; j += 7)
            ASSERT_EQ(VideoFormat::IsFormat(video[i].code, video[j].code),
                      ScanIsFormat(video, video[i].code, video[j].code))
                << std::hex << video[i].code << " in " << video[j].code;
}

TEST(VideoFormatTable, ShapeOfTheTable)
{
    const FormatDescription* rows = VideoFormat::GetDescriptions();
    size_t count = CountRows(rows);
    EXPECT_GE(count, 297u);
    // Every root has a name, so every code in the table has one.
    for (size_t i = 0; i < count; ++i)
        if (rows[i].parent == 0) {
            EXPECT_NE(rows[i].name, nullptr) << std::hex << rows[i].code;
        }
    EXPECT_EQ(rows[count].parent, 0u);
    EXPECT_EQ(rows[count].name, nullptr);
}

// The compile-time checks that let the tables be indexed: a table the plain
// scan would read differently from the index must not pass.
TEST(FormatTableChecks, OnlyTablesTheIndexCanServePass)
{
    const uint32_t a = Code("aaaa");
    const uint32_t b = Code("bbbb");
    const uint32_t c = Code("cccc");
    constexpr uint32_t none = 0;
    const FormatDescription good[] = {{b, 0, "B"}, {a, b, nullptr}, {c, a, "C"}, {0, 0, nullptr}};
    const FormatDescription duplicate[] = {{a, 0, "A"}, {a, 0, "again"}, {0, 0, nullptr}};
    const FormatDescription earlyEnd[] = {{a, 0, "A"}, {0, 0, nullptr}, {b, 0, "B"}, {0, 0, nullptr}};
    const FormatDescription orphan[] = {{a, c, "A"}, {0, 0, nullptr}};
    const FormatDescription loop[] = {{a, b, "A"}, {b, a, "B"}, {0, 0, nullptr}};
    const FormatDescription selfLoop[] = {{a, a, "A"}, {0, 0, nullptr}};
    const FormatDescription unterminated[] = {{a, none, "A"}};
    EXPECT_TRUE(IsIndexableFormatTable(good));
    EXPECT_FALSE(IsIndexableFormatTable(duplicate));
    EXPECT_FALSE(IsIndexableFormatTable(earlyEnd));
    EXPECT_FALSE(IsIndexableFormatTable(orphan));
    EXPECT_FALSE(IsIndexableFormatTable(loop));
    EXPECT_FALSE(IsIndexableFormatTable(selfLoop));
    EXPECT_FALSE(IsIndexableFormatTable(unterminated));
    EXPECT_EQ(CountFormatRows(good), 3u);
    EXPECT_EQ(CountFormatRoots(good), 1u);

    // The index is sorted by code and carries the table's own equivalents:
    // the alias 'aaaa' gives its parent, the named 'bbbb' its first alias,
    // the named 'cccc' without aliases nothing.
    const auto index = BuildFormatIndex(good);
    ASSERT_EQ(index.size(), 3u);
    const uint32_t expected[3][3] = {{a, 1, b}, {b, 0, a}, {c, 2, 0}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(index[i].code, expected[i][0]);
        EXPECT_EQ(index[i].row, expected[i][1]);
        EXPECT_EQ(index[i].alias, expected[i][2]);
    }
}
