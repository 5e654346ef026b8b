#include <gtest/gtest.h>

#include <string>

#include <support/LogCapture.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/PcmLayout.h>
#include <vek/media/AudioFormat.h>

using namespace Quorvex::Vek;

namespace {

struct AliasCase {
    const char* name;
    uint32_t alias;
    uint32_t layout;
};

const AliasCase Aliases[] = {
    {"s16l", Four("s16l"), AudioFormat::Int16L},
    {"s24b", Four("s24b"), AudioFormat::Int24B},
    {"f32l", Four("f32l"), AudioFormat::Float32L},
    {"f64b", Four("f64b"), AudioFormat::Float64B},
    {"u8", Four("u8  "), AudioFormat::UInt8},
    {"s8", Four("s8  "), AudioFormat::Int8},
    {"mlaw", Four("mlaw"), AudioFormat::muLaw},
    {"WAVE A-law tag", AudioFormat::MicrosoftG711a, AudioFormat::aLaw},
    {"WAVE mu-law alias tag", 0x54530007, AudioFormat::muLaw},
};

TEST(PcmLayout, AliasesResolveToTheCodeThatNamesTheLayout)
{
    for (const AliasCase& c : Aliases) {
        SCOPED_TRACE(c.name);
        PcmLayout layout;
        ASSERT_EQ(PcmLayout::FromFormat(c.alias, layout), RESULT_OK);
        EXPECT_EQ(layout.format, c.layout);
    }
}

struct RefusedCase {
    const char* name;
    uint32_t format;
    const char* logged;
};

const RefusedCase Refused[] = {
    {"the family alone", AudioFormat::LPCM, "'lpcm' names no sample layout"},
    {"Blu-ray packing", AudioFormat::BlurayLPCM, "'bpcm'"},
    {"fixed point", AudioFormat::FixedFloat32, "'fi32'"},
    {"a codec", AudioFormat::AAC, "'mp4a'"},
    {"unknown", Four("zzzz"), "'zzzz'"},
    {"zero", 0, "0x00000000"},
};

TEST(PcmLayout, RefusesCodesThatAreNoLayoutWithAFormatErrorAndALogLine)
{
    for (const RefusedCase& c : Refused) {
        SCOPED_TRACE(c.name);
        VekTest::LogCapture log(1);
        PcmLayout layout;
        layout.format = AudioFormat::Int16L;
        EXPECT_EQ(PcmLayout::FromFormat(c.format, layout), RESULT_FORMAT_ERROR);
        EXPECT_EQ(layout.format, uint32_t(AudioFormat::Int16L)) << "the output is untouched";
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
    }
}

// Each layout agrees with its display name in the format table, which was
// written apart from the layouts ("PCM, 24-Bit Big-Endian Signed Integer").
TEST(PcmLayout, EveryLayoutAgreesWithItsNameInTheFormatTable)
{
    ASSERT_EQ(PcmLayout::GetFormatCount(), 22u);
    for (size_t i = 0; i < PcmLayout::GetFormatCount(); ++i) {
        const uint32_t format = PcmLayout::GetFormats()[i];
        const std::string name = AudioFormat::GetName(format);
        SCOPED_TRACE(name);
        PcmLayout layout;
        ASSERT_EQ(PcmLayout::FromFormat(format, layout), RESULT_OK);
        EXPECT_EQ(layout.format, format);
        EXPECT_EQ(AudioFormat::GetCanonicalFormat(format), uint32_t(AudioFormat::LPCM));
        EXPECT_GE(layout.bytes * 8, layout.bits);
        EXPECT_LE(layout.bytes * 8, layout.bits + 4) << "only 20-bit samples carry padding";
        if (layout.IsCompanded()) {
            EXPECT_EQ(layout.bytes, 1);
            EXPECT_EQ(layout.coding == PcmLayout::Coding::ALaw, name == "A-law");
            continue;
        }
        EXPECT_NE(name.find(std::to_string(layout.bits) + "-Bit"), std::string::npos);
        EXPECT_EQ(name.find("Big-Endian") != std::string::npos, layout.order == ByteOrder::BigEndian);
        EXPECT_EQ(name.find("Unsigned") != std::string::npos, layout.coding == PcmLayout::Coding::Unsigned);
        EXPECT_EQ(name.find("Floating") != std::string::npos, layout.coding == PcmLayout::Coding::Float);
        EXPECT_EQ(name.find("Signed") != std::string::npos, layout.coding == PcmLayout::Coding::Signed);
    }
}

} // namespace
