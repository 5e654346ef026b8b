#include <gtest/gtest.h>

#include <vek/Vek.h>

#include "support/AllocationWalk.h"
#include "support/LogCapture.h"
#include <cstring>
#include <string>

#include "support/TestSupport.h"

using namespace Quorvex::Vek;

namespace {

// A reader with no media: every default of the base shows through it.
class BareReader : public CContainerReader {
public:
    BareReader() : CContainerReader(Four("bare")) {}
};

TEST(ContainerReader, DefaultsOfTheBase)
{
    RObject<BareReader> reader(new BareReader());
    CVideoSample* video = nullptr;
    CAudioSample* audio = nullptr;
    CSubtitleSample* subtitle = nullptr;
    CMemoryDataReference* data = nullptr;
    EXPECT_EQ(reader->ReadVideoSample(0, video), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(reader->ReadVideoSample(video), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(reader->ReadVideoSample(1, video), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(reader->ReadAudioSample(0, audio), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(reader->ReadSubtitleSample(0, subtitle), RESULT_NOT_SUPPORTED);
    EXPECT_EQ(reader->ReadAudioData(0, nullptr, data), RESULT_NOT_IMPLEMENTED);
    EXPECT_EQ(reader->ReadVideoMetadata(0, 0, nullptr, data), RESULT_NOT_IMPLEMENTED);
    EXPECT_EQ(reader->Validate(nullptr), 0);
    EXPECT_EQ(reader->GetAudioFormats(), nullptr);
    EXPECT_TRUE(reader->IsAudioReady(0));
}

TEST(ContainerReader, WaitForMediaWithoutTracksIsFalseAfterOneWait)
{
    RObject<BareReader> reader(new BareReader());
    EXPECT_FALSE(reader->WaitForMedia(10));
}

TEST(ContainerReader, ReadTimeoutPropertyIsTheReadersOwn)
{
    RObject<BareReader> reader(new BareReader());
    const int32_t timeout = 2500;
    const unsigned char two[2] = {1, 2};
    EXPECT_EQ(reader->SetProperty(ContainerReaderProperty::ReadTimeout, 2, two), RESULT_ERROR);
    EXPECT_EQ(reader->SetProperty(ContainerReaderProperty::ReadTimeout, 4,
                                  reinterpret_cast<const unsigned char*>(&timeout)),
              RESULT_OK);
    EXPECT_EQ(reader->GetReadTimeout(), 2500);
    int32_t back = 0;
    EXPECT_EQ(reader->GetProperty(ContainerReaderProperty::ReadTimeout, 4, reinterpret_cast<unsigned char*>(&back)), 4);
    EXPECT_EQ(back, 2500);
    EXPECT_EQ(reader->GetPropertyCount(), 0) << "the timeout is not a bag entry";
    EXPECT_EQ(reader->SetProperty("timecode", 11, reinterpret_cast<const unsigned char*>("01:00:00:00")), RESULT_OK);
    RObject<CString> text(reader->GetPropertyValue("timecode"));
    EXPECT_STREQ(text->GetChars(), "01:00:00:00");
    EXPECT_STREQ(reader->GetPropertyDescription("timecode"), "Starting Timecode");
}

TEST(ContainerReader, ReadDataFetchesTheRangeAndRefusesOneBeyondTheEnd)
{
    const unsigned char bytes[] = "0123456789";
    RObject<CMemoryStream> stream(new CMemoryStream(10, bytes));
    RObject<CContainerDataReference> range(new CContainerDataReference(3, 4));
    CByteArray* fetched = nullptr;
    ASSERT_EQ(CContainerReader::ReadData(stream, range, fetched), RESULT_OK);
    RObject<CByteArray> data(fetched);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data->GetData()), 4), "3456");

    RObject<CContainerDataReference> beyond(new CContainerDataReference(8, 4));
    CMemoryDataReference* memory = nullptr;
    EXPECT_EQ(CContainerReader::ReadData(stream, beyond, memory), RESULT_END_OF_STREAM);
    EXPECT_EQ(memory, nullptr);
}

// A reader whose audio sample points at bytes 2..5 of its stream.
class RangeReader : public CContainerReader {
public:
    using CContainerReader::ReadAudioData;
    explicit RangeReader(CStream* stream) : CContainerReader(Four("rnge")), m_stream(RObject<CStream>::FromObject(stream)) {}
    int ReadAudioData(int32_t, CContainerDataReference* range, CMemoryDataReference*& data) override
    {
        return ReadData(m_stream, range, data);
    }

private:
    RObject<CStream> m_stream;
};

TEST(ContainerReader, ResolvingASampleReplacesOnlyContainerRanges)
{
    const unsigned char bytes[] = "abcdefgh";
    RObject<CMemoryStream> stream(new CMemoryStream(8, bytes));
    RObject<RangeReader> reader(new RangeReader(stream));
    RObject<CAudioSample> sample(CAudioSample::Create());
    RObject<CContainerDataReference> range(new CContainerDataReference(2, 4));
    sample->SetDataReference(range);
    ASSERT_EQ(reader->ReadAudioData(0, sample.Get()), RESULT_OK);
    CMediaSampleDataReference* resolved = sample->GetDataReference();
    ASSERT_TRUE(resolved->IsType(CMemoryDataReference::Type));
    CByteArray* buffer = static_cast<CMemoryDataReference*>(resolved)->GetBuffer();
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer->GetData()), 4), "cdef");
    // Already in memory: left as it is.
    EXPECT_EQ(reader->ReadAudioData(0, sample.Get()), RESULT_OK);
    EXPECT_EQ(sample->GetDataReference(), resolved);
}

// Accepts only files that begin with "PROBE-ME".
class SignatureReader : public CContainerReader {
public:
    SignatureReader() : CContainerReader(Four("sign")) {}
    int Validate(CStream* stream) override
    {
        unsigned char head[8] = {};
        return stream->Read(head, 8) == 8 && std::memcmp(head, "PROBE-ME", 8) == 0 ? 128 : 0;
    }
};

int RegisterSignatureReader()
{
    static const int registered = CContainerReaderInventory::AddFactory(
        RObject<CInstanceFactory<SignatureReader>>(CInstanceFactory<SignatureReader>::Create(Four("sign"))));
    return registered;
}

TEST(ContainerReader, OpeningByPathProbesTheFileAndKeepsTheFlags)
{
    ASSERT_EQ(RegisterSignatureReader(), RESULT_OK);
    VekTest::TempDir folder;
    ASSERT_TRUE(VekTest::WriteFile(folder.File("match.bin"), "PROBE-ME and more"));
    ASSERT_TRUE(VekTest::WriteFile(folder.File("other.bin"), "something else"));

    ContainerReader reader = ContainerReader::Create(folder.File("match.bin").c_str(), 0x5A);
    ASSERT_FALSE(reader.IsNull());
    EXPECT_TRUE(reader.ToObject()->IsType(Four("sign")));
    EXPECT_EQ(reader.ToReader()->GetFlags(), 0x5Au);
    EXPECT_STREQ(reader.GetContext().GetCurrentFileName().GetChars(), "match.bin");

    VekTest::LogCapture log(1);
    EXPECT_TRUE(ContainerReader::Create(folder.File("other.bin").c_str()).IsNull());
    EXPECT_EQ(log.Count("no registered reader accepts 'other.bin'"), 1u);
    EXPECT_TRUE(ContainerReader::Create(folder.File("missing.bin").c_str()).IsNull());
}

#if VEK_FAULT_INJECTION
TEST(AllocationFailure, ChoosingAReaderByProbing)
{
    ASSERT_EQ(RegisterSignatureReader(), RESULT_OK);
    const int walked = VekTest::WalkAllocationFailures("probe a stream with every registered reader", [] {
        const unsigned char bytes[] = "PROBE-ME";
        RObject<CMemoryStream> stream(new CMemoryStream(8, bytes));
        if (!stream)
            return true;
        RObject<CContainerReader> reader(CContainerReaderInventory::Create(stream));
        return !reader || reader->IsType(Four("sign"));
    });
    EXPECT_GE(walked, 2) << "the factory snapshot and the reader";
}

// A kind of its own, so that its inventory starts empty in this test.
class WalkKind : public CObject {
public:
    using ComponentKind = WalkKind;
    WalkKind() : CObject(Four("walk")) {}
};

} // namespace

VEK_DECLARE_COMPONENT_INVENTORY(, WalkKind);
VEK_DEFINE_COMPONENT_INVENTORY(WalkKind);

namespace {

TEST(AllocationFailure, RegistrationLeavesTheInventoryAsItWasWhenMemoryRunsOut)
{
    using Inventory = CComponentInventory<CComponentFactory<WalkKind>>;
    for (int n = 1; n <= 64; ++n) {
        RObject<CInstanceFactory<WalkKind>> factory(CInstanceFactory<WalkKind>::Create(uint32_t(n)));
        ASSERT_TRUE(factory);
        RObject<CList<CComponentFactory<WalkKind>>> before(Inventory::GetFactories());
        FaultInjection::FailAllocation(1);
        const int result = Inventory::AddFactory(factory);
        FaultInjection::Disarm();
        const bool failed = FaultInjection::HasFailed();
        FaultInjection::FailAllocation(0);
        RObject<CList<CComponentFactory<WalkKind>>> after(Inventory::GetFactories());
        if (failed) {
            EXPECT_EQ(result, RESULT_OUT_OF_MEMORY) << "registration " << n;
            EXPECT_EQ(after->GetCount(), before->GetCount()) << "registration " << n;
            EXPECT_EQ(Inventory::GetFactoryByID(uint32_t(n)), nullptr);
            ASSERT_EQ(Inventory::AddFactory(factory), RESULT_OK);
        } else {
            EXPECT_EQ(result, RESULT_OK);
        }
        EXPECT_EQ(Inventory::GetFactoryByID(uint32_t(n)), factory.Get());
    }
}

#endif

// A reader of files that start "PRBE", with the block size a case asks
// for. It notes the stream it was chosen on.
class HandOverReader : public CContainerReader {
public:
    static inline int32_t blockSize = 0;
    static inline CStream* probed = nullptr;

    HandOverReader() : CContainerReader(Four("hand")) { SetStreamBlockSize(blockSize); }
    int Validate(CStream* stream) override
    {
        unsigned char head[4] = {};
        if (stream->Read(head, 4) != 4 || std::memcmp(head, "PRBE", 4) != 0)
            return 0;
        probed = stream;
        return 200;
    }
};

class HandOverFactory : public CComponentFactory<CContainerReader> {
public:
    HandOverFactory() : CComponentFactory<CContainerReader>(Four("hand")) {}
    CContainerReader* CreateInstance() override { return new HandOverReader(); }
};

std::string ReadAll(CStream* stream)
{
    std::string bytes;
    unsigned char piece[64];
    int got;
    while ((got = stream->Read(piece, sizeof piece)) > 0)
        bytes.append(reinterpret_cast<const char*>(piece), size_t(got));
    return bytes;
}

// A reader made by Create reopens the file it was chosen on; the stream of
// the probe is handed over instead only where it is what OpenStream would
// open: the same file, opened the same way, and only once.
TEST(ContainerReader, OpenStreamHandsOverTheProbedStreamOnlyWhereItIsTheSame)
{
    static bool registered = [] {
        RObject<HandOverFactory> factory(new HandOverFactory());
        return CContainerReaderInventory::AddFactory(factory) == RESULT_OK;
    }();
    ASSERT_TRUE(registered);
    VekTest::TempDir dir;
    const std::string first = "PRBE first file";
    const std::string second = "PRBE the second file";
    ASSERT_TRUE(VekTest::WriteFile(dir.File("first.prb"), first));
    ASSERT_TRUE(VekTest::WriteFile(dir.File("second.prb"), second));

    const struct {
        const char* name;
        int32_t blockSize;
        bool moveToSecond; // the context names another file before OpenStream
        bool handedOver;
    } cases[] = {
        {"same file, same settings", 0, false, true},
        {"a block size of its own", 4096, false, false},
        {"the context moved on", 0, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        HandOverReader::blockSize = c.blockSize;
        HandOverReader::probed = nullptr;
        RObject<CString> path(CString::Create(dir.File("first.prb").c_str()));
        RObject<CContainerReader> reader(CContainerReader::Create(path));
        ASSERT_TRUE(reader);
        ASSERT_NE(HandOverReader::probed, nullptr);
        if (c.moveToSecond) {
            RObject<CString> name(CString::Create("second.prb"));
            ASSERT_EQ(reader->GetContext()->AddFileName(name), RESULT_OK);
            ASSERT_TRUE(reader->GetContext()->MoveNextFile());
        }
        CStream* opened = nullptr;
        ASSERT_EQ(reader->OpenStream(opened), RESULT_OK);
        RObject<CStream> stream(opened);
        ASSERT_TRUE(stream);
        EXPECT_EQ(stream.Get() == HandOverReader::probed, c.handedOver);
        EXPECT_EQ(stream->IsType(CBufferedStream::Type), c.blockSize > 0);
        EXPECT_EQ(ReadAll(stream), c.moveToSecond ? second : first);

        // A second call opens anew, whatever the first did.
        CStream* again = nullptr;
        ASSERT_EQ(reader->OpenStream(again), RESULT_OK);
        RObject<CStream> other(again);
        EXPECT_NE(other.Get(), stream.Get());
        EXPECT_EQ(ReadAll(other), c.moveToSecond ? second : first);
    }
}

} // namespace
