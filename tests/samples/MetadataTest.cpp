// Metadata: the element list and its iteration, how split and merge treat
// frame-bound and ordered elements, and both serialised forms, including
// the refusal of damaged input.
#include <vek/core/Result.h>
#include <vek/io/CBinaryReader.h>
#include <vek/io/CBinaryWriter.h>
#include <vek/io/CMemoryStream.h>
#include <vek/samples/CAncillaryMetadataElement.h>
#include <vek/samples/CInterlaceMetadataElement.h>
#include <vek/samples/CMetadata.h>
#include <vek/samples/CTimecodeMetadataElement.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/LogCapture.h"

using namespace Quorvex::Vek;

namespace {

using Bytes = std::vector<unsigned char>;

// A frame's metadata: timecode, field order, a generic element and two
// caption packets.
RObject<CMetadata> Frame(int32_t frames)
{
    RObject<CMetadata> metadata(CMetadata::Create());
    CTimeCode timecode(30000, 1001, 30, true);
    timecode.FromFrames(frames);
    const unsigned char words[] = {0x96, 0x69, 0x55};
    RObject<CMetadataElement> elements[] = {
        RObject<CMetadataElement>(CTimecodeMetadataElement::Create(timecode)),
        RObject<CMetadataElement>(CAncillaryMetadataElement::Create(9, 0x61, 0x01, words, 3)),
        RObject<CMetadataElement>(CInterlaceMetadataElement::Create(CVideoProperties::FieldOrderTopFirst)),
        RObject<CMetadataElement>(CMetadataElement::Create(Four("user"), words, 2)),
        RObject<CMetadataElement>(CAncillaryMetadataElement::Create(10, 0x61, 0x02, nullptr, 0)),
    };
    for (auto& element : elements)
        EXPECT_EQ(metadata->AddElement(element), RESULT_OK);
    metadata->SetDuration(1001);
    return metadata;
}

std::string Types(CMetadata* metadata)
{
    std::string text;
    metadata->ResetElements();
    while (metadata->MoveNextElement()) {
        const uint32_t type = metadata->GetCurrentElement()->GetType();
        for (int shift = 24; shift >= 0; shift -= 8)
            text += static_cast<char>(type >> shift);
        text += ' ';
    }
    return text;
}

Bytes ToBytes(CByteArray* array)
{
    return array ? Bytes(array->GetData(), array->GetData() + array->GetLength()) : Bytes();
}

RObject<CByteArray> FromBytes(const Bytes& bytes)
{
    return RObject<CByteArray>(CByteArray::Create(bytes.data(), static_cast<int32_t>(bytes.size())));
}

void ExpectSameContent(CMetadata* a, CMetadata* b)
{
    RObject<CByteArray> left(a->ToByteArray());
    RObject<CByteArray> right(b->ToByteArray());
    EXPECT_EQ(ToBytes(left), ToBytes(right));
}

} // namespace

TEST(Metadata, ElementsAndIteration)
{
    RObject<CMetadata> metadata(Frame(100));
    EXPECT_TRUE(metadata->IsType(Four("mfrm")));
    EXPECT_EQ(Types(metadata), "tmcd vanc intl user vanc ");
    EXPECT_FALSE(metadata->MoveNextElement());
    EXPECT_EQ(metadata->GetCurrentElement(), nullptr);
    auto* timecode = static_cast<CTimecodeMetadataElement*>(metadata->GetElement(CTimecodeMetadataElement::Type));
    ASSERT_NE(timecode, nullptr);
    EXPECT_EQ(timecode->GetTimeCode().GetTotalFrames(), 100);
    auto* packet = static_cast<CAncillaryMetadataElement*>(metadata->GetElement(CAncillaryMetadataElement::Type));
    EXPECT_EQ(packet->GetLine(), 9) << "the first of a type is found";

    EXPECT_EQ(metadata->RemoveElement(CAncillaryMetadataElement::Type), RESULT_OK);
    EXPECT_EQ(Types(metadata), "tmcd intl user ");
    EXPECT_EQ(metadata->RemoveElement(CAncillaryMetadataElement::Type), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_FALSE(metadata->ContainsElement(CAncillaryMetadataElement::Type));
    VekTest::LogCapture log(1);
    EXPECT_EQ(metadata->AddElement(nullptr), RESULT_ARGUMENT_NULL);
}

TEST(Metadata, ElementCountIsBounded)
{
    RObject<CMetadata> metadata(CMetadata::Create());
    RObject<CMetadataElement> element(CMetadataElement::Create(Four("fill"), nullptr, 0));
    for (int32_t i = 0; i < CMetadata::MaxElements; ++i)
        ASSERT_EQ(metadata->AddElement(element), RESULT_OK);
    VekTest::LogCapture log(1);
    EXPECT_EQ(metadata->AddElement(element), RESULT_ARRAY_FULL);
    RObject<CMetadata> other(Frame(1));
    EXPECT_EQ(metadata->Merge(other), RESULT_ARRAY_FULL);
    EXPECT_EQ(metadata->GetElementCount(), CMetadata::MaxElements) << "a refused merge changes nothing";
}

TEST(Metadata, ElementArgumentsAreChecked)
{
    VekTest::LogCapture log(1);
    EXPECT_EQ(CAncillaryMetadataElement::Create(1, 2, 3, nullptr, 256), nullptr);
    EXPECT_EQ(CInterlaceMetadataElement::Create(4), nullptr);
    EXPECT_EQ(CMetadataElement::Create(Four("big "), nullptr, CMetadataElement::MaxPayloadLength + 1), nullptr);
    EXPECT_EQ(CMetadataElement::Create(Four("neg "), nullptr, -1), nullptr);
}

TEST(Metadata, SplitCopiesFrameElementsAndKeepsOrderedOnesOnce)
{
    RObject<CMetadata> metadata(Frame(7));
    CMetadata* first = nullptr;
    CMetadata* second = nullptr;
    ASSERT_EQ(metadata->Split(first, second), RESULT_OK);
    RObject<CMetadata> a(first), b(second);
    EXPECT_EQ(Types(a), "tmcd vanc intl user vanc ");
    EXPECT_EQ(Types(b), "tmcd intl user ");
    EXPECT_EQ(a->GetDuration(), 501);
    EXPECT_EQ(b->GetDuration(), 500);

    // Merging the parts back gives the frame again: each packet once, in order.
    EXPECT_EQ(a->Merge(b), RESULT_OK);
    ExpectSameContent(a, metadata);
}

TEST(Metadata, MergeAppendsLaterPacketsAndKeepsFirstFrameFacts)
{
    RObject<CMetadata> earlier(Frame(1));
    RObject<CMetadata> later(Frame(2));
    const unsigned char extra[] = {1};
    RObject<CMetadataElement> newType(CMetadataElement::Create(Four("xtra"), extra, 1));
    later->AddElement(newType);
    EXPECT_EQ(earlier->Merge(later), RESULT_OK);
    EXPECT_EQ(Types(earlier), "tmcd vanc intl user vanc vanc vanc xtra ");
    auto* timecode = static_cast<CTimecodeMetadataElement*>(earlier->GetElement(CTimecodeMetadataElement::Type));
    EXPECT_EQ(timecode->GetTimeCode().GetTotalFrames(), 1);
    EXPECT_EQ(earlier->GetDuration(), 2002);
    VekTest::LogCapture log(1);
    EXPECT_EQ(earlier->Merge(nullptr), RESULT_ARGUMENT_NULL);
}

TEST(Metadata, ExtractOrdered)
{
    for (bool remove : {false, true}) {
        RObject<CMetadata> metadata(Frame(3));
        RObject<CMetadata> ordered(metadata->ExtractOrderedMetadata(remove));
        ASSERT_TRUE(ordered);
        EXPECT_EQ(Types(ordered), "vanc vanc ");
        EXPECT_EQ(Types(metadata), remove ? "tmcd intl user " : "tmcd vanc intl user vanc ");
    }
}

TEST(Metadata, AttachAndDetach)
{
    RObject<CMetadata> metadata(CMetadata::Create());
    RObject<CVideoSample> sample(CVideoSample::Create());
    RObject<CMetadata> other(CMetadata::Create());
    EXPECT_EQ(metadata->Attach(nullptr, sample), RESULT_OK);
    EXPECT_EQ(sample->GetMetadata(), metadata.Get());
    VekTest::LogCapture log(1);
    EXPECT_EQ(other->Detach(nullptr, sample), RESULT_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(metadata->Detach(nullptr, sample), RESULT_OK);
    EXPECT_EQ(sample->GetMetadata(), nullptr);
    EXPECT_EQ(metadata->Attach(nullptr, nullptr), RESULT_ARGUMENT_NULL);
}

TEST(Metadata, BothFormsRoundTrip)
{
    RObject<CMetadata> metadata(Frame(1234));
    metadata->SetHasLocalDataCopy(true);
    RObject<CByteArray> bytes(metadata->ToByteArray());
    RObject<CByteArray> atom(metadata->ToAtom());
    ASSERT_TRUE(bytes && atom);
    EXPECT_EQ(bytes->GetLength(), 4 + metadata->GetLength());
    EXPECT_EQ(atom->GetLength(), 8 + metadata->GetLength());
    // The atom's first four bytes are its own size, big-endian.
    const Bytes head = ToBytes(atom);
    EXPECT_EQ((head[0] << 24) | (head[1] << 16) | (head[2] << 8) | head[3], atom->GetLength());
    EXPECT_EQ(std::string(head.begin() + 4, head.begin() + 8), "mfrm");

    RObject<CMetadata> fromBytes(CMetadata::FromByteArray(bytes));
    RObject<CMetadata> fromAtom(CMetadata::FromAtom(atom));
    ASSERT_TRUE(fromBytes && fromAtom);
    for (CMetadata* copy : {fromBytes.Get(), fromAtom.Get()}) {
        ExpectSameContent(copy, metadata);
        EXPECT_TRUE(copy->HasLocalDataCopy());
        EXPECT_EQ(copy->GetDuration(), 1001);
        auto* timecode = static_cast<CTimecodeMetadataElement*>(copy->GetElement(CTimecodeMetadataElement::Type));
        ASSERT_NE(timecode, nullptr) << "structured elements come back as their class";
        EXPECT_TRUE(timecode->GetTimeCode().IsDropFrame());
        EXPECT_EQ(timecode->GetTimeCode().GetTotalFrames(), 1234);
        auto* packet = static_cast<CAncillaryMetadataElement*>(copy->GetElement(CAncillaryMetadataElement::Type));
        EXPECT_EQ(packet->GetSdid(), 0x01);
        EXPECT_TRUE(packet->GetData()->Equals(reinterpret_cast<const unsigned char*>("\x96\x69\x55"), 3));
    }
}

TEST(Metadata, ReadAndWriteThroughBinaryStreams)
{
    RObject<CMetadata> metadata(Frame(5));
    RObject<CMemoryStream> stream(new CMemoryStream());
    CBinaryWriter writer(stream, ByteOrder::BigEndian);
    ASSERT_EQ(metadata->Write(&writer), RESULT_OK);
    EXPECT_EQ(stream->GetPosition(), metadata->GetLength());
    stream->Seek(0, CStream::SeekOrigin::Begin);
    CBinaryReader reader(stream, ByteOrder::BigEndian);
    RObject<CMetadata> copy(CMetadata::Create());
    ASSERT_EQ(copy->Read(&reader, metadata->GetLength()), RESULT_OK);
    ExpectSameContent(copy, metadata);
    VekTest::LogCapture log(1);
    EXPECT_EQ(copy->Read(nullptr, 16), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(copy->Write(nullptr), RESULT_ARGUMENT_NULL);
}

TEST(Metadata, DamagedInputIsRefusedWithTheField)
{
    RObject<CMetadata> metadata(Frame(9));
    RObject<CByteArray> good(metadata->ToByteArray());
    const Bytes bytes = ToBytes(good);
    // Offsets in the little-endian form: magic 0, version 4, flags 6,
    // duration 8, count 16, first element at 20 (type 20, length 24).
    struct Case {
        const char* name;
        std::function<void(Bytes&)> damage;
        const char* logged;
    };
    const Case cases[] = {
        {"empty", [](Bytes& b) { b.clear(); }, "CMetadata::FromByteArray: length 0 is shorter"},
        {"magic", [](Bytes& b) { b[0] = 'x'; }, "is not an 'mfrm' record"},
        {"header cut", [](Bytes& b) { b.resize(12); }, "CMetadata::Read: length 8 is shorter than the 16-byte"},
        {"version", [](Bytes& b) { b[4] = 2; }, "CMetadata::Read: version 2, expected 1"},
        {"flags", [](Bytes& b) { b[7] = 0x80; }, "flags 0x8000"},
        {"count", [](Bytes& b) { b[16] = 200; }, "element count 200 does not fit"},
        {"count huge", [](Bytes& b) { b[19] = 0xFF; }, "element count 4278190085 does not fit"},
        {"payload length", [](Bytes& b) { b[27] = 0x10; }, "payload length 268435481 exceeds"},
        {"timecode length", [](Bytes& b) { b[24] = 24; }, "CTimecodeMetadataElement::Read: payload length 24"},
        {"cut in element", [](Bytes& b) { b.resize(b.size() - 1); }, "exceeds the"},
        {"trailing byte", [](Bytes& b) { b.push_back(0); }, "1 bytes left after element 5"},
        {"drop flag", [](Bytes& b) { b[28 + 24] = 2; }, "drop flag 2 out of range"},
    };
    for (const Case& c : cases) {
        Bytes damaged = bytes;
        c.damage(damaged);
        VekTest::LogCapture log(1);
        RObject<CByteArray> input(FromBytes(damaged));
        EXPECT_EQ(CMetadata::FromByteArray(damaged.empty() ? nullptr : input.Get()), nullptr) << c.name;
        EXPECT_EQ(log.Count(c.logged), 1u) << c.name << ":\n" << log.Text();
    }

    // A well-formed body can still be refused as a whole by its atom size.
    RObject<CByteArray> atom(metadata->ToAtom());
    Bytes wrongSize = ToBytes(atom);
    wrongSize[3] ^= 1;
    VekTest::LogCapture log(1);
    RObject<CByteArray> input(FromBytes(wrongSize));
    EXPECT_EQ(CMetadata::FromAtom(input), nullptr);
    EXPECT_EQ(log.Count("CMetadata::FromAtom: size"), 1u);
}

TEST(Metadata, FailedReadLeavesContent)
{
    RObject<CMetadata> metadata(Frame(11));
    RObject<CByteArray> body(metadata->ToByteArray());
    Bytes damaged = ToBytes(body);
    damaged.resize(damaged.size() - 2);
    RObject<CMemoryStream> stream(new CMemoryStream(static_cast<int32_t>(damaged.size() - 4), damaged.data() + 4));
    CBinaryReader reader(stream);
    RObject<CMetadata> target(Frame(99));
    VekTest::LogCapture log(1);
    EXPECT_LT(target->Read(&reader, static_cast<int32_t>(damaged.size() - 4)), 0);
    auto* timecode = static_cast<CTimecodeMetadataElement*>(target->GetElement(CTimecodeMetadataElement::Type));
    EXPECT_EQ(timecode->GetTimeCode().GetTotalFrames(), 99);
    EXPECT_EQ(target->GetElementCount(), 5);
}
