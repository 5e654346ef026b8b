// The AVC parsers against streams libx264 writes at test time, every parsed
// fact compared with what ffprobe reads from the same stream.
#include <gtest/gtest.h>

#include <vek/core/Result.h>
#include <vek/elementary/AvcDecoderConfiguration.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcPictureOrderCounter.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>

#include "VideoStreamSupport.h"
#include "support/TestSupport.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <numeric>

using namespace Quorvex::Vek;

namespace {

struct AvcCase {
    const char* name;
    const char* arguments; // source and encoder options
    // What the case is there to exercise, so a wrong encoder setting
    // cannot make it pass without covering it.
    bool interlaced;
    bool extendedSar;
    bool severalSlices;
    int minReorder;
};

const AvcCase Cases[] = {
    {"progressive 1080p cropped", "-f lavfi -i testsrc2=size=1920x1080:rate=25 -frames:v 5 -c:v libx264 -preset veryfast "
     "-color_primaries bt709 -color_trc bt709 -colorspace bt709",
     false, false, false, 1},
    {"MBAFF top field first", "-f lavfi -i testsrc2=size=720x576:rate=25 -frames:v 10 -c:v libx264 -preset veryfast "
     "-flags +ildct -x264-params interlaced=1:tff=1",
     true, false, false, 0},
    {"PAL 16:11 full range", "-f lavfi -i testsrc2=size=720x576:rate=25 -frames:v 8 -vf setsar=16/11 -c:v libx264 "
     "-preset veryfast -color_range pc -colorspace smpte170m -color_primaries smpte170m -color_trc smpte170m",
     false, false, false, 0},
    {"extended SAR", "-f lavfi -i testsrc2=size=640x360:rate=30000/1001 -frames:v 8 -vf setsar=7/5 -c:v libx264 -preset veryfast",
     false, true, false, 0},
    {"High 10", "-f lavfi -i testsrc2=size=352x288:rate=50 -frames:v 8 -pix_fmt yuv420p10le -c:v libx264 -preset veryfast",
     false, false, false, 0},
    {"High 4:2:2 10-bit", "-f lavfi -i testsrc2=size=352x288:rate=25 -frames:v 8 -pix_fmt yuv422p10le -c:v libx264 -preset veryfast",
     false, false, false, 0},
    {"High 4:4:4", "-f lavfi -i testsrc2=size=176x144:rate=25 -frames:v 8 -pix_fmt yuv444p -c:v libx264 -preset veryfast",
     false, false, false, 0},
    {"B-pyramid", "-f lavfi -i testsrc2=size=320x240:rate=24 -frames:v 30 -c:v libx264 -preset medium -bf 3 "
     "-x264-params b-pyramid=normal:b-adapt=0",
     false, false, false, 2},
    {"four slices CAVLC baseline", "-f lavfi -i testsrc2=size=320x240:rate=25 -frames:v 10 -c:v libx264 -preset veryfast "
     "-profile:v baseline -slices 4",
     false, false, true, 0},
};

std::string ProfileName(const AvcSequenceParameterSet& sps)
{
    const bool constraint3 = (sps.constraintFlags & 0x10) != 0;
    switch (sps.profileIdc) {
    case 66: return (sps.constraintFlags & 0x40) ? "Constrained Baseline" : "Baseline";
    case 77: return "Main";
    case 100: return "High";
    case 110: return constraint3 ? "High 10 Intra" : "High 10";
    case 122: return constraint3 ? "High 4:2:2 Intra" : "High 4:2:2";
    case 244: return constraint3 ? "High 4:4:4 Intra" : "High 4:4:4 Predictive";
    default: return "?";
    }
}

// ffprobe names 8-bit full-range formats with a 'j' (the JPEG range).
std::string PixelFormat(uint32_t chromaFormatIdc, uint32_t bitDepth, bool fullRange)
{
    if (chromaFormatIdc == 0)
        return bitDepth > 8 ? "gray" + std::to_string(bitDepth) + "le" : "gray";
    const char* layout = chromaFormatIdc == 1 ? "420" : chromaFormatIdc == 2 ? "422" : "444";
    return std::string("yuv") + (fullRange && bitDepth == 8 ? "j" : "") + layout + "p" + (bitDepth > 8 ? std::to_string(bitDepth) + "le" : "");
}

std::string Ratio(int64_t num, int64_t den)
{
    const int64_t g = std::gcd(num, den);
    return std::to_string(num / g) + (den ? "/" : "") + std::to_string(den / g);
}

// ffprobe's names of the colour codes the cases use.
std::string ColourName(uint32_t code)
{
    switch (code) {
    case 1: return "bt709";
    case 5: return "bt470bg";
    case 6: return "smpte170m";
    default: return "code " + std::to_string(code);
    }
}

class AvcStream : public ::testing::TestWithParam<AvcCase> {};

struct ParsedStream {
    std::vector<std::vector<uint8_t>> units;
    std::unique_ptr<AvcSequenceParameterSet> sps[32];
    std::unique_ptr<AvcPictureParameterSet> pps[256];
    const AvcSequenceParameterSet* spsTable[32] = {};
    const AvcPictureParameterSet* ppsTable[256] = {};
    std::vector<AvcSliceHeader> slices;
    std::vector<uint8_t> firstSps;
};

void ParseUnits(ParsedStream& stream)
{
    for (const auto& unit : stream.units) {
        AvcNalHeader header;
        ASSERT_TRUE(AvcNalHeader::Parse(unit.data(), unit.size(), header));
        if (header.type == AvcNalHeader::SequenceParameterSet) {
            auto sps = std::make_unique<AvcSequenceParameterSet>();
            ASSERT_EQ(AvcSequenceParameterSet::Parse(unit.data(), unit.size(), *sps), 0);
            if (stream.firstSps.empty())
                stream.firstSps = unit;
            stream.spsTable[sps->id] = sps.get();
            stream.sps[sps->id] = std::move(sps);
        } else if (header.type == AvcNalHeader::PictureParameterSet) {
            auto pps = std::make_unique<AvcPictureParameterSet>();
            ASSERT_EQ(AvcPictureParameterSet::Parse(unit.data(), unit.size(), stream.spsTable, *pps), 0);
            stream.ppsTable[pps->id] = pps.get();
            stream.pps[pps->id] = std::move(pps);
        } else if (header.IsSlice()) {
            AvcSliceHeader slice;
            ASSERT_EQ(AvcSliceHeader::Parse(unit.data(), unit.size(), stream.ppsTable, stream.spsTable, slice), 0);
            stream.slices.push_back(slice);
        }
    }
}

char TypeLetter(uint8_t sliceType)
{
    return sliceType == AvcSliceHeader::B ? 'B' : sliceType == AvcSliceHeader::P ? 'P' : 'I';
}

// The picture types in display order, from the parsed picture order counts:
// pictures are sorted by count within each IDR period.
std::string DisplayOrderTypes(const ParsedStream& stream)
{
    AvcPictureOrderCounter counter;
    std::string types;
    std::vector<std::pair<int64_t, char>> period;
    auto flush = [&]() {
        std::stable_sort(period.begin(), period.end());
        for (const auto& p : period)
            types += p.second;
        period.clear();
    };
    for (const AvcSliceHeader& slice : stream.slices) {
        if (slice.firstMbInSlice != 0)
            continue;
        const AvcSequenceParameterSet& sps = *stream.spsTable[stream.ppsTable[slice.pictureSetId]->sequenceSetId];
        AvcPictureOrderCounter::Counts counts;
        EXPECT_EQ(counter.Next(sps, slice, false, counts), 0);
        if (slice.IsIdr())
            flush();
        period.emplace_back(counts.picture, TypeLetter(slice.sliceType));
    }
    flush();
    return types;
}


TEST_P(AvcStream, MatchesFfprobe)
{
    const AvcCase& c = GetParam();
    if (!VekTest::HaveEncoder("libx264"))
        GTEST_SKIP() << "ffmpeg with libx264 is not available";
    VekTest::TempDir dir;
    const std::string path = dir.File("stream.h264");
    ASSERT_TRUE(VekTest::RunFfmpeg(c.arguments, path)) << c.arguments;
    const std::string json = VekTest::ProbeStream(path);
    ParsedStream stream;
    stream.units = VekTest::SplitAnnexB(VekTest::ReadFile(path));
    ParseUnits(stream);
    ASSERT_FALSE(stream.firstSps.empty());
    ASSERT_FALSE(stream.slices.empty());
    const AvcSequenceParameterSet& sps = *stream.spsTable[stream.ppsTable[stream.slices[0].pictureSetId]->sequenceSetId];

    EXPECT_EQ(std::to_string(sps.displayWidth), VekTest::JsonValue(json, "width"));
    EXPECT_EQ(std::to_string(sps.displayHeight), VekTest::JsonValue(json, "height"));
    // ffprobe reports the cropped size as coded size too; the coded frame is
    // whole macroblocks (pairs of them for interlaced coding), cropped by
    // less than one.
    const int32_t rowUnit = 16 * sps.HeightInMapUnitsToMacroblocks();
    EXPECT_EQ(sps.codedHeight % rowUnit, 0);
    EXPECT_LT(sps.codedHeight - sps.displayHeight, rowUnit);
    EXPECT_LT(sps.codedWidth - sps.displayWidth, 16);
    EXPECT_EQ(ProfileName(sps), VekTest::JsonValue(json, "profile"));
    EXPECT_EQ(std::to_string(sps.levelIdc), VekTest::JsonValue(json, "level"));
    const bool fullRange = sps.vui.videoSignalTypePresent && sps.vui.fullRange;
    EXPECT_EQ(PixelFormat(sps.ChromaArrayType(), sps.bitDepthLuma, fullRange), VekTest::JsonValue(json, "pix_fmt"));
    EXPECT_LE(sps.maxNumRefFrames, 16u);
    EXPECT_EQ(sps.frameMbsOnly ? "progressive" : "tt", VekTest::JsonValue(json, "field_order"));
    EXPECT_EQ(c.interlaced, !sps.frameMbsOnly);
    EXPECT_EQ(c.interlaced, sps.mbAdaptiveFrameField);

    ASSERT_TRUE(sps.vuiPresent);
    const AvcVideoUsability& vui = sps.vui;
    if (vui.aspectRatioPresent) {
        const SampleAspectRatio& sar = vui.sampleAspectRatio;
        EXPECT_EQ(std::to_string(sar.width) + ":" + std::to_string(sar.height),
                  VekTest::JsonValue(json, "sample_aspect_ratio"));
    }
    EXPECT_EQ(c.extendedSar, vui.aspectRatioIdc == SampleAspectRatio::Explicit);
    ASSERT_TRUE(vui.timingPresent);
    EXPECT_EQ(Ratio(vui.timeScale, 2 * int64_t(vui.numUnitsInTick)), VekTest::JsonValue(json, "r_frame_rate"));
    if (vui.videoSignalTypePresent) {
        EXPECT_EQ(vui.fullRange ? "pc" : "tv", VekTest::JsonValue(json, "color_range"));
    }
    if (vui.colourDescriptionPresent) {
        EXPECT_EQ(ColourName(vui.colourPrimaries), VekTest::JsonValue(json, "color_primaries"));
        EXPECT_EQ(ColourName(vui.transferCharacteristics), VekTest::JsonValue(json, "color_transfer"));
        EXPECT_EQ(ColourName(vui.matrixCoefficients), VekTest::JsonValue(json, "color_space"));
    }
    ASSERT_TRUE(vui.bitstreamRestrictionPresent);
    EXPECT_EQ(std::to_string(vui.maxNumReorderFrames), VekTest::JsonValue(json, "has_b_frames"));
    EXPECT_GE(int(vui.maxNumReorderFrames), c.minReorder);

    // Slices: several per picture where asked, and pictures in display
    // order with the types ffprobe reports.
    const size_t pictures = size_t(std::count_if(stream.slices.begin(), stream.slices.end(),
                                                 [](const AvcSliceHeader& s) { return s.firstMbInSlice == 0; }));
    EXPECT_EQ(c.severalSlices, stream.slices.size() > pictures);
    EXPECT_EQ(DisplayOrderTypes(stream), VekTest::ProbeFrameTypes(path));

    // Every cut of the real parameter set that loses a whole byte of it is refused.
    for (size_t size = 0; size + 1 < stream.firstSps.size(); ++size) {
        AvcSequenceParameterSet cut;
        EXPECT_EQ(AvcSequenceParameterSet::Parse(stream.firstSps.data(), size, cut), RESULT_FORMAT_ERROR) << size;
    }

    // The decoder configuration record ffmpeg writes into MP4 carries the
    // same parameter set, and writing it back gives the same bytes.
    const std::string mp4 = dir.File("stream.mp4");
    ASSERT_TRUE(VekTest::RunFfmpeg("-i '" + path + "' -c copy", mp4));
    const std::vector<uint8_t> record = VekTest::FindBox(VekTest::ReadFile(mp4), "avcC");
    ASSERT_FALSE(record.empty());
    AvcDecoderConfiguration config;
    ASSERT_EQ(AvcDecoderConfiguration::Parse(record.data(), record.size(), config), 0);
    EXPECT_EQ(config.profileIdc, sps.profileIdc);
    EXPECT_EQ(config.levelIdc, sps.levelIdc);
    ASSERT_EQ(config.sequenceSetCount, 1u);
    EXPECT_EQ(std::vector<uint8_t>(config.sequenceSets[0].data, config.sequenceSets[0].data + config.sequenceSets[0].size),
              stream.firstSps);
    if (config.hasHighProfileExtension) {
        EXPECT_EQ(config.chromaFormatIdc, sps.chromaFormatIdc);
        EXPECT_EQ(config.bitDepthLuma, sps.bitDepthLuma);
        EXPECT_EQ(config.bitDepthChroma, sps.bitDepthChroma);
    }
    std::vector<uint8_t> written(config.WrittenSize());
    size_t writtenSize = 0;
    ASSERT_EQ(config.Write(written.data(), written.size(), writtenSize), 0);
    EXPECT_EQ(written, record);
}

INSTANTIATE_TEST_SUITE_P(X264, AvcStream, ::testing::ValuesIn(Cases), [](const auto& info) {
    std::string name = info.param.name;
    for (char& ch : name)
        if (!isalnum(static_cast<unsigned char>(ch)))
            ch = '_';
    return name;
});

} // namespace
