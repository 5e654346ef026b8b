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
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = slice;
    return 0;
}

} // namespace Quorvex::Vek
