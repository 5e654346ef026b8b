#include "AudioReaderHarness.h"

#include "RawAudioFrames.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

// The inventory is the process's: register the three readers once.
void RegisterAudioReaders()
{
    static const bool registered = [] {
        return ContainerReaderInventory::AddWavContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddWav64ContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddAiffContainerReader(nullptr) == RESULT_OK &&
               ContainerReaderInventory::AddAacContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddAc3ContainerReader("tests") == RESULT_OK &&
               ContainerReaderInventory::AddMpegAudioContainerReader("tests") == RESULT_OK;
    }();
    ASSERT_TRUE(registered);
}

CContainerReader* Probe(const Bytes& file)
{
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    return CContainerReaderInventory::Create(stream);
}

TEST(ContainerReaderInventory, ProbingChoosesTheReaderOfEachAudioFormat)
{
    RegisterAudioReaders();
    const Bytes pcm = Pattern(40);
    const Bytes fmt = WaveFormat(1, 1, 8000, 16);
    const Bytes comm = AiffCommon(1, 20, 16, 8000);
    ByteWriter mpegFormat;
    mpegFormat.U16(0x55).U16(2).U32(44100).U32(16000).U16(1).U16(0);
    const std::pair<Bytes, uint32_t> cases[] = {
        {Riff({{"fmt ", fmt}, {"data", pcm}}), CWavContainerReader::Type},
        {Riff({{"fmt ", fmt}, {"data", pcm}}, "RF64"), CWavContainerReader::Type},
        {Wave64({{"fmt ", fmt}, {"data", pcm}}), CWav64ContainerReader::Type},
        {Aiff({{"COMM", comm}, {"SSND", AiffSound(pcm)}}), CAiffContainerReader::Type},
        {Aiff({{"COMM", comm}, {"SSND", AiffSound(pcm)}}, "AIFC"), 0},
        {Riff({{"fmt ", fmt}}, "RIFF", "AVI "), 0},
        {Bytes{'R', 'I', 'F'}, 0},
        {Bytes(64, 0), 0},
        {Repeat(AdtsFrame(3, 2, 100), 4), CAacContainerReader::Type},
        {Repeat(Ac3Frame(), 4), CAc3ContainerReader::Type},
        {Concat({Id3v2Tag(20, 20), Repeat(Mp3Frame(), 4)}), CMpegAudioContainerReader::Type},
        // Frames inside a container belong to the container's reader.
        {Riff({{"fmt ", mpegFormat.Get()}, {"data", Repeat(Mp3Frame(), 6)}}), CWavContainerReader::Type},
        {Riff({{"fmt ", mpegFormat.Get()}, {"data", Repeat(AdtsFrame(3, 2, 100), 6)}}), CWavContainerReader::Type},
    };
    for (const auto& [file, type] : cases) {
        RObject<CContainerReader> reader(Probe(file));
        EXPECT_EQ(reader ? reader->GetType() : 0u, type) << "file of " << file.size() << " bytes";
    }
}

TEST(ContainerReaderInventory, FactoriesAreFoundByFormatAndLogTheirLabel)
{
    RegisterAudioReaders();
    LogCapture log(4);
    const std::pair<uint32_t, const char*> formats[] = {
        {ContainerFormat::WAV, "WAV"}, {ContainerFormat::WAV64, "WAV64"}, {ContainerFormat::AIFF, "AIFF"}};
    for (const auto& [id, name] : formats) {
        RObject<CContainerReader> reader(CContainerReaderInventory::Create(id));
        ASSERT_TRUE(reader) << name;
        EXPECT_STREQ(reader->GetFormatName(), name);
    }
    EXPECT_EQ(log.Count("'tests' made a reader of WAV\n"), 1u) << log.Text();
    EXPECT_EQ(log.Count("'' made a reader of AIFF\n"), 1u) << log.Text();
}

TEST(ContainerReaderInventory, ReadersOpenedThroughTheContextReadTheFile)
{
    RegisterAudioReaders();
    const Bytes file = Riff({{"fmt ", WaveFormat(1, 2, 8000, 16)}, {"data", Pattern(12000 * 4)}});
    RObject<CMemoryStream> stream(new CMemoryStream(int32_t(file.size()), file.data()));
    RObject<CString> name(CString::Create("take.wav"));
    RObject<CContainerStreamContext> context(CContainerStreamContext::Create(stream, name));
    RObject<CContainerReader> reader(CContainerReader::Create(context));
    ASSERT_TRUE(reader);
    ASSERT_EQ(reader->BeginIndex(), RESULT_OK);
    EXPECT_EQ(PacketCounts(ReadAllSamples(reader, file)), (std::vector<int32_t>{8000, 4000}));
}

} // namespace
