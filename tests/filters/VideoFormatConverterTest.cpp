// The video format converter through the filter life cycle: negotiation,
// pictures in every kind of data reference, metadata carried, refusals,
// buffer reuse, registration and allocation failures.
#include <vek/core/CByteArray.h>
#include <vek/core/Result.h>
#include <vek/filters/video/CVideoFormatConverter.h>
#include <vek/media/CVideoProperties.h>
#include <vek/samples/CLinearDataReference.h>
#include <vek/samples/CPixelBufferDataReference.h>
#include <vek/samples/CVideoSample.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "PictureModel.h"
#include "support/AllocationWalk.h"
#include "support/LogCapture.h"

using namespace Quorvex::Vek;
using namespace VekTest;

namespace {

RObject<CVideoProperties> Properties(const char* format, int width, int height)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetFormat(Code(format));
    properties->SetSize(width, height);
    return properties;
}

RObject<CVideoFormatConverter> Begun(const char* from, const char* to, int width, int height)
{
    RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
    RObject<CVideoProperties> input(Properties(from, width, height));
    EXPECT_EQ(converter->SetInputProperties(input), RESULT_OK);
    EXPECT_EQ(converter->SetOutputFormat(Code(to)), RESULT_OK);
    EXPECT_EQ(converter->Begin(), RESULT_OK);
    return converter;
}

// A picture of `model` in `format` with tight rows in a linear reference.
RObject<CVideoSample> LinearPicture(const PictureModel& model, const char* format, int64_t time)
{
    PictureBytes bytes = LayOut(format, model.width, model.height, 0, 0);
    Write(model, format, bytes);
    RObject<CLinearDataReference> reference(CLinearDataReference::Create(int32_t(bytes.bytes.size())));
    std::memcpy(reference->GetData(), bytes.bytes.data(), bytes.bytes.size());
    RObject<CVideoSample> sample(CVideoSample::Create());
    sample->SetDataReference(reference);
    sample->SetTime(time);
    sample->SetDuration(1001);
    sample->SetFrameNumber(int32_t(time / 1001));
    sample->SetPictureType(CVideoSample::P);
    sample->SetCompositionOffset(2002);
    return sample;
}

// Reads an output picture's planes back into the model.
PictureModel ReadOutput(CVideoSample* sample, const char* format, int width, int height)
{
    auto* reference = static_cast<CPlanarPixelDataReference*>(sample->GetDataReference());
    EXPECT_TRUE(reference && reference->IsType(CPlanarPixelDataReference::Type));
    PictureBytes bytes;
    unsigned char* base = nullptr;
    int32_t length = 0;
    EXPECT_EQ(reference->Lock(base, length), RESULT_OK);
    bytes.bytes.assign(base, base + length);
    bytes.planeCount = reference->GetPlaneCount();
    for (int p = 0; p < bytes.planeCount; ++p) {
        const CPlanarPixelDataReference::Plane plane = reference->GetPlaneLayout(p);
        bytes.offset[p] = size_t(plane.offset);
        bytes.stride[p] = plane.stride;
        bytes.rowBytes[p] = plane.rowBytes;
        bytes.rows[p] = plane.rows;
    }
    EXPECT_EQ(bytes.planeCount, LayOut(format, width, height, 0, 0).planeCount);
    return Read(format, width, height, bytes);
}

unsigned char* BufferOf(CVideoSample* sample)
{
    return static_cast<CPlanarPixelDataReference*>(sample->GetDataReference())->GetBuffer()->GetData();
}

RObject<CVideoSample> ConvertOne(CVideoFormatConverter* converter, CVideoSample* input)
{
    EXPECT_EQ(converter->WriteSample(input), RESULT_OK);
    CVideoSample* made = nullptr;
    EXPECT_EQ(converter->ReadSample(made), RESULT_OK);
    return RObject<CVideoSample>(made);
}

} // namespace

TEST(VideoFormatConverter, OffersEveryLayoutAndNarrowsToTheInput)
{
    RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
    RObject<CValueList<unsigned int>> before(converter->GetOutputFormats());
    EXPECT_EQ(before->GetCount(), 0) << "no input described yet";

    converter->SetInputProperties(Properties("YUY2", 64, 36));
    RObject<CValueList<unsigned int>> outputs(converter->GetOutputFormats());
    ASSERT_EQ(outputs->GetCount(), int32_t(PictureLayout::Count)) << "an alias input reads as its layout";
    EXPECT_EQ(outputs->Get(0), Code("YUYV")) << "the input's own layout comes first";
    EXPECT_EQ(converter->Evaluate(Properties("IYUV", 8, 8)), CVideoFormatConverter::AcceptScore);
    EXPECT_EQ(converter->Evaluate(Properties("NV21", 8, 8)), CVideoFormatConverter::AcceptScore);
    EXPECT_EQ(converter->Evaluate(Properties("J420", 8, 8)), 0);
    EXPECT_EQ(converter->Evaluate(Properties("avc1", 8, 8)), 0);

    EXPECT_EQ(converter->SetOutputFormat(Code("avc1")), RESULT_FORMAT_ERROR);
    EXPECT_EQ(converter->SetOutputFormat(Code("2vuy")), RESULT_OK) << "an alias output";
    EXPECT_EQ(converter->SetOutputFormat(Code("I420")), RESULT_OK);
    int32_t horizontal = 0;
    int32_t vertical = 0;
    converter->GetOutputProperties()->GetSubsampling(horizontal, vertical);
    EXPECT_EQ(horizontal, 2);
    EXPECT_EQ(vertical, 2);
    EXPECT_EQ(converter->GetOutputProperties()->GetWidth(), 64);
    RObject<CValueList<unsigned int>> inputs(converter->GetInputFormats());
    EXPECT_TRUE(inputs->Contains(Code("UYVY")) && inputs->Contains(Code("I444")));
}

TEST(VideoFormatConverter, ConvertsEachPictureAndCarriesItsFacts)
{
    std::mt19937 random(1);
    RObject<CVideoFormatConverter> converter(Begun("I420", "UYVY", 65, 37));
    for (int frame = 0; frame < 3; ++frame) {
        const PictureModel source = RandomModel(65, 37, SubsamplingOf("I420"), random);
        RObject<CVideoSample> input(LinearPicture(source, "I420", 1001 * frame));
        RObject<CVideoSample> output(ConvertOne(converter, input));
        ASSERT_TRUE(output);
        EXPECT_TRUE(ReadOutput(output, "UYVY", 65, 37) == Resample(source, SubsamplingOf("UYVY")));
        EXPECT_EQ(output->GetTime(), 1001 * frame);
        EXPECT_EQ(output->GetDuration(), 1001);
        EXPECT_EQ(output->GetFrameNumber(), frame);
        EXPECT_EQ(output->GetPictureType(), CVideoSample::P);
        EXPECT_EQ(output->GetCompositionTime(), input->GetCompositionTime());
    }
    EXPECT_EQ(converter->WriteSample(nullptr), RESULT_OK);
    CVideoSample* none = nullptr;
    EXPECT_EQ(converter->ReadSample(none), 1) << "one output per input: nothing is held back";
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(converter->End(), RESULT_OK);
}

TEST(VideoFormatConverter, ReadsPixelReferencesAtTheirStrides)
{
    // A chain: the first converter's planar output is the second's input;
    // the round trip of a 4:2:2 picture through 4:2:0 and back keeps the
    // luma and halves the chroma rows the documented way.
    std::mt19937 random(2);
    const PictureModel source = RandomModel(40, 10, SubsamplingOf("YUYV"), random);
    // YUYV rows of 80 bytes at a stride of 96 in a one-plane pixel buffer.
    PictureBytes bytes = LayOut("YUYV", 40, 10, 96, 0);
    Write(source, "YUYV", bytes);
    RObject<CByteArray> array(CByteArray::Create(bytes.bytes.data(), int32_t(bytes.bytes.size())));
    CPixelBufferDataReference* made = nullptr;
    ASSERT_EQ(CPixelBufferDataReference::Create(array, 40, 10, 96, 2, Code("YUYV"), made), RESULT_OK);
    RObject<CPixelBufferDataReference> reference(made);
    RObject<CVideoSample> input(CVideoSample::Create());
    input->SetDataReference(reference);

    RObject<CVideoFormatConverter> down(Begun("YUYV", "NV21", 40, 10));
    RObject<CVideoFormatConverter> up(Begun("NV21", "I422", 40, 10));
    RObject<CVideoSample> middle(ConvertOne(down, input));
    ASSERT_TRUE(middle);
    RObject<CVideoSample> output(ConvertOne(up, middle));
    ASSERT_TRUE(output);
    EXPECT_TRUE(ReadOutput(output, "I422", 40, 10) ==
                Resample(Resample(source, SubsamplingOf("NV21")), SubsamplingOf("I422")));
}

TEST(VideoFormatConverter, RefusesPicturesThatDoNotFit)
{
    RObject<CVideoFormatConverter> converter(Begun("NV12", "I420", 16, 16));
    struct Case {
        int32_t length;
        int32_t stride;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {1000, 12, RESULT_FORMAT_ERROR, "stride 12 shorter than its row of 16"},
        {16 * 24 + 7 * 24 + 16 - 1, 24, RESULT_ARGUMENT_OUT_OF_RANGE, "passes the data length 567"},
    };
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        ASSERT_EQ(converter->SetInputStride(c.stride), RESULT_OK);
        RObject<CVideoSample> input(CVideoSample::Create());
        RObject<CLinearDataReference> reference(CLinearDataReference::Create(c.length));
        input->SetDataReference(reference);
        EXPECT_EQ(converter->WriteSample(input), c.result) << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        CVideoSample* none = nullptr;
        EXPECT_EQ(converter->ReadSample(none), 1) << "nothing made";
    }
    EXPECT_EQ(converter->SetInputStride(-1), RESULT_ARGUMENT_OUT_OF_RANGE);
    RObject<CVideoSample> empty(CVideoSample::Create());
    EXPECT_EQ(converter->WriteSample(empty), RESULT_ARGUMENT_NULL) << "no data reference";
}

TEST(VideoFormatConverter, BeginChecksTheDescription)
{
    struct Case {
        const char* format;
        int width;
        int height;
        int result;
        const char* logged;
    };
    const Case cases[] = {
        {"I420", 0, 16, RESULT_ARGUMENT_OUT_OF_RANGE, "picture size 0x16"},
        {"I420", 16, 0, RESULT_ARGUMENT_OUT_OF_RANGE, "picture size 16x0"},
        {"UYVY", 65537, 2, RESULT_ARGUMENT_OUT_OF_RANGE, "picture size 65537x2"},
        {"J420", 16, 16, RESULT_FORMAT_ERROR, "cannot convert 'J420' to 'NV12'"},
    };
    for (const Case& c : cases) {
        VekTest::LogCapture log(1);
        RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
        converter->SetInputProperties(Properties("I420", 16, 16));
        ASSERT_EQ(converter->SetOutputFormat(Code("NV12")), RESULT_OK);
        converter->SetInputProperties(Properties(c.format, c.width, c.height));
        EXPECT_EQ(converter->Begin(), c.result) << c.logged;
        EXPECT_EQ(log.Count(c.logged), 1u) << log.Text();
        RObject<CVideoSample> input(CVideoSample::Create());
        EXPECT_EQ(converter->WriteSample(input), RESULT_BAD_ORDER_ERROR) << "a failed Begin converts nothing";
    }
    RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
    converter->SetInputProperties(Properties("I420", 16, 16));
    EXPECT_EQ(converter->Begin(), RESULT_OK);
    EXPECT_EQ(converter->GetOutputFormat(), Code("I420")) << "without a choice, the input's layout";
}

TEST(VideoFormatConverter, ReusesBuffersTheHostReleased)
{
    std::mt19937 random(4);
    RObject<CVideoFormatConverter> converter(Begun("I422", "NV12", 64, 32));
    const PictureModel source = RandomModel(64, 32, SubsamplingOf("I422"), random);
    RObject<CVideoSample> input(LinearPicture(source, "I422", 0));
    std::set<unsigned char*> buffers;
    for (int frame = 0; frame < 20; ++frame) {
        RObject<CVideoSample> output(ConvertOne(converter, input));
        ASSERT_TRUE(output);
        buffers.insert(BufferOf(output));
    }
    EXPECT_EQ(buffers.size(), 1u) << "each picture released before the next";

    std::vector<RObject<CVideoSample>> held;
    std::set<unsigned char*> heldBuffers;
    for (int frame = 0; frame < 10; ++frame) {
        held.push_back(ConvertOne(converter, input));
        heldBuffers.insert(BufferOf(held.back()));
    }
    EXPECT_EQ(heldBuffers.size(), 10u) << "a picture the host holds is never written again";
    const PictureModel expected = Resample(source, SubsamplingOf("NV12"));
    for (const RObject<CVideoSample>& sample : held)
        EXPECT_EQ(ReadOutput(sample, "NV12", 64, 32).u, expected.u);
}

TEST(VideoFormatConverter, RegistersUnderItsCode)
{
    ASSERT_EQ(CVideoFormatConverter::Register(), RESULT_OK);
    ASSERT_EQ(CVideoFormatConverter::Register(), RESULT_OK) << "twice is once";
    using Inventory = CComponentInventory<CComponentFactory<CVideoConverter>>;
    RObject<CVideoConverter> made(Inventory::CreateInstance(Code("vfc ")));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->GetType(), Code("vfc "));
    made->SetInputProperties(Properties("NV12", 8, 8));
    EXPECT_EQ(made->SetOutputFormat(Code("I444")), RESULT_OK);
    EXPECT_EQ(made->Begin(), RESULT_OK);
}

#if VEK_FAULT_INJECTION
TEST(VideoFormatConverter, AllocationFailuresLeaveNothingBehind)
{
    std::mt19937 random(6);
    const PictureModel source = RandomModel(33, 9, SubsamplingOf("I420"), random);
    PictureBytes bytes = LayOut("I420", 33, 9, 0, 0);
    Write(source, "I420", bytes);
    const PictureModel expected = Resample(source, SubsamplingOf("YUYV"));
    const int walked = WalkAllocationFailures("begin, convert, read, drain", [&] {
        RObject<CVideoFormatConverter> converter(new CVideoFormatConverter());
        RObject<CVideoProperties> properties(new CVideoProperties());
        if (!converter || !properties)
            return true;
        properties->SetFormat(Code("I420"));
        properties->SetSize(33, 9);
        converter->SetInputProperties(properties);
        int result = converter->SetOutputFormat(Code("YUYV"));
        if (result < 0)
            return result == RESULT_OUT_OF_MEMORY;
        if ((result = converter->Begin()) < 0)
            return result == RESULT_OUT_OF_MEMORY;
        RObject<CLinearDataReference> reference(CLinearDataReference::Create(int32_t(bytes.bytes.size())));
        RObject<CVideoSample> input(CVideoSample::Create());
        if (!reference || !input)
            return true;
        std::memcpy(reference->GetData(), bytes.bytes.data(), bytes.bytes.size());
        input->SetDataReference(reference);
        if ((result = converter->WriteSample(input)) < 0)
            return result == RESULT_OUT_OF_MEMORY;
        CVideoSample* made = nullptr;
        result = converter->ReadSample(made);
        RObject<CVideoSample> output(made);
        if (result != RESULT_OK || !output)
            return false;
        converter->WriteSample(nullptr);
        CVideoSample* none = nullptr;
        if (converter->ReadSample(none) != 1)
            return false;
        FaultInjection::Disarm();
        return ReadOutput(output, "YUYV", 33, 9).u == expected.u;
    });
    EXPECT_GE(walked, 6);
}
#endif
