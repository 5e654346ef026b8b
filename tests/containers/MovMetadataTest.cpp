#include <vek/containers/readers/mov/MovMetadata.h>
#include <vek/core/Result.h>
#include <vek/media/ContainerProperty.h>

#include "MovAtomWalk.h"
#include "MovWriters.h"
#include "elementary/ExternalStreams.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <regex>
#include <utility>

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

using Cp = ContainerProperty;

constexpr uint16_t Undetermined = 0x55C4; // packed ISO 639 "und"

// A QuickTime text atom with one (size, language, text) record.
std::string TextAtom(const std::string& type, const std::string& text, uint16_t language = Undetermined)
{
    return Atom(type, Be16(uint32_t(text.size())) + Be16(language) + text);
}

std::string Data(uint32_t typeIndicator, const std::string& value)
{
    return Atom("data", Be32(typeIndicator) + Be32(0) + value);
}

std::string Handler(const std::string& type)
{
    return Atom("hdlr", Be32(0) + Be32(0) + type + std::string(12, '\0') + std::string(1, '\0'));
}

// An ISO 'meta' (version and flags first) or QuickTime's (none).
std::string Meta(const std::string& children, bool iso = true)
{
    return Atom("meta", (iso ? Be32(0) : std::string()) + children);
}

std::string Keys(const std::vector<std::string>& names, const std::string& space = "mdta")
{
    std::string entries;
    for (const std::string& name : names)
        entries += Be32(uint32_t(8 + name.size())) + space + name;
    return Atom("keys", Be32(0) + Be32(uint32_t(names.size())) + entries);
}

std::string KeyedItem(uint32_t index, const std::string& data)
{
    return Atom(Be32(index), data);
}

int ReadUdta(const std::string& payload, IProperties& bag)
{
    return ReadUserData(SpanBox(payload, TypeOf("udta")), &bag);
}

const std::string Copyright = "\xC2\xA9"; // '©' in UTF-8

struct StoredCase {
    const char* name;
    std::string udta;
    std::string key;
    std::string expected;
};

std::vector<StoredCase> StoredCases()
{
    const std::string unknownPrefix = MovUnknownAtomPrefix;
    return {
        {"Mac-Roman record", TextAtom("\251nam", "\x8A\xA9x", 0), Cp::MovTitle, "\xC3\xA4\xC2\xA9x"},
        {"UTF-8 record", TextAtom("\251nam", "T\xC3\xABst"), Cp::MovTitle, "T\xC3\xABst"},
        {"UTF-16 record", TextAtom("\251ART", std::string("\xFE\xFF\0T\0\xEB", 6)), Cp::MovArtist, "T\xC3\xAB"},
        {"first record wins", Atom("\251cmt", Be16(1) + Be16(Undetermined) + "a" + Be16(1) + Be16(0x15C7) + "b"),
         Cp::MovComment, "a"},
        {"terminated record", TextAtom("\251inf", std::string("in\0fo", 5)), Cp::MovInformation, "in"},
        {"date gives year", TextAtom("\251day", "1999-12-31"), Cp::MovYear, "1999"},
        {"date keeps its text", TextAtom("\251day", "1999-12-31"), Cp::MovCreationDate, "1999-12-31"},
        {"five digits are no year", TextAtom("\251day", "19991"), Cp::MovYear, "<absent>"},
        {"software from swr", TextAtom("\251swr", "Writer 1"), Cp::MovSoftware, "Writer 1"},
        {"unknown text atom", TextAtom("\251wrt", "Bach"), unknownPrefix + Copyright + "wrt", "Bach"},
        {"unknown binary atom", Atom(std::string("XY%\1", 4), "raw"), unknownPrefix + "XY%25%01", "raw"},
        {"data form in udta", Atom("\251alb", Data(1, "Alb")), Cp::MovAlbum, "Alb"},
        {"3GPP asset", Atom("titl", Be32(0) + Be16(0x15C7) + std::string("Asset\0", 6)), Cp::MovTitle, "Asset"},
        {"3GPP UTF-16 asset", Atom("dscp", Be32(0) + Be16(0x15C7) + std::string("\xFE\xFF\0D\0\0", 6)),
         Cp::MovDescription, "D"},
        {"3GPP genre is text", Atom("gnre", Be32(0) + Be16(0x15C7) + std::string("Jazz\0", 5)), Cp::MovGenre, "Jazz"},
        {"track of total", Meta(Handler("mdir") + Atom("ilst", Atom("trkn", Data(0, Be16(0) + Be16(3) + Be16(12) + Be16(0))))),
         unknownPrefix + "trkn", "3/12"},
        {"disk without total", Meta(Handler("mdir") + Atom("ilst", Atom("disk", Data(0, Be16(0) + Be16(2) + Be16(0))))),
         unknownPrefix + "disk", "2"},
        {"signed byte", Meta(Handler("mdir") + Atom("ilst", Atom("cpil", Data(21, "\x01")))), unknownPrefix + "cpil", "1"},
        {"negative int16", Meta(Handler("mdir") + Atom("ilst", Atom("xint", Data(21, "\xFF\xFE")))),
         unknownPrefix + "xint", "-2"},
        {"unsigned int32", Meta(Handler("mdir") + Atom("ilst", Atom("xint", Data(22, "\xFF\xFF\xFF\xFE")))),
         unknownPrefix + "xint", "4294967294"},
        {"implicit counter", Meta(Handler("mdir") + Atom("ilst", Atom("tmpo", Data(0, Be16(120))))),
         unknownPrefix + "tmpo", "120"},
        {"numeric genre", Meta(Handler("mdir") + Atom("ilst", Atom("gnre", Data(0, Be16(8))))), unknownPrefix + "gnre",
         "8"},
        {"float", Meta(Handler("mdir") + Atom("ilst", Atom("xflt", Data(23, std::string("\x3F\xC0\0\0", 4))))), unknownPrefix + "xflt",
         "1.5"},
        {"UTF-16 item", Meta(Handler("mdir") + Atom("ilst", Atom("\251nam", Data(2, std::string("\0A\x20\xAC", 4))))),
         Cp::MovTitle, "A\xE2\x82\xAC"},
        {"artwork keeps zero bytes", Meta(Handler("mdir") + Atom("ilst", Atom("covr", Data(13, std::string("\xFF\xD8\0\1", 4))))),
         Cp::MovArtwork, std::string("\xFF\xD8\0\1", 4)},
        {"ill-formed UTF-8 repaired", Meta(Handler("mdir") + Atom("ilst", Atom("desc", Data(1, "a\xFF" "b")))),
         Cp::MovDescription, "a\xEF\xBF\xBD" "b"},
        {"free-form item",
         Meta(Handler("mdir") + Atom("ilst", Atom("----", Atom("mean", Be32(0) + "com.apple.iTunes") +
                                                              Atom("name", Be32(0) + "iTunSMPB") + Data(1, "gap")))),
         "com.apple.iTunes.iTunSMPB", "gap"},
        {"second data ignored", Meta(Handler("mdir") + Atom("ilst", Atom("\251gen", Data(1, "Rock") + Data(1, "Pop")))),
         Cp::MovGenre, "Rock"},
        {"QuickTime keys, ISO meta",
         Meta(Handler("mdta") + Keys({Cp::MovLocation}) + Atom("ilst", KeyedItem(1, Data(1, "+48.8577+002.2950/")))),
         Cp::MovLocation, "+48.8577+002.2950/"},
        {"QuickTime keys, QuickTime meta",
         Meta(Handler("mdta") + Keys({"a", Cp::MovUserRating}) + Atom("ilst", KeyedItem(2, Data(21, "\x05"))), false),
         Cp::MovUserRating, "5"},
        {"keys without handler", Meta(Keys({"x.y"}) + Atom("ilst", KeyedItem(1, Data(1, "z")))), "x.y", "z"},
        {"keyed creation date gives year",
         Meta(Handler("mdta") + Keys({Cp::MovCreationDate}) + Atom("ilst", KeyedItem(1, Data(1, "2024-02-29T10:00:00Z")))),
         Cp::MovYear, "2024"},
    };
}

TEST(MovMetadata, StoresEachLayoutUnderItsKey)
{
    for (const StoredCase& c : StoredCases()) {
        SCOPED_TRACE(c.name);
        IProperties bag;
        ASSERT_EQ(ReadUdta(c.udta, bag), RESULT_OK);
        EXPECT_EQ(Stored(bag, c.key.c_str()), c.expected);
    }
}

TEST(MovMetadata, RefusesANullBag)
{
    const std::string udta = TextAtom("\251nam", "x");
    EXPECT_EQ(ReadUserData(SpanBox(udta, TypeOf("udta")), nullptr), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(ReadMetadata(SpanBox(Meta(Handler("mdir")), TypeOf("meta")), nullptr), RESULT_ARGUMENT_NULL);
}

// iconv's Macintosh table is the oracle for the high bytes. Two differ
// between tables and are left out: 0xF0, the private-use Apple logo, and
// 0xC6, Apple's INCREMENT (U+2206) where glibc keeps the older GREEK
// CAPITAL DELTA.
TEST(MovMetadata, MacRomanAgreesWithIconv)
{
    std::string bytes;
    for (int c = 0x20; c < 0x100; ++c)
        if (c != 0x7F && c != 0xF0 && c != 0xC6)
            bytes += char(c);
    TempDir dir;
    ASSERT_TRUE(WriteFile(dir.File("roman.txt"), bytes));
    const auto expected = RunCommand("iconv -f MACINTOSH -t UTF-8 '" + dir.File("roman.txt") + "' 2>/dev/null");
    if (!expected)
        GTEST_SKIP() << "iconv with a Macintosh table is not available";
    IProperties bag;
    ASSERT_EQ(ReadUdta(TextAtom("\251nam", bytes, 0), bag), RESULT_OK);
    EXPECT_EQ(Stored(bag, Cp::MovTitle), *expected);
}

// ffprobe's tag names and where this reader keeps the same values.
struct TagKey {
    const char* tag;
    std::string key;
};

const std::vector<TagKey>& TagKeys()
{
    static const std::vector<TagKey> keys = {
        {"title", Cp::MovTitle},
        {"artist", Cp::MovArtist},
        {"album", Cp::MovAlbum},
        {"comment", Cp::MovComment},
        {"copyright", Cp::MovCopyright},
        {"date", Cp::MovCreationDate},
        {"genre", Cp::MovGenre},
        {"encoder", Cp::MovSoftware},
        {"description", Cp::MovDescription},
        {"composer", std::string(MovUnknownAtomPrefix) + Copyright + "wrt"},
        {"album_artist", std::string(MovUnknownAtomPrefix) + "aART"},
        {"track", std::string(MovUnknownAtomPrefix) + "trkn"},
    };
    return keys;
}

// The (name, value) pairs of ffprobe's format tags.
std::vector<std::pair<std::string, std::string>> FormatTags(const std::string& json)
{
    std::vector<std::pair<std::string, std::string>> tags;
    const size_t begin = json.find("\"tags\": {");
    if (begin == std::string::npos)
        return tags;
    const std::string block = json.substr(begin, json.find('}', begin) - begin);
    static const std::regex pair("\"([^\"]+)\": \"([^\"]*)\"");
    for (std::sregex_iterator it(block.begin(), block.end(), pair), end; it != end; ++it)
        tags.emplace_back((*it)[1], (*it)[2]);
    return tags;
}

// Tags ffprobe takes from the file type and movie header, not metadata.
bool IsHeaderTag(const std::string& name)
{
    return name == "major_brand" || name == "minor_version" || name == "compatible_brands" ||
           name == "creation_time";
}

// Compares the movie's metadata with ffprobe's format tags; the count of
// tags compared.
int CompareWithFfprobe(const std::string& file, const std::string& path, bool keyed)
{
    MovBox udta;
    EXPECT_TRUE(FindPath(file, "moov/udta", udta));
    IProperties bag;
    EXPECT_EQ(ReadUserData(udta, &bag), RESULT_OK);
    int compared = 0;
    for (const auto& [tag, value] : FormatTags(Probe(path, "-show_format"))) {
        if (IsHeaderTag(tag))
            continue;
        std::string key = keyed ? tag : std::string();
        for (const TagKey& known : TagKeys()) {
            if (!keyed && tag == known.tag)
                key = known.key;
        }
        EXPECT_FALSE(key.empty()) << "no key for ffprobe's tag " << tag;
        EXPECT_EQ(Stored(bag, key.c_str()), value) << tag;
        ++compared;
    }
    return compared;
}

const char* const NonAsciiTags =
    "-metadata 'title=T\xC3\xABst title \xE2\x9C\x93' -metadata 'artist=\xC3\x84rtist' "
    "-metadata 'comment=C\xC3\xB6mment' -metadata 'album=Alb\xC3\xBCm' -metadata date=2021-05-06 "
    "-metadata 'copyright=\xC2\xA9 Someone' -metadata 'genre=Kl\xC3\xA4nge' ";

struct WriterCase {
    const char* name;
    const char* options;
    bool keyed; // QuickTime 'keys': ffprobe's tag names are the keys
};

TEST(MovMetadata, FfmpegFilesAgreeWithFfprobe)
{
    if (!HasFfmpeg())
        GTEST_SKIP() << "ffmpeg/ffprobe not available";
    const std::string tags = std::string(NonAsciiTags) +
                             "-metadata 'composer=J.S. Bach' -metadata 'album_artist=\xE6\x97\xA5\xE6\x9C\xAC' "
                             "-metadata track=3/12 ";
    const WriterCase writers[] = {
        {"mov user data", "-f mov", false},
        {"mp4 item list", "-f mp4", false},
        {"ipod item list", "-f ipod", false},
        {"mov keys", "-movflags use_metadata_tags -f mov", true},
        {"mp4 keys", "-movflags use_metadata_tags -f mp4", true},
    };
    TempDir dir;
    int index = 0;
    for (const WriterCase& writer : writers) {
        SCOPED_TRACE(writer.name);
        const std::string name = "meta" + std::to_string(index++) + ".bin";
        const std::string file =
            Encode(dir, "testsrc=d=0.2:r=25:s=64x48", "-c:v mpeg4 " + tags + writer.options, name);
        ASSERT_FALSE(file.empty());
        EXPECT_GE(CompareWithFfprobe(file, dir.File(name), writer.keyed), 8);
        if (!writer.keyed) {
            MovBox udta;
            ASSERT_TRUE(FindPath(file, "moov/udta", udta));
            IProperties bag;
            ASSERT_EQ(ReadUserData(udta, &bag), RESULT_OK);
            EXPECT_EQ(Stored(bag, Cp::MovYear), "2021");
        }
    }
}

// GStreamer's muxers write Matroska's file tags as the movie's metadata.
TEST(MovMetadata, GstreamerFilesAgreeWithFfprobe)
{
    VEK_REQUIRE_GSTREAMER();
    TempDir dir;
    const std::string source = WriterSourceMatroska(dir, NonAsciiTags);
    ASSERT_FALSE(source.empty());
    for (const char* muxer : {"qtmux", "mp4mux"}) {
        SCOPED_TRACE(muxer);
        const std::string name = std::string(muxer) + ".bin";
        const std::string file = GstMux(dir, source, muxer, name);
        ASSERT_FALSE(file.empty());
        EXPECT_GE(CompareWithFfprobe(file, dir.File(name), false), 7);
    }
}

struct HostileCase {
    const char* name;
    std::string udta;
    const char* logged;
    std::string key; // still read after the broken part
    std::string expected;
};

std::vector<HostileCase> HostileCases()
{
    const std::string good = TextAtom("\251ART", "good");
    const std::string mdta = Handler("mdta");
    return {
        {"record longer than its atom", Atom("\251nam", Be16(50) + Be16(Undetermined) + "abc") + good,
         "holds a 50-byte record", Cp::MovArtist, "good"},
        {"record header cut", Atom("\251nam", "\0") + good, "holds a 0-byte record", Cp::MovArtist, "good"},
        {"data shorter than its header", Atom("\251alb", Atom("data", "ab")) + good, "fewer than its 8-byte header",
         Cp::MovArtist, "good"},
        {"item without data", Meta(Handler("mdir") + Atom("ilst", Atom("\251alb", Atom("free", "")))) + good,
         "holds no readable 'data'", Cp::MovArtist, "good"},
        {"data size lies", Meta(Handler("mdir") + Atom("ilst", Atom("\251alb", Be32(400) + "data"))) + good,
         "holds no readable 'data'", Cp::MovArtist, "good"},
        {"asset too short", Atom("titl", "abc") + good, "shorter than its 6-byte header", Cp::MovArtist, "good"},
        {"key index 0",
         Meta(mdta + Keys({"k"}) + Atom("ilst", KeyedItem(0, Data(1, "x")) + KeyedItem(1, Data(1, "y")))),
         "refers to key 0, but 'keys' has 1", "k", "y"},
        {"key index past the keys",
         Meta(mdta + Keys({"k"}) + Atom("ilst", KeyedItem(2, Data(1, "x")) + KeyedItem(1, Data(1, "y")))),
         "refers to key 2, but 'keys' has 1", "k", "y"},
        {"key entry size lies",
         Meta(mdta + Atom("keys", Be32(0) + Be32(2) + Be32(9) + "mdtak" + Be32(1000) + "mdta") +
              Atom("ilst", KeyedItem(2, Data(1, "x")) + KeyedItem(1, Data(1, "y")))),
         "entry 2 of 2 has size 1000", "k", "y"},
        {"key count past the box",
         Meta(mdta + Atom("keys", Be32(0) + Be32(0xFFFFFFFF) + Be32(9) + "mdtak") + Atom("ilst", KeyedItem(1, Data(1, "y")))),
         "entry 2 of 4294967295", "k", "y"},
        {"key entry smaller than its header",
         Meta(mdta + Atom("keys", Be32(0) + Be32(1) + Be32(4) + "mdta") + Atom("ilst", KeyedItem(1, Data(1, "y")))) + good,
         "entry 1 of 1 has size 4", Cp::MovArtist, "good"},
        {"key name with a zero byte",
         Meta(mdta + Keys({std::string("a\0b", 3)}) + Atom("ilst", KeyedItem(1, Data(1, "y")))) + good,
         "cannot name a property", Cp::MovArtist, "good"},
        {"key of another namespace", Meta(mdta + Keys({"k"}, "udta") + Atom("ilst", KeyedItem(1, Data(1, "y")))) + good,
         "('udta' name of 1 bytes) cannot name a property", Cp::MovArtist, "good"},
        {"key name not UTF-8", Meta(mdta + Keys({"\xFF\xFE"}) + Atom("ilst", KeyedItem(1, Data(1, "y")))) + good,
         "key refused", Cp::MovArtist, "good"},
        {"free-form item without name",
         Meta(Handler("mdir") + Atom("ilst", Atom("----", Atom("mean", Be32(0) + "m") + Data(1, "x")))) + good,
         "no usable 'mean'/'name'", Cp::MovArtist, "good"},
        {"broken atom header ends the walk", good + Be32(0xFFFF) + "\251nam" + "abcd", "'udta' walk stopped",
         Cp::MovArtist, "good"},
        {"broken item header ends the list",
         Meta(Handler("mdir") + Atom("ilst", Atom("\251ART", Data(1, "good")) + Be32(3) + "\251nam")),
         "'ilst' walk stopped", Cp::MovArtist, "good"},
        {"broken meta child keeps what came before",
         Meta(Handler("mdir") + Atom("ilst", Atom("\251ART", Data(1, "good"))) + Be32(99) + "free"),
         "'meta' walk stopped", Cp::MovArtist, "good"},
        {"other handler", Meta(Handler("ID32") + Atom("ilst", Atom("\251nam", Data(1, "x")))) + good,
         "handler 'ID32' is not read", Cp::MovArtist, "good"},
    };
}

TEST(MovMetadata, SkipsBrokenAtomsWithALogLine)
{
    for (const HostileCase& c : HostileCases()) {
        SCOPED_TRACE(c.name);
        LogCapture log(3);
        IProperties bag;
        ASSERT_EQ(ReadUdta(c.udta, bag), RESULT_OK);
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        EXPECT_EQ(Stored(bag, c.key.c_str()), c.expected);
    }
}

// Atoms nested far deeper than any writer nests them are not followed:
// the walk has a fixed depth, so the stack cannot grow with the input.
TEST(MovMetadata, DeepNestingIsNotFollowed)
{
    std::string nested = TextAtom("\251nam", "deep");
    for (int level = 0; level < 2000; ++level)
        nested = level % 2 ? Meta(Handler("mdir") + Atom("ilst", Atom("udta", nested))) : Atom("udta", nested);
    IProperties bag;
    ASSERT_EQ(ReadUdta(nested + TextAtom("\251ART", "top"), bag), RESULT_OK);
    EXPECT_EQ(Stored(bag, Cp::MovTitle), "<absent>");
    EXPECT_EQ(Stored(bag, Cp::MovArtist), "top");
}

TEST(MovMetadata, SurvivesEveryAllocationFailure)
{
    VEK_REQUIRE_FAULT_INJECTION();
#if VEK_FAULT_INJECTION
    std::string udta;
    for (const StoredCase& c : StoredCases())
        udta += c.udta;
    WalkAllocationFailures("udta", [&] {
        IProperties bag;
        const int result = ReadUdta(udta, bag);
        if (result == RESULT_OUT_OF_MEMORY)
            return true;
        return result == RESULT_OK && Stored(bag, Cp::MovUserRating) == "5" && Stored(bag, Cp::MovTitle) != "<absent>";
    });
#endif
}

} // namespace
