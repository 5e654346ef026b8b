// Format negotiation: the configuration-table matcher field by field, the
// format lists narrowing once a side is chosen, and Evaluate through exact,
// canonical and categorical formats.
#include <vek/filters/VideoConfiguration.h>
#include <vek/media/AudioFormat.h>
#include <vek/media/VideoFormat.h>

#include <gtest/gtest.h>

#include "filters/TestFilters.h"

using namespace Quorvex::Vek;
using VekTest::TestAudioConverter;
using VekTest::TestVideoConverter;

namespace {

constexpr uint32_t I420 = VideoFormat::Planar420YUV;
constexpr uint32_t NV12 = VideoFormat::Biplanar420YUV;
constexpr uint32_t UYVY = VideoFormat::Packed422UYVY;
constexpr uint32_t YUYV = VideoFormat::Packed422YUYV;

// 1920x1080 I420 at 30000/1001, progressive, 8 Mb/s, square pixels, 4:2:0, Rec. 709.
RObject<CVideoProperties> Hd(uint32_t format = I420)
{
    RObject<CVideoProperties> properties(new CVideoProperties());
    properties->SetFormat(format);
    properties->SetSize(1920, 1080);
    properties->SetFrameRate(30000, 1001);
    properties->SetPixelAspectRatio(1, 1);
    properties->SetSubsampling(2, 2);
    properties->SetColorSpace(CVideoProperties::ColorSpaceRec709);
    properties->SetFieldOrder(CVideoProperties::FieldOrderProgressive);
    properties->SetBitRate(8000000);
    return properties;
}

struct MatchCase {
    const char* name;
    VideoConfigurationHalf half;
    bool matches;
};

TEST(FilterNegotiation, ConfigurationHalfMatchesFieldByField)
{
    const MatchCase cases[] = {
        {"all wildcards but the format", VideoConfigurationFormat(I420), true},
        {"all wildcards, other format", VideoConfigurationFormat(NV12), false},
        {"every field equal",
         {1920, 1080, 1, 1, VideoSubsampling(2, 2), CVideoProperties::ColorSpaceRec709, 30000, 1001,
          CVideoProperties::FieldOrderProgressive, 8000000, I420},
         true},
        {"other width", {1280, 0, 0, 0, 0, 0, 0, 0, 0, 0, I420}, false},
        {"other subsampling", {0, 0, 0, 0, VideoSubsampling(2, 1), 0, 0, 0, 0, 0, I420}, false},
        {"other colour space", {0, 0, 0, 0, 0, CVideoProperties::ColorSpaceRec601, 0, 0, 0, 0, I420}, false},
        {"rate 2997/100 is within 0.01", {0, 0, 0, 0, 0, 0, 2997, 100, 0, 0, I420}, true},
        {"rate 30/1 is not", {0, 0, 0, 0, 0, 0, 30, 1, 0, 0, I420}, false},
        {"rate numerator alone differs", {0, 0, 0, 0, 0, 0, 30, 0, 0, 0, I420}, false},
        {"interlaced table", {0, 0, 0, 0, 0, 0, 0, 0, CVideoProperties::FieldOrderTopFirst, 0, I420}, false},
        {"bit rate equal", {0, 0, 0, 0, 0, 0, 0, 0, 0, 8000000, I420}, true},
        {"bit rate read signed", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFFFFFFFFu, I420}, false},
        {"wildcard format", {1920, 1080, 0, 0, 0, 0, 0, 0, 0, 0, 0}, true},
    };
    RObject<CVideoProperties> hd = Hd();
    for (const MatchCase& test : cases)
        EXPECT_EQ(MatchesVideoConfiguration(test.half, hd), test.matches) << test.name;
}

TEST(FilterNegotiation, StrictFormatAgainstUnknownOrMissingDescriptions)
{
    RObject<CVideoProperties> unknown = Hd(0);
    EXPECT_FALSE(MatchesVideoConfiguration(VideoConfigurationFormat(I420), unknown));
    EXPECT_FALSE(MatchesVideoConfiguration(VideoConfigurationFormat(I420), nullptr));
    EXPECT_TRUE(MatchesVideoConfiguration(VideoConfigurationFormat(0), nullptr));
    // A zero bit rate in the description is unknown, so any table value passes.
    RObject<CVideoProperties> noRate = Hd();
    noRate->SetBitRate(0);
    EXPECT_TRUE(MatchesVideoConfiguration({0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFFFFFFFFu, I420}, noRate));
}

const CVideoFilter::ConfigurationMap Table[] = {
    {VideoConfigurationFormat(I420), VideoConfigurationFormat(NV12)},
    {VideoConfigurationFormat(I420), VideoConfigurationFormat(UYVY)},
    {VideoConfigurationFormat(YUYV), VideoConfigurationFormat(I420)},
    {VideoConfigurationFormat(NV12), VideoConfigurationFormat(UYVY)},
    {{1280, 0, 0, 0, 0, 0, 0, 0, 0, 0, I420}, VideoConfigurationFormat(YUYV)}, // only for 1280 wide
    {VideoConfigurationFormat(I420), VideoConfigurationFormat(NV12)},          // repeated: listed once
    {VideoConfigurationFormat(0), VideoConfigurationFormat(0)},
};

std::vector<uint32_t> Listed(CValueList<unsigned int>* list)
{
    RObject<CValueList<unsigned int>> owned(list);
    std::vector<uint32_t> formats;
    for (int32_t i = 0; owned && i < owned->GetCount(); ++i)
        formats.push_back(owned->Get(i));
    return formats;
}

TEST(FilterNegotiation, TableListsNarrowAsEachSideIsChosen)
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    filter->table = Table;
    EXPECT_EQ(Listed(filter->GetOutputFormats()), std::vector<uint32_t>{}); // no input described yet
    filter->SetInputProperties(Hd());
    EXPECT_EQ(Listed(filter->GetOutputFormats()), (std::vector<uint32_t>{NV12, UYVY}));
    EXPECT_EQ(filter->SetOutputFormat(YUYV), RESULT_FORMAT_ERROR); // 1280-wide only
    ASSERT_EQ(filter->SetOutputFormat(UYVY), RESULT_OK);
    EXPECT_EQ(Listed(filter->GetInputFormats()), (std::vector<uint32_t>{I420, NV12}));
    ASSERT_EQ(filter->Begin(), RESULT_OK);
}

TEST(FilterNegotiation, EvaluateWithATableUsesInputHalves)
{
    RObject<TestVideoConverter> filter(new TestVideoConverter());
    filter->table = Table;
    EXPECT_EQ(filter->Evaluate(Hd(YUYV)), 128);
    EXPECT_EQ(filter->Evaluate(Hd(UYVY)), 0);
    EXPECT_EQ(filter->Evaluate(nullptr), 0);
}

TEST(FilterNegotiation, EvaluateFallsBackToCanonicalThenCategoricalFormats)
{
    struct Case {
        std::vector<uint32_t> accepted;
        uint32_t offered;
        int score;
    };
    const Case cases[] = {
        {{+AudioFormat::Int16L}, +AudioFormat::Int16L, 128},
        {{+AudioFormat::LPCM}, +AudioFormat::Int24B, 128},       // canonical
        {{+AudioFormat::LPCM}, Four("s16l"), 128},               // an alias, canonical lpcm
        {{+AudioFormat::AAC}, +AudioFormat::ADTS, 128},           // categorical
        {{+AudioFormat::LPCM}, +AudioFormat::AC3, 0},
        {{+AudioFormat::Int16L}, +AudioFormat::Int16B, 0},
    };
    for (const Case& test : cases) {
        RObject<TestAudioConverter> filter(new TestAudioConverter(test.accepted));
        RObject<CAudioProperties> offered(new CAudioProperties());
        offered->SetFormat(test.offered);
        EXPECT_EQ(filter->Evaluate(offered), test.score) << FourCCText(test.offered).c_str();
    }
}

} // namespace
