#include <vek/elementary/HevcSequenceParameterSet.h>

#include <vek/core/Result.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/VideoSignalType.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "HevcSequenceParameterSet::Parse";

int SkipScalingListData(BitReader& bits)
{
    for (uint32_t sizeId = 0; sizeId < 4; ++sizeId) {
        const uint32_t step = sizeId == 3 ? 3 : 1;
        for (uint32_t matrixId = 0; matrixId < 6; matrixId += step) {
            if (!bits.ReadFlag()) {
                const uint32_t delta = bits.ReadUE();
                if (delta > matrixId / step)
                    return FieldCheck::Refuse(Where, "scaling_list_pred_matrix_id_delta", delta);
                continue;
            }
            const uint32_t coefficients = sizeId == 0 ? 16 : 64;
            if (sizeId > 1) {
                const int32_t dc = bits.ReadSE();
                if (dc < -7 || dc > 247)
                    return FieldCheck::Refuse(Where, "scaling_list_dc_coef_minus8", dc);
            }
            for (uint32_t i = 0; i < coefficients && !bits.HasError(); ++i) {
                const int32_t delta = bits.ReadSE();
                if (delta < -128 || delta > 127)
                    return FieldCheck::Refuse(Where, "scaling_list_delta_coef", delta);
            }
        }
    }
    return 0;
}

int SkipSubLayerHrd(BitReader& bits, uint32_t cpbCount, bool subPicParams)
{
    for (uint32_t i = 0; i < cpbCount && !bits.HasError(); ++i) {
        bits.ReadUE(); // bit_rate_value_minus1
        bits.ReadUE(); // cpb_size_value_minus1
        if (subPicParams) {
            bits.ReadUE(); // cpb_size_du_value_minus1
            bits.ReadUE(); // bit_rate_du_value_minus1
        }
        bits.ReadFlag(); // cbr_flag
    }
    return 0;
}

int SkipHrd(BitReader& bits, uint32_t maxSubLayersMinus1)
{
    const bool nal = bits.ReadFlag();
    const bool vcl = bits.ReadFlag();
    bool subPicParams = false;
    if (nal || vcl) {
        subPicParams = bits.ReadFlag();
        if (subPicParams)
            bits.SkipBits(8 + 5 + 1 + 5);
        bits.SkipBits(4 + 4); // bit_rate_scale, cpb_size_scale
        if (subPicParams)
            bits.SkipBits(4); // cpb_size_du_scale
        bits.SkipBits(5 + 5 + 5);
    }
    for (uint32_t i = 0; i <= maxSubLayersMinus1; ++i) {
        const bool fixedGeneral = bits.ReadFlag();
        const bool fixedWithinSequence = fixedGeneral ? true : bits.ReadFlag();
        bool lowDelay = false;
        if (fixedWithinSequence)
            bits.ReadUE(); // elemental_duration_in_tc_minus1
        else
            lowDelay = bits.ReadFlag();
        uint32_t cpbCount = 1;
        if (!lowDelay) {
            cpbCount = bits.ReadUE() + 1;
            if (cpbCount > 32)
                return FieldCheck::Refuse(Where, "cpb_cnt_minus1", int64_t(cpbCount) - 1);
        }
        if (nal)
            SkipSubLayerHrd(bits, cpbCount, subPicParams);
        if (vcl)
            SkipSubLayerHrd(bits, cpbCount, subPicParams);
    }
    return 0;
}

int ParseVui(BitReader& bits, uint32_t maxSubLayersMinus1, HevcVideoUsability& vui)
{
    vui.aspectRatioPresent = bits.ReadFlag();
    if (vui.aspectRatioPresent) {
        vui.aspectRatioIdc = uint8_t(bits.ReadBits(8));
        if (vui.aspectRatioIdc == SampleAspectRatio::Explicit) {
            vui.sampleAspectRatio.width = uint16_t(bits.ReadBits(16));
            vui.sampleAspectRatio.height = uint16_t(bits.ReadBits(16));
        } else if (!SampleAspectRatio::FromIndex(vui.aspectRatioIdc, vui.sampleAspectRatio)) {
            vui.sampleAspectRatio = SampleAspectRatio();
        }
    }
    if (bits.ReadFlag()) // overscan_info_present_flag
        bits.ReadFlag();
    if (const int result = ReadVideoSignalTypeAndChromaLocation(bits, vui, Where); result < 0)
        return result;
    bits.ReadFlag(); // neutral_chroma_indication_flag
    vui.fieldSeq = bits.ReadFlag();
    vui.frameFieldInfoPresent = bits.ReadFlag();
    vui.defaultDisplayWindowPresent = bits.ReadFlag();
    if (vui.defaultDisplayWindowPresent) {
        for (uint32_t& offset : vui.defaultDisplayWindow)
            offset = bits.ReadUE();
    }
    vui.timingPresent = bits.ReadFlag();
    if (vui.timingPresent) {
        vui.numUnitsInTick = bits.ReadBits(32);
        vui.timeScale = bits.ReadBits(32);
        if (!bits.HasError() && (vui.numUnitsInTick == 0 || vui.timeScale == 0))
            return FieldCheck::Refuse(Where, vui.timeScale == 0 ? "vui_time_scale" : "vui_num_units_in_tick", 0);
        vui.pocProportionalToTiming = bits.ReadFlag();
        if (vui.pocProportionalToTiming)
            vui.numTicksPocDiffOne = bits.ReadUE() + 1;
        vui.hrdPresent = bits.ReadFlag();
        if (vui.hrdPresent) {
            const int r = SkipHrd(bits, maxSubLayersMinus1);
            if (r < 0)
                return r;
        }
    }
    vui.bitstreamRestrictionPresent = bits.ReadFlag();
    if (vui.bitstreamRestrictionPresent) {
        bits.SkipBits(3); // tiles fixed, vectors over boundaries, restricted lists
        vui.minSpatialSegmentationIdc = bits.ReadUE();
        if (vui.minSpatialSegmentationIdc > 4095)
            return FieldCheck::Refuse(Where, "min_spatial_segmentation_idc", vui.minSpatialSegmentationIdc);
        bits.ReadUE(); // max_bytes_per_pic_denom
        bits.ReadUE(); // max_bits_per_min_cu_denom
        bits.ReadUE(); // log2_max_mv_length_horizontal
        bits.ReadUE(); // log2_max_mv_length_vertical
    }
    return 0;
}

int ParseSize(BitReader& bits, HevcSequenceParameterSet& sps)
{
    sps.chromaFormatIdc = bits.ReadUE();
    if (sps.chromaFormatIdc > 3)
        return FieldCheck::Refuse(Where, "chroma_format_idc", sps.chromaFormatIdc);
    if (sps.chromaFormatIdc == 3)
        sps.separateColourPlanes = bits.ReadFlag();
    sps.width = bits.ReadUE();
    sps.height = bits.ReadUE();
    if (!bits.HasError() && (sps.width == 0 || sps.width > HevcSequenceParameterSet::MaxDimension))
        return FieldCheck::Refuse(Where, "pic_width_in_luma_samples", sps.width);
    if (!bits.HasError() && (sps.height == 0 || sps.height > HevcSequenceParameterSet::MaxDimension))
        return FieldCheck::Refuse(Where, "pic_height_in_luma_samples", sps.height);
    sps.conformanceWindowPresent = bits.ReadFlag();
    if (sps.conformanceWindowPresent) {
        for (uint32_t& offset : sps.conformanceWindow)
            offset = bits.ReadUE();
    }
    if (bits.HasError())
        return 0; // reported by the caller
    const uint32_t chroma = sps.ChromaArrayType();
    const int64_t unitX = chroma == 1 || chroma == 2 ? 2 : 1;
    const int64_t unitY = chroma == 1 ? 2 : 1;
    const int64_t left = unitX * sps.conformanceWindow[0];
    const int64_t right = unitX * sps.conformanceWindow[1];
    const int64_t top = unitY * sps.conformanceWindow[2];
    const int64_t bottom = unitY * sps.conformanceWindow[3];
    const int64_t width = sps.width;
    const int64_t height = sps.height;
    if (left >= width || right >= width - left)
        return FieldCheck::Refuse(Where, "conf_win_left/right_offset", left >= width ? sps.conformanceWindow[0] : sps.conformanceWindow[1]);
    if (top >= height || bottom >= height - top)
        return FieldCheck::Refuse(Where, "conf_win_top/bottom_offset", top >= height ? sps.conformanceWindow[2] : sps.conformanceWindow[3]);
    sps.displayLeft = int32_t(left);
    sps.displayTop = int32_t(top);
    sps.displayWidth = int32_t(width - left - right);
    sps.displayHeight = int32_t(height - top - bottom);
    return 0;
}

int ParseOrdering(BitReader& bits, HevcSequenceParameterSet& sps)
{
    sps.log2MaxPicOrderCntLsb = bits.ReadUE() + 4;
    if (sps.log2MaxPicOrderCntLsb > 16)
        return FieldCheck::Refuse(Where, "log2_max_pic_order_cnt_lsb_minus4", int64_t(sps.log2MaxPicOrderCntLsb) - 4);
    const bool perSubLayer = bits.ReadFlag();
    const uint32_t last = sps.maxSubLayers - 1u;
    for (uint32_t i = perSubLayer ? 0 : last; i <= last; ++i) {
        sps.maxDecPicBuffering[i] = bits.ReadUE() + 1;
        sps.maxNumReorderPics[i] = bits.ReadUE();
        sps.maxLatencyIncreasePlus1[i] = bits.ReadUE();
        if (sps.maxDecPicBuffering[i] > HevcShortTermRefPicSet::MaxPictures)
            return FieldCheck::Refuse(Where, "sps_max_dec_pic_buffering_minus1", int64_t(sps.maxDecPicBuffering[i]) - 1);
        if (sps.maxNumReorderPics[i] >= sps.maxDecPicBuffering[i])
            return FieldCheck::Refuse(Where, "sps_max_num_reorder_pics", sps.maxNumReorderPics[i]);
    }
    for (uint32_t i = 0; !perSubLayer && i < last; ++i) {
        sps.maxDecPicBuffering[i] = sps.maxDecPicBuffering[last];
        sps.maxNumReorderPics[i] = sps.maxNumReorderPics[last];
        sps.maxLatencyIncreasePlus1[i] = sps.maxLatencyIncreasePlus1[last];
    }
    return 0;
}

int ParseBlockSizes(BitReader& bits, HevcSequenceParameterSet& sps)
{
    const uint32_t minCb = bits.ReadUE() + 3;
    const uint32_t cbRange = bits.ReadUE();
    const uint32_t minTb = bits.ReadUE() + 2;
    const uint32_t tbRange = bits.ReadUE();
    bits.ReadUE(); // max_transform_hierarchy_depth_inter
    bits.ReadUE(); // max_transform_hierarchy_depth_intra
    if (bits.HasError())
        return 0;
    if (minCb > 6 || cbRange > 6 - minCb || minCb + cbRange < 4)
        return FieldCheck::Refuse(Where, "log2 coding block size", int64_t(minCb) + cbRange);
    if (minTb > 5 || minTb >= minCb || tbRange > 5 - minTb || minTb + tbRange > minCb + cbRange)
        return FieldCheck::Refuse(Where, "log2 transform block size", int64_t(minTb) + tbRange);
    sps.log2MinCodingBlockSize = minCb;
    sps.log2CodingTreeBlockSize = minCb + cbRange;
    sps.log2MinTransformBlockSize = minTb;
    sps.log2MaxTransformBlockSize = minTb + tbRange;
    const uint32_t minCbSize = 1u << minCb;
    if (sps.width % minCbSize != 0 || sps.height % minCbSize != 0)
        return FieldCheck::Refuse(Where, "picture size in minimum coding blocks", sps.width % minCbSize ? sps.width : sps.height);
    return 0;
}

int ParseCodingTools(BitReader& bits, HevcSequenceParameterSet& sps)
{
    sps.scalingListEnabled = bits.ReadFlag();
    if (sps.scalingListEnabled && bits.ReadFlag()) {
        const int r = SkipScalingListData(bits);
        if (r < 0)
            return r;
    }
    sps.ampEnabled = bits.ReadFlag();
    sps.sampleAdaptiveOffsetEnabled = bits.ReadFlag();
    sps.pcmEnabled = bits.ReadFlag();
    if (sps.pcmEnabled) {
        bits.SkipBits(8); // PCM sample bit depths
        bits.ReadUE(); // log2_min_pcm_luma_coding_block_size_minus3
        bits.ReadUE(); // log2_diff_max_min_pcm_luma_coding_block_size
        bits.ReadFlag(); // pcm_loop_filter_disabled_flag
    }
    return 0;
}

int ParseReferenceSets(BitReader& bits, HevcSequenceParameterSet& sps)
{
    sps.numShortTermRefPicSets = bits.ReadUE();
    if (sps.numShortTermRefPicSets > HevcShortTermRefPicSet::MaxSetsInSequence)
        return FieldCheck::Refuse(Where, "num_short_term_ref_pic_sets", sps.numShortTermRefPicSets);
    const uint32_t maxPictures = sps.maxDecPicBuffering[sps.maxSubLayers - 1];
    for (uint32_t i = 0; i < sps.numShortTermRefPicSets && !bits.HasError(); ++i) {
        const int r = HevcShortTermRefPicSet::Read(bits, i, sps.numShortTermRefPicSets, sps.shortTermRefPicSets,
                                                   maxPictures, sps.shortTermRefPicSets[i]);
        if (r < 0)
            return r;
    }
    sps.longTermRefPicsPresent = bits.ReadFlag();
    if (sps.longTermRefPicsPresent) {
        sps.numLongTermRefPicsSps = bits.ReadUE();
        if (sps.numLongTermRefPicsSps > HevcSequenceParameterSet::MaxLongTermPictures)
            return FieldCheck::Refuse(Where, "num_long_term_ref_pics_sps", sps.numLongTermRefPicsSps);
        for (uint32_t i = 0; i < sps.numLongTermRefPicsSps; ++i) {
            bits.ReadBits(int(sps.log2MaxPicOrderCntLsb)); // lt_ref_pic_poc_lsb_sps
            bits.ReadFlag(); // used_by_curr_pic_lt_sps_flag
        }
    }
    return 0;
}

} // namespace

uint32_t HevcSequenceParameterSet::PicSizeInCtbs() const
{
    const uint32_t ctb = 1u << log2CodingTreeBlockSize;
    return ((width + ctb - 1) / ctb) * ((height + ctb - 1) / ctb);
}

int HevcSequenceParameterSet::Parse(const uint8_t* unit, size_t size, HevcSequenceParameterSet& out)
{
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header) || header.type != HevcNalHeader::SequenceParameterSet)
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] >> 1 & 63 : -1);
    BitReader bits(unit + 2, size - 2);
    // A local copy (about 10 KB with the reference sets) keeps `out` intact
    // on failure without an allocation.
    HevcSequenceParameterSet sps;
    sps.videoSetId = uint8_t(bits.ReadBits(4));
    const uint32_t subLayersMinus1 = bits.ReadBits(3);
    if (subLayersMinus1 > 6)
        return FieldCheck::Refuse(Where, "sps_max_sub_layers_minus1", subLayersMinus1);
    sps.maxSubLayers = uint8_t(subLayersMinus1 + 1);
    sps.temporalIdNesting = bits.ReadFlag();
    HevcProfileTierLevel::Read(bits, subLayersMinus1, sps.profileTierLevel);
    sps.id = bits.ReadUE();
    if (sps.id > MaxId)
        return FieldCheck::Refuse(Where, "sps_seq_parameter_set_id", sps.id);
    int r = 0;
    if ((r = ParseSize(bits, sps)) < 0)
        return r;
    sps.bitDepthLuma = bits.ReadUE() + 8;
    sps.bitDepthChroma = bits.ReadUE() + 8;
    if (sps.bitDepthLuma > 16 || sps.bitDepthChroma > 16)
        return FieldCheck::Refuse(Where, "bit_depth_minus8", int64_t(sps.bitDepthLuma > 16 ? sps.bitDepthLuma : sps.bitDepthChroma) - 8);
    if ((r = ParseOrdering(bits, sps)) < 0 || (r = ParseBlockSizes(bits, sps)) < 0 ||
        (r = ParseCodingTools(bits, sps)) < 0 || (r = ParseReferenceSets(bits, sps)) < 0)
        return r;
    sps.temporalMvpEnabled = bits.ReadFlag();
    sps.strongIntraSmoothing = bits.ReadFlag();
    sps.vuiPresent = bits.ReadFlag();
    if (sps.vuiPresent && (r = ParseVui(bits, subLayersMinus1, sps.vui)) < 0)
        return r;
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = sps;
    return 0;
}

} // namespace Quorvex::Vek
