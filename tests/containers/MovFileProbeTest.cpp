// Which family a file's first box claims, and the scores the two readers give it.
#include <gtest/gtest.h>

#include <vek/Vek.h>

#include <string>

using namespace Quorvex::Vek;

namespace {

std::string Box(uint32_t size, const char* type, const std::string& payload = "")
{
    std::string out;
    for (int shift = 24; shift >= 0; shift -= 8)
        out += char(uint8_t(size >> shift));
    return out + type + payload;
}

TEST(MovFileProbe, TellsTheFamiliesApart)
{
    struct Case {
        const char* name;
        std::string file;
        MovFamily family;
    };
    const std::string brandQt = std::string("qt  ") + std::string(4, '\0');
    const std::string brandIso = std::string("isom") + std::string(4, '\0') + "isomiso2";
    const Case cases[] = {
        {"QuickTime brand", Box(16, "ftyp", brandQt) + Box(8, "free"), MovFamily::QuickTime},
        {"ISO brand", Box(24, "ftyp", brandIso), MovFamily::Iso},
        {"old QuickTime, moov first", Box(8, "moov"), MovFamily::QuickTime},
        {"old QuickTime, wide then mdat", Box(8, "wide") + Box(8, "mdat"), MovFamily::QuickTime},
        {"recording cut inside mdat", Box(4000, "mdat", "xxxx"), MovFamily::QuickTime},
        {"ISO segment", Box(8, "styp") + Box(8, "moof"), MovFamily::Iso},
        {"ftyp larger than the file", Box(64, "ftyp", brandIso), MovFamily::None},
        {"ftyp without a brand", Box(8, "ftyp"), MovFamily::None},
        {"moov larger than the file", Box(64, "moov"), MovFamily::None},
        {"size below the header", Box(4, "moov") + "abcd", MovFamily::None},
        {"RIFF file", std::string("RIFF") + std::string(4, '\0') + "WAVE", MovFamily::None},
        {"too short", "abc", MovFamily::None},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RObject<CMemoryStream> stream(
            new CMemoryStream(int32_t(c.file.size()), reinterpret_cast<const unsigned char*>(c.file.data())));
        EXPECT_EQ(MovFileProbe::Probe(stream), c.family);
        RObject<CMovContainerReader> mov(new CMovContainerReader());
        RObject<CMpeg4ContainerReader> mp4(new CMpeg4ContainerReader());
        const int movScore = mov->Validate(stream);
        const int mp4Score = mp4->Validate(stream);
        if (c.family == MovFamily::None) {
            EXPECT_EQ(movScore, 0);
            EXPECT_EQ(mp4Score, 0);
        } else {
            // Each family's own reader wins; the other still reads it.
            EXPECT_EQ(movScore > mp4Score, c.family == MovFamily::QuickTime);
            EXPECT_GT(std::min(movScore, mp4Score), 0);
        }
    }
}

} // namespace
