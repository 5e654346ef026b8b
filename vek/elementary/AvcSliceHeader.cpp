#include <vek/elementary/AvcSliceHeader.h>

#include <vek/elementary/AvcNalHeader.h>
#include <vek/elementary/AvcPictureParameterSet.h>
#include <vek/elementary/AvcSequenceParameterSet.h>
#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "AvcSliceHeader::Parse";

void ParsePicOrderCountFields(BitReader& bits, const AvcSequenceParameterSet& sps, const AvcPictureParameterSet& pps,
                              AvcSliceHeader& slice)
{
    const bool framePicture = !slice.fieldPic;
    if (sps.picOrderCntType == 0) {
        slice.picOrderCntLsb = bits.ReadBits(int(sps.log2MaxPicOrderCntLsb));
        if (pps.bottomFieldPicOrderInFramePresent && framePicture)
            slice.deltaPicOrderCntBottom = bits.ReadSE();
    } else if (sps.picOrderCntType == 1 && !sps.deltaPicOrderAlwaysZero) {
        slice.deltaPicOrderCnt[0] = bits.ReadSE();
        if (pps.bottomFieldPicOrderInFramePresent && framePicture)
            slice.deltaPicOrderCnt[1] = bits.ReadSE();
    }
}

bool IsPredicted(const AvcSliceHeader& slice)
{
    return slice.sliceType == AvcSliceHeader::P || slice.sliceType == AvcSliceHeader::SP ||
           slice.sliceType == AvcSliceHeader::B;
}

// The active reference counts of both lists; false (logged) past 32.
bool ReadActiveReferenceCounts(BitReader& bits, const AvcPictureParameterSet& pps, const AvcSliceHeader& slice,
                               uint32_t counts[2])
{
    counts[0] = pps.numRefIdxL0DefaultActive;
    counts[1] = slice.sliceType == AvcSliceHeader::B ? pps.numRefIdxL1DefaultActive : 0;
    if (slice.sliceType == AvcSliceHeader::B)
        bits.SkipBits(1); // direct_spatial_mv_pred_flag
    if (!IsPredicted(slice) || !bits.ReadFlag())
        return true;
    for (int list = 0; list < (slice.sliceType == AvcSliceHeader::B ? 2 : 1); ++list) {
        const uint32_t minus1 = bits.ReadUE();
        if (minus1 > 31) {
            FieldCheck::Refuse(Where, list == 0 ? "num_ref_idx_l0_active_minus1" : "num_ref_idx_l1_active_minus1",
                               minus1);
            return false;
        }
        counts[list] = minus1 + 1;
    }
    return true;
}

// Reads past one list's reordering commands; false (logged) for a bad command.
bool SkipReferenceListChanges(BitReader& bits, uint32_t activeCount)
{
    if (!bits.ReadFlag())
        return true;
    // Each command names one entry; a list of 32 needs at most 32 and the end.
    for (uint32_t n = 0; n <= activeCount && !bits.HasError(); ++n) {
        const uint32_t idc = bits.ReadUE();
        if (idc == 3)
            return true;
        if (idc > 3) {
            FieldCheck::Refuse(Where, "modification_of_pic_nums_idc", idc);
            return false;
        }
        bits.ReadUE(); // abs_diff_pic_num_minus1 or long_term_pic_num
    }
    if (!bits.HasError())
        FieldCheck::Refuse(Where, "reference list modifications", int64_t(activeCount) + 1);
    return bits.HasError();
}

// Reads past the explicit weights of both lists; false (logged) for a bad denominator.
bool SkipPredictionWeights(BitReader& bits, const AvcSequenceParameterSet& sps, const uint32_t counts[2], int lists)
{
    const uint32_t lumaDenominator = bits.ReadUE();
    if (lumaDenominator > 7) {
        FieldCheck::Refuse(Where, "luma_log2_weight_denom", lumaDenominator);
        return false;
    }
    const bool chroma = sps.ChromaArrayType() != 0;
    if (chroma) {
        const uint32_t chromaDenominator = bits.ReadUE();
        if (chromaDenominator > 7) {
            FieldCheck::Refuse(Where, "chroma_log2_weight_denom", chromaDenominator);
            return false;
        }
    }
    for (int list = 0; list < lists; ++list) {
        for (uint32_t i = 0; i < counts[list] && !bits.HasError(); ++i) {
            if (bits.ReadFlag()) {
                bits.ReadSE();
                bits.ReadSE();
            }
            if (chroma && bits.ReadFlag())
                for (int k = 0; k < 4; ++k)
                    bits.ReadSE();
        }
    }
    return true;
}

// Reads the reference marking; false (logged) for an unknown operation.
bool ReadReferenceMarking(BitReader& bits, AvcSliceHeader& slice)
{
    if (slice.IsIdr()) {
        bits.SkipBits(2); // no_output_of_prior_pics_flag, long_term_reference_flag
        return true;
    }
    if (!bits.ReadFlag()) // adaptive_ref_pic_marking_mode_flag
        return true;
    // Operations 1..4 and 6 each name a distinct picture or index, 5 and the
    // end come once: more than 66 commands cannot describe 32 pictures.
    for (int n = 0; n < 66 && !bits.HasError(); ++n) {
        const uint32_t operation = bits.ReadUE();
        switch (operation) {
        case 0: return true;
        case 1:
        case 2:
        case 4:
        case 6: bits.ReadUE(); break;
        case 3:
            bits.ReadUE();
            bits.ReadUE();
            break;
        case 5: slice.memoryManagementReset = true; break;
        default: FieldCheck::Refuse(Where, "memory_management_control_operation", operation); return false;
        }
    }
    if (!bits.HasError())
        FieldCheck::Refuse(Where, "memory management operations", 66);
    return bits.HasError();
}

// Everything between the picture order count fields and the marking.
int ParseReferenceSyntax(BitReader& bits, const AvcSequenceParameterSet& sps, const AvcPictureParameterSet& pps,
                         AvcSliceHeader& slice)
{
    if (pps.redundantPicCntPresent) {
        slice.redundantPicCnt = bits.ReadUE();
        if (slice.redundantPicCnt > 127)
            return FieldCheck::Refuse(Where, "redundant_pic_cnt", slice.redundantPicCnt);
    }
    uint32_t counts[2] = {};
    if (!ReadActiveReferenceCounts(bits, pps, slice, counts))
        return RESULT_FORMAT_ERROR;
    if (slice.sliceType != AvcSliceHeader::I && slice.sliceType != AvcSliceHeader::SI) {
        if (!SkipReferenceListChanges(bits, counts[0]))
            return RESULT_FORMAT_ERROR;
        if (slice.sliceType == AvcSliceHeader::B && !SkipReferenceListChanges(bits, counts[1]))
            return RESULT_FORMAT_ERROR;
    }
    const bool weighted = (pps.weightedPred && (slice.sliceType == AvcSliceHeader::P || slice.sliceType == AvcSliceHeader::SP)) ||
                          (pps.weightedBipredIdc == 1 && slice.sliceType == AvcSliceHeader::B);
    if (weighted && !SkipPredictionWeights(bits, sps, counts, slice.sliceType == AvcSliceHeader::B ? 2 : 1))
        return RESULT_FORMAT_ERROR;
    if (slice.IsReference() && !ReadReferenceMarking(bits, slice))
        return RESULT_FORMAT_ERROR;
    return 0;
}

} // namespace

int AvcSliceHeader::Parse(const uint8_t* unit, size_t size, const AvcPictureParameterSet* const* pictureSets,
                          const AvcSequenceParameterSet* const* sequenceSets, AvcSliceHeader& out)
{
    AvcNalHeader header;
    if (!AvcNalHeader::Parse(unit, size, header) || !header.IsSlice())
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] & 31 : -1);
    BitReader bits(unit + 1, size - 1);
    AvcSliceHeader slice;
    slice.nalType = header.type;
    slice.nalRefIdc = header.refIdc;
    slice.firstMbInSlice = bits.ReadUE();
    const uint32_t codedType = bits.ReadUE();
    if (codedType > 9)
        return FieldCheck::Refuse(Where, "slice_type", codedType);
    slice.sliceType = uint8_t(codedType % 5);
    slice.allSlicesSameType = codedType >= 5;
    slice.pictureSetId = bits.ReadUE();
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    if (slice.pictureSetId > AvcPictureParameterSet::MaxId)
        return FieldCheck::Refuse(Where, "pic_parameter_set_id", slice.pictureSetId);
    const AvcPictureParameterSet* pps = pictureSets ? pictureSets[slice.pictureSetId] : nullptr;
    if (!pps)
        return FieldCheck::Missing(Where, "picture parameter set", slice.pictureSetId);
    const AvcSequenceParameterSet* sps = sequenceSets ? sequenceSets[pps->sequenceSetId] : nullptr;
    if (!sps)
        return FieldCheck::Missing(Where, "sequence parameter set", pps->sequenceSetId);
    if (slice.IsIdr() && !slice.IsIntra())
        return FieldCheck::Refuse(Where, "slice_type of an IDR picture", codedType);
    const uint64_t macroblocks = uint64_t(sps->widthInMacroblocks) * uint64_t(sps->heightInMapUnits) *
                                 uint64_t(sps->HeightInMapUnitsToMacroblocks());
    if (slice.firstMbInSlice >= macroblocks)
        return FieldCheck::Refuse(Where, "first_mb_in_slice", slice.firstMbInSlice);

    if (sps->separateColourPlanes) {
        slice.colourPlaneId = uint8_t(bits.ReadBits(2));
        if (slice.colourPlaneId > 2)
            return FieldCheck::Refuse(Where, "colour_plane_id", slice.colourPlaneId);
    }
    slice.frameNum = bits.ReadBits(int(sps->log2MaxFrameNum));
    if (!sps->frameMbsOnly) {
        slice.fieldPic = bits.ReadFlag();
        if (slice.fieldPic)
            slice.bottomField = bits.ReadFlag();
    }
    if (slice.IsIdr()) {
        slice.idrPicId = bits.ReadUE();
        if (slice.idrPicId > 65535)
            return FieldCheck::Refuse(Where, "idr_pic_id", slice.idrPicId);
    }
    ParsePicOrderCountFields(bits, *sps, *pps, slice);
    const int result = ParseReferenceSyntax(bits, *sps, *pps, slice);
    if (result < 0)
        return result;
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = slice;
    return 0;
}

} // namespace Quorvex::Vek
