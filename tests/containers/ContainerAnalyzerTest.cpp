#include <gtest/gtest.h>

#include <vek/Vek.h>

#include "support/AudioFileBuilder.h"
#include "support/TestSupport.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

// The inventory is the process's: the label is the one the inventory test
// expects, whichever test registers first.
void RegisterWaveReader()
{
    static const int registered = ContainerReaderInventory::AddWavContainerReader("tests");
    ASSERT_EQ(registered, RESULT_OK);
}

TEST(ContainerAnalyzer, AnalyzesAFileInOneCallOrSaysWhyNot)
{
    RegisterWaveReader();
    TempDir folder;
    // 2.5 seconds of 8 kHz mono 16-bit: three samples.
    const Bytes wave = Riff({{"fmt ", WaveFormat(1, 1, 8000, 16)}, {"data", Pattern(40000)}});
    ASSERT_TRUE(WriteFile(folder.File("take.wav"), std::string(wave.begin(), wave.end())));
    ASSERT_TRUE(WriteFile(folder.File("notes.txt"), "not a container"));

    int result = RESULT_ERROR;
    ContainerAnalyzer analyzer = ContainerAnalyzer::Analyze(folder.File("take.wav").c_str(), &result);
    ASSERT_EQ(result, RESULT_OK);
    ASSERT_FALSE(analyzer.IsNull());
    EXPECT_STREQ(analyzer.GetFormatName(), "WAV");
    EXPECT_EQ(analyzer.GetState(), uint32_t(CIndexer::Complete));
    EXPECT_DOUBLE_EQ(analyzer.GetDuration(), 2.5);
    EXPECT_EQ(analyzer.GetAudioSampleCount(0), 3);
    EXPECT_EQ(analyzer.GetAudioSampleCount(1), 0);
    EXPECT_EQ(analyzer.GetVideoSampleCount(0), 0);
    EXPECT_EQ(analyzer.GetReader().GetAudioMediaCount(), 1);

    EXPECT_TRUE(ContainerAnalyzer::Analyze(folder.File("notes.txt").c_str(), &result).IsNull());
    EXPECT_EQ(result, RESULT_NULL_POINTER);
    const Bytes noFormat = Riff({{"data", Pattern(16)}});
    ASSERT_TRUE(WriteFile(folder.File("broken.wav"), std::string(noFormat.begin(), noFormat.end())));
    EXPECT_TRUE(ContainerAnalyzer::Analyze(folder.File("broken.wav").c_str(), &result).IsNull());
    EXPECT_EQ(result, RESULT_ERROR);
}

} // namespace
