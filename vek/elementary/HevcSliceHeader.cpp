#include <vek/elementary/HevcSliceHeader.h>

#include <vek/elementary/BitReader.h>
#include <vek/elementary/FieldCheck.h>
#include <vek/elementary/HevcNalHeader.h>
#include <vek/elementary/HevcPictureParameterSet.h>
#include <vek/elementary/HevcSequenceParameterSet.h>

namespace Quorvex::Vek {

namespace {

constexpr const char* Where = "HevcSliceHeader::Parse";

int CeilLog2(uint32_t value)
{
    int bits = 0;
    while ((uint64_t(1) << bits) < value)
        ++bits;
    return bits;
}

} // namespace

int HevcSliceHeader::Parse(const uint8_t* unit, size_t size, const HevcPictureParameterSet* const* pictureSets,
                           const HevcSequenceParameterSet* const* sequenceSets, HevcSliceHeader& out)
{
    HevcNalHeader header;
    if (!HevcNalHeader::Parse(unit, size, header) || !HevcNalHeader::IsSlice(header.type))
        return FieldCheck::Refuse(Where, "nal_unit_type", size > 0 && unit ? unit[0] >> 1 & 63 : -1);
    BitReader bits(unit + 2, size - 2);
    HevcSliceHeader slice;
    slice.nalType = header.type;
    slice.temporalId = header.temporalId;
    slice.layerId = header.layerId;
    slice.firstSliceSegmentInPic = bits.ReadFlag();
    if (HevcNalHeader::IsIrap(header.type))
        slice.noOutputOfPriorPics = bits.ReadFlag();
    slice.pictureSetId = bits.ReadUE();
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    if (slice.pictureSetId > HevcPictureParameterSet::MaxId)
        return FieldCheck::Refuse(Where, "slice_pic_parameter_set_id", slice.pictureSetId);
    const HevcPictureParameterSet* pps = pictureSets ? pictureSets[slice.pictureSetId] : nullptr;
    if (!pps)
        return FieldCheck::Missing(Where, "picture parameter set", slice.pictureSetId);
    const HevcSequenceParameterSet* sps = sequenceSets ? sequenceSets[pps->sequenceSetId] : nullptr;
    if (!sps)
        return FieldCheck::Missing(Where, "sequence parameter set", pps->sequenceSetId);

    if (!slice.firstSliceSegmentInPic) {
        if (pps->dependentSliceSegmentsEnabled)
            slice.dependent = bits.ReadFlag();
        const uint32_t ctbs = sps->PicSizeInCtbs();
        slice.segmentAddress = bits.ReadBits(CeilLog2(ctbs));
        if (!bits.HasError() && (slice.segmentAddress == 0 || slice.segmentAddress >= ctbs))
            return FieldCheck::Refuse(Where, "slice_segment_address", slice.segmentAddress);
    }
    if (!slice.dependent) {
        bits.SkipBits(pps->numExtraSliceHeaderBits);
        const uint32_t type = bits.ReadUE();
        if (type > 2)
            return FieldCheck::Refuse(Where, "slice_type", type);
        slice.sliceType = uint8_t(type);
        if (HevcNalHeader::IsIrap(header.type) && header.layerId == 0 && type != I)
            return FieldCheck::Refuse(Where, "slice_type of a random access picture", type);
        if (pps->outputFlagPresent)
            slice.picOutput = bits.ReadFlag();
        if (sps->separateColourPlanes)
            slice.colourPlaneId = uint8_t(bits.ReadBits(2));
        if (!HevcNalHeader::IsIdr(header.type))
            slice.picOrderCntLsb = bits.ReadBits(int(sps->log2MaxPicOrderCntLsb));
    }
    if (bits.HasError())
        return FieldCheck::Truncated(Where);
    out = slice;
    return 0;
}

} // namespace Quorvex::Vek
