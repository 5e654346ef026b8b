// The HEVC parsers against streams libx265 writes at test time, every
// parsed fact compared with what ffprobe reads from the same stream.
#include <gtest/gtest.h>

#include <vek/core/Result.h>
#include <vek/elementary/HevcDecoderConfiguration.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcPictureOrderCounter.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcSliceHeader.h>
#include <vek/elementary/HevcVideoParameterSet.h>

#include "VideoStreamSupport.h"
#include "support/TestSupport.h"

#include <algorithm>
#include <memory>
#include <numeric>

using namespace Quorvex::Vek;

namespace {

struct HevcCase {
    const char* name;
    const char* arguments;
    const char* x265Params; // after log-level=error
    bool cropped; // the conformance window is in use
    bool extendedSar;
    bool severalSlices;
};

const HevcCase Cases[] = {
    {"Main 1080p", "-f lavfi -i testsrc2=size=1920x1080:rate=25 -frames:v 5 -c:v libx265 -preset ultrafast "
     "-color_primaries bt709 -color_trc bt709 -colorspace bt709", "", true, false, false},
    {"Main odd size cropped", "-f lavfi -i testsrc2=size=714x402:rate=30000/1001 -frames:v 10 -c:v libx265 -preset ultrafast "
     "-vf setsar=7/5", "", true, true, false},
    {"Main 10", "-f lavfi -i testsrc2=size=352x288:rate=50 -frames:v 10 -pix_fmt yuv420p10le -c:v libx265 -preset ultrafast", "",
     false, false, false},
    {"4:2:2 10-bit 16:11", "-f lavfi -i testsrc2=size=720x576:rate=25 -frames:v 10 -pix_fmt yuv422p10le -vf setsar=16/11 "
     "-c:v libx265 -preset ultrafast", "", false, false, false},
    {"B-pyramid, slices", "-f lavfi -i testsrc2=size=416x240:rate=24 -frames:v 30 -c:v libx265 -preset fast",
     ":bframes=4:b-pyramid=1:b-adapt=0:slices=3", false, false, true},
};

std::string ProfileName(const HevcProfileTierLevel& ptl)
{
    switch (ptl.profileIdc) {
    case 1: return "Main";
    case 2: return "Main 10";
    case 3: return "Main Still Picture";
    case 4: return "Rext";
    default: return "?";
    }
}

std::string PixelFormat(uint32_t chromaFormatIdc, uint32_t bitDepth)
{
    if (chromaFormatIdc == 0)
        return bitDepth > 8 ? "gray" + std::to_string(bitDepth) + "le" : "gray";
    const char* layout = chromaFormatIdc == 1 ? "420" : chromaFormatIdc == 2 ? "422" : "444";
    return std::string("yuv") + layout + "p" + (bitDepth > 8 ? std::to_string(bitDepth) + "le" : "");
}

std::string Ratio(int64_t num, int64_t den)
{
    const int64_t g = std::gcd(num, den);
    return std::to_string(num / g) + "/" + std::to_string(den / g);
}

struct ParsedStream {
    std::unique_ptr<HevcSequenceParameterSet> sps[16];
    std::unique_ptr<HevcPictureParameterSet> pps[64];
    const HevcSequenceParameterSet* spsTable[16] = {};
    const HevcPictureParameterSet* ppsTable[64] = {};
    HevcVideoParameterSet vps;
    bool haveVps = false;
    std::vector<HevcSliceHeader> slices;
};

void ParseUnits(const std::vector<std::vector<uint8_t>>& units, ParsedStream& stream)
{
    for (const auto& unit : units) {
        HevcNalHeader header;
        ASSERT_TRUE(HevcNalHeader::Parse(unit.data(), unit.size(), header));
        if (header.type == HevcNalHeader::VideoParameterSet) {
            ASSERT_EQ(HevcVideoParameterSet::Parse(unit.data(), unit.size(), stream.vps), 0);
            stream.haveVps = true;
        } else if (header.type == HevcNalHeader::SequenceParameterSet) {
            auto sps = std::make_unique<HevcSequenceParameterSet>();
            ASSERT_EQ(HevcSequenceParameterSet::Parse(unit.data(), unit.size(), *sps), 0);
            stream.spsTable[sps->id] = sps.get();
            stream.sps[sps->id] = std::move(sps);
        } else if (header.type == HevcNalHeader::PictureParameterSet) {
            auto pps = std::make_unique<HevcPictureParameterSet>();
            ASSERT_EQ(HevcPictureParameterSet::Parse(unit.data(), unit.size(), *pps), 0);
            stream.ppsTable[pps->id] = pps.get();
            stream.pps[pps->id] = std::move(pps);
        } else if (HevcNalHeader::IsSlice(header.type)) {
            HevcSliceHeader slice;
            ASSERT_EQ(HevcSliceHeader::Parse(unit.data(), unit.size(), stream.ppsTable, stream.spsTable, slice), 0);
            stream.slices.push_back(slice);
        }
    }
}

// Picture types in display order from the parsed order counts. A picture's
// type is that of its "lowest" slice (I below P below B), as ffmpeg reports.
std::string DisplayOrderTypes(const ParsedStream& stream)
{
    HevcPictureOrderCounter counter;
    std::vector<std::pair<int64_t, char>> pictures;
    for (const HevcSliceHeader& slice : stream.slices) {
        if (!slice.firstSliceSegmentInPic)
            continue;
        const HevcSequenceParameterSet& sps = *stream.spsTable[stream.ppsTable[slice.pictureSetId]->sequenceSetId];
        const int64_t poc = counter.Next(sps, slice);
        const char type = slice.sliceType == HevcSliceHeader::B ? 'B' : slice.sliceType == HevcSliceHeader::P ? 'P' : 'I';
        pictures.emplace_back(poc, type);
    }
    std::stable_sort(pictures.begin(), pictures.end());
    std::string types;
    for (const auto& p : pictures)
        types += p.second;
    return types;
}


class HevcStream : public ::testing::TestWithParam<HevcCase> {};

TEST_P(HevcStream, MatchesFfprobe)
{
    const HevcCase& c = GetParam();
    if (!VekTest::HaveEncoder("libx265"))
        GTEST_SKIP() << "ffmpeg with libx265 is not available";
    VekTest::TempDir dir;
    const std::string path = dir.File("stream.hevc");
    ASSERT_TRUE(VekTest::RunFfmpeg(std::string(c.arguments) + " -x265-params log-level=error" + c.x265Params + " -f hevc", path));
    const std::string json = VekTest::ProbeStream(path);
    const auto units = VekTest::SplitAnnexB(VekTest::ReadFile(path));
    ParsedStream stream;
    ParseUnits(units, stream);
    ASSERT_TRUE(stream.haveVps);
    ASSERT_FALSE(stream.slices.empty());
    const HevcSequenceParameterSet& sps = *stream.spsTable[stream.ppsTable[stream.slices[0].pictureSetId]->sequenceSetId];
    const HevcProfileTierLevel& ptl = sps.profileTierLevel;

    EXPECT_EQ(std::to_string(sps.displayWidth), VekTest::JsonValue(json, "width"));
    EXPECT_EQ(std::to_string(sps.displayHeight), VekTest::JsonValue(json, "height"));
    EXPECT_EQ(c.cropped, sps.conformanceWindowPresent);
    EXPECT_EQ(ProfileName(ptl), VekTest::JsonValue(json, "profile"));
    EXPECT_EQ(std::to_string(ptl.levelIdc), VekTest::JsonValue(json, "level"));
    EXPECT_EQ(stream.vps.profileTierLevel.profileIdc, ptl.profileIdc);
    EXPECT_EQ(stream.vps.maxSubLayers, sps.maxSubLayers);
    EXPECT_EQ(PixelFormat(sps.ChromaArrayType(), sps.bitDepthLuma), VekTest::JsonValue(json, "pix_fmt"));
    // ffprobe leaves the field order out for progressive HEVC.
    EXPECT_FALSE(sps.vui.fieldSeq);
    EXPECT_NE(VekTest::JsonValue(json, "field_order"), "tt");
    EXPECT_EQ(std::to_string(sps.maxNumReorderPics[sps.maxSubLayers - 1]), VekTest::JsonValue(json, "has_b_frames"));

    ASSERT_TRUE(sps.vuiPresent);
    const HevcVideoUsability& vui = sps.vui;
    if (vui.aspectRatioPresent) {
        EXPECT_EQ(std::to_string(vui.sampleAspectRatio.width) + ":" + std::to_string(vui.sampleAspectRatio.height),
                  VekTest::JsonValue(json, "sample_aspect_ratio"));
    }
    EXPECT_EQ(c.extendedSar, vui.aspectRatioIdc == SampleAspectRatio::Explicit);
    ASSERT_TRUE(vui.timingPresent);
    EXPECT_EQ(Ratio(vui.timeScale, vui.numUnitsInTick), VekTest::JsonValue(json, "r_frame_rate"));
    if (vui.colourDescriptionPresent) {
        EXPECT_EQ(vui.colourPrimaries, 1);
        EXPECT_EQ("bt709", VekTest::JsonValue(json, "color_primaries"));
    }

    const size_t pictures = size_t(std::count_if(stream.slices.begin(), stream.slices.end(),
                                                 [](const HevcSliceHeader& s) { return s.firstSliceSegmentInPic; }));
    EXPECT_EQ(c.severalSlices, stream.slices.size() > pictures);
    EXPECT_TRUE(HevcNalHeader::IsIrap(stream.slices[0].nalType));
    EXPECT_EQ(DisplayOrderTypes(stream), VekTest::ProbeFrameTypes(path));

    // Every cut of the real sequence set that loses a whole byte of it is refused.
    for (const auto& unit : units) {
        HevcNalHeader header;
        if (!HevcNalHeader::Parse(unit.data(), unit.size(), header) || header.type != HevcNalHeader::SequenceParameterSet)
            continue;
        auto cut = std::make_unique<HevcSequenceParameterSet>();
        for (size_t size = 0; size + 1 < unit.size(); ++size)
            EXPECT_EQ(HevcSequenceParameterSet::Parse(unit.data(), size, *cut), RESULT_FORMAT_ERROR) << size;
    }

    const std::string mp4 = dir.File("stream.mp4");
    ASSERT_TRUE(VekTest::RunFfmpeg("-i '" + path + "' -c copy", mp4));
    const std::vector<uint8_t> record = VekTest::FindBox(VekTest::ReadFile(mp4), "hvcC");
    ASSERT_FALSE(record.empty());
    HevcDecoderConfiguration config;
    ASSERT_EQ(HevcDecoderConfiguration::Parse(record.data(), record.size(), config), 0);
    EXPECT_EQ(config.profileTierLevel.profileIdc, ptl.profileIdc);
    EXPECT_EQ(config.profileTierLevel.compatibilityFlags, ptl.compatibilityFlags);
    EXPECT_EQ(config.profileTierLevel.constraintFlags, ptl.constraintFlags);
    EXPECT_EQ(config.profileTierLevel.levelIdc, ptl.levelIdc);
    EXPECT_EQ(config.chromaFormatIdc, sps.chromaFormatIdc);
    EXPECT_EQ(config.bitDepthLuma, sps.bitDepthLuma);
    EXPECT_EQ(config.bitDepthChroma, sps.bitDepthChroma);
    ASSERT_GE(config.unitCount, 3u);
    for (uint32_t i = 0; i < config.unitCount; ++i) {
        const auto& unit = config.units[i];
        HevcNalHeader header;
        ASSERT_TRUE(HevcNalHeader::Parse(unit.data, unit.size, header));
        EXPECT_EQ(header.type, unit.type);
        EXPECT_NE(std::find(units.begin(), units.end(), std::vector<uint8_t>(unit.data, unit.data + unit.size)),
                  units.end()) << "unit " << i << " of the record is not in the stream";
    }
    std::vector<uint8_t> written(config.WrittenSize());
    size_t writtenSize = 0;
    ASSERT_EQ(config.Write(written.data(), written.size(), writtenSize), 0);
    EXPECT_EQ(written, record);
}

INSTANTIATE_TEST_SUITE_P(X265, HevcStream, ::testing::ValuesIn(Cases), [](const auto& info) {
    std::string name = info.param.name;
    for (char& ch : name)
        if (!isalnum(static_cast<unsigned char>(ch)))
            ch = '_';
    return name;
});

} // namespace
