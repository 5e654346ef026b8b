// Parameter sets built field by field, each case setting one field out of
// its range or cutting the unit short: every one must end in the format
// error result, never in a crash, a hang or a wrapped size.
#include <gtest/gtest.h>

#include <vek/core/FaultInjection.h>
#include <vek/core/Log.h>
#include <vek/core/Result.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/AvcSliceHeader.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>
#include <vek/elementary/HevcSliceHeader.h>

#include "BitWriter.h"
#include "support/LogCapture.h"

#include <functional>
#include <memory>

using namespace Quorvex::Vek;
using VekTest::BitWriter;

namespace {

// The fields of a High-profile AVC sequence set, written in coding order.
struct AvcSpsFields {
    uint64_t profile = 100, id = 0, chroma = 1, bitDepthMinus8 = 0;
    uint64_t log2MaxFrameNumMinus4 = 0, pocType = 0, log2MaxPocLsbMinus4 = 2, pocCycle = 0;
    uint64_t refFrames = 4, widthMbsMinus1 = 119, heightUnitsMinus1 = 67;
    bool frameMbsOnly = true;
    uint64_t cropBottom = 4, cropRight = 0;
    bool vui = true;
    uint64_t timeScale = 50, unitsInTick = 1;
    uint64_t reorder = 2, decBuffering = 4;

    std::vector<uint8_t> Build() const
    {
        BitWriter w;
        w.Bits(0x67, 8);
        w.Bits(profile, 8);
        w.Bits(0, 8);
        w.Bits(40, 8);
        w.UE(id);
        w.UE(chroma);
        w.UE(bitDepthMinus8);
        w.UE(bitDepthMinus8);
        w.Bits(0, 2); // bypass, no scaling matrix
        w.UE(log2MaxFrameNumMinus4);
        w.UE(pocType);
        if (pocType == 0)
            w.UE(log2MaxPocLsbMinus4);
        if (pocType == 1) {
            w.Bit(0);
            w.SE(1);
            w.SE(-1);
            w.UE(pocCycle);
            for (uint64_t i = 0; i < pocCycle && i < 300; ++i)
                w.SE(2);
        }
        w.UE(refFrames);
        w.Bit(0);
        w.UE(widthMbsMinus1);
        w.UE(heightUnitsMinus1);
        w.Bit(frameMbsOnly);
        if (!frameMbsOnly)
            w.Bit(1);
        w.Bit(1);
        w.Bit(1); // cropping
        w.UE(0);
        w.UE(cropRight);
        w.UE(0);
        w.UE(cropBottom);
        w.Bit(vui);
        if (vui) {
            w.Bits(0, 4); // no aspect, overscan, signal type, chroma location
            w.Bit(1);
            w.Bits(unitsInTick, 32);
            w.Bits(timeScale, 32);
            w.Bit(1);
            w.Bits(0, 3); // no HRD, no pic_struct
            w.Bit(1);
            w.Bit(1);
            w.UE(2);
            w.UE(1);
            w.UE(16);
            w.UE(16);
            w.UE(reorder);
            w.UE(decBuffering);
        }
        w.Trailing();
        std::vector<uint8_t> escaped = w.Escaped();
        return escaped;
    }
};

struct AvcSpsCase {
    const char* name;
    std::function<void(AvcSpsFields&)> change;
    const char* loggedField; // in the refusal's log line; null for acceptance
};

const AvcSpsCase AvcSpsCases[] = {
    {"valid", [](AvcSpsFields&) {}, nullptr},
    {"valid, picture order type 1", [](AvcSpsFields& f) { f.pocType = 1; f.pocCycle = 255; }, nullptr},
    {"sequence id 32", [](AvcSpsFields& f) { f.id = 32; }, "seq_parameter_set_id"},
    {"chroma format 4", [](AvcSpsFields& f) { f.chroma = 4; }, "chroma_format_idc"},
    {"bit depth 15", [](AvcSpsFields& f) { f.bitDepthMinus8 = 7; }, "bit_depth_luma_minus8"},
    {"log2 frame number 17", [](AvcSpsFields& f) { f.log2MaxFrameNumMinus4 = 13; }, "log2_max_frame_num_minus4"},
    {"picture order type 3", [](AvcSpsFields& f) { f.pocType = 3; }, "pic_order_cnt_type"},
    {"log2 order count 17", [](AvcSpsFields& f) { f.log2MaxPocLsbMinus4 = 13; }, "log2_max_pic_order_cnt_lsb_minus4"},
    {"order cycle 256", [](AvcSpsFields& f) { f.pocType = 1; f.pocCycle = 256; }, "num_ref_frames_in_pic_order_cnt_cycle"},
    {"17 reference frames", [](AvcSpsFields& f) { f.refFrames = 17; }, "max_num_ref_frames"},
    {"width that overflows", [](AvcSpsFields& f) { f.widthMbsMinus1 = 0xFFFFFFFEu; }, "pic_width_in_mbs_minus1"},
    {"interlaced height that overflows", [](AvcSpsFields& f) { f.frameMbsOnly = false; f.heightUnitsMinus1 = 0x80000000u; },
     "pic_height_in_map_units_minus1"},
    {"crop to nothing", [](AvcSpsFields& f) { f.cropBottom = 544; }, "frame_crop_top/bottom_offset"},
    {"crop past the width", [](AvcSpsFields& f) { f.cropRight = 0xFFFFFFFEu; }, "frame_crop_left/right_offset"},
    {"exp-Golomb of 33 bits", [](AvcSpsFields& f) { f.cropRight = (uint64_t(1) << 32) - 1; }, "exp-Golomb"},
    {"time scale 0", [](AvcSpsFields& f) { f.timeScale = 0; }, "time_scale"},
    {"reorder above buffering", [](AvcSpsFields& f) { f.reorder = 5; }, "max_num_reorder_frames"},
    {"buffering 17", [](AvcSpsFields& f) { f.decBuffering = 17; f.reorder = 0; }, "max_dec_frame_buffering"},
};

TEST(HostileParameterSets, AvcSequenceSetFields)
{
    for (const auto& c : AvcSpsCases) {
        AvcSpsFields fields;
        c.change(fields);
        const std::vector<uint8_t> unit = fields.Build();
        VekTest::LogCapture log(LogLevel::Warning);
        AvcSequenceParameterSet sps;
        const int r = AvcSequenceParameterSet::Parse(unit.data(), unit.size(), sps);
        if (!c.loggedField) {
            ASSERT_EQ(r, 0) << c.name;
            EXPECT_EQ(sps.displayWidth, 1920) << c.name;
            EXPECT_EQ(sps.displayHeight, 1080) << c.name;
            EXPECT_EQ(sps.vui.maxNumReorderFrames, 2u) << c.name;
            continue;
        }
        EXPECT_EQ(r, RESULT_FORMAT_ERROR) << c.name;
        EXPECT_NE(log.Text().find(c.loggedField), std::string::npos) << c.name << ": " << log.Text();
    }
}

TEST(HostileParameterSets, EveryTruncationOfASequenceSetFails)
{
    const std::vector<uint8_t> unit = AvcSpsFields().Build();
    // The last byte holds the stop bit and part of the last field; cutting
    // it or more leaves a field unfinished.
    for (size_t size = 0; size + 1 < unit.size(); ++size) {
        AvcSequenceParameterSet sps;
        EXPECT_EQ(AvcSequenceParameterSet::Parse(unit.data(), size, sps), RESULT_FORMAT_ERROR) << size;
    }
}

// An HEVC sequence set with one reference set predicted from another, so
// inter prediction of sets is exercised.
struct HevcSpsFields {
    uint64_t id = 0, chroma = 1, width = 1920, height = 1080, confBottom = 0;
    uint64_t bitDepthMinus8 = 2, log2PocMinus4 = 4, decBufferingMinus1 = 4, reorder = 2;
    uint64_t log2MinCbMinus3 = 0, log2DiffCb = 3, log2MinTbMinus2 = 0, log2DiffTb = 3;
    uint64_t sets = 2, negativePics = 2, absDeltaRpsMinus1 = 0;
    uint64_t longTerm = 0;

    std::vector<uint8_t> Build() const
    {
        BitWriter w;
        w.Bits(0x4201, 16);
        w.Bits(0, 4);
        w.Bits(0, 3); // one sub-layer
        w.Bit(1);
        w.Bits(0, 2);
        w.Bit(0);
        w.Bits(2, 5);
        w.Bits(0x20000000, 32);
        w.Bits(0x9000, 16);
        w.Bits(0, 32);
        w.Bits(120, 8);
        w.UE(id);
        w.UE(chroma);
        w.UE(width);
        w.UE(height);
        w.Bit(1);
        w.UE(0);
        w.UE(0);
        w.UE(0);
        w.UE(confBottom);
        w.UE(bitDepthMinus8);
        w.UE(bitDepthMinus8);
        w.UE(log2PocMinus4);
        w.Bit(1);
        w.UE(decBufferingMinus1);
        w.UE(reorder);
        w.UE(0);
        w.UE(log2MinCbMinus3);
        w.UE(log2DiffCb);
        w.UE(log2MinTbMinus2);
        w.UE(log2DiffTb);
        w.UE(1);
        w.UE(1);
        w.Bits(0, 4); // scaling lists, AMP, SAO, PCM
        w.UE(sets);
        for (uint64_t i = 0; i < sets; ++i) {
            if (i == 0) {
                w.UE(negativePics);
                w.UE(0);
                for (uint64_t k = 0; k < negativePics && k < 40; ++k) {
                    w.UE(0);
                    w.Bit(1);
                }
                continue;
            }
            w.Bit(1); // predicted from the set before
            w.Bit(1); // negative shift
            w.UE(absDeltaRpsMinus1);
            for (uint64_t k = 0; k <= negativePics && k < 40; ++k)
                w.Bit(1);
        }
        w.Bit(longTerm != 0);
        if (longTerm) {
            w.UE(longTerm);
            for (uint64_t k = 0; k < longTerm && k < 40; ++k) {
                w.Bits(k, int(log2PocMinus4 + 4));
                w.Bit(1);
            }
        }
        w.Bits(0, 3); // temporal MVP, strong smoothing, no VUI
        w.Bit(0); // no extension
        w.Trailing();
        return w.Escaped();
    }
};

struct HevcSpsCase {
    const char* name;
    std::function<void(HevcSpsFields&)> change;
    const char* loggedField;
};

const HevcSpsCase HevcSpsCases[] = {
    {"valid", [](HevcSpsFields&) {}, nullptr},
    {"sequence id 16", [](HevcSpsFields& f) { f.id = 16; }, "sps_seq_parameter_set_id"},
    {"width 0", [](HevcSpsFields& f) { f.width = 0; }, "pic_width_in_luma_samples"},
    {"width past the limit", [](HevcSpsFields& f) { f.width = 0xFFFFFFF0u; }, "pic_width_in_luma_samples"},
    {"window past the height", [](HevcSpsFields& f) { f.confBottom = 0x80000000u; }, "conf_win_top/bottom_offset"},
    {"bit depth 17", [](HevcSpsFields& f) { f.bitDepthMinus8 = 9; }, "bit_depth_minus8"},
    {"log2 order count 17", [](HevcSpsFields& f) { f.log2PocMinus4 = 13; }, "log2_max_pic_order_cnt_lsb_minus4"},
    {"buffering 17", [](HevcSpsFields& f) { f.decBufferingMinus1 = 16; }, "sps_max_dec_pic_buffering_minus1"},
    {"reorder as deep as buffering", [](HevcSpsFields& f) { f.reorder = 5; }, "sps_max_num_reorder_pics"},
    {"coding tree block of 128", [](HevcSpsFields& f) { f.log2DiffCb = 4; }, "log2 coding block size"},
    {"transform block of 64", [](HevcSpsFields& f) { f.log2DiffTb = 4; }, "log2 transform block size"},
    {"size not in coding blocks", [](HevcSpsFields& f) { f.log2MinCbMinus3 = 1; f.log2DiffCb = 2; }, "minimum coding blocks"},
    {"65 reference sets", [](HevcSpsFields& f) { f.sets = 65; }, "num_short_term_ref_pic_sets"},
    {"set larger than the buffer", [](HevcSpsFields& f) { f.negativePics = 6; }, "num_negative_pics"},
    {"predicted shift out of range", [](HevcSpsFields& f) { f.absDeltaRpsMinus1 = 32768; }, "abs_delta_rps_minus1"},
    {"33 long-term pictures", [](HevcSpsFields& f) { f.longTerm = 33; }, "num_long_term_ref_pics_sps"},
};

TEST(HostileParameterSets, HevcSequenceSetFields)
{
    for (const auto& c : HevcSpsCases) {
        HevcSpsFields fields;
        c.change(fields);
        const std::vector<uint8_t> unit = fields.Build();
        VekTest::LogCapture log(LogLevel::Warning);
        auto sps = std::make_unique<HevcSequenceParameterSet>();
        const int r = HevcSequenceParameterSet::Parse(unit.data(), unit.size(), *sps);
        if (!c.loggedField) {
            ASSERT_EQ(r, 0) << c.name << ": " << log.Text();
            EXPECT_EQ(sps->displayHeight, 1080) << c.name;
            EXPECT_EQ(sps->bitDepthLuma, 10u) << c.name;
            ASSERT_EQ(sps->numShortTermRefPicSets, 2u) << c.name;
            // The second set is the first shifted by -1 with the shifted
            // picture itself added: -1, -2, -3.
            const HevcShortTermRefPicSet& predicted = sps->shortTermRefPicSets[1];
            ASSERT_EQ(predicted.numNegative, 3) << c.name;
            EXPECT_EQ(predicted.deltaPocS0[0], -1);
            EXPECT_EQ(predicted.deltaPocS0[1], -2);
            EXPECT_EQ(predicted.deltaPocS0[2], -3);
            EXPECT_EQ(predicted.numPositive, 0);
            continue;
        }
        EXPECT_EQ(r, RESULT_FORMAT_ERROR) << c.name;
        EXPECT_NE(log.Text().find(c.loggedField), std::string::npos) << c.name << ": " << log.Text();
    }
}

TEST(HostileParameterSets, EveryTruncationOfAnHevcSequenceSetFails)
{
    const std::vector<uint8_t> unit = HevcSpsFields().Build();
    auto sps = std::make_unique<HevcSequenceParameterSet>();
    for (size_t size = 0; size + 1 < unit.size(); ++size)
        EXPECT_EQ(HevcSequenceParameterSet::Parse(unit.data(), size, *sps), RESULT_FORMAT_ERROR) << size;
}

TEST(HostileParameterSets, EndlessZerosEndCleanly)
{
    std::vector<uint8_t> zeros(1 << 16, 0);
    zeros[0] = 0x67;
    AvcSequenceParameterSet avc;
    EXPECT_EQ(AvcSequenceParameterSet::Parse(zeros.data(), zeros.size(), avc), RESULT_FORMAT_ERROR);
    zeros[0] = 0x42;
    zeros[1] = 0x01;
    auto hevc = std::make_unique<HevcSequenceParameterSet>();
    EXPECT_EQ(HevcSequenceParameterSet::Parse(zeros.data(), zeros.size(), *hevc), RESULT_FORMAT_ERROR);
}

TEST(HostileParameterSets, SlicesNeedTheirParameterSets)
{
    const std::vector<uint8_t> spsUnit = AvcSpsFields().Build();
    AvcSequenceParameterSet sps;
    ASSERT_EQ(AvcSequenceParameterSet::Parse(spsUnit.data(), spsUnit.size(), sps), 0);
    BitWriter p;
    p.Bits(0x68, 8);
    p.UE(3); // picture set 3
    p.UE(0); // of sequence set 0
    p.Bits(0, 2); // CAVLC, no bottom field order count
    p.UE(0); // one slice group
    p.UE(0);
    p.UE(0);
    p.Bits(0, 3); // no weighted prediction
    p.SE(0);
    p.SE(0);
    p.SE(0);
    p.Bits(0, 3);
    p.Trailing();
    AvcPictureParameterSet pps;
    ASSERT_EQ(AvcPictureParameterSet::Parse(p.bytes.data(), p.bytes.size(), nullptr, pps), 0);
    const AvcSequenceParameterSet* sequenceSets[32] = {&sps};
    const AvcPictureParameterSet* pictureSets[256] = {};
    pictureSets[3] = &pps;

    struct SliceCase {
        const char* name;
        uint64_t firstMb, type, pictureSet;
        int result;
    };
    const SliceCase cases[] = {
        {"IDR I slice", 0, 7, 3, 0},
        {"unknown picture set", 0, 7, 4, RESULT_FORMAT_ERROR},
        {"picture set 256", 0, 7, 256, RESULT_FORMAT_ERROR},
        {"slice type 10", 0, 10, 3, RESULT_FORMAT_ERROR},
        {"P slice in an IDR picture", 0, 5, 3, RESULT_FORMAT_ERROR},
        {"first macroblock past the picture", 120 * 68, 7, 3, RESULT_FORMAT_ERROR},
    };
    for (const auto& c : cases) {
        BitWriter s;
        s.Bits(0x65, 8);
        s.UE(c.firstMb);
        s.UE(c.type);
        s.UE(c.pictureSet);
        s.Bits(0, 4); // frame_num
        s.UE(1); // idr_pic_id
        s.Bits(5, 6); // pic_order_cnt_lsb
        s.Trailing();
        AvcSliceHeader slice;
        EXPECT_EQ(AvcSliceHeader::Parse(s.bytes.data(), s.bytes.size(), pictureSets, sequenceSets, slice), c.result)
            << c.name;
        if (c.result == 0) {
            EXPECT_TRUE(slice.allSlicesSameType);
            EXPECT_EQ(slice.sliceType, AvcSliceHeader::I);
            EXPECT_EQ(slice.idrPicId, 1u);
            EXPECT_EQ(slice.picOrderCntLsb, 5u);
        }
    }
}

// The parsers work in their callers' memory: with every allocation made to
// fail they still succeed, and they make none for the walk to fail.
TEST(HostileParameterSets, ParsersDoNotAllocate)
{
#if VEK_FAULT_INJECTION
    const std::vector<uint8_t> avcUnit = AvcSpsFields().Build();
    const std::vector<uint8_t> hevcUnit = HevcSpsFields().Build();
    auto hevc = std::make_unique<HevcSequenceParameterSet>();
    AvcSequenceParameterSet avc;
    FaultInjection::FailAllocation(1);
    const int avcResult = AvcSequenceParameterSet::Parse(avcUnit.data(), avcUnit.size(), avc);
    const int hevcResult = HevcSequenceParameterSet::Parse(hevcUnit.data(), hevcUnit.size(), *hevc);
    FaultInjection::Disarm();
    const bool allocated = FaultInjection::HasFailed();
    FaultInjection::FailAllocation(0);
    EXPECT_EQ(avcResult, 0);
    EXPECT_EQ(hevcResult, 0);
    EXPECT_FALSE(allocated);
#else
    GTEST_SKIP() << "built without VEK_FAULT_INJECTION";
#endif
}

} // namespace
