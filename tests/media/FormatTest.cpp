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
        {"video", "ProRes", VideoFormat::ProRes, Code("ap  ")},
        // Codes that are not printable stand as written.
        {"audio", "MicrosoftADPCM", AudioFormat::MicrosoftADPCM, 0x6D730002},
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

TEST(FormatNames, ThroughParentsAndUnknown)
{
    struct Case {
        const char* (*getName)(unsigned int);
        uint32_t code;
        const char* name;
    };
    // The scan test below checks every name against the table; these pin a
    // few exact texts and codes that have no row.
    const Case cases[] = {
        {AudioFormat::GetName, Code("aac "), "AAC"},
        {AudioFormat::GetName, Code("mlaw"), "\xCE\xBC-law"},
        {AudioFormat::GetName, 0, nullptr},
        {AudioFormat::GetName, Code("zzzz"), nullptr},
        {AudioFormat::GetName, AudioFormat::IntelMusicCoder, nullptr},
        {AudioFormat::GetName, Code("AAC "), nullptr},
        {VideoFormat::GetName, Code("apch"), "Apple ProRes 422 HQ"},
        {SubtitleFormat::GetName, Code("c638"), nullptr},
        {ContainerFormat::GetName, 0x6D786600, nullptr}, // "mxf" padded with 0, not a blank
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
    struct Named {
        const FormatConstant* constants;
        size_t count;
        const char* (*getName)(unsigned int);
        bool zeroIsUnknown;
    };
    const Named families[] = {
        {VideoFormat::GetConstants(), VideoFormat::GetConstantCount(), VideoFormat::GetName, true},
        {AudioFormat::GetConstants(), AudioFormat::GetConstantCount(), AudioFormat::GetName, true},
        {SubtitleFormat::GetConstants(), SubtitleFormat::GetConstantCount(), SubtitleFormat::GetName, true},
        {ContainerFormat::GetConstants(), ContainerFormat::GetConstantCount(), ContainerFormat::GetName, false},
    };
    for (const Named& f : families)
        for (size_t i = 0; i < f.count; ++i) {
            const FormatConstant& c = f.constants[i];
            // The Intel Music Coder has a code but no description entry.
            if ((c.code == 0 && f.zeroIsUnknown) || c.code == AudioFormat::IntelMusicCoder)
                continue;
            EXPECT_NE(f.getName(c.code), nullptr) << c.name;
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
        // Canonical forms are checked against the table scan below; a code
        // with a constant but no row is not among its probes.
        {AudioFormat::GetCanonicalFormat, "audio canonical", AudioFormat::IntelMusicCoder, 0},

        {AudioFormat::GetCategoricalFormat, "audio category", Code("ADTS"), Code("mp4a")},
        {AudioFormat::GetCategoricalFormat, "audio category", 0x54530007, Code("lpcm")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("aes3"), Code("aes3")},
        {AudioFormat::GetCategoricalFormat, "audio category", Code("zzzz"), 0},

        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("aac "), Code("mp4a")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("mp4a"), Code("aac ")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", 0x6D732000, Code("ac-3")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("mlaw"), Code("ulaw")},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", 0x6D730011, 0x54530011},
        {AudioFormat::GetEquivalentFormat, "audio equivalent", Code("lpcm"), 0},

        {VideoFormat::GetCategoricalFormat, "video category", Code("ai15"), Code("avc1")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("xd5b"), Code("mp2v")},
        {VideoFormat::GetCategoricalFormat, "video category", Code("Y800"), Code("YUV ")},

        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("h264"), Code("avc1")},
        {VideoFormat::GetEquivalentFormat, "video equivalent", 0x00000020, Code("ARGB")},
        {VideoFormat::GetEquivalentFormat, "video equivalent", Code("apch"), 0},

        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("dfxp"), Code("ttml")},
        {SubtitleFormat::GetEquivalentFormat, "subtitle equivalent", Code("vtt "), Code("wvtt")},
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
    const size_t count = CountRows(rows);
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
