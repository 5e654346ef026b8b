#include <vek/elementary/AvcSequenceParameterSet.h>

#include <vek/core/Result.h>
#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/VideoSignalType.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcSequenceParameterSet::Parse";

// Profiles whose sets carry chroma format, bit depths and scaling matrices.
bool HasChromaInfo(uint32_t profile)
{
    switch (profile) {
    case 100: case 110: case 122: case 244: case 44: case 83: case 86: case 118: case 128: case 138: case 139:
    case 134: case 135:
        return true;
    default:
        return false;
    }
}

// A scaling list is only skipped: decoding applies it, describing does not.
int SkipScalingList(BitReader& bits, int size)
{
    int32_t last = 8;
    int32_t next = 8;
    for (int j = 0; j < size && next != 0; ++j) {
        const int32_t delta = bits.ReadSE();
        if (delta < -128 || delta > 127)
            return FieldCheck::Refuse(Where, "delta_scale", delta);
        next = (last + delta + 256) % 256;
        if (next != 0)
            last = next;
    }
    return 0;
}

int SkipScalingMatrix(BitReader& bits, uint32_t chromaFormatIdc)
{
    const int lists = chromaFormatIdc == 3 ? 12 : 8;
    for (int i = 0; i < lists; ++i) {
        if (!bits.ReadFlag())
            continue;
        const int r = SkipScalingList(bits, i < 6 ? 16 : 64);
        if (r < 0)
            return r;
    }
    return 0;
}

int ParseHrd(BitReader& bits, AvcVideoUsability& vui)
{
    const uint32_t cpbCount = bits.ReadUE() + 1;
    if (cpbCount > 32)
        return FieldCheck::Refuse(Where, "cpb_cnt_minus1", int64_t(cpbCount) - 1);
    bits.SkipBits(8); // bit_rate_scale, cpb_size_scale
    for (uint32_t i = 0; i < cpbCount; ++i) {
        bits.ReadUE(); // bit_rate_value_minus1
        bits.ReadUE(); // cpb_size_value_minus1
        bits.ReadFlag(); // cbr_flag
    }
    bits.SkipBits(5); // initial_cpb_removal_delay_length_minus1
    vui.cpbRemovalDelayBits = uint8_t(bits.ReadBits(5) + 1);
    vui.dpbOutputDelayBits = uint8_t(bits.ReadBits(5) + 1);
    vui.timeOffsetBits = uint8_t(bits.ReadBits(5));
    return 0;
}

int ParseVui(BitReader& bits, AvcVideoUsability& vui)
{
    vui.aspectRatioPresent = bits.ReadFlag();
    if (vui.aspectRatioPresent) {
        vui.aspectRatioIdc = uint8_t(bits.ReadBits(8));
        if (vui.aspectRatioIdc == SampleAspectRatio::Explicit) {
            vui.sampleAspectRatio.width = uint16_t(bits.ReadBits(16));
            vui.sampleAspectRatio.height = uint16_t(bits.ReadBits(16));
        } else if (!SampleAspectRatio::FromIndex(vui.aspectRatioIdc, vui.sampleAspectRatio)) {
            // Reserved values leave the ratio unknown rather than the stream unreadable.
            vui.sampleAspectRatio = SampleAspectRatio();
        }
    }
    vui.overscanPresent = bits.ReadFlag();
    if (vui.overscanPresent)
        vui.overscanAppropriate = bits.ReadFlag();
    if (const int result = ReadVideoSignalTypeAndChromaLocation(bits, vui, Where); result < 0)
        return result;
    vui.timingPresent = bits.ReadFlag();
    if (vui.timingPresent) {
        vui.numUnitsInTick = bits.ReadBits(32);
        vui.timeScale = bits.ReadBits(32);
        vui.fixedFrameRate = bits.ReadFlag();
        if (!bits.HasError() && (vui.numUnitsInTick == 0 || vui.timeScale == 0))
            return FieldCheck::Refuse(Where, vui.timeScale == 0 ? "time_scale" : "num_units_in_tick", 0);
    }
    vui.nalHrdPresent = bits.ReadFlag();
    if (vui.nalHrdPresent && ParseHrd(bits, vui) < 0)
        return RESULT_FORMAT_ERROR;
    vui.vclHrdPresent = bits.ReadFlag();
    if (vui.vclHrdPresent && ParseHrd(bits, vui) < 0)
        return RESULT_FORMAT_ERROR;
    if (vui.nalHrdPresent || vui.vclHrdPresent)
        vui.lowDelayHrd = bits.ReadFlag();
    vui.picStructPresent = bits.ReadFlag();
    vui.bitstreamRestrictionPresent = bits.ReadFlag();
    if (vui.bitstreamRestrictionPresent) {
        bits.ReadFlag(); // motion_vectors_over_pic_boundaries_flag
        bits.ReadUE(); // max_bytes_per_pic_denom
        bits.ReadUE(); // max_bits_per_mb_denom
        bits.ReadUE(); // log2_max_mv_length_horizontal
        bits.ReadUE(); // log2_max_mv_length_vertical
        vui.maxNumReorderFrames = bits.ReadUE();
        vui.maxDecFrameBuffering = bits.ReadUE();
        if (vui.maxDecFrameBuffering > AvcSequenceParameterSet::MaxRefFrames)
            return FieldCheck::Refuse(Where, "max_dec_frame_buffering", vui.maxDecFrameBuffering);
        if (vui.maxNumReorderFrames > vui.maxDecFrameBuffering)
            return FieldCheck::Refuse(Where, "max_num_reorder_frames", vui.maxNumReorderFrames);
    }
    return 0;
}

int ParsePicOrderCount(BitReader& bits, AvcSequenceParameterSet& sps)
{
    sps.picOrderCntType = bits.ReadUE();
    if (sps.picOrderCntType > 2)
        return FieldCheck::Refuse(Where, "pic_order_cnt_type", sps.picOrderCntType);
    if (sps.picOrderCntType == 0) {
        sps.log2MaxPicOrderCntLsb = bits.ReadUE() + 4;
        if (sps.log2MaxPicOrderCntLsb > 16)
            return FieldCheck::Refuse(Where, "log2_max_pic_order_cnt_lsb_minus4", int64_t(sps.log2MaxPicOrderCntLsb) - 4);
    } else if (sps.picOrderCntType == 1) {
        sps.deltaPicOrderAlwaysZero = bits.ReadFlag();
        sps.offsetForNonRefPic = bits.ReadSE();
        sps.offsetForTopToBottomField = bits.ReadSE();
        sps.numRefFramesInPicOrderCntCycle = bits.ReadUE();
        if (sps.numRefFramesInPicOrderCntCycle > 255)
            return FieldCheck::Refuse(Where, "num_ref_frames_in_pic_order_cnt_cycle", sps.numRefFramesInPicOrderCntCycle);
        for (uint32_t i = 0; i < sps.numRefFramesInPicOrderCntCycle; ++i)
            sps.offsetForRefFrame[i] = bits.ReadSE();
    }
    return 0;
}

int ParseProfileExtras(BitReader& bits, AvcSequenceParameterSet& sps)
{
    sps.chromaFormatIdc = bits.ReadUE();
    if (sps.chromaFormatIdc > 3)
        return FieldCheck::Refuse(Where, "chroma_format_idc", sps.chromaFormatIdc);
    if (sps.chromaFormatIdc == 3)
        sps.separateColourPlanes = bits.ReadFlag();
    sps.bitDepthLuma = bits.ReadUE() + 8;
    if (sps.bitDepthLuma > 14)
        return FieldCheck::Refuse(Where, "bit_depth_luma_minus8", int64_t(sps.bitDepthLuma) - 8);
    sps.bitDepthChroma = bits.ReadUE() + 8;
    if (sps.bitDepthChroma > 14)
        return FieldCheck::Refuse(Where, "bit_depth_chroma_minus8", int64_t(sps.bitDepthChroma) - 8);
    sps.transformBypass = bits.ReadFlag();
    sps.scalingMatrixPresent = bits.ReadFlag();
    if (sps.scalingMatrixPresent)
        return SkipScalingMatrix(bits, sps.chromaFormatIdc);
    return 0;
}

int ParseFrameSize(BitReader& bits, AvcSequenceParameterSet& sps)
{
    sps.widthInMacroblocks = bits.ReadUE() + 1;
    sps.heightInMapUnits = bits.ReadUE() + 1;
    sps.frameMbsOnly = bits.ReadFlag();
    if (!sps.frameMbsOnly)
        sps.mbAdaptiveFrameField = bits.ReadFlag();
    sps.direct8x8Inference = bits.ReadFlag();
    sps.croppingPresent = bits.ReadFlag();
    if (sps.croppingPresent) {
        sps.cropLeft = bits.ReadUE();
        sps.cropRight = bits.ReadUE();
        sps.cropTop = bits.ReadUE();
        sps.cropBottom = bits.ReadUE();
    }
    if (bits.HasError())
        return 0; // reported by the caller
    // The ue reads cannot return 2^32 - 1, so the + 1 above cannot wrap to 0.
    if (sps.widthInMacroblocks > AvcSequenceParameterSet::MaxMacroblocksAcross)
        return FieldCheck::Refuse(Where, "pic_width_in_mbs_minus1", int64_t(sps.widthInMacroblocks) - 1);
    const uint32_t mapUnitRows = uint32_t(sps.HeightInMapUnitsToMacroblocks());
    if (sps.heightInMapUnits > AvcSequenceParameterSet::MaxMacroblocksAcross / mapUnitRows)
        return FieldCheck::Refuse(Where, "pic_height_in_map_units_minus1", int64_t(sps.heightInMapUnits) - 1);
    const uint32_t heightInMacroblocks = sps.heightInMapUnits * mapUnitRows;
    sps.codedWidth = int32_t(sps.widthInMacroblocks * 16);
    sps.codedHeight = int32_t(heightInMacroblocks * 16);

    const uint32_t chroma = sps.ChromaArrayType();
    const int64_t unitX = chroma == 1 || chroma == 2 ? 2 : 1;
    const int64_t unitY = (chroma == 1 ? 2 : 1) * int64_t(sps.HeightInMapUnitsToMacroblocks());
    // Each product fits int64; their sums are compared by subtraction.
    const int64_t left = sps.cropLeft * unitX;
    const int64_t right = sps.cropRight * unitX;
    const int64_t top = sps.cropTop * unitY;
    const int64_t bottom = sps.cropBottom * unitY;
    if (left >= sps.codedWidth || right >= sps.codedWidth - left)
        return FieldCheck::Refuse(Where, "frame_crop_left/right_offset", left >= sps.codedWidth ? sps.cropLeft : sps.cropRight);
    if (top >= sps.codedHeight || bottom >= sps.codedHeight - top)
        return FieldCheck::Refuse(Where, "frame_crop_top/bottom_offset", top >= sps.codedHeight ? sps.cropTop : sps.cropBottom);
    sps.displayLeft = int32_t(left);
    sps.displayTop = int32_t(top);
    sps.displayWidth = int32_t(sps.codedWidth - left - right);
    sps.displayHeight = int32_t(sps.codedHeight - top - bottom);
    return 0;
}

} // namespace

int AvcSequenceParameterSet::Parse(const uint8_t* unit, size_t size, AvcSequenceParameterSet& out)
{
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header) || header.type != AvcNalHeader::SequenceParameterSet)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] & 31 : -1);
    BitReader bits(unit + 1, size - 1);
    AvcSequenceParameterSet sps;
    sps.profileIdc = uint8_t(bits.ReadBits(8));
    sps.constraintFlags = uint8_t(bits.ReadBits(8));
    sps.levelIdc = uint8_t(bits.ReadBits(8));
    sps.id = bits.ReadUE();
    if (sps.id > MaxId)
        return FieldCheck::Refuse(Where, "seq_parameter_set_id", sps.id);
    int r = 0;
    if (HasChromaInfo(sps.profileIdc) && (r = ParseProfileExtras(bits, sps)) < 0)
        return r;
    sps.log2MaxFrameNum = bits.ReadUE() + 4;
    if (sps.log2MaxFrameNum > 16)
        return FieldCheck::Refuse(Where, "log2_max_frame_num_minus4", int64_t(sps.log2MaxFrameNum) - 4);
    if ((r = ParsePicOrderCount(bits, sps)) < 0)
        return r;
    sps.maxNumRefFrames = bits.ReadUE();
    if (sps.maxNumRefFrames > MaxRefFrames)
        return FieldCheck::Refuse(Where, "max_num_ref_frames", sps.maxNumRefFrames);
    sps.gapsInFrameNumAllowed = bits.ReadFlag();
    if ((r = ParseFrameSize(bits, sps)) < 0)
        return r;
    sps.vuiPresent = bits.ReadFlag();
    if (sps.vuiPresent && (r = ParseVui(bits, sps.vui)) < 0)
        return r;
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = sps;
    return 0;
}

} // namespace Quorvex::Vek
