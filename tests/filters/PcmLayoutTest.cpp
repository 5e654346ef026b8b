#include <gtest/gtest.h>

#include <string>

#include <support/LogCapture.h>
#include <vek/core/FourCCText.h>
#include <vek/core/Result.h>
#include <vek/filters/audio/PcmLayout.h>
#include <vek/media/AudioFormat.h>

using namespace Quorvex::Vek;

namespace {

TEST(PcmLayout, AliasesResolveToTheCodeThatNamesTheLayout)
{
    const std::pair<uint32_t, uint32_t> aliases[] = {
        {Four("s16l"), AudioFormat::Int16L},
        {AudioFormat::MicrosoftG711a, AudioFormat::aLaw},
        {0x54530007, AudioFormat::muLaw}, // the WAVE alias tag, then its parent tag, then 'ulaw'
    };
    for (auto [alias, format] : aliases) {
        PcmLayout layout;
        ASSERT_EQ(PcmLayout::FromFormat(alias, layout), RESULT_OK) << FourCCText(alias).c_str();
        EXPECT_EQ(layout.format, format) << FourCCText(alias).c_str();
    }
}

TEST(PcmLayout, RefusesCodesThatAreNoLayoutWithAFormatErrorAndALogLine)
{
    const std::pair<uint32_t, const char*> refused[] = {
        {AudioFormat::LPCM, "'lpcm' names no sample layout"},
        {AudioFormat::BlurayLPCM, "'bpcm'"},
        {Four("zzzz"), "'zzzz'"},
        {0, "0x00000000"},
    };
    for (auto [format, logged] : refused) {
        VekTest::LogCapture log(1);
        PcmLayout layout;
        layout.format = AudioFormat::Int16L;
        EXPECT_EQ(PcmLayout::FromFormat(format, layout), RESULT_FORMAT_ERROR) << logged;
        EXPECT_EQ(layout.format, uint32_t(AudioFormat::Int16L)) << "the output is untouched";
        EXPECT_EQ(log.Count(logged), 1u) << log.Text();
    }
}

// Each layout agrees with its display name in the format table, which was
// written apart from the layouts ("PCM, 24-Bit Big-Endian Signed Integer").
TEST(PcmLayout, EveryLayoutAgreesWithItsNameInTheFormatTable)
{
    ASSERT_EQ(PcmLayout::GetFormatCount(), 22u);
    for (size_t i = 0; i < PcmLayout::GetFormatCount(); ++i) {
        const std::string name = AudioFormat::GetName(PcmLayout::GetFormats()[i]);
        const PcmLayout* layout = PcmLayout::Find(PcmLayout::GetFormats()[i]);
        ASSERT_TRUE(layout && layout->format == PcmLayout::GetFormats()[i]) << name;
        const auto says = [&](const std::string& words) { return name.find(words) != std::string::npos; };
        EXPECT_EQ(layout->bytes, (layout->bits + 7) / 8) << name;
        if (layout->IsCompanded()) {
            EXPECT_EQ(layout->coding == PcmLayout::Coding::ALaw, name == "A-law") << name;
            continue;
        }
        EXPECT_TRUE(says(std::to_string(layout->bits) + "-Bit")) << name;
        EXPECT_EQ(says("Big-Endian"), layout->order == ByteOrder::BigEndian) << name;
        EXPECT_EQ(says("Unsigned"), layout->coding == PcmLayout::Coding::Unsigned) << name;
        EXPECT_EQ(says("Floating"), layout->coding == PcmLayout::Coding::Float) << name;
        EXPECT_EQ(says("Signed"), layout->coding == PcmLayout::Coding::Signed) << name;
    }
}

} // namespace
